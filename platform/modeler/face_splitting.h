// Splits faces that a triangle fan would not fill into convex ones. Corners are point numbers.
#pragma once

#include "platform/host/ge/geometry.h"

#include <optional>
#include <span>
#include <vector>

namespace AModeler
{

/// The corners of one loop, in order.
using Outline = std::vector<int>;

/// Whether a fan from the first corner fills the outline: it is convex, with corners in one line allowed, or
/// encloses no area.
[[nodiscard]] bool IsConvex(const Outline& outline, std::span<const AcGePoint3d> points);

/// Convex outlines that together fill the first loop without the holes, which are the other loops. They use
/// the loops' corners only and run in the first loop's direction. None where loops cross, run in wrong
/// directions or enclose no area, and where they touch at points of different numbers.
[[nodiscard]] std::optional<std::vector<Outline>> SplitIntoConvex(const std::vector<Outline>& loops,
                                                                  std::span<const AcGePoint3d> points);

} // namespace AModeler
