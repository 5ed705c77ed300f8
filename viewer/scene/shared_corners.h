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

/// Ignores the sign of zeros, because positive and negative zero are equal.
struct PointHash {
    std::size_t operator()(const Point& point) const;
};

/// Numbers points from 0, in order of their first use. Equal points get the same number.
class PointNumbers
{
  public:
    int NumberOf(const Point& point);
    /// The number of a point that has one; -1 for other points.
    [[nodiscard]] int Find(const Point& point) const;
    [[nodiscard]] const Point& At(int number) const { return points_[static_cast<std::size_t>(number)]; }
    [[nodiscard]] const std::vector<Point>& Points() const { return points_; }

  private:
    std::vector<Point> points_;
    std::unordered_map<Point, int, PointHash> numbers_;
};

/// The corners of a piece's faces, by number.
class SharedCorners
{
  public:
    explicit SharedCorners(const Piece& piece);

    [[nodiscard]] const std::vector<Point>& Points() const { return numbers_.Points(); }
    /// The corners of a face. Valid as long as this object.
    [[nodiscard]] std::span<const int> Of(std::size_t face) const
    {
        return std::span(corners_).subspan(ends_[face], ends_[face + 1] - ends_[face]);
    }
    [[nodiscard]] std::size_t FaceCount() const { return ends_.size() - 1; }
    /// The number of a corner; -1 for other points.
    [[nodiscard]] int Find(const Point& point) const { return numbers_.Find(point); }

  private:
    PointNumbers numbers_;
    std::vector<int> corners_;      ///< of all faces, one after the other
    std::vector<std::size_t> ends_; ///< a 0, then the end of each face's corners
};

/// The key of an edge, the same in both directions: the lower number in the upper 32 bits, the higher one
/// below.
[[nodiscard]] std::uint64_t EdgeKey(int a, int b);

/// Calls `visit(from, to)` for each edge of the outline.
void ForEachEdge(std::span<const int> outline, const auto& visit)
{
    for (std::size_t i = 0; i < outline.size(); ++i)
        visit(outline[i], outline[i + 1 < outline.size() ? i + 1 : 0]);
}

} // namespace viewer
