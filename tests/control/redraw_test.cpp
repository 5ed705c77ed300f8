// The redraw, which applies queued motion to the camera, and size messages.
#include "tests/control/shared_constants.h"
#include "tests/support/control_test.h"

#include "platform/winsys/opengl.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace karv_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// A control whose camera is 10 units in front of the origin.
class ControlRedraw : public ControlTest
{
  protected:
    ControlRedraw() : control_(NewControl())
    {
        control_->camera.SetPosition({0.0, -10.0, 0.0});
        control_->camera.SetFarPlaneDistance(10.0);
    }

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    void ExpectEye(double x, double y, double z) const { ExpectPoint(control_->camera.position, x, y, z); }
    void ExpectTarget(double x, double y, double z) const { ExpectPoint(control_->camera.target, x, y, z); }

    /// The exact position and target of the camera.
    static std::array<double, 6> Bits(const KARVGLCamera& camera)
    {
        return {camera.position.x, camera.position.y, camera.position.z,
                camera.target.x,   camera.target.y,   camera.target.z};
    }

    [[nodiscard]] std::array<float, 4> Queue() const
    {
        return {control_->pendingPanX, control_->pendingPanZ, control_->pendingRotateX,
                control_->pendingRotateZ};
    }

    std::unique_ptr<KARVOpenGLControl> control_;

  private:
    static void ExpectPoint(const AcGePoint3d& point, double x, double y, double z)
    {
        EXPECT_NEAR(point.x, x, kRounding);
        EXPECT_NEAR(point.y, y, kRounding);
        EXPECT_NEAR(point.z, z, kRounding);
    }
};

TEST_F(ControlRedraw, WithNothingQueuedProjectionAndViewAreLoaded)
{
    const GlRecording gl;
    control_->OnDraw(nullptr);
    EXPECT_THAT(gl.Listing(), ElementsAre("glLoadIdentity()", "glMatrixMode(GL_PROJECTION)",
                                          "glLoadIdentity()", "gluPerspective(40, 2, 0.01, 1000)",
                                          "glMatrixMode(GL_MODELVIEW)", "glMatrixMode(GL_MODELVIEW)",
                                          "glLoadIdentity()", "gluLookAt(0, -10, 0, 0, 0, 0, 0, 0, 1)"));
}

TEST_F(ControlRedraw, TheCameraIsAskedInAFixedOrder)
{
    const TraceRecording trace;
    control_->OnDraw(nullptr);
    EXPECT_THAT(trace.Calls(),
                ElementsAre("KARVOpenGLControl::OnDraw", "KARVGLCamera::RotateCamera",
                            "KARVGLCamera::RotateCamera", "KARVGLCamera::PanCamera",
                            "KARVGLCamera::PanCamera", "KARVGLCamera::ZoomAt", "KARVGLCamera::UpdateCamera"));
}

TEST_F(ControlRedraw, TheFocusIsTakenLast)
{
    window_calls_.Clear();
    const GlHook look("gluLookAt", [this](int) { window_calls_.Mark("the view"); });
    control_->OnDraw(nullptr);
    EXPECT_THAT(window_calls_.Listing(), ElementsAre("the view", "SetFocus(3DView)"));
    EXPECT_EQ(::GetFocus(), control_->m_hWnd);
}

TEST_F(ControlRedraw, AQueuedTurnAboutZOrbits)
{
    control_->pendingRotateZ = 90.0F;
    control_->OnDraw(nullptr);
    ExpectEye(10.0, 0.0, 0.0); // (0, -10) turned by 90 degrees
    ExpectTarget(0.0, 0.0, 0.0);
}

TEST_F(ControlRedraw, AQueuedTurnAboutXTilts)
{
    control_->pendingRotateX = 30.0F;
    control_->OnDraw(nullptr);
    ExpectEye(0.0, -10.0 * std::sqrt(0.75), 5.0); // cos 30 and sin 30 degrees
}

TEST_F(ControlRedraw, BothTurnsAreApplied)
{
    control_->pendingRotateX = 30.0F;
    control_->pendingRotateZ = 90.0F;
    control_->OnDraw(nullptr);
    ExpectEye(10.0 * std::sqrt(0.75), 0.0, 5.0);
}

