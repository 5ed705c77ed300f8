// A picture in memory. It knows neither who draws it nor the files it is written to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace viewer
{

/// Width and height in pixels.
struct PictureSize {
    int width = 1024;
    int height = 768;

    bool operator==(const PictureSize&) const = default;
};

/// The longest side of a picture that users can ask for, in pixels.
inline constexpr int kMaxPictureSide = 8192;

/// Red in bits 16 to 23, green in 8 to 15, blue in 0 to 7.
[[nodiscard]] constexpr std::uint32_t PackColor(unsigned char red, unsigned char green, unsigned char blue)
{
    return static_cast<std::uint32_t>(red) << 16U | static_cast<std::uint32_t>(green) << 8U |
           static_cast<std::uint32_t>(blue);
}

/// Opaque pixels as `PackColor` makes them, row by row from the top.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    Picture() = default;
    /// Black.
    Picture(int width_in, int height_in)
        : width(width_in), height(height_in),
          pixels(static_cast<std::size_t>(width_in) * static_cast<std::size_t>(height_in))
    {
    }
};

} // namespace viewer
