// Solids from flat outlines: a cross-section, given as tiles without holes, is pushed along a direction.
#pragma once

#include "viewer/scene/model.h"

#include <vector>

namespace viewer
{

/// A point of a cross-section.
struct PlanePoint {
    double u = 0.0;
    double v = 0.0;

    bool operator==(const PlanePoint&) const = default;
};

using Outline = std::vector<PlanePoint>;

/// Where a cross-section lies: `w` is the cross product of `u` and `v`, all of unit length.
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

/// Points on an arc about `center`, both ends included, in `steps` equal steps; angles in degrees,
/// counter-clockwise where `to` is above `from`.
[[nodiscard]] Outline Arc(PlanePoint center, double radius, double from, double to, int steps);

/// The tiles of a ring, one quadrilateral for each of its `steps`.
[[nodiscard]] std::vector<Outline> RingTiles(PlanePoint center, double inner, double outer, int steps);

/// The closed solid between the heights `from` and `to` (`from` below `to`) over tiles that run
/// counter-clockwise and meet in whole edges with exactly equal end points. Tiles may be concave; a hole is
/// made by tiles around it. Walls stand on the edges that belong to one tile only.
[[nodiscard]] std::vector<ModelFace> Extrude(const std::vector<Outline>& tiles, const Frame& frame,
                                             double from, double to);

} // namespace viewer
