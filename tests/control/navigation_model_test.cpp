// Navigation compared with an independent model: random sequences of moves, wheel turns, restrictions, views,
// projections and boxes go to the control and to the model, and all fields must agree after every step.
#include "tests/support/control_test.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

using namespace karv_test;

namespace
{

using Vec = std::array<double, 3>;

double Dot(const Vec& a, const Vec& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vec Cross(const Vec& a, const Vec& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vec Sum(const Vec& a, const Vec& b, double factor = 1.0)
{
    return {a[0] + factor * b[0], a[1] + factor * b[1], a[2] + factor * b[2]};
}

double Length(const Vec& a)
{
    return std::sqrt(Dot(a, a));
}

/// Vectors no longer than the host's tolerance are not normalized.
Vec Unit(const Vec& a)
{
    const double length = Length(a);
    return length <= 1e-10 ? a : Vec{a[0] / length, a[1] / length, a[2] / length};
}

/// `v` turned about the unit vector `k` (Rodrigues).
Vec Turned(const Vec& v, const Vec& k, double angle)
{
    const double c = std::cos(angle);
    const Vec turned = Sum(Vec{v[0] * c, v[1] * c, v[2] * c}, Cross(k, v), std::sin(angle));
    return Sum(turned, k, Dot(k, v) * (1.0 - c));
}

enum class Left { Rotate, Pan, Zoom };

/// The independent model. It uses polar coordinates where the control uses matrices.
struct Model {
    Vec eye{};
    Vec target{};
    std::array<Vec, 3> axes{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    float far_plane = 1000.0F;
    float scene_size = 0.0F;
    bool is_perspective = true;
    float fov = 40.0F;
    float zoom = 1.0F;
    float last_x = 0.0F;
    float last_y = 0.0F;
    Left left = Left::Rotate;
    bool is_user_controlled = true;
    bool is_placed = false;
    bool is_at_limit = false; ///< a tilt ends within rounding of its limit: either outcome is right

    void Turn(const Vec& axis, double angle)
    {
        const double length = Length(axis);
        if (length == 0.0)
            return;
        const Vec k{axis[0] / length, axis[1] / length, axis[2] / length};
        eye = Sum(target, Turned(Sum(eye, target, -1.0), k, angle));
        for (Vec& own : axes)
            own = Turned(own, k, angle);
    }

    [[nodiscard]] Vec Base() const
    {
        const Vec view = Sum(target, eye, -1.0);
        const Vec across{view[1], -view[0], 0.0};
        // A line of sight of no length counts as vertical.
        const bool is_vertical = Length(view) <= 1e-10 || Length(across) <= 1e-10 * Length(view);
        return is_vertical ? Vec{1.0, 0.0, 0.0} : across;
    }

    void Tilt(float degrees)
    {
        if (degrees == 0.0F)
            return;
        const double r = static_cast<double>(degrees) * std::numbers::pi / 180.0;
        const Vec view = Sum(target, eye, -1.0);
        const double reached = std::atan2(std::hypot(view[0], view[1]), view[2]) + r;
        const double low = std::numbers::pi / 180.0;
        const double high = 179.0 * low;
        if (std::fabs(std::fabs(r) - std::numbers::pi / 2.0) > 1e-10) {
            is_at_limit = std::fabs(reached - low) < 1e-8 || std::fabs(reached - high) < 1e-8;
            if (reached < low || reached > high)
                return;
        }
        const Vec base = Base();
        Turn({-base[0], -base[1], -base[2]}, r);
    }

    void Orbit(float degrees)
    {
        if (degrees != 0.0F)
            Turn({0.0, 0.0, 1.0}, static_cast<double>(degrees) * std::numbers::pi / 180.0);
    }

    void Pan(float x, float z)
    {
        const Vec right = Unit(Base());
        eye = Sum(eye, right, static_cast<double>(x));
        target = Sum(target, right, static_cast<double>(x));
        const Vec view = Sum(target, eye, -1.0);
        const Vec down = Unit(Cross(view, Base()));
        eye = Sum(eye, down, -static_cast<double>(z));
        target = Sum(target, down, -static_cast<double>(z));
    }

    void Redraw(float tilt, float orbit, float pan_x, float pan_z)
    {
        Tilt(tilt);
        Orbit(orbit);
        Pan(-pan_x, pan_z);
        if (is_perspective)
            fov = std::clamp(fov, 0.01F, 150.0F);
        else
            zoom = std::clamp(zoom, 0.01F, 9.0F);
    }

    void Zoom(int d)
    {
        const float hundredths = static_cast<float>(d) * 0.01F;
        const float factor = hundredths + 1.0F;
        fov *= factor;
        zoom *= factor;
    }

    void Move(unsigned keys, int x, int y)
    {
        if (!is_user_controlled)
            return;
        const int dx = static_cast<int>(static_cast<float>(x) - last_x);
        const int dy = static_cast<int>(static_cast<float>(y) - last_y);
        last_x = static_cast<float>(x);
        last_y = static_cast<float>(y);
        const bool is_left = (keys & 0x0001U) != 0;
        const bool is_middle = !is_left && (keys & 0x0010U) != 0;
        const bool is_right = !is_left && !is_middle && (keys & 0x0002U) != 0;
        float tilt = 0.0F;
        float orbit = 0.0F;
        double k = 0.0;
        if (is_left && left == Left::Rotate) {
            tilt = std::abs(dy) > 720 ? 0.0F : static_cast<float>(dy) / 2.0F;
            orbit = std::abs(dx) > 720 ? 0.0F : static_cast<float>(-dx) / 2.0F;
        }
        if (is_middle || (is_left && left == Left::Pan)) {
            const float per_size = scene_size / 4.45F;
            k = static_cast<double>(0.01F) * static_cast<double>(per_size) * static_cast<double>(zoom);
        }
        if (is_right || (is_left && left == Left::Zoom))
            Zoom(dy);
        Redraw(tilt, orbit, static_cast<float>(dx * k), static_cast<float>(dy * k));
    }

    void Box(const Vec& low, const Vec& high)
    {
        const auto length = static_cast<float>(Length(Sum(high, low, -1.0)));
        scene_size = static_cast<float>(static_cast<double>(length) * 1.2);
        far_plane = static_cast<float>(static_cast<double>(scene_size) * 100.0);
        for (std::size_t i = 0; i < 3 && !is_placed; ++i)
            target[i] =
                static_cast<double>((static_cast<float>(high[i]) + static_cast<float>(low[i])) * 0.5F);
    }

    void View(float orbit, float tilt)
    {
        const float distance = far_plane / 100.0F;
        eye = target;
        eye[1] -= static_cast<double>(distance);
        axes = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
        Orbit(orbit);
        Tilt(tilt);
    }
};

struct View {
    void (KARVOpenGLControl::*command)();
    float orbit;
    float tilt;
};

constexpr std::array<View, 10> kViews{{{&KARVOpenGLControl::CameraViewFront, 0.0F, 0.0F},
                                       {&KARVOpenGLControl::CameraViewBack, 180.0F, 0.0F},
                                       {&KARVOpenGLControl::CameraViewLeft, -90.0F, 0.0F},
                                       {&KARVOpenGLControl::CameraViewRight, 90.0F, 0.0F},
                                       {&KARVOpenGLControl::CameraViewTop, 0.0F, 90.0F},
                                       {&KARVOpenGLControl::CameraViewBottom, 0.0F, -90.0F},
                                       {&KARVOpenGLControl::CameraViewSE, 45.0F, 35.264F},
                                       {&KARVOpenGLControl::CameraViewSW, 315.0F, 35.264F},
                                       {&KARVOpenGLControl::CameraViewNE, 135.0F, 35.264F},
                                       {&KARVOpenGLControl::CameraViewNW, 225.0F, 35.264F}}};

class NavigationModel : public ControlTest, public testing::WithParamInterface<unsigned>
{
  protected:
    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

    /// Mostly small, and the values at which the result changes.
    int Distance()
    {
        constexpr std::array<int, 12> kEdges{0, 1, -1, 180, -180, 720, -720, 721, -721, -100, 178, -178};
        return Pick(0, 3) == 0 ? kEdges.at(static_cast<std::size_t>(Pick(0, 11))) : Pick(-40, 40);
    }

    void MoveBoth()
    {
        constexpr std::array<unsigned, 8> kKeys{0x01, 0x01, 0x10, 0x02, 0x00, 0x13, 0x12, 0x0D};
        const unsigned keys = kKeys.at(static_cast<std::size_t>(Pick(0, 7)));
        const int x = static_cast<int>(model_.last_x) + Distance();
        const int y = static_cast<int>(model_.last_y) + Distance();
        control_->OnMouseMove(keys, CPoint(x, y));
        model_.Move(keys, x, y);
    }

    void WheelBoth()
    {
        constexpr std::array<int, 8> kDeltas{120, -120, 5, -9, 10, 240, -240, 999};
        const int delta = kDeltas.at(static_cast<std::size_t>(Pick(0, 7)));
        control_->OnMouseWheel(0, static_cast<short>(delta), CPoint(0, 0));
        model_.Zoom(-(delta / 10));
        model_.Redraw(0.0F, 0.0F, 0.0F, 0.0F);
    }

    void RestrictBoth()
    {
        model_.left = static_cast<Left>(Pick(0, 2));
        if (model_.left == Left::Rotate)
            control_->RestrictToRotate();
        else if (model_.left == Left::Pan)
            control_->RestrictToPan();
        else
            control_->RestrictToZoom();
    }

    void ViewBoth()
    {
        const View& view = kViews.at(static_cast<std::size_t>(Pick(0, 9)));
        ((*control_).*view.command)();
        model_.View(view.orbit, view.tilt);
    }

    void BoxBoth()
    {
        const double side = Pick(1, 64) / 8.0;
        const Vec low{Pick(-4, 4) / 2.0, Pick(-4, 4) / 2.0, Pick(-4, 4) / 2.0};
        const Vec high = Sum(low, {side, side, side / 2.0});
        control_->OverrideExtents({low[0], low[1], low[2]}, {high[0], high[1], high[2]});
        model_.Box(low, high);
    }

    void PlaceBoth()
    {
        const Vec eye{Pick(-8, 8) + 0.5, Pick(-8, 8) - 0.25, Pick(-8, 8) + 0.125};
        control_->SetCameraData({eye[0], eye[1], eye[2]}, {0.0, 0.0, 0.0}, {0.0, 0.0, 1.0});
        model_.eye = eye;
        model_.target = {};
        model_.is_placed = true;
    }

    void StepBoth()
    {
        const int step = Pick(0, 99);
        if (step < 60)
            MoveBoth();
        else if (step < 70)
            WheelBoth();
        else if (step < 78)
            RestrictBoth();
        else if (step < 86)
            ViewBoth();
        else if (step < 90)
            BoxBoth();
        else if (step < 94) {
            model_.is_perspective = !model_.is_perspective;
            control_->SetToPerspective(model_.is_perspective);
        } else if (step < 97) {
            control_->ResetCameraZoom();
            model_.fov = 40.0F;
            model_.zoom = 1.0F;
        } else if (step < 99)
            PlaceBoth();
        else {
            control_->KillUserControl();
            model_.is_user_controlled = false;
        }
    }

    void ExpectSame(const Vec& expected, double x, double y, double z) const
    {
        const double tolerance = 1e-8 * (1.0 + Length(model_.eye) + Length(model_.target));
        EXPECT_NEAR(x, expected[0], tolerance);
        EXPECT_NEAR(y, expected[1], tolerance);
        EXPECT_NEAR(z, expected[2], tolerance);
    }

    void Compare() const
    {
        const KARVGLCamera& camera = control_->camera;
        ExpectSame(model_.eye, camera.position.x, camera.position.y, camera.position.z);
        ExpectSame(model_.target, camera.target.x, camera.target.y, camera.target.z);
        ExpectSame(model_.axes[0], camera.xAxis.x, camera.xAxis.y, camera.xAxis.z);
        ExpectSame(model_.axes[1], camera.yAxis.x, camera.yAxis.y, camera.yAxis.z);
        ExpectSame(model_.axes[2], camera.zAxis.x, camera.zAxis.y, camera.zAxis.z);
        EXPECT_EQ(camera.farPlane, model_.far_plane);
        EXPECT_EQ(camera.perspectiveOn, model_.is_perspective);
        EXPECT_EQ(control_->sceneSize, model_.scene_size);
        EXPECT_EQ(control_->fieldOfView, model_.fov);
        EXPECT_EQ(control_->zoomFactor, model_.zoom);
        EXPECT_EQ(control_->lastMousePoint.x, model_.last_x);
        EXPECT_EQ(control_->lastMousePoint.y, model_.last_y);
        EXPECT_EQ(control_->mouseRotates, model_.left == Left::Rotate);
        EXPECT_EQ(control_->mousePans, model_.left == Left::Pan);
        EXPECT_EQ(control_->mouseZooms, model_.left == Left::Zoom);
        EXPECT_EQ(control_->userControlEnabled, model_.is_user_controlled);
        EXPECT_EQ(control_->cameraSetByCaller, model_.is_placed);
        EXPECT_EQ(control_->pendingRotateX, 0.0F);
        EXPECT_EQ(control_->pendingRotateZ, 0.0F);
        EXPECT_EQ(control_->pendingPanX, 0.0F);
        EXPECT_EQ(control_->pendingPanZ, 0.0F);
    }

    /// Whether the two can be compared: with a target far from the origin and close to the eye, the line of
    /// sight is mostly rounding.
    [[nodiscard]] bool IsWellConditioned() const
    {
        const double distance = Length(Sum(model_.eye, model_.target, -1.0));
        return Length(model_.target) < 1e4 * distance && std::isfinite(model_.zoom) && !model_.is_at_limit;
    }

    std::mt19937 random_{GetParam()};
    std::unique_ptr<KARVOpenGLControl> control_ = NewControl();
    Model model_;
};

TEST_P(NavigationModel, AgreesWithTheControlAfterEveryStep)
{
    constexpr int kSequences = 20;
    int steps = 0;
    for (int sequence = 0; sequence < kSequences; ++sequence) {
        control_.reset();
        control_ = NewControl();
        model_ = {};
        BoxBoth();
        ViewBoth();
        for (int step = 0; step < 50 && IsWellConditioned(); ++step, ++steps) {
            StepBoth();
            if (!model_.is_at_limit)
                Compare();
            ASSERT_FALSE(HasFailure()) << "sequence " << sequence << ", step " << step;
        }
    }
    EXPECT_GT(steps, kSequences * 25); // most sequences reach their end
}

INSTANTIATE_TEST_SUITE_P(Seeds, NavigationModel, testing::Range(1U, 11U));

} // namespace
