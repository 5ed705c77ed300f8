#include "tests/camera/camera_checks.h"

#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

using karv_test::Cos;
using karv_test::FrontCamera;
using karv_test::GlobalTolerance;
using karv_test::IsAt;
using karv_test::IsOrthonormal;
using karv_test::kInfinityf;
using karv_test::kNaN;
using karv_test::kNaNf;
using karv_test::kRadiansPerDegree;
using karv_test::SameCamera;
using karv_test::Sin;
using karv_test::View;
using karv_test::x_axis;
using karv_test::y_axis;
using karv_test::z_axis;

namespace
{

/// Whether a tilt of `camera` by `degrees` is applied.
bool Tilts(KARVGLCamera camera, float degrees, const AcGeVector3d& axis = AcGeVector3d::kXAxis)
{
    const KARVGLCamera before = camera;
    camera.RotateCamera(degrees, axis);
    return !SameCamera(camera, before);
}

/// The elevation of the eye above the target, in degrees.
double Elevation(const KARVGLCamera& camera)
{
    const AcGeVector3d offset = camera.position - camera.target;
    return std::atan2(offset.z, std::hypot(offset.x, offset.y)) / kRadiansPerDegree;
}

} // namespace

TEST(CameraOrbit, TurnsEyeAndFrameAboutWorldZThroughTheTarget)
{
    KARVGLCamera camera = FrontCamera(10.0, {1.0, 2.0, 3.0});
    camera.RotateCamera(30.0F, z_axis);
    EXPECT_TRUE(IsAt(camera.position, 1.0 + 10.0 * Sin(30), 2.0 - 10.0 * Cos(30), 3.0));
    EXPECT_TRUE(IsAt(camera.xAxis, Cos(30), Sin(30), 0.0));
    EXPECT_TRUE(IsAt(camera.yAxis, -Sin(30), Cos(30), 0.0));
    EXPECT_TRUE(IsAt(camera.zAxis, 0.0, 0.0, 1.0));
}

TEST(CameraOrbit, LeavesTargetAndUpVector)
{
    KARVGLCamera camera = FrontCamera(10.0, {0.1, 0.2, 0.3});
    camera.upVector = {1.0, 2.0, 3.0};
    camera.RotateCamera(77.0F, z_axis);
    camera.RotateCamera(20.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.target, 0.1, 0.2, 0.3, 0));
    EXPECT_TRUE(IsAt(camera.upVector, 1, 2, 3, 0));
}

TEST(CameraOrbit, LeavesTheProjection)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(77.0F, z_axis);
    camera.RotateCamera(20.0F, x_axis);
    camera.PanCamera(1.0F, x_axis);
    camera.ZoomCamera(1.0F);
    EXPECT_TRUE(karv_test::SameProjection(camera, KARVGLCamera()));
}

TEST(CameraOrbit, AngleIsWidenedBeforeItBecomesRadians)
{
    KARVGLCamera camera = FrontCamera(1.0);
    const float angle = 0.1F;
    camera.RotateCamera(angle, z_axis);
    // 0.1F is 1.5e-9 degrees more than 0.1.
    ASSERT_GT(std::fabs(Sin(static_cast<double>(angle)) - Sin(0.1)), 1e-11);
    EXPECT_NEAR(camera.position.x, Sin(static_cast<double>(angle)), 1e-15);
}

TEST(CameraOrbit, ZeroAngleChangesNothing)
{
    EXPECT_FALSE(Tilts(FrontCamera(), 0.0F, z_axis));
    EXPECT_FALSE(Tilts(FrontCamera(), -0.0F, z_axis));
    EXPECT_FALSE(Tilts(FrontCamera(), 0.0F, x_axis));
}

TEST(CameraOrbit, AngleWhoseSquareIsBelowTheThresholdChangesNothing)
{
    EXPECT_FALSE(Tilts(FrontCamera(), 1e-11F, z_axis));
    EXPECT_FALSE(Tilts(FrontCamera(), -1e-11F, x_axis));
    // The square of the float below 1e-10 is 9.9999e-21.
    EXPECT_FALSE(Tilts(FrontCamera(), 9.9999e-11F, z_axis));
}

