#include "platform/framework/window.h"
#include "platform/framework/window_classes.h"

#include <cstdint>
#include <string>

namespace
{

template <typename Handle>
std::wstring HandleText(Handle handle)
{
    return L":" + std::to_wstring(reinterpret_cast<std::uintptr_t>(handle));
}

} // namespace

LPCWSTR AfxRegisterWndClass(UINT style, HCURSOR cursor, HBRUSH brush, HICON icon)
{
    const std::wstring first_name =
        L"Afx:" + std::to_wstring(style) + HandleText(cursor) + HandleText(brush) + HandleText(icon);
    WNDCLASSW wanted{};
    wanted.style = style;
    wanted.lpfnWndProc = &AfxWndProc;
    wanted.hInstance = ::GetModuleHandleW(nullptr);
    wanted.hIcon = icon;
    wanted.hCursor = cursor;
    wanted.hbrBackground = brush;
    std::wstring name = first_name;
    for (int number = 1;; ++number) {
        wanted.lpszClassName = TheWindowClasses().names.insert(name).first->c_str();
        WNDCLASSW registered{};
        if (!::GetClassInfoW(wanted.hInstance, wanted.lpszClassName, &registered))
            return ::RegisterClassW(&wanted) != 0 ? wanted.lpszClassName : nullptr;
        if (registered.lpfnWndProc == wanted.lpfnWndProc)
            return wanted.lpszClassName;
        // The other procedure may belong to a copy of this library that is no longer loaded.
        name = first_name + L":" + std::to_wstring(number);
    }
}
