#include "platform/host/cm/color.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace
{

using Palette = std::array<Adesk::UInt32, 256>;

constexpr int kFirstHueIndex = 10;
constexpr int kFirstGrayIndex = 250;
constexpr int kShadesPerHue = 10;
constexpr int kStepsPerSixth = 4; // 60 degrees in steps of 15
constexpr std::array<int, 5> kValues{255, 165, 127, 76, 38};

constexpr Adesk::UInt32 Pack(int red, int green, int blue)
{
    return (static_cast<Adesk::UInt32>(red) << 16U) | (static_cast<Adesk::UInt32>(green) << 8U) |
           static_cast<Adesk::UInt32>(blue);
}

/// The colour of a hue, in steps of 15 degrees from red over green to blue. `high` and `low` are its
/// strongest and its weakest channel. The third channel lies between them in proportion to the angle,
/// rounded down.
constexpr Adesk::UInt32 PackHue(int hue, int high, int low)
{
    const int step = hue % kStepsPerSixth;
    const int rising = low + (high - low) * step / kStepsPerSixth;
    const int falling = low + (high - low) * (kStepsPerSixth - step) / kStepsPerSixth;
    switch (hue / kStepsPerSixth) {
    case 0:
        return Pack(high, rising, low);
    case 1:
        return Pack(falling, high, low);
    case 2:
        return Pack(low, high, rising);
    case 3:
        return Pack(low, falling, high);
    case 4:
        return Pack(rising, low, high);
    default:
        return Pack(high, low, falling);
    }
}

/// The colour of a shade of a hue. Even shades are fully saturated. Odd ones are half saturated: their
/// weakest channel is half the value, rounded down.
constexpr Adesk::UInt32 PackShade(int hue, int shade)
{
    const int value = kValues[static_cast<std::size_t>(shade / 2)];
    return PackHue(hue, value, shade % 2 == 0 ? 0 : value / 2);
}

constexpr Palette MakePalette()
{
    Palette palette{Pack(255, 255, 255), Pack(255, 0, 0),    Pack(255, 255, 0), Pack(0, 255, 0),
                    Pack(0, 255, 255),   Pack(0, 0, 255),    Pack(255, 0, 255), Pack(255, 255, 255),
                    Pack(128, 128, 128), Pack(192, 192, 192)};
    for (int index = kFirstHueIndex; index < kFirstGrayIndex; ++index) {
        const int place = index - kFirstHueIndex;
        palette[static_cast<std::size_t>(index)] = PackShade(place / kShadesPerHue, place % kShadesPerHue);
    }
    std::size_t index = kFirstGrayIndex;
    for (const int gray : {51, 91, 132, 173, 214, 255})
        palette[index++] = Pack(gray, gray, gray);
    return palette;
}

constexpr Palette kPalette = MakePalette();

constexpr int Channel(Adesk::UInt32 color, unsigned shift)
{
    return static_cast<int>((color >> shift) & 0xFFU);
}

/// A colour of CIELAB, where distances are about proportional to perceived differences.
struct Lab {
    double lightness = 0.0;
    double a = 0.0; ///< from green to red
    double b = 0.0; ///< from blue to yellow
};

double SquaredDistance(const Lab& one, const Lab& other)
{
    const double lightness = one.lightness - other.lightness;
    const double a = one.a - other.a;
    const double b = one.b - other.b;
    return lightness * lightness + a * a + b * b;
}

double LabCurve(double share)
{
    constexpr double kBend = 6.0 / 29.0;
    return share > kBend * kBend * kBend ? std::cbrt(share) : share / (3.0 * kBend * kBend) + 4.0 / 29.0;
}

/// Converts a colour of sRGB, with its white D65.
Lab ToLab(Adesk::UInt32 color)
{
    const double red = LinearIntensity(Channel(color, 16) / 255.0);
    const double green = LinearIntensity(Channel(color, 8) / 255.0);
    const double blue = LinearIntensity(Channel(color, 0) / 255.0);
    const double x = LabCurve((0.4124564 * red + 0.3575761 * green + 0.1804375 * blue) / 0.95047);
    const double y = LabCurve(0.2126729 * red + 0.7151522 * green + 0.0721750 * blue);
    const double z = LabCurve((0.0193339 * red + 0.1191920 * green + 0.9503041 * blue) / 1.08883);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

/// Whether a colour is grey to the eye. A just noticeable difference is about 2.3.
bool IsGray(const Lab& color)
{
    constexpr double kMaxChroma = 2.0;
    return std::hypot(color.a, color.b) < kMaxChroma;
}

const std::array<Lab, kPalette.size()>& LabPalette()
{
    static const std::array<Lab, kPalette.size()> palette = [] {
        std::array<Lab, kPalette.size()> colors;
        for (std::size_t index = 0; index < colors.size(); ++index)
            colors[index] = ToLab(kPalette[index]);
        return colors;
    }();
    return palette;
}

} // namespace

Adesk::UInt32 AcCmEntityColor::lookUpRGB(Adesk::UInt8 index) noexcept
{
    return kPalette[index];
}

AcCmColor::~AcCmColor() = default;

bool AcCmColor::setColorIndex(Adesk::UInt16 index) noexcept
{
    if (index > kByLayerIndex)
        return false;
    index_ = index;
    return true;
}

// 256, by layer, is masked to 0, by block: both are the foreground.

Adesk::UInt8 AcCmColor::red() const noexcept
{
    return static_cast<Adesk::UInt8>(kPalette[index_ & 0xFFU] >> 16U);
}

Adesk::UInt8 AcCmColor::green() const noexcept
{
    return static_cast<Adesk::UInt8>(kPalette[index_ & 0xFFU] >> 8U);
}

Adesk::UInt8 AcCmColor::blue() const noexcept
{
    return static_cast<Adesk::UInt8>(kPalette[index_ & 0xFFU]);
}

double LinearIntensity(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

Adesk::UInt8 NearestColorIndex(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) noexcept
{
    const std::array<Lab, kPalette.size()>& palette = LabPalette();
    const Lab wanted = ToLab(Pack(red, green, blue));
    // The palette has few dark greys: a dark hue can be nearer to black than the darkest grey.
    const bool only_grays = IsGray(wanted);
    constexpr std::size_t kWhite = 7;
    std::size_t best = only_grays ? kWhite : 1;
    double shortest = SquaredDistance(palette[best], wanted);
    for (std::size_t index = 1; index < palette.size(); ++index) {
        const double distance = SquaredDistance(palette[index], wanted);
        if (distance < shortest && (!only_grays || IsGray(palette[index]))) {
            best = index;
            shortest = distance;
        }
    }
    return static_cast<Adesk::UInt8>(best);
}
