#include "tests/camera/camera_checks.h"

#include "platform/winsys/opengl.h"
#include "tests/support/gl_recorder.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>

using karv_test::GlRecording;
using karv_test::kDegreesPerZoom;
using karv_test::kInfinityf;
using karv_test::kNaNf;
using karv_test::ParallelCamera;
using karv_test::SameCamera;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// The field of view that `ZoomAt` passes to OpenGL in perspective, and the value it writes back.
struct ZoomResult {
    float fov;
    double loaded;
};

ZoomResult PerspectiveZoom(float fov)
{
    KARVGLCamera camera;
    float factor = 1.0F;
    const GlRecording recording;
    camera.ZoomAt(factor, fov);
    return {fov, recording.Call("gluPerspective").values.at(0)};
}

} // namespace

TEST(CameraUpdate, LooksFromPositionToTargetAlongTheFramesUpAxis)
{
    KARVGLCamera camera;
    camera.position = {1.0, 2.0, 3.0};
    camera.target = {4.0, 5.0, 6.0};
    camera.zAxis = {0.0, 0.6, 0.8};
    camera.upVector = {1.0, 0.0, 0.0};
    const GlRecording recording;
    camera.UpdateCamera();
    EXPECT_THAT(recording.Listing(), ElementsAre("glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                                                 "gluLookAt(1, 2, 3, 4, 5, 6, 0, 0.6, 0.8)"));
}

TEST(CameraUpdate, FreshCameraIssuesADegenerateLookAt)
{
    KARVGLCamera camera;
    const GlRecording recording;
    camera.UpdateCamera();
    EXPECT_THAT(recording.Listing(), ElementsAre("glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                                                 "gluLookAt(0, 0, 0, 0, 0, 0, 0, 0, 1)"));
}

TEST(CameraUpdate, PassesFull64BitCoordinates)
{
    KARVGLCamera camera;
    camera.position = {1.0 / 3.0, 1e300, -1e-300};
    camera.target = {0.1, 0.2, 0.3};
    const GlRecording recording;
    camera.UpdateCamera();
    EXPECT_THAT(recording.Call("gluLookAt").values,
                ElementsAre(1.0 / 3.0, 1e300, -1e-300, 0.1, 0.2, 0.3, 0.0, 0.0, 1.0));
}

TEST(CameraUpdate, AfterSetCameraTheOldUpAxisIsStillUsed)
{
    KARVGLCamera camera;
    camera.SetCamera({0.0, -3.0, 0.0}, {0.0, 0.0, 0.0}, {1.0, 0.0, 0.0});
    const GlRecording recording;
    camera.UpdateCamera();
    EXPECT_EQ(recording.Call("gluLookAt").text, "gluLookAt(0, -3, 0, 0, 0, 0, 0, 0, 1)");
}

TEST(CameraRefresh, PerspectiveLoadsTheFixedNearDistance)
{
    KARVGLCamera camera;
    const GlRecording recording;
    camera.RefreshCameraView(35.0, 10.0, 2.0F);
    EXPECT_THAT(recording.Listing(),
                ElementsAre("glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                            "gluPerspective(35, 2, 0.1, 1000)", "glMatrixMode(GL_MODELVIEW)"));
    EXPECT_EQ(recording.Call("gluPerspective").values.at(2), 0.10000000149011612);
}

TEST(CameraRefresh, PerspectivePassesFieldAndFarIn64Bits)
{
    KARVGLCamera camera;
    const double distance = 1.0 / 3.0;
    const GlRecording recording;
    camera.RefreshCameraView(33.3, distance, 0.7F);
    EXPECT_THAT(recording.Call("gluPerspective").values,
                ElementsAre(33.3, static_cast<double>(0.7F), static_cast<double>(0.1F), distance * 100.0));
    EXPECT_EQ(camera.farPlane, static_cast<float>(distance * 100.0));
    EXPECT_EQ(camera.fieldOfView, 33.3);
}

TEST(CameraRefresh, ParallelFlipsTheVerticalAxisTwice)
{
    KARVGLCamera camera = ParallelCamera();
    const GlRecording recording;
    camera.RefreshCameraView(35.0, 10.0, 2.0F);
    // Half of the distance to each side, divided by the aspect upwards.
    EXPECT_THAT(recording.Listing(), ElementsAre("glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                                                 "glLoadIdentity()", "glOrtho(-5, 5, 2.5, -2.5, -1000, 1000)",
                                                 "glScalef(1, -1, 1)", "glMatrixMode(GL_MODELVIEW)"));
    EXPECT_EQ(camera.aspect, 2.0F);
    EXPECT_EQ(camera.fieldOfView, 35.0);
    EXPECT_EQ(camera.farPlane, 1000.0F);
    EXPECT_FALSE(camera.perspectiveOn);
}

TEST(CameraRefresh, ParallelIgnoresTheZoom)
{
    KARVGLCamera camera = ParallelCamera();
    camera.orthoZoom = 7.0;
    const GlRecording recording;
    camera.RefreshCameraView(35.0, 10.0, 1.0F);
    EXPECT_EQ(recording.Call("glOrtho").text, "glOrtho(-5, 5, 5, -5, -1000, 1000)");
    EXPECT_EQ(camera.orthoZoom, 7.0);
}

TEST(CameraRefresh, ParallelRoundsTheExtentTo32BitsAndTheDepthNot)
{
    KARVGLCamera camera = ParallelCamera();
    const double distance = 1.0 / 3.0;
    const auto h = static_cast<float>(distance * 0.5);
    const float v = h / 0.7F;
    ASSERT_NE(static_cast<double>(h), distance * 0.5);
    const GlRecording recording;
    camera.RefreshCameraView(40.0, distance, 0.7F);
    EXPECT_THAT(recording.Call("glOrtho").values,
                ElementsAre(static_cast<double>(-h), static_cast<double>(h), static_cast<double>(v),
                            static_cast<double>(-v), distance * -100.0, distance * 100.0));
}

TEST(CameraRefresh, ParallelHalvesTheDistanceBeforeItRounds)
{
    // 6e38 is beyond the range of floats, half of it is not.
    KARVGLCamera camera = ParallelCamera();
    const GlRecording recording;
    camera.RefreshCameraView(40.0, 6e38, 1.0F);
    EXPECT_EQ(recording.Call("glOrtho").values.at(1), static_cast<double>(3e38F));
}

TEST(CameraRefresh, ZeroAspectGivesInfiniteExtents)
{
    KARVGLCamera camera = ParallelCamera();
    const GlRecording recording;
    camera.RefreshCameraView(40.0, 10.0, 0.0F);
    EXPECT_EQ(recording.Call("glOrtho").text, "glOrtho(-5, 5, inf, -inf, -1000, 1000)");
    EXPECT_EQ(camera.aspect, 0.0F);
}

TEST(CameraRefresh, ZeroDistanceIsPassedOn)
{
    KARVGLCamera camera;
    const GlRecording recording;
    camera.RefreshCameraView(40.0, 0.0, 1.0F);
    EXPECT_EQ(recording.Call("gluPerspective").text, "gluPerspective(40, 1, 0.1, 0)");
    EXPECT_EQ(camera.farPlane, 0.0F);
}

TEST(CameraRefresh, FieldOfViewIsNotLimited)
{
    KARVGLCamera camera;
    const GlRecording recording;
    camera.RefreshCameraView(500.0, 1.0, 1.0F);
    EXPECT_EQ(recording.Call("gluPerspective").values.at(0), 500.0);
    EXPECT_EQ(camera.fieldOfView, 500.0);
}

TEST(CameraPerspective, SwitchingToParallelPushesAndLoads)
{
    KARVGLCamera camera;
    camera.aspect = 2.0F;
    const GlRecording recording;
    camera.SetPerspectiveOn(false);
    EXPECT_THAT(recording.Listing(),
                ElementsAre("glMatrixMode(GL_PROJECTION)", "glPushMatrix()", "glLoadIdentity()",
                            "glOrtho(-5, 5, 2.5, -2.5, -1000, 1000)", "glScalef(1, -1, 1)",
                            "glMatrixMode(GL_MODELVIEW)", "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                            "gluLookAt(0, 0, 0, 0, 0, 0, 0, 0, 1)"));
    EXPECT_FALSE(camera.perspectiveOn);
    EXPECT_EQ(camera.orthoZoom, 40.0 / kDegreesPerZoom);
    EXPECT_EQ(camera.fieldOfView, 40.0);
    EXPECT_EQ(camera.farPlane, 1000.0F);
}

TEST(CameraPerspective, SwitchingToParallelTwiceIssuesNoSecondCall)
{
    KARVGLCamera camera;
    camera.SetPerspectiveOn(false);
    camera.fieldOfView = 60.0;
    const KARVGLCamera before = camera;
    const GlRecording recording;
    camera.SetPerspectiveOn(false);
    EXPECT_THAT(recording.Listing(), IsEmpty());
    EXPECT_TRUE(SameCamera(camera, before));
}

TEST(CameraPerspective, ParallelExtentsAreTakenIn32Bits)
{
    KARVGLCamera camera;
    camera.farPlane = 13.0F;
    camera.aspect = 0.7F;
    const float h = 13.0F / 100.0F * 0.5F;
    const float v = h / 0.7F;
    ASSERT_NE(static_cast<double>(h), 13.0 / 100.0 * 0.5);
    ASSERT_NE(v, static_cast<float>(13.0 / 100.0 * 0.5 / static_cast<double>(0.7F)));
    const GlRecording recording;
    camera.SetPerspectiveOn(false);
    EXPECT_THAT(recording.Call("glOrtho").values,
                ElementsAre(static_cast<double>(-h), static_cast<double>(h), static_cast<double>(v),
                            static_cast<double>(-v), -13.0, 13.0));
}

TEST(CameraPerspective, SwitchingBackPopsAndLoadsANegativeNearDistance)
{
    KARVGLCamera camera = ParallelCamera();
    camera.orthoZoom = 2.0;
    camera.aspect = 1.5F;
    camera.farPlane = 250.0F;
    const GlRecording recording;
    camera.SetPerspectiveOn(true);
    EXPECT_THAT(recording.Listing(), ElementsAre("glMatrixMode(GL_PROJECTION)", "glPopMatrix()",
                                                 "glLoadIdentity()", "gluPerspective(33.32, 1.5, -250, 250)",
                                                 "glMatrixMode(GL_MODELVIEW)", "glMatrixMode(GL_MODELVIEW)",
                                                 "glLoadIdentity()", "gluLookAt(0, 0, 0, 0, 0, 0, 0, 0, 1)"));
    EXPECT_TRUE(camera.perspectiveOn);
    EXPECT_EQ(camera.fieldOfView, 2.0 * kDegreesPerZoom);
    EXPECT_THAT(recording.Call("gluPerspective").values,
                ElementsAre(2.0 * kDegreesPerZoom, 1.5, -250.0, 250.0));
    EXPECT_EQ(camera.orthoZoom, 2.0);
}

TEST(CameraPerspective, SwitchingOnWhenAlreadyOnPopsAllTheSame)
{
    KARVGLCamera camera;
    const GlRecording recording;
    camera.SetPerspectiveOn(true);
    EXPECT_THAT(recording.Listing(), ElementsAre("glMatrixMode(GL_PROJECTION)", "glPopMatrix()",
                                                 "glLoadIdentity()", "gluPerspective(16.66, 1, -1000, 1000)",
                                                 "glMatrixMode(GL_MODELVIEW)", "glMatrixMode(GL_MODELVIEW)",
                                                 "glLoadIdentity()", "gluLookAt(0, 0, 0, 0, 0, 0, 0, 0, 1)"));
    EXPECT_EQ(camera.fieldOfView, 1.0 * kDegreesPerZoom);
    EXPECT_TRUE(camera.perspectiveOn);
}

TEST(CameraZoom, PerspectiveLoadsTheNearAndFarFields)
{
    KARVGLCamera camera;
    camera.aspect = 1.5F;
    camera.nearPlane = 0.01F;
    camera.farPlane = 123.0F;
    float factor = 3.0F;
    float fov = 25.0F;
    const GlRecording recording;
    camera.ZoomAt(factor, fov);
    EXPECT_THAT(recording.Listing(),
                ElementsAre("glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                            "gluPerspective(25, 1.5, 0.01, 123)", "glMatrixMode(GL_MODELVIEW)"));
    EXPECT_THAT(recording.Call("gluPerspective").values,
                ElementsAre(25.0, 1.5, static_cast<double>(0.01F), 123.0));
    EXPECT_EQ(fov, 25.0F);
    EXPECT_EQ(factor, 3.0F);
}

TEST(CameraZoom, ParallelScalesTheSceneByTheFactor)
{
    KARVGLCamera camera = ParallelCamera();
    camera.aspect = 2.0F;
    float factor = 3.0F;
    float fov = 25.0F;
    const GlRecording recording;
    camera.ZoomAt(factor, fov);
    // The scene distance is 1000 / 100 = 10, half of it 5, times 3.
    EXPECT_THAT(recording.Listing(), ElementsAre("glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                                                 "glOrtho(-15, 15, 7.5, -7.5, -1000, 1000)",
                                                 "glScalef(1, -1, 1)", "glMatrixMode(GL_MODELVIEW)"));
    EXPECT_EQ(factor, 3.0F);
    EXPECT_EQ(fov, 25.0F);
}

TEST(CameraZoom, ParallelExtentsAreTakenIn32Bits)
{
    KARVGLCamera camera = ParallelCamera();
    camera.aspect = 0.7F;
    camera.farPlane = 333.0F;
    float factor = 1.3F;
    float fov = 25.0F;
    const GlRecording recording;
    camera.ZoomAt(factor, fov);
    // Computed in 32 bits, like the fields. A factor of 1 gives the extents that the switch to parallel
    // loads.
    const float s = 333.0F / 100.0F * 0.5F;
    const float h = 1.3F * s;
    const float v = 1.3F * s / 0.7F;
    ASSERT_NE(static_cast<double>(h), static_cast<double>(1.3F) * (333.0 / 100.0 * 0.5));
    EXPECT_THAT(recording.Call("glOrtho").values,
                ElementsAre(static_cast<double>(-h), static_cast<double>(h), static_cast<double>(v),
                            static_cast<double>(-v), -333.0, 333.0));
}

TEST(CameraZoom, WideFieldIsLimitedTo150AndWrittenBack)
{
    const ZoomResult result = PerspectiveZoom(200.0F);
    EXPECT_EQ(result.fov, 150.0F);
    EXPECT_EQ(result.loaded, 150.0);
}

TEST(CameraZoom, ZeroFieldIsLimitedToAHundredthAndWrittenBack)
{
    const ZoomResult result = PerspectiveZoom(0.0F);
    EXPECT_EQ(result.fov, 0.01F);
    EXPECT_EQ(result.loaded, static_cast<double>(0.01F));
}

TEST(CameraZoom, FieldJustInsideTheBoundsPasses)
{
    const float above_low = std::nextafter(0.01F, 1.0F);
    const float below_high = std::nextafter(150.0F, 0.0F);
    EXPECT_EQ(PerspectiveZoom(above_low).fov, above_low);
    EXPECT_EQ(PerspectiveZoom(below_high).fov, below_high);
}

TEST(CameraZoom, FieldOnTheBoundsStays)
{
    EXPECT_EQ(PerspectiveZoom(0.01F).fov, 0.01F);
    EXPECT_EQ(PerspectiveZoom(150.0F).fov, 150.0F);
}

TEST(CameraZoom, FieldJustOutsideTheBoundsIsLimited)
{
    EXPECT_EQ(PerspectiveZoom(std::nextafter(0.01F, 0.0F)).fov, 0.01F);
    EXPECT_EQ(PerspectiveZoom(std::nextafter(150.0F, 200.0F)).fov, 150.0F);
}

TEST(CameraZoom, NegativeAndInfiniteFieldsAreLimited)
{
    EXPECT_EQ(PerspectiveZoom(-40.0F).fov, 0.01F);
    EXPECT_EQ(PerspectiveZoom(-kInfinityf).fov, 0.01F);
    EXPECT_EQ(PerspectiveZoom(kInfinityf).fov, 150.0F);
    EXPECT_EQ(PerspectiveZoom(std::numeric_limits<float>::max()).fov, 150.0F);
    EXPECT_EQ(PerspectiveZoom(std::numeric_limits<float>::denorm_min()).fov, 0.01F);
}

TEST(CameraZoom, NaNFieldPasses)
{
    const ZoomResult result = PerspectiveZoom(kNaNf);
    EXPECT_TRUE(std::isnan(result.fov));
    EXPECT_TRUE(std::isnan(result.loaded));
}

TEST(CameraZoom, LimitedFactorIsTheOneLoaded)
{
    KARVGLCamera camera = ParallelCamera();
    float factor = 12.0F;
    float fov = 40.0F;
    const GlRecording recording;
    camera.ZoomAt(factor, fov);
    EXPECT_EQ(recording.Call("glOrtho").text, "glOrtho(-45, 45, 45, -45, -1000, 1000)");
}
