// The parts that only the window layer offers: the choice of a backend, frames as they are swapped, swap
// counts, and the descriptor for foreign loops.
#include "platform/winsys/backends.h"

#include "platform/winsys/backend.h"
#include "platform/winsys/frame_clock.h"
#include "platform/winsys/opengl.h"
#include "platform/winsys/wgl_extensions.h"
#include "tests/platform/message_descriptor.h"
#include "tests/platform/winsys_contract.h"

#include <array>
#include <stdexcept>

namespace karv_test
{

namespace
{

int timer_calls = 0;

void CALLBACK CountTimerCall(HWND, UINT, UINT_PTR, DWORD)
{
    ++timer_calls;
}

} // namespace

using WinsysBackends = GraphicsContract;

INSTANTIATE_TEST_SUITE_P(Backends, WinsysBackends, EveryBackend(), BackendTestName);

constexpr UINT kLower = WM_USER + 1;
constexpr UINT kUpper = WM_USER + 2;

TEST_P(WinsysBackends, BackendChangesOnlyWithoutWindows)
{
    EXPECT_EQ(winsys::BackendName(), GetParam());
    const HWND window = Make(L"a");
    EXPECT_THROW(winsys::UseBackend(nullptr), std::logic_error);
    EXPECT_EQ(winsys::BackendName(), GetParam());
    DestroyWindow(window);
    EXPECT_NO_THROW(InstallBackend(GetParam()));
}

TEST_P(WinsysBackends, NoBackendMeansTheDefaultOneAtTheNextWindow)
{
    winsys::UseBackend(nullptr);
    EXPECT_NE(Make(L"a"), nullptr);
    EXPECT_EQ(winsys::BackendName(), winsys::MakeDefaultBackend()->Name());
}

TEST_P(WinsysBackends, DescriptorIsReadableExactlyWhileAMessageWaits)
{
    const HWND window = MakeShown(L"a");
    ASSERT_GE(winsys::GetMessageDescriptor(), 0);
    EXPECT_FALSE(IsDescriptorReadable());
    PostMessageW(window, kLower, 0, 0);
    PostMessageW(window, kUpper, 0, 0);
    EXPECT_TRUE(IsDescriptorReadable());
    Take();
    EXPECT_TRUE(IsDescriptorReadable());
    Take();
    EXPECT_FALSE(IsDescriptorReadable());
}

TEST_P(WinsysBackends, DescriptorFollowsPaintsAndQuit)
{
    const HWND window = MakeShown(L"a");
    InvalidateRect(window, nullptr, FALSE);
    EXPECT_TRUE(IsDescriptorReadable());
    ShowWindow(window, SW_HIDE);
    EXPECT_FALSE(IsDescriptorReadable()) << "a hidden window is not painted";
    ShowWindow(window, SW_SHOW);
    EXPECT_TRUE(IsDescriptorReadable());
    DestroyWindow(window);
    EXPECT_FALSE(IsDescriptorReadable());
    PostQuitMessage(0);
    EXPECT_TRUE(IsDescriptorReadable());
    Take();
    EXPECT_FALSE(IsDescriptorReadable());
}

TEST_P(WinsysBackends, DescriptorFollowsTimers)
{
    const HWND window = MakeShown(L"a");
    SetTimer(window, 1, 1'000'000, nullptr);
    EXPECT_FALSE(IsDescriptorReadable());
    SetTimer(window, 1, 1, nullptr);
    EXPECT_TRUE(WaitForMessage()) << "the timer has not made the descriptor readable";
    SetTimer(window, 1, 1'000'000, nullptr);
    EXPECT_FALSE(IsDescriptorReadable());
    SetTimer(window, 1, 1, nullptr);
    EXPECT_TRUE(WaitForMessage());
    KillTimer(window, 1);
    EXPECT_FALSE(IsDescriptorReadable());
}

TEST_P(WinsysBackends, DescriptorIsNotReadableWhileATimersPeriodRunsAgain)
{
    constexpr std::clock_t kPeriod = 20;
    const HWND window = MakeShown(L"a");
    SetTimer(window, 1, kPeriod, nullptr);
    // On a busy machine a period may pass between the two calls; such a turn proves nothing.
    bool is_conclusive = false;
    for (int turn = 0; turn < 100 && !is_conclusive; ++turn) {
        ASSERT_TRUE(WaitForMessage());
        const std::clock_t start = winsys::FrameClock();
        EXPECT_EQ(Take().message, WM_TIMER);
        const bool readable = IsDescriptorReadable();
        is_conclusive = winsys::FrameClock() - start < kPeriod - 1;
        EXPECT_FALSE(is_conclusive && readable);
    }
    EXPECT_TRUE(is_conclusive);
}

TEST_P(WinsysBackends, ForeignLoopHandlesOneTimerMessageATurn)
{
    const HWND window = MakeShown(L"a");
    int frames = 0;
    handler_ = [&](HWND, UINT message, WPARAM, LPARAM) {
        frames += message == WM_TIMER ? 1 : 0;
        return std::nullopt;
    };
    SetTimer(window, 1, 1, nullptr);
    for (int turn = 0; turn < 20; ++turn) {
        ASSERT_TRUE(WaitForMessage());
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            DispatchMessageW(&message);
            if (message.message == WM_TIMER)
                break;
        }
        EXPECT_EQ(frames, turn + 1) << "a readable descriptor always means a message";
    }
}

