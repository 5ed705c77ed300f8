// The host of the measured control: the parent window, and the calls that show a scene.
#pragma once

#include "bench/scenes.h"
#include "control/KARVOpenGLControl.h"
#include "platform/framework/window.h"
#include "platform/winsys/winsys.h"

namespace karv_bench
{

/// Makes windows off-screen: frames are drawn and swapped but not displayed, because a display would limit
/// their rate. To be called before the first window is created.
void UseOffscreenWindows();

/// A hidden top-level window.
class HostWindow : public CWnd
{
  public:
    HostWindow();
};

/// The colour index of everything that is drawn.
inline constexpr unsigned short kColorIndex = 4;
/// The palette's colour for that index.
[[nodiscard]] KARVGLVertex PaletteColor();

/// A control and its context.
class MeasuredControl
{
  public:
    /// Creates a control of `side` by `side` pixels. Its context is current afterwards.
    MeasuredControl(HostWindow& host, int side);

    [[nodiscard]] KARVOpenGLControl& Control() { return control_; }
    [[nodiscard]] int PixelFormat() const;
    void MakeCurrent() const;
    /// Points the camera at the cube that every scene fills, looking at one of its corners.
    void ShowScene();
    /// Draws and swaps one frame by sending the window a timer message.
    void DrawFrame() const;

  private:
    KARVOpenGLControl control_;
    HGLRC context_ = nullptr;
};

} // namespace karv_bench
