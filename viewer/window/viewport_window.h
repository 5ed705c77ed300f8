// A top-level window whose client area is one viewport: visible for a user, or hidden for pictures. It does
// not know what the viewport shows.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "viewer/output/picture.h"

#include <string>

namespace viewer
{

/// The viewport control for a program with several of them. Its own GL context is current while it handles a
/// message; afterwards the previous context is current again.
class ViewportControl : public KARVOpenGLControl
{
  public:
    /// Creates the window like `CreateCtrl` and keeps its context. Throws std::runtime_error where no window
    /// or no OpenGL context can be created.
    void Create(CRect rect, CWnd* parent, bool transparent);
    /// Makes the control's context current. Every operation of the control that draws needs that.
    void MakeCurrent() const;

    LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override;

    /// Whether the user has moved the camera with the mouse, or tried to, since the last `ForgetUser`.
    [[nodiscard]] bool WasMovedByUser() const { return was_moved_; }
    void ForgetUser() { was_moved_ = false; }

  private:
    // Not owned: the control deletes its context, and the device context belongs to the window.
    HDC dc_ = nullptr;
    HGLRC context_ = nullptr;
    bool was_moved_ = false;
};

/// The window. Any number of them may exist; every operation makes its own control's context current.
class ViewportWindow : public CWnd
{
  public:
    /// Creates a hidden window, which draws frames all the same, with a client area of this size.
    /// `transparent` goes to the control. Throws std::runtime_error where no window or no OpenGL context can
    /// be created.
    ViewportWindow(const std::wstring& title, PictureSize size, bool transparent);

    [[nodiscard]] ViewportControl& Control() { return control_; }
    /// Width divided by height of the control's client area; 1 where that is empty.
    [[nodiscard]] double Aspect() const;
    /// The number of frames drawn so far.
    [[nodiscard]] unsigned long FrameCount() const;
    /// The name of the OpenGL implementation.
    [[nodiscard]] std::string RendererName() const;
    /// Draws a frame and returns it. Throws std::runtime_error where no frame can be drawn.
    [[nodiscard]] Picture TakePicture();

  protected:
    [[nodiscard]] const AFX_MSGMAP* GetMessageMap() const override;
    void OnSize(UINT type, int cx, int cy);
    /// Called when the control has a new size that is not empty.
    virtual void OnViewportResized() {}

  private:
    ViewportControl control_;
};

} // namespace viewer
