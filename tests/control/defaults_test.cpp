// The state of a control before it has a window.
#include "tests/support/control_test.h"

#include "platform/host/gs/manager.h"

#include <functional>
#include <type_traits>
#include <vector>

using namespace karv_test;
using testing::ElementsAre;
using testing::Pair;

namespace
{

using ControlDefaults = ControlTest;

TEST_F(ControlDefaults, NoFacesAndNoEntities)
{
    const KARVOpenGLControl control;
    EXPECT_EQ(control.faceCount, 0);
    EXPECT_TRUE(control.entities.empty());
}

TEST_F(ControlDefaults, NoMotionIsQueued)
{
    const KARVOpenGLControl control;
    EXPECT_EQ(control.pendingPanX, 0.0F);
    EXPECT_EQ(control.pendingPanZ, 0.0F);
    EXPECT_EQ(control.pendingRotateX, 0.0F);
    EXPECT_EQ(control.pendingRotateZ, 0.0F);
    EXPECT_TRUE(control.invertPanX);
}

TEST_F(ControlDefaults, TheZoomIsOneAndFortyDegrees)
{
    const KARVOpenGLControl control;
    EXPECT_EQ(control.zoomFactor, 1.0F);
    EXPECT_EQ(control.fieldOfView, 40.0F);
}

TEST_F(ControlDefaults, ThePanScaleSaysNeverSized)
{
    const KARVOpenGLControl control;
    EXPECT_EQ(control.panScale, -1.0F);
    EXPECT_EQ(control.aspectRatio, 1.0F);
}

TEST_F(ControlDefaults, TheSceneIsUnseededAndEmpty)
{
    const KARVOpenGLControl control;
    EXPECT_FALSE(control.extentsSeeded);
    EXPECT_EQ(control.extentsMax, KARVGLVertex());
    EXPECT_EQ(control.extentsMin, KARVGLVertex());
    EXPECT_EQ(control.centroid, KARVGLVertex());
    EXPECT_EQ(control.sceneSize, 0.0F);
    EXPECT_TRUE(control.computeExtentsOnAppend);
}

TEST_F(ControlDefaults, TheCameraIsFreshAndNotPlaced)
{
    const KARVOpenGLControl control;
    EXPECT_FALSE(control.cameraSetByCaller);
    EXPECT_EQ(control.camera.position.distanceTo(AcGePoint3d::kOrigin), 0.0);
    EXPECT_EQ(control.camera.target.distanceTo(AcGePoint3d::kOrigin), 0.0);
    EXPECT_EQ(control.camera.farPlane, 1000.0F);
    EXPECT_TRUE(control.camera.perspectiveOn);
}

TEST_F(ControlDefaults, ADragRotatesAndNavigationIsAllowed)
{
    const KARVOpenGLControl control;
    EXPECT_TRUE(control.mouseRotates);
    EXPECT_FALSE(control.mousePans);
    EXPECT_FALSE(control.mouseZooms);
    EXPECT_TRUE(control.userControlEnabled);
}

TEST_F(ControlDefaults, TheMetricsFactorIsOne)
{
    const KARVOpenGLControl control;
    EXPECT_EQ(control.metricsFactor, 1.0);
}

TEST_F(ControlDefaults, TheDebugCubeStandsAtZeroDegrees)
{
    const KARVOpenGLControl control;
    EXPECT_EQ(control.debugCubeAngle, 0);
}

TEST_F(ControlDefaults, FacesAreDrawnMultisampledAndNoFrameWasMeasured)
{
    const KARVOpenGLControl control;
    EXPECT_EQ(control.renderMode, KARVGLRenderModeFaces);
    EXPECT_TRUE(control.multisampleOn);
    EXPECT_EQ(control.framesPerSecond, 1000);
}

TEST_F(ControlDefaults, TheTimerIsNotStarted)
{
    const KARVOpenGLControl control;
    EXPECT_FALSE(control.renderStarted);
    EXPECT_EQ(control.timerId, 0U);
}

TEST_F(ControlDefaults, TheElevenCategoriesAreShown)
{
    const KARVOpenGLControl control;
    EXPECT_THAT(control.disabledTypes,
                ElementsAre(Pair(TypeOf(0), false), Pair(TypeOf(1), false), Pair(TypeOf(2), false),
                            Pair(TypeOf(3), false), Pair(TypeOf(4), false), Pair(TypeOf(5), false),
                            Pair(TypeOf(6), false), Pair(TypeOf(7), false), Pair(TypeOf(8), false),
                            Pair(TypeOf(9), false), Pair(TypeOf(10), false)));
}

TEST_F(ControlDefaults, ThereIsNoWindowAndNoGlCall)
{
    const GlRecording gl;
    const KARVOpenGLControl control;
    EXPECT_EQ(control.m_hWnd, nullptr);
    EXPECT_TRUE(gl.Calls().empty());
}

TEST_F(ControlDefaults, TheBackgroundIsTheHostsInFractionsOfOne)
{
    SetHostBackgroundColor({255, 128, 1});
    const KARVOpenGLControl control;
    constexpr double kPerByte = 0.00392156862745098;
    EXPECT_EQ(control.backgroundColor[0], static_cast<float>(255.0 * kPerByte));
    EXPECT_EQ(control.backgroundColor[1], static_cast<float>(128.0 * kPerByte));
    EXPECT_EQ(control.backgroundColor[2], static_cast<float>(1.0 * kPerByte));
}

TEST_F(ControlDefaults, EveryByteOfTheBackgroundIsScaledInDoubleAndRoundedOnce)
{
    constexpr double kPerByte = 0.00392156862745098;
    ASSERT_NE(static_cast<float>(3.0 * kPerByte), 3.0F * static_cast<float>(kPerByte));
    for (int byte = 0; byte < 256; ++byte) {
        const auto channel = static_cast<unsigned char>(byte);
        SetHostBackgroundColor({channel, channel, channel});
        const KARVOpenGLControl control;
        EXPECT_THAT(control.backgroundColor, testing::Each(static_cast<float>(byte * kPerByte))) << byte;
    }
}

TEST_F(ControlDefaults, ABlackHostGivesABlackBackground)
{
    SetHostBackgroundColor({0, 0, 0});
    const KARVOpenGLControl control;
    EXPECT_THAT(control.backgroundColor, ElementsAre(0.0F, 0.0F, 0.0F));
}

TEST_F(ControlDefaults, ALaterChangeOfTheHostsBackgroundDoesNotReachTheControl)
{
    SetHostBackgroundColor({255, 255, 255});
    const KARVOpenGLControl control;
    SetHostBackgroundColor({0, 0, 0});
    EXPECT_THAT(control.backgroundColor, ElementsAre(1.0F, 1.0F, 1.0F));
}

TEST_F(ControlDefaults, TheConstructorIsTraced)
{
    const TraceRecording trace;
    const KARVOpenGLControl control;
    EXPECT_THAT(trace.OutermostCalls(), ElementsAre("KARVOpenGLControl::KARVOpenGLControl"));
}

/// Members are destroyed in reverse order: the switches, then the entities, then the camera.
TEST_F(ControlDefaults, TheFieldsStandInTheirOrder)
{
    const KARVOpenGLControl c;
    const std::vector<const void*> fields = {&c.faceCount,
                                             &c.lastMousePoint.x,
                                             &c.lastMousePoint.y,
                                             &c.pendingPanX,
                                             &c.pendingPanZ,
                                             &c.fieldOfView,
                                             &c.zoomFactor,
                                             &c.pendingRotateX,
                                             &c.pendingRotateZ,
                                             &c.panScale,
                                             &c.camera,
                                             &c.extentsSeeded,
                                             &c.extentsMax,
                                             &c.extentsMin,
                                             &c.centroid,
                                             &c.sceneSize,
                                             &c.cameraSetByCaller,
                                             &c.mouseRotates,
                                             &c.mousePans,
                                             &c.mouseZooms,
                                             &c.metricsFactor,
                                             &c.computeExtentsOnAppend,
                                             &c.debugCubeAngle,
                                             &c.parentWnd,
                                             &c.hDC,
                                             &c.hRC,
                                             &c.pixelFormat,
                                             &c.createRect,
                                             &c.initialRect,
                                             &c.renderStarted,
                                             &c.backgroundColor,
                                             &c.framesPerSecond,
                                             &c.invertPanX,
                                             &c.aspectRatio,
                                             &c.renderMode,
                                             &c.userControlEnabled,
                                             &c.multisampleOn,
                                             &c.timerId,
                                             &c.entities,
                                             &c.disabledTypes};
    for (std::size_t i = 1; i < fields.size(); ++i)
        EXPECT_TRUE(std::less<>()(fields[i - 1], fields[i])) << i;
}

TEST_F(ControlDefaults, OfTheBasesVirtualOperationsOnlyTheMessageMapIsReplaced)
{
    // A pointer to an inherited member has the class that declares it as part of its type.
    using Control = KARVOpenGLControl;
    EXPECT_TRUE((std::is_same_v<decltype(&Control::WindowProc), decltype(&CWnd::WindowProc)>));
    EXPECT_TRUE((std::is_same_v<decltype(&Control::DefWindowProc), decltype(&CWnd::DefWindowProc)>));
    EXPECT_TRUE((std::is_same_v<decltype(&Control::PostNcDestroy), decltype(&CWnd::PostNcDestroy)>));
    EXPECT_TRUE((std::is_same_v<decltype(&Control::DestroyWindow), decltype(&CWnd::DestroyWindow)>));
    EXPECT_FALSE((std::is_same_v<decltype(&Control::GetMessageMap), decltype(&CWnd::GetMessageMap)>));
    EXPECT_TRUE(std::has_virtual_destructor_v<Control>);
}

} // namespace
