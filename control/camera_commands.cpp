// The camera commands of KARVOpenGLControl. They forward to its camera and set its zoom fields.
#include "control/KARVOpenGLControl.h"

#include "module/guard.h"

using karv::Guarded;

namespace
{

// The zoom that `SetCamera` sets.
constexpr float kPlacedZoomFactor = 0.01F;
constexpr float kPlacedFieldOfView = 0.1F;

constexpr float kDefaultZoomFactor = 1.0F;
constexpr float kDefaultFieldOfView = 40.0F;

} // namespace

void KARVOpenGLControl::CameraViewTop()
{
    Guarded<L"KARVOpenGLControl::CameraViewTop">([&] { camera.SetViewTop(); });
}

void KARVOpenGLControl::CameraViewBottom()
{
    Guarded<L"KARVOpenGLControl::CameraViewBottom">([&] { camera.SetViewBottom(); });
}

void KARVOpenGLControl::CameraViewFront()
{
    Guarded<L"KARVOpenGLControl::CameraViewFront">([&] { camera.SetViewFront(); });
}

void KARVOpenGLControl::CameraViewBack()
{
    Guarded<L"KARVOpenGLControl::CameraViewBack">([&] { camera.SetViewBack(); });
}

void KARVOpenGLControl::CameraViewLeft()
{
    Guarded<L"KARVOpenGLControl::CameraViewLeft">([&] { camera.SetViewLeft(); });
}

void KARVOpenGLControl::CameraViewRight()
{
    Guarded<L"KARVOpenGLControl::CameraViewRight">([&] { camera.SetViewRight(); });
}

void KARVOpenGLControl::CameraViewNE()
{
    Guarded<L"KARVOpenGLControl::CameraViewNE">([&] { camera.SetViewNE(); });
}

void KARVOpenGLControl::CameraViewNW()
{
    Guarded<L"KARVOpenGLControl::CameraViewNW">([&] { camera.SetViewNW(); });
}

void KARVOpenGLControl::CameraViewSE()
{
    Guarded<L"KARVOpenGLControl::CameraViewSE">([&] { camera.SetViewSE(); });
}

void KARVOpenGLControl::CameraViewSW()
{
    Guarded<L"KARVOpenGLControl::CameraViewSW">([&] { camera.SetViewSW(); });
}

void KARVOpenGLControl::SetCamera(AcGePoint3d position, AcGePoint3d target, AcGeVector3d up)
{
    Guarded<L"KARVOpenGLControl::SetCamera">([&] {
        camera.SetCamera(position, target, up);
        zoomFactor = kPlacedZoomFactor;
        fieldOfView = kPlacedFieldOfView;
        cameraSetByCaller = true;
    });
}

void KARVOpenGLControl::SetCameraData(AcGePoint3d position, AcGePoint3d target, AcGeVector3d up)
{
    Guarded<L"KARVOpenGLControl::SetCameraData">([&] {
        camera.SetCamera(position, target, up);
        camera.UpdateCamera();
        cameraSetByCaller = true;
    });
}

void KARVOpenGLControl::GetCameraData(AcGePoint3d& position, AcGePoint3d& target, AcGeVector3d& up)
{
    Guarded<L"KARVOpenGLControl::GetCameraData">([&] { camera.GetCamera(position, target, up); });
}

void KARVOpenGLControl::GetCameraAxes(AcGeVector3d& x, AcGeVector3d& y, AcGeVector3d& z)
{
    Guarded<L"KARVOpenGLControl::GetCameraAxes">([&] { camera.GetLocalAxes(x, y, z); });
}

void KARVOpenGLControl::SetToPerspective(bool on)
{
    Guarded<L"KARVOpenGLControl::SetToPerspective">([&] { camera.SetPerspectiveOn(on); });
}

void KARVOpenGLControl::ResetCameraZoom()
{
    Guarded<L"KARVOpenGLControl::ResetCameraZoom">([&] {
        zoomFactor = kDefaultZoomFactor;
        fieldOfView = kDefaultFieldOfView;
    });
}
