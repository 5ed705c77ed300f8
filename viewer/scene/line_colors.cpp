#include "viewer/scene/line_colors.h"

#include "platform/host/cm/color.h"

#include <algorithm>
#include <cmath>

namespace viewer
{

namespace
{

/// The share of the piece's tone in its dark edges, and of white in its light ones.
constexpr double kEdgeTone = 0.35;

constexpr unsigned char kWhite = 7;
constexpr unsigned char kDarkestGray = 250; ///< the palette has no black

/// The relative luminance and the offset that WCAG 2 adds for stray light.
double LightOf(const Rgb& color)
{
    constexpr double kStrayLight = 0.05;
    return 0.2126 * LinearIntensity(color.red) + 0.7152 * LinearIntensity(color.green) +
           0.0722 * LinearIntensity(color.blue) + kStrayLight;
}

unsigned char NearestTo(const Rgb& color)
{
    const auto channel = [](double value) {
        return static_cast<unsigned char>(std::lround(255.0 * std::clamp(value, 0.0, 1.0)));
    };
    return NearestColorIndex(channel(color.red), channel(color.green), channel(color.blue));
}

} // namespace

Rgb PaletteColor(unsigned char color)
{
    const unsigned packed = AcCmEntityColor::lookUpRGB(color);
    const auto channel = [&](unsigned shift) { return static_cast<double>(packed >> shift & 0xFFU) / 255.0; };
    return {channel(16), channel(8), channel(0)};
}

double ContrastOf(const Rgb& a, const Rgb& b)
{
    const auto [darker, lighter] = std::minmax({LightOf(a), LightOf(b)});
    return lighter / darker;
}

unsigned char EdgeColor(unsigned char piece_color)
{
    const auto mix = [](const Rgb& tone, double share, double white) {
        return Rgb{share * tone.red + white, share * tone.green + white, share * tone.blue + white};
    };
    const Rgb tone = PaletteColor(piece_color);
    const unsigned char dark = NearestTo(mix(tone, kEdgeTone, 0.0));
    if (ContrastOf(PaletteColor(dark), tone) >= kMinContrast)
        return dark;
    return NearestTo(mix(tone, 1.0 - kEdgeTone, kEdgeTone));
}

unsigned char ReadableColor(unsigned char color, const Rgb& ground)
{
    if (ContrastOf(PaletteColor(color), ground) >= kMinContrast)
        return color;
    const bool is_dark =
        ContrastOf(PaletteColor(kWhite), ground) >= ContrastOf(PaletteColor(kDarkestGray), ground);
    return is_dark ? kWhite : kDarkestGray;
}

std::vector<unsigned char> ReadableColors(unsigned char color)
{
    // On a ground of light g, the contrast to a colour of light c is below the limit m for g from c/m to c*m.
    // White is the opposite of grounds up to the geometric mean of the lights of white and of the darkest
    // grey.
    const double light = LightOf(PaletteColor(color));
    const double limit = std::sqrt(LightOf(PaletteColor(kWhite)) * LightOf(PaletteColor(kDarkestGray)));
    std::vector<unsigned char> colors{color};
    if (light / kMinContrast <= limit)
        colors.push_back(kWhite);
    if (light * kMinContrast > limit)
        colors.push_back(kDarkestGray);
    return colors;
}

} // namespace viewer
