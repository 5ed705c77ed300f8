#include "viewer/scene/fitted_scene.h"

#include "platform/winsys/opengl.h"
#include "viewer/scene/feature_edges.h"
#include "viewer/scene/fit_points.h"
#include "viewer/scene/fit_view.h"
#include "viewer/scene/line_colors.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <limits>
#include <span>
#include <vector>

namespace viewer
{

namespace
{

KARVGLVertex ToVertex(const Point& point)
{
    return {point.x, point.y, point.z};
}

/// The faces as triangles. For each face of more corners, the control would compile a display list.
std::vector<KARVGLFace> ToTriangles(const Piece& piece, const ScenePlacement& placement)
{
    std::size_t count = 0;
    for (const ModelFace& face : piece.faces)
        count += face.corners.size() - 2;
    std::vector<KARVGLFace> triangles;
    triangles.reserve(piece.two_sided ? 2 * count : count);
    const auto add = [&](std::initializer_list<KARVGLVertex> corners, const Point& normal) {
        KARVGLFace& triangle = triangles.emplace_back();
        triangle.normal = ToVertex(normal);
        triangle.vertices = corners;
    };
    for (const ModelFace& face : piece.faces) {
        const auto at = [&](std::size_t i) { return ToVertex(placement.ToScene(face.corners[i])); };
        const KARVGLVertex first = at(0);
        for (std::size_t i = 1; i + 1 < face.corners.size(); ++i) {
            const KARVGLVertex second = at(i);
            const KARVGLVertex third = at(i + 1);
            add({first, second, third}, face.normal);
            if (piece.two_sided)
                add({third, second, first}, face.normal * -1.0);
        }
    }
    return triangles;
}

KARVGraphicalEntity::EntityType ToType(int category)
{
    return static_cast<KARVGraphicalEntity::EntityType>(category);
}

/// The placement of a model without pieces is that of a point.
ScenePlacement PlacementOf(const Model& model)
{
    Box extents = model.Extents();
    if (extents.IsEmpty())
        extents.Add({});
    return ScenePlacement(extents);
}

/// The number of entities that the model becomes, without the feature edges of pieces that do not close.
int EntityCount(const Model& model)
{
    std::size_t count = 0;
    for (const Piece& piece : model.pieces)
        count += (piece.faces.empty() ? 0U : 2U) + (piece.lines.empty() ? 0U : 1U);
    return static_cast<int>(std::min(count, static_cast<std::size_t>(std::numeric_limits<int>::max())));
}

/// Moves faces away from the eye by a share of their slope and by the smallest difference of depths. Without
/// it, the two faces at an edge cover about a quarter of its pixels. With larger values, edges show through
/// thin walls.
void MoveFacesBack()
{
    constexpr GLfloat kOfSlope = 0.75F;
    constexpr GLfloat kLeastDepths = 1.0F;
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(kOfSlope, kLeastDepths);
}

/// The points, in units of the scene, that count in fits.
std::vector<Point> FitPointsInScene(const Model& model, const std::set<int>& hidden,
                                    const ScenePlacement& placement)
{
    std::vector<Point> points = FitPoints(model, hidden);
    if (points.empty())
        points = FitPoints(model, {});
    for (Point& point : points)
        point = placement.ToScene(point);
    return points;
}

} // namespace

FittedScene::FittedScene(KARVOpenGLControl& control, const Model& model, const std::vector<int>& hidden,
                         Ground ground)
    : control_(control), placement_(PlacementOf(model)), hidden_(hidden.begin(), hidden.end()),
      ground_use_(ground)
{
    // A control for transparent drawing does not cull back faces. It would blend a two-sided face twice, and
    // the far side of a body over the near one.
    glEnable(GL_CULL_FACE);
    MoveFacesBack();
    ReadGround();
    control_.ComputeExtents(false);
    Feed(model);
}

void FittedScene::Replace(const Model& model, bool keep_place)
{
    control_.ClearGeometry(true);
    // The numbers of the lines' categories can be those of pieces of this model.
    for (const auto& [group, number] : line_groups_)
        SetShown(number, true);
    line_groups_.clear();
    if (!keep_place)
        placement_ = PlacementOf(model);
    Feed(model);
}

void FittedScene::Feed(const Model& model)
{
    category_count_ = model.CategoryCount();
    fit_points_ = FitPointsInScene(model, hidden_, placement_);
    control_.AllocateMemory(EntityCount(model));
    for (const Piece& piece : model.pieces)
        Feed(piece);
    FeedKeptEdges();
    for (int category = 0; category < category_count_; ++category)
        if (hidden_.contains(category))
            SetShown(category, false);
    DrawLines(lines_);
}

void FittedScene::Feed(const Piece& piece)
{
    if (!piece.faces.empty())
        FeedFaces(piece);
    if (!piece.lines.empty())
        FeedLines(piece);
}

void FittedScene::FeedFaces(const Piece& piece)
{
    const auto category = ToType(piece.category);
    const auto place = [&](const Point& point) { return placement_.ToScene(point); };
    auto solid = piece.two_sided ? std::nullopt : MakeSolid(piece, place);
    if (solid) {
        control_.AppendGeometry(&*solid, category, piece.color, piece.alpha);
        auto wires = MakeWires(*solid);
        FeedColors(wires, piece, Mode::Lines, piece.color);
        KeepEdges(wires, piece);
        return;
    }
    control_.AppendGeometry(ToTriangles(piece, placement_), category, piece.color, piece.alpha);
    const std::vector<Segment> edges = FeatureEdges(piece);
    if (edges.empty())
        return;
    auto wires = MakeWires(edges, place);
    FeedColors(wires, piece, Mode::Lines, std::nullopt);
    KeepEdges(wires, piece);
}

void FittedScene::KeepEdges(AModeler::Body& wires, const Piece& piece)
{
    // Lines ignore opacity: the edges of an invisible piece would be visible.
    if (piece.alpha <= 0.0F)
        return;
    const unsigned char color = EdgeColor(piece.color);
    kept_edges_.emplace_back(&wires, CategoryOf({piece.category, Mode::Faces, color, color}), color);
}

void FittedScene::FeedKeptEdges()
{
    for (KARVGraphicalEntity& edges : kept_edges_)
        control_.AppendGeometry(std::move(edges));
    std::vector<KARVGraphicalEntity>().swap(kept_edges_);
}

void FittedScene::FeedLines(const Piece& piece)
{
    auto wires = MakeWires(piece.lines, [&](const Point& point) { return placement_.ToScene(point); });
    const unsigned char color =
        ground_use_ == Ground::Changing ? piece.color : ReadableColor(piece.color, ground_);
    control_.AppendGeometry(&wires, ToType(piece.category), color, 1.0F);
    FeedColors(wires, piece, Mode::Both, color);
}

void FittedScene::FeedColors(AModeler::Body& wires, const Piece& piece, Mode mode,
                             std::optional<unsigned char> fed)
{
    // Lines in another colour follow those in their own, and replace all their pixels.
    for (const unsigned char shown : ShownColors(piece.color))
        if (shown != fed)
            control_.AppendGeometry(&wires, CategoryOf({piece.category, mode, piece.color, shown}), shown,
                                    1.0F);
}

std::vector<unsigned char> FittedScene::ShownColors(unsigned char color) const
{
    if (ground_use_ == Ground::Changing)
        return ReadableColors(color);
    return {ReadableColor(color, ground_)};
}

KARVGraphicalEntity::EntityType FittedScene::CategoryOf(const LineGroup& group)
{
    const int next = category_count_ + static_cast<int>(line_groups_.size());
    return ToType(line_groups_.try_emplace(group, next).first->second);
}

void FittedScene::DrawLines(bool lines)
{
    lines_ = lines;
    control_.SetRenderMode(lines ? KARVGLRenderModeLines : KARVGLRenderModeFaces);
    ShowLineGroups();
}

void FittedScene::DrawEdges(bool edges)
{
    edges_ = edges;
    ShowLineGroups();
}

void FittedScene::ShowCategory(int category, bool shown)
{
    if (shown)
        hidden_.erase(category);
    else
        hidden_.insert(category);
    SetShown(category, shown);
    ShowLineGroups();
}

void FittedScene::SetGround(int red, int green, int blue)
{
    control_.SetBgColor(red, green, blue);
    ReadGround();
    ShowLineGroups();
}

void FittedScene::ReadGround()
{
    std::array<GLdouble, 4> color{};
    glGetDoublev(GL_COLOR_CLEAR_VALUE, color.data());
    ground_ = {color[0], color[1], color[2]};
}

bool FittedScene::IsShown(const LineGroup& group) const
{
    if (hidden_.contains(group.category))
        return false;
    if (group.mode == Mode::Faces)
        return edges_ && !lines_;
    return (lines_ || group.mode == Mode::Both) && ReadableColor(group.color, ground_) == group.shown;
}

void FittedScene::ShowLineGroups()
{
    // The control draws lines in both modes, so those of one mode are shown by their categories.
    for (const auto& [group, number] : line_groups_)
        SetShown(number, IsShown(group));
}

void FittedScene::SetShown(int category, bool shown)
{
    if (shown)
        control_.EnableObject(ToType(category));
    else
        control_.DisableObject(ToType(category));
}

bool FittedScene::IsFlat() const
{
    // Files and their readers round.
    constexpr double kRounding = 1e-6;
    Box box;
    for (const Point& point : fit_points_)
        box.Add(point);
    return !box.IsEmpty() && box.max.z - box.min.z <= kRounding * box.Diagonal();
}

void FittedScene::Show(StandardView view, Projection projection, double aspect)
{
    Fit(view, projection, aspect);
}

void FittedScene::Fit(Projection projection, double aspect)
{
    Fit(std::nullopt, projection, aspect);
}

void FittedScene::Fit(std::optional<StandardView> view, Projection projection, double aspect)
{
    projection_ = projection;
    // An empty model is fitted like a point.
    static constexpr std::array<Point, 1> kOrigin{};
    const std::span<const Point> points = fit_points_.empty() ? std::span<const Point>(kOrigin) : fit_points_;
    zoom_ =
        FitView(control_, points, {.view = view, .projection = projection, .aspect = aspect}).value_or(zoom_);
}

void FittedScene::SwitchProjection()
{
    projection_ = OtherThan(projection_);
    SetProjection(control_, projection_);
    control_.OnDraw(nullptr);
}

void FittedScene::ResetZoom()
{
    control_.ResetCameraZoom();
    MultiplyZoom(control_, zoom_);
    control_.OnDraw(nullptr);
}

} // namespace viewer
