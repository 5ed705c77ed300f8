#include "viewer/window/viewport_window.h"

#include "platform/winsys/backends.h"
#include "platform/winsys/opengl.h"
#include "viewer/window/camera_messages.h"
#include "viewer/window/window_icon.h"

#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

/// Installs an observer of frames for its lifetime.
class FrameListener
{
  public:
    explicit FrameListener(winsys::FrameObserver observer) { winsys::SetFrameObserver(std::move(observer)); }
    FrameListener(const FrameListener&) = delete;
    FrameListener& operator=(const FrameListener&) = delete;
    ~FrameListener() { winsys::SetFrameObserver({}); }
};

/// Reads the finished frame of the current context. OpenGL delivers the bottom row first.
Picture ReadFrame(int width, int height)
{
    constexpr std::size_t kChannels = 4;
    const auto columns = static_cast<std::size_t>(width);
    const auto rows = static_cast<std::size_t>(height);
    std::vector<unsigned char> bytes(columns * rows * kChannels);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_SKIP_ROWS, 0);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    glPopClientAttrib();
    Picture picture(width, height);
    for (std::size_t row = 0; row < rows; ++row)
        for (std::size_t column = 0; column < columns; ++column) {
            const unsigned char* from = &bytes[((rows - 1 - row) * columns + column) * kChannels];
            picture.pixels[row * columns + column] = PackColor(from[0], from[1], from[2]);
        }
    return picture;
}

/// Restores the GL context that was current at its construction, if there was one.
class CurrentContextKeeper
{
  public:
    CurrentContextKeeper() : dc_(wglGetCurrentDC()), context_(wglGetCurrentContext()) {}
    CurrentContextKeeper(const CurrentContextKeeper&) = delete;
    CurrentContextKeeper& operator=(const CurrentContextKeeper&) = delete;
    ~CurrentContextKeeper()
    {
        if (context_ != nullptr && wglGetCurrentContext() != context_)
            wglMakeCurrent(dc_, context_);
    }

  private:
    HDC dc_;
    HGLRC context_;
};

} // namespace

void ViewportControl::Create(CRect rect, CWnd* parent, bool transparent)
{
    CreateCtrl(rect, parent, transparent);
    dc_ = wglGetCurrentDC();
    context_ = wglGetCurrentContext();
    if (GetSafeHwnd() == nullptr || context_ == nullptr)
        throw std::runtime_error("no OpenGL context of " + std::to_string(rect.Width()) + "x" +
                                 std::to_string(rect.Height()) + " pixels could be made");
}

void ViewportControl::MakeCurrent() const
{
    if (context_ != nullptr && (wglGetCurrentContext() != context_ || wglGetCurrentDC() != dc_))
        wglMakeCurrent(dc_, context_);
}

LRESULT ViewportControl::WindowProc(UINT message, WPARAM wparam, LPARAM lparam)
{
    // The messages of its creation leave the control's new context current.
    if (context_ == nullptr)
        return KARVOpenGLControl::WindowProc(message, wparam, lparam);
    // Messages nest: a viewport takes the focus while it draws, and another viewport handles the loss of it
    // meanwhile.
    const CurrentContextKeeper keeper;
    MakeCurrent();
    was_moved_ = was_moved_ || MovesCamera(message, wparam);
    return KARVOpenGLControl::WindowProc(message, wparam, lparam);
}

ViewportWindow::ViewportWindow(const std::wstring& title, PictureSize size, bool transparent)
{
    if (CreateEx(0, AfxRegisterWndClass(0, nullptr, nullptr, ProgramIcon()), title.c_str(),
                 WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, 0, size.width, size.height, nullptr,
                 nullptr) == FALSE)
        throw std::runtime_error("no window could be made");
    control_.Create(CRect(0, 0, size.width, size.height), this, transparent);
    control_.ForceRenderStart();
}

double ViewportWindow::Aspect() const
{
    CRect client;
    control_.GetClientRect(&client);
    const bool is_empty = client.Width() <= 0 || client.Height() <= 0;
    return is_empty ? 1.0 : static_cast<double>(client.Width()) / static_cast<double>(client.Height());
}

unsigned long ViewportWindow::FrameCount() const
{
    return winsys::GetSwapCount(control_.GetSafeHwnd());
}

std::string ViewportWindow::RendererName() const
{
    control_.MakeCurrent();
    const GLubyte* name = glGetString(GL_RENDERER);
    return name == nullptr ? std::string() : reinterpret_cast<const char*>(name);
}

Picture ViewportWindow::TakePicture()
{
    Picture picture;
    const FrameListener listener([&](HWND window, int width, int height) {
        if (window == control_.GetSafeHwnd())
            picture = ReadFrame(width, height);
    });
    // A timer message of any number draws a frame; this one is sent, so it does not wait in the queue.
    SendMessageW(control_.GetSafeHwnd(), WM_TIMER, 0, 0);
    if (picture.pixels.empty())
        throw std::runtime_error("no frame could be drawn");
    return picture;
}

const AFX_MSGMAP* ViewportWindow::GetMessageMap() const
{
    static constexpr std::array kEntries = {OnWmSize<&ViewportWindow::OnSize>()};
    static const AFX_MSGMAP map{CWnd::GetThisMessageMap(), kEntries};
    return &map;
}

void ViewportWindow::OnSize(UINT type, int cx, int cy)
{
    CWnd::OnSize(type, cx, cy);
    // The first message comes before the control exists.
    if (control_.GetSafeHwnd() == nullptr || cx <= 0 || cy <= 0)
        return;
    control_.MoveWindow(CRect(0, 0, cx, cy));
    OnViewportResized();
}

} // namespace viewer
