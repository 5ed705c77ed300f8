// Single-precision records as points of the host's geometry, for calculations in double precision.
#pragma once

#include "geometry/KARVGLVertex.h"
#include "platform/host/ge/geometry.h"

namespace karv
{

/// The same point in double precision; the conversion is exact.
inline AcGePoint3d Widened(const KARVGLVertex& vertex)
{
    return {static_cast<double>(vertex.x), static_cast<double>(vertex.y), static_cast<double>(vertex.z)};
}

} // namespace karv
