// The amounts that mouse distances and wheel turns become: queued turns and pans, and zoom factors.
#include "tests/control/mouse_test.h"

#include <cmath>
#include <limits>

using namespace karv_test;
using testing::ElementsAre;

namespace
{

using ControlMouseAmounts = ControlMouse;

TEST_F(ControlMouseAmounts, RotationIsHalfADegreePerPixel)
{
    control_->GLMouseRotate(3, 5);
    EXPECT_EQ(control_->pendingRotateX, 2.5F);
    EXPECT_EQ(control_->pendingRotateZ, -1.5F);
}

TEST_F(ControlMouseAmounts, RotationReplacesTheOneThatWaits)
{
    control_->GLMouseRotate(3, 5);
    control_->GLMouseRotate(1, 1);
    EXPECT_EQ(control_->pendingRotateX, 0.5F);
    EXPECT_EQ(control_->pendingRotateZ, -0.5F);
}

TEST_F(ControlMouseAmounts, NoDistanceGivesAnOrbitOfMinusZero)
{
    control_->GLMouseRotate(0, 0);
    EXPECT_EQ(control_->pendingRotateX, 0.0F);
    EXPECT_FALSE(std::signbit(control_->pendingRotateX));
    EXPECT_EQ(control_->pendingRotateZ, 0.0F);
    EXPECT_TRUE(std::signbit(control_->pendingRotateZ)); // (0 x 0.5) x -1
}

TEST_F(ControlMouseAmounts, RotationOfAFullTurnIsKept)
{
    control_->GLMouseRotate(720, 720);
    EXPECT_EQ(control_->pendingRotateX, 360.0F);
    EXPECT_EQ(control_->pendingRotateZ, -360.0F);
    control_->GLMouseRotate(-720, -720);
    EXPECT_EQ(control_->pendingRotateX, -360.0F);
    EXPECT_EQ(control_->pendingRotateZ, 360.0F);
}

TEST_F(ControlMouseAmounts, RotationBeyondAFullTurnIsDropped)
{
    for (const int pixels : {721, -721, 100000, std::numeric_limits<int>::min()}) {
        control_->GLMouseRotate(pixels, pixels);
        EXPECT_EQ(control_->pendingRotateX, 0.0F) << pixels;
        EXPECT_EQ(control_->pendingRotateZ, 0.0F) << pixels;
    }
}

TEST_F(ControlMouseAmounts, RotationIsDroppedForEachAxisAlone)
{
    control_->GLMouseRotate(721, 10);
    EXPECT_EQ(control_->pendingRotateX, 5.0F);
    EXPECT_EQ(control_->pendingRotateZ, 0.0F);
    control_->GLMouseRotate(10, 721);
    EXPECT_EQ(control_->pendingRotateX, 0.0F);
    EXPECT_EQ(control_->pendingRotateZ, -5.0F);
}

TEST_F(ControlMouseAmounts, JumpOfMoreThanAFullTurnTurnsNothing)
{
    Move(MK_LBUTTON, 721, -721);
    ExpectUnmoved();
}

TEST_F(ControlMouseAmounts, PanFactorsAreFloatsAndTheirProductIsDouble)
{
    control_->panScale = 1.25F;
    control_->sceneSize = 154.5F;
    control_->zoomFactor = 5.25F;
    control_->GLMousePan(1370, -1370);
    // 1.25 x 0.01 is 0.01249999925494194 in float, 154.5 / 4.45 is 34.71910095214844; with 5.25 and 1370 that
    // is 3121.46398..., just below the midpoint of two floats. All in float, with k in float, all in double,
    // or with one factor in double the result would be the upper float, 0x1.862edap+11, or one above it.
    EXPECT_EQ(control_->pendingPanX, 0x1.862ed8p+11F);
    EXPECT_EQ(control_->pendingPanZ, -0x1.862ed8p+11F);
}

TEST_F(ControlMouseAmounts, ThePansShareOfTheSceneIsDividedByAFloat)
{
    control_->panScale = 100.0F; // times 0.01 is 1 in float
    control_->sceneSize = 5.0F;
    control_->zoomFactor = 1.0F;
    ASSERT_NE(5.0F / 4.45F, static_cast<float>(5.0 / 4.45));
    control_->GLMousePan(1, 1);
    EXPECT_EQ(control_->pendingPanX, 5.0F / 4.45F);
    EXPECT_EQ(control_->pendingPanZ, 5.0F / 4.45F);
}

TEST_F(ControlMouseAmounts, PanReplacesTheOneThatWaits)
{
    control_->GLMousePan(100, 100);
    control_->GLMousePan(0, 0);
    EXPECT_EQ(control_->pendingPanX, 0.0F);
    EXPECT_EQ(control_->pendingPanZ, 0.0F);
}

TEST_F(ControlMouseAmounts, PanOfAnEmptySceneIsZero)
{
    control_->sceneSize = 0.0F;
    control_->GLMousePan(100, 100);
    EXPECT_EQ(control_->pendingPanX, 0.0F);
    EXPECT_EQ(control_->pendingPanZ, 0.0F);
}

TEST_F(ControlMouseAmounts, ZoomChangesBothKindsTogether)
{
    control_->fieldOfView = 30.0F;
    control_->zoomFactor = 2.0F;
    control_->GLMouseZoom(50); // factor 1.5
    EXPECT_EQ(control_->fieldOfView, 45.0F);
    EXPECT_EQ(control_->zoomFactor, 3.0F);
}

TEST_F(ControlMouseAmounts, ZoomFactorIsFormedInFloats)
{
    // 33 x 0.01 is rounded to float before 1 is added. In double the result would be 0x1.547ae2p+0.
    control_->GLMouseZoom(33);
    EXPECT_EQ(control_->zoomFactor, 0x1.547aep+0F);
}

TEST_F(ControlMouseAmounts, FieldOfViewIsScaledByTheFloatFactor)
{
    const float factor = -99.0F * 0.01F + 1.0F;
    ASSERT_NE(40.0F * factor, static_cast<float>(40.0 * (-99.0 * 0.01 + 1.0)));
    control_->GLMouseZoom(-99);
    EXPECT_EQ(control_->fieldOfView, 40.0F * factor);
    EXPECT_EQ(control_->zoomFactor, factor);
}

TEST_F(ControlMouseAmounts, ZoomByAHundredPixelsUpIsZeroAndRecovers)
{
    Move(0, 0, 100);
    Move(MK_RBUTTON, 0, 0); // dy is -100: factor 0
    EXPECT_EQ(control_->fieldOfView, 0.01F);
    EXPECT_EQ(control_->zoomFactor, 0.0F); // in perspective only the field of view is limited
    Move(MK_RBUTTON, 0, 100);              // factor 2
    EXPECT_EQ(control_->fieldOfView, 0.02F);
}

TEST_F(ControlMouseAmounts, ParallelZoomByAHundredPixelsUpIsZeroAndRecovers)
{
    control_->SetToPerspective(false);
    Move(0, 0, 100);
    Move(MK_RBUTTON, 0, 0);
    EXPECT_EQ(control_->zoomFactor, 0.01F);
    Move(MK_RBUTTON, 0, 100);
    EXPECT_EQ(control_->zoomFactor, 0.02F);
}

TEST_F(ControlMouseAmounts, ZoomBelowZeroIsLimitedAtTheRedraw)
{
    Move(0, 0, 500);
    Move(MK_RBUTTON, 0, 0); // factor -4
    EXPECT_EQ(control_->fieldOfView, 0.01F);
}

TEST_F(ControlMouseAmounts, WheelForwardZoomsInByTwelvePerCent)
{
    control_->OnMouseWheel(0, 120, CPoint(0, 0));
    EXPECT_FLOAT_EQ(control_->zoomFactor, 0.88F);
    EXPECT_FLOAT_EQ(control_->fieldOfView, 35.2F);
}

TEST_F(ControlMouseAmounts, WheelBackZoomsOutByTwelvePerCent)
{
    control_->OnMouseWheel(0, -120, CPoint(0, 0));
    EXPECT_FLOAT_EQ(control_->zoomFactor, 1.12F);
    EXPECT_FLOAT_EQ(control_->fieldOfView, 44.8F);
}

TEST_F(ControlMouseAmounts, WheelOfLessThanTenDoesNotZoomButRedraws)
{
    const GlRecording gl;
    for (const short delta : {short{5}, short{-5}, short{9}, short{-9}, short{0}})
        control_->OnMouseWheel(0, delta, CPoint(0, 0));
    EXPECT_EQ(control_->zoomFactor, 1.0F);
    EXPECT_EQ(control_->fieldOfView, 40.0F);
    EXPECT_EQ(gl.Count("gluLookAt"), 5);
}

TEST_F(ControlMouseAmounts, WheelIsCutTowardsZero)
{
    control_->OnMouseWheel(0, 19, CPoint(0, 0)); // -1, not -2
    EXPECT_FLOAT_EQ(control_->zoomFactor, 0.99F);
}

TEST_F(ControlMouseAmounts, FarthestWheelsDoNotOverflow)
{
    control_->OnMouseWheel(0, std::numeric_limits<short>::min(), CPoint(0, 0)); // 3276: factor 33.76
    EXPECT_FLOAT_EQ(control_->zoomFactor, 33.76F);
    EXPECT_EQ(control_->fieldOfView, 150.0F);
    control_->ResetCameraZoom();
    control_->OnMouseWheel(0, std::numeric_limits<short>::max(), CPoint(0, 0)); // -3276: factor -31.76
    EXPECT_FLOAT_EQ(control_->zoomFactor, -31.76F);
    EXPECT_EQ(control_->fieldOfView, 0.01F);
}

TEST_F(ControlMouseAmounts, WheelLeavesThePointerPlaceAndTheCamera)
{
    control_->OnMouseWheel(MK_LBUTTON, 120, CPoint(30, 40));
    ExpectOnlyZoomed();
    EXPECT_EQ(control_->lastMousePoint.x, 0.0F);
    EXPECT_EQ(control_->lastMousePoint.y, 0.0F);
}

TEST_F(ControlMouseAmounts, WheelRedraws)
{
    const GlRecording gl;
    control_->OnMouseWheel(0, 120, CPoint(0, 0));
    EXPECT_THAT(gl.Listing(), ElementsAre("glLoadIdentity()", "glMatrixMode(GL_PROJECTION)",
                                          "glLoadIdentity()", "gluPerspective(35.2, 2, 0.01, 600)",
                                          "glMatrixMode(GL_MODELVIEW)", "glMatrixMode(GL_MODELVIEW)",
                                          "glLoadIdentity()", "gluLookAt(1.5, -4, 0, 1.5, 2, 0, 0, 0, 1)"));
}

TEST_F(ControlMouseAmounts, WheelOpensNoEntryOfItsOwn)
{
    const TraceRecording trace;
    control_->OnMouseWheel(0, 120, CPoint(0, 0));
    EXPECT_THAT(trace.OutermostCalls(),
                ElementsAre("KARVOpenGLControl::GLMouseZoom", "KARVOpenGLControl::OnDraw"));
}

TEST_F(ControlMouseAmounts, WheelStillZoomsWithoutUserControl)
{
    control_->KillUserControl();
    control_->OnMouseWheel(0, 120, CPoint(0, 0));
    EXPECT_FLOAT_EQ(control_->zoomFactor, 0.88F);
}

} // namespace
