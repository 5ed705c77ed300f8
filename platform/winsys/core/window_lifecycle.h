// Creation, change and destruction of windows: each step sends the messages of Windows in their order and
// calls the backend before them. Message handlers may create and destroy windows, including the one being
// handled, so every step looks its window up again.
#pragma once

#include "platform/winsys/winsys.h"

#include <cstdint>

namespace winsys::core
{

/// Calls the window procedure directly; 0 for a window that no longer exists.
LRESULT Send(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

/// Implements CreateWindowExW. Null if the request is invalid or the backend or a handler refuses it.
HWND Create(const CREATESTRUCTW& request);
/// Returns the handle of a window of another toolkit; null if the backend refuses it.
HWND Adopt(std::uintptr_t native_id);
/// False if the window no longer exists or its destruction has already begun.
bool Destroy(HWND window);
/// Shows or hides the window; returns whether it was shown before.
bool Show(HWND window, bool visible);

/// Records a new position and client size and sends WM_MOVE and WM_SIZE for those that changed. With
/// `repaint`, a new size invalidates the window. False if the window no longer exists.
bool SetGeometry(HWND window, POINT position, SIZE size, bool repaint);

/// Moves the focus with its two messages; null takes it from all windows.
void ChangeFocus(HWND window);

/// Marks the client area as invalid; it is painted once it is visible. `erase`: the background too.
void Invalidate(HWND window, bool erase);
/// Marks the client area as valid.
void Validate(HWND window);

} // namespace winsys::core
