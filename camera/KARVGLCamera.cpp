#include "camera/KARVGLCamera.h"

#include "module/guard.h"
#include "platform/winsys/opengl.h"

#include <cmath>

using karv::Guarded;

namespace
{

/// The far distance in scene distances.
constexpr double kFarPerSceneDistance = 100.0;

/// The near distance of `RefreshCameraView`: the float 0.1 converted to double. It differs from the camera's
/// own near distance on purpose: the next redraw replaces this projection by that of `ZoomAt`, which uses the
/// camera's own.
constexpr double kRefreshNear = 0.10000000149011612;

/// Degrees of field of view per unit of parallel zoom: the float 16.66 converted to double.
constexpr double kDegreesPerOrthoZoom = 16.65999984741211;

constexpr float kMinFieldOfView = 0.01F;
constexpr float kMaxFieldOfView = 150.0F;
constexpr float kMinOrthoZoom = 0.01F;
constexpr float kMaxOrthoZoom = 9.0F;

/// A value this close to a bound has reached it.
double BoundTolerance(float bound)
{
    constexpr double kTolerance = 1e-20;
    return kTolerance * std::fabs(static_cast<double>(bound)) + kTolerance;
}

/// Limits the value in place. NaN reaches neither bound and stays.
void ClampZoom(float& value, float low, float high)
{
    if (static_cast<double>(value) <= static_cast<double>(low) + BoundTolerance(low))
        value = low;
    if (static_cast<double>(value) >= static_cast<double>(high) - BoundTolerance(high))
        value = high;
}

/// Multiplies the current matrix by a parallel projection with these half extents. Bottom and top are swapped
/// and the scaling swaps them back, so the picture is upright.
void MultiplyFlippedOrtho(float half_width, float half_height, double near_distance, double far_distance)
{
    glOrtho(-half_width, half_width, half_height, -half_height, near_distance, far_distance);
    glScalef(1.0F, -1.0F, 1.0F);
}

/// Sets the front view and turns it: an orbit about world Z, then a tilt. An angle of 0 makes no rotation.
void TurnFromFront(KARVGLCamera& camera, float orbit_degrees, float tilt_degrees)
{
    camera.SetViewFront();
    glLoadIdentity();
    if (orbit_degrees != 0.0F)
        camera.RotateCamera(orbit_degrees, AcGeVector3d::kZAxis);
    if (tilt_degrees != 0.0F)
        camera.RotateCamera(tilt_degrees, AcGeVector3d::kXAxis);
    camera.UpdateCamera();
}

/// The tilt of the isometric views in degrees: the angle between a cube's space diagonal and its base.
constexpr float kIsometricTilt = 35.264F;

} // namespace

KARVGLCamera::KARVGLCamera()
    : xAxis(AcGeVector3d::kXAxis), yAxis(AcGeVector3d::kYAxis), zAxis(AcGeVector3d::kZAxis),
      upVector(AcGeVector3d::kZAxis)
{
}

KARVGLCamera::KARVGLCamera(const KARVGLCamera& source) = default;
KARVGLCamera& KARVGLCamera::operator=(const KARVGLCamera& source) = default;
KARVGLCamera::~KARVGLCamera() = default;

void KARVGLCamera::SetPosition(AcGePoint3d point)
{
    Guarded<L"KARVGLCamera::SetPosition">([&] { position = point; });
}

void KARVGLCamera::SetTarget(AcGePoint3d point)
{
    Guarded<L"KARVGLCamera::SetTarget">([&] { target = point; });
}

void KARVGLCamera::SetUpVector(AcGeVector3d vector)
{
    Guarded<L"KARVGLCamera::SetUpVector">([&] { upVector = vector; });
}

void KARVGLCamera::SetFarPlaneDistance(double d)
{
    Guarded<L"KARVGLCamera::SetFarPlaneDistance">(
        [&] { farPlane = static_cast<float>(d * kFarPerSceneDistance); });
}

void KARVGLCamera::SetCamera(AcGePoint3d position_in, AcGePoint3d target_in, AcGeVector3d up)
{
    Guarded<L"KARVGLCamera::SetCamera">([&] {
        upVector = up;
        position = position_in;
        target = target_in;
    });
}

void KARVGLCamera::GetCamera(AcGePoint3d& position_out, AcGePoint3d& target_out, AcGeVector3d& up)
{
    Guarded<L"KARVGLCamera::GetCamera">([&] {
        up = upVector;
        position_out = position;
        target_out = target;
    });
}

void KARVGLCamera::GetLocalAxes(AcGeVector3d& x, AcGeVector3d& y, AcGeVector3d& z)
{
    Guarded<L"KARVGLCamera::GetLocalAxes">([&] {
        x = xAxis;
        y = yAxis;
        z = zAxis;
    });
}

void KARVGLCamera::ResetAngle()
{
    Guarded<L"KARVGLCamera::ResetAngle">([&] {
        angle = 0.0;
        xAxis = AcGeVector3d::kXAxis;
        yAxis = AcGeVector3d::kYAxis;
        zAxis = AcGeVector3d::kZAxis;
    });
}

