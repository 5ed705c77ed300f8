#include "tests/camera/camera_checks.h"

#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using karv_test::DistinctCamera;
using karv_test::IsAt;
using karv_test::kInfinity;
using karv_test::kNaN;
using karv_test::Same;
using karv_test::SameCamera;
using karv_test::SameFrame;
using karv_test::SamePlace;
using karv_test::SameProjection;
using karv_test::TraceRecording;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Camera, FreshCameraHasTheDefaults)
{
    const KARVGLCamera camera;
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.target, 0, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.xAxis, 1, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, 1, 0, 0));
    EXPECT_TRUE(IsAt(camera.zAxis, 0, 0, 1, 0));
    EXPECT_TRUE(IsAt(camera.upVector, 0, 0, 1, 0));
    EXPECT_EQ(camera.aspect, 1.0F);
    EXPECT_EQ(camera.nearPlane, 0.01F);
    EXPECT_EQ(camera.farPlane, 1000.0F);
    EXPECT_TRUE(camera.perspectiveOn);
    EXPECT_EQ(camera.fieldOfView, 40.0);
    EXPECT_EQ(camera.orthoZoom, 1.0);
}

TEST(Camera, FieldsStandInTheirOrderInTheirTypes)
{
    static_assert(std::is_same_v<decltype(KARVGLCamera::position), AcGePoint3d>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::target), AcGePoint3d>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::upVector), AcGeVector3d>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::angle), double>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::aspect), float>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::nearPlane), float>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::farPlane), float>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::perspectiveOn), bool>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::fieldOfView), double>);
    static_assert(std::is_same_v<decltype(KARVGLCamera::orthoZoom), double>);
    const KARVGLCamera camera;
    const std::vector<const void*> fields = {&camera,          &camera.target,        &camera.xAxis,
                                             &camera.yAxis,    &camera.zAxis,         &camera.upVector,
                                             &camera.angle,    &camera.aspect,        &camera.nearPlane,
                                             &camera.farPlane, &camera.perspectiveOn, &camera.fieldOfView,
                                             &camera.orthoZoom};
    EXPECT_EQ(static_cast<const void*>(&camera.position), fields.front());
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end(), std::less<>()));
}

TEST(Camera, IsAPlainValueWithoutBaseOrVirtualOperations)
{
    static_assert(!std::is_polymorphic_v<KARVGLCamera>);
    static_assert(std::is_standard_layout_v<KARVGLCamera>);
    static_assert(
        std::is_same_v<decltype(std::declval<KARVGLCamera&>() = std::declval<const KARVGLCamera&>()),
                       KARVGLCamera&>);
    // Six triples and three numbers of 64 bits; three 32-bit numbers and the switch, which fill two words.
    EXPECT_EQ(sizeof(KARVGLCamera), (6U * 3U + 3U) * sizeof(double) + 4U * sizeof(float));
}

TEST(Camera, CopyHasEveryFieldOfItsSource)
{
    KARVGLCamera source = DistinctCamera();
    source.angle = 12.0;
    const KARVGLCamera copy = source;
    EXPECT_TRUE(SameCamera(copy, source));
    EXPECT_EQ(copy.angle, 12.0);
}

TEST(Camera, AssignmentTakesEveryField)
{
    KARVGLCamera source = DistinctCamera();
    source.angle = 12.0;
    KARVGLCamera camera;
    const KARVGLCamera* result = &(camera = source);
    EXPECT_TRUE(SameCamera(camera, source));
    EXPECT_EQ(camera.angle, 12.0);
    EXPECT_EQ(result, &camera);
}

TEST(Camera, AssignmentToItselfChangesNothing)
{
    KARVGLCamera camera = DistinctCamera();
    const KARVGLCamera& same = camera;
    camera = same;
    EXPECT_TRUE(SameCamera(camera, DistinctCamera()));
}

TEST(Camera, CopyIsIndependentOfItsSource)
{
    KARVGLCamera source = DistinctCamera();
    const KARVGLCamera copy = source;
    source.SetPosition({100.0, 100.0, 100.0});
    source.SetFarPlaneDistance(3.0);
    EXPECT_TRUE(SameCamera(copy, DistinctCamera()));
}

