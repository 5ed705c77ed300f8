// Reads STEP, IGES and BREP files by the Open CASCADE library. Flat faces become convex polygons, curved
// faces become facets.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file; its extension gives its kind (`BrepKindOf`).
///
/// Pieces: each solid of each instance in an assembly becomes one piece, and so does each shell outside of
/// solids. If its faces have several colours, there is a piece for each. The loose faces of a part become one
/// piece for each colour, and its loose edges become pieces of lines in the same way. Loose points become
/// crosses of three lines, half a percent of the model's diagonal long, or one unit if the model is one
/// point. If a solid is closed, the faces of its pieces close together (`Piece::closes_with_others`). Loose
/// faces of IGES files are sewn first. Tessellated geometry and curves of annotations in STEP files become
/// pieces of their own.
///
/// Hidden and unbounded parts, parts without geometry, missing files and faces without a mesh are counted in
/// `Model::left_out`.
///
/// Unit: STEP and IGES files are converted to millimetres. BREP files have no unit. The axes are not changed.
///
/// Faces: a flat face becomes one convex polygon with all its corners, or several that fill it. Neighbouring
/// faces share the corners along their common edge. Facets and segments lie within the deflection of their
/// surface or curve, as far as the library's mesher keeps it; its minimum deflection is 1e-7. Two consecutive
/// segments differ in direction by at most `kFacetAngle`. `Piece::edges` are the edges of the file, without
/// edges of length 0 and without smooth seams, where a closed surface meets itself.
///
/// Colour of a face: the first one that is set of the instance, the face, the body, the part and the
/// assemblies around it, innermost first. Grey if none is set. An edge belongs to the piece of its first face.
/// Name: that of the instance, or else of the part. If a body has a name, the part's name is one of its
/// parents.
///
/// Categories: the products on the first level of the assembly that has several of them, with their names. In
/// a file without such a level, one category for each colour.
///
/// Throws FileError if the file is missing, empty, truncated, damaged or without geometry, or if a coordinate
/// is not finite. The library writes nothing to the terminal meanwhile. Not thread-safe: one call at a time.
[[nodiscard]] Model ImportBrep(const std::string& path, const ImportOptions& options,
                               const ProgressFunction& progress = {});

/// The maximum angle between consecutive segments, in degrees: a full circle has at least 12 segments. It
/// only keeps small shapes recognisable; large ones are cut by the deflection.
inline constexpr double kFacetAngle = 30.0;

} // namespace viewer
