// The window layer of the process: its backend, its windows, its messages, its device and rendering contexts,
// in one place. The exported functions are thin over what stands here and in the files beside it.
#pragma once

#include "platform/winsys/backend.h"
#include "platform/winsys/core/message_queue.h"
#include "platform/winsys/core/wait_descriptor.h"
#include "platform/winsys/core/window_tree.h"
#include "platform/winsys/provider.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace winsys::core
{

struct Layer {
    std::unique_ptr<Backend> backend;
    WindowTree windows;
    MessageQueue queue{windows};
    HWND focus = nullptr;

    /// The window of each device context; null for one of the screen.
    std::map<HDC, HWND> device_contexts;
    /// The pixel format of each rendering context.
    std::map<HGLRC, int> rendering_contexts;
    HGLRC current_context = nullptr;
    HDC current_dc = nullptr;
    /// What wglGetExtensionsStringARB answered last; callers keep the pointer.
    std::string extensions;

    FrameObserver frame_observer;
    /// Made when it is first asked for; most programs never wait outside GetMessageW.
    std::unique_ptr<WaitDescriptor> descriptor;

    /// The backend, after installing the default one where none is. Throws as `MakeDefaultBackend` does.
    Backend& InstalledBackend();
    /// The same for functions that cannot throw: null where no backend can be had.
    Backend* FindBackend() noexcept;
};

/// The one layer of the process.
[[nodiscard]] Layer& GetLayer();

/// Stands in every exported function that changes what there is to wait for: when the function ends, the
/// descriptor for foreign loops is told.
class DescriptorUpdate
{
  public:
    DescriptorUpdate() = default;
    DescriptorUpdate(const DescriptorUpdate&) = delete;
    DescriptorUpdate& operator=(const DescriptorUpdate&) = delete;
    ~DescriptorUpdate();
};

/// Reports of a backend, made into messages and changes of the records.
class NativeEvents final : public EventSink
{
  public:
    void OnResize(HWND window, SIZE size) override;
    void OnMove(HWND window, POINT position) override;
    void OnClose(HWND window) override;
    void OnExpose(HWND window) override;
    void OnMouse(HWND window, const MouseEvent& event) override;
    void OnKey(HWND window, UINT message, WPARAM code) override;
    void OnFocus(HWND window, bool gained) override;
    void OnDestroyed(HWND window) override;
};

/// Takes in what has happened to native windows meanwhile.
void PumpNativeEvents();

} // namespace winsys::core
