#include "viewer/scene/affine.h"

#include <cmath>
#include <numbers>

namespace viewer
{

Affine operator*(const Affine& a, const Affine& b)
{
    return {a.ApplyToVector(b.x), a.ApplyToVector(b.y), a.ApplyToVector(b.z), a.Apply(b.origin)};
}

Affine Translation(const Point& by)
{
    Affine result;
    result.origin = by;
    return result;
}

Affine Scaling(double x, double y, double z)
{
    return {{x, 0.0, 0.0}, {0.0, y, 0.0}, {0.0, 0.0, z}, {}};
}

Affine RotationAboutZ(double degrees)
{
    // Quarter turns are separated first, so that their sines and cosines are exact.
    const double quarters = std::round(degrees / 90.0);
    const double rest = (degrees - quarters * 90.0) * std::numbers::pi / 180.0;
    const auto quarter = static_cast<int>(std::fmod(quarters, 4.0));
    double c = std::cos(rest);
    double s = std::sin(rest);
    for (int i = 0; i < (quarter + 4) % 4; ++i) {
        const double turned = -s;
        s = c;
        c = turned;
    }
    return {{c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0}, {}};
}

} // namespace viewer
