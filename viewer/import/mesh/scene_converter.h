// Converts a scene of the Assimp library to a model.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <assimp/scene.h>

#include <string>

namespace viewer
{

/// The model of a scene that was read from this file. Progress is reported from `progress_begin` on. Throws
/// FileError if the scene shows nothing.
[[nodiscard]] Model ConvertScene(const std::string& path, const aiScene& scene,
                                 const ProgressFunction& progress, double progress_begin);

} // namespace viewer
