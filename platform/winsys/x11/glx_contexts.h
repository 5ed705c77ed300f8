// OpenGL on X windows: the inner windows that have a format, the contexts that draw to them, and which of
// them is current. An inner window selects no input events, so input goes to the window around it.
#pragma once

#include "platform/winsys/x11/glx_formats.h"

#include <map>
#include <set>
#include <span>

namespace winsys::x11
{

/// An inner window with a pixel format; all zero if there is none.
struct Surface {
    int format = 0;
    ::Window window = 0;
    GLXWindow drawable = 0;
};

class GlxContexts
{
  public:
    /// Throws std::runtime_error if the server has no GLX or no suitable format. The connection must outlive
    /// the object.
    explicit GlxContexts(Connection& connection);
    GlxContexts(const GlxContexts&) = delete;
    GlxContexts& operator=(const GlxContexts&) = delete;
    /// Contexts and surfaces must have been removed.
    ~GlxContexts();

    [[nodiscard]] std::span<const PixelFormat> Formats() const { return pixel_formats_; }

    /// Covers this window of this size with a surface; returns an empty one if the server refuses it.
    Surface AddSurface(::Window outer, SIZE size, int format);
    void ResizeSurface(const Surface& surface, SIZE size);
    /// Destroys the surface; `is_gone`: the server has already destroyed its window. A context that is
    /// current on it becomes current on a hidden window.
    void RemoveSurface(const Surface& surface, bool is_gone);

    bool AddContext(HGLRC context, int format);
    void RemoveContext(HGLRC context);
    bool MakeCurrent(const Surface& surface, HGLRC context);
    void ReleaseCurrent();
    bool Swap(const Surface& surface);

    /// Handles a lost connection: no context is current from now on, so GL calls have no effect and do not
    /// reach the server. All other state stays as it is.
    void Abandon();

  private:
    /// The nearest side length, in pixels, that a surface can have.
    [[nodiscard]] unsigned SurfaceSide(LONG length) const;
    [[nodiscard]] const GlxFormat& Format(int format) const;
    Colormap ColormapOf(Visual* visual);
    Surface MakeSurface(::Window outer, SIZE size, int format);
    void DestroySurface(const Surface& surface, bool is_gone);
    /// A hidden surface of the format, for contexts whose own surface was destroyed.
    const Surface& FallbackSurface(int format);
    /// Makes the driver query the size of the current window.
    void RefreshSize();
    void SwapWithoutWaiting(GLXDrawable drawable);

    Connection& connection_;
    std::vector<GlxFormat> formats_;
    std::vector<PixelFormat> pixel_formats_;
    std::map<Visual*, Colormap> colormaps_;
    std::map<int, Surface> fallback_surfaces_;
    std::map<HGLRC, GLXContext> contexts_;
    /// Windows whose size the driver may not know yet.
    std::set<::Window> resized_;
    GLXContext current_context_ = nullptr;
    Surface current_surface_;
};

} // namespace winsys::x11
