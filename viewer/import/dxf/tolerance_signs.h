// The signs of geometric tolerances. Drawings write them as letters in a font of their own.
#pragma once

#include "viewer/import/dxf/glyph.h"

#include <optional>

namespace viewer
{

/// The drawing of a letter in the font of signs.
struct ToleranceSign {
    Glyph glyph;         ///< without the letter
    char32_t letter = 0; ///< drawn in the middle of the glyph, where it is smaller; 0 for none
};

/// How much smaller than others a letter inside of a sign is.
inline constexpr double kLetterInSign = 0.65;

/// The sign of a letter; none if the font shows the letter itself.
[[nodiscard]] std::optional<ToleranceSign> SignOfTolerance(char32_t letter);

} // namespace viewer
