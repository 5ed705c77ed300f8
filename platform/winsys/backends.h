// What the window layer offers beyond the Win32 names: the choice of a backend, an observer of swapped
// frames, swap counts, windows of other toolkits as parents, and a descriptor for foreign event loops. Used
// by hosts and tests, not by the module. Not available on Windows, where the system itself has the windows.
//
// Everything here is for the thread that owns the windows.
#pragma once

#include "platform/export.h"
#include "platform/winsys/winsys.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace winsys
{

class Backend;

/// Called by `SwapBuffers` just before the swap of a window whose context is current. The complete frame is
/// in the context's default read buffer; `width` and `height` are the client size in pixels. The samples of a
/// multisampled frame are already averaged; reads outside the observer may give jagged edges on some drivers.
/// The observer may read pixels. It must leave the GL state as it found it and must not throw.
using FrameObserver = std::function<void(HWND window, int width, int height)>;

/// Installs the frame observer, one per process; an empty function removes it.
KARV_PLATFORM_API void SetFrameObserver(FrameObserver observer);

/// The number of successful `SwapBuffers` calls on this window since its creation; 0 for a window that does
/// not exist.
[[nodiscard]] KARV_PLATFORM_API unsigned long GetSwapCount(HWND window);

/// Sets the backend of this process. Call it before the first window is created or after the last one is
/// destroyed; while a window exists it throws std::logic_error and changes nothing. Deletes all rendering
/// contexts and the backend before. The layer owns the backend until it is replaced. With null, or without a
/// call, the first window installs the default backend.
KARV_PLATFORM_API void UseBackend(std::unique_ptr<Backend> backend);

/// Makes the backend that needs no display: windows are records, contexts draw to off-screen buffers. Throws
/// std::runtime_error with the reason if there is no off-screen OpenGL.
[[nodiscard]] KARV_PLATFORM_API std::unique_ptr<Backend> MakeHeadlessBackend();

/// Makes the backend for an X server. `display` has the form of the variable DISPLAY; empty means that
/// variable's value. Windows are X windows and contexts are GLX contexts; the formats are those of the server
/// whose visual has depth 24. Errors that the server reports become faults of the tools library and have no
/// other effect. A lost connection is reported once; its windows remain as records that cannot be drawn on,
/// and the process continues. Throws std::runtime_error with the reason if no server answers or it has no
/// GLX.
[[nodiscard]] KARV_PLATFORM_API std::unique_ptr<Backend> MakeX11Backend(const std::string& display = {});

/// Makes the backend that is used if none was chosen: x11 if the display named by DISPLAY answers, otherwise
/// headless. Throws as `MakeHeadlessBackend` does.
[[nodiscard]] KARV_PLATFORM_API std::unique_ptr<Backend> MakeDefaultBackend();

/// The name of the backend in use, "headless" for example. Installs the default backend if there is none.
[[nodiscard]] KARV_PLATFORM_API std::string BackendName();

/// Returns the layer's handle for a window of another toolkit, to be used as the parent of windows made here;
/// `id` is its X id. The same id gives the same handle as long as the handle lives. The other toolkit owns
/// the window and must have flushed its creation to the server. The handle and its children end with the
/// window. `DestroyWindow` on the handle destroys the children and leaves the window alone; calls that would
/// show, move or title it fail. Null if there is no such window or the backend has no native windows.
[[nodiscard]] KARV_PLATFORM_API HWND AdoptForeignWindow(std::uintptr_t id);

/// Returns a descriptor that is readable whenever a message may be waiting: posted, due from a timer, or
/// arriving from the display. An event loop of another toolkit waits on it, then dispatches messages until
/// `PeekMessageW` finds none or one timer message was handled. The layer owns it: never read or close it. -1
/// if it cannot be created.
[[nodiscard]] KARV_PLATFORM_API int GetMessageDescriptor();

} // namespace winsys
