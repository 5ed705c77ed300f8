#include "viewer/scene/scene_placement.h"

#include <numbers>

namespace viewer
{

ScenePlacement::ScenePlacement(const Box& extents) : origin_(extents.min)
{
    constexpr double kModelDiagonal = kSceneSize * kModelPerSceneSize;
    const double diagonal = extents.Diagonal();
    if (diagonal > 0.0) {
        scale_ = kModelDiagonal / diagonal;
        return;
    }
    // A cube of that diagonal around the point.
    const double half = 0.5 * kModelDiagonal / std::numbers::sqrt3;
    origin_ = extents.min - Point{half, half, half};
}

} // namespace viewer
