// Converts a scene of the Assimp library to a model.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <assimp/scene.h>

#include <string>

namespace viewer
{

/// The model of a scene that was read from this file. Throws FileError if the scene has nothing to show.
[[nodiscard]] Model ConvertScene(const std::string& path, const aiScene& scene, ImportProgress& progress);

} // namespace viewer
