// A plane in space.
#pragma once

#include "platform/host/ge/geometry.h"

namespace AModeler
{

/// The plane of all points p with `normal` . p + `offset` = 0.
struct Plane {
    AcGeVector3d normal;
    double offset = 0.0;
};

} // namespace AModeler
