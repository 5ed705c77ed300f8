// Joins the triangles of a flat face into convex polygons, because the viewport draws faces as fans, which
// fill only convex polygons. Corners are given by number; a function returns their positions.
#pragma once

#include "viewer/scene/model.h"

#include <array>
#include <functional>
#include <vector>

namespace viewer
{

/// Corner numbers, counter-clockwise as seen from outside.
using FacetCorners = std::vector<int>;

/// Joins triangles into convex polygons that fill the same area and have the same corners. Triangles that
/// fill a convex outline become one polygon. Collinear corners are kept. Edges with more than two triangles
/// are kept, and so are edges for which `must_stay(from, to)` is true; it is called in either direction.
///
/// The triangles lie in one plane with the unit normal `normal`. Each has three different corners, and is
/// counter-clockwise about the normal or has no area.
[[nodiscard]] std::vector<FacetCorners>
JoinIntoConvexPolygons(const std::vector<std::array<int, 3>>& triangles,
                       const std::function<Point(int)>& point_of, const Point& normal,
                       const std::function<bool(int, int)>& must_stay);

} // namespace viewer
