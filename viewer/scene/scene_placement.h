// Where a model lies in the scene of the viewport, and which box makes the viewport show it whole. It knows
// neither the control nor the camera.
#pragma once

#include "viewer/scene/model.h"

namespace viewer
{

/// The scene size (1.2 diagonals of the control's box) that models are scaled to. The near distance of the
/// control is fixed at 0.01: it cuts much smaller scenes, and much larger ones lose depth resolution and
/// flicker.
inline constexpr double kSceneSize = 0.2;

/// Maps the file's coordinates to the scene: the minimum corner of the model goes to the origin, and the
/// model is scaled. All of it happens in double precision, so that narrowing to float costs no visible digit
/// wherever the file's coordinates lie.
class ScenePlacement
{
  public:
    /// For a model with these extents, which must not be empty. A single point lies in the middle of a scene
    /// of the usual size.
    explicit ScenePlacement(const Box& extents);

    [[nodiscard]] Point ToScene(const Point& file_point) const { return (file_point - origin_) * scale_; }
    /// The model's box in the scene.
    [[nodiscard]] const Box& SceneBox() const { return scene_box_; }
    /// The scene box grown about its center so that a viewport of this aspect (width / height) shows the
    /// model whole, with a margin, in every standard view and in both projections. It is the box to give the
    /// control.
    [[nodiscard]] Box FittedBox(double aspect) const;

  private:
    Point origin_;
    double scale_ = 1.0;
    Box scene_box_;
};

} // namespace viewer
