// Colours of lines: of edges over faces, and readable ones on a background.
#pragma once

#include <vector>

namespace viewer
{

/// A colour with channels from 0 to 1.
struct Rgb {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
};

/// The colour of a palette index.
[[nodiscard]] Rgb PaletteColor(unsigned char color);

/// The contrast of two colours by their relative luminance, as WCAG 2 defines it: 1 for equal ones, 21 for
/// black and white.
[[nodiscard]] double ContrastOf(const Rgb& a, const Rgb& b);

/// The minimum contrast of readable lines.
inline constexpr double kMinContrast = 2.0;

/// The palette index for the edges of a piece over its faces: 0.35 of the piece's tone. A piece that is
/// nearly black has edges that are lighter than it, by 0.35 of the way to white.
[[nodiscard]] unsigned char EdgeColor(unsigned char piece_color);

/// The palette index for lines on a ground: `color` itself, or the ground's opposite where the contrast is
/// less than `kMinContrast`. The opposite is white or the darkest grey, whichever has more contrast.
[[nodiscard]] unsigned char ReadableColor(unsigned char color, const Rgb& ground);

/// All results of `ReadableColor` for this colour, on any ground. The colour itself is the first.
[[nodiscard]] std::vector<unsigned char> ReadableColors(unsigned char color);

} // namespace viewer
