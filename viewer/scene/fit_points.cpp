#include "viewer/scene/fit_points.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <tuple>

namespace viewer
{

namespace
{

/// The visible pieces of a model.
class VisiblePieces
{
  public:
    VisiblePieces(const Model& model, const std::set<int>& hidden)
    {
        for (const Piece& piece : model.pieces)
            if (!hidden.contains(piece.category))
                pieces_.push_back(&piece);
    }

    /// The number of corners of faces and ends of lines.
    [[nodiscard]] std::size_t PointCount() const
    {
        std::size_t count = 0;
        for (const Piece* piece : pieces_) {
            for (const ModelFace& face : piece->faces)
                count += face.corners.size();
            count += 2 * piece->lines.size();
        }
        return count;
    }

    /// Calls `visit` for each corner of a face and each end of a line that is finite.
    template <typename Visit>
    void ForEachPoint(const Visit& visit) const
    {
        const auto visit_finite = [&](const Point& point) {
            if (IsFinite(point))
                visit(point);
        };
        for (const Piece* piece : pieces_) {
            for (const ModelFace& face : piece->faces)
                for (const Point& corner : face.corners)
                    visit_finite(corner);
            for (const Segment& line : piece->lines) {
                visit_finite(line.from);
                visit_finite(line.to);
            }
        }
    }

    /// The point with the greatest value.
    template <typename Value>
    [[nodiscard]] Point Greatest(const Value& value) const
    {
        Point greatest;
        double most = -std::numeric_limits<double>::infinity();
        ForEachPoint([&](const Point& point) {
            const double here = value(point);
            if (here > most) {
                greatest = point;
                most = here;
            }
        });
        return greatest;
    }

  private:
    std::vector<const Piece*> pieces_;
};

/// A frame of a set of points. The axes are unit vectors: along the greatest extent, along the greatest
/// extent perpendicular to it, and perpendicular to both. An axis is zero if there is no such extent.
struct Frame {
    Point origin;
    Point length;
    Point width;
    Point thickness;
};

Point Unit(const Point& vector)
{
    const double length = Length(vector);
    return length > 0.0 ? vector * (1.0 / length) : Point{};
}

double Square(const Point& vector)
{
    return Dot(vector, vector);
}

Frame FrameOf(const VisiblePieces& pieces)
{
    const Point first = pieces.Greatest([](const Point& point) { return point.x; });
    const Point second = pieces.Greatest([&](const Point& point) { return Square(point - first); });
    const Point length = Unit(second - first);
    const auto across = [&](const Point& point) {
        const Point offset = point - first;
        return offset - length * Dot(offset, length);
    };
    const Point third = pieces.Greatest([&](const Point& point) { return Square(across(point)); });
    const Point width = Unit(across(third));
    return {first, length, width, Cross(length, width)};
}

/// The lowest and the highest value, with their points.
struct Ends {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    Point lowest;
    Point highest;

    void Add(double value, const Point& point)
    {
        if (value < low) {
            low = value;
            lowest = point;
        }
        if (value > high) {
            high = value;
            highest = point;
        }
    }
    [[nodiscard]] bool IsEmpty() const { return low > high; }
};

/// Divides the values between two ends into a number of equal cells.
class Cells
{
  public:
    Cells(const Ends& ends, std::size_t count)
        : low_(ends.low),
          per_unit_(ends.high > ends.low ? static_cast<double>(count) / (ends.high - ends.low) : 0.0),
          last_(count - 1)
    {
    }
    [[nodiscard]] std::size_t IndexOf(double value) const
    {
        return std::min(static_cast<std::size_t>((value - low_) * per_unit_), last_);
    }

  private:
    double low_;
    double per_unit_;
    std::size_t last_;
};

/// The points at both ends of each column of a grid. Columns run along the thickness of the frame, so every
/// other point lies between two of these points along it, and at most one cell from them in the other
/// directions. The axes of the frame make cells small, also for slanted rods and sheets.
std::vector<Point> EndsOfColumns(const VisiblePieces& pieces)
{
    constexpr std::size_t kColumns = 256;
    const Frame frame = FrameOf(pieces);
    const auto along = [&](const Point& axis, const Point& point) { return Dot(point - frame.origin, axis); };
    Ends length;
    Ends width;
    pieces.ForEachPoint([&](const Point& point) {
        length.Add(along(frame.length, point), point);
        width.Add(along(frame.width, point), point);
    });
    const Cells lengths(length, kColumns);
    const Cells widths(width, kColumns);
    std::vector<Ends> columns(kColumns * kColumns);
    pieces.ForEachPoint([&](const Point& point) {
        const std::size_t column = lengths.IndexOf(along(frame.length, point)) * kColumns +
                                   widths.IndexOf(along(frame.width, point));
        columns[column].Add(along(frame.thickness, point), point);
    });
    std::vector<Point> points{length.lowest, length.highest, width.lowest, width.highest};
    for (const Ends& column : columns)
        if (!column.IsEmpty()) {
            points.push_back(column.lowest);
            points.push_back(column.highest);
        }
    return points;
}

} // namespace

std::vector<Point> FitPoints(const Model& model, const std::set<int>& hidden)
{
    constexpr std::size_t kMaxAll = 20'000;
    const VisiblePieces pieces(model, hidden);
    const std::size_t count = pieces.PointCount();
    if (count > kMaxAll)
        return EndsOfColumns(pieces);
    std::vector<Point> points;
    points.reserve(count);
    pieces.ForEachPoint([&](const Point& point) { points.push_back(point); });
    const auto coordinates = [](const Point& point) { return std::tie(point.x, point.y, point.z); };
    std::ranges::sort(points, {}, coordinates);
    points.erase(std::ranges::unique(points).begin(), points.end());
    return points;
}

} // namespace viewer