TEST(CameraOrbit, AngleWhoseSquareIsAboveTheThresholdTurns)
{
    KARVGLCamera camera = FrontCamera(1.0);
    camera.RotateCamera(2e-10F, z_axis);
    EXPECT_NEAR(camera.position.x, 2e-10 * kRadiansPerDegree, 1e-18);
    EXPECT_TRUE(Tilts(FrontCamera(), 2e-10F, z_axis));
}

TEST(CameraOrbit, ThresholdLiesBetweenTheFloatsAbout1e10th)
{
    // The float nearest to 1e-10 is slightly more, and so is its square; the float before it is less.
    const float above = 1e-10F;
    const float below = std::nextafter(above, 0.0F);
    ASSERT_GT(static_cast<double>(above), 1e-10);
    ASSERT_LT(static_cast<double>(below), 1e-10);
    for (const AcGeVector3d& axis : {x_axis, z_axis}) {
        EXPECT_TRUE(Tilts(FrontCamera(), above, axis));
        EXPECT_TRUE(Tilts(FrontCamera(), -above, axis));
        EXPECT_FALSE(Tilts(FrontCamera(), below, axis));
        EXPECT_FALSE(Tilts(FrontCamera(), -below, axis));
    }
}

TEST(CameraOrbit, AngleTooSmallForItsSquareToBeAFloatChangesNothing)
{
    ASSERT_EQ(1e-30F * 1e-30F, 0.0F);
    EXPECT_FALSE(Tilts(FrontCamera(), 1e-30F, z_axis));
}

TEST(CameraOrbit, HugeAngleIsTaken)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(3.6e6F + 90.0F, z_axis);
    EXPECT_TRUE(IsAt(camera.position, 10, 0, 0, 1e-6));
}

TEST(CameraOrbit, FullTurnComesBack)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(360.0F, z_axis);
    EXPECT_TRUE(IsAt(camera.position, 0, -10, 0));
}

TEST(CameraOrbit, AxisWithinTheToleranceOfWorldZOrbits)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(90.0F, {0.0, 0.0, 1.0 + 5e-11});
    EXPECT_TRUE(IsAt(camera.position, 10, 0, 0));
}

TEST(CameraOrbit, ToleranceOfTheAxisIsThatOfTheProcess)
{
    const GlobalTolerance coarse(0.1);
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(180.0F, {0.0, 0.0, 1.0625});
    EXPECT_TRUE(IsAt(camera.position, 0, 10, 0));
    EXPECT_FALSE(Tilts(FrontCamera(), 180.0F, {0.0, 0.0, 1.125}));
}

TEST(CameraOrbit, TurnsAboutTheAxisGivenAndNotWorldZItself)
{
    const GlobalTolerance coarse(0.1);
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(180.0F, {0.0, 0.0625, 1.0});
    // Half a turn about a takes p to 2 (a.p / a.a) a - p, here with a.p = -0.625 and a.a = 1.00390625.
    const double along = 2.0 * -0.625 / 1.00390625;
    EXPECT_TRUE(IsAt(camera.position, 0.0, along * 0.0625 + 10.0, along));
}

TEST(CameraOrbit, WorksFromStraightAboveAndFarAway)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewTop);
    camera.RotateCamera(90.0F, z_axis);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 10));
    EXPECT_TRUE(IsAt(camera.xAxis, 0, 1, 0));
    EXPECT_TRUE(IsAt(camera.zAxis, -1, 0, 0));

    KARVGLCamera distant = FrontCamera(1e12);
    distant.RotateCamera(90.0F, z_axis);
    EXPECT_TRUE(IsAt(distant.position, 1e12, 0, 0, 1.0));
}

TEST(CameraOrbit, EyeOnTheTargetTurnsTheFrameAlone)
{
    KARVGLCamera camera;
    camera.RotateCamera(90.0F, z_axis);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.xAxis, 0, 1, 0));
}

