// Reads Wavefront OBJ files with their material libraries.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file. The parts of one object, group and material become one mesh with the name of the group, or
/// of the object outside of groups. Categories are the materials with parts, in the order of the material
/// libraries; materials that no library defines follow. The vertices of a file without faces, lines and
/// points become points.
///
/// A missing material library, curves and surfaces are left out and counted. Throws FileError.
[[nodiscard]] Model ReadObj(const std::string& path, const ProgressFunction& progress);

} // namespace viewer
