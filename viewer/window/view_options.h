// The settings by which a window shows its model.
#pragma once

#include "viewer/output/picture.h"
#include "viewer/scene/light.h"
#include "viewer/scene/standard_view.h"

#include <array>
#include <optional>
#include <vector>

namespace viewer
{

struct ViewOptions {
    /// If absent, a flat drawing opens from the top, another model from the south-east.
    std::optional<StandardView> view;
    /// If absent, a flat drawing opens in parallel projection, another model in perspective.
    std::optional<Projection> projection;
    bool lines = false; ///< edges and lines instead of faces
    bool edges = true;  ///< over faces
    Light light = Light::Shoulder;
    std::optional<std::array<int, 3>> background; ///< red, green, blue, 0 to 255
    bool transparent = false;                     ///< the control draws translucent faces
    std::vector<int> hidden;                      ///< categories
};

} // namespace viewer
