#include "platform/host/cm/color.h"

#include <array>
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

constexpr int SquaredDistance(Adesk::UInt32 a, Adesk::UInt32 b)
{
    int sum = 0;
    for (const unsigned shift : {16U, 8U, 0U}) {
        const int difference = Channel(a, shift) - Channel(b, shift);
        sum += difference * difference;
    }
    return sum;
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

Adesk::UInt8 NearestColorIndex(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) noexcept
{
    const Adesk::UInt32 wanted = Pack(red, green, blue);
    std::size_t best = 1;
    for (std::size_t index = 2; index < kPalette.size(); ++index)
        if (SquaredDistance(kPalette[index], wanted) < SquaredDistance(kPalette[best], wanted))
            best = index;
    return static_cast<Adesk::UInt8>(best);
}