TEST_F(ControlRedraw, TheTiltComesBeforeTheOrbit)
{
    // From straight above, a tilt lowers the eye along world Y whatever the orbit, and an orbit does not move
    // the eye. Only a tilt first gives the orbit something to turn.
    control_->camera.SetPosition({0.0, 0.0, 10.0});
    control_->pendingRotateX = -30.0F;
    control_->pendingRotateZ = 90.0F;
    control_->OnDraw(nullptr);
    // The tilt puts the eye at (0, -10 sin 30, 10 cos 30), the orbit turns that by 90 degrees. In the other
    // order the eye would stay at the tilt's result.
    ExpectEye(5.0, 0.0, 10.0 * std::sqrt(0.75));
}

TEST_F(ControlRedraw, ThePanAcrossComesBeforeThePanUp)
{
    // The two commute except for rounding, so the last bits show their order.
    control_->camera.SetCamera({3.1, -7.3, 5.7}, {0.4, 1.9, -0.6}, AcGeVector3d::kZAxis);
    KARVGLCamera across_first(control_->camera);
    across_first.PanCamera(-1.7F, AcGeVector3d::kXAxis);
    across_first.PanCamera(0.3F, AcGeVector3d::kZAxis);
    KARVGLCamera up_first(control_->camera);
    up_first.PanCamera(0.3F, AcGeVector3d::kZAxis);
    up_first.PanCamera(-1.7F, AcGeVector3d::kXAxis);
    ASSERT_NE(Bits(across_first), Bits(up_first));
    control_->pendingPanX = 1.7F;
    control_->pendingPanZ = 0.3F;
    control_->OnDraw(nullptr);
    EXPECT_EQ(Bits(control_->camera), Bits(across_first));
}

TEST_F(ControlRedraw, TheQueueIsInvertedInPlaceAndEmptiedBetweenZoomAndView)
{
    control_->pendingPanX = 2.0F;
    control_->pendingPanZ = 3.0F;
    control_->pendingRotateX = 4.0F;
    control_->pendingRotateZ = 5.0F;
    int zooms = 0;
    const GlHook zoom("gluPerspective", [&](int) {
        ++zooms;
        EXPECT_THAT(Queue(), ElementsAre(-2.0F, 3.0F, 4.0F, 5.0F));
    });
    int views = 0;
    const GlHook view("gluLookAt", [&](int) {
        ++views;
        EXPECT_THAT(Queue(), ElementsAre(0.0F, 0.0F, 0.0F, 0.0F));
    });
    control_->OnDraw(nullptr);
    EXPECT_EQ(zooms, 1);
    EXPECT_EQ(views, 1);
}

TEST_F(ControlRedraw, AQueuedPanAcrossIsInverted)
{
    control_->pendingPanX = 2.0F;
    control_->OnDraw(nullptr);
    ExpectEye(-2.0, -10.0, 0.0);
    ExpectTarget(-2.0, 0.0, 0.0);
}

TEST_F(ControlRedraw, WithoutInversionAQueuedPanAcrossGoesRight)
{
    control_->invertPanX = false;
    control_->pendingPanX = 2.0F;
    control_->OnDraw(nullptr);
    ExpectEye(2.0, -10.0, 0.0);
    ExpectTarget(2.0, 0.0, 0.0);
}

TEST_F(ControlRedraw, AQueuedPanUpIsNotInverted)
{
    control_->pendingPanZ = 3.0F;
    control_->OnDraw(nullptr);
    ExpectEye(0.0, -10.0, 3.0);
    ExpectTarget(0.0, 0.0, 3.0);
}

TEST_F(ControlRedraw, TurnsComeBeforePans)
{
    control_->pendingRotateZ = 90.0F;
    control_->pendingPanX = -2.0F;
    control_->OnDraw(nullptr);
    // From +X the right is +Y. If the pan came first it would go along +X.
    ExpectEye(10.0, 2.0, 0.0);
    ExpectTarget(0.0, 2.0, 0.0);
}

TEST_F(ControlRedraw, TheViewThatIsLoadedHasTheMotion)
{
    control_->pendingRotateZ = 90.0F;
    const GlRecording gl;
    control_->OnDraw(nullptr);
    EXPECT_EQ(gl.Call("gluLookAt").text, "gluLookAt(10, 0, 0, 0, 0, 0, 0, 0, 1)");
}

