// Fills flat loops with triangles, by the GLU tessellator. Neither faces nor drawings are known here.
#pragma once

#include <array>
#include <compare>
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

/// The numbers of three corners, counter-clockwise.
using FlatTriangle = std::array<std::size_t, 3>;

/// A corner where edges cross.
struct AddedCorner {
    FlatPoint point;
    /// The two to four corners that it is interpolated from, and their weights above or equal to 0, whose sum
    /// is above 0. They can be added corners of lower numbers.
    std::size_t count = 0;
    std::array<std::size_t, 4> from{};
    std::array<double, 4> weights{};
};

enum class FillResult {
    Filled,
    Crossing, ///< too many edges cross or overlap
    TooLarge, ///< too much work, or a coordinate is not finite
};

/// Corners are numbered through all loops in their order; the numbers of added corners follow.
struct PolygonFill {
    FillResult result = FillResult::Filled;
    std::vector<FlatTriangle> triangles; ///< empty unless filled
    std::vector<AddedCorner> added;
};

/// The maximum work for one call of `FillLoops`, at most a few seconds.
inline constexpr std::size_t kMaxFillWork = 100'000'000;

/// Fills all points that lie inside an odd number of loops. Throws std::bad_alloc.
///
/// `work` is reduced by an estimate of the steps. Loops that need more than it, or more than `kMaxFillWork`,
/// are not filled. The estimate of an outline is the number of its corners, times that of the corners where
/// it turns back in x, times a factor of 1 to 21 that grows with the number of corners. Crossings and further
/// loops add to it in the same way, and each pair of edges that a sweep along x compares adds 1. A step takes
/// at most about 5e-8 seconds.
///
/// Loops with more than `max_crossings` pairs of edges that cross or overlap are not filled; by default the
/// limit is 4 for each corner and 1000 more. Memory is proportional to the number of corners and crossings.
[[nodiscard]] PolygonFill FillLoops(const std::vector<FlatLoop>& loops, std::size_t& work,
                                    std::optional<std::size_t> max_crossings = {});

/// Whether the point lies inside the loop. Points of the outline can be either.
[[nodiscard]] bool IsInside(const FlatPoint& point, const FlatLoop& loop);

} // namespace viewer
