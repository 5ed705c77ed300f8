// The state of the window layer, one per process: backend, windows, messages, device and rendering contexts.
// The exported Win32 functions are thin wrappers over it and the files beside it.
#pragma once

#include "platform/winsys/backend.h"
#include "platform/winsys/backends.h"
#include "platform/winsys/core/message_queue.h"
#include "platform/winsys/core/wait_descriptor.h"
#include "platform/winsys/core/window_tree.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace winsys::core
{

/// Belongs to the thread that owns the windows.
struct ProcessState {
    std::unique_ptr<Backend> backend;
    WindowTree windows;
    MessageQueue queue{windows};
    HWND focus = nullptr;

    std::map<HICON, IconImage> icons;
    /// The window of each device context; null for one of the whole screen.
    std::map<HDC, HWND> device_contexts;
    /// The pixel format of each rendering context.
    std::map<HGLRC, int> rendering_contexts;
    HGLRC current_context = nullptr;
    HDC current_dc = nullptr;
    /// The last answer of wglGetExtensionsStringARB; callers keep the pointer to it.
    std::string extensions;

    FrameObserver frame_observer;
    /// Created on the first request; most programs never wait outside GetMessageW.
    std::unique_ptr<WaitDescriptor> descriptor;

    /// Returns the backend. Installs the default one if there is none; throws as `MakeDefaultBackend` does.
    Backend& InstalledBackend();
    /// The same without exceptions: null if no backend can be made.
    Backend* FindBackend() noexcept;
};

[[nodiscard]] ProcessState& GetProcessState();

/// Updates the descriptor for foreign loops at the end of its scope. Every exported function that changes
/// which messages are waiting has one.
class DescriptorUpdate
{
  public:
    DescriptorUpdate() = default;
    DescriptorUpdate(const DescriptorUpdate&) = delete;
    DescriptorUpdate& operator=(const DescriptorUpdate&) = delete;
    ~DescriptorUpdate();
};

} // namespace winsys::core
