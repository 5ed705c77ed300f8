// The places that fault reports of the control name: one file, whichever of the class's sources the operation
// stands in, and lines that no two of them share.
#pragma once

#include "module/guard.h"

namespace karv
{

inline constexpr FaultPlace kControlSource{L".\\KARVOpenGLControl.cpp"};
inline constexpr FaultPlace kGlContextSource{kControlSource.file, 1000};
inline constexpr FaultPlace kFrameLoopSource{kControlSource.file, 2000};
inline constexpr FaultPlace kGeometryFeedSource{kControlSource.file, 3000};
inline constexpr FaultPlace kExtentsSource{kControlSource.file, 4000};
inline constexpr FaultPlace kMouseNavigationSource{kControlSource.file, 5000};
inline constexpr FaultPlace kCameraCommandsSource{kControlSource.file, 6000};

} // namespace karv