TEST_P(WinsysBackends, ObserverReadsTheFrameBeforeTheSwap)
{
    const HWND window = MakeDrawable(L"a");
    HWND seen = nullptr;
    std::array<int, 2> size{};
    Pixel corner;
    winsys::SetFrameObserver([&](HWND frame_window, int width, int height) {
        seen = frame_window;
        size = {width, height};
        EXPECT_EQ(winsys::GetSwapCount(frame_window), 0U);
        corner = Picture(width, height).At(width - 1, height - 1);
    });
    Clear(1, 0, 0);
    EXPECT_TRUE(SwapBuffers(GetDC(window)));
    EXPECT_EQ(seen, window);
    EXPECT_EQ(size, (std::array<int, 2>{64, 64}));
    EXPECT_EQ(corner, kRed);
    EXPECT_EQ(winsys::GetSwapCount(window), 1U);
}

TEST_P(WinsysBackends, ObserverSeesNoFrameOfAnotherContext)
{
    const HWND a = MakeDrawable(L"a");
    MakeDrawable(L"b");
    int calls = 0;
    winsys::SetFrameObserver([&](HWND, int, int) { ++calls; });
    EXPECT_TRUE(SwapBuffers(GetDC(a)));
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(winsys::GetSwapCount(a), 1U);
}

TEST_P(WinsysBackends, SwapsAreCountedForEachWindow)
{
    const HWND a = MakeDrawable(L"a");
    const HWND b = MakeDrawable(L"b");
    SwapBuffers(GetDC(a));
    SwapBuffers(GetDC(b));
    SwapBuffers(GetDC(b));
    EXPECT_EQ(winsys::GetSwapCount(a), 1U);
    EXPECT_EQ(winsys::GetSwapCount(b), 2U);
}

TEST_P(WinsysBackends, MultisampledFrameIsReadWholeAndLeavesTheStateAlone)
{
    MakeDrawable(L"probe");
    const int format = Choose(wglGetCurrentDC(), {WGL_SAMPLE_BUFFERS_ARB, 1, WGL_SAMPLES_ARB, 4});
    const HDC dc = GetDC(MakeShown(L"a"));
    ASSERT_TRUE(SetPixelFormat(dc, format, nullptr));
    ASSERT_TRUE(wglMakeCurrent(dc, MakeContext(dc)));
    Clear(0, 1, 0);
    glScissor(0, 0, 4, 4);
    glEnable(GL_SCISSOR_TEST);
    Pixel beyond_scissor;
    winsys::SetFrameObserver(
        [&](HWND, int width, int height) { beyond_scissor = Picture(width, height).At(50, 50); });
    ASSERT_TRUE(SwapBuffers(dc));
    EXPECT_EQ(beyond_scissor, kGreen);
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    // Drawing still goes to the window: the next frame shows it.
    Clear(1, 0, 0);
    Pixel inside_scissor;
    winsys::SetFrameObserver(
        [&](HWND, int width, int height) { inside_scissor = Picture(width, height).At(2, 2); });
    ASSERT_TRUE(SwapBuffers(dc));
    EXPECT_EQ(inside_scissor, kRed);
}

