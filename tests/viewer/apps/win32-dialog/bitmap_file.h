// Bitmap files as the example writes them, for tests that look at single pixels.
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
    [[nodiscard]] Color Centre() const { return At(width / 2, height / 2); }
    [[nodiscard]] int Count(const std::function<bool(Color)>& is_counted) const;
};

/// Reads a bitmap of 24 bits a pixel; throws std::runtime_error where the file is none, or is longer or
/// shorter than its header says.
[[nodiscard]] Picture ReadBitmap(const std::filesystem::path& file);

/// Which of red, green and blue are bright, as bits 4, 2 and 1: 6 for yellow, 7 for white and all greys. Lit
/// colours of the palette keep their hue, whatever the light makes of their brightness.
[[nodiscard]] int HueOf(Color color);

} // namespace dialog_test
