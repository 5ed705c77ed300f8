#include "viewer/import/dxf/point_mark.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace viewer
{

double MarkSize(const DxfPointStyle& style, const Box& box)
{
    constexpr double kMaxSize = 1e70; // its fourth power is finite
    if (style.size > 0.0)
        return std::min(style.size, kMaxSize);
    constexpr double kDefaultPercent = 5.0;
    const double percent = style.size < 0.0 ? -style.size : kDefaultPercent;
    double height = box.IsEmpty() ? 0.0 : box.max.y - box.min.y;
    if (!(height > 0.0))
        height = box.IsEmpty() ? 0.0 : box.Diagonal();
    if (!(height > 0.0))
        height = 1.0;
    constexpr double kMaxPercent = 100.0;
    return height * std::min(percent, kMaxPercent) / 100.0;
}

void AppendPoint(const DxfPoint& point, const Affine& place, int mode, double size, double dot_length,
                 double tolerance, std::vector<Segment>& lines)
{
    constexpr int kCircle = 32;
    constexpr int kSquare = 64;
    constexpr int kStyle = 7;
    // A block's scale does not change the size of a mark.
    const Point center = place.Apply(point.frame.origin);
    const auto axis = [&](const Point& direction) {
        const Point placed = place.ApplyToVector(direction);
        const double length = Length(placed);
        return length > 0.0 ? placed * (1.0 / length) : direction;
    };
    const Point x = axis(point.frame.x);
    const Point y = axis(point.frame.y);
    const auto at = [&](double right, double up) { return center + x * right + y * up; };
    const double half = size / 2.0;
    switch (mode & kStyle) {
    case 0:
        for (const Point& half_dot : {x * (dot_length / 2.0), y * (dot_length / 2.0)})
            AppendSegment(center - half_dot, center + half_dot, lines);
        break;
    case 2:
        AppendSegment(at(-size, 0.0), at(size, 0.0), lines);
        AppendSegment(at(0.0, -size), at(0.0, size), lines);
        break;
    case 3:
        AppendSegment(at(-size, -size), at(size, size), lines);
        AppendSegment(at(-size, size), at(size, -size), lines);
        break;
    case 4:
        AppendSegment(center, at(0.0, half), lines);
        break;
    default:
        break;
    }
    if ((mode & kCircle) != 0)
        CutArc({center, x * half, y * half, 0.0, kFullTurn}, tolerance, lines);
    if ((mode & kSquare) != 0) {
        const std::array corners{at(-half, -half), at(half, -half), at(half, half), at(-half, half)};
        for (std::size_t i = 0; i < corners.size(); ++i)
            AppendSegment(corners.at(i), corners.at((i + 1) % corners.size()), lines);
    }
    if (point.by != Point{})
        AppendSegment(center, place.Apply(point.frame.origin + point.by), lines);
}

} // namespace viewer
