// The plane of a loop of corners. For the modeler's own sources.
#pragma once

#include "platform/modeler/plane.h"

#include <cmath>

namespace AModeler
{

/// The largest distance of a corner from the first one, along any axis.
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

/// The plane by Newell's method. Its unit normal points to the side from which the corners run clockwise.
/// The zero plane where the corners enclose no area. `for_each_corner(visit)` must call `visit(point)` for
/// each corner in order, and for the same corners each time.
template <typename ForEachCorner>
Plane PlaneOfLoop(const ForEachCorner& for_each_corner)
{
    const double reach = ReachOfLoop(for_each_corner);
    if (!(reach > 0.0) || !std::isfinite(reach))
        return {};
    // Relative to the first corner, so that a small face far from the origin keeps its digits, and scaled to
    // about 1, so that the products of tiny and huge faces neither vanish nor overflow.
    AcGePoint3d origin;
    AcGeVector3d before;
    AcGeVector3d sum;
    AcGeVector3d mean;
    int count = 0;
    for_each_corner([&](const AcGePoint3d& corner) {
        if (count++ == 0)
            origin = corner;
        const AcGeVector3d arm = (corner - origin) / reach;
        // Subtracted: the product points to the side from which the corners run counter-clockwise.
        sum = sum - before.crossProduct(arm);
        mean = mean + arm;
        before = arm;
    });
    constexpr double kMinArea = 1e-14; // rounding leaves less than this of corners in one line
    const double length = sum.length();
    if (!(length > kMinArea))
        return {};
    Plane plane;
    plane.normal = sum / length;
    plane.offset = -plane.normal.dotProduct((origin + mean * (reach / count)).asVector());
    return plane;
}

} // namespace AModeler
