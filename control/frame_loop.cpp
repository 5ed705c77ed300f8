// The frame loop of KARVOpenGLControl: the timer that draws frames, the throttle that turns multisampling off
// while frames are slow, the redraw that applies queued camera motion, and the render settings.
#include "control/KARVOpenGLControl.h"

#include "module/guard.h"
#include "platform/winsys/frame_clock.h"
#include "platform/winsys/opengl.h"

#include <array>
#include <ctime>

using karv::DeletionWatch;
using karv::Guarded;

namespace
{

constexpr UINT_PTR kFrameTimerId = 1;
constexpr UINT kFrameTimerPeriodMs = 1;

constexpr double kTicksPerSecond = 1000.0;
/// The frame rate of a frame that took no measurable time.
constexpr int kUnmeasuredFramesPerSecond = 1000;
/// In frames per second: multisampling is turned off below the first rate and on again at the second.
constexpr int kThrottleBelow = 5;
constexpr int kRecoverAt = 10;

constexpr double kZeroTolerance = 1e-20;

int FramesPerSecond(std::clock_t begin, std::clock_t end)
{
    const double seconds = static_cast<double>(end - begin) / kTicksPerSecond;
    if (seconds * seconds <= kZeroTolerance)
        return kUnmeasuredFramesPerSecond;
    return static_cast<int>(1.0 / seconds);
}

/// The matrices and the viewport with which a frame projects boxes.
struct WindowProjection {
    std::array<GLdouble, 16> model_view{};
    std::array<GLdouble, 16> projection{};
    std::array<GLint, 4> viewport{};

    [[nodiscard]] static WindowProjection Current()
    {
        WindowProjection current;
        glGetDoublev(GL_MODELVIEW_MATRIX, current.model_view.data());
        glGetDoublev(GL_PROJECTION_MATRIX, current.projection.data());
        glGetIntegerv(GL_VIEWPORT, current.viewport.data());
        return current;
    }

    /// Whether the point is projected to the left of and below the window's origin.
    [[nodiscard]] bool IsLeftAndBelow(const KARVGLVertex& point) const
    {
        GLdouble x = 0.0;
        GLdouble y = 0.0;
        GLdouble z = 0.0;
        gluProject(point.x, point.y, point.z, model_view.data(), projection.data(), viewport.data(), &x, &y,
                   &z);
        return x < -kZeroTolerance && y < -kZeroTolerance;
    }
};

/// A side of the debug cube: the axis signs of its normal and of its four corners.
struct CubeSide {
    std::array<int, 3> normal;
    std::array<std::array<int, 3>, 4> corners;
};

constexpr std::array<CubeSide, 6> kCubeSides = {{
    {{0, 0, 1}, {{{-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}}}},
    {{0, 0, -1}, {{{-1, -1, -1}, {-1, 1, -1}, {1, 1, -1}, {1, -1, -1}}}},
    {{0, 1, 0}, {{{-1, 1, -1}, {-1, 1, 1}, {1, 1, 1}, {1, 1, -1}}}},
    {{0, -1, 0}, {{{-1, -1, -1}, {1, -1, -1}, {1, -1, 1}, {-1, -1, 1}}}},
    {{1, 0, 0}, {{{1, -1, -1}, {1, 1, -1}, {1, 1, 1}, {1, -1, 1}}}},
    {{-1, 0, 0}, {{{-1, -1, -1}, {-1, -1, 1}, {-1, 1, 1}, {-1, 1, -1}}}},
}};

} // namespace

void KARVOpenGLControl::OnPaint()
{
    Guarded<L"KARVOpenGLControl::OnPaint">([&] {
        const DeletionWatch watch(lifetime);
        CWnd::OnPaint();
        if (watch.IsDeleted() || renderStarted)
            return;
        StartFrameTimer();
        renderStarted = true;
    });
}

void KARVOpenGLControl::StartFrameTimer()
{
    // Without a window the system would start a timer of the thread, which nothing ever stops.
    timerId = m_hWnd != nullptr ? SetTimer(m_hWnd, kFrameTimerId, kFrameTimerPeriodMs, nullptr) : 0;
}

void KARVOpenGLControl::ForceRenderStart()
{
    Guarded<L"KARVOpenGLControl::ForceRenderStart">([&] {
        const DeletionWatch watch(lifetime);
        StartFrameTimer();
        OnDraw(nullptr);
        if (watch.IsDeleted())
            return;
        renderStarted = true;
    });
}

void KARVOpenGLControl::OnTimer(UINT_PTR /*id*/)
{
    Guarded<L"KARVOpenGLControl::OnTimer">([&] {
        const std::clock_t begin = winsys::FrameClock();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        GLDrawFrame();
        SwapBuffers(hDC);
        const std::clock_t end = winsys::FrameClock();
        framesPerSecond = FramesPerSecond(begin, end);
    });
}