TEST_F(ControlRedraw, EveryQueueIsEmptyAfterwards)
{
    control_->pendingPanX = 1.0F;
    control_->pendingPanZ = 2.0F;
    control_->pendingRotateX = 3.0F;
    control_->pendingRotateZ = 4.0F;
    control_->OnDraw(nullptr);
    EXPECT_EQ(control_->pendingPanX, 0.0F);
    EXPECT_EQ(control_->pendingPanZ, 0.0F);
    EXPECT_EQ(control_->pendingRotateX, 0.0F);
    EXPECT_EQ(control_->pendingRotateZ, 0.0F);
}

TEST_F(ControlRedraw, ASecondRedrawDoesNotMoveAgain)
{
    control_->pendingPanZ = 3.0F;
    control_->OnDraw(nullptr);
    control_->OnDraw(nullptr);
    ExpectEye(0.0, -10.0, 3.0);
}

TEST_F(ControlRedraw, AFieldOfViewBeyondItsLimitIsWrittenBack)
{
    control_->fieldOfView = 200.0F;
    control_->zoomFactor = 12.0F;
    const GlRecording gl;
    control_->OnDraw(nullptr);
    EXPECT_EQ(control_->fieldOfView, 150.0F);
    EXPECT_EQ(control_->zoomFactor, 12.0F); // the parallel zoom
    EXPECT_EQ(gl.Call("gluPerspective").text, "gluPerspective(150, 2, 0.01, 1000)");
}

TEST_F(ControlRedraw, AParallelZoomBeyondItsLimitIsWrittenBack)
{
    control_->SetToPerspective(false);
    control_->fieldOfView = 200.0F;
    control_->zoomFactor = 12.0F;
    const GlRecording gl;
    control_->OnDraw(nullptr);
    EXPECT_EQ(control_->zoomFactor, 9.0F);
    EXPECT_EQ(control_->fieldOfView, 200.0F);
    // Half the width: 9 x (1000 / 100 x 0.5) = 45, half the height 45 / 2.
    EXPECT_EQ(gl.Call("glOrtho").text, "glOrtho(-45, 45, 22.5, -22.5, -1000, 1000)");
}

TEST_F(ControlRedraw, AFaultInTheCameraIsSwallowedThereAndTheRedrawGoesOn)
{
    control_->pendingPanZ = 3.0F;
    const TraceRecording trace;
    const GlHook fault = ThrowAt("gluPerspective", 1, 42);
    const GlRecording gl;
    window_calls_.Clear();
    control_->OnDraw(nullptr);
    EXPECT_THAT(trace.Faults(), ElementsAre(testing::StartsWith(".\\KARVGLCamera.cpp:")));
    EXPECT_EQ(gl.Count("gluLookAt"), 1);
    EXPECT_EQ(control_->pendingPanZ, 0.0F);
    EXPECT_EQ(window_calls_.Count("SetFocus(3DView)"), 1);
}

TEST_F(ControlRedraw, AFaultBeforeTheCameraKeepsTheQueuedMotion)
{
    control_->pendingPanZ = 3.0F;
    const TraceRecording trace;
    const GlHook fault = ThrowAt("glLoadIdentity", 1, 42);
    control_->OnDraw(nullptr);
    EXPECT_THAT(trace.Faults(), ElementsAre(testing::StartsWith(".\\KARVOpenGLControl.cpp:")));
    EXPECT_EQ(control_->pendingPanZ, 3.0F);
    ExpectEye(0.0, -10.0, 0.0);
}

/// A control of 64 x 32 whose scene has size 6.
class ControlSize : public ControlTest
{
  protected:
    ControlSize() : control_(NewControl())
    {
        control_->OverrideExtents({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0}); // a diagonal of 5, times 1.2
    }

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    /// Sends a size that must be ignored.
    void ExpectIgnored(UINT type, int cx, int cy)
    {
        const GlRecording gl;
        const float scale = control_->panScale;
        control_->OnSize(type, cx, cy);
        EXPECT_THAT(gl.Listing(), IsEmpty());
        EXPECT_EQ(control_->panScale, scale);
        EXPECT_EQ(control_->aspectRatio, 2.0F);
    }

