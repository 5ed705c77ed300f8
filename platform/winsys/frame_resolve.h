// Makes a multisampled frame readable: while the object lives, the current context reads from a copy with one
// sample per pixel. Depends on OpenGL alone, not on windows. Changes no state except the read framebuffer.
//
// Everything here is for the thread that owns the windows.
#pragma once

#include "platform/export.h"

namespace winsys
{

/// HACK: some software rasterisers answer glReadPixels on a multisampled window with one sample of each pixel,
/// and not always with the same one. Edges look jagged, and two pictures of one frame differ. The standard
/// requires all samples to count. No longer needed once every driver resolves on reading.
class KARV_PLATFORM_API FrameResolve
{
  public:
    /// Copies the current context's default framebuffer of this size (pixels) and binds the copy for reading.
    /// Does nothing if the framebuffer is not multisampled, if another one is bound, or if the context cannot
    /// copy (before OpenGL 3.0).
    FrameResolve(int width, int height);
    FrameResolve(const FrameResolve&) = delete;
    FrameResolve& operator=(const FrameResolve&) = delete;
    /// Deletes the copy and binds the default framebuffer for reading again. The same context must be
    /// current.
    ~FrameResolve();

  private:
    struct Functions;

    void Copy(const Functions& gl, int width, int height);

    unsigned int framebuffer_ = 0;
    unsigned int colors_ = 0;
};

} // namespace winsys
