// The frame timer, one frame call by call, and the frame-rate throttle.
#include "tests/support/control_test.h"

#include "platform/host/db/entities.h"
#include "platform/winsys/backends.h"
#include "platform/winsys/opengl.h"

using namespace karv_test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

namespace
{

const char* const kReadModelview = "glGetDoublev(GL_MODELVIEW_MATRIX, ptr)";
const char* const kReadProjection = "glGetDoublev(GL_PROJECTION_MATRIX, ptr)";
const char* const kReadViewport = "glGetIntegerv(GL_VIEWPORT, ptr)";
const char* const kClear = "glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT)";
const char* const kTimer = "SetTimer(3DView, 1, 1, null)";

std::string ProjectText(const std::string& point)
{
    return "gluProject(" + point + ", ptr, ptr, ptr, ptr, ptr, ptr)";
}

class ControlFrame : public ControlTest
{
  protected:
    ControlFrame() : control_(NewControl()) {}

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    void AppendTriangle(KARVGLVertex a, KARVGLVertex b, int type = 0)
    {
        control_->AppendGeometry(TriangleInBox(a, b), TypeOf(type), 1, 1.0F);
    }

    /// Draws a frame that takes this many milliseconds.
    void FrameOf(std::clock_t ms)
    {
        const GlHook drawing("glClear", [&](int) { now_ += ms; });
        control_->OnTimer(1);
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

TEST_F(ControlFrame, TheFirstPaintStartsTheTimer)
{
    window_calls_.Clear();
    ASSERT_TRUE(PumpUntil([&] { return control_->renderStarted; }));
    EXPECT_EQ(window_calls_.Count(kTimer), 1);
    EXPECT_NE(control_->timerId, 0U);
}

TEST_F(ControlFrame, LaterPaintsStartNoSecondTimer)
{
    window_calls_.Clear();
    for (int i = 0; i < 3; ++i) {
        ::InvalidateRect(control_->m_hWnd, nullptr, FALSE);
        PumpPending();
    }
    EXPECT_EQ(window_calls_.Count(kTimer), 1);
}

TEST_F(ControlFrame, APaintIsAnsweredSoThatNoOtherWaits)
{
    PumpPending();
    MSG message{};
    EXPECT_FALSE(::PeekMessageW(&message, control_->m_hWnd, WM_PAINT, WM_PAINT, PM_NOREMOVE));
}

/// A control that records whether its frames had been started when its base painted.
class PaintedControl : public KARVOpenGLControl
{
  public:
    std::vector<bool> started_at_base_paint;

  protected:
    LRESULT DefWindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (message == WM_PAINT)
            started_at_base_paint.push_back(renderStarted);
        return KARVOpenGLControl::DefWindowProc(message, wparam, lparam);
    }
};

TEST_F(ControlFrame, TheBasePaintsBeforeTheTimerStarts)
{
    PaintedControl control;
    control.CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false);
    PumpPending();
    ASSERT_FALSE(control.started_at_base_paint.empty());
    EXPECT_FALSE(control.started_at_base_paint.front());
    EXPECT_TRUE(control.renderStarted);
}

TEST_F(ControlFrame, ARefusedTimerIsNotAskedForAgainByPaints)
{
    const WindowRefusal refusal("SetTimer");
    window_calls_.Clear();
    PumpPending();
    ::InvalidateRect(control_->m_hWnd, nullptr, FALSE);
    PumpPending();
    EXPECT_EQ(window_calls_.Count(kTimer), 1);
    EXPECT_EQ(control_->timerId, 0U);
    EXPECT_TRUE(control_->renderStarted);
}

TEST_F(ControlFrame, APaintDrawsNothingItself)
{
    const GlRecording gl;
    PumpPending();
    EXPECT_THAT(gl.Listing(), IsEmpty());
}

TEST_F(ControlFrame, TheTimerDrawsFrames)
{
    EXPECT_TRUE(PumpUntil([&] { return winsys::GetSwapCount(control_->m_hWnd) >= 3; }));
}

TEST_F(ControlFrame, NoFrameComesBeforeTheFirstPaint)
{
    EXPECT_EQ(winsys::GetSwapCount(control_->m_hWnd), 0U);
    EXPECT_EQ(control_->timerId, 0U);
}

TEST_F(ControlFrame, AForcedStartArmsTheTimerAndAppliesTheCamera)
{
    window_calls_.Clear();
    const TraceRecording trace;
    control_->ForceRenderStart();
    EXPECT_THAT(window_calls_.Listing(), ElementsAre(kTimer, "SetFocus(3DView)"));
    EXPECT_TRUE(control_->renderStarted);
    EXPECT_NE(control_->timerId, 0U);
    EXPECT_THAT(trace.Calls(), testing::Contains("KARVOpenGLControl::OnDraw"));
}

TEST_F(ControlFrame, AForcedStartCountsAsStartedAfterItsRedraw)
{
    int redraws = 0;
    const GlHook view("gluLookAt", [&](int) {
        ++redraws;
        EXPECT_FALSE(control_->renderStarted);
        EXPECT_NE(control_->timerId, 0U);
    });
    control_->ForceRenderStart();
    EXPECT_EQ(redraws, 1);
    EXPECT_TRUE(control_->renderStarted);
}

TEST_F(ControlFrame, APaintAfterAForcedStartStartsNoSecondTimer)
{
    window_calls_.Clear();
    control_->ForceRenderStart();
    PumpPending();
    EXPECT_EQ(window_calls_.Count(kTimer), 1);
}

TEST_F(ControlFrame, ASecondForcedStartArmsTheSameTimerAgain)
{
    control_->ForceRenderStart();
    const UINT_PTR id = control_->timerId;
    window_calls_.Clear();
    control_->ForceRenderStart();
    EXPECT_EQ(window_calls_.Count(kTimer), 1);
    EXPECT_EQ(control_->timerId, id);
}

TEST_F(ControlFrame, AForcedStartWithoutAWindowStartsNoTimer)
{
    window_calls_.Clear();
    KARVOpenGLControl control;
    control.timerId = 4711;
    const TraceRecording trace;
    control.ForceRenderStart();
    EXPECT_THAT(window_calls_.Listing(), testing::Not(testing::Contains(StartsWith("SetTimer"))));
    EXPECT_EQ(control.timerId, 0U);
    EXPECT_TRUE(control.renderStarted);
    EXPECT_THAT(trace.Calls(), testing::Contains("KARVOpenGLControl::OnDraw"));
    MSG message{};
    EXPECT_FALSE(::PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE)) << "a timer of the thread";
}

