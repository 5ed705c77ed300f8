#include "tests/camera/camera_checks.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using karv_test::Cos;
using karv_test::FrontCamera;
using karv_test::GlobalTolerance;
using karv_test::IsAt;
using karv_test::kInfinityf;
using karv_test::kNaNf;
using karv_test::SameCamera;
using karv_test::SameFrame;
using karv_test::SamePlace;
using karv_test::Sin;
using karv_test::View;
using karv_test::x_axis;
using karv_test::y_axis;
using karv_test::z_axis;

TEST(CameraPan, FrontViewMovesAlongWorldXAndZ)
{
    KARVGLCamera camera = FrontCamera(10.0, {1.0, 2.0, 3.0});
    camera.PanCamera(2.5F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 3.5, -8, 3));
    EXPECT_TRUE(IsAt(camera.target, 3.5, 2, 3));
    camera.PanCamera(-1.5F, z_axis);
    EXPECT_TRUE(IsAt(camera.position, 3.5, -8, 1.5));
    EXPECT_TRUE(IsAt(camera.target, 3.5, 2, 1.5));
}

TEST(CameraPan, LeavesTheFrame)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewSE);
    camera.upVector = {1.0, 2.0, 3.0};
    const KARVGLCamera before = camera;
    camera.PanCamera(3.0F, x_axis);
    camera.PanCamera(3.0F, z_axis);
    EXPECT_TRUE(SameFrame(camera, before));
}

TEST(CameraPan, AnyAxisButWorldXMovesUpTheScreen)
{
    KARVGLCamera expected = FrontCamera();
    expected.PanCamera(2.0F, z_axis);
    const std::vector<AcGeVector3d> axes = {
        y_axis, {-1.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {1.0 + 1e-9, 0.0, 0.0}};
    for (const AcGeVector3d& axis : axes) {
        KARVGLCamera camera = FrontCamera();
        camera.PanCamera(2.0F, axis);
        EXPECT_TRUE(SameCamera(camera, expected)) << axis.x << ' ' << axis.y << ' ' << axis.z;
    }
}

TEST(CameraPan, AxisWithinTheToleranceOfWorldXMovesRight)
{
    KARVGLCamera camera = FrontCamera();
    camera.PanCamera(2.0F, {1.0, 5e-11, 0.0});
    EXPECT_TRUE(IsAt(camera.target, 2, 0, 0));
}

TEST(CameraPan, FromWithinTheToleranceOfStraightAboveRightIsWorldX)
{
    // 5e-10 in 10 is an angle of 5e-11, half of the tolerance.
    KARVGLCamera camera;
    camera.position = {5e-10, 0.0, 10.0};
    camera.PanCamera(2.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.target, 2, 0, 0));
}

TEST(CameraPan, FromBeyondTheToleranceOfStraightAboveRightFollowsTheLineOfSight)
{
    // Ten times the tolerance: the eye leans to +X, so it looks along -X, and its right is +Y.
    KARVGLCamera camera;
    camera.position = {1e-8, 0.0, 10.0};
    camera.PanCamera(2.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.target, 0, 2, 0));
}

TEST(CameraPan, ToleranceIsThatOfTheProcess)
{
    const GlobalTolerance coarse(0.1);
    KARVGLCamera camera = FrontCamera();
    camera.PanCamera(2.0F, {1.0625, 0.0, 0.0});
    EXPECT_TRUE(IsAt(camera.target, 2, 0, 0));
    camera.PanCamera(2.0F, {1.125, 0.0, 0.0});
    EXPECT_TRUE(IsAt(camera.target, 2, 0, 2));

    KARVGLCamera steep;
    steep.position = {0.5, 0.0, 10.0};
    steep.PanCamera(2.0F, x_axis);
    EXPECT_TRUE(IsAt(steep.target, 2, 0, 0));

    // The eye leans by 0.0625 in 0.25 to +X. The right direction is +Y, of length 0.0625, and is not
    // brought to length 1.
    KARVGLCamera leaning;
    leaning.position = {0.0625, 0.0, 0.25};
    leaning.PanCamera(2.0F, x_axis);
    EXPECT_TRUE(IsAt(leaning.target, 0, 0.125, 0));

    // A line of sight of 0.0625 has no length. Otherwise the right direction from the back would be -X.
    KARVGLCamera close;
    close.position = {0.0, 0.0625, 0.0};
    close.PanCamera(2.0F, x_axis);
    EXPECT_TRUE(IsAt(close.target, 2, 0, 0));
}

TEST(CameraPan, ZeroAmountMovesNothing)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewNE);
    const KARVGLCamera before = camera;
    camera.PanCamera(0.0F, x_axis);
    camera.PanCamera(0.0F, z_axis);
    EXPECT_TRUE(SameCamera(camera, before));
}

TEST(CameraPan, MovesAreOfTheAmountAtAnyDistance)
{
    for (const double distance : {1e-4, 1.0, 1e9}) {
        KARVGLCamera camera = FrontCamera(distance);
        camera.PanCamera(3.0F, x_axis);
        camera.PanCamera(4.0F, z_axis);
        EXPECT_TRUE(IsAt(camera.target, 3, 0, 4)) << distance;
    }
}

