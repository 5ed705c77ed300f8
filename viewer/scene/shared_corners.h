// The corners of a piece's faces as numbers of points. Corners at exactly the same coordinates share a point.
#pragma once

#include "viewer/scene/model.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

namespace viewer
{

/// Positive and negative zero are the same coordinate.
struct PointHash {
    std::size_t operator()(const Point& point) const;
};

/// The numbers of a piece's points, in the order in which its faces reach them.
class SharedCorners
{
  public:
    explicit SharedCorners(const Piece& piece);

    [[nodiscard]] const std::vector<Point>& Points() const { return points_; }
    /// The corners of a face. Valid as long as this object.
    [[nodiscard]] std::span<const int> Of(std::size_t face) const
    {
        return std::span(corners_).subspan(ends_[face], ends_[face + 1] - ends_[face]);
    }
    [[nodiscard]] std::size_t FaceCount() const { return ends_.size() - 1; }
    /// The number of the point with these coordinates; -1 if it is no corner.
    [[nodiscard]] int Find(const Point& point) const;

  private:
    std::vector<Point> points_;
    std::vector<int> corners_;      ///< of all faces, one after the other
    std::vector<std::size_t> ends_; ///< where the corners of each face end, after a 0
    std::unordered_map<Point, int, PointHash> numbers_;
};

/// The same number for an edge between two points in both directions.
[[nodiscard]] std::uint64_t EdgeKey(int a, int b);

/// Calls `visit(from, to)` for each edge of the outline.
void ForEachEdge(std::span<const int> outline, const auto& visit)
{
    for (std::size_t i = 0; i < outline.size(); ++i)
        visit(outline[i], outline[i + 1 < outline.size() ? i + 1 : 0]);
}

} // namespace viewer
