// The control's message map under the system's own messages: in a loop, in a dialog, from the mouse.
#include "tests/control/windows_control_test.h"

#include "platform/winsys/opengl.h"

#include <array>
#include <cstdint>

using testing::IsEmpty;

namespace karv_test
{
namespace
{

/// Moves the mouse, turns its wheel, or changes a button, as its driver does.
void SendMouse(DWORD flags, POINT screen = {}, int wheel = 0)
{
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.mouseData = static_cast<DWORD>(wheel);
    if ((flags & MOUSEEVENTF_MOVE) != 0) {
        // Absolute coordinates run to 65536 over the screen; the middle of the pixel is sent.
        input.mi.dx = static_cast<LONG>((screen.x * 65536 + 32768) / GetSystemMetrics(SM_CXSCREEN));
        input.mi.dy = static_cast<LONG>((screen.y * 65536 + 32768) / GetSystemMetrics(SM_CYSCREEN));
    }
    ASSERT_EQ(SendInput(1, &input, sizeof input), 1U);
}

void MovePointer(HWND window, int x, int y)
{
    POINT point{x, y};
    ClientToScreen(window, &point);
    SendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, point);
}

bool SameCamera(const KARVGLCamera& a, const KARVGLCamera& b)
{
    return a.position.isEqualTo(b.position) && a.target.isEqualTo(b.target);
}

} // namespace

TEST_F(WindowsControl, CreationReachesTheMessageMap)
{
    const auto control = NewControl();
    ASSERT_NE(control->m_hWnd, nullptr);
    EXPECT_TRUE(IsWindow(control->m_hWnd));
    EXPECT_EQ(::GetParent(control->m_hWnd), host_.m_hWnd);
    EXPECT_EQ(Calls("OnCreate"), 1);
    EXPECT_EQ(Calls("OnSize"), 1);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
    std::array<wchar_t, 16> title{};
    GetWindowTextW(control->m_hWnd, title.data(), static_cast<int>(title.size()));
    EXPECT_STREQ(title.data(), L"3DView");
}

TEST_F(WindowsControl, FirstPaintStartsTheTimerWhichDrawsFrames)
{
    const auto control = NewControl();
    EXPECT_FALSE(control->renderStarted);
    EXPECT_EQ(Calls("OnTimer"), 0);
    ASSERT_TRUE(RunFrames(10));
    EXPECT_TRUE(control->renderStarted);
    EXPECT_GE(Calls("OnPaint"), 1);
    EXPECT_EQ(Calls("GLDrawFrame"), Calls("OnTimer"));
    EXPECT_GT(control->framesPerSecond, 0);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(WindowsControl, FramesShowTheScene)
{
    const auto control = NewControl();
    ShowQuad(*control, kRedIndex);
    ASSERT_TRUE(RunFrames(2));
    const Picture picture = ReadLastFrame(control->m_hWnd);
    EXPECT_TRUE(IsReddish(picture.At(kWidth / 2, kHeight / 2))) << picture.At(kWidth / 2, kHeight / 2);
    EXPECT_EQ(picture.At(1, 1), kBlue);
    EXPECT_EQ(picture.At(kWidth - 2, kHeight - 2), kBlue);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(WindowsControl, MovedWindowGetsItsSizeMessage)
{
    const auto control = NewControl();
    control->MoveWindow(CRect(5, 5, 305, 155));
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 300, 150}));
    EXPECT_EQ(control->aspectRatio, 2.0F);
    EXPECT_EQ(Calls("OnSize"), 2);
}

