// Windows of the layer as X windows: their appearance to another client, and the events that they get.
#include "platform/winsys/backend.h"
#include "platform/winsys/opengl.h"
#include "tests/support/trace_recording.h"
#include "tests/support/x11_test.h"

#include <array>
#include <cctype>
#include <cerrno>

using testing::ElementsAre;
using testing::IsEmpty;

namespace karv_test
{

using X11Windows = X11Test;

constexpr unsigned kRedOnScreen = 0xFF0000;
constexpr unsigned kGreenPixel = 0x00FF00;

TEST_F(X11Windows, HiddenWindowIsMadeButNotSeen)
{
    Make(L"hidden", WS_OVERLAPPED, nullptr);
    const XClient::Id id = IdOf("hidden");
    EXPECT_TRUE(client_.Exists(id));
    EXPECT_FALSE(client_.IsSeen(id));
}

TEST_F(X11Windows, TopLevelWindowNamesItsProgram)
{
    Make(L"a", WS_OVERLAPPED, nullptr);
    const std::string program = program_invocation_short_name;
    const auto [name, with_capital] = client_.ClassOf(IdOf("a"));
    ASSERT_FALSE(program.empty());
    EXPECT_EQ(name, program);
    EXPECT_EQ(with_capital.substr(1), program.substr(1));
    EXPECT_EQ(with_capital.front(), std::toupper(program.front()));
}

/// Registers a class with this icon and makes a top-level window of it.
HWND MakeWithIcon(const wchar_t* name, HICON icon)
{
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = &DefWindowProcW;
    window_class.hIcon = icon;
    window_class.lpszClassName = name;
    RegisterClassW(&window_class);
    return CreateWindowExW(0, name, name, WS_OVERLAPPED, 0, 0, 50, 50, nullptr, nullptr, nullptr, nullptr);
}

TEST_F(X11Windows, WindowHasTheIconOfItsClass)
{
    // Two pixels in a row: blue, green, red, opacity each.
    const std::array<BYTE, 8> pixels{1, 2, 3, 4, 0xA0, 0xB0, 0xC0, 0xFF};
    const std::array<BYTE, 2> mask{};
    const HICON icon = CreateIcon(nullptr, 2, 1, 1, 32, mask.data(), pixels.data());
    ASSERT_NE(icon, nullptr);
    const HWND window = MakeWithIcon(L"with icon", icon);
    const HWND other = MakeWithIcon(L"without icon", nullptr);
    EXPECT_THAT(client_.NumbersOf(IdOf("with icon"), "_NET_WM_ICON"),
                ElementsAre(2, 1, 0x04030201, 0xFFC0B0A0));
    EXPECT_THAT(client_.NumbersOf(IdOf("without icon"), "_NET_WM_ICON"), IsEmpty());
    EXPECT_TRUE(DestroyIcon(icon));
    EXPECT_FALSE(DestroyIcon(icon));
    const HWND later = MakeWithIcon(L"with icon", nullptr);
    EXPECT_NE(later, nullptr) << "the icon of its class is gone";
    for (const HWND made : {window, other, later})
        DestroyWindow(made);
    UnregisterClassW(L"with icon", nullptr);
    UnregisterClassW(L"without icon", nullptr);
}

TEST_F(X11Windows, IconOfAnotherFormatIsNone)
{
    const std::array<BYTE, 4> bytes{};
    EXPECT_EQ(CreateIcon(nullptr, 1, 1, 1, 24, bytes.data(), bytes.data()), nullptr);
    EXPECT_EQ(CreateIcon(nullptr, 1, 1, 4, 8, bytes.data(), bytes.data()), nullptr);
    EXPECT_EQ(CreateIcon(nullptr, 0, 1, 1, 32, bytes.data(), bytes.data()), nullptr);
    EXPECT_EQ(CreateIcon(nullptr, 1, 257, 1, 32, bytes.data(), bytes.data()), nullptr);
    EXPECT_EQ(CreateIcon(nullptr, 1, 1, 1, 32, bytes.data(), nullptr), nullptr);
}

TEST_F(X11Windows, ShownWindowIsSeenWhenTheCallReturns)
{
    const HWND window = Make(L"a", WS_OVERLAPPED, nullptr);
    ShowWindow(window, SW_SHOW);
    EXPECT_TRUE(client_.IsSeen(IdOf("a")));
    ShowWindow(window, SW_HIDE);
    EXPECT_FALSE(client_.IsSeen(IdOf("a")));
}

TEST_F(X11Windows, WindowIsWhereItWasPut)
{
    MakeShown(L"a", {30, 40, 230, 140});
    EXPECT_EQ(client_.PositionOnScreen(IdOf("a")), Size(30, 40));
    EXPECT_EQ(client_.SizeOf(IdOf("a")), Size(200, 100));
}

TEST_F(X11Windows, ChildIsAWindowInItsParents)
{
    MakeChild(MakeShown(L"a", {30, 40, 230, 140}));
    const XClient::Id child = OnlyChildOf(IdOf("a"));
    EXPECT_TRUE(client_.IsSeen(child));
    EXPECT_EQ(client_.PositionOnScreen(child), Size(40, 60));
    EXPECT_EQ(client_.SizeOf(child), Size(80, 60));
}

TEST_F(X11Windows, PixelFormatPutsAWindowOfDepth24OverTheClientArea)
{
    MakeCurrentContext(MakeShown(L"a"));
    const XClient::Id inner = OnlyChildOf(IdOf("a"));
    EXPECT_EQ(client_.DepthOf(inner), 24);
    EXPECT_TRUE(client_.IsSeen(inner));
    EXPECT_EQ(client_.SizeOf(inner), Size(200, 150));
    EXPECT_EQ(client_.PositionOnScreen(inner), client_.PositionOnScreen(IdOf("a")));
}

TEST_F(X11Windows, SwappedFrameIsOnTheScreen)
{
    const HWND window = MakeShown(L"a", {100, 50, 300, 200});
    MakeCurrentContext(window);
    ASSERT_TRUE(Show(window, 1, 0, 0));
    EXPECT_TRUE(ShowsPixel(100, 50, kRedOnScreen));
    EXPECT_TRUE(ShowsPixel(299, 199, kRedOnScreen));
    EXPECT_NE(client_.ScreenPixel(300, 199), kRedOnScreen);
}

TEST_F(X11Windows, FrameOfATranslucentColourLetsNothingShowThrough)
{
    const HWND window = MakeShown(L"a");
    MakeCurrentContext(window);
    glClearColor(1, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    ASSERT_TRUE(SwapBuffers(GetDC(window)));
    EXPECT_TRUE(ShowsPixel(150, 100, kRedOnScreen));
}

TEST_F(X11Windows, NextFrameAfterAResizeHasTheNewSize)
{
    const HWND window = MakeShown(L"a", {100, 50, 200, 150});
    MakeCurrentContext(window);
    Show(window, 0, 1, 0);
    MoveWindow(window, 100, 50, 300, 250, TRUE);
    ASSERT_TRUE(Show(window, 1, 0, 0));
    EXPECT_TRUE(Eventually([&] { return client_.SizeOf(OnlyChildOf(IdOf("a"))) == Size(300, 250); }));
    EXPECT_TRUE(ShowsPixel(399, 299, kRedOnScreen));
    EXPECT_TRUE(ShowsPixel(100, 50, kRedOnScreen));
}

TEST_F(X11Windows, EmptyWindowIsUnmappedUntilItHasPixels)
{
    const HWND window = MakeShown(L"a");
    MakeCurrentContext(window);
    for (const Size& size : {Size(0, 0), Size(0, 100), Size(100, 0)}) {
        MoveWindow(window, 0, 0, size.first, size.second, TRUE);
        EXPECT_EQ(ClientSizeOf(window), size);
        EXPECT_TRUE(PumpUntil([&] { return !client_.IsSeen(IdOf("a")); }));
        EXPECT_TRUE(Show(window, 1, 0, 0));
    }
    MoveWindow(window, 0, 0, 10, 10, TRUE);
    EXPECT_TRUE(PumpUntil([&] { return client_.IsSeen(IdOf("a")); }));
    EXPECT_EQ(ClientSizeOf(window), Size(10, 10));
}

TEST_F(X11Windows, EmptyWindowCanBeMadeAndShown)
{
    const HWND window = MakeShown(L"a", {10, 10, 10, 10});
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(client_.IsSeen(IdOf("a")));
    EXPECT_TRUE(IsWindowVisible(window));
    PumpArrived();
    EXPECT_EQ(ClientSizeOf(window), Size(0, 0));
}

TEST_F(X11Windows, ResizeFromOutsideIsToldOnce)
{
    const HWND window = MakeShown(L"a", {100, 50, 300, 200});
    MakeCurrentContext(window);
    PumpArrived();
    TakeMessages();
    client_.MoveResize(IdOf("a"), 120, 70, 333, 222);
    ASSERT_TRUE(PumpUntil([&] { return CountOf(WM_SIZE) > 0; }));
    EXPECT_EQ(ClientSizeOf(window), Size(333, 222));
    ASSERT_EQ(CountOf(WM_SIZE), 1);
    EXPECT_EQ(MessagesOf(WM_SIZE).front().lParam, MAKELPARAM(333, 222));
    ASSERT_EQ(CountOf(WM_MOVE), 1);
    EXPECT_EQ(MessagesOf(WM_MOVE).front().lParam, MAKELPARAM(120, 70));
    RECT place{};
    GetWindowRect(window, &place);
    EXPECT_EQ(place.left, 120);
    EXPECT_EQ(place.top, 70);
    EXPECT_TRUE(Eventually([&] { return client_.SizeOf(OnlyChildOf(IdOf("a"))) == Size(333, 222); }));
    ASSERT_TRUE(Show(window, 1, 0, 0));
    EXPECT_TRUE(ShowsPixel(120 + 332, 70 + 221, kRedOnScreen));
}

TEST_F(X11Windows, ManyResizesFromOutsideThatWaitAreToldAsTheLast)
{
    const HWND window = MakeShown(L"a");
    PumpArrived();
    TakeMessages();
    for (int width = 210; width < 230; ++width)
        client_.MoveResize(IdOf("a"), 100, 50, width, 150);
    ASSERT_TRUE(PumpUntil([&] { return ClientSizeOf(window) == Size(229, 150); }));
    EXPECT_EQ(CountOf(WM_SIZE), 1);
}

TEST_F(X11Windows, OwnResizeIsNotUndoneByAnEarlierOneFromOutside)
{
    const HWND window = MakeShown(L"a");
    PumpArrived();
    TakeMessages();
    const XClient::Id id = IdOf("a");
    client_.MoveResize(id, 100, 50, 400, 300);
    // The event arrives before the server has handled the program's own request.
    client_.HoldServer();
    MoveWindow(window, 100, 50, 250, 125, TRUE);
    PumpArrived();
    EXPECT_EQ(ClientSizeOf(window), Size(250, 125));
    client_.LetServerGo();
    EXPECT_TRUE(PumpUntil([&] { return client_.SizeOf(id) == Size(250, 125); }));
    PumpArrived();
    EXPECT_EQ(ClientSizeOf(window), Size(250, 125));
    EXPECT_EQ(CountOf(WM_SIZE), 1);
}

TEST_F(X11Windows, OwnResizeIsToldOnce)
{
    const HWND window = MakeShown(L"a");
    PumpArrived();
    TakeMessages();
    MoveWindow(window, 5, 6, 70, 80, TRUE);
    ASSERT_TRUE(PumpUntil([&] { return client_.SizeOf(IdOf("a")) == Size(70, 80); }));
    PumpArrived();
    EXPECT_EQ(CountOf(WM_SIZE), 1);
    EXPECT_EQ(CountOf(WM_MOVE), 1);
}

TEST_F(X11Windows, UncoveredWindowIsPaintedAgain)
{
    const HWND window = MakeShown(L"a", {100, 50, 300, 200});
    PumpArrived();
    const XClient::Id cover = client_.MakeWindow(150, 100, 50, 50);
    PumpArrived();
    TakeMessages();
    client_.DestroyWindow(cover);
    EXPECT_TRUE(PumpUntil([&] { return CountOf(WM_PAINT) > 0; }));
    EXPECT_EQ(MessagesOf(WM_PAINT).front().hwnd, window);
}

TEST_F(X11Windows, UncoveredSurfaceIsPaintedAgain)
{
    const HWND window = MakeShown(L"a", {100, 50, 300, 200});
    MakeCurrentContext(window);
    PumpArrived();
    const XClient::Id cover = client_.MakeWindow(150, 100, 50, 50);
    PumpArrived();
    TakeMessages();
    client_.DestroyWindow(cover);
    EXPECT_TRUE(PumpUntil([&] { return CountOf(WM_PAINT) > 0; }));
}

TEST_F(X11Windows, ShownWindowIsPaintedOnce)
{
    const HWND window = MakeShown(L"a");
    MakeChild(window);
    PumpArrived();
    EXPECT_EQ(CountOf(WM_PAINT), 2);
    TakeMessages();
    ShowWindow(window, SW_HIDE);
    PumpArrived();
    EXPECT_EQ(CountOf(WM_PAINT), 0);
    ShowWindow(window, SW_SHOW);
    PumpArrived();
    EXPECT_EQ(CountOf(WM_PAINT), 2);
}

TEST_F(X11Windows, PaintThatTheProgramHasDoneIsNotAskedForAgain)
{
    const HWND window = MakeShown(L"a");
    ValidateRect(window, nullptr);
    PumpArrived();
    EXPECT_EQ(CountOf(WM_PAINT), 0);
}

TEST_F(X11Windows, CloseButtonSendsClose)
{
    const HWND window = MakeShown(L"a");
    client_.AskToClose(IdOf("a"));
    EXPECT_TRUE(PumpUntil([&] { return IsWindow(window) == FALSE; }));
    EXPECT_EQ(CountOf(WM_CLOSE), 1);
}

TEST_F(X11Windows, NewTitleIsSeen)
{
    const HWND window = MakeShown(L"before");
    IdOf("before");
    SetWindowTextW(window, L"after");
    EXPECT_TRUE(PumpUntil([&] { return client_.FindByName("after").size() == 1; }));
    EXPECT_THAT(client_.FindByName("before"), IsEmpty());
}

TEST_F(X11Windows, DestroyedWindowsAreGoneInAnyOrder)
{
    const HWND parent = MakeShown(L"a");
    const HWND first = MakeChild(parent);
    const HWND second = MakeChild(parent);
    const XClient::Id id = IdOf("a");
    DestroyWindow(first);
    EXPECT_EQ(client_.ChildrenOf(id).size(), 1U);
    DestroyWindow(parent);
    EXPECT_FALSE(client_.Exists(id));
    EXPECT_FALSE(IsWindow(second));
}

TEST_F(X11Windows, WindowDestroyedByAnotherProgramIsDestroyedWithItsChildren)
{
    const HWND window = MakeShown(L"a");
    const HWND child = MakeChild(window);
    MakeCurrentContext(child);
    PumpArrived();
    TakeMessages();
    client_.DestroyWindow(IdOf("a"));
    ASSERT_TRUE(PumpUntil([&] { return IsWindow(window) == FALSE; }));
    EXPECT_FALSE(IsWindow(child));
    std::vector<std::pair<HWND, UINT>> last;
    for (const MSG& message : TakeMessages())
        if (message.message == WM_DESTROY || message.message == WM_NCDESTROY)
            last.emplace_back(message.hwnd, message.message);
    EXPECT_THAT(last, ElementsAre(std::pair(window, WM_DESTROY), std::pair(child, WM_DESTROY),
                                  std::pair(child, WM_NCDESTROY), std::pair(window, WM_NCDESTROY)));
    glClear(GL_COLOR_BUFFER_BIT);
    glFinish();
}

TEST_F(X11Windows, DrawingAfterTheEndOfTheCurrentWindowReachesNoServer)
{
    const HWND window = MakeShown(L"a");
    MakeCurrentContext(window);
    Show(window, 1, 0, 0);
    TraceRecording trace;
    DestroyWindow(window);
    glClear(GL_COLOR_BUFFER_BIT);
    glViewport(0, 0, 10, 10);
    glClear(GL_COLOR_BUFFER_BIT);
    glFinish();
    // A call that waits for the server also brings earlier errors.
    MakeShown(L"b");
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(X11Windows, TwoContextsInOneTreeKeepTheirPictures)
{
    const HWND parent = MakeShown(L"a", {100, 50, 300, 200});
    const HWND left = MakeChild(parent, {0, 0, 100, 150});
    const HWND right = MakeChild(parent, {100, 0, 200, 150});
    MakeCurrentContext(left);
    ASSERT_TRUE(Show(left, 1, 0, 0));
    MakeCurrentContext(right);
    ASSERT_TRUE(Show(right, 0, 1, 0));
    EXPECT_TRUE(ShowsPixel(199, 100, kRedOnScreen));
    EXPECT_TRUE(ShowsPixel(200, 100, kGreenPixel));
}

TEST_F(X11Windows, HundredDrawnWindowsInARow)
{
    for (int i = 0; i < 100; ++i) {
        const HWND window = MakeShown(L"a", {0, 0, 8, 8});
        MakeCurrentContext(window);
        ASSERT_TRUE(Show(window, 1, 0, 0)) << i;
        wglDeleteContext(wglGetCurrentContext());
        DestroyWindow(window);
    }
    EXPECT_THAT(client_.FindByName("a"), IsEmpty());
}

TEST_F(X11Windows, FormatsHaveEightAlphaBitsOrNone)
{
    const HDC dc = GetDC(nullptr);
    const int count = DescribePixelFormat(dc, 1, 0, nullptr);
    ASSERT_GT(count, 0);
    for (int format = 1; format <= count; ++format) {
        PIXELFORMATDESCRIPTOR found{};
        DescribePixelFormat(dc, format, sizeof found, &found);
        EXPECT_EQ(found.cRedBits, 8);
        EXPECT_THAT(found.cAlphaBits, testing::AnyOf(0, 8));
        EXPECT_EQ(found.cColorBits, 24 + found.cAlphaBits);
    }
    ReleaseDC(nullptr, dc);
}

TEST_F(X11Windows, DescriptorOfSixteenDepthBitsGetsTwentyFour)
{
    const HWND window = MakeShown(L"a");
    MakeCurrentContext(window);
    GLint depth = 0;
    GLint alpha = 0;
    glGetIntegerv(GL_DEPTH_BITS, &depth);
    glGetIntegerv(GL_ALPHA_BITS, &alpha);
    EXPECT_EQ(depth, 24);
    EXPECT_EQ(alpha, 8);
}

} // namespace karv_test
