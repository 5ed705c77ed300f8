// The camera commands that KARVOpenGLControl offers to hosts: they forward to its camera and keep the zoom's
// fields.
#include "control/KARVOpenGLControl.h"

#include "control/control_source.h"
#include "module/guard.h"

using karv::Guarded;
using karv::kControlSource;

namespace
{

// The zoom that goes with a camera placed by `SetCamera`: the closest.
constexpr float kPlacedZoomFactor = 0.01F;
constexpr float kPlacedFieldOfView = 0.1F;

constexpr float kDefaultZoomFactor = 1.0F;
constexpr float kDefaultFieldOfView = 40.0F;

} // namespace

void KARVOpenGLControl::CameraViewTop()
{
    Guarded(L"KARVOpenGLControl::CameraViewTop", kControlSource, [&] { camera.SetViewTop(); });
}

void KARVOpenGLControl::CameraViewBottom()
{
    Guarded(L"KARVOpenGLControl::CameraViewBottom", kControlSource, [&] { camera.SetViewBottom(); });
}

void KARVOpenGLControl::CameraViewFront()
{
    Guarded(L"KARVOpenGLControl::CameraViewFront", kControlSource, [&] { camera.SetViewFront(); });
}

void KARVOpenGLControl::CameraViewBack()
{
    Guarded(L"KARVOpenGLControl::CameraViewBack", kControlSource, [&] { camera.SetViewBack(); });
}

void KARVOpenGLControl::CameraViewLeft()
{
    Guarded(L"KARVOpenGLControl::CameraViewLeft", kControlSource, [&] { camera.SetViewLeft(); });
}

void KARVOpenGLControl::CameraViewRight()
{
    Guarded(L"KARVOpenGLControl::CameraViewRight", kControlSource, [&] { camera.SetViewRight(); });
}

void KARVOpenGLControl::CameraViewNE()
{
    Guarded(L"KARVOpenGLControl::CameraViewNE", kControlSource, [&] { camera.SetViewNE(); });
}

void KARVOpenGLControl::CameraViewNW()
{
    Guarded(L"KARVOpenGLControl::CameraViewNW", kControlSource, [&] { camera.SetViewNW(); });
}

void KARVOpenGLControl::CameraViewSE()
{
    Guarded(L"KARVOpenGLControl::CameraViewSE", kControlSource, [&] { camera.SetViewSE(); });
}

void KARVOpenGLControl::CameraViewSW()
{
    Guarded(L"KARVOpenGLControl::CameraViewSW", kControlSource, [&] { camera.SetViewSW(); });
}

void KARVOpenGLControl::SetCamera(AcGePoint3d position, AcGePoint3d target, AcGeVector3d up)
{
    Guarded(L"KARVOpenGLControl::SetCamera", kControlSource, [&] {
        camera.SetCamera(position, target, up);
        zoomFactor = kPlacedZoomFactor;
        fieldOfView = kPlacedFieldOfView;
        cameraSetByCaller = true;
    });
}

void KARVOpenGLControl::SetCameraData(AcGePoint3d position, AcGePoint3d target, AcGeVector3d up)
{
    Guarded(L"KARVOpenGLControl::SetCameraData", kControlSource, [&] {
        camera.SetCamera(position, target, up);
        camera.UpdateCamera();
        cameraSetByCaller = true;
    });
}

void KARVOpenGLControl::GetCameraData(AcGePoint3d& position, AcGePoint3d& target, AcGeVector3d& up)
{
    Guarded(L"KARVOpenGLControl::GetCameraData", kControlSource,
            [&] { camera.GetCamera(position, target, up); });
}

void KARVOpenGLControl::GetCameraAxes(AcGeVector3d& x, AcGeVector3d& y, AcGeVector3d& z)
{
    Guarded(L"KARVOpenGLControl::GetCameraAxes", kControlSource, [&] { camera.GetLocalAxes(x, y, z); });
}

void KARVOpenGLControl::SetToPerspective(bool on)
{
    Guarded(L"KARVOpenGLControl::SetToPerspective", kControlSource, [&] { camera.SetPerspectiveOn(on); });
}

void KARVOpenGLControl::ResetCameraZoom()
{
    Guarded(L"KARVOpenGLControl::ResetCameraZoom", kControlSource, [&] {
        zoomFactor = kDefaultZoomFactor;
        fieldOfView = kDefaultFieldOfView;
    });
}
