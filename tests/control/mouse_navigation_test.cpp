// The effect of mouse moves and wheel turns on the control's camera and zoom, by direct calls and by posted
// messages.
#include "tests/control/mouse_test.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace karv_test;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

TEST_F(ControlMouse, LeftButtonTurnsAtFirst)
{
    Move(MK_LBUTTON, 10, 20);
    ExpectOnlyTurned();
}

TEST_F(ControlMouse, LeftButtonPansWhereRestrictedToPan)
{
    control_->RestrictToPan();
    Move(MK_LBUTTON, 10, 20);
    ExpectOnlyPanned();
}

TEST_F(ControlMouse, LeftButtonZoomsWhereRestrictedToZoom)
{
    control_->RestrictToZoom();
    Move(MK_LBUTTON, 10, 20);
    ExpectOnlyZoomed();
}

TEST_F(ControlMouse, LeftButtonTurnsAgainWhereRestrictedToRotateLast)
{
    control_->RestrictToPan();
    control_->RestrictToZoom();
    control_->RestrictToRotate();
    Move(MK_LBUTTON, 10, 20);
    ExpectOnlyTurned();
}

TEST_F(ControlMouse, EachRestrictionLeavesOneFlag)
{
    control_->RestrictToPan();
    EXPECT_THAT((std::array{control_->mouseRotates, control_->mousePans, control_->mouseZooms}),
                ElementsAre(false, true, false));
    control_->RestrictToZoom();
    EXPECT_THAT((std::array{control_->mouseRotates, control_->mousePans, control_->mouseZooms}),
                ElementsAre(false, false, true));
    control_->RestrictToRotate();
    EXPECT_THAT((std::array{control_->mouseRotates, control_->mousePans, control_->mouseZooms}),
                ElementsAre(true, false, false));
}

TEST_F(ControlMouse, LeftButtonOnlyRedrawsWhereNoFlagIsSet)
{
    control_->mouseRotates = false;
    const TraceRecording trace;
    Move(MK_LBUTTON, 10, 20);
    ExpectUnmoved();
    EXPECT_EQ(trace.Calls().at(1), "KARVOpenGLControl::OnDraw");
}

TEST_F(ControlMouse, TurningComesBeforePanningAndPanningBeforeZooming)
{
    control_->mousePans = true;
    control_->mouseZooms = true;
    Move(MK_LBUTTON, 10, 20);
    ExpectOnlyTurned();
    control_->CameraViewFront();
    control_->mouseRotates = false;
    Move(MK_LBUTTON, 20, 40);
    ExpectOnlyPanned();
}

struct Restriction {
    const char* name;
    void (KARVOpenGLControl::*restrict)();
};

class ControlMouseRestricted : public ControlMouse, public testing::WithParamInterface<Restriction>
{
};

TEST_P(ControlMouseRestricted, MiddleButtonPansAllTheSame)
{
    ((*control_).*GetParam().restrict)();
    Move(MK_MBUTTON, 10, 20);
    ExpectOnlyPanned();
}

TEST_P(ControlMouseRestricted, RightButtonZoomsAllTheSame)
{
    ((*control_).*GetParam().restrict)();
    Move(MK_RBUTTON, 10, 20);
    ExpectOnlyZoomed();
}

