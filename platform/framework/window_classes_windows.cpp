// The end of karv_platform in a process that continues: no class and no window keeps its procedure.
#include "platform/framework/window_classes.h"

#include "platform/framework/window.h"

namespace
{

/// Whether the window exists, and belongs to a class that still has the procedure of this library. A window's
/// handle may have been used again.
bool HasOwnClass(HWND window)
{
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    return process == ::GetCurrentProcessId() &&
           ::GetClassLongPtrW(window, GCLP_WNDPROC) == reinterpret_cast<ULONG_PTR>(&AfxWndProc);
}

/// Gives windows that still exist the system's default handling. A module may keep a window on purpose.
void ReleaseWindows()
{
    const auto system_procedure = reinterpret_cast<LONG_PTR>(&::DefWindowProcW);
    const auto& windows = TheWindowClasses().windows;
    for (const HWND window : windows)
        if (HasOwnClass(window))
            ::SetWindowLongPtrW(window, GWLP_WNDPROC, system_procedure);
    // Any window of a class gives access to the class.
    for (const HWND window : windows)
        if (HasOwnClass(window))
            ::SetClassLongPtrW(window, GCLP_WNDPROC, system_procedure);
}

/// Unregisters the classes that have no windows.
void UnregisterClasses()
{
    const HINSTANCE instance = ::GetModuleHandleW(nullptr);
    for (const std::wstring& name : TheWindowClasses().names) {
        WNDCLASSW registered{};
        if (::GetClassInfoW(instance, name.c_str(), &registered) != FALSE &&
            registered.lpfnWndProc == &AfxWndProc)
            ::UnregisterClassW(name.c_str(), instance);
    }
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID reserved)
{
    // At the end of a process, when `reserved` is not null, the system destroys windows and classes without
    // their procedures.
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr) {
        ReleaseWindows();
        UnregisterClasses();
    }
    return TRUE;
}
