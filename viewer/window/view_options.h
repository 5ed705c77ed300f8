// How a window shows its model.
#pragma once

#include "viewer/output/picture.h"
#include "viewer/scene/standard_view.h"

#include <array>
#include <optional>
#include <vector>

namespace viewer
{

struct ViewOptions {
    StandardView view = StandardView::SE;
    Projection projection = Projection::Perspective;
    bool lines = false;                           ///< edges and lines in place of faces
    std::optional<std::array<int, 3>> background; ///< red, green, blue, 0 to 255
    bool transparent = false;                     ///< as the control takes it at its creation
    std::vector<int> hidden;                      ///< categories
};

} // namespace viewer