TEST(CameraOrbit, NaNAndInfiniteAnglesEndInNaNWithoutAFault)
{
    for (const float angle : {kNaNf, kInfinityf, -kInfinityf}) {
        const karv_test::TraceRecording trace;
        KARVGLCamera camera = FrontCamera();
        camera.RotateCamera(angle, z_axis);
        EXPECT_TRUE(std::isnan(camera.position.x));
        EXPECT_TRUE(std::isnan(camera.xAxis.x));
        EXPECT_TRUE(IsAt(camera.target, 0, 0, 0, 0));
        EXPECT_THAT(trace.Faults(), testing::IsEmpty());
    }
}

TEST(CameraTilt, PositiveAngleLiftsTheEye)
{
    KARVGLCamera camera = FrontCamera(10.0, {1.0, 2.0, 3.0});
    camera.RotateCamera(30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 1.0, 2.0 - 10.0 * Cos(30), 3.0 + 10.0 * Sin(30)));
    EXPECT_TRUE(IsAt(camera.xAxis, 1.0, 0.0, 0.0));
    EXPECT_TRUE(IsAt(camera.yAxis, 0.0, Cos(30), -Sin(30)));
    EXPECT_TRUE(IsAt(camera.zAxis, 0.0, Sin(30), Cos(30)));
}

TEST(CameraTilt, NegativeAngleLowersTheEye)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(-30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Cos(30), -10.0 * Sin(30)));
}

TEST(CameraTilt, FollowsTheLineOfSightAndNotTheAxis)
{
    // From the right, the eye at +X: lifting it moves it in the plane of X and Z.
    KARVGLCamera camera = View(&KARVGLCamera::SetViewRight);
    camera.RotateCamera(30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 10.0 * Cos(30), 0.0, 10.0 * Sin(30)));
}

TEST(CameraTilt, AnyOtherAxisTiltsLikeWorldX)
{
    KARVGLCamera expected = FrontCamera();
    expected.RotateCamera(30.0F, x_axis);
    const std::vector<AcGeVector3d> axes = {
        y_axis,           {0.0, 0.0, -1.0}, {0.0, 0.0, 2.0},        {0.0, 0.0, 0.0},
        {-1.0, 0.0, 0.0}, {0.3, 0.4, 0.5},  {0.0, 0.0, 1.0 + 1e-9}, {kNaN, kNaN, kNaN},
    };
    for (const AcGeVector3d& axis : axes) {
        KARVGLCamera camera = FrontCamera();
        camera.RotateCamera(30.0F, axis);
        EXPECT_TRUE(SameCamera(camera, expected)) << axis.x << ' ' << axis.y << ' ' << axis.z;
    }
}

TEST(CameraTilt, From90DegreesOneOf88IsAllowed)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(88.0F, x_axis);
    EXPECT_NEAR(Elevation(camera), 88.0, 1e-9);
    EXPECT_TRUE(IsOrthonormal(camera));
}

TEST(CameraTilt, PastTheLimitLeavesItAsItWas)
{
    EXPECT_FALSE(Tilts(FrontCamera(), 89.5F));
    EXPECT_FALSE(Tilts(FrontCamera(), -89.5F));
}

TEST(CameraTilt, LimitLiesAt179Degrees)
{
    EXPECT_TRUE(Tilts(FrontCamera(), 88.99F));
    EXPECT_FALSE(Tilts(FrontCamera(), 89.01F));
}

TEST(CameraTilt, LimitLiesAtOneDegree)
{
    EXPECT_TRUE(Tilts(FrontCamera(), -88.99F));
    EXPECT_FALSE(Tilts(FrontCamera(), -89.01F));
}

TEST(CameraTilt, TheLimitItselfIsAllowed)
{
    // For a level line of sight, pi / 2 plus 89 degrees is the upper bound to the last bit.
    ASSERT_EQ(std::numbers::pi / 2.0 + 89.0 * kRadiansPerDegree, 3.12413936106985);
    EXPECT_TRUE(Tilts(FrontCamera(), 89.0F));
    ASSERT_GE(std::numbers::pi / 2.0 - 89.0 * kRadiansPerDegree, 0.017453292519943295);
    EXPECT_TRUE(Tilts(FrontCamera(), -89.0F));
}

