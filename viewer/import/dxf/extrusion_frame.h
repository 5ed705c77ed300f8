// The object coordinate system of an entity with an extrusion direction.
#pragma once

#include "viewer/scene/affine.h"

namespace viewer
{

/// The frame of an entity with this extrusion direction, which becomes its z axis. The frame's x axis lies in
/// the plane z = 0, or along y cross z if the direction is within 1/64 of the z axis. A direction of length 0
/// means the z axis.
[[nodiscard]] Affine FrameOfExtrusion(const Point& direction);

} // namespace viewer
