#include "bench/bench_window.h"

#include "platform/host/cm/color.h"
#include "platform/winsys/backend.h"
#include "platform/winsys/backends.h"

#include <stdexcept>

namespace karv_bench
{

void UseOffscreenWindows()
{
    winsys::UseBackend(winsys::MakeHeadlessBackend());
}

HostWindow::HostWindow()
{
    constexpr int kSide = 512;
    if (CreateEx(0, AfxRegisterWndClass(0), L"karv-bench", WS_OVERLAPPEDWINDOW, CRect(0, 0, kSide, kSide),
                 nullptr, 0) == FALSE)
        throw std::runtime_error("no window can be made");
}

KARVGLVertex PaletteColor()
{
    AcCmColor color;
    color.setColorIndex(kColorIndex);
    return {color.red(), color.green(), color.blue()};
}

namespace
{

/// Creates the window and returns its context, or null if there is none.
HGLRC Create(KARVOpenGLControl& control, HostWindow& host, int side)
{
    control.CreateCtrl(CRect(0, 0, side, side), &host, false);
    return wglGetCurrentContext();
}

} // namespace

MeasuredControl::MeasuredControl(HostWindow& host, int side) : context_(Create(control_, host, side))
{
    if (context_ == nullptr)
        throw std::runtime_error("no OpenGL context can be made");
    control_.SetBgColor(0, 0, 0);
}

int MeasuredControl::PixelFormat() const
{
    return GetPixelFormat(::GetDC(control_.m_hWnd));
}

void MeasuredControl::MakeCurrent() const
{
    // The window has a device context of its own, so GetDC always returns the same one.
    wglMakeCurrent(::GetDC(control_.m_hWnd), context_);
}

void MeasuredControl::ShowScene()
{
    constexpr double kMargin = 0.02;
    constexpr double kLow = -kMargin;
    constexpr double kHigh = kSceneEdge + kMargin;
    control_.OverrideExtents(AcGePoint3d(kLow, kLow, kLow), AcGePoint3d(kHigh, kHigh, kHigh));
    control_.CameraViewSE();
    control_.OnDraw(nullptr);
}

void MeasuredControl::DrawFrame() const
{
    constexpr WPARAM kTimerId = 1;
    SendMessageW(control_.m_hWnd, WM_TIMER, kTimerId, 0);
}

} // namespace karv_bench
