// The road from a model to a viewport that shows the whole of it, by the control's public operations alone.
// Every window and picture of this program takes it; it knows nothing of either.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "viewer/scene/model.h"
#include "viewer/scene/standard_view.h"

#include <set>
#include <vector>

namespace viewer
{

/// The scene size (1.2 diagonals of the control's box) that models are scaled to. The control's near distance
/// is fixed at 0.01: much smaller scenes are cut by it, much larger ones lose depth resolution and flicker.
inline constexpr double kSceneSize = 0.2;

/// By how much the model's box must grow about its centre so that a viewport of this aspect (width / height)
/// shows it whole, with a margin, in every standard view and both projections.
[[nodiscard]] double FitGrowth(double aspect);

/// Where a model lies in the viewport's scene: its minimum corner at the origin, scaled in double precision,
/// so that narrowing to float costs no visible digit wherever the file's coordinates lie.
class ScenePlacement
{
  public:
    /// For a model with these extents, which must not be empty. A single point lies in the middle of a scene
    /// of the usual size.
    explicit ScenePlacement(const Box& extents);

    [[nodiscard]] Point ToScene(const Point& file_point) const { return (file_point - origin_) * scale_; }
    /// The model's box in the scene.
    [[nodiscard]] const Box& SceneBox() const { return scene_box_; }
    /// The box to give the control for a viewport of this aspect.
    [[nodiscard]] Box FittedBox(double aspect) const;

  private:
    Point origin_;
    double scale_ = 1.0;
    Box scene_box_;
};

/// A model in a control: fed once, then shown from any standard view. Pieces that close are fed as bodies,
/// which show their edges in line mode; others as faces, with their feature edges as lines of categories of
/// their own, one after the model's for each of those, which are hidden while faces are drawn. Lines that are
/// drawn for themselves belong to their piece's category and are seen among faces too.
class FittedScene
{
  public:
    /// Feeds every piece, in order, to a control that was just created, whose context must be current; faces
    /// are drawn at first, and nothing of the hidden categories in either mode. The control is not owned; the
    /// model is only read.
    FittedScene(KARVOpenGLControl& control, const Model& model, const std::vector<int>& hidden = {});

    /// Draws lines or faces from the next frame on.
    void DrawLines(bool lines);

    /// Shows the whole model from the next frame on. `aspect` is the width of the control's client area over
    /// its height; call this again whenever it changes.
    void Show(StandardView view, Projection projection, double aspect);
    [[nodiscard]] Projection CurrentProjection() const { return projection_; }
    /// Changes from one projection to the other where the camera stands.
    void SwitchProjection();

  private:
    void Feed(const Piece& piece);
    void FeedFaces(const Piece& piece);
    void FeedLines(const std::vector<Segment>& lines, unsigned char color,
                   KARVGraphicalEntity::EntityType category);
    void SetProjection(Projection projection);

    KARVOpenGLControl& control_;
    ScenePlacement placement_;
    int first_line_category_;
    std::set<int> line_categories_; ///< those of pieces that are not hidden
    std::set<int> hidden_;
    Projection projection_ = Projection::Perspective; ///< as every control begins
};

} // namespace viewer
