// The triangles of a flat face, joined into convex polygons: the viewport draws faces as fans, which fill no
// others. It knows nothing of files; corners are numbers, and where they lie is asked for.
#pragma once

#include "viewer/scene/model.h"

#include <array>
#include <functional>
#include <vector>

namespace viewer
{

/// Corners by number, counter-clockwise as seen from the face's outside.
using FacetCorners = std::vector<int>;

/// Convex polygons that together fill the triangles, which lie in one plane with this unit normal, and that
/// have no other corners: a single one where the triangles fill a convex outline. Corners in one line are
/// kept. Edges at which more than two triangles meet stay, and so do those for which `must_stay` holds, asked
/// in either direction. Each triangle has three different corners, and runs counter-clockwise about the
/// normal or has no area.
[[nodiscard]] std::vector<FacetCorners> JoinIntoConvexPolygons(const std::vector<std::array<int, 3>>& triangles,
                                                       const std::function<Point(int)>& point_of,
                                                       const Point& normal,
                                                       const std::function<bool(int, int)>& must_stay);

} // namespace viewer
