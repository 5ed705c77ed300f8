// Pixel formats, contexts and windows of the control on the system's own windows.
#include "tests/control/windows_control_test.h"

#include "platform/winsys/opengl.h"
#include "platform/winsys/wgl_extensions.h"
#include "tests/support/import_patch.h"

#include <array>
#include <set>
#include <string_view>

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace karv_test
{
namespace
{

constexpr const wchar_t* kModule = L"KARV3DViewport10.dll";
constexpr const wchar_t* kPlatform = L"karv_platform.dll";
constexpr GLenum kGlSamples = 0x80A9;

int Samples()
{
    GLint samples = -1;
    glGetIntegerv(kGlSamples, &samples);
    return samples;
}

/// The system's first format with 4 samples for the viewport's attributes, asked for through a window of the
/// test.
int AskForFourSamples()
{
    const GlTestWindow window(10, 10);
    const auto choose = reinterpret_cast<PFNWGLCHOOSEPIXELFORMATARBPROC>(
        reinterpret_cast<void (*)()>(wglGetProcAddress("wglChoosePixelFormatARB")));
    const std::array<int, 22> attributes{WGL_DRAW_TO_WINDOW_ARB, 1,
                                         WGL_SUPPORT_OPENGL_ARB, 1,
                                         WGL_ACCELERATION_ARB,   WGL_FULL_ACCELERATION_ARB,
                                         WGL_COLOR_BITS_ARB,     24,
                                         WGL_ALPHA_BITS_ARB,     8,
                                         WGL_DEPTH_BITS_ARB,     16,
                                         WGL_STENCIL_BITS_ARB,   0,
                                         WGL_DOUBLE_BUFFER_ARB,  1,
                                         WGL_SAMPLE_BUFFERS_ARB, 1,
                                         WGL_SAMPLES_ARB,        4};
    const std::array<float, 2> no_floats{};
    int format = 0;
    UINT count = 0;
    choose(wglGetCurrentDC(), attributes.data(), no_floats.data(), 1, &format, &count);
    return count == 1 ? format : 0;
}

PROC WINAPI FindNothing(LPCSTR /*name*/)
{
    return nullptr;
}

BOOL WINAPI RefuseQuery(HDC, const int*, const float*, UINT, int*, UINT*)
{
    return FALSE;
}

PROC WINAPI FindRefusingQuery(LPCSTR name)
{
    if (std::string_view(name) == "wglChoosePixelFormatARB")
        return reinterpret_cast<PROC>(reinterpret_cast<void (*)()>(&RefuseQuery));
    return wglGetProcAddress(name);
}

template <typename Function>
void* Address(Function* function)
{
    return reinterpret_cast<void*>(function);
}

/// The hidden window that a failing probe leaves; null for none.
HWND FindDummy()
{
    return FindWindowExW(nullptr, nullptr, nullptr, L"Dummy");
}

} // namespace

using WindowsContext = WindowsControl;

TEST_F(WindowsContext, ProbeFindsAFormatOfFourSamples)
{
    const auto control = NewControl();
    EXPECT_EQ(wglGetCurrentContext(), control->hRC);
    EXPECT_EQ(Samples(), 4);
    EXPECT_EQ(GetPixelFormat(control->hDC), control->pixelFormat);
}

TEST_F(WindowsContext, PixelFormatIsTheOneThatTheSystemNames)
{
    const int expected = AskForFourSamples();
    ASSERT_NE(expected, 0);
    EXPECT_EQ(NewControl()->pixelFormat, expected);
}

TEST_F(WindowsContext, DummyWindowOfTheProbeIsGone)
{
    const auto control = NewControl();
    EXPECT_THAT(TopLevelTitles(), Not(Contains(L"Dummy")));
    EXPECT_EQ(FindDummy(), nullptr);
}

TEST_F(WindowsContext, SecondControlHasTheSameFormat)
{
    const auto first = NewControl();
    const auto second = NewControl();
    EXPECT_EQ(second->pixelFormat, first->pixelFormat);
    EXPECT_EQ(Samples(), 4);
}

TEST_F(WindowsContext, SecondControlWhoseQueryFailsReusesTheFormat)
{
    const auto first = NewControl();
    const ImportPatch refusal(kModule, "wglGetProcAddress", Address(&FindRefusingQuery));
    const auto second = NewControl();
    EXPECT_EQ(second->pixelFormat, first->pixelFormat);
    EXPECT_EQ(Samples(), 4);
    EXPECT_EQ(FindDummy(), nullptr);
}

TEST_F(WindowsContext, FailingProbeLeavesItsDummyWindowHidden)
{
    std::unique_ptr<KARVOpenGLControl> control;
    {
        const ImportPatch nothing(kModule, "wglGetProcAddress", Address(&FindNothing));
        control = NewControl();
    }
    const HWND dummy = FindDummy();
    ASSERT_NE(dummy, nullptr);
    EXPECT_FALSE(IsWindowVisible(dummy));
    EXPECT_EQ(GetPixelFormat(GetDC(dummy)), control->pixelFormat);
    EXPECT_EQ(GetPixelFormat(control->hDC), control->pixelFormat);
    EXPECT_EQ(Samples(), 0);
    ShowQuad(*control, kRedIndex);
    ASSERT_TRUE(RunFrames(2));
    EXPECT_TRUE(IsReddish(ReadLastFrame(control->m_hWnd).At(kWidth / 2, kHeight / 2)));
    control.reset();
    EXPECT_TRUE(IsWindow(dummy)) << "nothing tears it down";
    ::DestroyWindow(dummy);
}

TEST_F(WindowsContext, ControlsOneAfterTheOtherDraw)
{
    for (int i = 0; i < 3; ++i) {
        const auto control = NewControl();
        ShowQuad(*control, kGreenIndex);
        ASSERT_TRUE(RunFrames(2));
        EXPECT_TRUE(IsGreenish(ReadLastFrame(control->m_hWnd).At(kWidth / 2, kHeight / 2)));
    }
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(WindowsContext, OfTwoControlsTheCurrentOneDrawsItsScene)
{
    const auto first = NewControl();
    ShowQuad(*first, kRedIndex);
    const auto second = std::make_unique<KARVOpenGLControl>();
    second->CreateCtrl(CRect(kWidth, 0, 2 * kWidth, kHeight), &host_, false);
    ShowQuad(*second, kGreenIndex);
    ASSERT_TRUE(RunFrames(20));
    EXPECT_EQ(wglGetCurrentContext(), second->hRC);
    // Both draw to the second's context, which is current. Its own timer draws its own frame.
    second->OnTimer(1);
    EXPECT_TRUE(IsGreenish(ReadLastFrame(second->m_hWnd).At(kWidth / 2, kHeight / 2)));
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

/// A control in a host with several: it makes its own context current before every message.
class OwnContextControl : public KARVOpenGLControl
{
  public:
    LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (hRC != nullptr)
            wglMakeCurrent(hDC, hRC);
        return KARVOpenGLControl::WindowProc(message, wparam, lparam);
    }
};

TEST_F(WindowsContext, HostThatMakesContextsCurrentHasBothControls)
{
    std::array<OwnContextControl, 2> controls;
    const std::array<unsigned short, 2> colors{kRedIndex, kGreenIndex};
    for (std::size_t i = 0; i < 2; ++i) {
        const int left = static_cast<int>(i) * kWidth;
        controls[i].CreateCtrl(CRect(left, 0, left + kWidth, kHeight), &host_, false);
        ShowQuad(controls[i], colors[i]);
    }
    ASSERT_TRUE(RunFrames(40));
    for (std::size_t i = 0; i < 2; ++i) {
        SendMessageW(controls[i].m_hWnd, WM_TIMER, 1, 0);
        const Pixel middle = ReadLastFrame(controls[i].m_hWnd).At(kWidth / 2, kHeight / 2);
        EXPECT_TRUE(i == 0 ? IsReddish(middle) : IsGreenish(middle)) << i << ": " << middle;
    }
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

/// What the module and the framework create and destroy, counted at their calls to the system.
struct Made {
    int windows = 0;
    int windows_ended = 0;
    int contexts = 0;
    int contexts_ended = 0;
    std::set<HDC> device_contexts;
};

namespace
{

Made made;

HWND WINAPI CountWindow(DWORD ex_style, LPCWSTR class_name, LPCWSTR name, DWORD style, int x, int y,
                        int width, int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID param)
{
    const HWND window = CreateWindowExW(ex_style, class_name, name, style, x, y, width, height, parent, menu,
                                        instance, param);
    made.windows += window != nullptr ? 1 : 0;
    return window;
}

BOOL WINAPI CountWindowEnd(HWND window)
{
    const BOOL ended = DestroyWindow(window);
    made.windows_ended += ended != FALSE ? 1 : 0;
    return ended;
}

HGLRC WINAPI CountContext(HDC dc)
{
    const HGLRC context = wglCreateContext(dc);
    made.contexts += context != nullptr ? 1 : 0;
    return context;
}

BOOL WINAPI CountContextEnd(HGLRC context)
{
    const BOOL ended = wglDeleteContext(context);
    made.contexts_ended += ended != FALSE ? 1 : 0;
    return ended;
}

HDC WINAPI CountDeviceContext(HWND window)
{
    const HDC dc = GetDC(window);
    if (window != nullptr)
        made.device_contexts.insert(dc);
    return dc;
}

} // namespace

TEST_F(WindowsContext, FiveHundredControlsLeaveNothing)
{
    constexpr int kControls = 500;
    const std::size_t before = TopLevelTitles().size();
    made = {};
    {
        const ImportPatch module_window(kModule, "CreateWindowExW", Address(&CountWindow));
        const ImportPatch platform_window(kPlatform, "CreateWindowExW", Address(&CountWindow));
        const ImportPatch module_end(kModule, "DestroyWindow", Address(&CountWindowEnd));
        const ImportPatch platform_end(kPlatform, "DestroyWindow", Address(&CountWindowEnd));
        const ImportPatch context(kModule, "wglCreateContext", Address(&CountContext));
        const ImportPatch context_end(kModule, "wglDeleteContext", Address(&CountContextEnd));
        const ImportPatch device_context(kModule, "GetDC", Address(&CountDeviceContext));
        for (int i = 0; i < kControls; ++i)
            ASSERT_NE(NewControl()->hRC, nullptr) << i;
    }
    EXPECT_EQ(made.windows, 2 * kControls) << "the control's and the probe's";
    EXPECT_EQ(made.windows_ended, made.windows);
    EXPECT_EQ(made.contexts, 2 * kControls);
    EXPECT_EQ(made.contexts_ended, made.contexts);
    EXPECT_FALSE(made.device_contexts.empty());
    for (const HDC dc : made.device_contexts)
        EXPECT_EQ(WindowFromDC(dc), nullptr) << "it went with its window";
    EXPECT_EQ(TopLevelTitles().size(), before);
    EXPECT_EQ(::GetWindow(host_.m_hWnd, GW_CHILD), nullptr);
}

TEST_F(WindowsContext, FiveHundredControlsLeaveNoHandlesOfTheSystem)
{
    const auto user_objects = [] { return GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS); };
    const auto gdi_objects = [] { return GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); };
    NewControl();
    if (user_objects() == 0)
        GTEST_SKIP() << "not run: this system counts no objects of a process, which has windows all the same";
    const DWORD user_before = user_objects();
    const DWORD gdi_before = gdi_objects();
    for (int i = 0; i < 500; ++i)
        NewControl();
    EXPECT_LE(user_objects(), user_before + 5);
    EXPECT_LE(gdi_objects(), gdi_before + 5);
}

} // namespace karv_test
