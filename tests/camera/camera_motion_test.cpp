#include "tests/camera/camera_checks.h"

#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

using karv_test::FrontCamera;
using karv_test::IsAt;
using karv_test::IsOrthonormal;
using karv_test::SameCamera;
using karv_test::SameFrame;
using karv_test::SamePlace;

namespace
{

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float kNaNf = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinityf = std::numeric_limits<float>::infinity();

const AcGeVector3d& X = AcGeVector3d::kXAxis;
const AcGeVector3d& Y = AcGeVector3d::kYAxis;
const AcGeVector3d& Z = AcGeVector3d::kZAxis;

double Sin(double degrees)
{
    return std::sin(degrees * kRadiansPerDegree);
}

double Cos(double degrees)
{
    return std::cos(degrees * kRadiansPerDegree);
}

/// Whether a tilt by `degrees` from `camera` is carried out.
bool Tilts(KARVGLCamera camera, float degrees, const AcGeVector3d& axis = AcGeVector3d::kXAxis)
{
    const KARVGLCamera before = camera;
    camera.RotateCamera(degrees, axis);
    return !SameCamera(camera, before);
}

/// The height of the eye above the target's plane, in degrees.
double Elevation(const KARVGLCamera& camera)
{
    const AcGeVector3d offset = camera.position - camera.target;
    return std::atan2(offset.z, std::hypot(offset.x, offset.y)) / kRadiansPerDegree;
}

KARVGLCamera View(void (KARVGLCamera::*set)())
{
    KARVGLCamera camera;
    (camera.*set)();
    return camera;
}

} // namespace

TEST(CameraOrbit, TurnsEyeAndFrameAboutWorldZThroughTheTarget)
{
    KARVGLCamera camera = FrontCamera(10.0, {1.0, 2.0, 3.0});
    camera.RotateCamera(30.0F, Z);
    EXPECT_TRUE(IsAt(camera.position, 1.0 + 10.0 * Sin(30), 2.0 - 10.0 * Cos(30), 3.0));
    EXPECT_TRUE(IsAt(camera.xAxis, Cos(30), Sin(30), 0.0));
    EXPECT_TRUE(IsAt(camera.yAxis, -Sin(30), Cos(30), 0.0));
    EXPECT_TRUE(IsAt(camera.zAxis, 0.0, 0.0, 1.0));
}

TEST(CameraOrbit, LeavesTargetAndUpVector)
{
    KARVGLCamera camera = FrontCamera(10.0, {0.1, 0.2, 0.3});
    camera.upVector = {1.0, 2.0, 3.0};
    camera.RotateCamera(77.0F, Z);
    camera.RotateCamera(20.0F, X);
    EXPECT_TRUE(IsAt(camera.target, 0.1, 0.2, 0.3, 0));
    EXPECT_TRUE(IsAt(camera.upVector, 1, 2, 3, 0));
}

TEST(CameraOrbit, LeavesTheProjection)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(77.0F, Z);
    camera.RotateCamera(20.0F, X);
    camera.PanCamera(1.0F, X);
    camera.ZoomCamera(1.0F);
    EXPECT_TRUE(karv_test::SameProjection(camera, KARVGLCamera()));
}

TEST(CameraOrbit, AngleIsWidenedBeforeItBecomesRadians)
{
    KARVGLCamera camera = FrontCamera(1.0);
    const float angle = 0.1F;
    camera.RotateCamera(angle, Z);
    // 0.1F is 1.5e-9 degrees more than 0.1.
    ASSERT_GT(std::fabs(Sin(static_cast<double>(angle)) - Sin(0.1)), 1e-11);
    EXPECT_NEAR(camera.position.x, Sin(static_cast<double>(angle)), 1e-15);
}

TEST(CameraOrbit, ZeroAngleChangesNothing)
{
    EXPECT_FALSE(Tilts(FrontCamera(), 0.0F, Z));
    EXPECT_FALSE(Tilts(FrontCamera(), -0.0F, Z));
    EXPECT_FALSE(Tilts(FrontCamera(), 0.0F, X));
}

TEST(CameraOrbit, AngleWhoseSquareIsBelowTheThresholdChangesNothing)
{
    EXPECT_FALSE(Tilts(FrontCamera(), 1e-11F, Z));
    EXPECT_FALSE(Tilts(FrontCamera(), -1e-11F, X));
    // The square of the float below 1e-10 is 9.9999e-21.
    EXPECT_FALSE(Tilts(FrontCamera(), 9.9999e-11F, Z));
}

