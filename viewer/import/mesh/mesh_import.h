// Reads mesh files by the Assimp library. Polygons are not triangulated. Windings and normals are converted
// to those of the viewport.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file.
///
/// Pieces: each mesh of a node becomes one piece, in the order of the file. Its name is that of the mesh, or
/// of the node if the mesh has none. Its parents are the names of the nodes above it. Points, lines and faces
/// without area are dropped.
///
/// Categories: each material that has faces becomes a category with the material's name. Categories are
/// numbered from 0 in the order of the file's materials. A piece has the nearest palette colour to the
/// material's colour, and the material's opacity.
///
/// Axes: if the format defines the up axis, the model is rotated so that z is up: glTF, Collada, FBX, 3DS,
/// ASE, X3D, X, AC and LWO. IFC models end up with their own z axis up. Other formats, among them OBJ, STL,
/// PLY and OFF, are not rotated.
///
/// Unit: metres for glTF, Collada, X3D and IFC; the unit that the file states for FBX; unknown for other
/// formats. Coordinates have the library's single precision.
///
/// The title is the file's name without folders.
///
/// Throws FileError if the file is missing, empty, truncated, damaged, of an unknown kind or without faces,
/// or if a coordinate is not finite.
[[nodiscard]] Model ImportMesh(const std::string& path, const ProgressFunction& progress = {});

} // namespace viewer
