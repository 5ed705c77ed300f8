// STEP, IGES and BREP files, read by the Open CASCADE library into the host's own model: flat faces stay
// polygons, curved ones are faceted. How the library reads and meshes is known next door.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file, its kind by its ending (`BrepKindOf`). Each solid of each instance in an assembly becomes a
/// piece whose faces close, where the solid itself does; so does each shell outside of solids, and what is
/// left of a part: its loose faces in one piece for each colour, its loose edges in another, as lines. Loose
/// points are left out, and so is what the file hides.
///
/// Lengths of STEP and IGES files are millimetres, whatever unit the file states: it is converted. BREP files
/// have no unit. The axes are the file's.
///
/// A flat face is one convex polygon with all its corners, or several that fill it; corners of facets of
/// neighbouring faces are the same. Facets and segments lie within the deflection of their surface or curve,
/// as nearly as the library meshes (it takes 1e-7 for a smaller one), and no segment turns by more than
/// `kFacetAngle` from the last. `Piece::edges` are the file's own edges without
/// the seams at which a closed surface meets itself smoothly and those of no length.
///
/// A piece has the colour of its instance; without one, the colour that most of its area has, by its faces,
/// itself, its part and the assemblies around it, the nearest first; without any, grey. Its name is that of
/// the instance, or else of the part; where the bodies of a part have names, the part is one of its parents.
///
/// Categories are the products on the first level of the assembly that has several, with their names; in a
/// file without such a level, the colours.
///
/// Throws FileError where the file is missing, empty, truncated, damaged or without geometry, or holds
/// coordinates that are not finite. The library writes nothing to the terminal. Only one thread may be in
/// here at a time.
[[nodiscard]] Model ImportBrep(const std::string& path, const ImportOptions& options,
                               const ProgressFunction& progress = {});

/// In degrees: a full circle has 24 segments at least.
inline constexpr double kFacetAngle = 15.0;

} // namespace viewer
