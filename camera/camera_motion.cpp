// The motion of KARVGLCamera: orbit, tilt, pan and dolly. It changes fields and makes no GL call.
#include "camera/KARVGLCamera.h"

#include "module/guard.h"

#include <cmath>

using karv::Guarded;

namespace
{

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kQuarterTurn = 1.5707963267948966;

/// A square up to this value counts as zero.
constexpr double kZeroSquare = 1e-20;

// The limits of the angle between the line of sight and world +Z in radians: 1 degree and 179 degrees.
constexpr double kMinTilt = 0.017453292519943295;
constexpr double kMaxTilt = 3.12413936106985;

/// A value this close to a bound has reached it.
double BoundTolerance(double bound)
{
    constexpr double kTolerance = 1e-20;
    return kTolerance * std::fabs(bound) + kTolerance;
}

/// Whether a tilt by `turn` is allowed while the line of sight is `tilt` away from world +Z; both in radians.
/// A turn of exactly 90 degrees is always allowed: the views from above and below depend on it. NaN is not
/// allowed.
bool IsTiltAllowed(double tilt, double turn)
{
    const double off_quarter = std::fabs(turn) - kQuarterTurn;
    if (off_quarter * off_quarter <= kZeroSquare)
        return true;
    const double tilted = tilt + turn;
    return tilted >= kMinTilt - BoundTolerance(kMinTilt) && tilted <= kMaxTilt + BoundTolerance(kMaxTilt);
}

/// The direction to the right of a line of sight, not normalized. World X if the line of sight is vertical.
AcGeVector3d RightOf(const AcGeVector3d& view_direction)
{
    if (view_direction.isParallelTo(AcGeVector3d::kZAxis))
        return AcGeVector3d::kXAxis;
    return view_direction.crossProduct(AcGeVector3d::kZAxis);
}

} // namespace

void KARVGLCamera::RotateCamera(float angle_degrees, AcGeVector3d axis)
{
    Guarded<L"KARVGLCamera::RotateCamera">([&] {
        const double turn = static_cast<double>(angle_degrees) * kRadiansPerDegree;
        const float square = angle_degrees * angle_degrees;
        if (static_cast<double>(square) <= kZeroSquare)
            return;
        AcGeMatrix3d rotation;
        if (axis.isEqualTo(AcGeVector3d::kZAxis)) {
            rotation.setToRotation(turn, axis, target);
        } else {
            const AcGeVector3d view_direction = target - position;
            if (!IsTiltAllowed(view_direction.angleTo(AcGeVector3d::kZAxis), turn))
                return;
            // A turn about the camera's left direction, so that a positive angle raises the eye.
            AcGeVector3d left = RightOf(view_direction);
            left.negate();
            rotation.setToRotation(turn, left, target);
        }
        position.transformBy(rotation);
        xAxis.transformBy(rotation);
        yAxis.transformBy(rotation);
        zAxis.transformBy(rotation);
    });
}

void KARVGLCamera::PanCamera(float amount, AcGeVector3d axis)
{
    Guarded<L"KARVGLCamera::PanCamera">([&] {
        const AcGeVector3d view_direction = target - position;
        const AcGeVector3d right = RightOf(view_direction);
        AcGeVector3d offset;
        if (axis.isEqualTo(AcGeVector3d::kXAxis)) {
            offset = right.normal() * static_cast<double>(amount);
        } else {
            // Forward x right points down the screen; the step goes the other way.
            const AcGeVector3d down = view_direction.crossProduct(right).normal();
            offset = -(down * static_cast<double>(amount));
        }
        AcGeMatrix3d translation;
        translation.setToTranslation(offset);
        position.transformBy(translation);
        target.transformBy(translation);
        xAxis.transformBy(translation);
        yAxis.transformBy(translation);
        zAxis.transformBy(translation);
    });
}

void KARVGLCamera::ZoomCamera(float amount)
{
    Guarded<L"KARVGLCamera::ZoomCamera">([&] {
        AcGeMatrix3d matrix =
            AcGeMatrix3d::alignCoordSys(target, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis,
                                        AcGeVector3d::kZAxis, position, xAxis, yAxis, zAxis);
        AcGeVector3d step(0.0, static_cast<double>(amount), 0.0);
        step.transformBy(matrix);
        matrix.setToTranslation(step);
        AcGePoint3d moved = position;
        moved.transformBy(matrix);
        const AcGeVector3d view_direction = target - position;
        if (!view_direction.isCodirectionalTo(target - moved))
            return;
        position.transformBy(matrix);
        xAxis.transformBy(matrix);
        yAxis.transformBy(matrix);
        zAxis.transformBy(matrix);
        upVector.transformBy(matrix);
    });
}
