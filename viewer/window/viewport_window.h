// A top-level window with the viewport over the whole of it: shown to a user, or hidden, for pictures. What
// is in the viewport is not its business.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "viewer/output/picture.h"

#include <string>

namespace viewer
{

/// The control as a program with several of them needs it: whatever message it handles,
/// its own GL context is current, and afterwards the one that was before.
class ViewportControl : public KARVOpenGLControl
{
  public:
    /// Creates the window as `CreateCtrl` does and notes its context. Throws std::runtime_error where there
    /// is no window or no OpenGL.
    void Create(CRect rect, CWnd* parent, bool transparent);
    /// Makes the control's context current, as every call of the control needs it that draws.
    void MakeCurrent() const;

    LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override;

    /// Whether the user has moved the camera with the mouse, or tried to, since `ForgetUser`.
    [[nodiscard]] bool WasMovedByUser() const { return was_moved_; }
    void ForgetUser() { was_moved_ = false; }

  private:
    // Neither is owned: the control deletes its context, and the device context is the window's.
    HDC dc_ = nullptr;
    HGLRC context_ = nullptr;
    bool was_moved_ = false;
};

/// Any number of them may be open; every operation makes its own control's context current.
class ViewportWindow : public CWnd
{
  public:
    /// A hidden window, which draws frames all the same, with a client area of this size wherever the system
    /// places it. `transparent` as the control takes it. Throws std::runtime_error where there is no window
    /// or no OpenGL.
    ViewportWindow(const std::wstring& title, PictureSize size, bool transparent);

    [[nodiscard]] ViewportControl& Control() { return control_; }
    /// Width over height of what the control draws on; 1 where nothing of it is left.
    [[nodiscard]] double Aspect() const;
    /// Frames drawn so far.
    [[nodiscard]] unsigned long FrameCount() const;
    /// The name that the OpenGL implementation gives itself.
    [[nodiscard]] std::string RendererName() const;
    /// Draws a frame and returns it. Throws std::runtime_error where that fails.
    [[nodiscard]] Picture TakePicture();

  protected:
    [[nodiscard]] const AFX_MSGMAP* GetMessageMap() const override;
    void OnSize(UINT type, int cx, int cy);
    /// The control has a new size, which is not empty.
    virtual void OnViewportResized() {}

  private:
    ViewportControl control_;
};

} // namespace viewer