TEST(Camera, SetPositionChangesThePositionAlone)
{
    KARVGLCamera camera;
    camera.SetPosition({1.5, -2.5, 1e300});
    EXPECT_TRUE(IsAt(camera.position, 1.5, -2.5, 1e300, 0));
    EXPECT_TRUE(IsAt(camera.target, 0, 0, 0, 0));
    EXPECT_TRUE(SameFrame(camera, KARVGLCamera()));
    EXPECT_TRUE(SameProjection(camera, KARVGLCamera()));
}

TEST(Camera, SetTargetChangesTheTargetAlone)
{
    KARVGLCamera camera;
    camera.SetTarget({1.5, -2.5, 1e-300});
    EXPECT_TRUE(IsAt(camera.target, 1.5, -2.5, 1e-300, 0));
    EXPECT_TRUE(IsAt(camera.position, 0, 0, 0, 0));
    EXPECT_TRUE(SameFrame(camera, KARVGLCamera()));
    EXPECT_TRUE(SameProjection(camera, KARVGLCamera()));
}

TEST(Camera, SetUpVectorLeavesTheAxes)
{
    KARVGLCamera camera;
    camera.SetUpVector({0.0, 3.0, 0.0});
    EXPECT_TRUE(IsAt(camera.upVector, 0, 3, 0, 0));
    EXPECT_TRUE(IsAt(camera.xAxis, 1, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, 1, 0, 0));
    EXPECT_TRUE(IsAt(camera.zAxis, 0, 0, 1, 0));
    EXPECT_TRUE(SamePlace(camera, KARVGLCamera()));
}

TEST(Camera, PositionsOfNaNAndInfinityAreTaken)
{
    KARVGLCamera camera;
    camera.SetPosition({kNaN, kInfinity, -kInfinity});
    EXPECT_TRUE(std::isnan(camera.position.x));
    EXPECT_EQ(camera.position.y, kInfinity);
    EXPECT_EQ(camera.position.z, -kInfinity);
}

TEST(Camera, FarDistanceIsHundredTimesTheSceneDistance)
{
    KARVGLCamera camera;
    camera.SetFarPlaneDistance(2.5);
    EXPECT_EQ(camera.farPlane, 250.0F);
}

TEST(Camera, FarDistanceIsMultipliedIn64BitsAndStoredIn32)
{
    // The distance is just above the midpoint between two floats: multiplied by 100 and then rounded it gives
    // another float than rounded and then multiplied.
    const double distance = 1.0 + 0x1p-24 + 0x1p-40;
    const auto wide = static_cast<float>(distance * 100.0);
    const float narrow = static_cast<float>(distance) * 100.0F;
    ASSERT_NE(wide, narrow);
    KARVGLCamera camera;
    camera.SetFarPlaneDistance(distance);
    EXPECT_EQ(camera.farPlane, wide);
}

TEST(Camera, FarDistanceTakesZeroNegativeAndHugeValues)
{
    KARVGLCamera camera;
    camera.SetFarPlaneDistance(0.0);
    EXPECT_EQ(camera.farPlane, 0.0F);
    camera.SetFarPlaneDistance(-1.0);
    EXPECT_EQ(camera.farPlane, -100.0F);
    camera.SetFarPlaneDistance(kInfinity);
    EXPECT_EQ(camera.farPlane, std::numeric_limits<float>::infinity());
    camera.SetFarPlaneDistance(kNaN);
    EXPECT_TRUE(std::isnan(camera.farPlane));
}

TEST(Camera, SetCameraIsReadBackExactly)
{
    KARVGLCamera camera;
    camera.SetCamera({0.1, 0.2, 0.3}, {1.1, 1.2, 1.3}, {0.0, 2.0, 0.0});
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d up;
    camera.GetCamera(position, target, up);
    EXPECT_TRUE(IsAt(position, 0.1, 0.2, 0.3, 0));
    EXPECT_TRUE(IsAt(target, 1.1, 1.2, 1.3, 0));
    EXPECT_TRUE(IsAt(up, 0, 2, 0, 0));
}