TEST(CameraTilt, TheLimitOfOneDegreeItselfIsAllowed)
{
    // From straight below, 0 plus one degree is the lower bound to the last bit.
    KARVGLCamera camera;
    camera.position = {0.0, 0.0, -10.0};
    ASSERT_EQ((camera.target - camera.position).angleTo(z_axis), 0.0);
    EXPECT_TRUE(Tilts(camera, 1.0F));
    EXPECT_FALSE(Tilts(camera, std::nextafter(1.0F, 0.0F)));
}

TEST(CameraTilt, LimitHasNoLeewayOfATrillionth)
{
    // An eye 1e-11 above or below a target 10 away looks 1e-12 off the level, so 89 degrees more end 1e-12
    // past a bound.
    KARVGLCamera above;
    above.position = {0.0, -10.0, 1e-11};
    EXPECT_FALSE(Tilts(above, 89.0F));
    KARVGLCamera below;
    below.position = {0.0, -10.0, -1e-11};
    EXPECT_FALSE(Tilts(below, -89.0F));
    EXPECT_TRUE(Tilts(below, 89.0F));
    EXPECT_TRUE(Tilts(above, -89.0F));
}

TEST(CameraTilt, NextFloatPastTheLimitIsRefused)
{
    EXPECT_FALSE(Tilts(FrontCamera(), std::nextafter(89.0F, 90.0F)));
    EXPECT_FALSE(Tilts(FrontCamera(), -std::nextafter(89.0F, 90.0F)));
}

TEST(CameraTilt, LimitHoldsFromWhereTheCameraIs)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(60.0F, x_axis);
    EXPECT_FALSE(Tilts(camera, 29.5F));
    EXPECT_TRUE(Tilts(camera, 28.5F));
    EXPECT_FALSE(Tilts(camera, -149.5F));
    EXPECT_TRUE(Tilts(camera, -148.5F));
}

TEST(CameraTilt, RefusedStepIsNotCutToTheLimit)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(80.0F, x_axis);
    const KARVGLCamera before = camera;
    camera.RotateCamera(45.0F, x_axis);
    EXPECT_TRUE(SameCamera(camera, before));
    camera.RotateCamera(5.0F, x_axis);
    EXPECT_NEAR(Elevation(camera), 85.0, 1e-9);
}

TEST(CameraTilt, Exactly90DegreesUpIsAlwaysAllowed)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(90.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 10));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, 0, -1));
}

TEST(CameraTilt, Exactly90DegreesDownIsAlwaysAllowed)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(-90.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, -10));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, 0, 1));
}

TEST(CameraTilt, Exactly90DegreesMayPassOverThePole)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(60.0F, x_axis);
    camera.RotateCamera(90.0F, x_axis);
    // 150 degrees from the front, so on the far side, 30 degrees above the level.
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Cos(150), 10.0 * Sin(150)));
}

TEST(CameraTilt, NeighborsOf90DegreesAreNotExempt)
{
    EXPECT_FALSE(Tilts(FrontCamera(), std::nextafter(90.0F, 91.0F)));
    EXPECT_FALSE(Tilts(FrontCamera(), std::nextafter(90.0F, 89.0F)));
    EXPECT_FALSE(Tilts(FrontCamera(), -std::nextafter(90.0F, 91.0F)));
}

TEST(CameraTilt, FromTheTopTurnsAboutWorldX)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewTop);
    camera.RotateCamera(-30.0F, x_axis);
    // 180 - 30 degrees from +Z: back towards the front view.
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Sin(30), 10.0 * Cos(30)));
}

TEST(CameraTilt, FromTheTopCannotLiftFurther)
{
    EXPECT_FALSE(Tilts(View(&KARVGLCamera::SetViewTop), 1.0F));
    EXPECT_FALSE(Tilts(View(&KARVGLCamera::SetViewTop), -0.5F));
    EXPECT_TRUE(Tilts(View(&KARVGLCamera::SetViewTop), -2.0F));
}

