#include "platform/winsys/core/native_events.h"

#include "platform/winsys/core/process_state.h"
#include "platform/winsys/core/window_lifecycle.h"

namespace winsys::core
{
namespace
{

/// Turns a backend's reports into messages and changes of the window records.
class NativeEventSink final : public EventSink
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

void NativeEventSink::OnResize(HWND window, SIZE size)
{
    if (const Window* record = GetProcessState().windows.Find(window); record != nullptr)
        SetGeometry(window, record->position, size, true);
}

void NativeEventSink::OnMove(HWND window, POINT position)
{
    if (const Window* record = GetProcessState().windows.Find(window); record != nullptr)
        SetGeometry(window, position, record->size, true);
}

void NativeEventSink::OnClose(HWND window)
{
    if (GetProcessState().windows.Find(window) != nullptr)
        GetProcessState().queue.Post(window, WM_CLOSE, 0, 0);
}

void NativeEventSink::OnExpose(HWND window)
{
    Invalidate(window, false);
}

void NativeEventSink::OnMouse(HWND window, const MouseEvent& event)
{
    ProcessState& state = GetProcessState();
    const Window* record = state.windows.Find(window);
    const POINT at = event.position;
    if (record == nullptr || at.x < 0 || at.y < 0 || at.x >= record->size.cx || at.y >= record->size.cy)
        return;
    const POINT origin = state.windows.ScreenOrigin(*record);
    const POINT on_screen{origin.x + at.x, origin.y + at.y};
    state.queue.SetPointer(on_screen);
    if (event.message == WM_MOUSEWHEEL) {
        state.queue.Post(window, WM_MOUSEWHEEL, MAKEWPARAM(static_cast<int>(event.keys), event.wheel_delta),
                         MAKELPARAM(on_screen.x, on_screen.y));
    } else {
        state.queue.Post(window, event.message, event.keys, MAKELPARAM(at.x, at.y));
    }
}

void NativeEventSink::OnKey(HWND window, UINT message, WPARAM code)
{
    constexpr LPARAM kOneRepeat = 1;
    ProcessState& state = GetProcessState();
    const HWND target = state.focus != nullptr ? state.focus : window;
    if (state.windows.Find(target) != nullptr)
        state.queue.Post(target, message, code, kOneRepeat);
}

void NativeEventSink::OnFocus(HWND window, bool gained)
{
    const ProcessState& state = GetProcessState();
    const bool inside = state.focus != nullptr && state.windows.IsWithin(state.focus, window);
    if (gained != inside && state.windows.Find(window) != nullptr)
        ChangeFocus(gained ? window : nullptr);
}

void NativeEventSink::OnDestroyed(HWND window)
{
    Destroy(window);
}

} // namespace

void PumpNativeEvents()
{
    if (const ProcessState& state = GetProcessState(); state.backend != nullptr) {
        NativeEventSink sink;
        state.backend->PumpEvents(sink);
    }
}

} // namespace winsys::core
