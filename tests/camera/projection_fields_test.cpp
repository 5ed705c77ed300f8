// The state that projections leave in the camera and in the matrices.
#include "tests/camera/camera_checks.h"

#include "platform/winsys/opengl.h"
#include "tests/support/gl_test_window.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>

using karv_test::kDegreesPerZoom;
using karv_test::kInfinityf;
using karv_test::kNaNf;
using karv_test::ParallelCamera;
using karv_test::SameCamera;

namespace
{

float ParallelZoom(float factor)
{
    KARVGLCamera camera = ParallelCamera();
    float fov = 40.0F;
    camera.ZoomAt(factor, fov);
    return factor;
}

} // namespace

TEST(CameraRefresh, PerspectiveKeepsNearPlaneAndStoresTheRest)
{
    KARVGLCamera camera;
    camera.RefreshCameraView(35.0, 2.5, 2.0F);
    EXPECT_EQ(camera.nearPlane, 0.01F);
    EXPECT_EQ(camera.aspect, 2.0F);
    EXPECT_EQ(camera.fieldOfView, 35.0);
    EXPECT_EQ(camera.farPlane, 250.0F);
    EXPECT_EQ(camera.orthoZoom, 1.0);
    EXPECT_TRUE(camera.perspectiveOn);
}

TEST(CameraPerspective, ZoomIsTakenIn64Bits)
{
    KARVGLCamera camera;
    camera.fieldOfView = 0.1;
    camera.SetPerspectiveOn(false);
    EXPECT_EQ(camera.orthoZoom, 0.1 / kDegreesPerZoom);
    ASSERT_NE(camera.orthoZoom, static_cast<double>(0.1F / 16.66F));
    camera.orthoZoom = 0.1;
    camera.SetPerspectiveOn(true);
    EXPECT_EQ(camera.fieldOfView, 0.1 * kDegreesPerZoom);
}

TEST(CameraPerspective, RoundTripKeepsTheFieldOfView)
{
    KARVGLCamera camera;
    camera.SetPerspectiveOn(false);
    camera.SetPerspectiveOn(true);
    EXPECT_NEAR(camera.fieldOfView, 40.0, 1e-12);
    EXPECT_TRUE(camera.perspectiveOn);
}

TEST(CameraZoom, CamerasOwnFieldsAreNotChanged)
{
    KARVGLCamera camera;
    float factor = 20.0F;
    float fov = 200.0F;
    camera.ZoomAt(factor, fov);
    EXPECT_TRUE(SameCamera(camera, KARVGLCamera()));

    KARVGLCamera parallel = ParallelCamera();
    parallel.ZoomAt(factor, fov);
    EXPECT_TRUE(SameCamera(parallel, ParallelCamera()));
}

TEST(CameraZoom, ParallelFactorIsLimitedToAHundredthAndNine)
{
    EXPECT_EQ(ParallelZoom(12.0F), 9.0F);
    EXPECT_EQ(ParallelZoom(9.0F), 9.0F);
    EXPECT_EQ(ParallelZoom(std::nextafter(9.0F, 10.0F)), 9.0F);
    EXPECT_EQ(ParallelZoom(kInfinityf), 9.0F);
    EXPECT_EQ(ParallelZoom(0.0F), 0.01F);
    EXPECT_EQ(ParallelZoom(0.01F), 0.01F);
    EXPECT_EQ(ParallelZoom(-3.0F), 0.01F);
    EXPECT_EQ(ParallelZoom(-kInfinityf), 0.01F);
}

TEST(CameraZoom, ParallelFactorJustInsideTheBoundsPasses)
{
    const float above_low = std::nextafter(0.01F, 1.0F);
    const float below_high = std::nextafter(9.0F, 0.0F);
    EXPECT_EQ(ParallelZoom(above_low), above_low);
    EXPECT_EQ(ParallelZoom(below_high), below_high);
}

TEST(CameraZoom, NaNFactorPasses)
{
    EXPECT_TRUE(std::isnan(ParallelZoom(kNaNf)));
}

TEST(CameraZoom, OnlyTheActiveKindIsLimited)
{
    float factor = 100.0F;
    float fov = 500.0F;
    KARVGLCamera perspective;
    perspective.ZoomAt(factor, fov);
    EXPECT_EQ(factor, 100.0F);
    EXPECT_EQ(fov, 150.0F);

    factor = 100.0F;
    fov = 500.0F;
    KARVGLCamera parallel = ParallelCamera();
    parallel.ZoomAt(factor, fov);
    EXPECT_EQ(factor, 9.0F);
    EXPECT_EQ(fov, 500.0F);
}

TEST(CameraZoom, OneVariableMayServeForBoth)
{
    KARVGLCamera camera;
    float both = 500.0F;
    camera.ZoomAt(both, both);
    EXPECT_EQ(both, 150.0F);
}

