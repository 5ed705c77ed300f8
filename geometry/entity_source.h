// The places that fault reports of the entity name: one file, whichever of the class's sources the operation
// stands in, and lines that no two of them share.
#pragma once

#include "module/guard.h"

namespace karv
{

inline constexpr FaultPlace kEntitySource{L".\\KARVGraphicalEntity.cpp"};
inline constexpr FaultPlace kEntityDrawingSource{kEntitySource.file, 1000};
inline constexpr FaultPlace kEntityTessellationSource{kEntitySource.file, 2000};
inline constexpr FaultPlace kEntityBodySource{kEntitySource.file, 3000};

} // namespace karv
