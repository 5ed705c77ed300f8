#include "viewer/import/dxf/extrusion_frame.h"

#include <cmath>

namespace viewer
{

Affine FrameOfExtrusion(const Point& direction)
{
    const double length = Length(direction);
    if (length == 0.0)
        return {};
    constexpr double kNearZ = 1.0 / 64.0;
    const Point z = direction * (1.0 / length);
    const bool is_near_z = std::abs(z.x) < kNearZ && std::abs(z.y) < kNearZ;
    const Point side = Cross(is_near_z ? Point{0.0, 1.0, 0.0} : Point{0.0, 0.0, 1.0}, z);
    const Point x = side * (1.0 / Length(side));
    return {x, Cross(z, x), z, {}};
}

} // namespace viewer
