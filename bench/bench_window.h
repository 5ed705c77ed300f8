// The host's side of the measured control: its parent window, and what a host does to show a scene.
#pragma once

#include "bench/scenes.h"
#include "control/KARVOpenGLControl.h"
#include "platform/framework/window.h"
#include "platform/winsys/winsys.h"

namespace karv_bench
{

/// Frames are drawn and swapped, but shown nowhere: a display would pace them. Before the first window.
void UseOffscreenWindows();

/// A hidden top-level window.
class HostWindow : public CWnd
{
  public:
    HostWindow();
};

/// The colour that everything is drawn in, as an index and as the palette gives it.
inline constexpr unsigned short kColorIndex = 4;
[[nodiscard]] KARVGLVertex PaletteColor();

/// A control with its context, which can be made current again.
class MeasuredControl
{
  public:
    /// A square control; its context is current afterwards.
    MeasuredControl(HostWindow& host, int side);

    [[nodiscard]] KARVOpenGLControl& Control() { return control_; }
    [[nodiscard]] int PixelFormat() const;
    void MakeCurrent() const;
    /// Shows the cube that scenes fill from a corner.
    void ShowScene();
    /// One frame, as the window's timer brings it: drawn and swapped.
    void DrawFrame() const;

  private:
    KARVOpenGLControl control_;
    HGLRC context_ = nullptr;
};

} // namespace karv_bench