TEST(CameraOrbit, AngleWhoseSquareIsAboveTheThresholdTurns)
{
    KARVGLCamera camera = FrontCamera(1.0);
    camera.RotateCamera(2e-10F, Z);
    EXPECT_NEAR(camera.position.x, 2e-10 * kRadiansPerDegree, 1e-18);
    EXPECT_TRUE(Tilts(FrontCamera(), 2e-10F, Z));
}

TEST(CameraOrbit, SquareIsTakenIn32Bits)
{
    // The float nearest to 1e-10 is slightly more, and so is its square; in 32 bits it is 1.0000000490e-20.
    const float angle = 1e-10F;
    ASSERT_GT(static_cast<double>(angle * angle), 1e-20);
    EXPECT_TRUE(Tilts(FrontCamera(), angle, Z));
    // Too small for the square to be a float at all.
    EXPECT_FALSE(Tilts(FrontCamera(), 1e-30F, Z));
}

TEST(CameraOrbit, HugeAngleIsTaken)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(3.6e6F + 90.0F, Z);
    EXPECT_TRUE(IsAt(camera.position, 10, 0, 0, 1e-6));
}

TEST(CameraOrbit, FullTurnComesBack)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(360.0F, Z);
    EXPECT_TRUE(IsAt(camera.position, 0, -10, 0));
}

TEST(CameraOrbit, AxisWithinTheToleranceOfWorldZOrbits)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(90.0F, {0.0, 0.0, 1.0 + 5e-11});
    EXPECT_TRUE(IsAt(camera.position, 10, 0, 0));
}

TEST(CameraOrbit, WorksFromStraightAboveAndFarAway)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewTop);
    camera.RotateCamera(90.0F, Z);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 10));
    EXPECT_TRUE(IsAt(camera.xAxis, 0, 1, 0));
    EXPECT_TRUE(IsAt(camera.zAxis, -1, 0, 0));

    KARVGLCamera distant = FrontCamera(1e12);
    distant.RotateCamera(90.0F, Z);
    EXPECT_TRUE(IsAt(distant.position, 1e12, 0, 0, 1.0));
}

TEST(CameraOrbit, EyeOnTheTargetTurnsTheFrameAlone)
{
    KARVGLCamera camera;
    camera.RotateCamera(90.0F, Z);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.xAxis, 0, 1, 0));
}

TEST(CameraOrbit, NaNAndInfiniteAnglesEndInNaNWithoutAFault)
{
    for (const float angle : {kNaNf, kInfinityf, -kInfinityf}) {
        const karv_test::TraceRecording trace;
        KARVGLCamera camera = FrontCamera();
        camera.RotateCamera(angle, Z);
        EXPECT_TRUE(std::isnan(camera.position.x));
        EXPECT_TRUE(std::isnan(camera.xAxis.x));
        EXPECT_TRUE(IsAt(camera.target, 0, 0, 0, 0));
        EXPECT_THAT(trace.Faults(), testing::IsEmpty());
    }
}

TEST(CameraTilt, PositiveAngleLiftsTheEye)
{
    KARVGLCamera camera = FrontCamera(10.0, {1.0, 2.0, 3.0});
    camera.RotateCamera(30.0F, X);
    EXPECT_TRUE(IsAt(camera.position, 1.0, 2.0 - 10.0 * Cos(30), 3.0 + 10.0 * Sin(30)));
    EXPECT_TRUE(IsAt(camera.xAxis, 1.0, 0.0, 0.0));
    EXPECT_TRUE(IsAt(camera.yAxis, 0.0, Cos(30), -Sin(30)));
    EXPECT_TRUE(IsAt(camera.zAxis, 0.0, Sin(30), Cos(30)));
}

TEST(CameraTilt, NegativeAngleLowersTheEye)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(-30.0F, X);
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Cos(30), -10.0 * Sin(30)));
}

TEST(CameraTilt, FollowsTheLineOfSightAndNotTheAxis)
{
    // From the right, the eye at +X: lifting it moves it in the plane of X and Z.
    KARVGLCamera camera = View(&KARVGLCamera::SetViewRight);
    camera.RotateCamera(30.0F, X);
    EXPECT_TRUE(IsAt(camera.position, 10.0 * Cos(30), 0.0, 10.0 * Sin(30)));
}

