#include "tests/control/model/model_camera.h"

#include "platform/winsys/opengl.h"

#include <cmath>

namespace karv_model
{
namespace
{

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kQuarterTurn = 1.5707963267948966;   // 90 degrees
constexpr double kTiltLow = 0.017453292519943295;     // 1 degree
constexpr double kTiltHigh = 3.12413936106985;        // 179 degrees
constexpr double kOrthoPerDegree = 16.65999984741211; // the float 16.66, widened
constexpr double kRefreshNear = 0.10000000149011612;  // the float 0.1, widened

double Tolerance(double bound)
{
    return 1e-20 * std::fabs(bound) + 1e-20;
}

bool ReachesLow(double value, double bound)
{
    return value <= bound + Tolerance(bound);
}

bool ReachesHigh(double value, double bound)
{
    return value >= bound - Tolerance(bound);
}

void Limit(float& value, double low, double high)
{
    if (ReachesLow(value, low)) {
        Meet(value < static_cast<float>(low) ? "zoom limited below" : "zoom exactly at the low limit");
        value = static_cast<float>(low);
    }
    if (ReachesHigh(value, high)) {
        Meet(value > static_cast<float>(high) ? "zoom limited above" : "zoom exactly at the high limit");
        value = static_cast<float>(high);
    }
}

AcGeVector3d ViewDirection(const ModelCamera& camera)
{
    return camera.target - camera.position;
}

/// The camera's right direction; world X when it looks along the vertical.
AcGeVector3d Right(const AcGeVector3d& view)
{
    if (view.isParallelTo(AcGeVector3d::kZAxis, AcGeContext::gTol)) {
        Meet("view along the vertical");
        return AcGeVector3d::kXAxis;
    }
    return view.crossProduct(AcGeVector3d::kZAxis);
}

} // namespace

void ModelCamera::SetFarPlaneDistance(double distance)
{
    far_plane = static_cast<float>(distance * 100.0);
}

void ModelCamera::SetCamera(const AcGePoint3d& eye, const AcGePoint3d& at, const AcGeVector3d& up)
{
    up_vector = up;
    position = eye;
    target = at;
}

void ModelCamera::ResetAngle()
{
    x_axis = AcGeVector3d(1.0, 0.0, 0.0);
    y_axis = AcGeVector3d(0.0, 1.0, 0.0);
    z_axis = AcGeVector3d(0.0, 0.0, 1.0);
}

void ModelCamera::UpdateCamera(GlStream& gl) const
{
    Expect(gl, "glMatrixMode", {GL_MODELVIEW});
    Expect(gl, "glLoadIdentity");
    Expect(gl, "gluLookAt",
           {position.x, position.y, position.z, target.x, target.y, target.z, z_axis.x, z_axis.y, z_axis.z});
}

void ModelCamera::RefreshCameraView(GlStream& gl, double fov, double distance, float new_aspect)
{
    Expect(gl, "glMatrixMode", {GL_PROJECTION});
    Expect(gl, "glLoadIdentity");
    if (perspective_on) {
        Expect(gl, "gluPerspective", {fov, new_aspect, kRefreshNear, distance * 100.0});
    } else {
        Meet("size in parallel projection");
        Expect(gl, "glLoadIdentity");
        const float h = static_cast<float>(distance * 0.5);
        const float v = h / new_aspect;
        Expect(gl, "glOrtho", {-h, h, v, -v, distance * -100.0, distance * 100.0});
        Expect(gl, "glScalef", {1.0, -1.0, 1.0});
    }
    Expect(gl, "glMatrixMode", {GL_MODELVIEW});
    aspect = new_aspect;
    field_of_view = fov;
    far_plane = static_cast<float>(distance * 100.0);
}

void ModelCamera::Orthographic(GlStream& gl, float half_width, float half_height) const
{
    Expect(gl, "glOrtho", {-half_width, half_width, half_height, -half_height, -far_plane, far_plane});
    Expect(gl, "glScalef", {1.0, -1.0, 1.0});
}

void ModelCamera::SetPerspectiveOn(GlStream& gl, bool on)
{
    if (!on && !perspective_on) {
        Meet("parallel projection asked for twice");
        return;
    }
    Expect(gl, "glMatrixMode", {GL_PROJECTION});
    if (!on) {
        Expect(gl, "glPushMatrix");
        Expect(gl, "glLoadIdentity");
        ortho_zoom = field_of_view / kOrthoPerDegree;
        const float h = far_plane / 100.0F * 0.5F;
        const float v = h / aspect;
        Orthographic(gl, h, v);
        perspective_on = false;
    } else {
        Meet(perspective_on ? "perspective asked for twice" : "back to perspective");
        Expect(gl, "glPopMatrix");
        Expect(gl, "glLoadIdentity");
        field_of_view = ortho_zoom * kOrthoPerDegree;
        Expect(gl, "gluPerspective", {field_of_view, aspect, -far_plane, far_plane});
        perspective_on = true;
    }
    Expect(gl, "glMatrixMode", {GL_MODELVIEW});
    UpdateCamera(gl);
}

void ModelCamera::ZoomAt(GlStream& gl, float& zoom_factor, float& fov) const
{
    Expect(gl, "glMatrixMode", {GL_PROJECTION});
    Expect(gl, "glLoadIdentity");
    if (perspective_on) {
        Limit(fov, 0.01, 150.0);
        Expect(gl, "gluPerspective", {fov, aspect, near_plane, far_plane});
    } else {
        Limit(zoom_factor, 0.01, 9.0);
        const float s = far_plane / 100.0F * 0.5F;
        const float h = zoom_factor * s;
        const float v = zoom_factor * s / aspect;
        Orthographic(gl, h, v);
    }
    Expect(gl, "glMatrixMode", {GL_MODELVIEW});
}

void ModelCamera::SetViewFront(GlStream& gl)
{
    position = target;
    const float distance = far_plane / 100.0F;
    position.y -= static_cast<double>(distance);
    ResetAngle();
    up_vector = AcGeVector3d(0.0, 0.0, 1.0);
    UpdateCamera(gl);
}

void ModelCamera::SetViewByTurns(GlStream& gl, float about_z, float about_x)
{
    SetViewFront(gl);
    Expect(gl, "glLoadIdentity");
    if (about_z != 0.0F)
        RotateCamera(about_z, AcGeVector3d::kZAxis);
    if (about_x != 0.0F)
        RotateCamera(about_x, AcGeVector3d::kXAxis);
    UpdateCamera(gl);
}

bool ModelCamera::AllowsTilt(double angle) const
{
    const double beyond_quarter = std::fabs(angle) - kQuarterTurn;
    if (beyond_quarter * beyond_quarter <= 1e-20) {
        Meet("tilt of exactly 90 degrees");
        return true;
    }
    const double reached = ViewDirection(*this).angleTo(AcGeVector3d::kZAxis) + angle;
    const bool allowed =
        reached >= kTiltLow - Tolerance(kTiltLow) && reached <= kTiltHigh + Tolerance(kTiltHigh);
    Meet(allowed ? "tilt allowed" : (reached > kTiltHigh ? "tilt refused above" : "tilt refused below"));
    return allowed;
}

void ModelCamera::RotateCamera(float angle, const AcGeVector3d& axis)
{
    const double r = static_cast<double>(angle) * kRadiansPerDegree;
    const float square = angle * angle;
    if (static_cast<double>(square) <= 1e-20) {
        Meet(angle == 0.0F ? "turn of nothing" : "turn too small");
        return;
    }
    AcGeMatrix3d matrix;
    if (axis.isEqualTo(AcGeVector3d::kZAxis, AcGeContext::gTol)) {
        Meet("orbit");
        matrix.setToRotation(r, axis, target);
    } else {
        if (!AllowsTilt(r))
            return;
        AcGeVector3d tilt_axis = Right(ViewDirection(*this));
        tilt_axis = AcGeVector3d(-tilt_axis.x, -tilt_axis.y, -tilt_axis.z);
        matrix.setToRotation(r, tilt_axis, target);
    }
    position.transformBy(matrix);
    x_axis.transformBy(matrix);
    y_axis.transformBy(matrix);
    z_axis.transformBy(matrix);
}

void ModelCamera::PanCamera(float amount, const AcGeVector3d& axis)
{
    const AcGeVector3d view = ViewDirection(*this);
    const AcGeVector3d right = Right(view);
    AcGeVector3d t;
    if (axis.isEqualTo(AcGeVector3d::kXAxis, AcGeContext::gTol)) {
        t = right.normal(AcGeContext::gTol) * static_cast<double>(amount);
    } else {
        const AcGeVector3d u = view.crossProduct(right).normal(AcGeContext::gTol);
        t = -(u * static_cast<double>(amount));
    }
    Meet(amount == 0.0F ? "pan of nothing" : "pan");
    AcGeMatrix3d matrix;
    matrix.setToTranslation(t);
    position.transformBy(matrix);
    target.transformBy(matrix);
    x_axis.transformBy(matrix);
    y_axis.transformBy(matrix);
    z_axis.transformBy(matrix);
}

void ModelCamera::ZoomCamera(float amount)
{
    const AcGeMatrix3d to_camera =
        AcGeMatrix3d::alignCoordSys(target, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis,
                                    position, x_axis, y_axis, z_axis);
    AcGeVector3d d(0.0, static_cast<double>(amount), 0.0);
    d.transformBy(to_camera);
    AcGeMatrix3d matrix;
    matrix.setToTranslation(d);
    AcGePoint3d p = position;
    p.transformBy(matrix);
    if (!ViewDirection(*this).isCodirectionalTo(target - p, AcGeContext::gTol)) {
        Meet("dolly refused");
        return;
    }
    Meet("dolly");
    position.transformBy(matrix);
    x_axis.transformBy(matrix);
    y_axis.transformBy(matrix);
    z_axis.transformBy(matrix);
    up_vector.transformBy(matrix);
}

} // namespace karv_model