TEST(Camera, SetCameraKeepsTheOldAxes)
{
    KARVGLCamera camera;
    camera.SetCamera({5.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 1.0, 0.0});
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    camera.GetLocalAxes(x, y, z);
    EXPECT_TRUE(IsAt(x, 1, 0, 0, 0));
    EXPECT_TRUE(IsAt(y, 0, 1, 0, 0));
    EXPECT_TRUE(IsAt(z, 0, 0, 1, 0));
}

TEST(Camera, GetLocalAxesGivesRightForwardAndUp)
{
    KARVGLCamera camera = DistinctCamera();
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    camera.GetLocalAxes(x, y, z);
    EXPECT_TRUE(Same(x, camera.xAxis));
    EXPECT_TRUE(Same(y, camera.yAxis));
    EXPECT_TRUE(Same(z, camera.zAxis));
}

TEST(Camera, ResetAngleRestoresTheFrameAndNothingElse)
{
    KARVGLCamera camera = DistinctCamera();
    camera.angle = 12.0;
    camera.ResetAngle();
    EXPECT_EQ(camera.angle, 0.0);
    EXPECT_TRUE(IsAt(camera.xAxis, 1, 0, 0, 0));
    EXPECT_TRUE(IsAt(camera.yAxis, 0, 1, 0, 0));
    EXPECT_TRUE(IsAt(camera.zAxis, 0, 0, 1, 0));
    EXPECT_TRUE(IsAt(camera.upVector, 7, 8, 9, 0));
    EXPECT_TRUE(SamePlace(camera, DistinctCamera()));
    EXPECT_TRUE(SameProjection(camera, DistinctCamera()));
}

TEST(CameraTrace, EveryOperationIsTracedUnderItsName)
{
    using Operation = std::function<void(KARVGLCamera&)>;
    AcGePoint3d p;
    AcGeVector3d v;
    AcGeVector3d w;
    AcGeVector3d u;
    float zoom = 1.0F;
    float fov = 40.0F;
    const std::vector<std::pair<std::string, Operation>> operations = {
        {"SetPosition", [](KARVGLCamera& c) { c.SetPosition({}); }},
        {"SetTarget", [](KARVGLCamera& c) { c.SetTarget({}); }},
        {"SetUpVector", [](KARVGLCamera& c) { c.SetUpVector({}); }},
        {"SetFarPlaneDistance", [](KARVGLCamera& c) { c.SetFarPlaneDistance(1.0); }},
        {"SetCamera", [](KARVGLCamera& c) { c.SetCamera({}, {}, {}); }},
        {"GetCamera", [&](KARVGLCamera& c) { c.GetCamera(p, p, v); }},
        {"GetLocalAxes", [&](KARVGLCamera& c) { c.GetLocalAxes(u, v, w); }},
        {"ResetAngle", [](KARVGLCamera& c) { c.ResetAngle(); }},
        {"UpdateCamera", [](KARVGLCamera& c) { c.UpdateCamera(); }},
        {"RefreshCameraView", [](KARVGLCamera& c) { c.RefreshCameraView(40.0, 1.0, 1.0F); }},
        {"SetPerspectiveOn", [](KARVGLCamera& c) { c.SetPerspectiveOn(false); }},
        {"SetPerspectiveOn", [](KARVGLCamera& c) { c.SetPerspectiveOn(false); }},
        {"SetPerspectiveOn", [](KARVGLCamera& c) { c.SetPerspectiveOn(true); }},
        {"ZoomAt", [&](KARVGLCamera& c) { c.ZoomAt(zoom, fov); }},
        {"SetViewFront", [](KARVGLCamera& c) { c.SetViewFront(); }},
        {"SetViewBack", [](KARVGLCamera& c) { c.SetViewBack(); }},
        {"SetViewLeft", [](KARVGLCamera& c) { c.SetViewLeft(); }},
        {"SetViewRight", [](KARVGLCamera& c) { c.SetViewRight(); }},
        {"SetViewTop", [](KARVGLCamera& c) { c.SetViewTop(); }},
        {"SetViewBottom", [](KARVGLCamera& c) { c.SetViewBottom(); }},
        {"SetViewSE", [](KARVGLCamera& c) { c.SetViewSE(); }},
        {"SetViewSW", [](KARVGLCamera& c) { c.SetViewSW(); }},
        {"SetViewNE", [](KARVGLCamera& c) { c.SetViewNE(); }},
        {"SetViewNW", [](KARVGLCamera& c) { c.SetViewNW(); }},
        {"RotateCamera", [](KARVGLCamera& c) { c.RotateCamera(1.0F, AcGeVector3d::kZAxis); }},
        {"RotateCamera", [](KARVGLCamera& c) { c.RotateCamera(0.0F, AcGeVector3d::kZAxis); }},
        {"PanCamera", [](KARVGLCamera& c) { c.PanCamera(1.0F, AcGeVector3d::kXAxis); }},
        {"ZoomCamera", [](KARVGLCamera& c) { c.ZoomCamera(1.0F); }},
    };
    KARVGLCamera camera;
    for (const auto& [name, operation] : operations) {
        const TraceRecording trace;
        operation(camera);
        EXPECT_THAT(trace.OutermostCalls(), ElementsAre("KARVGLCamera::" + name));
        EXPECT_THAT(trace.Faults(), IsEmpty());
        EXPECT_EQ(trace.Listing().back(), "< KARVGLCamera::" + name);
    }
}

