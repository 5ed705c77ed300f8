#include "platform/winsys/core/window_lifecycle.h"

#include "platform/winsys/core/process_state.h"

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

/// Whether the class and the parent of a request exist; a child needs a parent.
bool IsPossible(const ProcessState& state, const CREATESTRUCTW& request)
{
    const bool is_child = (static_cast<DWORD>(request.style) & WS_CHILD) != 0;
    if (request.lpszClass == nullptr || state.windows.FindClass(request.lpszClass) == nullptr)
        return false;
    return request.hwndParent != nullptr ? state.windows.Find(request.hwndParent) != nullptr : !is_child;
}

/// The icon of the window's class; null where it has none.
const IconImage* IconOf(const ProcessState& state, const Window& window)
{
    const auto found = state.icons.find(window.window_class->record.hIcon);
    return found != state.icons.end() ? &found->second : nullptr;
}

std::unique_ptr<Window> MakeRecord(const ProcessState& state, const CREATESTRUCTW& request)
{
    auto window = std::make_unique<Window>();
    window->handle = NewHandle<HWND>();
    window->window_class = state.windows.FindClass(request.lpszClass);
    window->parent = request.hwndParent;
    window->title = request.lpszName != nullptr ? request.lpszName : L"";
    // Showing the window is the last step of its creation.
    window->style = static_cast<DWORD>(request.style) & ~WS_VISIBLE;
    window->ex_style = request.dwExStyle;
    window->position = PlaceOf(request);
    window->size = NotNegative({request.cx, request.cy});
    return window;
}

/// Removes the window from all state and destroys its native window.
void ForgetEverywhere(HWND window)
{
    ProcessState& state = GetProcessState();
    state.queue.DropWindow(window);
    std::erase_if(state.device_contexts, [&](const auto& entry) { return entry.second == window; });
    if (state.focus == window)
        state.focus = nullptr;
    state.backend->DestroyNativeWindow(window);
    state.windows.Remove(window);
}

void SendDestroy(HWND window)
{
    const WindowTree& windows = GetProcessState().windows;
    Window* record = windows.Find(window);
    if (record == nullptr || record->stage >= Stage::DestroySent)
        return;
    record->stage = Stage::DestroySent;
    Send(window, WM_DESTROY, 0, 0);
    record = windows.Find(window);
    const std::vector<HWND> children = record != nullptr ? record->dependents : std::vector<HWND>{};
    for (const HWND child : children)
        SendDestroy(child);
}

/// Sends WM_NCDESTROY to the window after its children, and removes it.
void FinishDestruction(HWND window)
{
    const WindowTree& windows = GetProcessState().windows;
    Window* record = windows.Find(window);
    while (record != nullptr && !record->dependents.empty()) {
        FinishDestruction(record->dependents.back());
        record = windows.Find(window);
    }
    if (record != nullptr && record->stage != Stage::NcDestroySent) {
        record->stage = Stage::NcDestroySent;
        Send(window, WM_NCDESTROY, 0, 0);
    }
    if (windows.Find(window) != nullptr)
        ForgetEverywhere(window);
}

void DestroyOwned(HWND window)
{
    const WindowTree& windows = GetProcessState().windows;
    const std::vector<HWND> dependents = windows.Find(window)->dependents;
    for (const HWND dependent : dependents) {
        const Window* record = windows.Find(dependent);
        if (record != nullptr && !record->IsChild())
            Destroy(dependent);
    }
}

/// Moves the focus from a window that is hidden or destroyed to its parent.
void MoveFocusOutOf(HWND window)
{
    const ProcessState& state = GetProcessState();
    const Window* record = state.windows.Find(window);
    if (record == nullptr || state.focus == nullptr || !state.windows.IsWithin(state.focus, window))
        return;
    const Window* parent = record->IsChild() ? state.windows.Find(record->parent) : nullptr;
    const bool usable = parent != nullptr && parent->stage == Stage::Alive;
    const HWND next = usable ? parent->handle : nullptr;
    state.backend->FocusNativeWindow(next);
    ChangeFocus(next);
}

void SendSize(HWND window)
{
    if (Window* record = GetProcessState().windows.Find(window); record != nullptr) {
        record->size_announced = true;
        Send(window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(record->size.cx, record->size.cy));
    }
}

void SendMove(HWND window)
{
    if (const Window* record = GetProcessState().windows.Find(window); record != nullptr)
        Send(window, WM_MOVE, 0, MAKELPARAM(record->position.x, record->position.y));
}

/// Sends WM_SIZE and WM_MOVE with the current geometry, which a handler may have changed meanwhile. A child
/// or popup gets them at its creation, another top-level window when it is first shown.
void AnnounceGeometry(HWND window)
{
    SendSize(window);
    SendMove(window);
}

