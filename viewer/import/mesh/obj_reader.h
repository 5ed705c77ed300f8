// Reads Wavefront OBJ files with their material libraries.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file. The parts of one object, group and material become one mesh, named after the group or else
/// the object. Categories are the materials that are in use, in the order of the material libraries; materials
/// that no library defines follow. A file without faces, lines and points shows its vertices.
///
/// A missing material library, curves and surfaces are left out and counted. Throws FileError.
[[nodiscard]] Model ReadObj(const std::string& path, const ProgressFunction& progress);

} // namespace viewer
