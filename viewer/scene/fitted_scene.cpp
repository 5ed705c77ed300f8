#include "viewer/scene/fitted_scene.h"

#include "platform/host/db/entities.h"
#include "platform/winsys/opengl.h"
#include "viewer/scene/feature_edges.h"
#include "viewer/scene/fit_points.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <vector>

namespace viewer
{

namespace
{

AcGePoint3d ToHost(const Point& point)
{
    return {point.x, point.y, point.z};
}

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

/// The number of entities that the model becomes, without its feature edges.
int EntityCount(const Model& model)
{
    std::size_t count = model.pieces.size();
    for (const Piece& piece : model.pieces)
        count += piece.lines.size();
    return static_cast<int>(std::min(count, static_cast<std::size_t>(std::numeric_limits<int>::max())));
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

FittedScene::FittedScene(KARVOpenGLControl& control, const Model& model, const std::vector<int>& hidden)
    : control_(control), placement_(model.Extents()), first_line_category_(model.CategoryCount()),
      hidden_(hidden.begin(), hidden.end()), fit_points_(FitPointsInScene(model, hidden_, placement_))
{
    // A control for transparent drawing does not cull back faces. It would blend a two-sided face twice, and
    // the far side of a body over the near one.
    glEnable(GL_CULL_FACE);
    control_.ComputeExtents(false);
    control_.AllocateMemory(EntityCount(model));
    for (const Piece& piece : model.pieces)
        Feed(piece);
    for (const int category : hidden_)
        control_.DisableObject(ToType(category));
    DrawLines(false);
}

void FittedScene::Feed(const Piece& piece)
{
    if (!piece.faces.empty())
        FeedFaces(piece);
    FeedLines(piece.lines, piece.color, ToType(piece.category));
}

void FittedScene::FeedFaces(const Piece& piece)
{
    const auto category = ToType(piece.category);
    auto solid = piece.two_sided
                     ? std::nullopt
                     : MakeSolid(piece, [&](const Point& point) { return placement_.ToScene(point); });
    if (solid) {
        control_.AppendGeometry(&*solid, category, piece.color, piece.alpha);
    } else {
        control_.AppendGeometry(ToTriangles(piece, placement_), category, piece.color, piece.alpha);
        const int line_category = first_line_category_ + piece.category;
        FeedLines(FeatureEdges(piece), piece.color, ToType(line_category));
        if (hidden_.contains(piece.category))
            control_.DisableObject(ToType(line_category));
        else
            line_categories_.insert(line_category);
    }
}

void FittedScene::FeedLines(const std::vector<Segment>& lines, unsigned char color,
                            KARVGraphicalEntity::EntityType category)
{
    for (const Segment& segment : lines) {
        AcDbLine line(ToHost(placement_.ToScene(segment.from)), ToHost(placement_.ToScene(segment.to)));
        line.setColorIndex(color);
        control_.AppendGeometry(&line, category);
    }
}

void FittedScene::DrawLines(bool lines)
{
    control_.SetRenderMode(lines ? KARVGLRenderModeLines : KARVGLRenderModeFaces);
    // The control draws lines in both modes, so the categories of feature edges are hidden among faces.
    for (const int category : line_categories_)
        if (lines)
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
    Fit({.view = view, .projection = projection, .aspect = aspect});
}

void FittedScene::Fit(Projection projection, double aspect)
{
    Fit({.projection = projection, .aspect = aspect});
}

void FittedScene::Fit(const FitOptions& options)
{
    projection_ = *options.projection;
    zoom_ = FitView(control_, fit_points_, options).value_or(zoom_);
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
