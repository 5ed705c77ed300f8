// Model files, read by the Assimp library into the host's own model. Polygons stay polygons; windings and
// normals are made right for the viewport here. Units and axes stay those that the importer gives.
#pragma once

#include "viewer/model.h"
#include "viewer/progress.h"

#include <string>

namespace viewer
{

/// Reads a file. Each mesh of a node becomes a piece, in the order of the file; each material that has faces
/// becomes a category, counted from 0 in the order of the file's materials, and gives its pieces the
/// palette's nearest colour and its opacity. Points, lines and faces without area are left out. The title is
/// the file's name without folders.
///
/// Throws FileError where the file is missing, empty, truncated, of an unknown kind, damaged or without
/// faces, or holds coordinates that are not finite.
[[nodiscard]] Model ImportMesh(const std::string& path, const ProgressFunction& progress = {});

} // namespace viewer
