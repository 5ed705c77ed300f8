#include "viewer/import/dxf/piece_builder.h"

#include "viewer/import/dxf/face_conversion.h"
#include "viewer/text/file_error.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace viewer
{

namespace
{

Spline Transformed(const Spline& spline, const Affine& map)
{
    Spline transformed = spline;
    for (Point& point : transformed.points)
        point = map.Apply(point);
    return transformed;
}

/// Adds a point. The box becomes infinite if a coordinate exceeds the maximum or is not finite: comparisons
/// with NaN would ignore it.
void AddPoint(const Point& point, Box& box)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const bool is_near = IsFinite(point) && std::max({std::abs(point.x), std::abs(point.y),
                                                      std::abs(point.z)}) <= kMaxCoordinate;
    box.Add(is_near ? point : Point{kInfinity, kInfinity, kInfinity});
}

void AddCorners(const DxfFace& face, const Affine& place, Box& box)
{
    for (std::size_t i = 0; i < face.count; ++i)
        AddPoint(place.Apply(face.corners.at(i)), box);
}

void AddArc(const EllipticArc& arc, Box& box)
{
    AddPoint(arc.center, box);
    AddPoint(arc.u, box);
    AddPoint(arc.v, box);
    if (IsFinite(box.max))
        box = BoxOfArc(arc);
}

} // namespace

Box BoxOfEntity(const PlacedEntity& placed)
{
    const auto& shape = placed.entity.shape;
    Box box;
    if (const auto* line = std::get_if<Segment>(&shape)) {
        AddPoint(placed.place.Apply(line->from), box);
        AddPoint(placed.place.Apply(line->to), box);
    } else if (const auto* arc = std::get_if<EllipticArc>(&shape)) {
        AddArc(Transformed(*arc, placed.place), box);
    } else if (const auto* spline = std::get_if<Spline>(&shape)) {
        for (const Point& point : spline->points)
            AddPoint(placed.place.Apply(point), box);
    } else if (const auto* face = std::get_if<DxfFace>(&shape)) {
        AddCorners(*face, placed.place, box);
    } else if (const auto* mesh = std::get_if<DxfMesh>(&shape)) {
        for (const DxfFace& mesh_face : *mesh)
            AddCorners(mesh_face, placed.place, box);
    }
    return box;
}

DxfPieceBuilder::DxfPieceBuilder(std::string path, const DxfDrawing& drawing,
                                 const DxfPlacedEntities& placement, double tolerance,
                                 std::size_t max_segments)
    : path_(std::move(path)), drawing_(drawing), placement_(placement), tolerance_(tolerance),
      max_segments_(max_segments)
{
}

Piece& DxfPieceBuilder::NewPiece(const PlacedEntity& placed)
{
    Piece& piece = model_.pieces.emplace_back();
    piece.name = drawing_.layers[placed.layer].name;
    piece.parents = placement_.NamesOf(placed.path);
    piece.category = static_cast<int>(placed.layer);
    piece.color = placed.color;
    return piece;
}

Piece& DxfPieceBuilder::PieceOf(const PlacedEntity& placed)
{
    const auto [entry, is_new] =
        numbers_.emplace(std::tuple(placed.path, placed.layer, placed.color), model_.pieces.size());
    return is_new ? NewPiece(placed) : model_.pieces[entry->second];
}

void DxfPieceBuilder::Add(const PlacedEntity& placed)
{
    if (const auto* mesh = std::get_if<DxfMesh>(&placed.entity.shape)) {
        Piece& piece = NewPiece(placed);
        for (const DxfFace& face : *mesh)
            AppendDxfFace(face, placed.place, piece);
    } else if (const auto* face = std::get_if<DxfFace>(&placed.entity.shape)) {
        AppendDxfFace(*face, placed.place, PieceOf(placed));
    } else {
        AddSegments(placed, PieceOf(placed));
    }
}

void DxfPieceBuilder::AddSegments(const PlacedEntity& placed, Piece& piece)
{
    const std::size_t before = piece.lines.size();
    if (const auto* line = std::get_if<Segment>(&placed.entity.shape))
        AppendSegment(placed.place.Apply(line->from), placed.place.Apply(line->to), piece.lines);
    else if (const auto* arc = std::get_if<EllipticArc>(&placed.entity.shape))
        CutArc(Transformed(*arc, placed.place), tolerance_, piece.lines);
    else if (const auto* spline = std::get_if<Spline>(&placed.entity.shape))
        CutSpline(Transformed(*spline, placed.place), tolerance_, piece.lines);
    segments_ += piece.lines.size() - before;
    if (segments_ > max_segments_)
        throw FileError(path_, "its lines come to more than " + std::to_string(max_segments_) +
                                   " segments; a larger deflection makes fewer");
}

Model DxfPieceBuilder::Finish()
{
    for (Piece& piece : model_.pieces) {
        RemoveRepeatedEdges(piece);
        OrientFaces(piece.faces);
    }
    std::erase_if(model_.pieces,
                  [](const Piece& piece) { return piece.faces.empty() && piece.lines.empty(); });
    for (const DxfLayer& layer : drawing_.layers)
        model_.category_names.push_back(layer.name);
    return std::move(model_);
}

} // namespace viewer
