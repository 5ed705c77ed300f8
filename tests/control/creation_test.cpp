// The control's window and context from creation to destruction, call by call.
#include "tests/support/control_test.h"

#include "platform/host/gs/manager.h"
#include "platform/winsys/opengl.h"

#include <algorithm>
#include <array>
#include <string_view>

using namespace karv_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr UINT kClassStyle = 0x23;         // CS_VREDRAW | CS_HREDRAW | CS_OWNDC
constexpr DWORD kChildStyle = 0x5600'0000; // WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN

/// The calls of the creation before the first size message.
std::vector<std::string> UntilTheFirstSize(const GlRecording& gl)
{
    std::vector<std::string> lines = gl.Listing();
    for (auto line = lines.begin(); line != lines.end(); ++line) {
        if (line->starts_with("glViewport")) {
            lines.erase(line, lines.end());
            break;
        }
    }
    return lines;
}

std::vector<std::string> FromTheFirstSize(const GlRecording& gl)
{
    std::vector<std::string> lines = gl.Listing();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(UntilTheFirstSize(gl).size()));
    return lines;
}

class ControlCreation : public ControlTest
{
  protected:
    /// The lines without those that carry format numbers, which depend on the driver.
    static std::vector<std::string> WithoutFormats(std::vector<std::string> lines)
    {
        for (std::string& line : lines)
            if (line.starts_with("SetPixelFormat"))
                line = line.substr(0, line.find(',')) + ")";
        return lines;
    }
};

TEST_F(ControlCreation, TheFixedStateIsSetOnceInItsOrderAndTheCameraApplied)
{
    SetHostBackgroundColor({255, 0, 51});
    const GlRecording gl;
    const auto control = NewControl();
    // 51 / 255 = 0.2. The last eight calls apply the camera, whose eye and target are both at the origin.
    EXPECT_THAT(
        UntilTheFirstSize(gl),
        ElementsAre(
            "glClearColor(1, 0, 0.2, 1)", "glClearDepth(1)", "glEnable(GL_CULL_FACE)", "glFrontFace(GL_CW)",
            "glCullFace(GL_BACK)", "glEnable(GL_DEPTH_TEST)", "glDepthFunc(GL_LEQUAL)",
            "glLightfv(GL_LIGHT0, GL_AMBIENT, [0.01, 0.01, 0.01, 1])",
            "glLightfv(GL_LIGHT0, GL_DIFFUSE, [1, 1, 1, 1])",
            "glLightfv(GL_LIGHT0, GL_SPECULAR, [1, 1, 1, 1])",
            "glMaterialfv(GL_FRONT, GL_AMBIENT, [1, 1, 1, 1])",
            "glMaterialfv(GL_FRONT, GL_DIFFUSE, [1, 1, 1, 1])",
            "glMaterialfv(GL_FRONT, GL_SPECULAR, [0.5, 0.5, 0.5, 0.5])",
            "glMaterialfv(GL_FRONT, GL_SHININESS, [5])", "glEnable(GL_LIGHT0)", "glEnable(GL_LIGHTING)",
            "glEnable(GL_COLOR_MATERIAL)", "glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE)",
            "glEnable(GL_NORMALIZE)", "glShadeModel(GL_SMOOTH)",
            "glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST)", "glEnable(GL_MULTISAMPLE)",
            "glPolygonMode(GL_FRONT_AND_BACK, GL_FILL)", "glLoadIdentity()", "glMatrixMode(GL_PROJECTION)",
            "glLoadIdentity()", "gluPerspective(40, 1, 0.01, 1000)", "glMatrixMode(GL_MODELVIEW)",
            "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()", "gluLookAt(0, 0, 0, 0, 0, 0, 0, 0, 1)"));
}

