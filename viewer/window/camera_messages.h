// Tells which mouse messages move the camera of the control.
#pragma once

#include "platform/winsys/winsys.h"

namespace viewer
{

/// Whether the control moves its camera at this message, or would move it if navigation were on: at a turn of
/// the wheel, and at a mouse move with a button down.
[[nodiscard]] inline bool MovesCamera(UINT message, WPARAM wparam)
{
    constexpr WPARAM kButtons = MK_LBUTTON | MK_MBUTTON | MK_RBUTTON;
    return message == WM_MOUSEWHEEL || (message == WM_MOUSEMOVE && (wparam & kButtons) != 0);
}

} // namespace viewer
