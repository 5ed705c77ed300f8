#include "tests/camera/camera_checks.h"

#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using karv_test::IsAt;
using karv_test::IsOrthonormal;
using karv_test::kRadiansPerDegree;

namespace
{

/// The turns of a view, and the side of the target on which the eye must end.
struct NamedView {
    const char* name;
    void (KARVGLCamera::*set)();
    double orbit; ///< degrees about +Z
    double tilt;  ///< degrees, positive lifts the eye
    int x;        ///< sign of the eye's coordinate, 0 for none
    int y;
    int z;
};

const NamedView kViews[] = {
    {"Front", &KARVGLCamera::SetViewFront, 0.0, 0.0, 0, -1, 0},
    {"Back", &KARVGLCamera::SetViewBack, 180.0, 0.0, 0, 1, 0},
    {"Left", &KARVGLCamera::SetViewLeft, -90.0, 0.0, -1, 0, 0},
    {"Right", &KARVGLCamera::SetViewRight, 90.0, 0.0, 1, 0, 0},
    {"Top", &KARVGLCamera::SetViewTop, 0.0, 90.0, 0, 0, 1},
    {"Bottom", &KARVGLCamera::SetViewBottom, 0.0, -90.0, 0, 0, -1},
    {"SE", &KARVGLCamera::SetViewSE, 45.0, 35.264F, 1, -1, 1},
    {"SW", &KARVGLCamera::SetViewSW, 315.0, 35.264F, -1, -1, 1},
    {"NE", &KARVGLCamera::SetViewNE, 135.0, 35.264F, 1, 1, 1},
    {"NW", &KARVGLCamera::SetViewNW, 225.0, 35.264F, -1, 1, 1},
};

int Sign(double value)
{
    return std::fabs(value) < 1e-9 ? 0 : (value > 0.0 ? 1 : -1);
}

class StandardView : public testing::TestWithParam<NamedView>
{
  protected:
    static constexpr double kDistance = 10.0;

    KARVGLCamera Viewed(const AcGePoint3d& target = {3.0, -4.0, 5.0}) const
    {
        KARVGLCamera camera;
        camera.target = target;
        camera.position = {100.0, 200.0, 300.0};
        camera.upVector = {1.0, 0.0, 0.0};
        (camera.*GetParam().set)();
        return camera;
    }
};

std::string ViewName(const testing::TestParamInfo<NamedView>& info)
{
    return info.param.name;
}

} // namespace

TEST_P(StandardView, PutsTheEyeOnItsSideAtTheSceneDistance)
{
    const KARVGLCamera camera = Viewed();
    const AcGeVector3d offset = camera.position - camera.target;
    EXPECT_EQ(Sign(offset.x), GetParam().x);
    EXPECT_EQ(Sign(offset.y), GetParam().y);
    EXPECT_EQ(Sign(offset.z), GetParam().z);
    EXPECT_NEAR(offset.length(), kDistance, 1e-12);
    EXPECT_TRUE(IsAt(camera.target, 3, -4, 5, 0));
}

TEST_P(StandardView, TurnsEyeAndFrameByItsAngles)
{
    const double orbit = GetParam().orbit * kRadiansPerDegree;
    const double tilt = GetParam().tilt * kRadiansPerDegree;
    const double so = std::sin(orbit);
    const double co = std::cos(orbit);
    const double st = std::sin(tilt);
    const double ct = std::cos(tilt);
    const KARVGLCamera camera = Viewed({0.0, 0.0, 0.0});
    // The eye starts at (0, -d, 0), is orbited about Z, then lifted along its meridian. Forward points to the
    // target, right stays level, and up completes the frame.
    EXPECT_TRUE(IsAt(camera.position, kDistance * so * ct, -kDistance * co * ct, kDistance * st));
    EXPECT_TRUE(IsAt(camera.xAxis, co, so, 0.0));
    EXPECT_TRUE(IsAt(camera.yAxis, -so * ct, co * ct, -st));
    EXPECT_TRUE(IsAt(camera.zAxis, -so * st, co * st, ct));
    EXPECT_TRUE(IsOrthonormal(camera));
}

TEST_P(StandardView, ResetsTheUpVectorToWorldZ)
{
    EXPECT_TRUE(IsAt(Viewed().upVector, 0, 0, 1, 0));
}

TEST_P(StandardView, IsTheFrontViewTurnedStepByStep)
{
    KARVGLCamera expected;
    expected.target = {3.0, -4.0, 5.0};
    expected.SetViewFront();
    expected.RotateCamera(static_cast<float>(GetParam().orbit), AcGeVector3d::kZAxis);
    expected.RotateCamera(static_cast<float>(GetParam().tilt), AcGeVector3d::kXAxis);
    // Equal to the last bit: the same turns by the same angles in the same order.
    EXPECT_TRUE(karv_test::SameCamera(Viewed(), expected));
}

