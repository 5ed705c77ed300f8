// The pixel formats that a backend offers.
#pragma once

namespace winsys
{

/// A pixel format of windows. All formats are RGBA, double-buffered, and drawn to a window by OpenGL with
/// full acceleration; other formats of a system are left out.
struct PixelFormat {
    int red_bits = 8;
    int green_bits = 8;
    int blue_bits = 8;
    int alpha_bits = 8;
    int depth_bits = 0;
    int stencil_bits = 0;
    /// Samples per pixel; 0 if the format is not multisampled.
    int samples = 0;
};

} // namespace winsys
