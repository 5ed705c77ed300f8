// Mouse navigation of KARVOpenGLControl. Handlers do not change the camera. They queue amounts or scale the
// zoom and then redraw, which applies them.
#include "control/KARVOpenGLControl.h"

#include "module/guard.h"

#include <cstdint>

using karv::DeletionWatch;
using karv::Guarded;

namespace
{

constexpr float kDegreesPerPixel = 0.5F;
/// A larger turn comes from a jump of the pointer and is ignored.
constexpr float kMaxTurnDegrees = 360.0F;
constexpr float kZoomPerPixel = 0.01F;
/// Wheel units per pixel of an equivalent drag. Negative, because turning the wheel forward zooms in like an
/// upward drag.
constexpr int kWheelUnitsPerPixel = -10;
// A pan by one pixel moves the camera by `kPanPerPixel` / `kScenePanDivisor` of the scene size, times
// `panScale` and the zoom.
constexpr float kPanPerPixel = 0.01F;
constexpr float kScenePanDivisor = 4.45F;

/// Truncates towards zero. A value that does not fit 32 bits wraps around.
int Truncated(float value)
{
    return static_cast<int>(static_cast<std::int64_t>(value));
}

float TurnWithinLimit(float degrees)
{
    return degrees > kMaxTurnDegrees || degrees < -kMaxTurnDegrees ? 0.0F : degrees;
}

} // namespace

void KARVOpenGLControl::OnMouseMove(UINT nFlags, CPoint point)
{
    Guarded<L"KARVOpenGLControl::OnMouseMove">([&] {
        if (!userControlEnabled)
            return;
        const auto x = static_cast<float>(point.x);
        const auto y = static_cast<float>(point.y);
        const int dx = Truncated(x - lastMousePoint.x);
        const int dy = Truncated(y - lastMousePoint.y);
        lastMousePoint = {x, y};
        if ((nFlags & MK_LBUTTON) != 0) {
            if (mouseRotates)
                GLMouseRotate(dx, dy);
            else if (mousePans)
                GLMousePan(dx, dy);
            else if (mouseZooms)
                GLMouseZoom(dy);
        } else if ((nFlags & MK_MBUTTON) != 0) {
            GLMousePan(dx, dy);
        } else if ((nFlags & MK_RBUTTON) != 0) {
            GLMouseZoom(dy);
        }
        const DeletionWatch watch(lifetime);
        OnDraw(nullptr);
        if (!watch.IsDeleted())
            Default();
    });
}

BOOL KARVOpenGLControl::OnMouseWheel(UINT /*nFlags*/, short zDelta, CPoint /*point*/)
{
    // Not guarded, and active even after `KillUserControl`: hosts rely on the wheel as the only navigation
    // left.
    GLMouseZoom(zDelta / kWheelUnitsPerPixel);
    const DeletionWatch watch(lifetime);
    OnDraw(nullptr);
    return watch.IsDeleted() ? FALSE : static_cast<BOOL>(Default());
}

void KARVOpenGLControl::GLMouseRotate(int dx, int dy)
{
    Guarded<L"KARVOpenGLControl::GLMouseRotate">([&] {
        pendingRotateX = TurnWithinLimit(static_cast<float>(dy) * kDegreesPerPixel);
        const float turn = static_cast<float>(dx) * kDegreesPerPixel;
        pendingRotateZ = TurnWithinLimit(static_cast<float>(static_cast<double>(turn) * -1.0));
    });
}

void KARVOpenGLControl::GLMousePan(int dx, int dy)
{
    Guarded<L"KARVOpenGLControl::GLMousePan">([&] {
        // The factors are computed in single precision, their products in double.
        const float of_width = panScale * kPanPerPixel;
        const float of_scene = sceneSize / kScenePanDivisor;
        const double per_pixel =
            static_cast<double>(of_width) * static_cast<double>(of_scene) * static_cast<double>(zoomFactor);
        pendingPanX = static_cast<float>(static_cast<double>(dx) * per_pixel);
        pendingPanZ = static_cast<float>(static_cast<double>(dy) * per_pixel);
    });
}

void KARVOpenGLControl::GLMouseZoom(int d)
{
    Guarded<L"KARVOpenGLControl::GLMouseZoom">([&] {
        const float factor = static_cast<float>(d) * kZoomPerPixel + 1.0F;
        // Both are scaled, so that a switch of the projection keeps the zoom.
        fieldOfView = fieldOfView * factor;
        zoomFactor = zoomFactor * factor;
    });
}

void KARVOpenGLControl::RestrictToRotate()
{
    Guarded<L"KARVOpenGLControl::RestrictToRotate">([&] {
        mouseRotates = true;
        mouseZooms = false;
        mousePans = false;
    });
}

void KARVOpenGLControl::RestrictToPan()
{
    Guarded<L"KARVOpenGLControl::RestrictToPan">([&] {
        mousePans = true;
        mouseZooms = false;
        mouseRotates = false;
    });
}

void KARVOpenGLControl::RestrictToZoom()
{
    Guarded<L"KARVOpenGLControl::RestrictToZoom">([&] {
        mouseZooms = true;
        mousePans = false;
        mouseRotates = false;
    });
}

void KARVOpenGLControl::KillUserControl()
{
    Guarded<L"KARVOpenGLControl::KillUserControl">([&] { userControlEnabled = false; });
}
