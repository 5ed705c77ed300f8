// The fixture of the mouse tests: a control with a scene, checks of its motion, and posted messages.
#pragma once

#include "platform/winsys/opengl.h"
#include "tests/control/shared_constants.h"
#include "tests/support/control_test.h"

#include <array>
#include <cmath>
#include <memory>
#include <numbers>

namespace karv_test
{

inline double Radians(double degrees)
{
    return degrees * std::numbers::pi / 180.0;
}

/// A control with a scene of size 6 about (1.5, 2, 0), seen from the front. The pointer was last at (0, 0).
class ControlMouse : public ControlTest
{
  protected:
    ControlMouse() : control_(NewControl())
    {
        control_->OverrideExtents({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0});
        control_->CameraViewFront();
        control_->OnDraw(nullptr);
        window_calls_.Clear();
    }

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    void Move(UINT keys, int x, int y) { control_->OnMouseMove(keys, CPoint(x, y)); }
    void Post(UINT message, WPARAM wparam, int x, int y) const
    {
        ::PostMessageW(control_->m_hWnd, message, wparam, MAKELPARAM(x, y));
    }
    /// Dispatches the mouse messages in the queue.
    static void PumpMouse()
    {
        MSG message{};
        while (::PeekMessageW(&message, nullptr, WM_MOUSEMOVE, WM_MOUSEWHEEL, PM_REMOVE))
            ::DispatchMessageW(&message);
    }
    static WPARAM Notches(int count) { return MAKEWPARAM(0, count * 120); }

    void ExpectEyeFromTarget(double x, double y, double z) const
    {
        const AcGeVector3d offset = control_->camera.position - control_->camera.target;
        EXPECT_NEAR(offset.x, x, kRounding);
        EXPECT_NEAR(offset.y, y, kRounding);
        EXPECT_NEAR(offset.z, z, kRounding);
    }

    [[nodiscard]] bool HasTurned() const
    {
        const AcGeVector3d offset = control_->camera.position - control_->camera.target;
        return std::fabs(offset.x) > kRounding || std::fabs(offset.z) > kRounding;
    }
    [[nodiscard]] bool HasPanned() const
    {
        return control_->camera.target.distanceTo({1.5, 2.0, 0.0}) > kRounding;
    }
    [[nodiscard]] bool HasZoomed() const { return control_->zoomFactor != 1.0F; }

    void ExpectOnlyTurned() const
    {
        EXPECT_TRUE(HasTurned());
        EXPECT_FALSE(HasPanned());
        EXPECT_FALSE(HasZoomed());
    }
    void ExpectOnlyPanned() const
    {
        EXPECT_FALSE(HasTurned());
        EXPECT_TRUE(HasPanned());
        EXPECT_FALSE(HasZoomed());
    }
    void ExpectOnlyZoomed() const
    {
        EXPECT_FALSE(HasTurned());
        EXPECT_FALSE(HasPanned());
        EXPECT_TRUE(HasZoomed());
    }
    void ExpectUnmoved() const
    {
        EXPECT_FALSE(HasTurned());
        EXPECT_FALSE(HasPanned());
        EXPECT_FALSE(HasZoomed());
    }

    /// The window position of this point under the matrices now loaded, in pixels from the lower left.
    static std::array<double, 3> Projected(const AcGePoint3d& point)
    {
        std::array<double, 16> model{};
        std::array<double, 16> projection{};
        std::array<GLint, 4> viewport{};
        glGetDoublev(GL_MODELVIEW_MATRIX, model.data());
        glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
        glGetIntegerv(GL_VIEWPORT, viewport.data());
        std::array<double, 3> at{};
        gluProject(point.x, point.y, point.z, model.data(), projection.data(), viewport.data(), at.data(),
                   &at[1], &at[2]);
        return at;
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

} // namespace karv_test
