// Cases that need a scripted backend: refused calls, other extensions, native events, other lists of formats.
#include "platform/winsys/backends.h"
#include "platform/winsys/wgl_extensions.h"
#include "tests/platform/message_descriptor.h"
#include "tests/platform/winsys_contract.h"
#include "tests/support/scripted_backend.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace karv_test
{

class WinsysScripted : public WinsysContract
{
  protected:
    WinsysScripted() : backend_(ScriptedBackend::Install()) {}

    HWND MakeRecorded(const std::wstring& name)
    {
        const HWND window = MakeShown(name);
        backend_.TakeLog();
        return window;
    }

    ScriptedBackend& backend_;
};

INSTANTIATE_TEST_SUITE_P(Backends, WinsysScripted, testing::Values("scripted"), BackendTestName);

template <typename Function>
Function Look(const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(wglGetProcAddress(name)));
}

TEST_P(WinsysScripted, CallsAreLoggedByName)
{
    const HWND window = MakeShown(L"a");
    const HDC dc = PrepareDc(window);
    const HGLRC context = wglCreateContext(dc);
    wglMakeCurrent(dc, context);
    SwapBuffers(dc);
    wglDeleteContext(context);
    DestroyWindow(window);
    EXPECT_THAT(backend_.TakeLog(),
                ElementsAre("CreateWindow(\"a\")", testing::StartsWith("SetPixelFormat(\"a\", "),
                            "wglCreateContext(\"a\") = context 1", "wglMakeCurrent(\"a\", context 1)",
                            "SwapBuffers(\"a\")", "wglMakeCurrent(none)", "wglDeleteContext(context 1)",
                            "DestroyWindow(\"a\")"));
    EXPECT_THAT(backend_.TakeLog(), IsEmpty());
}

TEST_P(WinsysScripted, RefusedWindowLeavesNothing)
{
    const HWND parent = MakeRecorded(L"parent");
    backend_.FailNth(Call::CreateWindow, 2);
    EXPECT_NE(Make(L"first", WS_CHILD, parent), nullptr);
    TakeMessages();
    EXPECT_EQ(Make(L"second", WS_CHILD, parent), nullptr);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_NE(Make(L"third", WS_CHILD, parent), nullptr);
    EXPECT_THAT(backend_.TakeLog(), ElementsAre("CreateWindow(\"first\")", "CreateWindow(\"second\") failed",
                                                "CreateWindow(\"third\")"));
}

TEST_P(WinsysScripted, RefusedPixelFormatMayBeTriedAgain)
{
    const HDC dc = GetDC(MakeRecorded(L"a"));
    backend_.FailNth(Call::SetPixelFormat, 1);
    EXPECT_FALSE(SetPixelFormat(dc, 1, nullptr));
    EXPECT_EQ(GetPixelFormat(dc), 0);
    EXPECT_TRUE(SetPixelFormat(dc, 2, nullptr));
    EXPECT_THAT(backend_.TakeLog(),
                ElementsAre("SetPixelFormat(\"a\", 1) failed", "SetPixelFormat(\"a\", 2)"));
}

TEST_P(WinsysScripted, RefusedContextSwapAndChangeFailTheirCalls)
{
    const HWND window = MakeRecorded(L"a");
    const HDC dc = PrepareDc(window);
    backend_.FailNth(Call::CreateContext, 1);
    backend_.FailNth(Call::MakeCurrent, 2);
    backend_.FailNth(Call::SwapBuffers, 1);
    EXPECT_EQ(wglCreateContext(dc), nullptr);
    const HGLRC context = wglCreateContext(dc);
    EXPECT_TRUE(wglMakeCurrent(dc, context));
    EXPECT_FALSE(wglMakeCurrent(dc, context));
    EXPECT_EQ(wglGetCurrentContext(), context);
    EXPECT_FALSE(SwapBuffers(dc));
    EXPECT_EQ(winsys::GetSwapCount(window), 0U);
    EXPECT_TRUE(SwapBuffers(dc));
    EXPECT_EQ(winsys::GetSwapCount(window), 1U);
    wglDeleteContext(context);
}