TEST(CameraTilt, AnyOtherAxisTiltsLikeWorldX)
{
    KARVGLCamera expected = FrontCamera();
    expected.RotateCamera(30.0F, X);
    const std::vector<AcGeVector3d> axes = {
        Y,
        {0.0, 0.0, -1.0},
        {0.0, 0.0, 2.0},
        {0.0, 0.0, 0.0},
        {-1.0, 0.0, 0.0},
        {0.3, 0.4, 0.5},
        {0.0, 0.0, 1.0 + 1e-9},
        {kNaN, kNaN, kNaN},
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
    camera.RotateCamera(88.0F, X);
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
    // From the level, pi / 2 plus 89 degrees is the upper bound to the last bit.
    ASSERT_EQ(std::numbers::pi / 2.0 + 89.0 * kRadiansPerDegree, 3.12413936106985);
    EXPECT_TRUE(Tilts(FrontCamera(), 89.0F));
    ASSERT_GE(std::numbers::pi / 2.0 - 89.0 * kRadiansPerDegree, 0.017453292519943295);
    EXPECT_TRUE(Tilts(FrontCamera(), -89.0F));
}

TEST(CameraTilt, LimitHoldsFromWhereTheCameraIs)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(60.0F, X);
    EXPECT_FALSE(Tilts(camera, 29.5F));
    EXPECT_TRUE(Tilts(camera, 28.5F));
    EXPECT_FALSE(Tilts(camera, -149.5F));
    EXPECT_TRUE(Tilts(camera, -148.5F));
}

TEST(CameraTilt, RefusedStepIsNotCutToTheLimit)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(80.0F, X);
    const KARVGLCamera before = camera;
    camera.RotateCamera(45.0F, X);
    EXPECT_TRUE(SameCamera(camera, before));
    camera.RotateCamera(5.0F, X);
    EXPECT_NEAR(Elevation(camera), 85.0, 1e-9);
}

TEST(CameraTilt, Exactly90DegreesUpIsAlwaysAllowed)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(90.0F, X);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 10));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, 0, -1));
}

TEST(CameraTilt, Exactly90DegreesDownIsAlwaysAllowed)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(-90.0F, X);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, -10));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, 0, 1));
}

TEST(CameraTilt, Exactly90DegreesMayPassOverThePole)
{
    KARVGLCamera camera = FrontCamera();
    camera.RotateCamera(60.0F, X);
    camera.RotateCamera(90.0F, X);
    // 150 degrees from the front, so on the far side, 30 degrees above the level.
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Cos(150), 10.0 * Sin(150)));
}

TEST(CameraTilt, NeighboursOf90DegreesAreNotExempt)
{
    EXPECT_FALSE(Tilts(FrontCamera(), std::nextafter(90.0F, 91.0F)));
    EXPECT_FALSE(Tilts(FrontCamera(), std::nextafter(90.0F, 89.0F)));
    EXPECT_FALSE(Tilts(FrontCamera(), -std::nextafter(90.0F, 91.0F)));
}

TEST(CameraTilt, FromTheTopTurnsAboutWorldX)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewTop);
    camera.RotateCamera(-30.0F, X);
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
    camera.RotateCamera(30.0F, X);
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Sin(30), -10.0 * Cos(30)));
    EXPECT_FALSE(Tilts(View(&KARVGLCamera::SetViewBottom), -1.0F));
}

TEST(CameraTilt, FromAnOrbitedTopStillTurnsAboutWorldX)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewTop);
    camera.RotateCamera(90.0F, Z);
    camera.RotateCamera(-30.0F, X);
    EXPECT_TRUE(IsAt(camera.position, 0.0, -10.0 * Sin(30), 10.0 * Cos(30)));
}

TEST(CameraTilt, EyeOnTheTargetTurnsNothing)
{
    KARVGLCamera camera;
    camera.RotateCamera(30.0F, X);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.xAxis, 1, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, 1, 0, 0));
    EXPECT_TRUE(IsAt(camera.zAxis, 0, 0, 1, 0));
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
        camera.RotateCamera(0.5F, X);
    EXPECT_LE(Elevation(camera), 89.0 + 1e-6);
    EXPECT_GE(Elevation(camera), 88.5 - 1e-6);
    EXPECT_NEAR((camera.position - camera.target).length(), 10.0, 1e-9);
    EXPECT_TRUE(IsOrthonormal(camera, 1e-9));
}

TEST(CameraPan, FrontViewMovesAlongWorldXAndZ)
{
    KARVGLCamera camera = FrontCamera(10.0, {1.0, 2.0, 3.0});
    camera.PanCamera(2.5F, X);
    EXPECT_TRUE(IsAt(camera.position, 3.5, -8, 3));
    EXPECT_TRUE(IsAt(camera.target, 3.5, 2, 3));
    camera.PanCamera(-1.5F, Z);
    EXPECT_TRUE(IsAt(camera.position, 3.5, -8, 1.5));
    EXPECT_TRUE(IsAt(camera.target, 3.5, 2, 1.5));
}

