// Reads 3MF packages.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads the objects that a package builds, or all objects if it builds none. Each use of an object with a mesh
/// makes a mesh for each of its base materials, which are the categories. Triangles have the colours of their base
/// materials, colour groups or textures. Beams are lines. The unit is that of the package. Composite materials,
/// several properties at once and slices are left out and counted. Throws FileError.
[[nodiscard]] Model ReadThreeMf(const std::string& path, const ProgressFunction& progress);

} // namespace viewer
