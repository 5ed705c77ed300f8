#include "viewer/scene/scene_placement.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace viewer
{

namespace
{

/// The control's scene size, in diagonals of its box.
constexpr double kSceneSizePerDiagonal = 1.2;
constexpr double kMargin = 1.05;
/// Half of the control's vertical field of view, in radians.
constexpr double kHalfFieldOfView = 20.0 * std::numbers::pi / 180.0;

/// The factor by which the scene box grows for a viewport of this aspect.
double GrowthFor(double aspect)
{
    // The model lies within a sphere of radius R, half of its box's diagonal. The box grown by g gives a
    // scene size of S = 1.2 g 2R, and standard views put the eye at the distance S from the center.
    //  - In perspective the sphere touches a cone of half angle a where S sin(a) = R: g = 1 / (2.4 sin(a)).
    //    Upwards a is 20 degrees (g = 1.22); sideways tan(a) is the aspect times tan(20 degrees).
    //  - In parallel projection the viewport is S wide and S / aspect high: g is 1 / 1.2 sideways, which is
    //    less than 1.22, and aspect / 1.2 = 0.84 aspect upwards.
    constexpr double kUpwards = 1.22;
    constexpr double kParallelUpwardsPerAspect = 0.84;
    const double sideways =
        0.5 / (kSceneSizePerDiagonal * std::sin(std::atan(aspect * std::tan(kHalfFieldOfView))));
    return kMargin * std::max({kUpwards, kParallelUpwardsPerAspect * aspect, sideways});
}

} // namespace

ScenePlacement::ScenePlacement(const Box& extents) : origin_(extents.min)
{
    constexpr double kFittedDiagonal = kSceneSize / kSceneSizePerDiagonal;
    const double diagonal = extents.Diagonal();
    const double scene_diagonal = kFittedDiagonal / GrowthFor(1.0);
    if (diagonal > 0.0) {
        scale_ = scene_diagonal / diagonal;
        scene_box_.Add(ToScene(extents.min));
        scene_box_.Add(ToScene(extents.max));
        return;
    }
    // A cube of that diagonal around the point.
    const double half = 0.5 * scene_diagonal / std::numbers::sqrt3;
    origin_ = extents.min - Point{half, half, half};
    scene_box_.Add({0.0, 0.0, 0.0});
    scene_box_.Add({2.0 * half, 2.0 * half, 2.0 * half});
}

Box ScenePlacement::FittedBox(double aspect) const
{
    const Point center = scene_box_.Center();
    const Point reach = (scene_box_.max - center) * GrowthFor(aspect);
    Box box;
    box.Add(center - reach);
    box.Add(center + reach);
    return box;
}

} // namespace viewer
