// The style of the viewport's window classes.
#pragma once

#include "platform/winsys/winsys.h"

namespace karv
{

/// Windows are redrawn completely on every change of size and have a device context of their own, which lives
/// as long as the window.
inline constexpr UINT kWindowClassStyle = CS_VREDRAW | CS_HREDRAW | CS_OWNDC;

} // namespace karv
