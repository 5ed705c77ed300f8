// Creations that the window system, the base window or the driver refuses: nothing is shown, nothing is
// thrown, later calls do nothing.
#include "tests/support/control_test.h"

using namespace karv_test;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

using ControlCreationFailure = ControlTest;

/// A control whose base window answers WM_CREATE with a given result. It keeps the result of the control
/// itself.
class RefusedControl : public KARVOpenGLControl
{
  public:
    explicit RefusedControl(LRESULT base_answer = -1) : base_answer_(base_answer) {}

    LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        const LRESULT result = KARVOpenGLControl::WindowProc(message, wparam, lparam);
        if (message == WM_CREATE)
            answer = result;
        return result;
    }

    LRESULT answer = -1000;

  protected:
    LRESULT DefWindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        return message == WM_CREATE ? base_answer_
                                    : KARVOpenGLControl::DefWindowProc(message, wparam, lparam);
    }

  private:
    LRESULT base_answer_;
};

/// The operations that a host calls next.
void UseAsAHostWould(KARVOpenGLControl& control)
{
    control.AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), 1, 1.0F);
    control.CameraViewTop();
    control.SetBgColor(1, 2, 3);
    control.OnDraw(nullptr);
    control.OnTimer(1);
    control.ForceRenderStart();
}

TEST_F(ControlCreationFailure, ABaseThatRefusesLeavesNoWindowAndNoContext)
{
    const GlRecording gl;
    RefusedControl control;
    control.CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false);
    EXPECT_EQ(control.m_hWnd, nullptr);
    EXPECT_THAT(gl.Listing(), IsEmpty());
    EXPECT_THAT(window_calls_.Contexts(), IsEmpty());
    EXPECT_THAT(window_calls_.Listing(), Not(Contains("CreateWindowExW(Dummy)")));
}

TEST_F(ControlCreationFailure, ABaseThatRefusesIsPassedOnAsMinusOne)
{
    RefusedControl control;
    control.CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false);
    EXPECT_EQ(control.answer, -1);
}

TEST_F(ControlCreationFailure, ABaseThatAcceptsIsAnsweredWithZeroWhateverItSaid)
{
    RefusedControl control(7);
    control.CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false);
    EXPECT_EQ(control.answer, 0);
    EXPECT_NE(control.hRC, nullptr);
}

TEST_F(ControlCreationFailure, ARefusedWindowStillKeepsRectangleAndParent)
{
    const WindowRefusal refusal("CreateWindowExW", 1);
    KARVOpenGLControl control;
    control.CreateCtrl(CRect(1, 2, 30, 40), &host_, false);
    EXPECT_EQ(control.m_hWnd, nullptr);
    EXPECT_EQ(control.createRect.right, 30);
    EXPECT_EQ(control.initialRect.bottom, 40);
    EXPECT_EQ(control.parentWnd, &host_);
}

TEST_F(ControlCreationFailure, ARefusedWindowMakesNoContext)
{
    const WindowRefusal refusal("CreateWindowExW", 1);
    const GlRecording gl;
    const auto control = NewControl();
    EXPECT_THAT(gl.Listing(), IsEmpty());
    EXPECT_THAT(window_calls_.Contexts(), IsEmpty());
}

TEST_F(ControlCreationFailure, ARefusedWindowIsStillAskedToBeTransparent)
{
    const WindowRefusal refusal("CreateWindowExW", 1);
    const GlRecording gl;
    const auto control = NewControl(true);
    EXPECT_THAT(gl.Listing(), testing::ElementsAre("glDisable(GL_DEPTH_TEST)", "glDisable(GL_CULL_FACE)",
                                                   "glEnable(GL_BLEND)",
                                                   "glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)"));
}

TEST_F(ControlCreationFailure, AControlWithoutAWindowTakesEveryCallAndGoes)
{
    const TraceRecording trace;
    {
        const WindowRefusal refusal("CreateWindowExW", 1);
        const auto control = NewControl();
        UseAsAHostWould(*control);
        EXPECT_EQ(control->GetFaceNumber(), 1);
    }
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlCreationFailure, ACreationWithoutAParentIsRefusedQuietly)
{
    const TraceRecording trace;
    KARVOpenGLControl control;
    control.CreateCtrl(CRect(0, 0, kWidth, kHeight), nullptr, false);
    EXPECT_EQ(control.m_hWnd, nullptr);
    EXPECT_EQ(control.parentWnd, nullptr);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlCreationFailure, WithoutAProbeWindowTheFormatIsChosenForTheControlItself)
{
    const WindowRefusal refusal("CreateWindowExW", 2);
    window_calls_.Clear();
    const auto control = NewControl();
    const std::string set = "SetPixelFormat(dc of 3DView, " + std::to_string(control->pixelFormat) + ")";
    EXPECT_THAT(window_calls_.Listing(),
                testing::ElementsAre(
                    "CreateWindowExW(3DView)", "CreateWindowExW(Dummy)", "GetDC(3DView)",
                    "ChoosePixelFormat(dc of 3DView)", "GetDC(3DView)", set, "wglCreateContext(dc of 3DView)",
                    "wglMakeCurrent(dc of 3DView, context 1)", "SetFocus(3DView)", "SetFocus(3DView)"));
    EXPECT_EQ(::wglGetCurrentContext(), control->hRC);
}

