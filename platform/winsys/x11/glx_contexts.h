// OpenGL on X windows: the inner windows that have a format, the contexts that draw to them, and which of
// them is current. The inner window takes no input, so that the window around it does.
#pragma once

#include "platform/winsys/x11/glx_formats.h"

#include <map>
#include <set>
#include <span>

namespace winsys::x11
{

/// An inner window with a pixel format; all zero where a window has none.
struct Surface {
    int format = 0;
    ::Window window = 0;
    GLXWindow drawable = 0;
};

class GlxContexts
{
  public:
    /// Throws std::runtime_error where the server has no GLX or no format. The connection must outlive the
    /// object.
    explicit GlxContexts(Connection& connection);
    GlxContexts(const GlxContexts&) = delete;
    GlxContexts& operator=(const GlxContexts&) = delete;
    /// Contexts and surfaces are gone before.
    ~GlxContexts();

    [[nodiscard]] std::span<const PixelFormat> Formats() const { return bits_; }

    /// Covers this window, of this size, with a surface; one without a window where the server refuses.
    Surface AddSurface(::Window outer, SIZE size, int format);
    void ResizeSurface(const Surface& surface, SIZE size);
    /// Ends the surface, or forgets it where the server has destroyed its window (`is_gone`). A context that
    /// is current on it stays so, on a window that nobody sees.
    void RemoveSurface(const Surface& surface, bool is_gone);

    bool AddContext(HGLRC context, int format);
    void RemoveContext(HGLRC context);
    bool MakeCurrent(const Surface& surface, HGLRC context);
    void ReleaseCurrent();
    bool Swap(const Surface& surface);

    /// The connection is lost: no context is current from now on, so that GL calls do nothing and reach no
    /// server, and everything else is left as it is.
    void Abandon();

  private:
    /// A side that a surface can have, next to this one.
    [[nodiscard]] unsigned Side(LONG length) const;
    [[nodiscard]] const GlxFormat& Format(int format) const;
    Colormap ColormapOf(Visual* visual);
    Surface MakeSurface(::Window outer, SIZE size, int format);
    void DestroySurface(const Surface& surface, bool is_gone);
    /// A hidden surface of the format, to keep contexts current on.
    const Surface& Shelter(int format);
    /// Makes the driver ask for the size of the current window.
    void RefreshSize();
    void SwapWithoutWaiting(GLXDrawable drawable);

    Connection& connection_;
    std::vector<GlxFormat> formats_;
    std::vector<PixelFormat> bits_;
    std::map<Visual*, Colormap> colormaps_;
    std::map<int, Surface> shelters_;
    std::map<HGLRC, GLXContext> contexts_;
    /// Windows of another size than the driver may think.
    std::set<::Window> resized_;
    GLXContext current_context_ = nullptr;
    Surface current_surface_;
};

} // namespace winsys::x11
