// Outlines of faces that cannot be drawn as fans, turned into such that can. Corners are numbers of points.
#pragma once

#include "platform/host/ge/geometry.h"

#include <optional>
#include <span>
#include <vector>

namespace AModeler
{

/// The corners of one loop, in order.
using Outline = std::vector<int>;

/// Whether a fan from the first corner fills the outline: it is convex, corners in one line allowed, or
/// encloses no area.
[[nodiscard]] bool IsConvex(const Outline& outline, std::span<const AcGePoint3d> points);

/// Convex outlines that together fill the first loop but for the others, and use their corners only, all of
/// the first loop's direction. Nothing where loops cross, run in wrong directions or enclose no area, and
/// where they touch at points of different numbers.
[[nodiscard]] std::optional<std::vector<Outline>> SplitIntoConvex(const std::vector<Outline>& loops,
                                                                  std::span<const AcGePoint3d> points);

/// One outline that takes the holes in along edges that run there and back, short ones where there is a
/// choice. Nothing where `SplitIntoConvex` has nothing.
[[nodiscard]] std::optional<Outline> JoinHoles(const std::vector<Outline>& loops,
                                               std::span<const AcGePoint3d> points);

} // namespace AModeler
