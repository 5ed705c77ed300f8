#include "platform/host/cm/color.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace
{

constexpr Adesk::UInt32 Rgb(unsigned red, unsigned green, unsigned blue)
{
    return red * 65536U + green * 256U + blue;
}

/// One channel of a hue by its distance from the channel's own hue: full within 60 degrees, none from 120 on.
unsigned ExpectedChannel(double hue, double own_hue, double high, double low)
{
    const double apart = std::fabs(std::remainder(hue - own_hue, 360.0));
    const double share = std::clamp(2.0 - apart / 60.0, 0.0, 1.0);
    return static_cast<unsigned>(std::floor(low + (high - low) * share));
}

TEST(Palette, NamedColours)
{
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(1), Rgb(255, 0, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(2), Rgb(255, 255, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(3), Rgb(0, 255, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(4), Rgb(0, 255, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(5), Rgb(0, 0, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(6), Rgb(255, 0, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(7), Rgb(255, 255, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(8), Rgb(128, 128, 128));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(9), Rgb(192, 192, 192));
}

TEST(Palette, IndexZeroTakesTheForegroundWhite)
{
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(0), Rgb(255, 255, 255));
}

// Half saturation leaves the weakest channel at half the value, rounded down: 255 / 2 = 127, 165 / 2 = 82,
// 127 / 2 = 63, 76 / 2 = 38, 38 / 2 = 19.
TEST(Palette, TenShadesOfRed)
{
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(10), Rgb(255, 0, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(11), Rgb(255, 127, 127));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(12), Rgb(165, 0, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(13), Rgb(165, 82, 82));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(14), Rgb(127, 0, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(15), Rgb(127, 63, 63));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(16), Rgb(76, 0, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(17), Rgb(76, 38, 38));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(18), Rgb(38, 0, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(19), Rgb(38, 19, 19));
}

// The channel between strongest and weakest is a quarter, half or three quarters of the way: 255 / 4 = 63.75,
// 255 / 2 = 127.5, 255 * 3 / 4 = 191.25.
TEST(Palette, HuesBetweenRedAndGreen)
{
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(20), Rgb(255, 63, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(30), Rgb(255, 127, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(40), Rgb(255, 191, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(50), Rgb(255, 255, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(60), Rgb(191, 255, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(70), Rgb(127, 255, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(80), Rgb(63, 255, 0));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(90), Rgb(0, 255, 0));
}

TEST(Palette, HuesBetweenGreenAndRed)
{
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(110), Rgb(0, 255, 127));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(130), Rgb(0, 255, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(150), Rgb(0, 127, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(170), Rgb(0, 0, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(190), Rgb(127, 0, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(210), Rgb(255, 0, 255));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(240), Rgb(255, 0, 63));
}

// 21: 127 + (255 - 127) / 4 = 159. 111: 127 + 128 / 2 = 191. 249: 38 / 2 = 19, 19 + 19 / 4 = 23.75.
TEST(Palette, HalfSaturatedHuesBetween)
{
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(21), Rgb(255, 159, 127));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(111), Rgb(127, 255, 191));
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(249), Rgb(38, 19, 23));
}

TEST(Palette, Greys)
{
    unsigned index = 250;
    for (const unsigned grey : {51U, 91U, 132U, 173U, 214U, 255U})
        EXPECT_EQ(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index++)), Rgb(grey, grey, grey));
}

TEST(Palette, EveryHueFollowsFromAngleValueAndSaturation)
{
    const std::array<double, 5> values{255.0, 165.0, 127.0, 76.0, 38.0};
    for (unsigned index = 10; index < 250; ++index) {
        const unsigned step = (index - 10) / 10;
        const double hue = 15.0 * step;
        const unsigned shade = index % 10;
        const double high = values[shade / 2];
        const double low = shade % 2 == 0 ? 0.0 : std::floor(high / 2.0);
        EXPECT_EQ(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index)),
                  Rgb(ExpectedChannel(hue, 0.0, high, low), ExpectedChannel(hue, 120.0, high, low),
                      ExpectedChannel(hue, 240.0, high, low)))
            << "index " << index;
    }
}

TEST(Palette, BothRoutesAgreeOnEveryIndex)
{
    for (unsigned index = 0; index < 256; ++index) {
        AcCmColor color;
        EXPECT_TRUE(color.setColorIndex(static_cast<Adesk::UInt16>(index)));
        EXPECT_EQ(Rgb(color.red(), color.green(), color.blue()),
                  AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index)))
            << "index " << index;
    }
}

TEST(Palette, PackedColourHasNothingAboveRed)
{
    for (unsigned index = 0; index < 256; ++index)
        EXPECT_EQ(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index)) >> 24U, 0U);
}

TEST(Palette, NewColourIsWhite)
{
    const AcCmColor color;
    EXPECT_EQ(color.colorIndex(), 7);
    EXPECT_EQ(Rgb(color.red(), color.green(), color.blue()), Rgb(255, 255, 255));
}

