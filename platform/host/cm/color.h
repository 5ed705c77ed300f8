// The host's colours: the standard 255-colour index of the CAD field, through two classes. Any thread.
#pragma once

#include "platform/host/db/entities.h"

/// The index of an entity that has the colour of its layer.
inline constexpr Adesk::UInt16 kByLayerIndex = 256;

/// The palette by 8-bit index. 1 to 9 are red, yellow, green, cyan, blue, magenta, white and two greys. 10
/// to 249 are 24 hues, each with five values, full and half saturation alternating. 250 to 255 are greys
/// from dark to white.
class KARV_PLATFORM_API AcCmEntityColor
{
  public:
    /// The colour of an index: red in bits 16 to 23, green in 8 to 15, blue in 0 to 7, the rest 0. Index 0
    /// is the foreground, white.
    [[nodiscard]] static Adesk::UInt32 lookUpRGB(Adesk::UInt8 index) noexcept;
};

/// A colour that is set by index and read by channel.
class KARV_PLATFORM_API AcCmColor
{
  public:
    /// Index 7, white.
    AcCmColor() = default;
    virtual ~AcCmColor();
    AcCmColor(const AcCmColor&) = default;
    AcCmColor& operator=(const AcCmColor&) = default;

    /// Sets the index. 1 to 255 are colours of the palette; 0 (by block) and 256 (by layer) are the
    /// foreground, white. Returns false, and changes nothing, for any other index.
    bool setColorIndex(Adesk::UInt16 index) noexcept;
    [[nodiscard]] Adesk::UInt16 colorIndex() const noexcept { return index_; }
    [[nodiscard]] Adesk::UInt8 red() const noexcept;
    [[nodiscard]] Adesk::UInt8 green() const noexcept;
    [[nodiscard]] Adesk::UInt8 blue() const noexcept;

  private:
    Adesk::UInt16 index_ = 7;
};

/// The linear intensity of a channel of sRGB, both from 0 to 1, as IEC 61966-2-1 defines it.
[[nodiscard]] KARV_PLATFORM_API double LinearIntensity(double channel);

/// The palette index whose colour differs least, by distance in CIELAB from channels of sRGB; the lowest of
/// several. A colour without a visible hue becomes a grey. Never 0, which has no colour of its own.
[[nodiscard]] KARV_PLATFORM_API Adesk::UInt8 NearestColorIndex(Adesk::UInt8 red, Adesk::UInt8 green,
                                                               Adesk::UInt8 blue) noexcept;
