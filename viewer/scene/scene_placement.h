// Where a model lies in the scene of the viewport. It knows neither the control nor the camera.
#pragma once

#include "viewer/scene/model.h"

namespace viewer
{

/// The scene size (1.2 diagonals of the control's box) of the viewer's scenes. The near distance of the
/// control is fixed at 0.01: it cuts much smaller scenes, and much larger ones lose depth resolution and
/// flicker.
inline constexpr double kSceneSize = 0.2;

/// The diagonal of a model in scene sizes. The eye orbits the middle of the visible points at a distance of
/// one scene size, so no point comes nearer than 1 - 0.65 x sqrt(3) / 2 = 0.43 scene sizes, far beyond the
/// near distance.
inline constexpr double kModelPerSceneSize = 0.65;

/// Maps the file's coordinates to the scene: the minimum corner of the model goes to the origin, and the
/// model is scaled. All of it happens in double precision, so that narrowing to float costs no visible digit
/// wherever the file's coordinates lie.
class ScenePlacement
{
  public:
    /// For a model with these extents, which must not be empty. A single point lies in the middle of a cube
    /// of the usual size.
    explicit ScenePlacement(const Box& extents);

    [[nodiscard]] Point ToScene(const Point& file_point) const { return (file_point - origin_) * scale_; }

  private:
    Point origin_;
    double scale_ = 1.0;
};

} // namespace viewer
