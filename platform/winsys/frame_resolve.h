// Makes a multisampled frame readable: while the object lives, the current context reads from a copy with one
// sample a pixel. It knows OpenGL alone, no window, and touches no state but the read
// framebuffer.
//
// Everything here is for the thread that owns the windows.
#pragma once

#include "platform/winsys/export.h"

namespace winsys
{

/// Any OpenGL function; cast to its own type before the call.
using GlFunction = void (*)();

/// The address of an OpenGL function of any version for the current context; null where there is none.
[[nodiscard]] KARV_PLATFORM_API GlFunction FindGlFunction(const char* name);

/// HACK: some software rasterisers answer glReadPixels on a multisampled window with the first sample of each
/// pixel, so that edges look jagged; the standard says all of them count. Not needed where every driver
/// resolves when it reads.
class KARV_PLATFORM_API FrameResolve
{
  public:
    /// Copies the current context's default framebuffer of this size and binds the copy for reading. Does
    /// nothing where the framebuffer is not multisampled, another one is bound, or the context cannot copy
    /// (before OpenGL 3.0).
    FrameResolve(int width, int height);
    FrameResolve(const FrameResolve&) = delete;
    FrameResolve& operator=(const FrameResolve&) = delete;
    ~FrameResolve();

  private:
    struct Functions;

    void Copy(const Functions& gl, int width, int height);

    unsigned int framebuffer_ = 0;
    unsigned int colors_ = 0;
};

} // namespace winsys
