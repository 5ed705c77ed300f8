// Reads OFF files of text: polygons with colours of vertices or faces.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file with the header OFF, with any of the prefixes ST, C, N and 4, or without a header. Colours
/// are integers up to 255 or fractions up to 1. The colour of a face is preferred to those of its vertices.
/// Faces with one or two corners are points and lines. The vertices of a file without faces become points.
/// All parts are of one mesh. Binary files and those of other than three dimensions are refused. Throws
/// FileError.
[[nodiscard]] Model ReadOff(const std::string& path, const ProgressFunction& progress);

} // namespace viewer