void KARVGLCamera::UpdateCamera()
{
    Guarded<L"KARVGLCamera::UpdateCamera">([&] {
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        gluLookAt(position.x, position.y, position.z, target.x, target.y, target.z, zAxis.x, zAxis.y,
                  zAxis.z);
    });
}

void KARVGLCamera::RefreshCameraView(double fov, double distance, float aspect_in)
{
    Guarded<L"KARVGLCamera::RefreshCameraView">([&] {
        const double far_distance = distance * kFarPerSceneDistance;
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        if (perspectiveOn) {
            gluPerspective(fov, aspect_in, kRefreshNear, far_distance);
        } else {
            glLoadIdentity();
            const float half_width = static_cast<float>(distance * 0.5);
            const float half_height = half_width / aspect_in;
            MultiplyFlippedOrtho(half_width, half_height, distance * -kFarPerSceneDistance, far_distance);
        }
        glMatrixMode(GL_MODELVIEW);
        aspect = aspect_in;
        fieldOfView = fov;
        farPlane = static_cast<float>(far_distance);
    });
}

void KARVGLCamera::SetPerspectiveOn(bool on)
{
    Guarded<L"KARVGLCamera::SetPerspectiveOn">([&] {
        if (!on && !perspectiveOn)
            return;
        glMatrixMode(GL_PROJECTION);
        if (!on) {
            glPushMatrix();
            glLoadIdentity();
            orthoZoom = fieldOfView / kDegreesPerOrthoZoom;
            const float half_width = farPlane / 100.0F * 0.5F;
            const float half_height = half_width / aspect;
            MultiplyFlippedOrtho(half_width, half_height, -farPlane, farPlane);
            perspectiveOn = false;
        } else {
            glPopMatrix();
            glLoadIdentity();
            fieldOfView = orthoZoom * kDegreesPerOrthoZoom;
            // The negative near distance is kept on purpose; the next redraw loads the projection of
            // `ZoomAt`.
            gluPerspective(fieldOfView, aspect, -farPlane, farPlane);
            perspectiveOn = true;
        }
        glMatrixMode(GL_MODELVIEW);
        UpdateCamera();
    });
}

void KARVGLCamera::ZoomAt(float& orthoZoomFactor, float& fov)
{
    Guarded<L"KARVGLCamera::ZoomAt">([&] {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        if (perspectiveOn) {
            ClampZoom(fov, kMinFieldOfView, kMaxFieldOfView);
            gluPerspective(fov, aspect, nearPlane, farPlane);
        } else {
            ClampZoom(orthoZoomFactor, kMinOrthoZoom, kMaxOrthoZoom);
            const float half_scene = farPlane / 100.0F * 0.5F;
            const float half_width = orthoZoomFactor * half_scene;
            const float half_height = orthoZoomFactor * half_scene / aspect;
            MultiplyFlippedOrtho(half_width, half_height, -farPlane, farPlane);
        }
        glMatrixMode(GL_MODELVIEW);
    });
}

void KARVGLCamera::SetViewFront()
{
    Guarded<L"KARVGLCamera::SetViewFront">([&] {
        position = target;
        position.y -= static_cast<double>(farPlane / 100.0F);
        ResetAngle();
        upVector = AcGeVector3d::kZAxis;
        UpdateCamera();
    });
}

void KARVGLCamera::SetViewBack()
{
    Guarded<L"KARVGLCamera::SetViewBack">([&] { TurnFromFront(*this, 180.0F, 0.0F); });
}

void KARVGLCamera::SetViewLeft()
{
    Guarded<L"KARVGLCamera::SetViewLeft">([&] { TurnFromFront(*this, -90.0F, 0.0F); });
}

void KARVGLCamera::SetViewRight()
{
    Guarded<L"KARVGLCamera::SetViewRight">([&] { TurnFromFront(*this, 90.0F, 0.0F); });
}

void KARVGLCamera::SetViewTop()
{
    Guarded<L"KARVGLCamera::SetViewTop">([&] { TurnFromFront(*this, 0.0F, 90.0F); });
}

void KARVGLCamera::SetViewBottom()
{
    Guarded<L"KARVGLCamera::SetViewBottom">([&] { TurnFromFront(*this, 0.0F, -90.0F); });
}

void KARVGLCamera::SetViewSE()
{
    Guarded<L"KARVGLCamera::SetViewSE">([&] { TurnFromFront(*this, 45.0F, kIsometricTilt); });
}

void KARVGLCamera::SetViewSW()
{
    Guarded<L"KARVGLCamera::SetViewSW">([&] { TurnFromFront(*this, 315.0F, kIsometricTilt); });
}

void KARVGLCamera::SetViewNE()
{
    Guarded<L"KARVGLCamera::SetViewNE">([&] { TurnFromFront(*this, 135.0F, kIsometricTilt); });
}

void KARVGLCamera::SetViewNW()
{
    Guarded<L"KARVGLCamera::SetViewNW">([&] { TurnFromFront(*this, 225.0F, kIsometricTilt); });
}
