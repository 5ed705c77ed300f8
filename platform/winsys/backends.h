// What a process may ask of the window layer beyond the Win32 names, where the layer and not the system
// provides those: which backend serves it, frames as they are swapped, swap counts, and the descriptor that a
// foreign event loop waits on. Hosts and tests use it; the module does not. Windows has none of it.
//
// All of it belongs to the thread that owns the windows.
#pragma once

#include "platform/winsys/winsys.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace winsys
{

class Backend;

/// Called by `SwapBuffers` just before the swap of a window whose context is current, with the frame
/// complete in the context's default read buffer; `width` and `height` are the client size in pixels. The
/// samples of a multisampled frame are already averaged: reading outside the observer may give unblended
/// edges on some drivers. The observer may read pixels; it must leave GL state as it found it and must not
/// throw.
using FrameObserver = std::function<void(HWND window, int width, int height)>;

/// Installs the one frame observer of the process; an empty function removes it.
KARV_PLATFORM_API void SetFrameObserver(FrameObserver observer);

/// How often `SwapBuffers` succeeded on this window since it was created; 0 for no window.
[[nodiscard]] KARV_PLATFORM_API unsigned long GetSwapCount(HWND window);

/// Chooses the backend that serves this process. Must come before the first window, or after the last
/// one is gone; a call while a window exists throws std::logic_error and changes nothing. The backend is
/// owned by the layer until it is replaced. Without a call, the first window installs the default one.
KARV_PLATFORM_API void UseBackend(std::unique_ptr<Backend> backend);

/// The backend without a display: windows are records, contexts draw to off-screen buffers.
/// Throws std::runtime_error with the reason where no off-screen OpenGL can be had.
[[nodiscard]] KARV_PLATFORM_API std::unique_ptr<Backend> MakeHeadlessBackend();

/// The backend over an X server: `display` names it as the variable DISPLAY does, which an empty one means.
/// Windows are X windows and contexts are GLX contexts, of the server's formats with a visual of depth 24.
/// Errors that the server reports go to the tools library as faults and change nothing else; a lost
/// connection is reported once, its windows stay as records on which nothing can be drawn any more, and the
/// process goes on. Throws std::runtime_error with the reason where no server answers, or none with GLX.
[[nodiscard]] KARV_PLATFORM_API std::unique_ptr<Backend> MakeX11Backend(const std::string& display = {});

/// The backend that serves where none was chosen: x11 where the display that DISPLAY names answers, else
/// headless. Throws as `MakeHeadlessBackend` does.
[[nodiscard]] KARV_PLATFORM_API std::unique_ptr<Backend> MakeDefaultBackend();

/// The name of the backend in use, "headless" for example; installs the default one where none is.
[[nodiscard]] KARV_PLATFORM_API std::string BackendName();

/// The layer's handle for a window of another toolkit, to be the parent of windows made here: the same one
/// for the same id as long as the handle lives. The other toolkit owns the window and must have flushed its
/// creation to the server. The handle ends when that window does, and its children with it; `DestroyWindow`
/// on the handle destroys the children and leaves the other toolkit's window alone. Calls that would show,
/// move or title it fail. Null where there is no such window, or where the backend has no native ones. `id`
/// is the window's X id.
[[nodiscard]] KARV_PLATFORM_API HWND AdoptForeignWindow(std::uintptr_t id);

/// A descriptor that is readable whenever a message may wait: posted, due from a timer, or arriving from
/// the display. For event loops of other toolkits, which then dispatch messages until `PeekMessageW` finds
/// none or one timer message was handled. Owned by the layer, never to be read or closed. -1 where none
/// exists.
[[nodiscard]] KARV_PLATFORM_API int GetMessageDescriptor();

} // namespace winsys
