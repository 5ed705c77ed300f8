// Bitmap files as the program writes them, for tests that check single pixels.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

namespace dialog_test
{

struct Color {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const Color&) const = default;
};

/// Top row first.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<Color> pixels;

    bool operator==(const Picture&) const = default;
    [[nodiscard]] Color At(int x, int y) const;
    [[nodiscard]] Color Center() const { return At(width / 2, height / 2); }
    [[nodiscard]] int Count(const std::function<bool(Color)>& is_counted) const;
};

/// Reads a bitmap of 24 bits per pixel. Throws std::runtime_error where the file is not one, or is longer or
/// shorter than its header says.
[[nodiscard]] Picture ReadBitmap(const std::filesystem::path& file);

/// The bright channels as bits: 4 for red, 2 for green, 1 for blue; so 6 is yellow, 7 is white or a grey.
/// Lighting changes the brightness of the palette's colours, but not this hue.
[[nodiscard]] int HueOf(Color color);

} // namespace dialog_test
