// Converts point records to points of the host's geometry library, for calculations in double precision.
#pragma once

#include "geometry/KARVGLVertex.h"
#include "platform/host/ge/geometry.h"

namespace karv
{

/// The same point in double precision. The conversion is exact.
inline AcGePoint3d Widened(const KARVGLVertex& vertex)
{
    return {static_cast<double>(vertex.x), static_cast<double>(vertex.y), static_cast<double>(vertex.z)};
}

} // namespace karv