INSTANTIATE_TEST_SUITE_P(All, ControlMouseRestricted,
                         testing::Values(Restriction{"Rotate", &KARVOpenGLControl::RestrictToRotate},
                                         Restriction{"Pan", &KARVOpenGLControl::RestrictToPan},
                                         Restriction{"Zoom", &KARVOpenGLControl::RestrictToZoom}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(ControlMouse, LeftButtonWinsOverMiddleAndRight)
{
    Move(MK_LBUTTON | MK_MBUTTON | MK_RBUTTON, 10, 20);
    ExpectOnlyTurned();
}

TEST_F(ControlMouse, LeftButtonWithoutAnyFlagStillOverridesTheOthers)
{
    control_->mouseRotates = false;
    Move(MK_LBUTTON | MK_MBUTTON | MK_RBUTTON, 10, 20);
    ExpectUnmoved();
}

TEST_F(ControlMouse, MiddleButtonWinsOverRight)
{
    Move(MK_MBUTTON | MK_RBUTTON, 10, 20);
    ExpectOnlyPanned();
}

TEST_F(ControlMouse, ModifiersChangeNothing)
{
    Move(MK_SHIFT | MK_CONTROL, 10, 20);
    ExpectUnmoved();
    Move(MK_SHIFT | MK_CONTROL | MK_RBUTTON, 20, 40);
    ExpectOnlyZoomed();
}

TEST_F(ControlMouse, MoveWithoutButtonsIsRememberedAndRedraws)
{
    const GlRecording gl;
    Move(0, 10, 20);
    ExpectUnmoved();
    EXPECT_EQ(control_->lastMousePoint.x, 10.0F);
    EXPECT_EQ(control_->lastMousePoint.y, 20.0F);
    EXPECT_THAT(gl.Listing(), ElementsAre("glLoadIdentity()", "glMatrixMode(GL_PROJECTION)",
                                          "glLoadIdentity()", "gluPerspective(40, 2, 0.01, 600)",
                                          "glMatrixMode(GL_MODELVIEW)", "glMatrixMode(GL_MODELVIEW)",
                                          "glLoadIdentity()", "gluLookAt(1.5, -4, 0, 1.5, 2, 0, 0, 0, 1)"));
    EXPECT_THAT(window_calls_.Listing(), ElementsAre("SetFocus(3DView)"));
}

TEST_F(ControlMouse, DragStartsFromTheLastPlaceSeen)
{
    Move(0, 40, 10);
    Move(MK_LBUTTON, 40, 30); // 20 pixels down: 10 degrees up
    ExpectEyeFromTarget(0.0, -6.0 * std::cos(Radians(10.0)), 6.0 * std::sin(Radians(10.0)));
}

TEST_F(ControlMouse, DistancesAreTruncatedTowardsZero)
{
    control_->lastMousePoint = {0.75F, 10.75F};
    Move(MK_RBUTTON, 0, 10); // dy is -0.75
    EXPECT_FALSE(HasZoomed());
    control_->lastMousePoint = {0.75F, 0.0F};
    Move(MK_LBUTTON, 0, 0); // dx is -0.75
    EXPECT_FALSE(HasTurned());
    control_->lastMousePoint = {0.0F, 8.25F};
    Move(MK_RBUTTON, 0, 10); // dy is 1.75
    EXPECT_EQ(control_->zoomFactor, 1.01F);
    control_->lastMousePoint = {8.25F, 0.0F};
    Move(MK_LBUTTON, 10, 0); // dx is 1.75: half a degree of orbit
    ExpectEyeFromTarget(-6.0 * std::sin(Radians(0.5)), -6.0 * std::cos(Radians(0.5)), 0.0);
}

TEST_F(ControlMouse, PlacesAndDistancesAreFloats)
{
    Move(0, 16'777'217, -16'777'217);
    EXPECT_EQ(control_->lastMousePoint.x, 16'777'216.0F);
    EXPECT_EQ(control_->lastMousePoint.y, -16'777'216.0F);
    // 10 minus 1e-9 is 10 in float; in double it would be a little less and be truncated to 9.
    control_->lastMousePoint = {0.0F, 1e-9F};
    Move(MK_RBUTTON, 0, 10);
    EXPECT_EQ(control_->zoomFactor, 1.1F);
}

TEST_F(ControlMouse, NothingStaysQueuedAfterAMove)
{
    Move(MK_LBUTTON, 10, 20);
    Move(MK_MBUTTON, 20, 40);
    EXPECT_THAT((std::array{control_->pendingRotateX, control_->pendingRotateZ, control_->pendingPanX,
                            control_->pendingPanZ}),
                Each(0.0F));
}

TEST_F(ControlMouse, MovesChangeNoFieldWithoutUserControl)
{
    Move(0, 7, 8);
    control_->KillUserControl();
    control_->pendingRotateX = 1.0F; // any redraw would apply it
    const GlRecording gl;
    const TraceRecording trace;
    window_calls_.Clear();
    for (const UINT keys : {0U, UINT{MK_LBUTTON}, UINT{MK_MBUTTON}, UINT{MK_RBUTTON}})
        Move(keys, 100, 200);
    ExpectUnmoved();
    EXPECT_EQ(control_->lastMousePoint.x, 7.0F);
    EXPECT_EQ(control_->lastMousePoint.y, 8.0F);
    EXPECT_EQ(control_->pendingRotateX, 1.0F);
    EXPECT_EQ(control_->fieldOfView, 40.0F);
    EXPECT_THAT(gl.Listing(), IsEmpty());
    EXPECT_THAT(window_calls_.Listing(), IsEmpty());
    EXPECT_EQ(trace.Calls(), std::vector<std::string>(4, "KARVOpenGLControl::OnMouseMove"));
}

TEST_F(ControlMouse, MovesGetNoDefaultProcessingWithoutUserControl)
{
    control_->KillUserControl();
    ::SendMessageW(control_->m_hWnd, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(10, 20));
    EXPECT_THAT(window_calls_.DefaultedMessages(), Not(Contains(UINT{WM_MOUSEMOVE})));
}

TEST_F(ControlMouse, RestrictionsDoNotBringUserControlBack)
{
    control_->KillUserControl();
    control_->RestrictToPan();
    control_->RestrictToZoom();
    control_->RestrictToRotate();
    EXPECT_FALSE(control_->userControlEnabled);
}

TEST_F(ControlMouse, SlowFramesKeepMultisamplingWithoutUserControl)
{
    control_->KillUserControl();
    control_->framesPerSecond = 1;
    control_->GLDrawFrame();
    EXPECT_TRUE(control_->multisampleOn);
}

TEST_F(ControlMouse, FastFramesDoNotBringMultisamplingBackWithoutUserControl)
{
    control_->framesPerSecond = 1;
    control_->GLDrawFrame();
    ASSERT_FALSE(control_->multisampleOn);
    control_->KillUserControl();
    control_->framesPerSecond = 1000;
    control_->GLDrawFrame();
    EXPECT_FALSE(control_->multisampleOn);
}

TEST_F(ControlMouse, SixMessagesAreRoutedInOrder)
{
    const TraceRecording trace;
    std::vector<UINT> messages;
    for (const AFX_MSGMAP_ENTRY& entry : control_->GetMessageMap()->entries)
        messages.push_back(entry.message);
    EXPECT_THAT(messages, ElementsAre(WM_SIZE, WM_CREATE, WM_TIMER, WM_MOUSEMOVE, WM_MOUSEWHEEL, WM_PAINT));
    EXPECT_THAT(trace.Calls(), IsEmpty()); // the message map is not traced
}

TEST_F(ControlMouse, MoveGoesOnToTheDefaultProcessingAfterTheRedraw)
{
    std::size_t before = 99;
    const GlHook look("gluLookAt", [&](int) { before = window_calls_.DefaultedMessages().size(); });
    ::SendMessageW(control_->m_hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(10, 20));
    EXPECT_EQ(before, 0U);
    EXPECT_EQ(std::ranges::count(window_calls_.DefaultedMessages(), UINT{WM_MOUSEMOVE}), 1);
}

TEST_F(ControlMouse, WheelGoesOnToTheDefaultProcessingAfterTheRedraw)
{
    std::size_t before = 99;
    const GlHook look("gluLookAt", [&](int) { before = window_calls_.DefaultedMessages().size(); });
    ::SendMessageW(control_->m_hWnd, WM_MOUSEWHEEL, Notches(1), 0);
    EXPECT_EQ(before, 0U);
    EXPECT_THAT(window_calls_.DefaultedMessages(), Contains(UINT{WM_MOUSEWHEEL}));
}

/// A control with a default processing that the test supplies.
class DefaultingControl : public KARVOpenGLControl
{
  public:
    std::function<LRESULT(UINT)> answer;

  protected:
    LRESULT DefWindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        return answer ? answer(message) : KARVOpenGLControl::DefWindowProc(message, wparam, lparam);
    }
};

class ControlMouseDefault : public ControlTest
{
  protected:
    ControlMouseDefault() { control_.CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false); }

    DefaultingControl control_;
};

