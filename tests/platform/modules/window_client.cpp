// A library that makes windows of the framework, for programs that are not linked to karv_platform.
#include "platform/framework/window.h"

namespace
{

/// Answers WM_USER with its parameter plus one.
class AnsweringWindow : public CWnd
{
  public:
    LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (message == WM_USER)
            return static_cast<LRESULT>(wparam) + 1;
        return CWnd::WindowProc(message, wparam, lparam);
    }
};

} // namespace

/// What an AnsweringWindow, which exists for the call only, answers to WM_USER; -1 if it cannot be made.
extern "C" KARV_EXPORT LRESULT AskWindow(WPARAM parameter)
{
    AnsweringWindow window;
    if (!window.CreateEx(0, AfxRegisterWndClass(CS_OWNDC), L"Answering", WS_POPUP, CRect(0, 0, 10, 10),
                         nullptr, 0))
        return -1;
    return ::SendMessageW(window.m_hWnd, WM_USER, parameter, 0);
}

/// Makes a window of the same class, without an object. It is never destroyed here.
extern "C" KARV_EXPORT HWND LeaveWindow()
{
    return ::CreateWindowExW(0, AfxRegisterWndClass(CS_OWNDC), L"Left", WS_POPUP, 0, 0, 10, 10, nullptr,
                             nullptr, ::GetModuleHandleW(nullptr), nullptr);
}

/// The answer of a window to WM_USER.
extern "C" KARV_EXPORT LRESULT Ask(HWND window, WPARAM parameter)
{
    return ::SendMessageW(window, WM_USER, parameter, 0);
}