void KARVOpenGLControl::GLDrawFrame()
{
    Guarded<L"KARVOpenGLControl::GLDrawFrame">([&] {
        if (framesPerSecond < kThrottleBelow && multisampleOn && userControlEnabled) {
            glDisable(GL_MULTISAMPLE);
            multisampleOn = false;
            glDisable(GL_NORMALIZE);
        }
        if (framesPerSecond >= kRecoverAt && !multisampleOn && userControlEnabled) {
            glEnable(GL_MULTISAMPLE);
            multisampleOn = true;
            glEnable(GL_NORMALIZE);
        }
        const WindowProjection projection = WindowProjection::Current();
        for (KARVGraphicalEntity& entity : entities) {
            if (disabledTypes[entity.GetEntityType()])
                continue;
            KARVGLVertex min;
            KARVGLVertex max;
            entity.GetExtents(min, max);
            const bool min_is_outside = projection.IsLeftAndBelow(min);
            const bool max_is_outside = projection.IsLeftAndBelow(max);
            // This is the only culling. Boxes past the right or top edge are drawn on purpose, as they always
            // were.
            if (min_is_outside && max_is_outside)
                continue;
            if (renderMode == KARVGLRenderModeLines)
                entity.DrawObjectLines();
            else
                entity.DrawObjectQuads();
        }
    });
}

void KARVOpenGLControl::OnDraw(CDC* /*dc*/)
{
    Guarded<L"KARVOpenGLControl::OnDraw">([&] {
        glLoadIdentity();
        camera.RotateCamera(pendingRotateX, AcGeVector3d::kXAxis);
        camera.RotateCamera(pendingRotateZ, AcGeVector3d::kZAxis);
        if (invertPanX)
            pendingPanX = -pendingPanX;
        camera.PanCamera(pendingPanX, AcGeVector3d::kXAxis);
        camera.PanCamera(pendingPanZ, AcGeVector3d::kZAxis);
        camera.ZoomAt(zoomFactor, fieldOfView);
        pendingPanZ = 0.0F;
        pendingPanX = 0.0F;
        pendingRotateX = 0.0F;
        pendingRotateZ = 0.0F;
        camera.UpdateCamera();
        SetFocus();
    });
}

void KARVOpenGLControl::OnSize(UINT type, int cx, int cy)
{
    Guarded<L"KARVOpenGLControl::OnSize">([&] {
        const DeletionWatch watch(lifetime);
        CWnd::OnSize(type, cx, cy);
        if (watch.IsDeleted() || cx <= 0 || cy <= 0 || type == SIZE_MINIMIZED)
            return;
        glViewport(0, 0, cx, cy);
        aspectRatio = static_cast<float>(cx) / static_cast<float>(cy);
        camera.RefreshCameraView(static_cast<double>(fieldOfView), static_cast<double>(sceneSize),
                                 static_cast<float>(cx) / static_cast<float>(cy));
        OnDraw(nullptr);
        if (watch.IsDeleted())
            return;
        if (static_cast<double>(panScale) < -kZeroTolerance)
            panScale = 1.0F;
        else
            panScale = static_cast<float>(initialRect.Width()) / static_cast<float>(cx);
    });
}

void KARVOpenGLControl::SetBgColor(int r, int g, int b)
{
    Guarded<L"KARVOpenGLControl::SetBgColor">([&] {
        const KARVGLVertex background(static_cast<unsigned char>(r), static_cast<unsigned char>(g),
                                      static_cast<unsigned char>(b));
        backgroundColor[0] = background.x;
        backgroundColor[1] = background.y;
        backgroundColor[2] = background.z;
        glClearColor(backgroundColor[0], backgroundColor[1], backgroundColor[2], 1.0F);
        glClearDepth(1.0);
    });
}

void KARVOpenGLControl::SetRenderMode(KARVGLRenderMode mode)
{
    Guarded<L"KARVOpenGLControl::SetRenderMode">([&] { renderMode = mode; });
}

void KARVOpenGLControl::SetLightsOff(bool off)
{
    Guarded<L"KARVOpenGLControl::SetLightsOff">([&] {
        if (off) {
            glDisable(GL_LIGHT0);
            glDisable(GL_LIGHTING);
        } else {
            glEnable(GL_LIGHT0);
            glEnable(GL_LIGHTING);
        }
    });
}

void KARVOpenGLControl::SetMetricsFactor(double factor)
{
    Guarded<L"KARVOpenGLControl::SetMetricsFactor">([&] { metricsFactor = factor; });
}

void KARVOpenGLControl::DrawDebugCubeAt(KARVGLVertex position, float size)
{
    Guarded<L"KARVOpenGLControl::DrawDebugCubeAt">([&] {
        const float half = size * 0.5F;
        const auto along = [half](int sign) {
            // A zero component is +0 for every size, infinity and NaN included.
            return sign == 0 ? 0.0F : static_cast<float>(sign) * half;
        };
        const auto turn = static_cast<float>(debugCubeAngle);
        glPushMatrix();
        glTranslatef(position.x, position.y, position.z);
        glRotatef(turn, 1.0F, 0.0F, 0.0F);
        glRotatef(turn, 0.0F, 1.0F, 0.0F);
        glRotatef(turn, 0.0F, 0.0F, 1.0F);
        glColor3f(0.0F, 0.0F, 1.0F);
        glBegin(GL_QUADS);
        for (const CubeSide& side : kCubeSides) {
            // The normals have the length of half an edge and rely on GL_NORMALIZE.
            glNormal3f(along(side.normal[0]), along(side.normal[1]), along(side.normal[2]));
            for (const std::array<int, 3>& corner : side.corners)
                glVertex3f(along(corner[0]), along(corner[1]), along(corner[2]));
        }
        glEnd();
        glPopMatrix();
        debugCubeAngle += 1;
    });
}
