// Bodies of common shapes: boxes, prisms, solids of revolution. Lengths are in model units.
#pragma once

#include "platform/modeler/body_builder.h"

#include <vector>

namespace AModeler
{

/// The box between two corners. Throws BodyError unless `min` is below `max` on every axis.
[[nodiscard]] KARV_PLATFORM_API Body MakeBox(const AcGePoint3d& min, const AcGePoint3d& max);

/// A flat profile: an outline and, after it, its holes, each in either direction.
using Profile = std::vector<std::vector<AcGePoint3d>>;

/// The solid that a profile sweeps when it moves by `direction`, which must leave its plane. Its length is
/// the prism's. Caps that are concave or have holes are split into convex faces. Throws BodyError for a
/// profile that encloses no area or, where its caps have to be split, crosses itself, for a direction along
/// its plane, and for numbers that are not finite.
[[nodiscard]] KARV_PLATFORM_API Body MakePrism(const Profile& profile, const AcGeVector3d& direction);

/// A point of a profile that is turned about an axis.
struct ProfilePoint {
    double radius = 0.0; ///< 0 on the axis
    double height = 0.0; ///< along the axis
};

/// The solid that a closed profile sweeps in a full turn about the z axis, made of `segments` flat steps. A
/// profile point on the axis becomes one point of the solid. Edges between neighbouring steps are not
/// physical, edges along the circles are. Throws BodyError for under three points or steps, a negative
/// radius, a profile that encloses no area or crosses itself, and numbers that are not finite.
[[nodiscard]] KARV_PLATFORM_API Body MakeRevolution(const std::vector<ProfilePoint>& profile, int segments);

} // namespace AModeler
