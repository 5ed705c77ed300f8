// Window classes, windows and painting under their Win32 names.
#include "platform/winsys/core/process_state.h"
#include "platform/winsys/core/window_lifecycle.h"

#include <algorithm>

using namespace winsys::core;

namespace
{

Window* Find(HWND window)
{
    return GetProcessState().windows.Find(window);
}

RECT ClientRect(const Window& window)
{
    return {0, 0, window.size.cx, window.size.cy};
}

/// Whether the rectangle overlaps the client area; null is the whole client area.
bool Touches(const RECT* rect, const Window& window)
{
    return rect == nullptr || (std::max<LONG>(rect->left, 0) < std::min(rect->right, window.size.cx) &&
                               std::max<LONG>(rect->top, 0) < std::min(rect->bottom, window.size.cy));
}

/// Whether the rectangle contains the whole client area; null does.
bool Covers(const RECT* rect, const Window& window)
{
    return rect == nullptr || (rect->left <= 0 && rect->top <= 0 && rect->right >= window.size.cx &&
                               rect->bottom >= window.size.cy);
}

/// Copies as much as fits, with a terminating null; returns the number of characters without it.
int CopyText(const std::wstring& from, wchar_t* to, int capacity)
{
    if (to == nullptr || capacity <= 0)
        return 0;
    const std::size_t length = std::min(from.size(), static_cast<std::size_t>(capacity) - 1);
    *std::copy_n(from.begin(), length, to) = L'\0';
    return static_cast<int>(length);
}

} // namespace

ATOM RegisterClassW(const WNDCLASSW* window_class)
{
    return window_class != nullptr ? GetProcessState().windows.RegisterClass(*window_class) : ATOM{0};
}

BOOL UnregisterClassW(LPCWSTR name, HINSTANCE)
{
    return name != nullptr && GetProcessState().windows.UnregisterClass(name) ? TRUE : FALSE;
}

BOOL GetClassInfoW(HINSTANCE, LPCWSTR name, WNDCLASSW* window_class)
{
    const auto found = name != nullptr ? GetProcessState().windows.FindClass(name) : nullptr;
    if (found == nullptr || window_class == nullptr)
        return FALSE;
    *window_class = found->record;
    return TRUE;
}

HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID param)
{
    const DescriptorUpdate update;
    return Create({.lpCreateParams = param,
                   .hInstance = instance,
                   .hMenu = menu,
                   .hwndParent = parent,
                   .cy = height,
                   .cx = width,
                   .y = y,
                   .x = x,
                   .style = static_cast<LONG>(style),
                   .lpszName = window_name,
                   .lpszClass = class_name,
                   .dwExStyle = ex_style});
}

BOOL DestroyWindow(HWND window)
{
    const DescriptorUpdate update;
    return Destroy(window) ? TRUE : FALSE;
}

BOOL IsWindow(HWND window)
{
    return Find(window) != nullptr ? TRUE : FALSE;
}

BOOL IsWindowVisible(HWND window)
{
    const Window* record = Find(window);
    return record != nullptr && GetProcessState().windows.IsVisible(*record) ? TRUE : FALSE;
}

BOOL ShowWindow(HWND window, int command)
{
    const DescriptorUpdate update;
    return Show(window, command != SW_HIDE) ? TRUE : FALSE;
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint)
{
    const DescriptorUpdate update;
    const ProcessState& state = GetProcessState();
    const Window* record = Find(window);
    if (record == nullptr || record->IsAdopted() || record->stage != Stage::Alive)
        return FALSE;
    const POINT position{x, y};
    const SIZE size{std::max(width, 0), std::max(height, 0)};
    state.backend->MoveNativeWindow(window, position, size);
    SetGeometry(window, position, size, repaint != FALSE);
    return TRUE;
}

BOOL GetClientRect(HWND window, RECT* rect)
{
    const Window* record = Find(window);
    if (record == nullptr || rect == nullptr)
        return FALSE;
    *rect = ClientRect(*record);
    return TRUE;
}

BOOL GetWindowRect(HWND window, RECT* rect)
{
    const Window* record = Find(window);
    if (record == nullptr || rect == nullptr)
        return FALSE;
    const POINT origin = GetProcessState().windows.ScreenOrigin(*record);
    *rect = {origin.x, origin.y, origin.x + record->size.cx, origin.y + record->size.cy};
    return TRUE;
}

BOOL ClientToScreen(HWND window, POINT* point)
{
    const Window* record = Find(window);
    if (record == nullptr || point == nullptr)
        return FALSE;
    const POINT origin = GetProcessState().windows.ScreenOrigin(*record);
    *point = {point->x + origin.x, point->y + origin.y};
    return TRUE;
}

