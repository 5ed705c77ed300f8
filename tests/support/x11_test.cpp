#include "tests/support/x11_test.h"

#include "platform/winsys/backend.h"
#include "platform/winsys/opengl.h"

#include <algorithm>
#include <chrono>

#include <poll.h>

namespace karv_test
{
namespace
{

constexpr const wchar_t* kX11ClassName = L"X11Test";

} // namespace

X11Test* X11Test::running_ = nullptr;

X11Test::X11Test()
{
    running_ = this;
    winsys::UseBackend(winsys::MakeX11Backend(SharedXServer().Display()));
    WNDCLASSW window_class{};
    window_class.style = CS_OWNDC;
    window_class.lpfnWndProc = &Procedure;
    window_class.lpszClassName = kX11ClassName;
    RegisterClassW(&window_class);
    // In a corner, so that no test starts under the pointer.
    client_.MovePointer(XServer::kWidth - 1, XServer::kHeight - 1);
}

X11Test::~X11Test()
{
    for (const HGLRC context : contexts_)
        wglDeleteContext(context);
    for (const HWND window : made_)
        DestroyWindow(window);
    PumpArrived();
    UnregisterClassW(kX11ClassName, nullptr);
    winsys::UseBackend(nullptr);
    running_ = nullptr;
}

HWND X11Test::Make(const std::wstring& title, DWORD style, HWND parent, RECT place)
{
    const HWND window = CreateWindowExW(0, kX11ClassName, title.c_str(), style, place.left, place.top,
                                        place.right - place.left, place.bottom - place.top, parent, nullptr,
                                        GetModuleHandleW(nullptr), nullptr);
    made_.push_back(window);
    return window;
}

HWND X11Test::MakeShown(const std::wstring& title, RECT place)
{
    return Make(title, WS_POPUP | WS_VISIBLE, nullptr, place);
}

HWND X11Test::MakeChild(HWND parent, RECT place)
{
    return Make(L"child", WS_CHILD | WS_VISIBLE, parent, place);
}

HWND X11Test::Adopt(XClient::Id id)
{
    made_.push_back(winsys::AdoptForeignWindow(id));
    return made_.back();
}

HGLRC X11Test::MakeCurrentContext(HWND window)
{
    const HDC dc = GetDC(window);
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.nSize = sizeof descriptor;
    descriptor.nVersion = 1;
    descriptor.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    descriptor.cColorBits = 32;
    descriptor.cDepthBits = 16;
    EXPECT_TRUE(SetPixelFormat(dc, ChoosePixelFormat(dc, &descriptor), &descriptor));
    contexts_.push_back(wglCreateContext(dc));
    EXPECT_TRUE(wglMakeCurrent(dc, contexts_.back()));
    return contexts_.back();
}

bool X11Test::Show(HWND window, float red, float green, float blue)
{
    glClearColor(red, green, blue, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    return SwapBuffers(GetDC(window)) != FALSE;
}

XClient::Id X11Test::IdOf(const std::string& title)
{
    const std::vector<XClient::Id> found = client_.FindByName(title);
    EXPECT_EQ(found.size(), 1U) << "windows of the title " << title;
    return found.empty() ? 0 : found.front();
}

XClient::Id X11Test::OnlyChildOf(XClient::Id window)
{
    const std::vector<XClient::Id> children = client_.ChildrenOf(window);
    EXPECT_EQ(children.size(), 1U);
    return children.empty() ? 0 : children.front();
}

void X11Test::PumpArrived()
{
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE && message.message != WM_TIMER)
        DispatchMessageW(&message);
}

bool X11Test::PumpUntil(const std::function<bool()>& condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    constexpr int kTurn = 100;
    while (!condition() && std::chrono::steady_clock::now() < limit) {
        pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
        poll(&descriptor, 1, kTurn);
        PumpArrived();
    }
    return condition();
}

bool X11Test::Eventually(const std::function<bool()>& condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition() && std::chrono::steady_clock::now() < limit) {
    }
    return condition();
}

bool X11Test::IsDescriptorReadable()
{
    pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
    return poll(&descriptor, 1, 0) == 1;
}

std::vector<MSG> X11Test::MessagesOf(UINT message) const
{
    std::vector<MSG> found;
    std::ranges::copy_if(messages_, std::back_inserter(found),
                         [message](const MSG& candidate) { return candidate.message == message; });
    return found;
}

X11Test::Size X11Test::ClientSizeOf(HWND window)
{
    RECT rect{};
    GetClientRect(window, &rect);
    return {rect.right, rect.bottom};
}

LRESULT CALLBACK X11Test::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message != WM_TIMER)
        running_->messages_.push_back({window, message, wparam, lparam, 0, {}});
    return DefWindowProcW(window, message, wparam, lparam);
}

X11ManagedTest::X11ManagedTest()
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    bool is_managing = false;
    while (!is_managing && std::chrono::steady_clock::now() < limit)
        is_managing = IsManaging();
    EXPECT_TRUE(is_managing);
}

HWND X11ManagedTest::MakeManaged()
{
    const HWND window = Make(L"managed", WS_OVERLAPPEDWINDOW, nullptr, {200, 150, 500, 350});
    // Queried while the window manager is not reparenting it.
    managed_id_ = IdOf("managed");
    ShowWindow(window, SW_SHOW);
    EXPECT_TRUE(PumpUntil([&] { return client_.IsSeen(managed_id_) && GetFocus() == window; }));
    return window;
}

bool X11ManagedTest::IsManaging()
{
    constexpr int kPatience = 200;
    const XClient::Id probe = client_.MakeWindow(0, 0, 50, 50, 0, true);
    bool is_framed = false;
    for (int i = 0; i < kPatience && !is_framed; ++i)
        is_framed = client_.ParentOf(probe) != client_.Root() && client_.IsSeen(probe);
    client_.DestroyWindow(probe);
    return is_framed;
}

} // namespace karv_test
