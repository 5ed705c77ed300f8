// The plane of a loop of corners, for the modeler's own sources.
#pragma once

#include "platform/modeler/body.h"

#include <cmath>

namespace AModeler
{

/// How far the corners reach from the first one, along any axis.
template <typename ForEachCorner>
double ReachOfLoop(const ForEachCorner& for_each_corner)
{
    AcGePoint3d origin;
    bool is_first = true;
    double reach = 0.0;
    for_each_corner([&](const AcGePoint3d& corner) {
        if (is_first)
            origin = corner;
        is_first = false;
        const AcGeVector3d arm = corner - origin;
        for (const double length : {arm.x, arm.y, arm.z})
            reach = std::fmax(reach, std::fabs(length));
    });
    return reach;
}

/// The plane by Newell's method, with a unit normal that points to whoever sees the corners run clockwise;
/// the zero plane where they enclose no area. `for_each_corner(visit)` calls `visit(point)` for each corner
/// in order, the same ones each time.
template <typename ForEachCorner>
Plane PlaneOfLoop(const ForEachCorner& for_each_corner)
{
    const double reach = ReachOfLoop(for_each_corner);
    if (!(reach > 0.0) || !std::isfinite(reach))
        return {};
    // From the first corner, so that a small face far from the origin keeps its digits, and at lengths of
    // about 1, so that tiny and huge faces stay within what products can hold.
    AcGePoint3d origin;
    AcGeVector3d before;
    AcGeVector3d sum;
    AcGeVector3d mean;
    int count = 0;
    for_each_corner([&](const AcGePoint3d& corner) {
        if (count++ == 0)
            origin = corner;
        const AcGeVector3d arm = (corner - origin) / reach;
        // The product turns to whoever sees the corners run counter-clockwise.
        sum = sum - before.crossProduct(arm);
        mean = mean + arm;
        before = arm;
    });
    // What rounding leaves of corners in one line is no area.
    constexpr double kNoArea = 1e-14;
    const double length = sum.length();
    if (!(length > kNoArea))
        return {};
    Plane plane;
    plane.normal = sum / length;
    plane.offset = -plane.normal.dotProduct((origin + mean * (reach / count)).asVector());
    return plane;
}

} // namespace AModeler