TEST(Palette, ByBlockAndByLayerTakeTheForegroundWhite)
{
    for (const Adesk::UInt16 index : std::array<Adesk::UInt16, 2>{0, 256}) {
        AcCmColor color;
        color.setColorIndex(1);
        EXPECT_TRUE(color.setColorIndex(index));
        EXPECT_EQ(color.colorIndex(), index);
        EXPECT_EQ(Rgb(color.red(), color.green(), color.blue()), Rgb(255, 255, 255));
    }
}

TEST(Palette, IndicesPastByLayerAreRefusedAndChangeNothing)
{
    for (const Adesk::UInt16 index : std::array<Adesk::UInt16, 2>{257, 65535}) {
        AcCmColor color;
        color.setColorIndex(12);
        EXPECT_FALSE(color.setColorIndex(index));
        EXPECT_EQ(color.colorIndex(), 12);
        EXPECT_EQ(Rgb(color.red(), color.green(), color.blue()), Rgb(165, 0, 0));
    }
}

TEST(Palette, ColourIsCopied)
{
    AcCmColor color;
    color.setColorIndex(3);
    AcCmColor copy = color;
    color.setColorIndex(1);
    EXPECT_EQ(copy.colorIndex(), 3);
    copy = color;
    EXPECT_EQ(copy.red(), 255);
    EXPECT_EQ(copy.green(), 0);
}

TEST(Palette, NearestToAColourOfThePaletteIsItsLowestIndex)
{
    EXPECT_EQ(NearestColorIndex(255, 0, 0), 1) << "10 is red too";
    EXPECT_EQ(NearestColorIndex(255, 255, 255), 7) << "0 and 255 are white too";
    EXPECT_EQ(NearestColorIndex(165, 82, 82), 13);
}

/// CIELAB of a colour of sRGB under D65, by the formulas of CIE 15 and IEC 61966-2-1.
struct Lab {
    double lightness, a, b;
};

Lab LabOf(int red, int green, int blue)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value > 0.04045 ? std::pow((value + 0.055) / 1.055, 2.4) : value / 12.92;
    };
    const auto curve = [](double t) {
        return t > 216.0 / 24389.0 ? std::cbrt(t) : (24389.0 / 27.0 * t + 16.0) / 116.0;
    };
    const double r = linear(red);
    const double g = linear(green);
    const double b = linear(blue);
    const double x = curve((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
    const double y = curve(0.2126729 * r + 0.7151522 * g + 0.0721750 * b);
    const double z = curve((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.08883);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

Lab LabOf(Adesk::UInt32 packed)
{
    return LabOf(static_cast<int>(packed / 65536U), static_cast<int>(packed / 256U % 256U),
                 static_cast<int>(packed % 256U));
}

double Difference(const Lab& one, const Lab& other)
{
    return std::hypot(one.lightness - other.lightness, one.a - other.a, one.b - other.b);
}

bool IsGray(Adesk::UInt32 packed)
{
    return packed / 65536U == packed % 256U && packed / 256U % 256U == packed % 256U;
}

// By CIELAB, the dark red (38, 0, 0) is nearer to black than the darkest grey is.
TEST(Palette, NearestToAGreyIsTheGreyOfTheNearestLightness)
{
    ASSERT_LT(Difference(LabOf(38, 0, 0), LabOf(0, 0, 0)), Difference(LabOf(51, 51, 51), LabOf(0, 0, 0)));
    EXPECT_EQ(NearestColorIndex(0, 0, 0), 250);
    EXPECT_EQ(NearestColorIndex(25, 25, 25), 250);
    EXPECT_EQ(NearestColorIndex(24, 25, 25), 250) << "its hue is not seen";
    for (int gray = 0; gray < 256; ++gray) {
        const auto channel = static_cast<Adesk::UInt8>(gray);
        const Adesk::UInt32 nearest =
            AcCmEntityColor::lookUpRGB(NearestColorIndex(channel, channel, channel));
        ASSERT_TRUE(IsGray(nearest)) << gray;
        const double lightness = LabOf(gray, gray, gray).lightness;
        for (const int other : {51, 91, 128, 132, 173, 192, 214, 255})
            EXPECT_LE(std::abs(LabOf(nearest).lightness - lightness),
                      std::abs(LabOf(other, other, other).lightness - lightness) + 1e-9)
                << gray;
    }
}

TEST(Palette, NearestIsNoFurtherThanAnyOther)
{
    for (int red = 0; red < 256; red += 51) {
        for (int green = 0; green < 256; green += 51) {
            for (int blue = 0; blue < 256; blue += 51) {
                if (red == green && green == blue)
                    continue;
                const Adesk::UInt8 nearest =
                    NearestColorIndex(static_cast<Adesk::UInt8>(red), static_cast<Adesk::UInt8>(green),
                                      static_cast<Adesk::UInt8>(blue));
                ASSERT_NE(nearest, 0);
                const Lab wanted = LabOf(red, green, blue);
                const double best = Difference(LabOf(AcCmEntityColor::lookUpRGB(nearest)), wanted);
                for (unsigned index = 1; index < 256; ++index) {
                    const double other = Difference(
                        LabOf(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index))), wanted);
                    EXPECT_GE(other, best - 1e-9);
                }
            }
        }
    }
}

} // namespace