TEST_F(ControlMouseDefault, WheelReturnsTheDefaultProcessingsResult)
{
    for (const LRESULT result : {0, 1, 7}) {
        control_.answer = [result](UINT) { return result; };
        EXPECT_EQ(::SendMessageW(control_.m_hWnd, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0), result);
    }
}

TEST_F(ControlMouseDefault, FaultInAMoveIsReportedUnderTheControlsFileAndSwallowed)
{
    control_.answer = [](UINT) -> LRESULT { throw 42; };
    const TraceRecording trace;
    ::SendMessageW(control_.m_hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(10, 20));
    control_.answer = nullptr;
    EXPECT_THAT(trace.Faults(), ElementsAre(StartsWith(".\\KARVOpenGLControl.cpp:")));
    EXPECT_EQ(control_.lastMousePoint.x, 10.0F);
}

TEST_F(ControlMouseDefault, FaultInTheWheelsDefaultProcessingIsNotCaughtByTheControl)
{
    control_.answer = [](UINT) -> LRESULT { throw 42; };
    const TraceRecording trace;
    EXPECT_THROW(::SendMessageW(control_.m_hWnd, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0), int);
    control_.answer = nullptr;
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlMouse, FaultInTheRedrawStaysThereAndTheMoveGoesOn)
{
    const TraceRecording trace;
    const GlHook fault = ThrowAt("glLoadIdentity", 1, 42); // of OnDraw itself
    ::SendMessageW(control_->m_hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(10, 20));
    EXPECT_THAT(trace.Faults(), ElementsAre(StartsWith(".\\KARVOpenGLControl.cpp:")));
    EXPECT_THAT(window_calls_.DefaultedMessages(), Contains(UINT{WM_MOUSEMOVE}));
}

TEST_F(ControlMouse, PostedMoveHasSignedCoordinates)
{
    Post(WM_MOUSEMOVE, 0, -5, -7);
    PumpMouse();
    EXPECT_EQ(control_->lastMousePoint.x, -5.0F);
    EXPECT_EQ(control_->lastMousePoint.y, -7.0F);
}