TEST_P(WinsysBackends, StaleAndNullWindowsHaveNoSwaps)
{
    const HWND stale = Make(L"a");
    DestroyWindow(stale);
    EXPECT_EQ(winsys::GetSwapCount(stale), 0U);
    EXPECT_EQ(winsys::GetSwapCount(nullptr), 0U);
}

TEST_P(WinsysBackends, HandlerOfAChildsDestructionMayDestroyTheParent)
{
    for (const UINT when : {WM_DESTROY, WM_NCDESTROY}) {
        const HWND parent = Make(L"parent");
        const HWND child = Make(L"child", WS_CHILD, parent);
        handler_ = [&](HWND window, UINT message, WPARAM, LPARAM) {
            if (window == child && message == when)
                DestroyWindow(parent);
            return std::nullopt;
        };
        TakeMessages();
        EXPECT_TRUE(DestroyWindow(child));
        EXPECT_THAT(TakeMessages(), testing::UnorderedElementsAre("child WM_DESTROY", "child WM_NCDESTROY",
                                                                  "parent WM_DESTROY", "parent WM_NCDESTROY"))
            << MessageName(when);
        EXPECT_FALSE(IsWindow(parent));
        handler_ = nullptr;
    }
}

TEST_P(WinsysBackends, DestructionDoesNotBeginTwice)
{
    BOOL second = TRUE;
    const HWND window = Make(L"a");
    handler_ = [&](HWND self, UINT message, WPARAM, LPARAM) {
        if (message == WM_DESTROY)
            second = DestroyWindow(self);
        return std::nullopt;
    };
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_FALSE(second);
}

TEST_P(WinsysBackends, WindowDestroyedWhileItIsShownByItsCreationIsNotReturned)
{
    const HWND parent = MakeShown(L"parent");
    handler_ = [&](HWND window, UINT message, WPARAM, LPARAM) {
        if (message == WM_SHOWWINDOW)
            DestroyWindow(window);
        return std::nullopt;
    };
    EXPECT_EQ(Make(L"child", WS_CHILD | WS_VISIBLE, parent), nullptr);
    EXPECT_EQ(TakeMessages().back(), "child WM_NCDESTROY");
}

TEST_P(WinsysBackends, PaintingOfStaleAndNullWindowsIsRefused)
{
    const HWND stale = Make(L"a");
    DestroyWindow(stale);
    for (const HWND window : {stale, HWND{}}) {
        EXPECT_FALSE(InvalidateRect(window, nullptr, FALSE));
        EXPECT_FALSE(ValidateRect(window, nullptr));
        EXPECT_FALSE(UpdateWindow(window));
    }
}

