// The camera and OpenGL: the calls that it makes, the calls that it never makes, and its state after a fault
// between two calls.
#include "tests/camera/camera_checks.h"

#include "tests/support/gl_recorder.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using karv_test::DistinctCamera;
using karv_test::GlRecording;
using karv_test::IsAt;
using karv_test::SameCamera;
using karv_test::SameProjection;
using karv_test::ThrowAt;
using karv_test::TraceRecording;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Camera, SettersGettersAndMotionIssueNoGlCall)
{
    const GlRecording recording;
    KARVGLCamera camera;
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
    camera.SetPosition({0.0, -5.0, 0.0});
    camera.SetTarget({0.0, 0.0, 0.0});
    camera.SetUpVector({0.0, 0.0, 1.0});
    camera.SetFarPlaneDistance(10.0);
    camera.SetCamera({0.0, -5.0, 0.0}, {0.0, 0.0, 0.0}, {0.0, 0.0, 1.0});
    camera.GetCamera(position, target, x);
    camera.GetLocalAxes(x, y, z);
    camera.ResetAngle();
    camera.RotateCamera(10.0F, AcGeVector3d::kZAxis);
    camera.RotateCamera(10.0F, AcGeVector3d::kXAxis);
    camera.PanCamera(1.0F, AcGeVector3d::kXAxis);
    camera.ZoomCamera(1.0F);
    EXPECT_THAT(recording.Listing(), IsEmpty());
}

TEST(CameraFault, FaultInTheLookAtIsReportedOnceAndSwallowed)
{
    KARVGLCamera camera;
    const TraceRecording trace;
    const auto hook = ThrowAt("gluLookAt", 1, 42);
    EXPECT_NO_THROW(camera.UpdateCamera());
    EXPECT_THAT(trace.Listing(), ElementsAre("> KARVGLCamera::UpdateCamera", "< KARVGLCamera::UpdateCamera",
                                             R"(! .\KARVGLCamera.cpp)"));
}

TEST(CameraFault, FaultNamesItsOwnLine)
{
    KARVGLCamera camera;
    const TraceRecording trace;
    {
        const auto hook = ThrowAt("gluLookAt", 1, 42);
        camera.UpdateCamera();
    }
    {
        const auto hook = ThrowAt("glMatrixMode", 1, 42);
        camera.RefreshCameraView(40.0, 1.0, 1.0F);
    }
    const std::vector<std::string> faults = trace.Faults();
    ASSERT_EQ(faults.size(), 2U);
    EXPECT_THAT(faults[0], testing::MatchesRegex(R"(\.\\KARVGLCamera\.cpp:[1-9][0-9]*)"));
    EXPECT_NE(faults[0], faults[1]);
}

TEST(CameraFault, InnerFaultOfAViewLeavesTheOuterRunning)
{
    KARVGLCamera camera;
    const TraceRecording trace;
    // The first look-at belongs to the front view; the view then turns the eye and looks again.
    const auto hook = ThrowAt("gluLookAt", 1, 42);
    camera.SetViewBack();
    EXPECT_TRUE(IsAt(camera.position, 0, 10, 0));
    EXPECT_THAT(trace.Faults(), testing::SizeIs(1));
    EXPECT_EQ(trace.Listing().back(), "< KARVGLCamera::SetViewBack");
}

TEST(CameraFault, ViewIsTurnedOnlyAfterItsIdentityIsLoaded)
{
    // The first identity belongs to the front view, the second comes after it and before the turns.
    KARVGLCamera camera;
    const TraceRecording trace;
    const auto hook = ThrowAt("glLoadIdentity", 2, 42);
    camera.SetViewBack();
    EXPECT_TRUE(IsAt(camera.position, 0, -10, 0, 0));
    EXPECT_THAT(trace.Faults(), testing::SizeIs(1));
}

TEST(CameraFault, ViewResetsItsFieldsBeforeItLooks)
{
    KARVGLCamera camera = DistinctCamera();
    KARVGLCamera looking;
    const karv_test::GlHook hook("glMatrixMode", [&](int) { looking = camera; });
    camera.SetViewFront();
    EXPECT_TRUE(IsAt(looking.position, 4.0, 5.0 - static_cast<double>(77.0F / 100.0F), 6.0, 0));
    EXPECT_TRUE(IsAt(looking.yAxis, 0, 1, 0, 0));
    EXPECT_TRUE(IsAt(looking.upVector, 0, 0, 1, 0));
}

