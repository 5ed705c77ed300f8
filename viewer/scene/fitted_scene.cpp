#include "viewer/scene/fitted_scene.h"

#include "platform/host/db/entities.h"
#include "viewer/scene/feature_edges.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace viewer
{

namespace
{

/// The control's scene size is this many diagonals of its box.
constexpr double kSceneSizePerDiagonal = 1.2;
constexpr double kMargin = 1.05;
/// Half the control's vertical field of view, in radians.
constexpr double kHalfFieldOfView = 20.0 * std::numbers::pi / 180.0;

AcGePoint3d ToHost(const Point& point)
{
    return {point.x, point.y, point.z};
}

KARVGLVertex ToVertex(const Point& point)
{
    return {point.x, point.y, point.z};
}

std::vector<KARVGLFace> ToFaces(const Piece& piece, const ScenePlacement& placement)
{
    std::vector<KARVGLFace> faces(piece.faces.size());
    for (std::size_t i = 0; i < faces.size(); ++i) {
        const ModelFace& source = piece.faces[i];
        faces[i].normal = ToVertex(source.normal);
        faces[i].vertices.reserve(source.corners.size());
        for (const Point& corner : source.corners)
            faces[i].vertices.push_back(ToVertex(placement.ToScene(corner)));
    }
    return faces;
}

KARVGraphicalEntity::EntityType ToType(int category)
{
    return static_cast<KARVGraphicalEntity::EntityType>(category);
}

/// How many entities the model becomes, besides its feature edges.
int EntityCount(const Model& model)
{
    std::size_t count = model.pieces.size();
    for (const Piece& piece : model.pieces)
        count += piece.lines.size();
    return static_cast<int>(std::min(count, static_cast<std::size_t>(std::numeric_limits<int>::max())));
}

void ApplyView(KARVOpenGLControl& control, StandardView view)
{
    using Command = void (KARVOpenGLControl::*)();
    static constexpr std::array<Command, kStandardViews.size()> kCommands = {
        &KARVOpenGLControl::CameraViewFront, &KARVOpenGLControl::CameraViewBack,
        &KARVOpenGLControl::CameraViewLeft,  &KARVOpenGLControl::CameraViewRight,
        &KARVOpenGLControl::CameraViewTop,   &KARVOpenGLControl::CameraViewBottom,
        &KARVOpenGLControl::CameraViewSE,    &KARVOpenGLControl::CameraViewSW,
        &KARVOpenGLControl::CameraViewNE,    &KARVOpenGLControl::CameraViewNW};
    (control.*kCommands.at(static_cast<std::size_t>(view)))();
}

} // namespace

double FitGrowth(double aspect)
{
    // The model lies within a sphere of radius R, half its box's diagonal; the box that is grown by g makes a
    // scene size of S = 1.2 g 2R, and standard views put the eye at S from the centre.
    //  - In perspective the sphere touches the edge of a cone of half angle a at S sin(a) = R, so g = 1 /
    //  (2.4 sin(a)):
    //    upwards a is 20 degrees (1.22); sideways tan(a) is the aspect times tan(20 degrees).
    //  - In parallel projection the viewport is S wide (g = 1/1.2 holds, less than 1.22) and S / aspect high.
    constexpr double kUpwards = 1.22;
    constexpr double kParallelUpwardsPerAspect = 0.84;
    const double sideways =
        0.5 / (kSceneSizePerDiagonal * std::sin(std::atan(aspect * std::tan(kHalfFieldOfView))));
    return kMargin * std::max({kUpwards, kParallelUpwardsPerAspect * aspect, sideways});
}

ScenePlacement::ScenePlacement(const Box& extents) : origin_(extents.min)
{
    constexpr double kFittedDiagonal = kSceneSize / kSceneSizePerDiagonal;
    const double diagonal = extents.Diagonal();
    const double scene_diagonal = kFittedDiagonal / FitGrowth(1.0);
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
    const Point reach = (scene_box_.max - center) * FitGrowth(aspect);
    Box box;
    box.Add(center - reach);
    box.Add(center + reach);
    return box;
}

FittedScene::FittedScene(KARVOpenGLControl& control, const Model& model, const std::vector<int>& hidden)
    : control_(control), placement_(model.Extents()), first_line_category_(model.CategoryCount()),
      hidden_(hidden.begin(), hidden.end())
{
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
    auto solid = MakeSolid(piece, [&](const Point& point) { return placement_.ToScene(point); });
    if (solid) {
        control_.AppendGeometry(&*solid, category, piece.color, piece.alpha);
    } else {
        control_.AppendGeometry(ToFaces(piece, placement_), category, piece.color, piece.alpha);
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
    // Lines would be drawn among the faces, too.
    for (const int category : line_categories_)
        if (lines)
            control_.EnableObject(ToType(category));
        else
            control_.DisableObject(ToType(category));
}

void FittedScene::Show(StandardView view, Projection projection, double aspect)
{
    const Box box = placement_.FittedBox(aspect);
    control_.OverrideExtents(ToHost(box.min), ToHost(box.max));
    control_.ResetCameraZoom();
    ApplyView(control_, view);
    SetProjection(projection);
    // Frames never load matrices; this does, and it also replaces the passing projection of a switch to
    // perspective.
    control_.OnDraw(nullptr);
}

void FittedScene::SwitchProjection()
{
    SetProjection(projection_ == Projection::Perspective ? Projection::Parallel : Projection::Perspective);
    control_.OnDraw(nullptr);
}

void FittedScene::SetProjection(Projection projection)
{
    // A control that is in perspective already would take its projection stack below its bottom.
    if (projection != projection_)
        control_.SetToPerspective(projection == Projection::Perspective);
    projection_ = projection;
}

} // namespace viewer