TEST_F(ControlCreationFailure, ARefusedPixelFormatIsNotNoticed)
{
    const WindowRefusal refusal("SetPixelFormat", 2); // the control's; the first is the probe's
    const TraceRecording trace;
    const auto control = NewControl();
    EXPECT_NE(control->m_hWnd, nullptr);
    EXPECT_EQ(control->hRC, nullptr); // a context needs a format
    EXPECT_NE(control->pixelFormat, 0);
    UseAsAHostWould(*control);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlCreationFailure, ARefusedContextIsNotNoticed)
{
    const WindowRefusal refusal("wglCreateContext", 2);
    const TraceRecording trace;
    const GlRecording gl;
    const auto control = NewControl();
    EXPECT_NE(control->m_hWnd, nullptr);
    EXPECT_EQ(control->hRC, nullptr);
    EXPECT_EQ(gl.Count("glFrontFace"), 1); // the fixed state is still set
    UseAsAHostWould(*control);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlCreationFailure, AContextThatCannotBeMadeCurrentIsNotNoticed)
{
    const WindowRefusal refusal("wglMakeCurrent", 3); // the probe takes two
    const TraceRecording trace;
    const auto control = NewControl();
    EXPECT_NE(control->hRC, nullptr);
    EXPECT_EQ(::wglGetCurrentContext(), nullptr);
    UseAsAHostWould(*control);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlCreationFailure, AProbeWithoutAContextStillGivesAControl)
{
    const WindowRefusal refusal("wglCreateContext", 1);
    const TraceRecording trace;
    const auto control = NewControl();
    EXPECT_NE(control->hRC, nullptr);
    EXPECT_EQ(::wglGetCurrentContext(), control->hRC);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlCreationFailure, AFaultInTheFixedStateIsReportedOnceAndTheWindowStays)
{
    const TraceRecording trace;
    GlHook fault = ThrowAt("glShadeModel", 1, 42);
    const auto control = NewControl(false, 0, 0);
    EXPECT_NE(control->m_hWnd, nullptr);
    EXPECT_THAT(trace.Faults(), testing::ElementsAre(StartsWith(".\\KARVOpenGLControl.cpp:")));
}

/// A control whose base handling of WM_CREATE fails with an exception.
class FaultingControl : public KARVOpenGLControl
{
  protected:
    LRESULT DefWindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (message == WM_CREATE)
            throw 42;
        return KARVOpenGLControl::DefWindowProc(message, wparam, lparam);
    }
};

TEST_F(ControlCreationFailure, AFaultInTheBaseIsReportedOnceAndLeavesAWindowWithoutAContext)
{
    const TraceRecording trace;
    FaultingControl control;
    control.CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false);
    EXPECT_NE(control.m_hWnd, nullptr); // a fault makes the result 0, which accepts the window
    EXPECT_EQ(control.hRC, nullptr);
    EXPECT_THAT(window_calls_.Contexts(), IsEmpty());
    EXPECT_THAT(trace.Faults(), testing::ElementsAre(StartsWith(".\\KARVOpenGLControl.cpp:")));
}

TEST_F(ControlCreationFailure, AFaultInTheTransparentStateKeepsTheWindowAndSkipsTheRest)
{
    const TraceRecording trace;
    const GlHook fault = ThrowAt("glEnable", 8, 42); // of blending, after seven in the fixed state
    const GlRecording gl;
    const auto control = NewControl(true);
    EXPECT_NE(control->hRC, nullptr);
    EXPECT_EQ(control->createRect.right, kWidth);
    EXPECT_THAT(trace.Faults(), testing::ElementsAre(StartsWith(".\\KARVOpenGLControl.cpp:")));
    EXPECT_EQ(gl.Count("glBlendFunc"), 0);
}

} // namespace
