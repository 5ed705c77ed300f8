// A small window with a real GL context that is current during its life, for tests that draw without a
// control, and the reading of its pixels.
#pragma once

#include "platform/winsys/winsys.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace karv_test
{

/// The colour of a pixel, 8 bits a channel.
struct Pixel {
    int red = 0;
    int green = 0;
    int blue = 0;

    bool operator==(const Pixel&) const = default;
};

inline constexpr Pixel kBlack{0, 0, 0};
inline constexpr Pixel kRedPixel{255, 0, 0};

std::ostream& operator<<(std::ostream& out, const Pixel& pixel);

/// Whether each channel differs by at most `tolerance`.
[[nodiscard]] bool IsNear(const Pixel& a, const Pixel& b, int tolerance = 2);

/// A picture read from a context's read buffer.
class Picture
{
  public:
    /// Reads the lower left `width` x `height` pixels of the current context.
    Picture(int width, int height);

    /// `x` from the left, `y` from the bottom, as GL counts. Throws std::out_of_range outside.
    [[nodiscard]] Pixel At(int x, int y) const;
    /// The number of pixels that are not `background`.
    [[nodiscard]] int CountOtherThan(const Pixel& background) const;
    /// Writes a PPM file, top row first.
    void Write(const std::string& path) const;

  private:
    int width_;
    int height_;
    std::vector<std::uint8_t> bytes_;
};

/// Makes the process use off-screen buffers if it does not already; an X server of its own if the variable
/// KARV_TEST_BACKEND is "x11". No window may exist.
void UseTestWindows();

/// The window. Its viewport covers it, and all other GL state is the default: no lighting, no culling, no
/// depth test.
class GlTestWindow
{
  public:
    explicit GlTestWindow(int width = 64, int height = 64);
    GlTestWindow(const GlTestWindow&) = delete;
    GlTestWindow& operator=(const GlTestWindow&) = delete;
    ~GlTestWindow();

    [[nodiscard]] Picture Read() const { return {width_, height_}; }
    /// Clears to black and loads the parallel projection of the rectangle from (0, 0) to (`right`, `top`).
    void BeginPicture(double right, double top) const;

  private:
    int width_;
    int height_;
    HWND window_;
    HDC dc_;
    HGLRC context_;
};

/// A fixture with such a window. If a test fails, its picture is written to the test's temporary folder.
class GlTest : public testing::Test
{
  protected:
    void TearDown() override;

    GlTestWindow window_;
};

} // namespace karv_test
