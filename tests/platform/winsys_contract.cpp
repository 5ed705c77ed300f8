#include "tests/platform/winsys_contract.h"

#include "platform/winsys/opengl.h"
#include "platform/winsys/wgl_extensions.h"

#include <algorithm>
#include <array>
#include <map>
#include <ranges>
#include <utility>

namespace karv_test
{
namespace
{

constexpr const wchar_t* kClassName = L"Recorded";
constexpr const char* kErasure = "WM_ERASEBKGND";

bool IsFocusMessage(const std::string& name)
{
    return name == "WM_SETFOCUS" || name == "WM_KILLFOCUS";
}

std::string Narrow(const wchar_t* text)
{
    std::string narrow;
    for (; *text != L'\0'; ++text)
        narrow += static_cast<char>(*text);
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
    return found != names.end() ? found->second : std::to_string(message);
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
    for (const HWND window : made_)
        DestroyWindow(window);
    UnregisterClassW(kClassName, nullptr);
    ForgetObservers();
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

std::vector<std::string> WinsysContract::TakeThose(const std::function<bool(const std::string& name)>& pass)
{
    std::vector<std::string> messages = std::exchange(messages_, {});
    std::erase_if(messages, [&](const std::string& line) { return !pass(line.substr(line.find(' ') + 1)); });
    return messages;
}

std::vector<std::string> WinsysContract::TakeMessages()
{
    return TakeThose([](const std::string& name) { return !IsFocusMessage(name) && name != kErasure; });
}

std::vector<std::string> WinsysContract::TakeFocusMessages()
{
    return TakeThose(IsFocusMessage);
}

std::vector<std::string> WinsysContract::TakeErasures()
{
    return TakeThose([](const std::string& name) { return name == kErasure; });
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
        if (GetMessageW(&message, nullptr, 0, 0) <= 0)
            break;
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

LRESULT CALLBACK WinsysContract::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_NCCREATE)
        running_->names_.emplace_back(window, Narrow(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpszName));
    // The last entry: some systems reuse handles.
    const auto named = std::ranges::find(std::views::reverse(running_->names_), window,
                                         &std::pair<HWND, std::string>::first);
    const std::string name = MessageName(message);
    const bool is_known = message >= WM_USER || name.starts_with("WM_");
    if (is_known && named != running_->names_.rend())
        running_->messages_.push_back(named->second + ' ' + name);
    if (running_->handler_) {
        if (const auto answer = running_->handler_(window, message, wparam, lparam))
            return *answer;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

GraphicsContract::~GraphicsContract()
{
    for (const HGLRC context : contexts_)
        wglDeleteContext(context);
}

HGLRC GraphicsContract::MakeContext(HDC dc)
{
    contexts_.push_back(wglCreateContext(dc));
    return contexts_.back();
}

HWND GraphicsContract::MakeDrawable(const std::wstring& name)
{
    const HWND window = MakeShown(name);
    const HDC dc = PrepareDc(window);
    EXPECT_TRUE(wglMakeCurrent(dc, MakeContext(dc)));
    return window;
}

void GraphicsContract::Clear(float red, float green, float blue)
{
    glClearColor(red, green, blue, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
}

int GraphicsContract::Choose(HDC dc, const std::vector<int>& attributes, BOOL* success)
{
    std::vector<int> list = attributes;
    list.insert(list.end(), {0, 0});
    const std::array<float, 2> no_floats{};
    int format = 0;
    UINT count = 0;
    const auto choose = Look<PFNWGLCHOOSEPIXELFORMATARBPROC>("wglChoosePixelFormatARB");
    const BOOL chosen = choose(dc, list.data(), no_floats.data(), 1, &format, &count);
    if (success != nullptr)
        *success = chosen;
    return chosen != FALSE && count == 1 ? format : 0;
}

} // namespace karv_test
