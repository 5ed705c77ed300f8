// Reads PLY files, of text and binary in both byte orders.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file. All parts are of one mesh: faces, strips of triangles ("tristrips") and edges. A file without
/// them shows its vertices as points. A face or an edge has its own colour, or the mean of its texture, which a
/// comment "TextureFile" names, or that of its vertices' colours. Elements and properties of other names are
/// skipped. Throws FileError.
[[nodiscard]] Model ReadPly(const std::string& path, const ProgressFunction& progress);

} // namespace viewer
