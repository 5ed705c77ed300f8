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
        bits_.push_back(format.bits);
}

GlxContexts::~GlxContexts()
{
    if (connection_.IsAlive()) {
        for (const auto& [format, shelter] : shelters_)
            DestroySurface(shelter, false);
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
    XResizeWindow(connection_.Get(), surface.window, Side(size.cx), Side(size.cy));
    resized_.insert(surface.window);
    if (current_context_ != nullptr && current_surface_.window == surface.window)
        RefreshSize();
}

void GlxContexts::RemoveSurface(const Surface& surface, bool is_gone)
{
    if (current_context_ != nullptr && current_surface_.window == surface.window) {
        // The driver may ask the server for the size of a window that is gone.
        ErrorTrap trap(connection_);
        current_surface_ = Shelter(surface.format);
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

unsigned GlxContexts::Side(LONG length) const
{
    // NOTE: Xlib ends the process when a driver sends it a picture of 2 GiB, which a window of the greatest
    // size has.
    constexpr LONG kAlwaysPossible = 8192;
    const LONG screen = std::max(DisplayWidth(connection_.Get(), connection_.Screen()),
                                 DisplayHeight(connection_.Get(), connection_.Screen()));
    return static_cast<unsigned>(std::clamp<LONG>(length, 1, std::max(kAlwaysPossible, screen)));
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
    // No background: the server would paint it on every resize, before the next frame. The picture of before
    // stays in its corner until then.
    attributes.background_pixmap = 0;
    attributes.bit_gravity = NorthWestGravity;
    // Exposure only. Input goes to the window around it.
    attributes.event_mask = ExposureMask;
    ErrorTrap trap(connection_);
    Surface surface;
    surface.format = format;
    surface.window = XCreateWindow(
        connection_.Get(), outer, 0, 0, Side(size.cx), Side(size.cy), 0, kVisualDepth, InputOutput,
        chosen.visual, CWBackPixmap | CWBorderPixel | CWBitGravity | CWEventMask | CWColormap, &attributes);
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

const Surface& GlxContexts::Shelter(int format)
{
    const auto known = shelters_.find(format);
    return known != shelters_.end()
               ? known->second
               : shelters_.emplace(format, MakeSurface(connection_.Root(), {1, 1}, format)).first->second;
}

// HACK: Mesa's software rasterisers look for the size of a window when they swap, and draw at the one of
// before until then: the first frame after a resize would be cut off. Showing the frame of before once more
// makes them look. Not needed where a driver looks whenever it begins a frame, and not done there: what it
// would show is undefined.
void GlxContexts::RefreshSize()
{
    resized_.erase(current_surface_.window);
    // Looked up rather than linked, as the program may watch what goes through the library's own entry
    // points.
    const auto get_string = FindFunction<const GLubyte* (*)(GLenum)>("glGetString");
    const auto* const renderer = reinterpret_cast<const char*>(get_string(GL_RENDERER));
    const std::string_view name = renderer == nullptr ? "" : renderer;
    if (name.starts_with("llvmpipe") || name.starts_with("softpipe"))
        glXSwapBuffers(connection_.Get(), current_surface_.drawable);
}

// Frames are paced by the timer. Waiting for the screen would hold up every message meanwhile.
void GlxContexts::SwapWithoutWaiting(GLXDrawable drawable)
{
    const char* const words = glXQueryExtensionsString(connection_.Get(), connection_.Screen());
    const std::string_view extensions = words == nullptr ? "" : words;
    if (HasWord(extensions, "GLX_EXT_swap_control")) {
        if (const auto set = FindFunction<PFNGLXSWAPINTERVALEXTPROC>("glXSwapIntervalEXT"))
            set(connection_.Get(), drawable, 0);
    } else if (HasWord(extensions, "GLX_MESA_swap_control")) {
        if (const auto set = FindFunction<PFNGLXSWAPINTERVALMESAPROC>("glXSwapIntervalMESA"))
            set(0);
    }
}

} // namespace winsys::x11
