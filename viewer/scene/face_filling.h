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
/// convex parts, of which all but the first one continue the one before them. Triangles from the first corner
/// of a face to its others then fill it. Other faces stay as they are. The parts have the normal of the face.
/// Their corners have exactly the coordinates of the face's, so that a face that does not cross itself still
/// meets its neighbors. A face that crosses itself is filled where a ray crosses its outline an odd number of
/// times.
///
/// A face with more than a thousand crossings is removed and counted as left out, and so is a concave one of
/// more than 20000 corners, or where the others have taken half a minute. Memory is proportional to the number
/// of corners.
void FillFaces(Model& model);

} // namespace viewer
