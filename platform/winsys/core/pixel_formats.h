// Chooses among a backend's pixel formats by the means of Windows: the descriptor, and the attribute list of
// WGL_ARB_pixel_format. Independent of windows.
#pragma once

#include "platform/winsys/pixel_format.h"
#include "platform/winsys/winsys.h"

#include <optional>
#include <span>
#include <vector>

namespace winsys::core
{

/// The minimum values of a format.
struct FormatRequirements {
    int color_bits = 0;
    int alpha_bits = 0;
    int depth_bits = 0;
    int stencil_bits = 0;
    int samples = 0;
};

/// Returns the indices (from 1) of the formats that meet the requirements, best first: 8 alpha bits, the
/// fewest samples, the smallest depth of at least 24 bits (otherwise the deepest), the smallest stencil;
/// equal ones in the order of the list. 16 depth bits would leave no precision to a scene with a near
/// distance of 0.01.
[[nodiscard]] std::vector<int> RankFormats(std::span<const PixelFormat> formats,
                                           const FormatRequirements& requirements);

/// Returns the best format for a descriptor, whose bits are minimums; 0 if no format meets it.
[[nodiscard]] int ChooseFormat(std::span<const PixelFormat> formats, const PIXELFORMATDESCRIPTOR& descriptor);

[[nodiscard]] PIXELFORMATDESCRIPTOR Describe(const PixelFormat& format);

/// The default of `Backend::MatchFormats`. Bits, sample buffers and samples are minimums, all other values
/// exact. None for an attribute that wgl_extensions.h lacks or that has no value.
[[nodiscard]] std::optional<std::vector<int>> MatchAttributes(std::span<const PixelFormat> formats,
                                                              std::span<const int> attributes);

} // namespace winsys::core