    /// The number of size messages that reached the default procedure.
    [[nodiscard]] std::ptrdiff_t DefaultedSizes() const
    {
        return std::ranges::count(window_calls_.DefaultedMessages(), UINT{WM_SIZE});
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

TEST_F(ControlSize, ASizeSetsViewportProjectionAndCamera)
{
    const GlRecording gl;
    control_->OnSize(SIZE_RESTORED, 90, 60);
    EXPECT_EQ(control_->aspectRatio, 1.5F);
    EXPECT_THAT(gl.Listing(),
                ElementsAre("glViewport(0, 0, 90, 60)", "glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                            "gluPerspective(40, 1.5, 0.1, 600)", "glMatrixMode(GL_MODELVIEW)",
                            "glLoadIdentity()", "glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                            "gluPerspective(40, 1.5, 0.01, 600)", "glMatrixMode(GL_MODELVIEW)",
                            "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()",
                            "gluLookAt(0, 0, 0, 1.5, 2, 0, 0, 0, 1)"));
}

TEST_F(ControlSize, TheAspectIsThatOfTheWidthAndHeightAsFloats)
{
    const GlRecording gl;
    control_->OnSize(SIZE_RESTORED, 10, 3);
    EXPECT_EQ(control_->aspectRatio, 10.0F / 3.0F);
    EXPECT_EQ(gl.Call("gluPerspective").values.at(1), static_cast<double>(10.0F / 3.0F));
    EXPECT_EQ(gl.Call("gluPerspective").values.at(2), static_cast<double>(0.1F));
}

TEST_F(ControlSize, AMaximizedWindowIsSized)
{
    control_->OnSize(SIZE_MAXIMIZED, 60, 60);
    EXPECT_EQ(control_->aspectRatio, 1.0F);
}

TEST_F(ControlSize, AMinimizedWindowChangesNothing)
{
    ExpectIgnored(SIZE_MINIMIZED, 90, 60);
}

TEST_F(ControlSize, AZeroWidthChangesNothing)
{
    ExpectIgnored(SIZE_RESTORED, 0, 60);
}

TEST_F(ControlSize, AZeroHeightChangesNothing)
{
    ExpectIgnored(SIZE_RESTORED, 90, 0);
}

TEST_F(ControlSize, ANegativeWidthChangesNothing)
{
    ExpectIgnored(SIZE_RESTORED, -90, 60);
}

TEST_F(ControlSize, ANegativeHeightChangesNothing)
{
    ExpectIgnored(SIZE_RESTORED, 90, -60);
}

TEST_F(ControlSize, AWindowOfOnePixelIsSized)
{
    const GlRecording gl;
    control_->OnSize(SIZE_RESTORED, 1, 1);
    EXPECT_EQ(gl.Call("glViewport").text, "glViewport(0, 0, 1, 1)");
    EXPECT_EQ(control_->aspectRatio, 1.0F);
}

TEST_F(ControlSize, AnIgnoredSizeLeavesThePanScaleUnset)
{
    control_->panScale = -1.0F;
    control_->OnSize(SIZE_MINIMIZED, 90, 60);
    EXPECT_EQ(control_->panScale, -1.0F);
}

TEST_F(ControlSize, TheFirstSizeSetsThePanScaleToOneWhateverTheWidth)
{
    control_->panScale = -1.0F;
    control_->OnSize(SIZE_RESTORED, 999, 60);
    EXPECT_EQ(control_->panScale, 1.0F);
}

TEST_F(ControlSize, APanScaleBelowZeroByLessThanTheToleranceCountsAsSet)
{
    control_->panScale = -0.5e-20F;
    control_->OnSize(SIZE_RESTORED, 128, 60);
    EXPECT_EQ(control_->panScale, 0.5F);
    control_->panScale = -2e-20F;
    control_->OnSize(SIZE_RESTORED, 128, 60);
    EXPECT_EQ(control_->panScale, 1.0F);
}

TEST_F(ControlSize, ThePanScaleChangesAfterTheRedraw)
{
    int views = 0;
    const GlHook view("gluLookAt", [&](int) {
        ++views;
        EXPECT_EQ(control_->panScale, 1.0F);
        EXPECT_EQ(control_->aspectRatio, 128.0F / 60.0F);
    });
    control_->OnSize(SIZE_RESTORED, 128, 60);
    EXPECT_EQ(views, 1);
    EXPECT_EQ(control_->panScale, 0.5F);
}

TEST_F(ControlSize, TheDefaultHandlingComesFirst)
{
    window_calls_.Clear();
    std::ptrdiff_t handled = -1;
    const GlHook viewport("glViewport", [&](int) { handled = DefaultedSizes(); });
    ::SendMessageW(control_->m_hWnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(90, 60));
    EXPECT_EQ(handled, 1);
    EXPECT_EQ(DefaultedSizes(), 1);
}

TEST_F(ControlSize, AnIgnoredSizeGetsTheDefaultHandlingToo)
{
    window_calls_.Clear();
    ::SendMessageW(control_->m_hWnd, WM_SIZE, SIZE_MINIMIZED, MAKELPARAM(0, 0));
    EXPECT_EQ(DefaultedSizes(), 1);
}

TEST_F(ControlSize, TheSizeAtCreationIsTheFirstSize)
{
    EXPECT_EQ(control_->panScale, 1.0F);
}

TEST_F(ControlSize, LaterSizesSetTheRatioOfTheWidths)
{
    control_->OnSize(SIZE_RESTORED, 96, 60);
    EXPECT_EQ(control_->panScale, 64.0F / 96.0F);
    control_->OnSize(SIZE_RESTORED, 16, 60);
    EXPECT_EQ(control_->panScale, 4.0F);
}

TEST_F(ControlSize, ThePanScaleUsesTheWidthAtCreationNotThePosition)
{
    KARVOpenGLControl control;
    control.CreateCtrl(CRect(100, 50, 140, 80), &host_, false);
    control.OnSize(SIZE_RESTORED, 80, 60);
    EXPECT_EQ(control.panScale, 0.5F); // 40 / 80
}

TEST_F(ControlSize, APanScaleOfZeroCountsAsSet)
{
    control_->panScale = 0.0F;
    control_->OnSize(SIZE_RESTORED, 128, 60);
    EXPECT_EQ(control_->panScale, 0.5F);
}

TEST_F(ControlSize, AMovedWindowIsSizedThroughItsMessage)
{
    const GlRecording gl;
    control_->MoveWindow(CRect(10, 10, 138, 74));
    EXPECT_EQ(gl.Call("glViewport").text, "glViewport(0, 0, 128, 64)");
    EXPECT_EQ(control_->panScale, 0.5F); // 64 / 128
    EXPECT_EQ(control_->aspectRatio, 2.0F);
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_THAT(viewport, ElementsAre(0, 0, 128, 64));
}

TEST_F(ControlSize, AFrameAfterAResizeHasTheNewSize)
{
    control_->SetBgColor(0, 0, 255);
    control_->MoveWindow(CRect(0, 0, 100, 80));
    EXPECT_TRUE(IsNear(Frame(*control_).At(99, 79), {0, 0, 255}));
}

TEST_F(ControlSize, AResizeToNothingKeepsTheViewport)
{
    const GlRecording gl;
    control_->MoveWindow(CRect(0, 0, 0, 0));
    EXPECT_EQ(gl.Count("glViewport"), 0);
    EXPECT_EQ(control_->aspectRatio, 2.0F);
}

TEST_F(ControlSize, QueuedMotionIsAppliedByASize)
{
    control_->camera.SetPosition({1.5, -8.0, 0.0});
    control_->pendingPanZ = 3.0F;
    control_->OnSize(SIZE_RESTORED, 90, 60);
    EXPECT_NEAR(control_->camera.target.z, 3.0, kRounding);
    EXPECT_EQ(control_->pendingPanZ, 0.0F);
}

TEST_F(ControlSize, AParallelProjectionIsSizedToo)
{
    control_->SetToPerspective(false);
    const GlRecording gl;
    control_->OnSize(SIZE_RESTORED, 90, 60);
    // Half the width is half the scene size, 3; half the height 3 / 1.5.
    EXPECT_EQ(gl.Call("glOrtho", 0).text, "glOrtho(-3, 3, 2, -2, -600, 600)");
    EXPECT_EQ(gl.Call("glOrtho", 1).text, "glOrtho(-3, 3, 2, -2, -600, 600)"); // at zoom 1
}

} // namespace