namespace
{

/// With a real context: the matrices that the projections load.
class CameraMatrices : public karv_test::GlTest
{
  protected:
    static std::array<double, 16> Matrix(GLenum name)
    {
        std::array<double, 16> matrix{};
        glGetDoublev(name, matrix.data());
        return matrix;
    }

    static int Depth(GLenum name)
    {
        GLint depth = 0;
        glGetIntegerv(name, &depth);
        return depth;
    }

    static GLenum Mode()
    {
        GLint mode = 0;
        glGetIntegerv(GL_MATRIX_MODE, &mode);
        return static_cast<GLenum>(mode);
    }
};

} // namespace

TEST_F(CameraMatrices, ParallelProjectionIsUpright)
{
    KARVGLCamera camera = ParallelCamera();
    camera.RefreshCameraView(40.0, 10.0, 2.0F);
    const std::array<double, 16> matrix = Matrix(GL_PROJECTION_MATRIX);
    // Column-major: x is scaled by 2 / (5 - -5), y by 2 / (2.5 - -2.5) upwards, z by -2 / (1000 - -1000).
    EXPECT_NEAR(matrix[0], 0.2, 1e-6);
    EXPECT_NEAR(matrix[5], 0.4, 1e-6);
    EXPECT_NEAR(matrix[10], -0.001, 1e-9);
    EXPECT_EQ(Mode(), static_cast<GLenum>(GL_MODELVIEW));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(CameraMatrices, PerspectiveProjectionHasTheFieldOfView)
{
    KARVGLCamera camera;
    camera.aspect = 2.0F;
    float factor = 1.0F;
    float fov = 90.0F;
    camera.ZoomAt(factor, fov);
    // The cotangent of 45 degrees is 1.
    const std::array<double, 16> matrix = Matrix(GL_PROJECTION_MATRIX);
    EXPECT_NEAR(matrix[0], 0.5, 1e-6);
    EXPECT_NEAR(matrix[5], 1.0, 1e-6);
    EXPECT_EQ(matrix[11], -1.0);
    EXPECT_EQ(Mode(), static_cast<GLenum>(GL_MODELVIEW));
}

TEST_F(CameraMatrices, FrontViewPutsTheTargetOneSceneDistanceAhead)
{
    KARVGLCamera camera;
    camera.target = {1.0, 2.0, 3.0};
    camera.SetViewFront();
    const std::array<double, 16> m = Matrix(GL_MODELVIEW_MATRIX);
    // The target in eye space: straight ahead is -z.
    const auto eye = [&](std::size_t row) {
        return m.at(row) * 1.0 + m.at(4 + row) * 2.0 + m.at(8 + row) * 3.0 + m.at(12 + row);
    };
    EXPECT_NEAR(eye(0), 0.0, 1e-5);
    EXPECT_NEAR(eye(1), 0.0, 1e-5);
    EXPECT_NEAR(eye(2), -10.0, 1e-5);
    // World Z is up on the screen, world X to the right.
    EXPECT_NEAR(m[0], 1.0, 1e-6);
    EXPECT_NEAR(m[9], 1.0, 1e-6);
}

TEST_F(CameraMatrices, SwitchingBackAndForthKeepsTheStackLevel)
{
    KARVGLCamera camera;
    const int depth = Depth(GL_PROJECTION_STACK_DEPTH);
    camera.SetPerspectiveOn(false);
    EXPECT_EQ(Depth(GL_PROJECTION_STACK_DEPTH), depth + 1);
    camera.SetPerspectiveOn(false);
    EXPECT_EQ(Depth(GL_PROJECTION_STACK_DEPTH), depth + 1);
    camera.SetPerspectiveOn(true);
    EXPECT_EQ(Depth(GL_PROJECTION_STACK_DEPTH), depth);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(CameraMatrices, HundredSwitchesKeepTheStackLevel)
{
    KARVGLCamera camera;
    const int depth = Depth(GL_PROJECTION_STACK_DEPTH);
    for (int i = 0; i < 100; ++i) {
        camera.SetPerspectiveOn(false);
        camera.SetPerspectiveOn(true);
    }
    EXPECT_EQ(Depth(GL_PROJECTION_STACK_DEPTH), depth);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(CameraMatrices, SwitchingOnTwiceUnderflowsTheStackHarmlessly)
{
    KARVGLCamera camera;
    camera.SetPerspectiveOn(true);
    EXPECT_EQ(Depth(GL_PROJECTION_STACK_DEPTH), 1);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_STACK_UNDERFLOW));
    float factor = 1.0F;
    float fov = 40.0F;
    camera.ZoomAt(factor, fov);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(CameraMatrices, DegenerateLookAtRaisesNoError)
{
    KARVGLCamera camera;
    camera.UpdateCamera();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
