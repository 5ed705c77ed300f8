// Reads 3MF packages.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads the objects in the "build" list of a package, or all objects if the list is empty. Each use of an
/// object becomes one mesh for each of its base materials, which are the categories. Triangles have the
/// colours of their base materials, colour groups or textures. Beams become lines. The unit is that of the
/// package. Composite materials, multiple properties and slices are left out and counted. Throws FileError.
[[nodiscard]] Model ReadThreeMf(const std::string& path, const ProgressFunction& progress);

} // namespace viewer
