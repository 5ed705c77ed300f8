#include "tests/platform/winsys_contract.h"

#include "platform/winsys/backend.h"
#include "tests/support/scripted_backend.h"
#include "tests/support/x_server.h"

#include <algorithm>
#include <map>
#include <utility>

#include <poll.h>

namespace karv_test
{
namespace
{

constexpr const wchar_t* kClassName = L"Recorded";

std::string Narrow(const wchar_t* text)
{
    std::string narrow;
    for (; *text != L'\0'; ++text) {
        narrow += static_cast<char>(*text);
    }
    return narrow;
}

} // namespace

std::string MessageName(UINT message)
{
    static const std::map<UINT, std::string> names{
        {WM_NULL, "WM_NULL"},
        {WM_CREATE, "WM_CREATE"},
        {WM_DESTROY, "WM_DESTROY"},
        {WM_MOVE, "WM_MOVE"},
        {WM_SIZE, "WM_SIZE"},
        {WM_SETFOCUS, "WM_SETFOCUS"},
        {WM_KILLFOCUS, "WM_KILLFOCUS"},
        {WM_PAINT, "WM_PAINT"},
        {WM_CLOSE, "WM_CLOSE"},
        {WM_QUIT, "WM_QUIT"},
        {WM_ERASEBKGND, "WM_ERASEBKGND"},
        {WM_SHOWWINDOW, "WM_SHOWWINDOW"},
        {WM_NCCREATE, "WM_NCCREATE"},
        {WM_NCDESTROY, "WM_NCDESTROY"},
        {WM_KEYDOWN, "WM_KEYDOWN"},
        {WM_KEYUP, "WM_KEYUP"},
        {WM_CHAR, "WM_CHAR"},
        {WM_TIMER, "WM_TIMER"},
        {WM_MOUSEMOVE, "WM_MOUSEMOVE"},
        {WM_LBUTTONDOWN, "WM_LBUTTONDOWN"},
        {WM_MOUSEWHEEL, "WM_MOUSEWHEEL"},
        {WM_USER, "WM_USER"},
    };
    const auto found = names.find(message);
    return found == names.end() ? std::to_string(message) : found->second;
}

void InstallBackend(const std::string& name)
{
    if (name == "scripted") {
        ScriptedBackend::Install();
    } else if (name == "x11") {
        winsys::UseBackend(winsys::MakeX11Backend(SharedXServer().Display()));
    } else {
        winsys::UseBackend(winsys::MakeHeadlessBackend());
    }
}

WinsysContract* WinsysContract::running_ = nullptr;

WinsysContract::WinsysContract()
{
    running_ = this;
    InstallBackend(GetParam());
    WNDCLASSW window_class{};
    window_class.style = CS_OWNDC;
    window_class.lpfnWndProc = &Procedure;
    window_class.lpszClassName = kClassName;
    RegisterClassW(&window_class);
}

WinsysContract::~WinsysContract()
{
    handler_ = nullptr;
    for (const HWND window : made_) {
        DestroyWindow(window);
    }
    UnregisterClassW(kClassName, nullptr);
    winsys::SetFrameObserver(nullptr);
    running_ = nullptr;
    while (Take().message != WM_NULL) {
    }
}

HWND WinsysContract::Make(const std::wstring& name, DWORD style, HWND parent, int width, int height)
{
    const HWND window = CreateWindowExW(0, kClassName, name.c_str(), style, 10, 20, width, height, parent,
                                        nullptr, GetModuleHandleW(nullptr), nullptr);
    made_.push_back(window);
    return window;
}

HWND WinsysContract::MakeShown(const std::wstring& name)
{
    const HWND window = Make(name);
    ShowWindow(window, SW_SHOW);
    ValidateRect(window, nullptr);
    TakeMessages();
    return window;
}

HDC WinsysContract::PrepareDc(HWND window)
{
    const HDC dc = GetDC(window);
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.nSize = sizeof descriptor;
    descriptor.nVersion = 1;
    descriptor.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    descriptor.cColorBits = 32;
    descriptor.cDepthBits = 16;
    SetPixelFormat(dc, ChoosePixelFormat(dc, &descriptor), &descriptor);
    return dc;
}

std::vector<std::string> WinsysContract::TakeMessages()
{
    return std::exchange(messages_, {});
}

int WinsysContract::Pump(int limit)
{
    int count = 0;
    MSG message{};
    while (count < limit && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        DispatchMessageW(&message);
        ++count;
    }
    return count;
}

bool WinsysContract::PumpUntil(const std::function<bool()>& condition, int limit)
{
    MSG message{};
    for (int i = 0; i < limit && !condition(); ++i) {
        if (GetMessageW(&message, nullptr, 0, 0) <= 0) {
            break;
        }
        DispatchMessageW(&message);
    }
    return condition();
}

MSG WinsysContract::Take(HWND window, UINT first, UINT last)
{
    MSG message{};
    const BOOL found = PeekMessageW(&message, window, first, last, PM_REMOVE);
    return found != FALSE ? message : MSG{};
}

bool WinsysContract::IsDescriptorReadable()
{
    pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
    return poll(&descriptor, 1, 0) == 1;
}

bool WinsysContract::WaitForDescriptor()
{
    constexpr int kMinute = 60'000;
    pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
    return poll(&descriptor, 1, kMinute) == 1;
}

LRESULT CALLBACK WinsysContract::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_NCCREATE) {
        running_->names_.emplace_back(window, Narrow(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpszName));
    }
    const auto named = std::ranges::find(running_->names_, window, &std::pair<HWND, std::string>::first);
    running_->messages_.push_back(named->second + ' ' + MessageName(message));
    if (running_->handler_) {
        if (const auto answer = running_->handler_(window, message, wparam, lparam)) {
            return *answer;
        }
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

} // namespace karv_test
