// Construction lines and rays, which have no end.
#pragma once

#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <optional>

namespace viewer
{

struct DxfInfiniteLine {
    Point base;
    Point direction;
    bool is_ray = false; ///< it begins at its base
};

/// The part of the placed line in the box. No value if it misses the box or has no direction.
[[nodiscard]] std::optional<Segment> ClippedTo(const Box& box, const DxfInfiniteLine& line,
                                               const Affine& place);

} // namespace viewer
