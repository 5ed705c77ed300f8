// Constants that several tests of the control share.
#pragma once

#include "tests/support/gl_test_window.h"

namespace karv_test
{

/// The error of a few operations in single precision on numbers near 1.
inline constexpr double kRounding = 1e-6;

/// Width and height of a picture, in pixels.
inline constexpr int kSide = 96;
inline constexpr int kMiddle = kSide / 2;

/// Indices of the palette.
inline constexpr int kRed = 1;
inline constexpr int kYellow = 2;
inline constexpr int kGreen = 3;
inline constexpr int kCyan = 4;
inline constexpr int kBlue = 5;
inline constexpr int kMagenta = 6;

/// A red face under the light at the eye: half of white is added to it.
inline constexpr Pixel kRedFaceOn{255, 128, 128};

} // namespace karv_test