TEST_F(ControlCreation, TheFirstSizeFollowsWithAnEmptyScene)
{
    const GlRecording gl;
    const auto control = NewControl();
    // 64 x 32 pixels are an aspect of 2. Without a scene the size is 0 and the far distance 0.
    EXPECT_THAT(FromTheFirstSize(gl),
                ElementsAre("glViewport(0, 0, 64, 32)", "glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                            "gluPerspective(40, 2, 0.1, 0)", "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                            "glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                            "gluPerspective(40, 2, 0.01, 0)", "glMatrixMode(GL_MODELVIEW)",
                            "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                            "gluLookAt(0, 0, 0, 0, 0, 0, 0, 0, 1)"));
}

TEST_F(ControlCreation, NothingBeyondVersion11ButTheEnumForMultisamplingIsUsed)
{
    const GlRecording gl;
    const auto control = NewControl(true);
    EXPECT_THAT(gl.EnumsBeyond11(), ElementsAre("GL_MULTISAMPLE"));
}

TEST_F(ControlCreation, ARefusedMultisamplingEnumIsTolerated)
{
    const GlRefusal refusal(GL_MULTISAMPLE);
    const TraceRecording trace;
    const auto control = NewControl();
    EXPECT_THAT(trace.Faults(), IsEmpty());
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
}

TEST_F(ControlCreation, TheWindowCallsComeInOrderWithTheProbeFirst)
{
    window_calls_.Clear();
    const GlHook state("glClearColor", [this](int) { window_calls_.Mark("the fixed state"); });
    const GlHook size("glViewport", [this](int) { window_calls_.Mark("the first size"); });
    const auto control = NewControl();
    EXPECT_THAT(WithoutFormats(window_calls_.Listing()),
                ElementsAre("CreateWindowExW(3DView)", "CreateWindowExW(Dummy)", "ShowWindow(Dummy, 0)",
                            "GetDC(Dummy)", "ChoosePixelFormat(dc of Dummy)", "SetPixelFormat(dc of Dummy)",
                            "wglCreateContext(dc of Dummy)", "wglMakeCurrent(dc of Dummy, context 1)",
                            "wglGetProcAddress(wglGetExtensionsStringARB)", "wglGetCurrentDC()",
                            "wglGetProcAddress(wglChoosePixelFormatARB)", "GetDC(Dummy)",
                            "wglMakeCurrent(dc of Dummy, none)", "wglDeleteContext(context 1)",
                            "GetDC(3DView)", "ReleaseDC(3DView, dc of 3DView)", "DestroyWindow(Dummy)",
                            "GetDC(3DView)", "SetPixelFormat(dc of 3DView)", "wglCreateContext(dc of 3DView)",
                            "wglMakeCurrent(dc of 3DView, context 2)", "the fixed state", "SetFocus(3DView)",
                            "the first size", "SetFocus(3DView)"));
}

TEST_F(ControlCreation, TheControlsWindowHasItsStyleNameAndClass)
{
    const auto control = NewControl();
    const WindowCreation& created = window_calls_.Creation(L"3DView");
    EXPECT_EQ(created.window, control->m_hWnd);
    EXPECT_EQ(created.ex_style, 0U);
    EXPECT_EQ(created.style, kChildStyle);
    EXPECT_EQ(created.parent, host_.m_hWnd);
    EXPECT_EQ(created.menu, nullptr); // control id 0
    EXPECT_EQ(created.param, nullptr);
    EXPECT_EQ(created.window_class.style, kClassStyle);
    EXPECT_EQ(created.window_class.hCursor, nullptr);
    EXPECT_EQ(created.window_class.hIcon, nullptr);
    EXPECT_EQ(created.window_class.hbrBackground, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
}

TEST_F(ControlCreation, TheControlsWindowLiesAtTheGivenRectangle)
{
    KARVOpenGLControl control;
    control.CreateCtrl(CRect(5, 7, 45, 37), &host_, false);
    const RECT rect = window_calls_.Creation(L"3DView").rect;
    EXPECT_EQ(rect.left, 5);
    EXPECT_EQ(rect.top, 7);
    EXPECT_EQ(rect.right, 40);  // 45 - 5
    EXPECT_EQ(rect.bottom, 30); // 37 - 7
    RECT client{};
    ASSERT_TRUE(control.GetClientRect(&client));
    EXPECT_EQ(client.right, 40);
    EXPECT_EQ(client.bottom, 30);
}

TEST_F(ControlCreation, RectangleAndParentAreKept)
{
    KARVOpenGLControl control;
    control.CreateCtrl(CRect(5, 7, 45, 37), &host_, false);
    for (const CRect& kept : {control.createRect, control.initialRect}) {
        EXPECT_EQ(kept.left, 5);
        EXPECT_EQ(kept.top, 7);
        EXPECT_EQ(kept.right, 45);
        EXPECT_EQ(kept.bottom, 37);
    }
    EXPECT_EQ(control.parentWnd, &host_);
}

TEST_F(ControlCreation, RectangleAndParentAreKeptOnceTheWindowIsThere)
{
    KARVOpenGLControl control;
    int sizes = 0;
    const GlHook first_size("glViewport", [&](int) {
        ++sizes;
        EXPECT_EQ(control.createRect.right, 0);
        EXPECT_EQ(control.initialRect.right, 0);
        EXPECT_EQ(control.parentWnd, nullptr);
    });
    control.CreateCtrl(CRect(5, 7, 45, 37), &host_, false);
    EXPECT_EQ(sizes, 1);
}

TEST_F(ControlCreation, TheProbeWindowIsASmallPlainTopLevelOne)
{
    const auto control = NewControl();
    const WindowCreation& dummy = window_calls_.Creation(L"Dummy");
    EXPECT_EQ(dummy.ex_style, 0U);
    EXPECT_EQ(dummy.style, 0U);
    EXPECT_EQ(dummy.rect.left, 0);
    EXPECT_EQ(dummy.rect.top, 0);
    EXPECT_EQ(dummy.rect.right, 10);
    EXPECT_EQ(dummy.rect.bottom, 10);
    EXPECT_EQ(dummy.parent, nullptr);
    EXPECT_EQ(dummy.menu, nullptr);
    EXPECT_EQ(dummy.instance, ::GetModuleHandleW(nullptr));
    EXPECT_EQ(dummy.param, nullptr);
    EXPECT_EQ(dummy.window_class.style, kClassStyle);
    EXPECT_EQ(dummy.window_class.hCursor, nullptr);
    EXPECT_EQ(dummy.window_class.hbrBackground, nullptr);
    EXPECT_EQ(dummy.window_class.hIcon, nullptr);
}

TEST_F(ControlCreation, EveryPixelFormatCallGetsTheOneDescriptor)
{
    const auto control = NewControl();
    ASSERT_EQ(window_calls_.Descriptors().size(), 3U); // chosen and set for the probe, set for the control
    for (const PIXELFORMATDESCRIPTOR& descriptor : window_calls_.Descriptors()) {
        EXPECT_EQ(descriptor.nSize, 40);
        EXPECT_EQ(descriptor.nVersion, 1);
        EXPECT_EQ(descriptor.dwFlags, 0x25U); // double-buffered, for a window, for OpenGL
        EXPECT_EQ(descriptor.iPixelType, PFD_TYPE_RGBA);
        EXPECT_EQ(descriptor.cColorBits, 32);
        EXPECT_EQ(descriptor.cDepthBits, 16);
        EXPECT_EQ(descriptor.iLayerType, PFD_MAIN_PLANE);
        const std::array rest = {
            descriptor.cRedBits,        descriptor.cRedShift,       descriptor.cGreenBits,
            descriptor.cGreenShift,     descriptor.cBlueBits,       descriptor.cBlueShift,
            descriptor.cAlphaBits,      descriptor.cAlphaShift,     descriptor.cAccumBits,
            descriptor.cAccumRedBits,   descriptor.cAccumGreenBits, descriptor.cAccumBlueBits,
            descriptor.cAccumAlphaBits, descriptor.cStencilBits,    descriptor.cAuxBuffers,
            descriptor.bReserved};
        EXPECT_THAT(rest, testing::Each(0));
        EXPECT_THAT((std::array{descriptor.dwLayerMask, descriptor.dwVisibleMask, descriptor.dwDamageMask}),
                    testing::Each(0U));
    }
}

TEST_F(ControlCreation, TheContextIsKeptAndCurrent)
{
    const auto control = NewControl();
    ASSERT_NE(control->hRC, nullptr);
    EXPECT_EQ(::wglGetCurrentContext(), control->hRC);
    EXPECT_EQ(::WindowFromDC(control->hDC), control->m_hWnd);
    EXPECT_EQ(::GetPixelFormat(control->hDC), control->pixelFormat);
}

TEST_F(ControlCreation, TheHostsBackgroundShowsUntilAnotherIsSet)
{
    SetHostBackgroundColor({10, 200, 30});
    const auto control = NewControl();
    EXPECT_TRUE(IsNear(Frame(*control).At(1, 1), {10, 200, 30}));
    control->SetBgColor(40, 50, 250);
    EXPECT_TRUE(IsNear(Frame(*control).At(1, 1), {40, 50, 250}));
}

TEST_F(ControlCreation, TransparencyIsSetAfterEverythingElse)
{
    const GlRecording gl;
    const auto control = NewControl(true);
    const std::vector<std::string> lines = gl.Listing();
    ASSERT_GE(lines.size(), 5U);
    EXPECT_THAT(std::vector<std::string>(lines.end() - 5, lines.end()),
                ElementsAre("gluLookAt(0, 0, 0, 0, 0, 0, 0, 0, 1)", "glDisable(GL_DEPTH_TEST)",
                            "glDisable(GL_CULL_FACE)", "glEnable(GL_BLEND)",
                            "glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)"));
}

TEST_F(ControlCreation, TransparencyStaysThroughFramesAndSizes)
{
    const auto control = NewControl(true);
    control->OnTimer(1);
    control->MoveWindow(CRect(0, 0, 20, 20));
    control->OnTimer(1);
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_FALSE(glIsEnabled(GL_CULL_FACE));
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
}

TEST_F(ControlCreation, AnOpaqueControlTestsDepthCullsAndDoesNotBlend)
{
    const auto control = NewControl(false);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
}

TEST_F(ControlCreation, AZeroSizedControlHasAContextAndWasNeverSized)
{
    const GlRecording gl;
    const auto control = NewControl(false, 0, 0);
    EXPECT_NE(control->hRC, nullptr);
    EXPECT_EQ(gl.Count("glViewport"), 0);
    EXPECT_EQ(control->panScale, -1.0F);
}

TEST_F(ControlCreation, CreationIsTracedInNestedEntries)
{
    TraceRecording trace;
    auto control = std::make_unique<KARVOpenGLControl>();
    trace.Clear();
    control->CreateCtrl(CRect(0, 0, 0, 0), &host_, false);
    const std::string c = "KARVOpenGLControl::";
    const std::string k = "KARVGLCamera::";
    EXPECT_THAT(trace.Listing(),
                ElementsAre("> " + c + "CreateCtrl", "> " + c + "OnCreate", "> " + c + "GLInitializeCtrl",
                            "> " + c + "GLInitializeLight", "< " + c + "GLInitializeLight",
                            "> " + c + "GLInitializeMaterials", "< " + c + "GLInitializeMaterials",
                            "> " + c + "OnDraw", "> " + k + "RotateCamera", "< " + k + "RotateCamera",
                            "> " + k + "RotateCamera", "< " + k + "RotateCamera", "> " + k + "PanCamera",
                            "< " + k + "PanCamera", "> " + k + "PanCamera", "< " + k + "PanCamera",
                            "> " + k + "ZoomAt", "< " + k + "ZoomAt", "> " + k + "UpdateCamera",
                            "< " + k + "UpdateCamera", "< " + c + "OnDraw", "< " + c + "GLInitializeCtrl",
                            "< " + c + "OnCreate", "> " + c + "OnSize", "< " + c + "OnSize",
                            "< " + c + "CreateCtrl"));
}

TEST_F(ControlCreation, TheDestructorReleasesContextAndWindowInOrder)
{
    // Marks the end of the destructor's own part; the base destroys a window that is left.
    struct EndMark : TraceSink {
        explicit EndMark(WindowCalls& listener) : calls(listener), previous(InstallTraceSink(this)) {}
        EndMark(const EndMark&) = delete;
        EndMark& operator=(const EndMark&) = delete;
        ~EndMark() override { InstallTraceSink(previous); }
        void EnterCall(const wchar_t*) noexcept override {}
        void LeaveCall(const wchar_t* name) noexcept override
        {
            if (std::wstring_view(name) == L"KARVOpenGLControl::~KARVOpenGLControl")
                calls.Mark("the entry closes");
        }
        void ReportFault(const wchar_t*, int) noexcept override {}
        WindowCalls& calls;
        TraceSink* previous;
    };
    auto control = NewControl();
    window_calls_.Clear();
    const EndMark mark(window_calls_);
    control.reset();
    EXPECT_THAT(window_calls_.Listing(),
                ElementsAre("wglMakeCurrent(dc of 3DView, none)", "wglDeleteContext(context 2)",
                            "GetDC(3DView)", "ReleaseDC(3DView, dc of 3DView)", "DestroyWindow(3DView)",
                            "the entry closes"));
}

TEST_F(ControlCreation, TheDestructorMakesNoGlCall)
{
    auto control = NewControl();
    control->AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), 1, 1.0F);
    const GlRecording gl;
    control.reset();
    EXPECT_THAT(gl.Listing(), IsEmpty());
}

TEST_F(ControlCreation, TheDestructorsEntryClosesBeforeTheEntitiesGo)
{
    auto control = NewControl();
    control->AllocateMemory(2);
    control->AppendGeometry(KARVGraphicalEntity());
    control->AppendGeometry(KARVGraphicalEntity());
    TraceRecording trace;
    control.reset();
    EXPECT_THAT(trace.Listing(), ElementsAre("> KARVOpenGLControl::~KARVOpenGLControl",
                                             "< KARVOpenGLControl::~KARVOpenGLControl",
                                             "> KARVGraphicalEntity::~KARVGraphicalEntity",
                                             "< KARVGraphicalEntity::~KARVGraphicalEntity",
                                             "> KARVGraphicalEntity::~KARVGraphicalEntity",
                                             "< KARVGraphicalEntity::~KARVGraphicalEntity"));
}

TEST_F(ControlCreation, DestructionLeavesNoContextAndNoWindow)
{
    auto control = NewControl();
    const HWND window = control->m_hWnd;
    control.reset();
    EXPECT_EQ(::wglGetCurrentContext(), nullptr);
    EXPECT_FALSE(::IsWindow(window));
}

TEST_F(ControlCreation, TheDestructorClearsTheContextHandle)
{
    alignas(KARVOpenGLControl) unsigned char storage[sizeof(KARVOpenGLControl)];
    auto* const control = new (storage) KARVOpenGLControl;
    control->CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false);
    HGLRC seen = control->hRC;
    ASSERT_NE(seen, nullptr);
    // The context handle is null when the window is destroyed.
    struct Watcher : TraceSink {
        void EnterCall(const wchar_t*) noexcept override {}
        void LeaveCall(const wchar_t*) noexcept override { *seen = control->hRC; }
        void ReportFault(const wchar_t*, int) noexcept override {}
        KARVOpenGLControl* control = nullptr;
        HGLRC* seen = nullptr;
    } watcher;
    watcher.control = control;
    watcher.seen = &seen;
    TraceSink* const previous = InstallTraceSink(&watcher);
    control->~KARVOpenGLControl();
    InstallTraceSink(previous);
    EXPECT_EQ(seen, nullptr);
}

