#include "platform/winsys/core/pixel_formats.h"

#include "platform/winsys/wgl_extensions.h"

#include <algorithm>
#include <tuple>

namespace winsys::core
{
namespace
{

constexpr int kUsefulDepthBits = 24;

/// Bits of the whole colour buffer including alpha: a descriptor that asks for 32 bits means that.
int ColorBits(const PixelFormat& format)
{
    return format.red_bits + format.green_bits + format.blue_bits + format.alpha_bits;
}

bool Meets(const PixelFormat& format, const FormatRequirements& requirements)
{
    return ColorBits(format) >= requirements.color_bits && format.alpha_bits >= requirements.alpha_bits &&
           format.depth_bits >= requirements.depth_bits && format.stencil_bits >= requirements.stencil_bits &&
           format.samples >= requirements.samples;
}

/// A sort key; smaller is better.
auto Rank(const PixelFormat& format)
{
    const bool shallow = format.depth_bits < kUsefulDepthBits;
    const int depth_order = shallow ? -format.depth_bits : format.depth_bits;
    return std::tuple(format.alpha_bits != 8, format.samples, shallow, depth_order, format.stencil_bits);
}

/// Adds one attribute to the requirements. Sets `impossible` if no format of the layer can have the value.
/// False if the attribute is unknown.
bool AddAttribute(int attribute, int value, FormatRequirements& requirements, bool& impossible)
{
    switch (attribute) {
    case WGL_DRAW_TO_WINDOW_ARB:
    case WGL_SUPPORT_OPENGL_ARB:
    case WGL_DOUBLE_BUFFER_ARB:
        impossible = impossible || value == 0;
        return true;
    case WGL_ACCELERATION_ARB:
        impossible = impossible || value != WGL_FULL_ACCELERATION_ARB;
        return true;
    case WGL_PIXEL_TYPE_ARB:
        impossible = impossible || value != WGL_TYPE_RGBA_ARB;
        return true;
    case WGL_COLOR_BITS_ARB:
        requirements.color_bits = value;
        return true;
    case WGL_ALPHA_BITS_ARB:
        requirements.alpha_bits = value;
        return true;
    case WGL_DEPTH_BITS_ARB:
        requirements.depth_bits = value;
        return true;
    case WGL_STENCIL_BITS_ARB:
        requirements.stencil_bits = value;
        return true;
    case WGL_SAMPLE_BUFFERS_ARB:
        // A format has at most one sample buffer, and only if it has samples.
        impossible = impossible || value > 1;
        requirements.samples = std::max(requirements.samples, value);
        return true;
    case WGL_SAMPLES_ARB:
        requirements.samples = std::max(requirements.samples, value);
        return true;
    default:
        return false;
    }
}

} // namespace

std::vector<int> RankFormats(std::span<const PixelFormat> formats, const FormatRequirements& requirements)
{
    std::vector<int> ranked;
    for (std::size_t i = 0; i < formats.size(); ++i)
        if (Meets(formats[i], requirements))
            ranked.push_back(static_cast<int>(i) + 1);
    std::ranges::stable_sort(ranked, {},
                             [&](int format) { return Rank(formats[static_cast<std::size_t>(format) - 1]); });
    return ranked;
}

int ChooseFormat(std::span<const PixelFormat> formats, const PIXELFORMATDESCRIPTOR& descriptor)
{
    if (descriptor.iPixelType != PFD_TYPE_RGBA)
        return 0;
    const std::vector<int> ranked = RankFormats(formats, {.color_bits = descriptor.cColorBits,
                                                          .alpha_bits = descriptor.cAlphaBits,
                                                          .depth_bits = descriptor.cDepthBits,
                                                          .stencil_bits = descriptor.cStencilBits});
    return ranked.empty() ? 0 : ranked.front();
}

PIXELFORMATDESCRIPTOR Describe(const PixelFormat& format)
{
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.nSize = sizeof descriptor;
    descriptor.nVersion = 1;
    descriptor.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    descriptor.iPixelType = PFD_TYPE_RGBA;
    descriptor.cColorBits = static_cast<BYTE>(ColorBits(format));
    descriptor.cRedBits = static_cast<BYTE>(format.red_bits);
    descriptor.cGreenBits = static_cast<BYTE>(format.green_bits);
    descriptor.cBlueBits = static_cast<BYTE>(format.blue_bits);
    descriptor.cAlphaBits = static_cast<BYTE>(format.alpha_bits);
    descriptor.cBlueShift = 0;
    descriptor.cGreenShift = descriptor.cBlueBits;
    descriptor.cRedShift = static_cast<BYTE>(descriptor.cGreenShift + descriptor.cGreenBits);
    descriptor.cAlphaShift = static_cast<BYTE>(descriptor.cRedShift + descriptor.cRedBits);
    descriptor.cDepthBits = static_cast<BYTE>(format.depth_bits);
    descriptor.cStencilBits = static_cast<BYTE>(format.stencil_bits);
    descriptor.iLayerType = PFD_MAIN_PLANE;
    return descriptor;
}

std::optional<std::vector<int>> MatchAttributes(std::span<const PixelFormat> formats,
                                                std::span<const int> attributes)
{
    if (attributes.size() % 2 != 0)
        return std::nullopt;
    FormatRequirements requirements;
    bool impossible = false;
    for (std::size_t i = 0; i < attributes.size(); i += 2)
        if (!AddAttribute(attributes[i], attributes[i + 1], requirements, impossible))
            return std::nullopt;
    return impossible ? std::vector<int>{} : RankFormats(formats, requirements);
}

} // namespace winsys::core