TEST_F(WindowsControl, PostedDragsTurnPanAndZoom)
{
    const auto control = NewControl();
    ShowQuad(*control, kRedIndex);
    const auto drag = [&](WPARAM button) {
        PostMessageW(control->m_hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(50, 50));
        PostMessageW(control->m_hWnd, WM_MOUSEMOVE, button, MAKELPARAM(70, 40));
        const std::ptrdiff_t before = Calls("OnMouseMove");
        return RunUntil([&] { return Calls("OnMouseMove") >= before + 2; });
    };
    KARVGLCamera before = control->camera;
    ASSERT_TRUE(drag(MK_LBUTTON));
    EXPECT_FALSE(SameCamera(before, control->camera));
    EXPECT_EQ(Calls("GLMouseRotate"), 1);

    before = control->camera;
    ASSERT_TRUE(drag(MK_MBUTTON));
    EXPECT_FALSE(SameCamera(before, control->camera));
    EXPECT_EQ(Calls("GLMousePan"), 1);

    const float zoom = control->zoomFactor;
    ASSERT_TRUE(drag(MK_RBUTTON));
    // Ten pixels up: 1 - 10 x 0.01.
    EXPECT_EQ(control->zoomFactor, zoom * (static_cast<float>(-10) * 0.01F + 1.0F));
}

TEST_F(WindowsControl, PostedWheelZooms)
{
    const auto control = NewControl();
    ShowQuad(*control, kRedIndex);
    const float zoom = control->zoomFactor;
    PostMessageW(control->m_hWnd, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0);
    ASSERT_TRUE(RunUntil([&] { return Calls("GLMouseZoom") == 1; }));
    // One notch away from the user equals a drag of twelve pixels upward.
    EXPECT_EQ(control->zoomFactor, zoom * (static_cast<float>(-12) * 0.01F + 1.0F));
}

TEST_F(WindowsControl, MouseTurnsTheCameraWhileItsButtonIsDown)
{
    const auto control = NewControl();
    ShowQuad(*control, kRedIndex);
    ASSERT_TRUE(RunFrames(1));
    MovePointer(control->m_hWnd, 60, 50);
    ASSERT_TRUE(RunUntil([&] { return Calls("OnMouseMove") >= 1; })) << "the pointer is over the control";
    const KARVGLCamera before = control->camera;
    MovePointer(control->m_hWnd, 70, 50);
    RunFrames(3);
    EXPECT_TRUE(SameCamera(before, control->camera)) << "no button is down";

    SendMouse(MOUSEEVENTF_LEFTDOWN);
    for (int x = 70; x <= 110; x += 5)
        MovePointer(control->m_hWnd, x, 50);
    ASSERT_TRUE(RunUntil([&] { return control->lastMousePoint.x == 110.0F; }));
    SendMouse(MOUSEEVENTF_LEFTUP);
    // Forty pixels at half a degree each, about the vertical axis through the target.
    const AcGeVector3d from = before.position - before.target;
    const AcGeVector3d to = control->camera.position - control->camera.target;
    EXPECT_NEAR(from.angleTo(to), 20.0 * 0.017453292519943295, 1e-3);
    EXPECT_NEAR(from.length(), to.length(), 1e-9);
}

TEST_F(WindowsControl, WheelTurnsReachTheControl)
{
    const auto control = NewControl();
    ShowQuad(*control, kRedIndex);
    ASSERT_TRUE(RunFrames(1));
    MovePointer(control->m_hWnd, 60, 50);
    RunUntil([&] { return Calls("OnMouseMove") >= 1; });
    EXPECT_EQ(GetFocus(), control->m_hWnd) << "every redraw asks for the focus";
    const float zoom = control->zoomFactor;
    SendMouse(MOUSEEVENTF_WHEEL, {}, -WHEEL_DELTA);
    ASSERT_TRUE(RunUntil([&] { return Calls("GLMouseZoom") == 1; }));
    EXPECT_EQ(control->zoomFactor, zoom * (static_cast<float>(12) * 0.01F + 1.0F));
}

TEST_F(WindowsControl, HiddenControlDrawsOnceItIsShown)
{
    const auto control = NewControl();
    ::ShowWindow(control->m_hWnd, SW_HIDE);
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        DispatchMessageW(&message);
    EXPECT_FALSE(control->renderStarted);
    ::ShowWindow(control->m_hWnd, SW_SHOW);
    EXPECT_TRUE(RunFrames(1));
}

TEST_F(WindowsControl, DestroyedHostTakesTheWindowAndLeavesTheObject)
{
    const auto control = NewControl();
    ASSERT_TRUE(RunFrames(2));
    const HWND window = control->m_hWnd;
    host_.DestroyWindow();
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(control->m_hWnd, nullptr);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

} // namespace karv_test