TEST_F(ControlCreation, AControlThatWasNeverCreatedCanBeDestroyed)
{
    const TraceRecording trace;
    {
        const KARVOpenGLControl control;
    }
    EXPECT_THAT(trace.Faults(), IsEmpty());
    EXPECT_THAT(trace.OutermostCalls(),
                ElementsAre("KARVOpenGLControl::KARVOpenGLControl", "KARVOpenGLControl::~KARVOpenGLControl"));
}

TEST_F(ControlCreation, AParentThatGoesFirstTakesTheWindowAndTheControlDeletesItsContext)
{
    auto control = NewControl();
    host_.DestroyWindow();
    EXPECT_EQ(control->m_hWnd, nullptr);
    window_calls_.Clear();
    const TraceRecording trace;
    control.reset();
    EXPECT_EQ(window_calls_.Count("wglDeleteContext(context 2)"), 1);
    EXPECT_EQ(::wglGetCurrentContext(), nullptr);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlCreation, OfTwoControlsGlGoesToTheOneMadeLast)
{
    const auto first = NewControl();
    const auto second = NewControl();
    first->SetBgColor(0, 0, 255);
    EXPECT_EQ(::wglGetCurrentContext(), second->hRC);
    EXPECT_TRUE(IsNear(Frame(*second).At(1, 1), {0, 0, 255}));
}

