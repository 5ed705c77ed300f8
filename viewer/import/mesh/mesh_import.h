// Reads mesh files: OBJ, PLY, OFF and 3MF by readers of its own, other kinds by the Assimp library. Polygons
// are not triangulated. Windings and normals are converted to those of the viewport.
#pragma once

#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file.
///
/// Pieces: each mesh of a node becomes one piece for each palette colour and opacity of its parts, in the
/// order of the file. Its name is that of the mesh, or of the node if the mesh has none. Its parents are the
/// names of the nodes above it. Skinned meshes are shown in the rest pose of their bones. Animations, morph
/// targets, cameras and lights are ignored.
///
/// Lines are kept as lines. A point is drawn as a cross of three strokes, each 0.5 % of the model's diagonal
/// long. The vertices of a file without faces and lines are drawn as points.
///
/// Colours: a face has the mean of its vertices' colours, or the mean of its texture near the middle of the
/// face, times the base colour. The nearest colour of the palette is used. A material without another colour
/// has that of its emission. Opacities are those of the materials.
///
/// Categories: each material that has faces becomes a category with the material's name. Categories are
/// numbered from 0 in the order of the file's materials.
///
/// Axes: if the format defines the up axis, the model is rotated so that z is up: glTF, Collada, FBX, 3DS,
/// ASE, X3D, X, AC, LWO, MD2, MD3, MDC, MD5, MDL, HMP, IQM and MS3D. IFC models end up with their own z axis
/// up. Other formats, among them OBJ, STL, PLY, OFF and 3MF, are not rotated.
///
/// Unit: metres for glTF, Collada, X3D and IFC; the unit that the file states for FBX and 3MF; unknown for
/// other formats. The library reads coordinates in single precision.
///
/// Companion files, such as material libraries and textures of OBJ files, are found as `FindCompanion` says.
///
/// Left out and counted: parts that refer to missing vertices, parts with coordinates that are not finite,
/// polygons that cross themselves so that they enclose no area, missing textures and material libraries,
/// points beyond `kMaxPoints`. Faces whose corners lie on one line are not visible and not counted.
///
/// The title is the file's name without folders.
///
/// Throws FileError if the file is missing, empty, truncated, damaged, of an unknown kind or has nothing to
/// show.
[[nodiscard]] Model ImportMesh(const std::string& path, const ProgressFunction& progress = {});

} // namespace viewer
