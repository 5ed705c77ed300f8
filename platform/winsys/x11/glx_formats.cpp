#include "platform/winsys/x11/glx_formats.h"

#include <algorithm>
#include <memory>
#include <span>
#include <tuple>

#include <X11/Xutil.h>

namespace winsys::x11
{
namespace
{

struct XFreer {
    void operator()(void* memory) const { XFree(memory); }
};

/// From GLX_ARB_framebuffer_sRGB, which older headers lack.
constexpr int kFramebufferSrgbCapable = 0x20B2;

class Config
{
  public:
    Config(Display* display, GLXFBConfig config) : display_(display), config_(config) {}

    [[nodiscard]] GLXFBConfig Get() const { return config_; }

    /// 0 if the server does not know the attribute.
    [[nodiscard]] int Attribute(int name) const
    {
        int value = 0;
        return glXGetFBConfigAttrib(display_, config_, name, &value) == 0 ? value : 0;
    }

    [[nodiscard]] bool IsUsable() const
    {
        const int alpha = Attribute(GLX_ALPHA_SIZE);
        return (Attribute(GLX_RENDER_TYPE) & GLX_RGBA_BIT) != 0 &&
               (Attribute(GLX_DRAWABLE_TYPE) & GLX_WINDOW_BIT) != 0 && Attribute(GLX_DOUBLEBUFFER) != 0 &&
               Attribute(GLX_STEREO) == 0 && Attribute(GLX_X_VISUAL_TYPE) == GLX_TRUE_COLOR &&
               Attribute(GLX_CONFIG_CAVEAT) != GLX_NON_CONFORMANT_CONFIG && Attribute(GLX_RED_SIZE) == 8 &&
               Attribute(GLX_GREEN_SIZE) == 8 && Attribute(GLX_BLUE_SIZE) == 8 && (alpha == 0 || alpha == 8);
    }

    /// Null if the visual has another depth.
    [[nodiscard]] Visual* FindVisual() const
    {
        const std::unique_ptr<XVisualInfo, XFreer> info(glXGetVisualFromFBConfig(display_, config_));
        return info != nullptr && info->depth == kVisualDepth ? info->visual : nullptr;
    }

    [[nodiscard]] PixelFormat Bits() const
    {
        PixelFormat bits;
        bits.alpha_bits = Attribute(GLX_ALPHA_SIZE);
        bits.depth_bits = Attribute(GLX_DEPTH_SIZE);
        bits.stencil_bits = Attribute(GLX_STENCIL_SIZE);
        bits.samples = Attribute(GLX_SAMPLE_BUFFERS) != 0 ? Attribute(GLX_SAMPLES) : 0;
        return bits;
    }

    /// The parts of a format that are not used, such as an accumulation buffer; smaller is better.
    /// GLX_SLOW_CONFIG does not count: software rasterisers mark their formats with it.
    [[nodiscard]] auto UnusedParts() const
    {
        return std::tuple(Attribute(GLX_ACCUM_RED_SIZE), Attribute(GLX_AUX_BUFFERS),
                          Attribute(kFramebufferSrgbCapable));
    }

  private:
    Display* display_;
    GLXFBConfig config_;
};

auto Kind(const PixelFormat& bits)
{
    return std::tuple(bits.alpha_bits, bits.depth_bits, bits.stencil_bits, bits.samples);
}

std::vector<Config> UsableConfigs(const Connection& connection)
{
    int count = 0;
    const std::unique_ptr<GLXFBConfig, XFreer> list(
        glXGetFBConfigs(connection.Get(), connection.Screen(), &count));
    std::vector<Config> usable;
    for (GLXFBConfig config : std::span(list.get(), list != nullptr ? static_cast<std::size_t>(count) : 0))
        if (const Config candidate(connection.Get(), config); candidate.IsUsable())
            usable.push_back(candidate);
    std::ranges::stable_sort(usable, {}, &Config::UnusedParts);
    return usable;
}

} // namespace

std::vector<GlxFormat> ListFormats(const Connection& connection)
{
    std::vector<GlxFormat> formats;
    if (glXQueryExtension(connection.Get(), nullptr, nullptr) == False)
        return formats;
    for (const Config& config : UsableConfigs(connection)) {
        Visual* visual = config.FindVisual();
        const PixelFormat bits = config.Bits();
        const bool known = std::ranges::any_of(
            formats, [&](const GlxFormat& other) { return Kind(other.bits) == Kind(bits); });
        if (visual != nullptr && !known)
            formats.push_back({config.Get(), visual, bits});
    }
    return formats;
}

} // namespace winsys::x11