TEST_F(ControlCreation, OfTwoControlsEachSwapsItsOwnWindow)
{
    const auto first = NewControl();
    const auto second = NewControl();
    window_calls_.Clear();
    first->OnTimer(1);
    second->OnTimer(1);
    EXPECT_EQ(::WindowFromDC(first->hDC), first->m_hWnd);
    EXPECT_EQ(::WindowFromDC(second->hDC), second->m_hWnd);
    EXPECT_NE(first->hDC, second->hDC);
    EXPECT_EQ(window_calls_.Count("SwapBuffers(dc of 3DView)"), 2);
}

TEST_F(ControlCreation, DestroyingOneOfTwoControlsLeavesNoneCurrent)
{
    auto first = NewControl();
    const auto second = NewControl();
    first.reset();
    EXPECT_EQ(::wglGetCurrentContext(), nullptr);
    ASSERT_TRUE(::wglMakeCurrent(second->hDC, second->hRC));
    second->SetBgColor(0, 255, 0);
    EXPECT_TRUE(IsNear(Frame(*second).At(1, 1), {0, 255, 0}));
}

TEST_F(ControlCreation, AHundredInARowLeaveNothingBehind)
{
    for (int i = 0; i < 100; ++i) {
        const auto control = NewControl();
        ASSERT_NE(control->hRC, nullptr) << i;
        control->OnTimer(1);
    }
    ASSERT_EQ(window_calls_.Creations().size(), 201U); // the host's, and two for each control
    for (const WindowCreation& creation : window_calls_.Creations())
        ASSERT_EQ(::IsWindow(creation.window) != FALSE, creation.name == L"host");
    EXPECT_EQ(::wglGetCurrentContext(), nullptr);
}

} // namespace