TEST_F(ControlFrame, TheTimerDiesWithTheWindow)
{
    control_->ForceRenderStart();
    const HWND window = control_->m_hWnd;
    control_.reset();
    MSG message{};
    EXPECT_FALSE(::PeekMessageW(&message, window, WM_TIMER, WM_TIMER, PM_REMOVE));
}

TEST_F(ControlFrame, AnEmptyFrameClearsReadsTheMatricesAndSwaps)
{
    window_calls_.Clear();
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_THAT(gl.Listing(), ElementsAre(kClear, kReadModelview, kReadProjection, kReadViewport));
    EXPECT_THAT(window_calls_.Listing(), ElementsAre("SwapBuffers(dc of 3DView)"));
}

TEST_F(ControlFrame, TheTimersIdIsNotExamined)
{
    const GlRecording gl;
    control_->OnTimer(99);
    EXPECT_EQ(gl.Count("glClear"), 1);
}

TEST_F(ControlFrame, OneTriangleIsProjectedAndDrawn)
{
    AppendTriangle({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_THAT(gl.Listing(),
                ElementsAre(kClear, kReadModelview, kReadProjection, kReadViewport, ProjectText("1, 2, 3"),
                            ProjectText("4, 5, 6"), "glColor4f(1, 0, 0, 1)", "glNormal3f(0, -1, 0)",
                            "glBegin(GL_TRIANGLES)", "glVertex3f(1, 2, 3)", "glVertex3f(4, 2, 3)",
                            "glVertex3f(4, 5, 6)", "glEnd()"));
}

TEST_F(ControlFrame, ALineIsDrawnUnlitInTheFrameOfFaces)
{
    AcDbLine line({0.0, 0.0, 0.0}, {1.0, 2.0, 3.0});
    line.setColorIndex(3); // green
    control_->AppendGeometry(&line, TypeOf(0));
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_THAT(gl.Listing(),
                ElementsAre(kClear, kReadModelview, kReadProjection, kReadViewport, ProjectText("0, 0, 0"),
                            ProjectText("1, 2, 3"), "glDisable(GL_LIGHTING)", "glColor3f(0, 1, 0)",
                            "glBegin(GL_LINES)", "glVertex3f(0, 0, 0)", "glVertex3f(1, 2, 3)", "glEnd()",
                            "glEnable(GL_LIGHTING)", "glColor4f(0, 1, 0, 1)"));
}

TEST_F(ControlFrame, ManyEntitiesAreDrawnInTheOrderOfTheirAppending)
{
    std::vector<std::string> expected;
    for (int i = 0; i < 20; ++i) {
        const auto x = static_cast<double>(i);
        control_->AppendGeometry(TriangleInBox({x, 0.0, 0.0}, {x + 1.0, 1.0, 1.0}), TypeOf(i % 11), 1, 1.0F);
        expected.push_back("glVertex3f(" + std::to_string(i) + ", 0, 0)");
    }
    const GlRecording gl;
    control_->OnTimer(1);
    std::vector<std::string> first_corners;
    for (int i = 0; i < 20; ++i)
        first_corners.push_back(gl.Call("glVertex3f", 3 * i).text);
    EXPECT_THAT(first_corners, ElementsAreArray(expected));
}

TEST_F(ControlFrame, AFrameTouchesNeitherCameraNorMatrices)
{
    AppendTriangle({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    control_->pendingPanX = 1.0F;
    control_->pendingRotateZ = 10.0F;
    const GlRecording gl;
    const TraceRecording trace;
    control_->OnTimer(1);
    for (const char* name :
         {"glMatrixMode", "glLoadIdentity", "gluPerspective", "glOrtho", "gluLookAt", "glViewport"})
        EXPECT_EQ(gl.Count(name), 0) << name;
    for (const std::string& name : trace.Calls())
        EXPECT_FALSE(name.starts_with("KARVGLCamera::")) << name;
    EXPECT_EQ(control_->pendingPanX, 1.0F);
    EXPECT_EQ(control_->pendingRotateZ, 10.0F);
}

TEST_F(ControlFrame, TheFrameIsTraced)
{
    AppendTriangle({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    const TraceRecording trace;
    control_->OnTimer(1);
    EXPECT_THAT(trace.Listing(),
                ElementsAre("> KARVOpenGLControl::OnTimer", "> KARVOpenGLControl::GLDrawFrame",
                            "> KARVGraphicalEntity::GetEntityType", "< KARVGraphicalEntity::GetEntityType",
                            "> KARVGraphicalEntity::GetExtents", "< KARVGraphicalEntity::GetExtents",
                            "> KARVGraphicalEntity::DrawObjectQuads",
                            "< KARVGraphicalEntity::DrawObjectQuads", "< KARVOpenGLControl::GLDrawFrame",
                            "< KARVOpenGLControl::OnTimer"));
}

TEST_F(ControlFrame, AFrameOfNoTimeGivesAThousandPerSecond)
{
    control_->framesPerSecond = 1;
    FrameOf(0);
    EXPECT_EQ(control_->framesPerSecond, 1000);
}

TEST_F(ControlFrame, AFrameOfOneMillisecondGivesAThousandPerSecond)
{
    FrameOf(1);
    EXPECT_EQ(control_->framesPerSecond, 1000); // 1 / 0.001
}

TEST_F(ControlFrame, TheRateIsCutToAWholeNumber)
{
    FrameOf(3);
    EXPECT_EQ(control_->framesPerSecond, 333); // 1 / 0.003 = 333.3
    FrameOf(150);
    EXPECT_EQ(control_->framesPerSecond, 6); // 1 / 0.15 = 6.67
}

TEST_F(ControlFrame, AFrameOfMoreThanASecondGivesZero)
{
    FrameOf(1500);
    EXPECT_EQ(control_->framesPerSecond, 0); // 1 / 1.5 = 0.67
}

TEST_F(ControlFrame, AClockThatRunsBackwardsGivesANegativeRate)
{
    FrameOf(-250);
    EXPECT_EQ(control_->framesPerSecond, -4); // 1 / -0.25
    control_->OnTimer(1);
    EXPECT_FALSE(control_->multisampleOn);
}

TEST_F(ControlFrame, TheSwapBelongsToTheMeasuredTime)
{
    winsys::SetFrameObserver([this](HWND, int, int) { now_ += 250; });
    control_->OnTimer(1);
    winsys::SetFrameObserver({});
    EXPECT_EQ(control_->framesPerSecond, 4);
}

TEST_F(ControlFrame, ASlowFrameTurnsMultisamplingOffAtTheNextOne)
{
    FrameOf(250);
    EXPECT_EQ(control_->framesPerSecond, 4);
    EXPECT_TRUE(control_->multisampleOn);
    const GlRecording gl;
    FrameOf(125);
    EXPECT_FALSE(control_->multisampleOn);
    EXPECT_THAT(gl.Listing(), ElementsAre(kClear, "glDisable(GL_MULTISAMPLE)", "glDisable(GL_NORMALIZE)",
                                          kReadModelview, kReadProjection, kReadViewport));
}

TEST_F(ControlFrame, EightFramesPerSecondKeepItOffAndTenTurnItOn)
{
    FrameOf(250);
    FrameOf(125); // off; 8 frames per second
    FrameOf(100); // still off; 10 frames per second
    EXPECT_FALSE(control_->multisampleOn);
    const GlRecording gl;
    FrameOf(0);
    EXPECT_TRUE(control_->multisampleOn);
    EXPECT_THAT(gl.Listing(), ElementsAre(kClear, "glEnable(GL_MULTISAMPLE)", "glEnable(GL_NORMALIZE)",
                                          kReadModelview, kReadProjection, kReadViewport));
}

TEST_F(ControlFrame, FourFramesPerSecondTurnItOff)
{
    control_->framesPerSecond = 4;
    control_->GLDrawFrame();
    EXPECT_FALSE(control_->multisampleOn);
    EXPECT_FALSE(glIsEnabled(GL_MULTISAMPLE));
    EXPECT_FALSE(glIsEnabled(GL_NORMALIZE));
}

TEST_F(ControlFrame, FiveFramesPerSecondLeaveItOn)
{
    control_->framesPerSecond = 5;
    const GlRecording gl;
    control_->GLDrawFrame();
    EXPECT_TRUE(control_->multisampleOn);
    EXPECT_EQ(gl.Count("glDisable"), 0);
}

TEST_F(ControlFrame, NineFramesPerSecondLeaveItOff)
{
    control_->multisampleOn = false;
    control_->framesPerSecond = 9;
    const GlRecording gl;
    control_->GLDrawFrame();
    EXPECT_FALSE(control_->multisampleOn);
    EXPECT_EQ(gl.Count("glEnable"), 0);
}

TEST_F(ControlFrame, TenFramesPerSecondTurnItOn)
{
    control_->multisampleOn = false;
    control_->framesPerSecond = 10;
    control_->GLDrawFrame();
    EXPECT_TRUE(control_->multisampleOn);
    EXPECT_TRUE(glIsEnabled(GL_MULTISAMPLE));
    EXPECT_TRUE(glIsEnabled(GL_NORMALIZE));
}

TEST_F(ControlFrame, AFastFrameWithItOnChangesNothing)
{
    control_->framesPerSecond = 1000;
    const GlRecording gl;
    control_->GLDrawFrame();
    EXPECT_EQ(gl.Count("glEnable") + gl.Count("glDisable"), 0);
}

TEST_F(ControlFrame, ASlowFrameWithItOffChangesNothing)
{
    control_->multisampleOn = false;
    control_->framesPerSecond = 1;
    const GlRecording gl;
    control_->GLDrawFrame();
    EXPECT_EQ(gl.Count("glEnable") + gl.Count("glDisable"), 0);
}

TEST_F(ControlFrame, WithoutUserControlASlowSceneKeepsItOn)
{
    control_->userControlEnabled = false;
    FrameOf(1000);
    FrameOf(1000);
    EXPECT_TRUE(control_->multisampleOn);
    EXPECT_TRUE(glIsEnabled(GL_MULTISAMPLE));
}

TEST_F(ControlFrame, WithoutUserControlAFastSceneKeepsItOff)
{
    FrameOf(250);
    FrameOf(0);
    ASSERT_FALSE(control_->multisampleOn);
    control_->userControlEnabled = false;
    FrameOf(0);
    FrameOf(0);
    EXPECT_FALSE(control_->multisampleOn);
}

TEST_F(ControlFrame, AFaultInDrawingAnEntityGoesOnWithTheNext)
{
    AppendTriangle({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    AppendTriangle({2.0, 0.0, 0.0}, {3.0, 1.0, 1.0});
    const TraceRecording trace;
    const GlHook fault = ThrowAt("glColor4f", 1, std::string("no exception of the standard library"));
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_THAT(trace.Faults(), ElementsAre(StartsWith(".\\KARVGraphicalEntity.cpp:")));
    EXPECT_EQ(gl.Count("glColor4f"), 2);
    EXPECT_EQ(gl.Call("glVertex3f").text, "glVertex3f(2, 0, 0)");
}

TEST_F(ControlFrame, AFaultInTheFramesOwnStepsEndsItsDrawing)
{
    AppendTriangle({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    AppendTriangle({2.0, 0.0, 0.0}, {3.0, 1.0, 1.0});
    const TraceRecording trace;
    const GlHook fault = ThrowAt("gluProject", 1, 42);
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_THAT(trace.Faults(), ElementsAre(StartsWith(".\\KARVOpenGLControl.cpp:")));
    EXPECT_EQ(gl.Count("glColor4f"), 0);
}

TEST_F(ControlFrame, SwapAndRateFollowAFaultInTheDrawing)
{
    AppendTriangle({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    const GlHook fault = ThrowAt("gluProject", 1, 42);
    window_calls_.Clear();
    FrameOf(250);
    EXPECT_EQ(window_calls_.Count("SwapBuffers(dc of 3DView)"), 1);
    EXPECT_EQ(control_->framesPerSecond, 4);
}

TEST_F(ControlFrame, TheThrottlesStateChangesBetweenItsTwoSwitches)
{
    for (const bool on : {true, false}) {
        const char* const entry = on ? "glDisable" : "glEnable";
        for (const int nth : {1, 2}) {
            control_->multisampleOn = on;
            control_->framesPerSecond = on ? 4 : 10;
            const GlHook fault = ThrowAt(entry, nth, 42);
            control_->GLDrawFrame();
            EXPECT_EQ(control_->multisampleOn, nth == 1 ? on : !on) << entry << ' ' << nth;
        }
    }
}

TEST_F(ControlFrame, AFaultInClearingEndsTheFrameWithoutASwap)
{
    control_->framesPerSecond = 77;
    const GlHook fault = ThrowAt("glClear", 1, 42);
    const TraceRecording trace;
    window_calls_.Clear();
    control_->OnTimer(1);
    EXPECT_THAT(window_calls_.Listing(), IsEmpty());
    EXPECT_EQ(control_->framesPerSecond, 77);
    EXPECT_EQ(trace.Faults().size(), 1U);
}

} // namespace
