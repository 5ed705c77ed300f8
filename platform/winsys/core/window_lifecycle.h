// Birth, change and death of windows: each step with the messages that Windows sends for it, in its order,
// and the backend told before them. Handlers may create and destroy windows, the one that is being handled
// too: every step looks its window up again.
#pragma once

#include "platform/winsys/winsys.h"

#include <cstdint>

namespace winsys::core
{

/// Calls the window's procedure at once; 0 for a window that is gone.
LRESULT Send(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

/// CreateWindowExW on a filled-in request.
HWND Create(const CREATESTRUCTW& request);
/// The window that stands for a native one of another toolkit; null where the backend refuses it.
HWND Adopt(std::uintptr_t native_id);
/// False where the window is gone already or its destruction has begun.
bool Destroy(HWND window);
/// The window's visibility before.
bool Show(HWND window, bool visible);

/// Notes a new place and client size, and sends WM_MOVE and WM_SIZE for what is new. A new size is painted
/// again, if `repaint`. False where the window is gone.
bool SetGeometry(HWND window, POINT position, SIZE size, bool repaint);

/// Hands the focus over with its two messages; null takes it away.
void ChangeFocus(HWND window);

/// The window's client area wants painting, once it can be seen.
void Invalidate(HWND window, bool erase);
void Validate(HWND window);

} // namespace winsys::core