TEST_P(WinsysScripted, ExtensionsAndEntryPointsAreAsScripted)
{
    const HDC dc = PrepareDc(MakeRecorded(L"a"));
    const HGLRC context = wglCreateContext(dc);
    wglMakeCurrent(dc, context);
    const auto extensions = Look<PFNWGLGETEXTENSIONSSTRINGARBPROC>("wglGetExtensionsStringARB");
    backend_.SetExtensions("WGL_ARB_multisample_more");
    EXPECT_STREQ(extensions(dc), "WGL_ARB_multisample_more");
    backend_.SetExtensions(std::nullopt);
    EXPECT_EQ(extensions(dc), nullptr);
    backend_.HideEntryPoint("wglGetExtensionsStringARB");
    EXPECT_EQ(wglGetProcAddress("wglGetExtensionsStringARB"), nullptr);
    EXPECT_NE(wglGetProcAddress("wglChoosePixelFormatARB"), nullptr);
    wglDeleteContext(context);
}

TEST_P(WinsysScripted, SamplesAreRefusedInEitherWay)
{
    const HDC dc = PrepareDc(MakeRecorded(L"a"));
    const HGLRC context = wglCreateContext(dc);
    wglMakeCurrent(dc, context);
    const auto choose = Look<PFNWGLCHOOSEPIXELFORMATARBPROC>("wglChoosePixelFormatARB");
    backend_.RefuseSamples(4, Refusal::CallFails);
    backend_.RefuseSamples(2, Refusal::NoFormat);
    backend_.TakeLog();
    int format = 0;
    UINT count = 9;
    const int four[] = {WGL_SAMPLES_ARB, 4, 0, 0};
    const int two[] = {WGL_SAMPLES_ARB, 2, 0, 0};
    const int one[] = {WGL_SAMPLES_ARB, 1, 0, 0};
    EXPECT_FALSE(choose(dc, four, nullptr, 1, &format, &count));
    EXPECT_TRUE(choose(dc, two, nullptr, 1, &format, &count));
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(choose(dc, one, nullptr, 1, &format, &count));
    EXPECT_EQ(count, 1U);
    EXPECT_THAT(backend_.TakeLog(),
                ElementsAre("wglChoosePixelFormatARB(samples=4) failed",
                            "wglChoosePixelFormatARB(samples=2) = none",
                            "wglChoosePixelFormatARB(samples=1) = " + std::to_string(format)));
    wglDeleteContext(context);
}

TEST_P(WinsysScripted, LeftWindowsCanBeDestroyed)
{
    const HWND first = Make(L"a");
    const HWND second = Make(L"b");
    EXPECT_THAT(backend_.LiveWindows(), ElementsAre(first, second));
    backend_.DestroyLeftWindows();
    EXPECT_FALSE(IsWindow(first));
    EXPECT_THAT(backend_.LiveWindows(), IsEmpty());
}

TEST_P(WinsysScripted, NativeEventsWakeAForeignLoop)
{
    const HWND window = MakeRecorded(L"a");
    EXPECT_FALSE(IsDescriptorReadable());
    backend_.QueueEvent([&](winsys::EventSink& sink) {
        sink.OnMouse(window, {.message = WM_LBUTTONDOWN, .keys = MK_LBUTTON, .position = {3, 4}});
    });
    EXPECT_TRUE(IsDescriptorReadable());
    const MSG message = Take();
    EXPECT_EQ(message.message, WM_LBUTTONDOWN);
    EXPECT_EQ(message.wParam, MK_LBUTTON);
    EXPECT_EQ(message.lParam, MAKELPARAM(3, 4));
    EXPECT_EQ(message.pt.x, 13);
    EXPECT_EQ(message.pt.y, 24);
    EXPECT_FALSE(IsDescriptorReadable());
}

