// The camera's motion compared with an independent implementation in plain arithmetic, over long random
// sequences.
#include "tests/camera/camera_checks.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <random>

using karv_test::kRadiansPerDegree;

namespace
{

using Triple = std::array<double, 3>;

Triple operator-(const Triple& a, const Triple& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Triple operator+(const Triple& a, const Triple& b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Triple operator*(const Triple& a, double factor)
{
    return {a[0] * factor, a[1] * factor, a[2] * factor};
}

double Dot(const Triple& a, const Triple& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Triple Cross(const Triple& a, const Triple& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Length(const Triple& a)
{
    return std::sqrt(Dot(a, a));
}

Triple Unit(const Triple& a)
{
    return a * (1.0 / Length(a));
}

/// `v` turned by `angle` radians about the unit vector `k`: the part along k stays, the part normal to k is
/// rotated.
Triple Turned(const Triple& v, double angle, const Triple& k)
{
    return v * std::cos(angle) + Cross(k, v) * std::sin(angle) + k * (Dot(k, v) * (1.0 - std::cos(angle)));
}

/// The independent implementation. Holds for an eye that is not at its target.
struct Reference {
    Triple eye{0.0, -10.0, 0.0};
    Triple target{0.0, 0.0, 0.0};
    Triple x{1.0, 0.0, 0.0};
    Triple y{0.0, 1.0, 0.0};
    Triple z{0.0, 0.0, 1.0};

    [[nodiscard]] Triple Sight() const { return target - eye; }
    [[nodiscard]] bool IsVertical() const { return std::hypot(Unit(Sight())[0], Unit(Sight())[1]) < 1e-10; }
    [[nodiscard]] Triple Right() const
    {
        return IsVertical() ? Triple{1.0, 0.0, 0.0} : Unit(Cross(Sight(), {0.0, 0.0, 1.0}));
    }

    void Turn(double angle, const Triple& k)
    {
        eye = target + Turned(eye - target, angle, k);
        x = Turned(x, angle, k);
        y = Turned(y, angle, k);
        z = Turned(z, angle, k);
    }

    void Orbit(float degrees) { Turn(static_cast<double>(degrees) * kRadiansPerDegree, {0.0, 0.0, 1.0}); }

    void Tilt(float degrees)
    {
        const double angle = static_cast<double>(degrees) * kRadiansPerDegree;
        const double from_up = std::acos(Unit(Sight())[2]) / kRadiansPerDegree + static_cast<double>(degrees);
        if (std::fabs(degrees) == 90.0F || (from_up >= 1.0 && from_up <= 179.0))
            Turn(angle, Right() * -1.0);
    }

    void Move(const Triple& step)
    {
        eye = eye + step;
        target = target + step;
    }

    void PanRight(float amount) { Move(Right() * static_cast<double>(amount)); }
    void PanUp(float amount) { Move(Unit(Cross(Right(), Sight())) * static_cast<double>(amount)); }

    void Dolly(float amount)
    {
        if (static_cast<double>(amount) < Length(Sight()))
            eye = eye + y * static_cast<double>(amount);
    }
};

testing::AssertionResult Agrees(const KARVGLCamera& camera, const Reference& reference)
{
    const auto at = [](const auto& actual, const Triple& expected) {
        return karv_test::IsAt(actual, expected[0], expected[1], expected[2], 1e-7);
    };
    for (const testing::AssertionResult& result :
         {at(camera.position, reference.eye), at(camera.target, reference.target),
          at(camera.xAxis, reference.x), at(camera.yAxis, reference.y), at(camera.zAxis, reference.z)}) {
        if (!result)
            return result;
    }
    return testing::AssertionSuccess();
}

class CameraSequence : public testing::TestWithParam<std::uint32_t>
{
};

} // namespace

TEST_P(CameraSequence, AgreesWithPlainArithmetic)
{
    std::mt19937 random(GetParam());
    // Not std::uniform_real_distribution: its numbers differ between standard libraries.
    const auto between = [&](double low, double high) {
        return static_cast<float>(low + (high - low) * (static_cast<double>(random()) / 4294967296.0));
    };
    KARVGLCamera camera = karv_test::FrontCamera();
    Reference reference;
    for (int step = 0; step < 1000; ++step) {
        const auto kind = random() % 6;
        const float degrees = between(-120.0, 120.0);
        const float amount = between(-0.5, 0.5);
        switch (kind) {
        case 0:
            camera.RotateCamera(degrees, AcGeVector3d::kZAxis);
            reference.Orbit(degrees);
            break;
        case 1:
            camera.RotateCamera(degrees, AcGeVector3d::kXAxis);
            reference.Tilt(degrees);
            break;
        case 2:
            camera.RotateCamera(degrees > 0 ? 90.0F : -90.0F, AcGeVector3d::kYAxis);
            reference.Tilt(degrees > 0 ? 90.0F : -90.0F);
            break;
        case 3:
            camera.PanCamera(amount, AcGeVector3d::kXAxis);
            reference.PanRight(amount);
            break;
        case 4:
            camera.PanCamera(amount, AcGeVector3d::kZAxis);
            reference.PanUp(amount);
            break;
        default:
            camera.ZoomCamera(amount);
            reference.Dolly(amount);
            break;
        }
        ASSERT_TRUE(Agrees(camera, reference)) << "after step " << step << " of kind " << kind;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, CameraSequence, testing::Values(1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U));
