// Bodies of common shapes, ready to be shown.
#pragma once

#include "platform/modeler/body_builder.h"

#include <vector>

namespace AModeler
{

/// The box between two corners; the first must be below the second on every axis. Throws BodyError otherwise.
[[nodiscard]] KARV_PLATFORM_API Body MakeBox(const AcGePoint3d& min, const AcGePoint3d& max);

/// A flat profile: an outline and, after it, its holes, each in either direction.
using Profile = std::vector<std::vector<AcGePoint3d>>;

/// The solid that a profile sweeps out along a way that leaves its plane. Caps that are concave or have holes
/// are treated as `splitting` says. Throws BodyError for a profile that encloses no area, or crosses itself
/// where caps have to be split, a way along its plane, and numbers that are not finite.
[[nodiscard]] KARV_PLATFORM_API Body MakePrism(const Profile& profile, const AcGeVector3d& way,
                                               FaceSplitting splitting = FaceSplitting::ConvexFacets);

/// A point of a profile that turns about an axis.
struct TurnedPoint {
    double radius = 0.0; ///< 0 on the axis
    double height = 0.0; ///< along the axis
};

/// The solid that a closed profile sweeps out in a full turn about the z axis, in `segments` flat steps.
/// Points on the axis become one point each. Edges between steps are not physical, those along the circles
/// are. Throws BodyError for under three points or steps, a negative radius, a profile without area or that
/// crosses itself, and numbers that are not finite.
[[nodiscard]] KARV_PLATFORM_API Body MakeRevolution(const std::vector<TurnedPoint>& profile, int segments);

} // namespace AModeler
