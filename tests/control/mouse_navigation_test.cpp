// What moving the mouse and turning its wheel do to the control's camera and zoom, called directly and
// through posted messages.
#include "tests/support/control_test.h"

#include "platform/winsys/opengl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

using namespace karv_test;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{

constexpr double kRounding = 1e-6;

double Radians(double degrees)
{
    return degrees * std::numbers::pi / 180.0;
}

/// A control with a scene of size 6 about (1.5, 2, 0), seen from the front; the pointer was last at (0, 0).
class ControlMouse : public ControlTest
{
  protected:
    ControlMouse() : control_(NewControl())
    {
        control_->OverrideExtents({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0});
        control_->CameraViewFront();
        control_->OnDraw(nullptr);
        window_calls_.Clear();
    }

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    void Move(UINT keys, int x, int y) { control_->OnMouseMove(keys, CPoint(x, y)); }
    void Post(UINT message, WPARAM wparam, int x, int y) const
    {
        ::PostMessageW(control_->m_hWnd, message, wparam, MAKELPARAM(x, y));
    }
    /// Dispatches the mouse's messages that wait.
    static void PumpMouse()
    {
        MSG message{};
        while (::PeekMessageW(&message, nullptr, WM_MOUSEMOVE, WM_MOUSEWHEEL, PM_REMOVE))
            ::DispatchMessageW(&message);
    }
    static WPARAM Notches(int count) { return MAKEWPARAM(0, count * 120); }

    void ExpectEyeFromTarget(double x, double y, double z) const
    {
        const AcGeVector3d offset = control_->camera.position - control_->camera.target;
        EXPECT_NEAR(offset.x, x, kRounding);
        EXPECT_NEAR(offset.y, y, kRounding);
        EXPECT_NEAR(offset.z, z, kRounding);
    }

    [[nodiscard]] bool HasTurned() const
    {
        const AcGeVector3d offset = control_->camera.position - control_->camera.target;
        return std::fabs(offset.x) > kRounding || std::fabs(offset.z) > kRounding;
    }
    [[nodiscard]] bool HasPanned() const
    {
        return control_->camera.target.distanceTo({1.5, 2.0, 0.0}) > kRounding;
    }
    [[nodiscard]] bool HasZoomed() const { return control_->zoomFactor != 1.0F; }

    void ExpectOnlyTurned() const
    {
        EXPECT_TRUE(HasTurned());
        EXPECT_FALSE(HasPanned());
        EXPECT_FALSE(HasZoomed());
    }
    void ExpectOnlyPanned() const
    {
        EXPECT_FALSE(HasTurned());
        EXPECT_TRUE(HasPanned());
        EXPECT_FALSE(HasZoomed());
    }
    void ExpectOnlyZoomed() const
    {
        EXPECT_FALSE(HasTurned());
        EXPECT_FALSE(HasPanned());
        EXPECT_TRUE(HasZoomed());
    }
    void ExpectUnmoved() const
    {
        EXPECT_FALSE(HasTurned());
        EXPECT_FALSE(HasPanned());
        EXPECT_FALSE(HasZoomed());
    }

    /// Where the matrices now loaded put this point, in pixels from the lower left.
    static std::array<double, 3> Projected(const AcGePoint3d& point)
    {
        std::array<double, 16> model{};
        std::array<double, 16> projection{};
        std::array<GLint, 4> viewport{};
        glGetDoublev(GL_MODELVIEW_MATRIX, model.data());
        glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
        glGetIntegerv(GL_VIEWPORT, viewport.data());
        std::array<double, 3> at{};
        gluProject(point.x, point.y, point.z, model.data(), projection.data(), viewport.data(), at.data(),
                   &at[1], &at[2]);
        return at;
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

// Which button does what.

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

TEST_F(ControlMouse, LeftButtonWithoutAnyFlagStillHidesTheOthers)
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

// Following the pointer.

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
    control_->lastMousePoint = {0.0F, 8.25F};
    Move(MK_RBUTTON, 0, 10); // dy is 1.75
    EXPECT_EQ(control_->zoomFactor, 1.01F);
}

TEST_F(ControlMouse, NothingStaysQueuedAfterAMove)
{
    Move(MK_LBUTTON, 10, 20);
    Move(MK_MBUTTON, 20, 40);
    EXPECT_THAT((std::array{control_->pendingRotateX, control_->pendingRotateZ, control_->pendingPanX,
                            control_->pendingPanZ}),
                Each(0.0F));
}

// The three queued amounts.

TEST_F(ControlMouse, RotationIsHalfADegreePerPixel)
{
    control_->GLMouseRotate(3, 5);
    EXPECT_EQ(control_->pendingRotateX, 2.5F);
    EXPECT_EQ(control_->pendingRotateZ, -1.5F);
}

TEST_F(ControlMouse, RotationReplacesTheOneThatWaits)
{
    control_->GLMouseRotate(3, 5);
    control_->GLMouseRotate(1, 1);
    EXPECT_EQ(control_->pendingRotateX, 0.5F);
    EXPECT_EQ(control_->pendingRotateZ, -0.5F);
}

TEST_F(ControlMouse, NoDistanceGivesAnOrbitOfMinusZero)
{
    control_->GLMouseRotate(0, 0);
    EXPECT_EQ(control_->pendingRotateX, 0.0F);
    EXPECT_FALSE(std::signbit(control_->pendingRotateX));
    EXPECT_EQ(control_->pendingRotateZ, 0.0F);
    EXPECT_TRUE(std::signbit(control_->pendingRotateZ)); // (0 x 0.5) x -1
}

TEST_F(ControlMouse, RotationOfAFullTurnIsKept)
{
    control_->GLMouseRotate(720, 720);
    EXPECT_EQ(control_->pendingRotateX, 360.0F);
    EXPECT_EQ(control_->pendingRotateZ, -360.0F);
    control_->GLMouseRotate(-720, -720);
    EXPECT_EQ(control_->pendingRotateX, -360.0F);
    EXPECT_EQ(control_->pendingRotateZ, 360.0F);
}

TEST_F(ControlMouse, RotationBeyondAFullTurnIsDropped)
{
    for (const int pixels : {721, -721, 100000, std::numeric_limits<int>::min()}) {
        control_->GLMouseRotate(pixels, pixels);
        EXPECT_EQ(control_->pendingRotateX, 0.0F) << pixels;
        EXPECT_EQ(control_->pendingRotateZ, 0.0F) << pixels;
    }
}

TEST_F(ControlMouse, RotationIsDroppedForEachAxisAlone)
{
    control_->GLMouseRotate(721, 10);
    EXPECT_EQ(control_->pendingRotateX, 5.0F);
    EXPECT_EQ(control_->pendingRotateZ, 0.0F);
    control_->GLMouseRotate(10, 721);
    EXPECT_EQ(control_->pendingRotateX, 0.0F);
    EXPECT_EQ(control_->pendingRotateZ, -5.0F);
}

TEST_F(ControlMouse, JumpOfMoreThanAFullTurnTurnsNothing)
{
    Move(MK_LBUTTON, 721, -721);
    ExpectUnmoved();
}

TEST_F(ControlMouse, PanFactorsAreFloatsAndTheirProductIsDouble)
{
    control_->panScale = 0.5F;
    control_->sceneSize = 132.375F;
    control_->zoomFactor = 3.75F;
    control_->GLMousePan(868, -868);
    // 0.5 x 0.01 is 0.004999999888241291 in floats, 132.375 / 4.45 is 29.7471923828125; with 3.75 and 868
    // that is 484.13555..., whose nearest float is this. Floats all the way, a float k, doubles all the way,
    // and double factors of float constants each give 0x1.e422b2p+8.
    EXPECT_EQ(control_->pendingPanX, 0x1.e422b4p+8F);
    EXPECT_EQ(control_->pendingPanZ, -0x1.e422b4p+8F);
}

TEST_F(ControlMouse, PanReplacesTheOneThatWaits)
{
    control_->GLMousePan(100, 100);
    control_->GLMousePan(0, 0);
    EXPECT_EQ(control_->pendingPanX, 0.0F);
    EXPECT_EQ(control_->pendingPanZ, 0.0F);
}

TEST_F(ControlMouse, PanOfAnEmptySceneIsNothing)
{
    control_->sceneSize = 0.0F;
    control_->GLMousePan(100, 100);
    EXPECT_EQ(control_->pendingPanX, 0.0F);
    EXPECT_EQ(control_->pendingPanZ, 0.0F);
}

TEST_F(ControlMouse, ZoomChangesBothKindsTogether)
{
    control_->fieldOfView = 30.0F;
    control_->zoomFactor = 2.0F;
    control_->GLMouseZoom(50); // 1.5
    EXPECT_EQ(control_->fieldOfView, 45.0F);
    EXPECT_EQ(control_->zoomFactor, 3.0F);
}

TEST_F(ControlMouse, ZoomFactorIsFormedInFloats)
{
    // 33 x 0.01 rounds to a float before 1 is added. In doubles it would be 0x1.547ae2p+0.
    control_->GLMouseZoom(33);
    EXPECT_EQ(control_->zoomFactor, 0x1.547aep+0F);
}

TEST_F(ControlMouse, ZoomOfAHundredUpIsNothingLeftAndRecovers)
{
    Move(0, 0, 100);
    Move(MK_RBUTTON, 0, 0); // dy is -100: factor 0
    EXPECT_EQ(control_->fieldOfView, 0.01F);
    EXPECT_EQ(control_->zoomFactor, 0.0F); // the perspective limits its own value only
    Move(MK_RBUTTON, 0, 100);              // factor 2
    EXPECT_EQ(control_->fieldOfView, 0.02F);
}

TEST_F(ControlMouse, ParallelZoomOfAHundredUpIsNothingLeftAndRecovers)
{
    control_->SetToPerspective(false);
    Move(0, 0, 100);
    Move(MK_RBUTTON, 0, 0);
    EXPECT_EQ(control_->zoomFactor, 0.01F);
    Move(MK_RBUTTON, 0, 100);
    EXPECT_EQ(control_->zoomFactor, 0.02F);
}

TEST_F(ControlMouse, ZoomBelowNothingIsLimitedAtTheRedraw)
{
    Move(0, 0, 500);
    Move(MK_RBUTTON, 0, 0); // factor -4
    EXPECT_EQ(control_->fieldOfView, 0.01F);
}

// The wheel.

TEST_F(ControlMouse, WheelForwardZoomsInByTwelvePerCent)
{
    control_->OnMouseWheel(0, 120, CPoint(0, 0));
    EXPECT_FLOAT_EQ(control_->zoomFactor, 0.88F);
    EXPECT_FLOAT_EQ(control_->fieldOfView, 35.2F);
}

TEST_F(ControlMouse, WheelBackZoomsOutByTwelvePerCent)
{
    control_->OnMouseWheel(0, -120, CPoint(0, 0));
    EXPECT_FLOAT_EQ(control_->zoomFactor, 1.12F);
    EXPECT_FLOAT_EQ(control_->fieldOfView, 44.8F);
}

TEST_F(ControlMouse, WheelOfLessThanTenDoesNotZoomButRedraws)
{
    const GlRecording gl;
    for (const short delta : {short{5}, short{-5}, short{9}, short{-9}, short{0}})
        control_->OnMouseWheel(0, delta, CPoint(0, 0));
    EXPECT_EQ(control_->zoomFactor, 1.0F);
    EXPECT_EQ(control_->fieldOfView, 40.0F);
    EXPECT_EQ(gl.Count("gluLookAt"), 5);
}

TEST_F(ControlMouse, WheelIsCutTowardsZero)
{
    control_->OnMouseWheel(0, 19, CPoint(0, 0)); // -1, not -2
    EXPECT_FLOAT_EQ(control_->zoomFactor, 0.99F);
}

TEST_F(ControlMouse, FarthestWheelsDoNotOverflow)
{
    control_->OnMouseWheel(0, std::numeric_limits<short>::min(), CPoint(0, 0)); // 3276: factor 33.76
    EXPECT_FLOAT_EQ(control_->zoomFactor, 33.76F);
    EXPECT_EQ(control_->fieldOfView, 150.0F);
    control_->ResetCameraZoom();
    control_->OnMouseWheel(0, std::numeric_limits<short>::max(), CPoint(0, 0)); // -3276: factor -31.76
    EXPECT_FLOAT_EQ(control_->zoomFactor, -31.76F);
    EXPECT_EQ(control_->fieldOfView, 0.01F);
}

TEST_F(ControlMouse, WheelLeavesThePointerPlaceAndTheCamera)
{
    control_->OnMouseWheel(MK_LBUTTON, 120, CPoint(30, 40));
    ExpectOnlyZoomed();
    EXPECT_EQ(control_->lastMousePoint.x, 0.0F);
    EXPECT_EQ(control_->lastMousePoint.y, 0.0F);
}

TEST_F(ControlMouse, WheelRedraws)
{
    const GlRecording gl;
    control_->OnMouseWheel(0, 120, CPoint(0, 0));
    EXPECT_THAT(gl.Listing(), ElementsAre("glLoadIdentity()", "glMatrixMode(GL_PROJECTION)",
                                          "glLoadIdentity()", "gluPerspective(35.2, 2, 0.01, 600)",
                                          "glMatrixMode(GL_MODELVIEW)", "glMatrixMode(GL_MODELVIEW)",
                                          "glLoadIdentity()", "gluLookAt(1.5, -4, 0, 1.5, 2, 0, 0, 0, 1)"));
}

TEST_F(ControlMouse, WheelOpensNoEntryOfItsOwn)
{
    const TraceRecording trace;
    control_->OnMouseWheel(0, 120, CPoint(0, 0));
    EXPECT_THAT(trace.OutermostCalls(),
                ElementsAre("KARVOpenGLControl::GLMouseZoom", "KARVOpenGLControl::OnDraw"));
}

TEST_F(ControlMouse, WheelStillZoomsWithoutUserControl)
{
    control_->KillUserControl();
    control_->OnMouseWheel(0, 120, CPoint(0, 0));
    EXPECT_FLOAT_EQ(control_->zoomFactor, 0.88F);
}

// No user control.

TEST_F(ControlMouse, MovesChangeNoFieldWithoutUserControl)
{
    Move(0, 7, 8);
    control_->KillUserControl();
    control_->pendingRotateX = 1.0F; // anything that redraws would take this
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

// Messages.

TEST_F(ControlMouse, SixMessagesAreRoutedInOrder)
{
    std::vector<UINT> messages;
    for (const AFX_MSGMAP_ENTRY& entry : control_->GetMessageMap()->entries)
        messages.push_back(entry.message);
    EXPECT_THAT(messages, ElementsAre(WM_SIZE, WM_CREATE, WM_TIMER, WM_MOUSEMOVE, WM_MOUSEWHEEL, WM_PAINT));
}

TEST_F(ControlMouse, MoveGoesOnToTheDefaultProcessingAfterTheRedraw)
{
    std::size_t before = 99;
    const GlHook look("gluLookAt", [&](int) { before = window_calls_.DefaultedMessages().size(); });
    ::SendMessageW(control_->m_hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(10, 20));
    EXPECT_EQ(before, 0U);
    EXPECT_EQ(std::ranges::count(window_calls_.DefaultedMessages(), UINT{WM_MOUSEMOVE}), 1);
}

TEST_F(ControlMouse, WheelGoesOnToTheDefaultProcessing)
{
    ::SendMessageW(control_->m_hWnd, WM_MOUSEWHEEL, Notches(1), 0);
    EXPECT_THAT(window_calls_.DefaultedMessages(), Contains(UINT{WM_MOUSEWHEEL}));
}

/// A control whose default processing the test supplies.
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

TEST_F(ControlMouseDefault, WheelAnswersWhatTheDefaultProcessingDoes)
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

TEST_F(ControlMouseDefault, FaultInTheWheelsDefaultProcessingIsNotTheControlsToCatch)
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
    const GlHook fault = ThrowAt("glLoadIdentity", 1, 42); // OnDraw's own
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

// How it feels.

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
    // From the side of -Y clockwise leads to the side of -X.
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
    EXPECT_LT(down[1], right[1] - 0.1); // counted from below
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
    // Frames are drawn all the while, and the timer fires faster than that.
    ASSERT_TRUE(PumpUntil([&] {
        return control_->lastMousePoint.x == static_cast<float>(kMoves) &&
               window_calls_.Count("SwapBuffers(dc of 3DView)") >= 5;
    }));
    ExpectEyeFromTarget(-6.0, 0.0, 0.0); // 180 times half a degree
    // One redraw, hence one request for the focus, for each.
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
