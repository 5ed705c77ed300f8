// Pixel formats as programs ask for them and are told of them: the descriptor of Windows and the attribute
// list of WGL_ARB_pixel_format, over a backend's list. Knows no windows.
#pragma once

#include "platform/winsys/backend.h"

#include <optional>
#include <span>
#include <vector>

namespace winsys::core
{

/// What a format must have at least.
struct FormatDemand {
    int color_bits = 0;
    int alpha_bits = 0;
    int depth_bits = 0;
    int stencil_bits = 0;
    int samples = 0;
};

/// Indices (from 1) of the formats that meet the demand, best first: 8 alpha bits, the fewest samples, the
/// smallest depth of at least 24 bits (below that the deepest), the smallest stencil; equal ones in the order
/// of the list. 16 depth bits would leave a scene with a near distance of 0.01 no precision.
[[nodiscard]] std::vector<int> RankFormats(std::span<const PixelFormat> formats, const FormatDemand& demand);

/// The best format for a descriptor, whose bits are minima; 0 where none will do.
[[nodiscard]] int ChooseFormat(std::span<const PixelFormat> formats, const PIXELFORMATDESCRIPTOR& descriptor);

[[nodiscard]] PIXELFORMATDESCRIPTOR Describe(const PixelFormat& format);

/// What `Backend::MatchFormats` answers by default. Bits, sample buffers and samples are minima, all else is
/// exact; an attribute outside wgl_extensions.h, or one without a value, gives none.
[[nodiscard]] std::optional<std::vector<int>> MatchAttributes(std::span<const PixelFormat> formats,
                                                              std::span<const int> attributes);

} // namespace winsys::core
