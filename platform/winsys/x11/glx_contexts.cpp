#include "platform/winsys/x11/glx_contexts.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>

namespace winsys::x11
{
namespace
{

bool HasWord(std::string_view words, std::string_view word)
{
    const auto padded = [](std::string_view text) { return std::string(1, ' ').append(text).append(1, ' '); };
    return padded(words).find(padded(word)) != std::string::npos;
}

template <typename Function>
Function FindFunction(const char* name)
{
    return reinterpret_cast<Function>(glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name)));
}

} // namespace

GlxContexts::GlxContexts(Connection& connection) : connection_(connection), formats_(ListFormats(connection))
{
    if (formats_.empty())
        throw std::runtime_error("the X server has no GLX with windows of depth 24 and 8 bits a channel");
    for (const GlxFormat& format : formats_)
        pixel_formats_.push_back(format.bits);
}

GlxContexts::~GlxContexts()
{
    if (connection_.IsAlive()) {
        for (const auto& [format, surface] : fallback_surfaces_)
            DestroySurface(surface, false);
        for (const auto& [visual, colormap] : colormaps_)
            XFreeColormap(connection_.Get(), colormap);
    }
}

Surface GlxContexts::AddSurface(::Window outer, SIZE size, int format)
{
    const Surface surface = MakeSurface(outer, size, format);
    if (surface.window != 0)
        XMapWindow(connection_.Get(), surface.window);
    return surface;
}

void GlxContexts::ResizeSurface(const Surface& surface, SIZE size)
{
    XResizeWindow(connection_.Get(), surface.window, SurfaceSide(size.cx), SurfaceSide(size.cy));
    resized_.insert(surface.window);
    if (current_context_ != nullptr && current_surface_.window == surface.window)
        RefreshSize();
}

void GlxContexts::RemoveSurface(const Surface& surface, bool is_gone)
{
    if (current_context_ != nullptr && current_surface_.window == surface.window) {
        // The driver may query the size of the destroyed window, which is an error.
        ErrorTrap trap(connection_);
        current_surface_ = FallbackSurface(surface.format);
        if (glXMakeContextCurrent(connection_.Get(), current_surface_.drawable, current_surface_.drawable,
                                  current_context_) == False) {
            ReleaseCurrent();
        }
    }
    resized_.erase(surface.window);
    DestroySurface(surface, is_gone);
}

bool GlxContexts::AddContext(HGLRC context, int format)
{
    ErrorTrap trap(connection_);
    const GLXContext made =
        glXCreateNewContext(connection_.Get(), Format(format).config, GLX_RGBA_TYPE, nullptr, True);
    if (trap.Caught() || made == nullptr)
        return false;
    contexts_.emplace(context, made);
    return true;
}

void GlxContexts::RemoveContext(HGLRC context)
{
    glXDestroyContext(connection_.Get(), contexts_[context]);
    contexts_.erase(context);
}

bool GlxContexts::MakeCurrent(const Surface& surface, HGLRC context)
{
    ErrorTrap trap(connection_);
    const GLXContext wanted = contexts_[context];
    if (glXMakeContextCurrent(connection_.Get(), surface.drawable, surface.drawable, wanted) == False ||
        trap.Caught()) {
        return false;
    }
    current_context_ = wanted;
    current_surface_ = surface;
    if (resized_.contains(surface.window))
        RefreshSize();
    SwapWithoutWaiting(surface.drawable);
    return true;
}

void GlxContexts::ReleaseCurrent()
{
    glXMakeContextCurrent(connection_.Get(), 0, 0, nullptr);
    current_context_ = nullptr;
    current_surface_ = {};
}

bool GlxContexts::Swap(const Surface& surface)
{
    glXSwapBuffers(connection_.Get(), surface.drawable);
    return connection_.IsAlive();
}

void GlxContexts::Abandon()
{
    if (current_context_ != nullptr)
        ReleaseCurrent();
}

