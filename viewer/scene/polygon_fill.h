// Fills flat loops with triangles. It knows nothing of drawings.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace viewer
{

struct FlatPoint {
    double x = 0.0;
    double y = 0.0;

    auto operator<=>(const FlatPoint&) const = default;
};

/// A closed outline; an edge runs from its last point to its first.
using FlatLoop = std::vector<FlatPoint>;
using FlatTriangle = std::array<FlatPoint, 3>;

/// Triangles of all points that lie inside an odd number of loops, counter-clockwise. Corners are points of the
/// loops, except where edges of loops intersect. Coordinates must be finite.
///
/// No value if the box of the loops is too large for a double, or if the loops intersect so often, or are so many, that filling would take more than `work` steps;
/// the steps that were taken are subtracted from it.
[[nodiscard]] std::optional<std::vector<FlatTriangle>> FillLoops(const std::vector<FlatLoop>& loops,
                                                                 std::size_t& work);

/// Whether the point lies inside the loop. Points of the outline can be either.
[[nodiscard]] bool IsInside(const FlatPoint& point, const FlatLoop& loop);

} // namespace viewer
