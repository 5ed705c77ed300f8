// Feeds a model to a viewport control and fits the view to it. All windows and pictures of the viewer use it;
// it knows nothing of them.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "viewer/scene/line_colors.h"
#include "viewer/scene/model.h"
#include "viewer/scene/scene_placement.h"
#include "viewer/scene/standard_view.h"

#include <compare>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace viewer
{

/// Whether the background of a control changes after the model was fed.
enum class Ground {
    Fixed,
    Changing, ///< lines are fed in each colour that some ground needs, up to three times
};

/// A model in a control: fed, then shown from any standard view. The control's context must be current
/// in every call.
///
/// Pieces whose faces close are fed as bodies, which show their edges in line mode. Other pieces are fed as
/// triangles; two-sided ones get a triangle for each side. Their feature edges are fed as lines that are
/// shown in line mode alone. While faces are drawn, the edges of both kinds are drawn over them, unless that
/// is switched off. A control for transparent drawing has no depth test, so edges behind its faces are
/// visible, too. The lines of a piece are visible in both modes.
///
/// Lines, and edges in line mode, have the colour of their piece, or the ground's opposite where the contrast
/// of that colour with the control's background is too low (`ReadableColor`). Edges over faces contrast with
/// the faces.
///
/// Faces and lines are in the category of their piece. Edges, and lines in other colours, are in separate
/// categories, numbered from the category count of the model upwards, which are shown and hidden with those
/// of the pieces by `ShowCategory`. All lines or edges of a piece are one entity, so that frames of many
/// edges are fast.
class FittedScene
{
  public:
    /// Feeds every piece, in order, to a control that was just created. Faces with their edges are drawn at
    /// first; the categories in `hidden` are shown in neither mode. The control must outlive this object; the
    /// model is only read here. Its faces must be convex (`FillFaces`). An empty model shows nothing. Back
    /// faces are culled from then on, also in a control for transparent drawing. Faces are drawn a little
    /// further away than they are (`glPolygonOffset`), so that they do not cover their own edges and the
    /// lines on them.
    FittedScene(KARVOpenGLControl& control, const Model& model, const std::vector<int>& hidden = {},
                Ground ground = Ground::Fixed);

    /// Shows another model. The hidden categories, the projection and the mode stay. With `keep_place`, the
    /// coordinates of files are mapped to the scene as before, so the camera keeps its view of parts that
    /// both models contain. Otherwise call `Show` next.
    void Replace(const Model& model, bool keep_place);

    /// Draws lines or faces from the next frame on.
    void DrawLines(bool lines);
    /// Switches edges over faces on or off, from the next frame on. Line mode always draws edges.
    void DrawEdges(bool edges);
    /// Shows or hides a category of the model, with its edges, from the next frame on.
    void ShowCategory(int category, bool shown);
    /// Sets the background of the control, 0 to 255 for each channel, and the colours of lines on it, from
    /// the next frame on. The scene must be for a changing ground.
    void SetGround(int red, int green, int blue);

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
    enum class Mode { Faces, Lines, Both };

    /// Lines and edges that share a category.
    struct LineGroup {
        int category = 0; ///< of the piece
        Mode mode = Mode::Both;
        unsigned char color = 0; ///< of the piece
        unsigned char shown = 0; ///< the colour of the lines

        auto operator<=>(const LineGroup&) const = default;
    };

    void Feed(const Model& model);
    void Feed(const Piece& piece);
    void FeedFaces(const Piece& piece);
    /// The edges are shown over faces, which must all be fed before them.
    void KeepEdges(AModeler::Body& wires, const Piece& piece);
    void FeedKeptEdges();
    void FeedLines(const Piece& piece);
    /// Feeds lines in all colours in which they may be shown in that mode, without the colour `fed`.
    void FeedColors(AModeler::Body& wires, const Piece& piece, Mode mode, std::optional<unsigned char> fed);
    /// The colours in which lines of this colour may be shown.
    [[nodiscard]] std::vector<unsigned char> ShownColors(unsigned char color) const;
    /// The category of the group.
    [[nodiscard]] KARVGraphicalEntity::EntityType CategoryOf(const LineGroup& group);
    [[nodiscard]] bool IsShown(const LineGroup& group) const;
    void ShowLineGroups();
    void ReadGround();
    void SetShown(int category, bool shown);
    void Fit(std::optional<StandardView> view, Projection projection, double aspect);

    KARVOpenGLControl& control_;
    ScenePlacement placement_;
    int category_count_ = 0;               ///< of the model
    std::map<LineGroup, int> line_groups_; ///< with their categories
    std::vector<KARVGraphicalEntity> kept_edges_;
    std::set<int> hidden_; ///< categories of the model
    Ground ground_use_;
    Rgb ground_;
    bool lines_ = false;
    bool edges_ = true;
    std::vector<Point> fit_points_;                   ///< in units of the scene
    Projection projection_ = Projection::Perspective; ///< the projection of a new control
    double zoom_ = 1.0;                               ///< of the last fit
};

} // namespace viewer