TEST_P(StandardView, TracesTheOperationsItCalls)
{
    std::vector<std::string> expected;
    if (std::string(GetParam().name) != "Front")
        expected.emplace_back("KARVGLCamera::SetView" + std::string(GetParam().name));
    expected.insert(expected.end(),
                    {"KARVGLCamera::SetViewFront", "KARVGLCamera::ResetAngle", "KARVGLCamera::UpdateCamera"});
    for (const double angle : {GetParam().orbit, GetParam().tilt})
        if (angle != 0.0)
            expected.emplace_back("KARVGLCamera::RotateCamera");
    if (std::string(GetParam().name) != "Front")
        expected.emplace_back("KARVGLCamera::UpdateCamera");
    KARVGLCamera camera;
    const karv_test::TraceRecording trace;
    (camera.*GetParam().set)();
    EXPECT_EQ(trace.Calls(), expected);
}

TEST_P(StandardView, DoesNotDependOnWhereTheCameraWas)
{
    KARVGLCamera camera = Viewed();
    const KARVGLCamera first = camera;
    camera.RotateCamera(33.0F, AcGeVector3d::kZAxis);
    camera.RotateCamera(-7.0F, AcGeVector3d::kXAxis);
    (camera.*GetParam().set)();
    EXPECT_TRUE(karv_test::SameCamera(camera, first));
}

TEST_P(StandardView, KeepsTheProjection)
{
    KARVGLCamera camera;
    camera.perspectiveOn = false;
    camera.orthoZoom = 3.0;
    camera.fieldOfView = 22.0;
    const KARVGLCamera before = camera;
    (camera.*GetParam().set)();
    EXPECT_TRUE(karv_test::SameProjection(camera, before));
}

TEST_P(StandardView, ZeroSceneDistancePutsTheEyeOnTheTarget)
{
    KARVGLCamera camera;
    camera.target = {1.0, 2.0, 3.0};
    camera.farPlane = 0.0F;
    (camera.*GetParam().set)();
    EXPECT_TRUE(IsAt(camera.position, 1, 2, 3));
}

INSTANTIATE_TEST_SUITE_P(All, StandardView, testing::ValuesIn(kViews), ViewName);

TEST(StandardViews, FrontStandsTenAwayForAFarDistanceOfThousand)
{
    KARVGLCamera camera;
    camera.target = {1.0, 2.0, 3.0};
    camera.SetViewFront();
    EXPECT_TRUE(IsAt(camera.position, 1, -8, 3, 0));
}

TEST(StandardViews, FrontDividesTheFarDistanceIn32Bits)
{
    KARVGLCamera camera;
    camera.farPlane = 333.0F;
    const float distance = 333.0F / 100.0F;
    ASSERT_NE(static_cast<double>(distance), 333.0 / 100.0);
    camera.SetViewFront();
    EXPECT_EQ(camera.position.y, -static_cast<double>(distance));
}

TEST(StandardViews, FrontKeepsA64BitTarget)
{
    KARVGLCamera camera;
    camera.target = {1.0 / 3.0, 1e15, 0.1};
    camera.SetViewFront();
    EXPECT_TRUE(IsAt(camera.position, 1.0 / 3.0, 1e15 - 10.0, 0.1, 0));
}

TEST(StandardViews, TopHasTheScreensUpAlongWorldY)
{
    KARVGLCamera camera;
    camera.SetViewTop();
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    camera.GetLocalAxes(x, y, z);
    EXPECT_TRUE(IsAt(x, 1, 0, 0));
    EXPECT_TRUE(IsAt(y, 0, 0, -1));
    EXPECT_TRUE(IsAt(z, 0, 1, 0));
}

TEST(StandardViews, IsoTiltIsTheSinglePrecisionAngle)
{
    KARVGLCamera camera;
    camera.farPlane = 100.0F;
    camera.SetViewSE();
    const double tilt = 35.263999938964844 * kRadiansPerDegree;
    // The decimal 35.264 is 6e-8 degrees more, which shows.
    ASSERT_GT(std::fabs(std::sin(tilt) - std::sin(35.264 * kRadiansPerDegree)), 1e-10);
    EXPECT_NEAR(camera.position.z, std::sin(tilt), 1e-14);
}

TEST(StandardViews, NaNTargetIsTaken)
{
    KARVGLCamera camera;
    camera.target = {std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0};
    camera.SetViewFront();
    EXPECT_TRUE(std::isnan(camera.position.x));
    EXPECT_EQ(camera.position.y, -10.0);
}

TEST(StandardViews, HundredViewsInARowDoNotDrift)
{
    KARVGLCamera camera;
    for (int i = 0; i < 10; ++i)
        for (const NamedView& view : kViews)
            (camera.*view.set)();
    KARVGLCamera once;
    once.SetViewNW();
    EXPECT_TRUE(karv_test::SameCamera(camera, once));
}
