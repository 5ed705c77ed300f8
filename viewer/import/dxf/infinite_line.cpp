#include "viewer/import/dxf/infinite_line.h"

#include <algorithm>
#include <array>
#include <limits>

namespace viewer
{

namespace
{

struct Slab {
    double base;
    double direction;
    double low;
    double high;
};

} // namespace

std::optional<Segment> ClippedTo(const Box& box, const DxfInfiniteLine& line, const Affine& place)
{
    const Point base = place.Apply(line.base);
    const Point vector = place.ApplyToVector(line.direction);
    const double length = Length(vector);
    if (!(length > 0.0) || !IsFinite(vector) || box.IsEmpty())
        return std::nullopt;
    const Point direction = vector * (1.0 / length);
    double from = line.is_ray ? 0.0 : -std::numeric_limits<double>::infinity();
    double to = std::numeric_limits<double>::infinity();
    for (const Slab& slab : std::array{Slab{base.x, direction.x, box.min.x, box.max.x},
                                       Slab{base.y, direction.y, box.min.y, box.max.y},
                                       Slab{base.z, direction.z, box.min.z, box.max.z}}) {
        if (slab.direction == 0.0 && (slab.base < slab.low || slab.base > slab.high))
            return std::nullopt;
        if (slab.direction == 0.0)
            continue;
        const double at_low = (slab.low - slab.base) / slab.direction;
        const double at_high = (slab.high - slab.base) / slab.direction;
        from = std::max(from, std::min(at_low, at_high));
        to = std::min(to, std::max(at_low, at_high));
    }
    if (!(from < to))
        return std::nullopt;
    return Segment{base + direction * from, base + direction * to};
}

} // namespace viewer