unsigned GlxContexts::SurfaceSide(LONG length) const
{
    // NOTE: Xlib ends the process if a driver sends it an image of 2 GiB, the size of a window's image at the
    // maximum side.
    constexpr LONG kMinLimit = 8192;
    const LONG screen = std::max(DisplayWidth(connection_.Get(), connection_.Screen()),
                                 DisplayHeight(connection_.Get(), connection_.Screen()));
    return static_cast<unsigned>(std::clamp<LONG>(length, 1, std::max(kMinLimit, screen)));
}

const GlxFormat& GlxContexts::Format(int format) const
{
    return formats_[static_cast<std::size_t>(format) - 1];
}

Colormap GlxContexts::ColormapOf(Visual* visual)
{
    const auto known = colormaps_.find(visual);
    if (known != colormaps_.end())
        return known->second;
    const Colormap made = XCreateColormap(connection_.Get(), connection_.Root(), visual, AllocNone);
    return colormaps_.emplace(visual, made).first->second;
}

Surface GlxContexts::MakeSurface(::Window outer, SIZE size, int format)
{
    const GlxFormat& chosen = Format(format);
    XSetWindowAttributes attributes{};
    attributes.colormap = ColormapOf(chosen.visual);
    // No background: the server would paint it on every resize, before the next frame. Until then the
    // previous frame stays in its corner.
    attributes.background_pixmap = 0;
    attributes.bit_gravity = NorthWestGravity;
    // Exposure only; input goes to the window around it.
    attributes.event_mask = ExposureMask;
    ErrorTrap trap(connection_);
    Surface surface;
    surface.format = format;
    surface.window =
        XCreateWindow(connection_.Get(), outer, 0, 0, SurfaceSide(size.cx), SurfaceSide(size.cy), 0,
                      kVisualDepth, InputOutput, chosen.visual,
                      CWBackPixmap | CWBorderPixel | CWBitGravity | CWEventMask | CWColormap, &attributes);
    surface.drawable = glXCreateWindow(connection_.Get(), chosen.config, surface.window, nullptr);
    return trap.Caught() ? Surface{} : surface;
}

void GlxContexts::DestroySurface(const Surface& surface, bool is_gone)
{
    ErrorTrap trap(connection_);
    glXDestroyWindow(connection_.Get(), surface.drawable);
    if (!is_gone)
        XDestroyWindow(connection_.Get(), surface.window);
}

const Surface& GlxContexts::FallbackSurface(int format)
{
    const auto known = fallback_surfaces_.find(format);
    return known != fallback_surfaces_.end()
               ? known->second
               : fallback_surfaces_.emplace(format, MakeSurface(connection_.Root(), {1, 1}, format))
                     .first->second;
}

/// HACK: Mesa's software rasterisers query the size of a window when they swap, and draw at the previous size
/// until then: the first frame after a resize would be clipped. Showing the previous frame again makes them
/// query the size. No longer needed once they query it at the start of a frame. Not done with other drivers:
/// they show undefined contents.
void GlxContexts::RefreshSize()
{
    resized_.erase(current_surface_.window);
    // Looked up, not linked: the program may intercept the library's own entry points.
    const auto get_string = FindFunction<const GLubyte* (*)(GLenum)>("glGetString");
    const auto* const renderer = reinterpret_cast<const char*>(get_string(GL_RENDERER));
    const std::string_view name = renderer != nullptr ? renderer : "";
    if (name.starts_with("llvmpipe") || name.starts_with("softpipe"))
        glXSwapBuffers(connection_.Get(), current_surface_.drawable);
}

/// Frames are paced by a timer. Waiting for the vertical blank would delay all messages.
void GlxContexts::SwapWithoutWaiting(GLXDrawable drawable)
{
    const char* const words = glXQueryExtensionsString(connection_.Get(), connection_.Screen());
    const std::string_view extensions = words != nullptr ? words : "";
    if (HasWord(extensions, "GLX_EXT_swap_control")) {
        if (const auto set = FindFunction<PFNGLXSWAPINTERVALEXTPROC>("glXSwapIntervalEXT"))
            set(connection_.Get(), drawable, 0);
    } else if (HasWord(extensions, "GLX_MESA_swap_control")) {
        if (const auto set = FindFunction<PFNGLXSWAPINTERVALMESAPROC>("glXSwapIntervalMESA"))
            set(0);
    }
}

} // namespace winsys::x11
