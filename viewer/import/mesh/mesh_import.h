// Mesh files, read by the Assimp library into the host's own model. Polygons stay polygons; windings and
// normals are made right for the viewport here.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file. Each mesh of a node becomes a piece, in the order of the file, with its own name or else the
/// node's, and the names of the nodes around it as parents; each material that has faces becomes a category
/// with its name, counted from 0 in the order of the file's materials, and gives its pieces the palette's
/// nearest colour and its opacity. Points, lines and faces without area are left out. The title is the file's
/// name without folders.
///
/// Where the format says which axis points up, the model is turned so that z does: glTF, Collada, FBX, 3DS,
/// ASE, X3D, X, AC and LWO; IFC files stand upright as they are. Others, OBJ, STL, PLY and OFF among them,
/// are taken as they stand. Lengths of glTF, Collada, X3D and IFC files are metres, those of FBX files in the
/// unit that the file states, and the model knows it; for other files the unit is unknown. Coordinates have
/// the library's single precision.
///
/// Throws FileError where the file is missing, empty, truncated, of an unknown kind, damaged or without
/// faces, or holds coordinates that are not finite.
[[nodiscard]] Model ImportMesh(const std::string& path, const ProgressFunction& progress = {});

} // namespace viewer