TEST(CameraFault, ReturnToPerspectiveStoresItsFieldAfterThePopAndItsModeLast)
{
    KARVGLCamera camera = DistinctCamera();
    for (const char* before_the_field : {"glMatrixMode", "glPopMatrix", "glLoadIdentity"}) {
        const auto hook = ThrowAt(before_the_field, 1, 42);
        camera.SetPerspectiveOn(true);
        EXPECT_TRUE(SameCamera(camera, DistinctCamera())) << before_the_field;
    }
    const auto hook = ThrowAt("gluPerspective", 1, 42);
    camera.SetPerspectiveOn(true);
    EXPECT_EQ(camera.fieldOfView, 2.5 * 16.65999984741211);
    EXPECT_FALSE(camera.perspectiveOn);
}

TEST(CameraFault, SwitchToParallelStoresItsZoomAfterTheIdentity)
{
    for (const char* before_the_zoom : {"glMatrixMode", "glPushMatrix", "glLoadIdentity"}) {
        KARVGLCamera camera;
        const auto hook = ThrowAt(before_the_zoom, 1, 42);
        camera.SetPerspectiveOn(false);
        EXPECT_TRUE(SameCamera(camera, KARVGLCamera())) << before_the_zoom;
    }
}

TEST(CameraFault, ZoomIsLimitedAfterTheIdentityAndBeforeItIsLoaded)
{
    for (const bool perspective : {true, false}) {
        KARVGLCamera camera;
        camera.perspectiveOn = perspective;
        for (const char* before_the_limit : {"glMatrixMode", "glLoadIdentity"}) {
            float factor = 12.0F;
            float fov = 200.0F;
            const auto hook = ThrowAt(before_the_limit, 1, 42);
            camera.ZoomAt(factor, fov);
            EXPECT_EQ(factor, 12.0F) << before_the_limit;
            EXPECT_EQ(fov, 200.0F) << before_the_limit;
        }
        float factor = 12.0F;
        float fov = 200.0F;
        const auto hook = ThrowAt(perspective ? "gluPerspective" : "glOrtho", 1, 42);
        camera.ZoomAt(factor, fov);
        EXPECT_EQ(perspective ? fov : factor, perspective ? 150.0F : 9.0F);
    }
}

TEST(CameraFault, FieldsWrittenBeforeAFaultStay)
{
    // The first matrix mode selects the projection, the second the model-view, before the fields are stored.
    KARVGLCamera camera;
    {
        const auto hook = ThrowAt("glMatrixMode", 2, 42);
        camera.RefreshCameraView(20.0, 5.0, 2.0F);
    }
    EXPECT_TRUE(SameProjection(camera, KARVGLCamera()));

    // Switching to parallel stores the zoom, loads the projection, then stores the mode.
    {
        const auto hook = ThrowAt("glOrtho", 1, 42);
        camera.SetPerspectiveOn(false);
    }
    EXPECT_EQ(camera.orthoZoom, 40.0 / 16.65999984741211);
    EXPECT_TRUE(camera.perspectiveOn);
}

TEST(StandardViewCalls, FrontViewLooksOnceAfterItsIdentity)
{
    KARVGLCamera camera;
    const GlRecording recording;
    camera.SetViewFront();
    EXPECT_THAT(recording.Listing(), ElementsAre("glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                                                 "gluLookAt(0, -10, 0, 0, 0, 0, 0, 0, 1)"));
}

TEST(StandardViewCalls, EveryOtherViewLooksTwiceWithAnIdentityBetween)
{
    for (const auto view :
         {&KARVGLCamera::SetViewBack, &KARVGLCamera::SetViewLeft, &KARVGLCamera::SetViewRight,
          &KARVGLCamera::SetViewTop, &KARVGLCamera::SetViewBottom, &KARVGLCamera::SetViewSE,
          &KARVGLCamera::SetViewSW, &KARVGLCamera::SetViewNE, &KARVGLCamera::SetViewNW}) {
        KARVGLCamera camera;
        const GlRecording recording;
        (camera.*view)();
        EXPECT_THAT(recording.Listing(),
                    ElementsAre("glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                                "gluLookAt(0, -10, 0, 0, 0, 0, 0, 0, 1)", "glLoadIdentity()",
                                "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                                recording.Call("gluLookAt", 1).text));
        EXPECT_THAT(recording.Call("gluLookAt", 1).values,
                    ElementsAre(camera.position.x, camera.position.y, camera.position.z, 0.0, 0.0, 0.0,
                                camera.zAxis.x, camera.zAxis.y, camera.zAxis.z));
    }
}