TEST(CameraTrace, ConstructionCopyAssignmentAndDestructionAreNotTraced)
{
    const TraceRecording trace;
    {
        const KARVGLCamera camera;
        const KARVGLCamera copy = camera;
        KARVGLCamera assigned;
        assigned = copy;
    }
    EXPECT_THAT(trace.Listing(), IsEmpty());
}

TEST(CameraTrace, SwitchOfTheProjectionLooksAgainUnlessThereIsNothingToSwitch)
{
    KARVGLCamera camera;
    for (const bool on : {false, true, true}) {
        const TraceRecording trace;
        camera.SetPerspectiveOn(on);
        EXPECT_THAT(trace.Listing(),
                    ElementsAre("> KARVGLCamera::SetPerspectiveOn", "> KARVGLCamera::UpdateCamera",
                                "< KARVGLCamera::UpdateCamera", "< KARVGLCamera::SetPerspectiveOn"));
    }
    camera.SetPerspectiveOn(false);
    const TraceRecording trace;
    camera.SetPerspectiveOn(false);
    EXPECT_THAT(trace.Listing(),
                ElementsAre("> KARVGLCamera::SetPerspectiveOn", "< KARVGLCamera::SetPerspectiveOn"));
}

TEST(CameraTrace, OtherOperationsNestNone)
{
    KARVGLCamera camera = karv_test::FrontCamera();
    float zoom = 1.0F;
    float fov = 40.0F;
    AcGePoint3d point;
    AcGeVector3d vector;
    const TraceRecording trace;
    camera.SetCamera({0.0, -10.0, 0.0}, {}, AcGeVector3d::kZAxis);
    camera.GetCamera(point, point, vector);
    camera.GetLocalAxes(vector, vector, vector);
    camera.ResetAngle();
    camera.UpdateCamera();
    camera.RefreshCameraView(40.0, 10.0, 1.0F);
    camera.ZoomAt(zoom, fov);
    camera.RotateCamera(10.0F, AcGeVector3d::kXAxis);
    camera.PanCamera(1.0F, AcGeVector3d::kXAxis);
    camera.ZoomCamera(1.0F);
    EXPECT_EQ(trace.Calls(), trace.OutermostCalls());
}

TEST(CameraTrace, StandardViewNestsTheOperationsItCalls)
{
    KARVGLCamera camera;
    const TraceRecording trace;
    camera.SetViewTop();
    EXPECT_THAT(trace.Listing(), ElementsAre("> KARVGLCamera::SetViewTop", "> KARVGLCamera::SetViewFront",
                                             "> KARVGLCamera::ResetAngle", "< KARVGLCamera::ResetAngle",
                                             "> KARVGLCamera::UpdateCamera", "< KARVGLCamera::UpdateCamera",
                                             "< KARVGLCamera::SetViewFront", "> KARVGLCamera::RotateCamera",
                                             "< KARVGLCamera::RotateCamera", "> KARVGLCamera::UpdateCamera",
                                             "< KARVGLCamera::UpdateCamera", "< KARVGLCamera::SetViewTop"));
}