TEST(CameraTilt, FromTheBottomTurnsAboutWorldX)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewBottom);
    camera.RotateCamera(30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Sin(30), -10.0 * Cos(30)));
    EXPECT_FALSE(Tilts(View(&KARVGLCamera::SetViewBottom), -1.0F));
}

TEST(CameraTilt, FromAnOrbitedTopStillTurnsAboutWorldX)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewTop);
    camera.RotateCamera(90.0F, z_axis);
    camera.RotateCamera(-30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Sin(30), 10.0 * Cos(30)));
}

TEST(CameraTilt, FromWithinTheToleranceOfStraightAboveTurnsAboutWorldX)
{
    // 5e-10 in 10 is an angle of 5e-11, half of the tolerance.
    KARVGLCamera camera;
    camera.position = {5e-10, 0.0, 10.0};
    camera.RotateCamera(-30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 5e-10, -10.0 * Sin(30), 10.0 * Cos(30)));
}

TEST(CameraTilt, FromBeyondTheToleranceOfStraightAboveFollowsTheLineOfSight)
{
    // 1e-8 in 10 is an angle of 1e-9, ten times the tolerance: the eye is lowered to the side that it leans
    // to, +X.
    KARVGLCamera camera;
    camera.position = {1e-8, 0.0, 10.0};
    camera.RotateCamera(-30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 10.0 * Sin(30), 0.0, 10.0 * Cos(30), 1e-7));
}

TEST(CameraTilt, ToleranceOfStraightAboveIsThatOfTheProcess)
{
    // The eye is 0.05 radians off the vertical, which is within this tolerance.
    const GlobalTolerance coarse(0.1);
    KARVGLCamera camera;
    camera.position = {0.5, 0.0, 10.0};
    camera.RotateCamera(-30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 0.5, -10.0 * Sin(30), 10.0 * Cos(30)));
}

TEST(CameraTilt, EyeOnTheTargetTurnsTheFrameAboutWorldX)
{
    KARVGLCamera camera;
    camera.RotateCamera(30.0F, x_axis);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.xAxis, 1, 0, 0));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, Cos(30), -Sin(30)));
    EXPECT_TRUE(IsAt(camera.zAxis, 0, Sin(30), Cos(30)));
}

TEST(CameraTilt, EyeOnTheTargetCountsAsStraightUpInTheLimit)
{
    // The angle between a zero vector and the vertical is 0, so each step by itself must lie in [1, 179]
    // degrees.
    EXPECT_FALSE(Tilts(KARVGLCamera(), 0.5F));
    EXPECT_FALSE(Tilts(KARVGLCamera(), -30.0F));
    EXPECT_FALSE(Tilts(KARVGLCamera(), 179.5F));
    EXPECT_TRUE(Tilts(KARVGLCamera(), -90.0F));
    EXPECT_TRUE(Tilts(KARVGLCamera(), 178.0F));
}

TEST(CameraTilt, NaNAndInfiniteAnglesAreRefused)
{
    EXPECT_FALSE(Tilts(FrontCamera(), kNaNf));
    EXPECT_FALSE(Tilts(FrontCamera(), kInfinityf));
    EXPECT_FALSE(Tilts(FrontCamera(), -kInfinityf));
}

TEST(CameraTilt, FullTurnIsRefused)
{
    EXPECT_FALSE(Tilts(FrontCamera(), 360.0F));
}

TEST(CameraTilt, ThousandSmallStepsStopInsideTheLimit)
{
    KARVGLCamera camera = FrontCamera();
    for (int i = 0; i < 1000; ++i)
        camera.RotateCamera(0.5F, x_axis);
    EXPECT_LE(Elevation(camera), 89.0 + 1e-6);
    EXPECT_GE(Elevation(camera), 88.5 - 1e-6);
    EXPECT_NEAR((camera.position - camera.target).length(), 10.0, 1e-9);
    EXPECT_TRUE(IsOrthonormal(camera, 1e-9));
}