TEST_F(ControlMouse, PostedWheelHasASignedDelta)
{
    Post(WM_MOUSEWHEEL, Notches(-1), -5, -7);
    PumpMouse();
    EXPECT_FLOAT_EQ(control_->zoomFactor, 1.12F);
}

TEST_F(ControlMouse, DraggingDownLiftsTheEyeByHalfADegreePerPixel)
{
    Post(WM_MOUSEMOVE, 0, 10, 10);
    Post(WM_MOUSEMOVE, MK_LBUTTON, 10, 70);
    PumpMouse();
    ExpectEyeFromTarget(0.0, -6.0 * std::cos(Radians(30.0)), 6.0 * std::sin(Radians(30.0)));
}

TEST_F(ControlMouse, DraggingRightOrbitsClockwiseSeenFromAbove)
{
    Post(WM_MOUSEMOVE, 0, 10, 10);
    Post(WM_MOUSEMOVE, MK_LBUTTON, 70, 10);
    PumpMouse();
    // From the -Y side, clockwise leads to the -X side.
    ExpectEyeFromTarget(-6.0 * std::sin(Radians(30.0)), -6.0 * std::cos(Radians(30.0)), 0.0);
}

TEST_F(ControlMouse, PanningMovesTheSceneWithThePointer)
{
    const AcGePoint3d point = control_->camera.target;
    const std::array<double, 3> before = Projected(point);
    Post(WM_MOUSEMOVE, 0, 10, 10);
    Post(WM_MOUSEMOVE, MK_MBUTTON, 14, 10);
    PumpMouse();
    const std::array<double, 3> right = Projected(point);
    EXPECT_GT(right[0], before[0] + 0.1);
    EXPECT_NEAR(right[1], before[1], 1e-3);
    Post(WM_MOUSEMOVE, MK_MBUTTON, 14, 14);
    PumpMouse();
    const std::array<double, 3> down = Projected(point);
    EXPECT_NEAR(down[0], right[0], 1e-3);
    EXPECT_LT(down[1], right[1] - 0.1); // y counts from the bottom
}

TEST_F(ControlMouse, DraggingDownWithTheRightButtonZoomsOutByOnePerCentPerPixel)
{
    Post(WM_MOUSEMOVE, 0, 10, 10);
    Post(WM_MOUSEMOVE, MK_RBUTTON, 10, 35);
    PumpMouse();
    EXPECT_EQ(control_->zoomFactor, 1.25F);
    EXPECT_EQ(control_->fieldOfView, 50.0F);
}

TEST_F(ControlMouse, TiltBeyondTheLimitIsDroppedForThatEventAlone)
{
    Post(WM_MOUSEMOVE, MK_LBUTTON, 0, 179); // 89.5 degrees
    Post(WM_MOUSEMOVE, MK_LBUTTON, 0, 199); // 10 degrees
    PumpMouse();
    ExpectEyeFromTarget(0.0, -6.0 * std::cos(Radians(10.0)), 6.0 * std::sin(Radians(10.0)));
}

TEST_F(ControlMouse, EveryMoveCountsWhileTheFrameTimerRuns)
{
    control_->ForceRenderStart();
    window_calls_.Clear();
    constexpr int kMoves = 180;
    for (int x = 1; x <= kMoves; ++x)
        Post(WM_MOUSEMOVE, MK_LBUTTON, x, 0);
    // Frames are drawn between the moves, and the timer fires faster than frames finish.
    ASSERT_TRUE(PumpUntil([&] {
        return control_->lastMousePoint.x == static_cast<float>(kMoves) &&
               window_calls_.Count("SwapBuffers(dc of 3DView)") >= 5;
    }));
    ExpectEyeFromTarget(-6.0, 0.0, 0.0); // 180 times half a degree
    // Each move redraws once, and each redraw requests the focus once.
    EXPECT_GE(window_calls_.Count("SetFocus(3DView)"), kMoves);
}

TEST_F(ControlMouse, ControlWithoutAWindowFollowsTheMouse)
{
    KARVOpenGLControl early;
    const TraceRecording trace;
    early.OnMouseMove(MK_RBUTTON, CPoint(0, 50));
    EXPECT_EQ(early.zoomFactor, 1.5F);
    EXPECT_EQ(early.OnMouseWheel(0, 0, CPoint(0, 0)), 0);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlMouse, TwoControlsFollowTheirOwnPointers)
{
    const auto other = NewControl();
    Post(WM_MOUSEMOVE, MK_RBUTTON, 0, 50);
    PumpMouse();
    EXPECT_EQ(control_->zoomFactor, 1.5F);
    EXPECT_EQ(other->zoomFactor, 1.0F);
    EXPECT_EQ(other->lastMousePoint.y, 0.0F);
}

} // namespace
