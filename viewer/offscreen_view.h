// The control in a window that nobody sees, for pictures: it is created, fed and pumped as in any host, and
// its frames are read back.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "viewer/picture.h"

#include <functional>
#include <string>

namespace viewer
{

/// A hidden top-level window with the control over the whole of it. Needs a window layer that draws without a
/// display, to be chosen before the first one is made.
class OffscreenView
{
  public:
    /// `transparent` as the control takes it. Throws std::runtime_error where there is no window or no
    /// OpenGL.
    OffscreenView(int width, int height, bool transparent);

    [[nodiscard]] KARVOpenGLControl& Control() { return control_; }
    /// Frames drawn so far.
    [[nodiscard]] unsigned long FrameCount() const;
    /// The name that the OpenGL implementation gives itself.
    [[nodiscard]] std::string RendererName() const;

    /// Draws the next frame and returns it. Throws std::runtime_error where none comes.
    [[nodiscard]] Picture TakePicture();
    /// Dispatches messages, and so draws frames, until the condition holds; asked after each message. Throws
    /// std::runtime_error where messages bring no frames.
    void PumpUntil(const std::function<bool()>& condition);

  private:
    // In this order: the control's window goes before its parent.
    CWnd parent_;
    KARVOpenGLControl control_;
};

} // namespace viewer