TEST_P(WinsysBackends, PlaceLeftToTheSystemIsTheOriginUntilItTells)
{
    CREATESTRUCTW seen{};
    handler_ = [&](HWND, UINT message, WPARAM, LPARAM lparam) -> std::optional<LRESULT> {
        if (message == WM_CREATE)
            seen = *reinterpret_cast<CREATESTRUCTW*>(lparam);
        return std::nullopt;
    };
    const HWND window = CreateWindowExW(0, L"Recorded", L"", WS_OVERLAPPED, CW_USEDEFAULT, 123, 400, 300,
                                        nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(seen.x, 0);
    EXPECT_EQ(seen.y, 0);
    DestroyWindow(window);
}

TEST_P(WinsysBackends, GettingForABadWindowFails)
{
    const HWND stale = Make(L"a");
    DestroyWindow(stale);
    MSG message{};
    EXPECT_EQ(GetMessageW(&message, stale, 0, 0), -1);
    EXPECT_EQ(GetMessageW(nullptr, nullptr, 0, 0), -1);
    EXPECT_FALSE(PeekMessageW(&message, stale, 0, 0, PM_REMOVE));
}

TEST_P(WinsysBackends, KilledTimerDoesNotCallBack)
{
    const HWND window = MakeShown(L"a");
    timer_calls = 0;
    SetTimer(window, 9, 1, &CountTimerCall);
    MSG message{};
    ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    KillTimer(window, 9);
    DispatchMessageW(&message);
    EXPECT_EQ(timer_calls, 0);
}

TEST_P(WinsysBackends, ScreenBelongsToNoWindow)
{
    const HDC screen = GetDC(nullptr);
    EXPECT_EQ(WindowFromDC(screen), nullptr);
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
}

TEST_P(WinsysBackends, NoDescriptorHasNoFormat)
{
    EXPECT_EQ(ChoosePixelFormat(GetDC(Make(L"a")), nullptr), 0);
}

TEST_P(WinsysBackends, ChosenFormatHasTheSmallestDepthOfAtLeast24ForAMinimumOf16)
{
    const HDC dc = PrepareDc(Make(L"a"));
    PIXELFORMATDESCRIPTOR found{};
    ASSERT_GE(DescribePixelFormat(dc, GetPixelFormat(dc), sizeof found, &found), 1);
    EXPECT_EQ(found.cDepthBits, 24);
}

TEST_P(WinsysBackends, ReleaseForAnotherWindowIsRefused)
{
    const HWND a = Make(L"a");
    const HWND b = Make(L"b");
    EXPECT_EQ(ReleaseDC(b, GetDC(a)), 0);
    EXPECT_EQ(ReleaseDC(a, nullptr), 0);
}

TEST_P(WinsysBackends, AttributesThatNoFormatHasSucceedWithNone)
{
    MakeDrawable(L"a");
    for (const auto& attributes : std::vector<std::vector<int>>{{WGL_DRAW_TO_WINDOW_ARB, 0},
                                                                {WGL_SUPPORT_OPENGL_ARB, 0},
                                                                {WGL_DOUBLE_BUFFER_ARB, 0},
                                                                {WGL_SAMPLES_ARB, 1000}}) {
        BOOL success = FALSE;
        EXPECT_EQ(Choose(wglGetCurrentDC(), attributes, &success), 0) << attributes[0];
        EXPECT_TRUE(success) << attributes[0];
    }
}

TEST_P(WinsysBackends, FrameHasTheNewSizeAtOnce)
{
    const HWND window = MakeDrawable(L"a");
    MoveWindow(window, 0, 0, 200, 100, TRUE);
    Clear(0, 1, 0);
    EXPECT_EQ(Picture(200, 100).At(199, 99), kGreen);
}

TEST_P(WinsysBackends, ImpossibleDescriptorHasNoFormat)
{
    const HDC dc = GetDC(Make(L"a"));
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.cDepthBits = 200;
    EXPECT_EQ(ChoosePixelFormat(dc, &descriptor), 0);
    descriptor.cDepthBits = 0;
    EXPECT_NE(ChoosePixelFormat(dc, &descriptor), 0);
    descriptor.iPixelType = 1;
    EXPECT_EQ(ChoosePixelFormat(dc, &descriptor), 0);
    EXPECT_EQ(ChoosePixelFormat(nullptr, &descriptor), 0);
}

TEST_P(WinsysBackends, UnknownAttributeFailsTheCall)
{
    MakeDrawable(L"a");
    BOOL success = TRUE;
    EXPECT_EQ(Choose(wglGetCurrentDC(), {0x7777, 1}, &success), 0);
    EXPECT_FALSE(success);
}

TEST_P(WinsysBackends, MatchesAreCountedUpToTheMaximum)
{
    MakeDrawable(L"a");
    const HDC dc = wglGetCurrentDC();
    const auto choose = Look<PFNWGLCHOOSEPIXELFORMATARBPROC>("wglChoosePixelFormatARB");
    const int all = DescribePixelFormat(dc, 1, 0, nullptr);
    std::vector<int> formats(static_cast<std::size_t>(all) + 5, -1);
    UINT count = 0;
    ASSERT_TRUE(choose(dc, nullptr, nullptr, static_cast<UINT>(formats.size()), formats.data(), &count));
    EXPECT_EQ(count, static_cast<UINT>(all));
    EXPECT_EQ(formats[count], -1) << "nothing is written past the matches";
    ASSERT_TRUE(choose(dc, nullptr, nullptr, 2, formats.data(), &count));
    EXPECT_EQ(count, 2U);
    EXPECT_FALSE(choose(dc, nullptr, nullptr, 1, formats.data(), nullptr));
    EXPECT_FALSE(choose(nullptr, nullptr, nullptr, 1, formats.data(), &count));
}

} // namespace karv_test
