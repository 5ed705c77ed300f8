#include "platform/winsys/core/layer.h"

#include "platform/winsys/core/window_lifecycle.h"

#include <exception>

namespace winsys::core
{

Backend& Layer::InstalledBackend()
{
    if (backend == nullptr)
        backend = MakeDefaultBackend();
    return *backend;
}

Backend* Layer::FindBackend() noexcept
{
    try {
        return &InstalledBackend();
    } catch (const std::exception&) {
        return nullptr;
    }
}

Layer& GetLayer()
{
    // Never destroyed: at the end of the process the graphics driver's own clean-up may have come first.
    static Layer& layer = *new Layer;
    return layer;
}

DescriptorUpdate::~DescriptorUpdate()
{
    const Layer& layer = GetLayer();
    if (layer.descriptor != nullptr) {
        const int backend_descriptor = layer.backend == nullptr ? -1 : layer.backend->EventDescriptor();
        layer.descriptor->Update(layer.queue.HasMessage(), layer.queue.NextDue({}), backend_descriptor);
    }
}

void NativeEvents::OnResize(HWND window, SIZE size)
{
    if (const Window* record = GetLayer().windows.Find(window); record != nullptr)
        SetGeometry(window, record->position, size, true);
}

void NativeEvents::OnMove(HWND window, POINT position)
{
    if (const Window* record = GetLayer().windows.Find(window); record != nullptr)
        SetGeometry(window, position, record->size, true);
}

void NativeEvents::OnClose(HWND window)
{
    if (GetLayer().windows.Find(window) != nullptr)
        GetLayer().queue.Post(window, WM_CLOSE, 0, 0);
}

void NativeEvents::OnExpose(HWND window)
{
    Invalidate(window, false);
}

void NativeEvents::OnMouse(HWND window, const MouseEvent& event)
{
    Layer& layer = GetLayer();
    const Window* record = layer.windows.Find(window);
    const POINT at = event.position;
    if (record == nullptr || at.x < 0 || at.y < 0 || at.x >= record->size.cx || at.y >= record->size.cy)
        return;
    const POINT origin = layer.windows.ScreenOrigin(*record);
    const POINT on_screen{origin.x + at.x, origin.y + at.y};
    layer.queue.SetPointer(on_screen);
    if (event.message == WM_MOUSEWHEEL) {
        layer.queue.Post(window, WM_MOUSEWHEEL, MAKEWPARAM(static_cast<int>(event.keys), event.wheel_delta),
                         MAKELPARAM(on_screen.x, on_screen.y));
    } else {
        layer.queue.Post(window, event.message, event.keys, MAKELPARAM(at.x, at.y));
    }
}

void NativeEvents::OnKey(HWND window, UINT message, WPARAM code)
{
    constexpr LPARAM kOneRepeat = 1;
    Layer& layer = GetLayer();
    const HWND target = layer.focus == nullptr ? window : layer.focus;
    if (layer.windows.Find(target) != nullptr)
        layer.queue.Post(target, message, code, kOneRepeat);
}

void NativeEvents::OnFocus(HWND window, bool gained)
{
    const Layer& layer = GetLayer();
    const bool inside = layer.focus != nullptr && layer.windows.IsWithin(layer.focus, window);
    if (gained != inside && layer.windows.Find(window) != nullptr)
        ChangeFocus(gained ? window : nullptr);
}

void NativeEvents::OnDestroyed(HWND window)
{
    Destroy(window);
}

void PumpNativeEvents()
{
    if (const Layer& layer = GetLayer(); layer.backend != nullptr) {
        NativeEvents sink;
        layer.backend->PumpEvents(sink);
    }
}

} // namespace winsys::core
