// Cuts faces into parts that a fan of triangles fills, so that neither the modeler nor the viewport has to.
#pragma once

#include "viewer/scene/model.h"

#include <cstddef>
#include <string_view>

namespace viewer
{

/// The maximum number of corners of a part.
inline constexpr std::size_t kMaxPartCorners = 64;
/// The kinds of faces that `FillFaces` leaves out.
inline constexpr std::string_view kCrossingFace = "face that crosses itself";
inline constexpr std::string_view kLargeFace = "concave face of too many corners";

/// Replaces faces that are concave, that cross themselves or that have more than `kMaxPartCorners` corners by
/// convex parts. Each part but the first continues the one before it, and is filled by the triangles from its
/// first corner to its others. Other faces stay as they are. The parts have the normal of the face, and
/// exactly its corners, so that a face that does not cross itself still meets its neighbors. A face that
/// crosses itself is filled where a ray crosses its outline an odd number of times.
///
/// A face with more than a thousand crossings is removed and counted as left out. So is a concave one of more
/// than 20000 corners, or of more work than `kMaxFillWork` (a few seconds), and those beyond the budget of
/// the model, ten times that (less than a minute). Memory is proportional to the number of corners.
void FillFaces(Model& model);

} // namespace viewer