/// Sends WM_NCCREATE and WM_CREATE; false if a handler refused or destroyed the window.
bool SendCreate(HWND window, const CREATESTRUCTW& request)
{
    const WindowTree& windows = GetProcessState().windows;
    CREATESTRUCTW create = request;
    create.x = PlaceOf(request).x;
    create.y = PlaceOf(request).y;
    const auto parameter = reinterpret_cast<LPARAM>(&create);
    if (Send(window, WM_NCCREATE, 0, parameter) == 0) {
        if (windows.Find(window) != nullptr)
            FinishDestruction(window);
        return false;
    }
    if (Send(window, WM_CREATE, 0, parameter) == -1) {
        Destroy(window);
        return false;
    }
    return windows.Find(window) != nullptr;
}

/// The class of windows of other toolkits: it has no name and handles nothing.
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

/// Invalidates the window and all its shown children.
void InvalidateShown(HWND window)
{
    const WindowTree& windows = GetProcessState().windows;
    Invalidate(window, true);
    for (const HWND child : windows.Find(window)->dependents)
        if (windows.Find(child)->IsChild() && windows.Find(child)->IsShown())
            InvalidateShown(child);
}

} // namespace

LRESULT Send(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    const Window* record = GetProcessState().windows.Find(window);
    return record != nullptr ? record->window_class->record.lpfnWndProc(window, message, wparam, lparam) : 0;
}

HWND Create(const CREATESTRUCTW& request)
{
    ProcessState& state = GetProcessState();
    Backend* backend = state.FindBackend();
    if (backend == nullptr || !IsPossible(state, request))
        return nullptr;
    const Window& record = state.windows.Add(MakeRecord(state, request));
    const HWND window = record.handle;
    const bool is_child = record.IsChild();
    if (!backend->CreateNativeWindow(
            window, {is_child ? record.parent : nullptr, record.title, record.position, record.size,
                     !is_child && IsPlacedBySystem(request), is_child ? nullptr : IconOf(state, record)})) {
        state.windows.Remove(window);
        return nullptr;
    }
    if (!SendCreate(window, request))
        return nullptr;
    if (is_child || (static_cast<DWORD>(request.style) & WS_POPUP) != 0)
        AnnounceGeometry(window);
    if ((static_cast<DWORD>(request.style) & WS_VISIBLE) != 0)
        Show(window, true);
    return state.windows.Find(window) != nullptr ? window : nullptr;
}

HWND Adopt(std::uintptr_t native_id)
{
    ProcessState& state = GetProcessState();
    if (const HWND known = state.windows.FindAdopted(native_id); known != nullptr)
        return known;
    Backend* backend = state.FindBackend();
    const HWND window = NewHandle<HWND>();
    const auto place = backend != nullptr ? backend->AdoptNativeWindow(window, native_id) : std::nullopt;
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
    return state.windows.Add(std::move(record)).handle;
}

bool Destroy(HWND window)
{
    const ProcessState& state = GetProcessState();
    Window* record = state.windows.Find(window);
    if (record == nullptr || record->stage != Stage::Alive)
        return false;
    record->stage = Stage::Destroying;
    DestroyOwned(window);
    if (record = state.windows.Find(window); record != nullptr && record->IsShown()) {
        record->style &= ~WS_VISIBLE;
        state.backend->ShowNativeWindow(window, false);
    }
    MoveFocusOutOf(window);
    SendDestroy(window);
    FinishDestruction(window);
    return true;
}

bool Show(HWND window, bool visible)
{
    const ProcessState& state = GetProcessState();
    Window* record = state.windows.Find(window);
    const bool was_visible = record != nullptr && record->IsShown();
    if (record == nullptr || record->IsAdopted() || was_visible == visible)
        return was_visible;
    Send(window, WM_SHOWWINDOW, visible ? 1 : 0, 0);
    record = state.windows.Find(window);
    if (record == nullptr || record->stage != Stage::Alive)
        return was_visible;
    record->style = visible ? record->style | WS_VISIBLE : record->style & ~WS_VISIBLE;
    state.backend->ShowNativeWindow(window, visible);
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
    const WindowTree& windows = GetProcessState().windows;
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
    ProcessState& state = GetProcessState();
    const HWND before = state.focus;
    if (before == window)
        return;
    state.focus = window;
    Send(before, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
    // The handler may have given the focus to a third window, or destroyed this one.
    if (state.focus == window)
        Send(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(before), 0);
}

void Invalidate(HWND window, bool erase)
{
    if (Window* record = GetProcessState().windows.Find(window); record != nullptr) {
        record->needs_paint = true;
        record->needs_erase = record->needs_erase || erase;
    }
}

void Validate(HWND window)
{
    if (Window* record = GetProcessState().windows.Find(window); record != nullptr) {
        record->needs_paint = false;
        record->needs_erase = false;
    }
}

} // namespace winsys::core