TEST_P(WinsysScripted, MouseOutsideTheClientAreaIsDropped)
{
    const HWND window = MakeRecorded(L"a");
    for (const POINT at : {POINT{-1, 0}, POINT{0, -1}, POINT{64, 0}, POINT{0, 64}})
        backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnMouse(window, {.position = at}); });
    EXPECT_EQ(Take().message, WM_NULL);
    backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnMouse(window, {.position = {63, 63}}); });
    EXPECT_EQ(Take().message, WM_MOUSEMOVE);
}

TEST_P(WinsysScripted, WheelCarriesItsTurnAndTheScreenPoint)
{
    const HWND window = MakeRecorded(L"a");
    backend_.QueueEvent([=](winsys::EventSink& sink) {
        sink.OnMouse(window, {.message = WM_MOUSEWHEEL, .keys = 0, .position = {1, 2}, .wheel_delta = -120});
    });
    const MSG message = Take();
    EXPECT_EQ(GET_WHEEL_DELTA_WPARAM(message.wParam), -120);
    EXPECT_EQ(GET_X_LPARAM(message.lParam), 11);
    EXPECT_EQ(GET_Y_LPARAM(message.lParam), 22);
}

TEST_P(WinsysScripted, NativeGeometryIsSentAtOnce)
{
    const HWND window = MakeRecorded(L"a");
    backend_.QueueEvent([=](winsys::EventSink& sink) {
        sink.OnResize(window, {32, 16});
        sink.OnResize(window, {32, 16});
        sink.OnMove(window, {5, 6});
    });
    EXPECT_EQ(Take().message, WM_PAINT);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_SIZE", "a WM_MOVE"));
    RECT rect{};
    GetWindowRect(window, &rect);
    EXPECT_EQ(rect.left, 5);
    EXPECT_EQ(rect.right, 37);
}

TEST_P(WinsysScripted, ExposedWindowIsPainted)
{
    const HWND window = MakeRecorded(L"a");
    backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnExpose(window); });
    EXPECT_EQ(Take().message, WM_PAINT);
}

TEST_P(WinsysScripted, KeysGoToTheFocus)
{
    const HWND a = MakeRecorded(L"a");
    const HWND b = MakeRecorded(L"b");
    backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnKey(a, WM_KEYDOWN, 'K'); });
    EXPECT_EQ(Take().hwnd, a);
    SetFocus(b);
    backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnKey(a, WM_KEYDOWN, 'K'); });
    EXPECT_EQ(Take().hwnd, b);
}

TEST_P(WinsysScripted, NativeFocusMovesWithItsMessages)
{
    const HWND a = MakeRecorded(L"a");
    backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnFocus(a, true); });
    Pump();
    EXPECT_EQ(GetFocus(), a);
    backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnFocus(a, false); });
    Pump();
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_THAT(TakeFocusMessages(), ElementsAre("a WM_SETFOCUS", "a WM_KILLFOCUS"));
}

TEST_P(WinsysScripted, NativeFocusInsideTheWindowStaysWithTheChild)
{
    const HWND parent = MakeRecorded(L"parent");
    const HWND child = Make(L"child", WS_CHILD | WS_VISIBLE, parent);
    SetFocus(child);
    backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnFocus(parent, true); });
    Pump();
    EXPECT_EQ(GetFocus(), child);
}

TEST_P(WinsysScripted, CloseIsPosted)
{
    const HWND window = MakeRecorded(L"a");
    backend_.QueueEvent([=](winsys::EventSink& sink) { sink.OnClose(window); });
    Pump();
    EXPECT_FALSE(IsWindow(window));
}

TEST_P(WinsysScripted, EventsOfDeadWindowsAreIgnored)
{
    const HWND window = MakeRecorded(L"a");
    DestroyWindow(window);
    TakeMessages();
    backend_.QueueEvent([=](winsys::EventSink& sink) {
        sink.OnResize(window, {1, 1});
        sink.OnMove(window, {1, 1});
        sink.OnClose(window);
        sink.OnExpose(window);
        sink.OnMouse(window, {});
        sink.OnKey(window, WM_KEYDOWN, 'K');
        sink.OnFocus(window, true);
    });
    EXPECT_EQ(Pump(), 0);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(GetFocus(), nullptr);
}