TEST(CameraPan, AmountIsA32BitFloat)
{
    KARVGLCamera camera = FrontCamera();
    camera.PanCamera(0.1F, x_axis);
    EXPECT_EQ(camera.target.x, static_cast<double>(0.1F));
}

TEST(CameraPan, CloserThanTheToleranceUpIsNotNormalized)
{
    // At a distance of 1e-6 the right direction is 1e-6 long, more than the tolerance of 1e-10, and is
    // normalized. The direction down the screen is 1e-12 long, which is less, and is not normalized.
    KARVGLCamera camera = FrontCamera(1e-6);
    camera.PanCamera(3.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.target, 3, 0, 0));
    camera.PanCamera(4.0F, z_axis);
    EXPECT_NEAR(camera.target.z, 4.0 * 1e-12, 1e-24);
}

TEST(CameraPan, EyeOnTheTargetMovesAlongWorldXAlone)
{
    KARVGLCamera camera;
    camera.PanCamera(3.0F, x_axis);
    camera.PanCamera(4.0F, z_axis);
    EXPECT_TRUE(IsAt(camera.position, 3, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.target, 3, 0, 0, 0));
}

TEST(CameraPan, NaNSpoilsThePlaceAndNotTheFrame)
{
    KARVGLCamera camera = FrontCamera();
    camera.PanCamera(kNaNf, x_axis);
    EXPECT_TRUE(std::isnan(camera.position.x));
    EXPECT_TRUE(std::isnan(camera.target.x));
    EXPECT_TRUE(SameFrame(camera, FrontCamera()));
}

TEST(CameraPan, InfiniteAmountIsTaken)
{
    KARVGLCamera camera = FrontCamera();
    camera.PanCamera(kInfinityf, x_axis);
    EXPECT_EQ(camera.target.x, std::numeric_limits<double>::infinity());
    EXPECT_TRUE(SameFrame(camera, FrontCamera()));
}

TEST(CameraPan, HundredStepsAndBackReturnToTheStart)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewSW);
    const KARVGLCamera before = camera;
    for (int i = 0; i < 100; ++i)
        camera.PanCamera(0.7F, i % 2 == 0 ? x_axis : z_axis);
    for (int i = 0; i < 100; ++i)
        camera.PanCamera(-0.7F, i % 2 == 0 ? x_axis : z_axis);
    EXPECT_TRUE(IsAt(camera.target, before.target.x, before.target.y, before.target.z, 1e-10));
}

namespace
{

/// A view, and the world directions that are right and up on its screen.
struct ScreenAxes {
    const char* name;
    void (KARVGLCamera::*set)();
    AcGeVector3d right;
    AcGeVector3d up;
};

class PanInView : public testing::TestWithParam<ScreenAxes>
{
};

const double kHalfRoot = std::sqrt(0.5);
const double kTiltSin = Sin(static_cast<double>(35.264F));
const double kTiltCos = Cos(static_cast<double>(35.264F));

/// In the top and bottom views right is world X, and up is the world direction at right angles to it. In the
/// iso views up leans back by the tilt.
const ScreenAxes kScreens[] = {
    {"Front", &KARVGLCamera::SetViewFront, {1, 0, 0}, {0, 0, 1}},
    {"Back", &KARVGLCamera::SetViewBack, {-1, 0, 0}, {0, 0, 1}},
    {"Left", &KARVGLCamera::SetViewLeft, {0, -1, 0}, {0, 0, 1}},
    {"Right", &KARVGLCamera::SetViewRight, {0, 1, 0}, {0, 0, 1}},
    {"Top", &KARVGLCamera::SetViewTop, {1, 0, 0}, {0, 1, 0}},
    {"Bottom", &KARVGLCamera::SetViewBottom, {1, 0, 0}, {0, -1, 0}},
    {"SE",
     &KARVGLCamera::SetViewSE,
     {kHalfRoot, kHalfRoot, 0},
     {-kHalfRoot * kTiltSin, kHalfRoot* kTiltSin, kTiltCos}},
    {"SW",
     &KARVGLCamera::SetViewSW,
     {kHalfRoot, -kHalfRoot, 0},
     {kHalfRoot * kTiltSin, kHalfRoot* kTiltSin, kTiltCos}},
    {"NE",
     &KARVGLCamera::SetViewNE,
     {-kHalfRoot, kHalfRoot, 0},
     {-kHalfRoot * kTiltSin, -kHalfRoot* kTiltSin, kTiltCos}},
    {"NW",
     &KARVGLCamera::SetViewNW,
     {-kHalfRoot, -kHalfRoot, 0},
     {kHalfRoot * kTiltSin, -kHalfRoot* kTiltSin, kTiltCos}},
};

} // namespace

