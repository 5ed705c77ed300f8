// The places that fault reports of the camera name: one file, whichever of the class's sources the operation
// stands in, and lines that no two of them share.
#pragma once

#include "module/guard.h"

namespace karv
{

inline constexpr FaultPlace kCameraSource{L".\\KARVGLCamera.cpp"};
inline constexpr FaultPlace kCameraMotionSource{kCameraSource.file, 1000};

} // namespace karv
