// The camera commands of the control: their effect on camera and zoom, and the GL calls they make.
#include "tests/control/shared_constants.h"
#include "tests/support/control_test.h"

#include "platform/winsys/opengl.h"

#include <array>
#include <cmath>
#include <numbers>

using namespace karv_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr double kIsoTilt = 35.263999938964844; // 35.264 as a float

/// A control of aspect 2 whose scene has its centre at (1.5, 2, 0) and size 6 (a diagonal of 5, times 1.2).
class ControlCamera : public ControlTest
{
  protected:
    ControlCamera() : control_(NewControl()) { control_->OverrideExtents({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0}); }

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    static void ExpectNear(const AcGeVector3d& vector, double x, double y, double z)
    {
        EXPECT_NEAR(vector.x, x, kRounding);
        EXPECT_NEAR(vector.y, y, kRounding);
        EXPECT_NEAR(vector.z, z, kRounding);
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

/// A standard view: from the front the eye is orbited by `orbit`, then lifted by `tilt` degrees.
struct StandardView {
    const char* name;
    void (KARVOpenGLControl::*command)();
    double orbit;
    double tilt;
};

void PrintTo(const StandardView& view, std::ostream* out)
{
    *out << view.name;
}

class ControlStandardView : public ControlCamera, public testing::WithParamInterface<StandardView>
{
  protected:
    [[nodiscard]] static double Radians(double degrees) { return degrees * std::numbers::pi / 180.0; }

    /// The unit vector from the target to the eye.
    [[nodiscard]] static AcGeVector3d Outward()
    {
        const double orbit = Radians(GetParam().orbit);
        const double tilt = Radians(GetParam().tilt);
        return {std::sin(orbit) * std::cos(tilt), -std::cos(orbit) * std::cos(tilt), std::sin(tilt)};
    }

    [[nodiscard]] static AcGeVector3d Up()
    {
        const double orbit = Radians(GetParam().orbit);
        const double tilt = Radians(GetParam().tilt);
        return {-std::sin(orbit) * std::sin(tilt), std::cos(orbit) * std::sin(tilt), std::cos(tilt)};
    }

    [[nodiscard]] static AcGeVector3d Right()
    {
        const double orbit = Radians(GetParam().orbit);
        return {std::cos(orbit), std::sin(orbit), 0.0};
    }

    void Command() { ((*control_).*GetParam().command)(); }
};

TEST_P(ControlStandardView, PutsTheEyeOneSceneSizeFromTheTargetOnItsSide)
{
    control_->camera.SetPosition({77.0, 66.0, 55.0});
    Command();
    const AcGePoint3d& eye = control_->camera.position;
    const AcGePoint3d& target = control_->camera.target;
    ExpectNear(target.asVector(), 1.5, 2.0, 0.0);
    const AcGeVector3d outward = Outward();
    ExpectNear(eye - target, 6.0 * outward.x, 6.0 * outward.y, 6.0 * outward.z);
}

TEST_P(ControlStandardView, GivesItsAxes)
{
    Command();
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    control_->GetCameraAxes(x, y, z);
    const AcGeVector3d right = Right();
    const AcGeVector3d outward = Outward();
    const AcGeVector3d up = Up();
    ExpectNear(x, right.x, right.y, right.z);
    ExpectNear(y, -outward.x, -outward.y, -outward.z);
    ExpectNear(z, up.x, up.y, up.z);
}

TEST_P(ControlStandardView, GivesTheSameFromWhereverTheCameraWas)
{
    Command();
    const AcGePoint3d once = control_->camera.position;
    control_->camera.RotateCamera(17.0F, AcGeVector3d::kZAxis);
    control_->camera.RotateCamera(-23.0F, AcGeVector3d::kXAxis);
    Command();
    EXPECT_NEAR(once.distanceTo(control_->camera.position), 0.0, kRounding);
}

TEST_P(ControlStandardView, LoadsTheFrontViewAndThenItsOwn)
{
    const GlRecording gl;
    Command();
    const std::string front = "gluLookAt(1.5, -4, 0, 1.5, 2, 0, 0, 0, 1)";
    if (GetParam().orbit == 0.0 && GetParam().tilt == 0.0) {
        EXPECT_THAT(gl.Listing(), ElementsAre("glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()", front));
        return;
    }
    ASSERT_EQ(gl.Count("gluLookAt"), 2);
    const GlCall& own = gl.Call("gluLookAt", 1);
    EXPECT_THAT(gl.Listing(),
                ElementsAre("glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()", front, "glLoadIdentity()",
                            "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()", own.text));
    const AcGeVector3d outward = Outward();
    const AcGeVector3d up = Up();
    const std::array<double, 9> expected = {
        1.5 + 6.0 * outward.x, 2.0 + 6.0 * outward.y, 6.0 * outward.z, 1.5, 2.0, 0.0, up.x, up.y, up.z};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(own.values.at(i), expected.at(i), kRounding) << i;
}

TEST_P(ControlStandardView, KeepsTheZoomAndAsksForNoRedraw)
{
    control_->zoomFactor = 3.0F;
    control_->fieldOfView = 12.0F;
    window_calls_.Clear();
    Command();
    EXPECT_EQ(control_->zoomFactor, 3.0F);
    EXPECT_EQ(control_->fieldOfView, 12.0F);
    EXPECT_FALSE(control_->cameraSetByCaller);
    EXPECT_THAT(window_calls_.Listing(), IsEmpty());
}

TEST_P(ControlStandardView, ReportsWorldUpAsTheUpVector)
{
    control_->camera.SetUpVector({1.0, 0.0, 0.0});
    Command();
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d up;
    control_->GetCameraData(position, target, up);
    ExpectNear(up, 0.0, 0.0, 1.0);
}

INSTANTIATE_TEST_SUITE_P(
    Ten, ControlStandardView,
    testing::Values(StandardView{"Front", &KARVOpenGLControl::CameraViewFront, 0.0, 0.0},
                    StandardView{"Back", &KARVOpenGLControl::CameraViewBack, 180.0, 0.0},
                    StandardView{"Left", &KARVOpenGLControl::CameraViewLeft, -90.0, 0.0},
                    StandardView{"Right", &KARVOpenGLControl::CameraViewRight, 90.0, 0.0},
                    StandardView{"Top", &KARVOpenGLControl::CameraViewTop, 0.0, 90.0},
                    StandardView{"Bottom", &KARVOpenGLControl::CameraViewBottom, 0.0, -90.0},
                    StandardView{"SE", &KARVOpenGLControl::CameraViewSE, 45.0, kIsoTilt},
                    StandardView{"SW", &KARVOpenGLControl::CameraViewSW, 315.0, kIsoTilt},
                    StandardView{"NE", &KARVOpenGLControl::CameraViewNE, 135.0, kIsoTilt},
                    StandardView{"NW", &KARVOpenGLControl::CameraViewNW, 225.0, kIsoTilt}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(ControlCamera, TheTopViewLooksDownWithNorthUp)
{
    control_->CameraViewTop();
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    control_->GetCameraAxes(x, y, z);
    ExpectNear(x, 1.0, 0.0, 0.0);
    ExpectNear(y, 0.0, 0.0, -1.0);
    ExpectNear(z, 0.0, 1.0, 0.0);
}

TEST_F(ControlCamera, AViewOfAnEmptySceneStandsAtItsTarget)
{
    control_->OverrideExtents({1.0, 1.0, 1.0}, {1.0, 1.0, 1.0});
    control_->CameraViewFront();
    EXPECT_EQ(control_->camera.position.distanceTo({1.0, 1.0, 1.0}), 0.0);
}

TEST_F(ControlCamera, AViewFollowsTheNewestScene)
{
    control_->OverrideExtents({0.0, 0.0, 0.0}, {30.0, 40.0, 0.0}); // size 60
    control_->CameraViewRight();
    ExpectNear(control_->camera.position.asVector(), 75.0, 20.0, 0.0);
}

TEST_F(ControlCamera, ViewsWorkBeforeThereIsAWindow)
{
    KARVOpenGLControl early;
    const TraceRecording trace;
    early.CameraViewTop();
    ExpectNear(early.camera.position.asVector(), 0.0, 0.0, 10.0); // a fresh camera's far distance is 1000
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

/// A control without a scene: its size is 0, so every standard view puts the eye on the target.
class EmptyControlCamera : public ControlTest
{
  protected:
    EmptyControlCamera() : control_(NewControl()) {}

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    void ExpectAxes(const AcGeVector3d& right, const AcGeVector3d& forward, const AcGeVector3d& up)
    {
        AcGeVector3d x;
        AcGeVector3d y;
        AcGeVector3d z;
        control_->GetCameraAxes(x, y, z);
        EXPECT_LE((x - right).length(), kRounding) << "right";
        EXPECT_LE((y - forward).length(), kRounding) << "forward";
        EXPECT_LE((z - up).length(), kRounding) << "up";
    }

    void ExpectEyeAndTargetAt(const AcGePoint3d& place)
    {
        EXPECT_EQ(control_->camera.position.distanceTo(place), 0.0);
        EXPECT_EQ(control_->camera.target.distanceTo(place), 0.0);
    }

    void TiltBy(float degrees)
    {
        control_->pendingRotateX = degrees;
        control_->OnDraw(nullptr);
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

TEST_F(EmptyControlCamera, TheTopViewLooksDownWithNorthUp)
{
    control_->CameraViewTop();
    ExpectEyeAndTargetAt({0.0, 0.0, 0.0});
    ExpectAxes({1.0, 0.0, 0.0}, {0.0, 0.0, -1.0}, {0.0, 1.0, 0.0});
}

TEST_F(EmptyControlCamera, TheBottomViewLooksUp)
{
    control_->CameraViewBottom();
    ExpectEyeAndTargetAt({0.0, 0.0, 0.0});
    ExpectAxes({1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {0.0, -1.0, 0.0});
}

TEST_F(EmptyControlCamera, PanningGoesAlongWorldXAlone)
{
    control_->CameraViewTop();
    control_->pendingPanX = -2.0F; // the control inverts the sign: to the right
    control_->pendingPanZ = 5.0F;
    control_->OnDraw(nullptr);
    ExpectEyeAndTargetAt({2.0, 0.0, 0.0});
}

/// Each step is measured from the vertical anew, because the eye does not leave the target.
TEST_F(EmptyControlCamera, TiltingTurnsTheAxesPastEveryLimit)
{
    control_->CameraViewFront();
    for (int step = 0; step < 5; ++step)
        TiltBy(60.0F);
    // 300 degrees about -X are 60 about +X.
    const double cosine = 0.5;
    const double sine = std::sqrt(0.75);
    ExpectEyeAndTargetAt({0.0, 0.0, 0.0});
    ExpectAxes({1.0, 0.0, 0.0}, {0.0, cosine, sine}, {0.0, -sine, cosine});
}

TEST_F(EmptyControlCamera, TheNextStandardViewBringsTheAxesBack)
{
    TiltBy(60.0F);
    TiltBy(60.0F);
    control_->CameraViewFront();
    ExpectAxes({1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0});
    TiltBy(60.0F);
    control_->CameraViewTop();
    ExpectAxes({1.0, 0.0, 0.0}, {0.0, 0.0, -1.0}, {0.0, 1.0, 0.0});
}

TEST_F(ControlCamera, SetCameraKeepsTheThreeValuesAndZoomsIn)
{
    const GlRecording gl;
    control_->SetCamera({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    EXPECT_THAT(gl.Listing(), IsEmpty());
    EXPECT_EQ(control_->zoomFactor, 0.01F);
    EXPECT_EQ(control_->fieldOfView, 0.1F);
    EXPECT_TRUE(control_->cameraSetByCaller);
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d up;
    control_->GetCameraData(position, target, up);
    ExpectNear(position.asVector(), 1.0, 2.0, 3.0);
    ExpectNear(target.asVector(), 4.0, 5.0, 6.0);
    ExpectNear(up, 0.0, 1.0, 0.0);
}

TEST_F(ControlCamera, ARedrawKeepsTheZoomOfSetCamera)
{
    control_->SetCamera({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    const GlRecording gl;
    control_->OnDraw(nullptr);
    EXPECT_EQ(control_->zoomFactor, 0.01F);
    EXPECT_EQ(control_->fieldOfView, 0.1F);
    EXPECT_EQ(gl.Call("gluPerspective").text, "gluPerspective(0.1, 2, 0.01, 600)");
    EXPECT_EQ(gl.Call("gluLookAt").text, "gluLookAt(1, 2, 3, 4, 5, 6, 0, 0, 1)"); // the previous up axis
}

TEST_F(ControlCamera, AParallelRedrawKeepsTheZoomOfSetCamera)
{
    control_->SetToPerspective(false);
    control_->SetCamera({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    control_->OnDraw(nullptr);
    EXPECT_EQ(control_->zoomFactor, 0.01F);
}

TEST_F(ControlCamera, SetCameraDataLoadsTheViewAtOnceAndKeepsTheZoom)
{
    control_->zoomFactor = 3.0F;
    control_->fieldOfView = 12.0F;
    const GlRecording gl;
    control_->SetCameraData({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    EXPECT_THAT(gl.Listing(), ElementsAre("glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                                          "gluLookAt(1, 2, 3, 4, 5, 6, 0, 0, 1)"));
    EXPECT_EQ(control_->zoomFactor, 3.0F);
    EXPECT_EQ(control_->fieldOfView, 12.0F);
    EXPECT_TRUE(control_->cameraSetByCaller);
}

TEST_F(ControlCamera, SetCameraDataIsReadBackAndTheAxesStay)
{
    control_->CameraViewRight();
    control_->SetCameraData({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d up;
    control_->GetCameraData(position, target, up);
    ExpectNear(position.asVector(), 1.0, 2.0, 3.0);
    ExpectNear(target.asVector(), 4.0, 5.0, 6.0);
    ExpectNear(up, 0.0, 1.0, 0.0);
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    control_->GetCameraAxes(x, y, z);
    ExpectNear(x, 0.0, 1.0, 0.0); // from +X the right is +Y
    ExpectNear(y, -1.0, 0.0, 0.0);
    ExpectNear(z, 0.0, 0.0, 1.0);
}

TEST_F(ControlCamera, ReadingTheCameraMakesNoGlCall)
{
    const GlRecording gl;
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d up;
    AcGeVector3d x;
    AcGeVector3d y;
    control_->GetCameraData(position, target, up);
    control_->GetCameraAxes(x, y, up);
    EXPECT_THAT(gl.Listing(), IsEmpty());
}

TEST_F(ControlCamera, TheUpVectorThatIsReadIsNotTheUpAxis)
{
    control_->CameraViewTop();
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d up;
    control_->GetCameraData(position, target, up);
    ExpectNear(up, 0.0, 0.0, 1.0); // the axis is (0, 1, 0)
}

TEST_F(ControlCamera, NoCommandAsksForARedraw)
{
    window_calls_.Clear();
    const TraceRecording trace;
    AcGePoint3d point;
    AcGeVector3d vector;
    control_->SetCamera({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    control_->SetCameraData({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    control_->GetCameraData(point, point, vector);
    control_->GetCameraAxes(vector, vector, vector);
    control_->SetToPerspective(false);
    control_->SetToPerspective(true);
    control_->ResetCameraZoom();
    EXPECT_THAT(window_calls_.Listing(), IsEmpty());
    EXPECT_THAT(trace.Calls(), testing::Not(testing::Contains("KARVOpenGLControl::OnDraw")));
}

TEST_F(ControlCamera, APlacedCameraStaysPlaced)
{
    control_->SetCameraData({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    control_->CameraViewTop();
    control_->ResetCameraZoom();
    control_->ClearGeometry(true);
    EXPECT_TRUE(control_->cameraSetByCaller);
}

TEST_F(ControlCamera, ResettingTheZoomRestoresBothAndNothingElse)
{
    control_->SetCamera({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    const GlRecording gl;
    control_->ResetCameraZoom();
    EXPECT_EQ(control_->zoomFactor, 1.0F);
    EXPECT_EQ(control_->fieldOfView, 40.0F);
    EXPECT_TRUE(control_->cameraSetByCaller);
    ExpectNear(control_->camera.position.asVector(), 1.0, 2.0, 3.0);
    EXPECT_THAT(gl.Listing(), IsEmpty());
}

TEST_F(ControlCamera, AResetZoomShowsAtTheNextRedraw)
{
    control_->fieldOfView = 5.0F;
    control_->ResetCameraZoom();
    const GlRecording gl;
    control_->OnDraw(nullptr);
    EXPECT_EQ(gl.Call("gluPerspective").text, "gluPerspective(40, 2, 0.01, 600)");
}

TEST_F(ControlCamera, ToParallelTheProjectionIsPushedAndReplaced)
{
    const GlRecording gl;
    control_->SetToPerspective(false);
    // Half the width is half the scene size, 3; at aspect 2 half the height is 1.5. Top and bottom are
    // swapped twice.
    EXPECT_THAT(gl.Listing(), ElementsAre("glMatrixMode(GL_PROJECTION)", "glPushMatrix()", "glLoadIdentity()",
                                          "glOrtho(-3, 3, 1.5, -1.5, -600, 600)", "glScalef(1, -1, 1)",
                                          "glMatrixMode(GL_MODELVIEW)", "glMatrixMode(GL_MODELVIEW)",
                                          "glLoadIdentity()", "gluLookAt(0, 0, 0, 1.5, 2, 0, 0, 0, 1)"));
    EXPECT_FALSE(control_->camera.perspectiveOn);
}

TEST_F(ControlCamera, ToParallelTwiceMakesNoCallTheSecondTime)
{
    control_->SetToPerspective(false);
    const GlRecording gl;
    control_->SetToPerspective(false);
    EXPECT_THAT(gl.Listing(), IsEmpty());
}

TEST_F(ControlCamera, BackToPerspectiveTheProjectionIsPoppedAndHasANegativeNearDistance)
{
    control_->SetToPerspective(false);
    const GlRecording gl;
    control_->SetToPerspective(true);
    // 40 / 16.66, multiplied by 16.66 again.
    EXPECT_THAT(gl.Listing(), ElementsAre("glMatrixMode(GL_PROJECTION)", "glPopMatrix()", "glLoadIdentity()",
                                          "gluPerspective(40, 2, -600, 600)", "glMatrixMode(GL_MODELVIEW)",
                                          "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                                          "gluLookAt(0, 0, 0, 1.5, 2, 0, 0, 0, 1)"));
}

TEST_F(ControlCamera, ARedrawRepairsThePerspective)
{
    control_->SetToPerspective(false);
    control_->SetToPerspective(true);
    const GlRecording gl;
    control_->OnDraw(nullptr);
    EXPECT_EQ(gl.Call("gluPerspective").text, "gluPerspective(40, 2, 0.01, 600)");
}

TEST_F(ControlCamera, ToPerspectiveFromPerspectivePopsAllTheSame)
{
    const GlRecording gl;
    control_->SetToPerspective(true);
    EXPECT_EQ(gl.Count("glPopMatrix"), 1);
    EXPECT_EQ(gl.Count("glPushMatrix"), 0);
    // The parallel scale is still 1, which becomes a field of view of 16.66 degrees.
    EXPECT_EQ(gl.Call("gluPerspective").text, "gluPerspective(16.66, 2, -600, 600)");
}

TEST_F(ControlCamera, SwitchingProjectionsKeepsTheZoom)
{
    control_->zoomFactor = 3.0F;
    control_->fieldOfView = 12.0F;
    control_->SetToPerspective(false);
    control_->SetToPerspective(true);
    EXPECT_EQ(control_->zoomFactor, 3.0F);
    EXPECT_EQ(control_->fieldOfView, 12.0F);
}

TEST_F(ControlCamera, AFaultInTheCameraIsSwallowedThereAndTheCommandGoesOn)
{
    const TraceRecording trace;
    const GlHook fault = ThrowAt("gluLookAt", 1, 42); // of the front view that the top view starts with
    const GlRecording gl;
    control_->CameraViewTop();
    EXPECT_THAT(trace.Faults(), ElementsAre(testing::StartsWith(".\\KARVGLCamera.cpp:")));
    EXPECT_EQ(gl.Count("gluLookAt"), 2);
    ExpectNear(control_->camera.position.asVector(), 1.5, 2.0, 6.0);
}

TEST_F(ControlCamera, AFaultInUpdatingLeavesSetCameraDataComplete)
{
    const TraceRecording trace;
    const GlHook fault = ThrowAt("gluLookAt", 1, 42);
    control_->SetCameraData({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {0.0, 1.0, 0.0});
    EXPECT_EQ(trace.Faults().size(), 1U);
    EXPECT_TRUE(control_->cameraSetByCaller);
}

} // namespace
