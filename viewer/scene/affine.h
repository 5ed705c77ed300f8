// Affine maps in double precision.
#pragma once

#include "viewer/scene/model.h"

#include <numbers>

namespace viewer
{

/// An angle of this many degrees.
[[nodiscard]] constexpr double Radians(double degrees)
{
    return degrees * std::numbers::pi / 180.0;
}

/// An affine map, stored as the images of the axes and of the origin.
struct Affine {
    Point x{1.0, 0.0, 0.0};
    Point y{0.0, 1.0, 0.0};
    Point z{0.0, 0.0, 1.0};
    Point origin;

    [[nodiscard]] Point Apply(const Point& point) const { return origin + ApplyToVector(point); }
    [[nodiscard]] Point ApplyToVector(const Point& vector) const
    {
        return x * vector.x + y * vector.y + z * vector.z;
    }
    /// Whether the map reverses orientation, so that counter-clockwise corners become clockwise.
    [[nodiscard]] bool Mirrors() const { return Dot(Cross(x, y), z) < 0.0; }
};

/// The map that applies `b` first, then `a`.
[[nodiscard]] Affine operator*(const Affine& a, const Affine& b);

[[nodiscard]] Affine Translation(const Point& by);
[[nodiscard]] Affine Scaling(double x, double y, double z);
/// Counter-clockwise about the z axis, in degrees; exact for quarter turns.
[[nodiscard]] Affine RotationAboutZ(double degrees);

} // namespace viewer
