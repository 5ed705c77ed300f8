// Where things of a drawing stand: affine maps in double precision, and the frame that an entity's extrusion
// direction stands for.
#pragma once

#include "viewer/scene/model.h"

namespace viewer
{

/// An affine map, by the pictures of the three axes and of the origin.
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
    /// Whether it turns a right hand into a left one.
    [[nodiscard]] bool Mirrors() const { return Dot(Cross(x, y), z) < 0.0; }
};

/// First `b`, then `a`.
[[nodiscard]] Affine operator*(const Affine& a, const Affine& b);

[[nodiscard]] Affine Translation(const Point& by);
[[nodiscard]] Affine Scaling(double x, double y, double z);
/// Counter-clockwise about the z axis, in degrees; exact for quarter turns.
[[nodiscard]] Affine RotationAboutZ(double degrees);

/// The frame of an entity with this extrusion direction, which becomes its z axis: its x axis lies in the
/// plane z = 0, or along y cross z where the direction is within 1/64 of the z axis. A direction of no
/// length stands for the z axis.
[[nodiscard]] Affine FrameOfExtrusion(const Point& direction);

} // namespace viewer