TEST_P(WinsysScripted, EventHandlerMayDestroyTheWindow)
{
    const HWND window = MakeRecorded(L"a");
    handler_ = [](HWND self, UINT message, WPARAM, LPARAM) {
        if (message == WM_SIZE)
            DestroyWindow(self);
        return std::nullopt;
    };
    backend_.QueueEvent([=](winsys::EventSink& sink) {
        sink.OnResize(window, {32, 16});
        sink.OnExpose(window);
    });
    EXPECT_EQ(Pump(), 0);
    EXPECT_FALSE(IsWindow(window));
}

/// A list of formats that no driver has, to test the choice alone.
class FormatListBackend : public ScriptedBackend
{
  public:
    explicit FormatListBackend(std::vector<winsys::PixelFormat> formats) : formats_(std::move(formats)) {}

    [[nodiscard]] std::span<const winsys::PixelFormat> PixelFormats() const override { return formats_; }

  private:
    std::vector<winsys::PixelFormat> formats_;
};

int ChooseAmong(std::vector<winsys::PixelFormat> formats, PIXELFORMATDESCRIPTOR descriptor)
{
    winsys::UseBackend(std::make_unique<FormatListBackend>(std::move(formats)));
    const HDC screen = GetDC(nullptr);
    const int chosen = ChoosePixelFormat(screen, &descriptor);
    ReleaseDC(nullptr, screen);
    winsys::UseBackend(nullptr);
    return chosen;
}

PIXELFORMATDESCRIPTOR WithDepth(BYTE bits)
{
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.cDepthBits = bits;
    return descriptor;
}

TEST(PixelFormatChoice, SmallestDepthOfAtLeast24)
{
    EXPECT_EQ(ChooseAmong({{.depth_bits = 16}, {.depth_bits = 32}, {.depth_bits = 24}}, WithDepth(16)), 3);
    EXPECT_EQ(ChooseAmong({{.depth_bits = 16}, {.depth_bits = 32}, {.depth_bits = 24}}, WithDepth(32)), 2);
}

TEST(PixelFormatChoice, DeepestWhereNoneHas24)
{
    EXPECT_EQ(ChooseAmong({{.depth_bits = 0}, {.depth_bits = 18}, {.depth_bits = 16}}, WithDepth(16)), 2);
    EXPECT_EQ(ChooseAmong({{.depth_bits = 0}, {.depth_bits = 8}}, WithDepth(16)), 0);
}

TEST(PixelFormatChoice, NoSamplesBeforeAnythingElse)
{
    EXPECT_EQ(
        ChooseAmong({{.depth_bits = 24, .samples = 4}, {.depth_bits = 32, .stencil_bits = 8}}, WithDepth(16)),
        2);
}

TEST(PixelFormatChoice, SmallestStencilOfEqualDepths)
{
    EXPECT_EQ(ChooseAmong({{.depth_bits = 24, .stencil_bits = 8}, {.depth_bits = 24}}, WithDepth(16)), 2);
    PIXELFORMATDESCRIPTOR descriptor = WithDepth(16);
    descriptor.cStencilBits = 1;
    EXPECT_EQ(ChooseAmong({{.depth_bits = 24}, {.depth_bits = 24, .stencil_bits = 8}}, descriptor), 2);
}

TEST(PixelFormatChoice, AlphaBitsArePreferred)
{
    EXPECT_EQ(ChooseAmong({{.alpha_bits = 0, .depth_bits = 24}, {.depth_bits = 24}}, WithDepth(16)), 2);
}

TEST(PixelFormatChoice, EmptyListHasNoFormat)
{
    EXPECT_EQ(ChooseAmong({}, WithDepth(0)), 0);
}

TEST(PixelFormatChoice, ListWithoutSamplesNamesNoMultisampling)
{
    FormatListBackend backend(std::vector<winsys::PixelFormat>{{.depth_bits = 24}});
    EXPECT_EQ(backend.Extensions(), "WGL_ARB_extensions_string WGL_ARB_pixel_format");
}

} // namespace karv_test
