#include "viewer/import/dxf/piece_builder.h"

#include "viewer/import/dxf/face_conversion.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

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

void AddPoints(const std::vector<Point>& points, const Affine& place, Box& box)
{
    for (const Point& point : points)
        AddPoint(place.Apply(point), box);
}

void AddCorners(const DxfText& text, const Affine& place, Box& box)
{
    const Affine map = place * text.frame;
    for (const double x : {text.box.min.x, text.box.max.x})
        for (const double y : {text.box.min.y, text.box.max.y})
            AddPoint(map.Apply({x, y, 0.0}), box);
}

void AppendText(const DxfText& text, const Affine& place, std::vector<Segment>& segments)
{
    const Affine map = place * text.frame;
    for (const DxfText::Character& character : text.characters) {
        const auto at = [&](const Point& point) {
            return map.Apply({character.x + character.width * (point.x + character.slant * point.y),
                              character.y + character.height * point.y, 0.0});
        };
        for (const Segment& segment : character.glyph->outline)
            AppendSegment(at(segment.from), at(segment.to), segments);
    }
    for (const Segment& line : text.lines)
        AppendSegment(map.Apply(line.from), map.Apply(line.to), segments);
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
    } else if (const auto* point = std::get_if<DxfPoint>(&shape)) {
        AddPoint(placed.place.Apply(point->frame.origin), box);
        AddPoint(placed.place.Apply(point->frame.origin + point->by), box);
    } else if (const auto* infinite = std::get_if<DxfInfiniteLine>(&shape)) {
        AddPoint(placed.place.Apply(infinite->base), box);
    } else if (const auto* hatch = std::get_if<DxfHatch>(&shape)) {
        AddPoints(hatch->Extremes(), placed.place * hatch->frame, box);
    } else if (const auto* wall = std::get_if<DxfWall>(&shape)) {
        AddPoints(wall->Extremes(), placed.place, box);
    } else if (const auto* band = std::get_if<DxfBand>(&shape)) {
        AddPoints(band->Extremes(), placed.place * band->frame, box);
    } else if (const auto* text = std::get_if<DxfText>(&shape)) {
        AddCorners(*text, placed.place, box);
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
    piece.alpha = placed.opacity;
    return piece;
}

Piece& DxfPieceBuilder::PieceOf(const PlacedEntity& placed)
{
    const auto [entry, is_new] = numbers_.emplace(
        std::tuple(placed.path, placed.layer, placed.color, placed.opacity), model_.pieces.size());
    return is_new ? NewPiece(placed) : model_.pieces[entry->second];
}

void DxfPieceBuilder::Add(const PlacedEntity& placed)
{
    if (const auto* left_out = std::get_if<DxfLeftOut>(&placed.entity.shape)) {
        model_.LeaveOut(left_out->kind, left_out->count);
    } else if (const auto* text = std::get_if<DxfText>(&placed.entity.shape)) {
        AddText(*text, placed);
    } else if (const auto* mesh = std::get_if<DxfMesh>(&placed.entity.shape)) {
        Piece& piece = NewPiece(placed);
        for (const DxfFace& face : *mesh)
            AppendDxfFace(face, placed.place, piece);
    } else if (const auto* face = std::get_if<DxfFace>(&placed.entity.shape)) {
        AppendDxfFace(*face, placed.place, PieceOf(placed));
    } else {
        Piece& piece = PieceOf(placed);
        const std::size_t before = piece.lines.size() + piece.faces.size();
        AddSegments(placed, piece);
        AddFaces(placed, piece);
        Count(piece.lines.size() + piece.faces.size() - before);
    }
}

void DxfPieceBuilder::SetExtents(const Box& box)
{
    // A drawing without extent is shown as if it had the length of a unit.
    constexpr double kMargin = 0.05;
    const double diagonal = box.IsEmpty() ? 0.0 : box.Diagonal();
    const double margin = diagonal > 0.0 ? kMargin * diagonal : 0.5;
    extents_ = box;
    if (!box.IsEmpty()) {
        extents_.Add(box.min - Point{margin, margin, margin});
        extents_.Add(box.max + Point{margin, margin, margin});
    }
    constexpr double kDotShare = 0.002;
    mark_size_ = MarkSize(drawing_.point_style, box);
    dot_length_ = kDotShare * (diagonal > 0.0 ? diagonal : 1.0);
}

void DxfPieceBuilder::AddFaces(const PlacedEntity& placed, Piece& piece)
{
    if (const auto* wall = std::get_if<DxfWall>(&placed.entity.shape))
        AppendWall(*wall, placed.place, tolerance_, piece);
    else if (const auto* band = std::get_if<DxfBand>(&placed.entity.shape))
        AppendBand(*band, placed.place, tolerance_, dot_length_, piece);
    else if (const auto* hatch = std::get_if<DxfHatch>(&placed.entity.shape))
        AddHatch(*hatch, placed, piece);
}

void DxfPieceBuilder::AddHatch(const DxfHatch& hatch, const PlacedEntity& placed, Piece& piece)
{
    switch (AppendHatch(hatch, placed.place, tolerance_, hatch_work_, piece)) {
    case HatchResult::Drawn:
        break;
    case HatchResult::FilledInstead:
        model_.LeaveOut("HATCH pattern (too dense, filled instead)");
        break;
    case HatchResult::TooComplex:
        model_.LeaveOut("HATCH (boundary too complex)");
        break;
    case HatchResult::Empty:
        model_.LeaveOut("HATCH without area");
        break;
    }
}

void DxfPieceBuilder::Count(std::size_t added)
{
    segments_ += added;
    if (segments_ + text_segments_ > max_segments_)
        throw FileError(path_, "its lines come to more than " + std::to_string(max_segments_) +
                                   " segments; a larger deflection makes fewer");
}

/// Texts share half of the segments, so that they leave room for the rest of a drawing.
void DxfPieceBuilder::AddText(const DxfText& text, const PlacedEntity& placed)
{
    if (text.segment_count > max_segments_ / 2 - text_segments_) {
        model_.LeaveOut("TEXT beyond the limit of segments");
        return;
    }
    text_segments_ += text.segment_count;
    AppendText(text, placed.place, PieceOf(placed).lines);
}

/// NOTE: The points that define dimensions are on a layer of their own, and are always dots.
int DxfPieceBuilder::ModeOfPoints(std::size_t layer) const
{
    return LowerCase(drawing_.layers[layer].name) == "defpoints" ? 0 : drawing_.point_style.mode;
}

void DxfPieceBuilder::AddSegments(const PlacedEntity& placed, Piece& piece)
{
    if (const auto* line = std::get_if<Segment>(&placed.entity.shape))
        AppendSegment(placed.place.Apply(line->from), placed.place.Apply(line->to), piece.lines);
    else if (const auto* arc = std::get_if<EllipticArc>(&placed.entity.shape))
        CutArc(Transformed(*arc, placed.place), tolerance_, piece.lines);
    else if (const auto* spline = std::get_if<Spline>(&placed.entity.shape))
        CutSpline(Transformed(*spline, placed.place), tolerance_, piece.lines);
    else if (const auto* point = std::get_if<DxfPoint>(&placed.entity.shape))
        AppendPoint(*point, placed.place, ModeOfPoints(placed.layer), mark_size_, dot_length_, tolerance_,
                    piece.lines);
    else if (const auto* infinite = std::get_if<DxfInfiniteLine>(&placed.entity.shape))
        if (const auto part = ClippedTo(extents_, *infinite, placed.place))
            AppendSegment(part->from, part->to, piece.lines);
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