TEST_P(PanInView, MovesRightAndUpOnTheScreen)
{
    KARVGLCamera camera;
    (camera.*GetParam().set)();
    const AcGePoint3d eye = camera.position;
    const AcGeVector3d& right = GetParam().right;
    const AcGeVector3d& up = GetParam().up;
    camera.PanCamera(2.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.target, 2 * right.x, 2 * right.y, 2 * right.z));
    camera.PanCamera(3.0F, z_axis);
    const AcGeVector3d moved = right * 2.0 + up * 3.0;
    EXPECT_TRUE(IsAt(camera.target, moved.x, moved.y, moved.z));
    EXPECT_TRUE(IsAt(camera.position, eye.x + moved.x, eye.y + moved.y, eye.z + moved.z));
}

INSTANTIATE_TEST_SUITE_P(All, PanInView, testing::ValuesIn(kScreens),
                         [](const auto& view) { return std::string(view.param.name); });

TEST(CameraDolly, MovesTheEyeTowardsTheTarget)
{
    KARVGLCamera camera = FrontCamera(10.0, {1.0, 2.0, 3.0});
    camera.ZoomCamera(4.0F);
    EXPECT_TRUE(IsAt(camera.position, 1, -4, 3));
    EXPECT_TRUE(IsAt(camera.target, 1, 2, 3, 0));
}

TEST(CameraDolly, NegativeAmountMovesAway)
{
    KARVGLCamera camera = FrontCamera();
    camera.ZoomCamera(-5.0F);
    EXPECT_TRUE(IsAt(camera.position, 0, -15, 0));
}

TEST(CameraDolly, LeavesFrameAndUpVector)
{
    KARVGLCamera camera = FrontCamera();
    camera.upVector = {1.0, 2.0, 3.0};
    const KARVGLCamera before = camera;
    camera.ZoomCamera(4.0F);
    EXPECT_TRUE(SameFrame(camera, before));
}

TEST(CameraDolly, FollowsATurnedFrame)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewSE);
    const AcGeVector3d before = camera.position - camera.target;
    camera.ZoomCamera(4.0F);
    // 6 of the 10 units are left.
    EXPECT_TRUE(IsAt(camera.position, before.x * 0.6, before.y * 0.6, before.z * 0.6));
}

TEST(CameraDolly, ReachingTheTargetDoesNothing)
{
    KARVGLCamera camera = FrontCamera();
    camera.ZoomCamera(10.0F);
    EXPECT_TRUE(SameCamera(camera, FrontCamera()));
}

TEST(CameraDolly, PassingTheTargetDoesNothing)
{
    KARVGLCamera camera = FrontCamera();
    camera.ZoomCamera(12.0F);
    EXPECT_TRUE(SameCamera(camera, FrontCamera()));
}

TEST(CameraDolly, JustBeforeTheTargetMoves)
{
    KARVGLCamera camera = FrontCamera();
    camera.ZoomCamera(9.5F);
    EXPECT_TRUE(IsAt(camera.position, 0, -0.5, 0));
}

TEST(CameraDolly, ZeroAmountMovesNothing)
{
    KARVGLCamera camera = FrontCamera();
    camera.ZoomCamera(0.0F);
    EXPECT_TRUE(SamePlace(camera, FrontCamera()));
}

TEST(CameraDolly, FrameThatLooksElsewhereMovesNothing)
{
    // The frame still looks along +Y, while the target lies along -X.
    KARVGLCamera camera;
    camera.SetCamera({5.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 1.0});
    const KARVGLCamera before = camera;
    camera.ZoomCamera(1.0F);
    EXPECT_TRUE(SameCamera(camera, before));
}

TEST(CameraDolly, FollowsTheFrameAndNotTheLineOfSight)
{
    // The frame looks along (0.6, 0.8), off the line of sight (0, 1), but within this tolerance.
    const GlobalTolerance coarse(1.0);
    KARVGLCamera camera = FrontCamera();
    camera.yAxis = {0.6, 0.8, 0.0};
    camera.xAxis = {0.8, -0.6, 0.0};
    camera.ZoomCamera(5.0F);
    EXPECT_TRUE(IsAt(camera.position, 3, -6, 0));
}

TEST(CameraDolly, FrameOffTheLineOfSightMovesNothing)
{
    KARVGLCamera camera = FrontCamera();
    camera.yAxis = {0.6, 0.8, 0.0};
    camera.xAxis = {0.8, -0.6, 0.0};
    const KARVGLCamera before = camera;
    camera.ZoomCamera(5.0F);
    EXPECT_TRUE(SameCamera(camera, before));
}

TEST(CameraDolly, AmountIsA32BitFloat)
{
    KARVGLCamera camera;
    camera.target = {0.0, 1.0, 0.0};
    camera.ZoomCamera(0.1F);
    EXPECT_EQ(camera.position.y, static_cast<double>(0.1F));
}

TEST(CameraDolly, EyeOnTheTargetMovesNothing)
{
    KARVGLCamera camera;
    camera.ZoomCamera(1.0F);
    EXPECT_TRUE(SameCamera(camera, KARVGLCamera()));
}

TEST(CameraDolly, NaNAmountMovesNothing)
{
    KARVGLCamera camera = FrontCamera();
    camera.ZoomCamera(kNaNf);
    EXPECT_TRUE(SameCamera(camera, FrontCamera()));
}
