// The style that the window classes of the viewport share.
#pragma once

#include "platform/winsys/winsys.h"

namespace karv
{

/// Redrawn whole on every change of size, with a device context of its own that lives as long as the window.
inline constexpr UINT kWindowClassStyle = CS_VREDRAW | CS_HREDRAW | CS_OWNDC;

} // namespace karv