BOOL ScreenToClient(HWND window, POINT* point)
{
    const Window* record = Find(window);
    if (record == nullptr || point == nullptr)
        return FALSE;
    const POINT origin = GetProcessState().windows.ScreenOrigin(*record);
    *point = {point->x - origin.x, point->y - origin.y};
    return TRUE;
}

HWND GetParent(HWND window)
{
    const Window* record = Find(window);
    const bool has_parent = record != nullptr && (record->style & (WS_CHILD | WS_POPUP)) != 0;
    return has_parent ? record->parent : nullptr;
}

BOOL SetWindowTextW(HWND window, LPCWSTR text)
{
    Window* record = Find(window);
    if (record == nullptr || record->IsAdopted())
        return FALSE;
    record->title = text != nullptr ? text : L"";
    GetProcessState().backend->SetNativeTitle(window, record->title);
    return TRUE;
}

int GetWindowTextW(HWND window, wchar_t* text, int capacity)
{
    const Window* record = Find(window);
    return record != nullptr ? CopyText(record->title, text, capacity) : 0;
}

int GetClassNameW(HWND window, wchar_t* name, int capacity)
{
    const Window* record = Find(window);
    return record != nullptr ? CopyText(record->window_class->name, name, capacity) : 0;
}

HWND SetFocus(HWND window)
{
    const DescriptorUpdate update;
    const ProcessState& state = GetProcessState();
    const Window* record = Find(window);
    if (window != nullptr && (record == nullptr || record->stage != Stage::Alive))
        return nullptr;
    const HWND before = state.focus;
    if (state.backend != nullptr)
        state.backend->FocusNativeWindow(window);
    ChangeFocus(window);
    return before;
}

HWND GetFocus()
{
    return GetProcessState().focus;
}

LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value)
{
    const DescriptorUpdate update;
    const LONG_PTR before = GetWindowLongPtrW(window, index);
    Window* record = Find(window);
    if (record != nullptr && index == GWLP_USERDATA)
        record->user_data = value;
    else if (record != nullptr && index == GWL_STYLE)
        record->style = static_cast<DWORD>(value);
    return before;
}

LONG_PTR GetWindowLongPtrW(HWND window, int index)
{
    const Window* record = Find(window);
    if (record == nullptr)
        return 0;
    switch (index) {
    case GWLP_USERDATA:
        return record->user_data;
    case GWL_STYLE:
        return static_cast<LONG>(record->style);
    default:
        return 0;
    }
}

HMODULE GetModuleHandleW(LPCWSTR name)
{
    // The handle of the program itself, the only module that can be asked for.
    static const HMODULE program = NewHandle<HMODULE>();
    return name == nullptr ? program : nullptr;
}

HGDIOBJ GetStockObject(int object)
{
    static const HGDIOBJ black_brush = NewHandle<HGDIOBJ>();
    return object == BLACK_BRUSH ? black_brush : nullptr;
}

BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase)
{
    const DescriptorUpdate update;
    const Window* record = Find(window);
    if (record == nullptr)
        return FALSE;
    if (Touches(rect, *record))
        Invalidate(window, erase != FALSE);
    return TRUE;
}

BOOL ValidateRect(HWND window, const RECT* rect)
{
    const DescriptorUpdate update;
    const Window* record = Find(window);
    if (record == nullptr)
        return FALSE;
    if (Covers(rect, *record))
        Validate(window);
    return TRUE;
}

BOOL UpdateWindow(HWND window)
{
    const DescriptorUpdate update;
    const Window* record = Find(window);
    if (record == nullptr)
        return FALSE;
    if (GetProcessState().windows.WantsPaint(*record))
        Send(window, WM_PAINT, 0, 0);
    return TRUE;
}

HDC BeginPaint(HWND window, PAINTSTRUCT* paint)
{
    const DescriptorUpdate update;
    Window* record = Find(window);
    if (record == nullptr || paint == nullptr)
        return nullptr;
    const bool erase = record->needs_erase;
    *paint = {.hdc = GetDC(window), .fErase = FALSE, .rcPaint = {}};
    if (record->needs_paint)
        paint->rcPaint = ClientRect(*record);
    Validate(window);
    if (erase) {
        const LRESULT erased = Send(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(paint->hdc), 0);
        paint->fErase = erased == 0 ? TRUE : FALSE;
    }
    return paint->hdc;
}

BOOL EndPaint(HWND window, const PAINTSTRUCT* paint)
{
    if (paint == nullptr)
        return FALSE;
    ReleaseDC(window, paint->hdc);
    return TRUE;
}
