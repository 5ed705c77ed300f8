// Prisms as faces of a model: a flat profile, with holes where it has them, is swept along its normal.
#pragma once

#include "viewer/scene/model.h"

#include <vector>

namespace viewer
{

/// A point in the plane of a profile, in model units.
struct PlanePoint {
    double u = 0.0;
    double v = 0.0;
};

/// The corners of a closed polygon; the last one is joined to the first.
using Outline = std::vector<PlanePoint>;

/// The outline, followed by the outlines of the holes; each may run in either direction.
using Profile = std::vector<Outline>;

/// The plane of a profile in space. All axes are of unit length; `w` is the cross product of `u` and `v`.
struct Frame {
    Point origin;
    Point u;
    Point v;
    Point w;

    [[nodiscard]] Point At(const PlanePoint& point, double height) const
    {
        return origin + u * point.u + v * point.v + w * height;
    }
};

/// Points on an arc about `center`, both ends included, in `steps` equal steps. Angles are in degrees; the
/// arc runs counter-clockwise where `to` is greater than `from`.
[[nodiscard]] Outline Arc(PlanePoint center, double radius, double from, double to, int steps);

/// A regular polygon of `corners` corners on a circle about `center`; the first one lies in the direction of
/// u.
[[nodiscard]] Outline RegularPolygon(PlanePoint center, double radius, int corners);

/// The faces of the closed solid between the heights `from` and `to`, which must differ. Caps that are
/// concave or have holes are split into convex faces. Throws AModeler::BodyError for a profile that encloses
/// no area or crosses itself, and for numbers that are not finite.
[[nodiscard]] std::vector<ModelFace> PrismFaces(const Profile& profile, const Frame& frame, double from,
                                                double to);

} // namespace viewer
