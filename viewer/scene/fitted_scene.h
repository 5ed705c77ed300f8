// Feeds a model to a viewport control and fits the view to it. All windows and pictures of the viewer use it;
// it knows nothing of them.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "viewer/scene/fit_view.h"
#include "viewer/scene/model.h"
#include "viewer/scene/scene_placement.h"
#include "viewer/scene/standard_view.h"

#include <set>
#include <vector>

namespace viewer
{

/// A model in a control: fed once, then shown from any standard view. The control's context must be current
/// in every call.
///
/// Pieces whose faces close are fed as bodies, which show their edges in line mode. Other pieces are fed as
/// triangles; two-sided ones get a triangle for each side. Their feature edges are fed as lines in a separate
/// category, which is hidden while faces are drawn. Its number is the piece's category plus the category
/// count of the model. The lines of a piece belong to the piece's category and are visible in both modes.
class FittedScene
{
  public:
    /// Feeds every piece, in order, to a control that was just created. Faces are drawn at first; the
    /// categories in `hidden` are shown in neither mode. The control must outlive this object; the model is
    /// only read here. The model's extents must not be empty, and its faces must be convex (`FillFaces`).
    /// Back faces are culled from then on, also in a control for transparent drawing.
    FittedScene(KARVOpenGLControl& control, const Model& model, const std::vector<int>& hidden = {});

    /// Draws lines or faces from the next frame on.
    void DrawLines(bool lines);

    /// Whether everything visible lies in one plane of constant z, as in a drawing.
    [[nodiscard]] bool IsFlat() const;

    /// Shows the whole model from the next frame on, as large as `FitView` says. Categories that were hidden
    /// at first do not count, unless all were. `aspect` is the width of the control's client area divided by
    /// its height; call this again whenever it changes. The control gets messages of the mouse wheel.
    void Show(StandardView view, Projection projection, double aspect);
    /// The same from the present orientation.
    void Fit(Projection projection, double aspect);
    [[nodiscard]] Projection CurrentProjection() const { return projection_; }
    /// Switches to the other projection; the camera is kept.
    void SwitchProjection();
    /// Zooms as the last `Show` or `Fit` did; the camera is kept.
    void ResetZoom();

  private:
    void Feed(const Piece& piece);
    void FeedFaces(const Piece& piece);
    void FeedLines(const std::vector<Segment>& lines, unsigned char color,
                   KARVGraphicalEntity::EntityType category);
    void Fit(const FitOptions& options);

    KARVOpenGLControl& control_;
    ScenePlacement placement_;
    int first_line_category_;
    std::set<int> line_categories_; ///< of feature edges, without those of hidden pieces
    std::set<int> hidden_;
    std::vector<Point> fit_points_;                   ///< in units of the scene
    Projection projection_ = Projection::Perspective; ///< the projection of a new control
    double zoom_ = 1.0;                               ///< of the last fit
};

} // namespace viewer
