#include "platform/winsys/core/window_lifecycle.h"

#include "platform/winsys/core/layer.h"

#include <algorithm>
#include <utility>

namespace winsys::core
{
namespace
{

bool IsPlacedBySystem(const CREATESTRUCTW& request)
{
    return request.x == CW_USEDEFAULT;
}

POINT PlaceOf(const CREATESTRUCTW& request)
{
    return IsPlacedBySystem(request) ? POINT{} : POINT{request.x, request.y};
}

SIZE NotNegative(SIZE size)
{
    return {std::max<LONG>(size.cx, 0), std::max<LONG>(size.cy, 0)};
}

// The class and parent that a request names are there, and a child names one.
bool IsPossible(const Layer& layer, const CREATESTRUCTW& request)
{
    const bool is_child = (static_cast<DWORD>(request.style) & WS_CHILD) != 0;
    if (request.lpszClass == nullptr || layer.windows.FindClass(request.lpszClass) == nullptr)
        return false;
    return request.hwndParent == nullptr ? !is_child : layer.windows.Find(request.hwndParent) != nullptr;
}

std::unique_ptr<Window> MakeRecord(const Layer& layer, const CREATESTRUCTW& request)
{
    auto window = std::make_unique<Window>();
    window->handle = NewHandle<HWND>();
    window->window_class = layer.windows.FindClass(request.lpszClass);
    window->parent = request.hwndParent;
    window->title = request.lpszName == nullptr ? L"" : request.lpszName;
    // The window is shown as the last step of its creation.
    window->style = static_cast<DWORD>(request.style) & ~WS_VISIBLE;
    window->ex_style = request.dwExStyle;
    window->position = PlaceOf(request);
    window->size = NotNegative({request.cx, request.cy});
    return window;
}

// Forgets the window everywhere.
void Drop(HWND window)
{
    Layer& layer = GetLayer();
    layer.queue.DropWindow(window);
    std::erase_if(layer.device_contexts, [&](const auto& entry) { return entry.second == window; });
    if (layer.focus == window)
        layer.focus = nullptr;
    layer.backend->DestroyNativeWindow(window);
    layer.windows.Remove(window);
}

void SendDestroy(HWND window)
{
    const WindowTree& windows = GetLayer().windows;
    Window* record = windows.Find(window);
    if (record == nullptr || record->stage >= Stage::kDestroySent)
        return;
    record->stage = Stage::kDestroySent;
    Send(window, WM_DESTROY, 0, 0);
    record = windows.Find(window);
    const std::vector<HWND> children = record == nullptr ? std::vector<HWND>{} : record->dependents;
    for (const HWND child : children)
        SendDestroy(child);
}

// The last message of the window after those of its children, and its end.
void Finish(HWND window)
{
    const WindowTree& windows = GetLayer().windows;
    Window* record = windows.Find(window);
    while (record != nullptr && !record->dependents.empty()) {
        Finish(record->dependents.back());
        record = windows.Find(window);
    }
    if (record != nullptr && record->stage != Stage::kNcDestroySent) {
        record->stage = Stage::kNcDestroySent;
        Send(window, WM_NCDESTROY, 0, 0);
    }
    if (windows.Find(window) != nullptr)
        Drop(window);
}

void DestroyOwned(HWND window)
{
    const WindowTree& windows = GetLayer().windows;
    const std::vector<HWND> dependents = windows.Find(window)->dependents;
    for (const HWND dependent : dependents) {
        const Window* record = windows.Find(dependent);
        if (record != nullptr && !record->IsChild())
            Destroy(dependent);
    }
}

// A window that is hidden or destroyed gives the focus to its parent.
void MoveFocusOutOf(HWND window)
{
    const Layer& layer = GetLayer();
    const Window* record = layer.windows.Find(window);
    if (record == nullptr || layer.focus == nullptr || !layer.windows.IsWithin(layer.focus, window))
        return;
    const Window* parent = record->IsChild() ? layer.windows.Find(record->parent) : nullptr;
    const bool usable = parent != nullptr && parent->stage == Stage::kAlive;
    const HWND next = usable ? parent->handle : nullptr;
    layer.backend->FocusNativeWindow(next);
    ChangeFocus(next);
}

// Both with what holds now, which a handler of the message before may have changed.
void SendSize(HWND window)
{
    if (Window* record = GetLayer().windows.Find(window); record != nullptr) {
        record->size_announced = true;
        Send(window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(record->size.cx, record->size.cy));
    }
}

void SendMove(HWND window)
{
    if (const Window* record = GetLayer().windows.Find(window); record != nullptr)
        Send(window, WM_MOVE, 0, MAKELPARAM(record->position.x, record->position.y));
}

// A child or a popup learns its geometry at its creation, another top-level window when it is first shown.
void AnnounceGeometry(HWND window)
{
    SendSize(window);
    SendMove(window);
}

// WM_NCCREATE and WM_CREATE; false where a handler refused or the window is gone.
bool SendCreate(HWND window, const CREATESTRUCTW& request)
{
    const WindowTree& windows = GetLayer().windows;
    CREATESTRUCTW create = request;
    create.x = PlaceOf(request).x;
    create.y = PlaceOf(request).y;
    const auto parameter = reinterpret_cast<LPARAM>(&create);
    if (Send(window, WM_NCCREATE, 0, parameter) == 0) {
        if (windows.Find(window) != nullptr)
            Finish(window);
        return false;
    }
    if (Send(window, WM_CREATE, 0, parameter) == -1) {
        Destroy(window);
        return false;
    }
    return windows.Find(window) != nullptr;
}

// The class of windows that other toolkits own: it does nothing and cannot be named.
std::shared_ptr<const WindowClass> AdoptedClass()
{
    static const auto adopted = [] {
        auto made = std::make_shared<WindowClass>();
        made->record.lpfnWndProc = [](HWND, UINT, WPARAM, LPARAM) -> LRESULT { return 0; };
        made->record.lpszClassName = made->name.c_str();
        return made;
    }();
    return adopted;
}

void InvalidateShown(HWND window)
{
    const WindowTree& windows = GetLayer().windows;
    Invalidate(window, true);
    for (const HWND child : windows.Find(window)->dependents)
        if (windows.Find(child)->IsChild() && windows.Find(child)->IsShown())
            InvalidateShown(child);
}

} // namespace

LRESULT Send(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    const Window* record = GetLayer().windows.Find(window);
    return record == nullptr ? 0 : record->window_class->record.lpfnWndProc(window, message, wparam, lparam);
}

HWND Create(const CREATESTRUCTW& request)
{
    Layer& layer = GetLayer();
    Backend* backend = layer.FindBackend();
    if (backend == nullptr || !IsPossible(layer, request))
        return nullptr;
    const Window& record = layer.windows.Add(MakeRecord(layer, request));
    const HWND window = record.handle;
    const bool is_child = record.IsChild();
    if (!backend->CreateNativeWindow(window,
                                     {is_child ? record.parent : nullptr, record.title, record.position,
                                      record.size, !is_child && IsPlacedBySystem(request)})) {
        layer.windows.Remove(window);
        return nullptr;
    }
    if (!SendCreate(window, request))
        return nullptr;
    if (is_child || (static_cast<DWORD>(request.style) & WS_POPUP) != 0)
        AnnounceGeometry(window);
    if ((static_cast<DWORD>(request.style) & WS_VISIBLE) != 0)
        Show(window, true);
    return layer.windows.Find(window) == nullptr ? nullptr : window;
}

HWND Adopt(std::uintptr_t native_id)
{
    Layer& layer = GetLayer();
    if (const HWND known = layer.windows.FindAdopted(native_id); known != nullptr)
        return known;
    Backend* backend = layer.FindBackend();
    const HWND window = NewHandle<HWND>();
    const auto place = backend == nullptr ? std::nullopt : backend->AdoptNativeWindow(window, native_id);
    if (!place)
        return nullptr;
    auto record = std::make_unique<Window>();
    record->handle = window;
    record->window_class = AdoptedClass();
    record->native_id = native_id;
    record->style = WS_POPUP | WS_VISIBLE;
    record->position = place->position;
    record->size = place->size;
    record->size_announced = true;
    return layer.windows.Add(std::move(record)).handle;
}

bool Destroy(HWND window)
{
    const Layer& layer = GetLayer();
    Window* record = layer.windows.Find(window);
    if (record == nullptr || record->stage != Stage::kAlive)
        return false;
    record->stage = Stage::kDestroying;
    DestroyOwned(window);
    if (record = layer.windows.Find(window); record != nullptr && record->IsShown()) {
        record->style &= ~WS_VISIBLE;
        layer.backend->ShowNativeWindow(window, false);
    }
    MoveFocusOutOf(window);
    SendDestroy(window);
    Finish(window);
    return true;
}

bool Show(HWND window, bool visible)
{
    const Layer& layer = GetLayer();
    Window* record = layer.windows.Find(window);
    const bool was_visible = record != nullptr && record->IsShown();
    if (record == nullptr || record->IsAdopted() || was_visible == visible)
        return was_visible;
    Send(window, WM_SHOWWINDOW, visible ? 1 : 0, 0);
    record = layer.windows.Find(window);
    if (record == nullptr || record->stage != Stage::kAlive)
        return was_visible;
    record->style = visible ? record->style | WS_VISIBLE : record->style & ~WS_VISIBLE;
    layer.backend->ShowNativeWindow(window, visible);
    if (!visible) {
        MoveFocusOutOf(window);
        return was_visible;
    }
    InvalidateShown(window);
    if (!record->size_announced)
        AnnounceGeometry(window);
    return was_visible;
}

bool SetGeometry(HWND window, POINT position, SIZE size, bool repaint)
{
    const WindowTree& windows = GetLayer().windows;
    Window* record = windows.Find(window);
    if (record == nullptr)
        return false;
    const SIZE valid = NotNegative(size);
    const bool moved = position.x != record->position.x || position.y != record->position.y;
    const bool sized = valid.cx != record->size.cx || valid.cy != record->size.cy;
    record->position = position;
    record->size = valid;
    if (sized && repaint)
        Invalidate(window, true);
    if (moved)
        SendMove(window);
    if (sized)
        SendSize(window);
    return true;
}

void ChangeFocus(HWND window)
{
    Layer& layer = GetLayer();
    const HWND before = layer.focus;
    if (before == window)
        return;
    layer.focus = window;
    Send(before, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
    // The handler may have given it to a third window, or destroyed this one.
    if (layer.focus == window)
        Send(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(before), 0);
}

void Invalidate(HWND window, bool erase)
{
    if (Window* record = GetLayer().windows.Find(window); record != nullptr) {
        record->needs_paint = true;
        record->needs_erase = record->needs_erase || erase;
    }
}

void Validate(HWND window)
{
    if (Window* record = GetLayer().windows.Find(window); record != nullptr) {
        record->needs_paint = false;
        record->needs_erase = false;
    }
}

} // namespace winsys::core
