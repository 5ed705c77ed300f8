// Makes a multisampled frame readable: while the object lives, the current context reads from a copy with one
// sample a pixel. It knows OpenGL alone, no window and no backend, and touches no state but the read
// framebuffer.
#pragma once

namespace winsys
{
class Backend;
}

namespace winsys::core
{

/// HACK: some software rasterisers answer glReadPixels on a multisampled window with the first sample of each
/// pixel, so that edges look jagged; the standard says all of them count. Not needed where every driver
/// resolves when it reads.
class FrameResolve
{
  public:
    /// Copies the current context's default framebuffer of this size and binds the copy for reading. Does
    /// nothing where the framebuffer is not multisampled, another one is bound, or the context cannot copy
    /// (before OpenGL 3.0).
    FrameResolve(Backend& backend, int width, int height);
    FrameResolve(const FrameResolve&) = delete;
    FrameResolve& operator=(const FrameResolve&) = delete;
    ~FrameResolve();

  private:
    struct Functions;

    void Copy(const Functions& gl, int width, int height);

    Backend& backend_;
    unsigned int framebuffer_ = 0;
    unsigned int colors_ = 0;
};

} // namespace winsys::core
