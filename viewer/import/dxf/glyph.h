// The outline of a character.
#pragma once

#include "viewer/scene/model.h"

#include <vector>

namespace viewer
{

/// A character on a baseline along x, in units of the height of capital letters.
struct Glyph {
    std::vector<Segment> outline; ///< in the plane z = 0; empty for a blank
    double advance = 0.0;         ///< from its origin to that of the next character
};

} // namespace viewer