TEST(CameraPan, LeavesTheFrame)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewSE);
    camera.upVector = {1.0, 2.0, 3.0};
    const KARVGLCamera before = camera;
    camera.PanCamera(3.0F, X);
    camera.PanCamera(3.0F, Z);
    EXPECT_TRUE(SameFrame(camera, before));
}

TEST(CameraPan, AnyAxisButWorldXMovesUpTheScreen)
{
    KARVGLCamera expected = FrontCamera();
    expected.PanCamera(2.0F, Z);
    const std::vector<AcGeVector3d> axes = {
        Y, {-1.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {1.0 + 1e-9, 0.0, 0.0}};
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

TEST(CameraPan, ZeroAmountMovesNothing)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewNE);
    const KARVGLCamera before = camera;
    camera.PanCamera(0.0F, X);
    camera.PanCamera(0.0F, Z);
    EXPECT_TRUE(SameCamera(camera, before));
}

TEST(CameraPan, MovesAreOfTheAmountAtAnyDistance)
{
    for (const double distance : {1e-4, 1.0, 1e9}) {
        KARVGLCamera camera = FrontCamera(distance);
        camera.PanCamera(3.0F, X);
        camera.PanCamera(4.0F, Z);
        EXPECT_TRUE(IsAt(camera.target, 3, 0, 4)) << distance;
    }
}

TEST(CameraPan, AmountIsA32BitFloat)
{
    KARVGLCamera camera = FrontCamera();
    camera.PanCamera(0.1F, X);
    EXPECT_EQ(camera.target.x, static_cast<double>(0.1F));
}

TEST(CameraPan, CloserThanTheToleranceUpIsNotBroughtToLength)
{
    // At a distance of 1e-6 the right direction, of that length, is still longer than the tolerance of 1e-10;
    // the direction down the screen, of its square, is not, and stays as it is.
    KARVGLCamera camera = FrontCamera(1e-6);
    camera.PanCamera(3.0F, X);
    EXPECT_TRUE(IsAt(camera.target, 3, 0, 0));
    camera.PanCamera(4.0F, Z);
    EXPECT_NEAR(camera.target.z, 4.0 * 1e-12, 1e-24);
}

TEST(CameraPan, EyeOnTheTargetMovesNothing)
{
    KARVGLCamera camera;
    camera.PanCamera(3.0F, X);
    camera.PanCamera(3.0F, Z);
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.target, 0, 0, 0, 0));
}

TEST(CameraPan, NaNSpoilsThePlaceAndNotTheFrame)
{
    KARVGLCamera camera = FrontCamera();
    camera.PanCamera(kNaNf, X);
    EXPECT_TRUE(std::isnan(camera.position.x));
    EXPECT_TRUE(std::isnan(camera.target.x));
    EXPECT_TRUE(SameFrame(camera, FrontCamera()));
}

TEST(CameraPan, InfiniteAmountIsTaken)
{
    KARVGLCamera camera = FrontCamera();
    camera.PanCamera(kInfinityf, X);
    EXPECT_EQ(camera.target.x, std::numeric_limits<double>::infinity());
    EXPECT_TRUE(SameFrame(camera, FrontCamera()));
}

TEST(CameraPan, HundredStepsAndBackComeHome)
{
    KARVGLCamera camera = View(&KARVGLCamera::SetViewSW);
    const KARVGLCamera before = camera;
    for (int i = 0; i < 100; ++i)
        camera.PanCamera(0.7F, i % 2 == 0 ? X : Z);
    for (int i = 0; i < 100; ++i)
        camera.PanCamera(-0.7F, i % 2 == 0 ? X : Z);
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

// From straight above or below, right is world X, and up is what lies at right angles to it on the screen.
// For the iso views, an eye lifted by the tilt sees up lean back from it.
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
    camera.PanCamera(2.0F, X);
    EXPECT_TRUE(IsAt(camera.target, 2 * right.x, 2 * right.y, 2 * right.z));
    camera.PanCamera(3.0F, Z);
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
    // Placed by hand: the frame still looks along +Y, the target lies along -X.
    KARVGLCamera camera;
    camera.SetCamera({5.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 1.0});
    const KARVGLCamera before = camera;
    camera.ZoomCamera(1.0F);
    EXPECT_TRUE(SameCamera(camera, before));
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
