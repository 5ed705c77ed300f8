// Faces as drawings store them.
#pragma once

#include "viewer/scene/model.h"

#include <array>
#include <cstddef>
#include <vector>

namespace viewer
{

/// Three or four corners. Edge i runs from corner i to the next one, the last edge to the first corner.
struct DxfFace {
    std::array<Point, 4> corners;
    std::size_t count = 4;
    std::array<bool, 4> hidden_edges{};
};

/// The faces of one polygon or polyface mesh.
using DxfMesh = std::vector<DxfFace>;

} // namespace viewer
