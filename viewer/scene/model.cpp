#include "viewer/scene/model.h"

#include "viewer/text/text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace viewer
{

Point operator+(const Point& a, const Point& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Point operator-(const Point& a, const Point& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Point operator*(const Point& a, double factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}

double Dot(const Point& a, const Point& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Point Cross(const Point& a, const Point& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double Length(const Point& a)
{
    return std::hypot(a.x, a.y, a.z);
}

bool IsFinite(const Point& a)
{
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

void Box::Add(const Point& point)
{
    min = {std::min(min.x, point.x), std::min(min.y, point.y), std::min(min.z, point.z)};
    max = {std::max(max.x, point.x), std::max(max.y, point.y), std::max(max.z, point.z)};
}

void Box::Unite(const Box& box)
{
    if (box.IsEmpty())
        return;
    Add(box.min);
    Add(box.max);
}

namespace
{

/// Twice the area times the normal, in units of the squared reach (the largest distance from the first
/// corner). Corners are relative to the first one, so that a small face far from the origin keeps its digits,
/// and scaled by the reach, so that the products of a tiny face do not underflow.
Point AreaVector(const std::vector<Point>& corners)
{
    double reach = 0.0;
    for (const Point& corner : corners)
        reach = std::max(reach, Length(corner - corners.front()));
    if (reach == 0.0)
        return {};
    Point sum;
    for (std::size_t i = 1; i + 1 < corners.size(); ++i) {
        const Point a = (corners[i] - corners.front()) * (1.0 / reach);
        const Point b = (corners[i + 1] - corners.front()) * (1.0 / reach);
        sum = sum + Cross(a, b);
    }
    return sum;
}

} // namespace

std::optional<ModelFace> MakeFace(std::vector<Point> counterclockwise)
{
    if (counterclockwise.size() < 3)
        return std::nullopt;
    const Point area = AreaVector(counterclockwise);
    const double length = Length(area);
    // The area of corners in one line is at most this, by rounding.
    constexpr double kNoArea = 1e-14;
    if (!(length > kNoArea))
        return std::nullopt;
    std::reverse(counterclockwise.begin(), counterclockwise.end());
    return ModelFace{std::move(counterclockwise), area * (1.0 / length)};
}

Piece MakePiece(std::string name, std::vector<ModelFace> faces, int category, unsigned char color,
                float alpha)
{
    Piece piece;
    piece.name = std::move(name);
    piece.faces = std::move(faces);
    piece.category = category;
    piece.color = color;
    piece.alpha = alpha;
    return piece;
}

void AppendPointMark(const Point& point, double length, std::vector<Segment>& lines)
{
    const double half = 0.5 * length;
    for (const Point& arm : {Point{half, 0.0, 0.0}, Point{0.0, half, 0.0}, Point{0.0, 0.0, half}})
        lines.push_back({point - arm, point + arm});
}

std::size_t FaceCountOf(const Piece& piece)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(piece.faces, [](const ModelFace& face) { return !face.continues; }));
}

namespace
{

void Scale(std::vector<Segment>& segments, double factor)
{
    for (Segment& segment : segments)
        segment = {segment.from * factor, segment.to * factor};
}

void Scale(Piece& piece, double factor)
{
    for (ModelFace& face : piece.faces)
        for (Point& corner : face.corners)
            corner = corner * factor;
    if (piece.edges)
        Scale(*piece.edges, factor);
    Scale(piece.lines, factor);
}

} // namespace

Box Model::Extents() const
{
    Box box;
    for (const Piece& piece : pieces) {
        for (const ModelFace& face : piece.faces)
            for (const Point& corner : face.corners)
                box.Add(corner);
        for (const Segment& line : piece.lines) {
            box.Add(line.from);
            box.Add(line.to);
        }
    }
    return box;
}

std::size_t Model::FaceCount() const
{
    std::size_t count = 0;
    for (const Piece& piece : pieces)
        count += FaceCountOf(piece);
    return count;
}

int Model::CategoryCount() const
{
    int count = static_cast<int>(category_names.size());
    for (const Piece& piece : pieces)
        count = std::max(count, piece.category + 1);
    return count;
}

bool Model::IsTranslucent() const
{
    return std::any_of(pieces.begin(), pieces.end(), [](const Piece& piece) { return piece.alpha < 1.0F; });
}

std::string ListOf(const std::vector<LeftOut>& left_out)
{
    constexpr std::size_t kMaxBytes = 500;
    std::string list;
    for (const LeftOut& parts : left_out)
        list += (list.empty() ? "" : ", ") + std::to_string(parts.count) + ' ' + parts.kind;
    return OneLine(list, kMaxBytes);
}

void Model::LeaveOut(std::string_view kind, std::size_t count)
{
    if (count == 0)
        return;
    const auto known = std::ranges::find(left_out, kind, &LeftOut::kind);
    if (known != left_out.end())
        known->count += count;
    else if (left_out.size() < kMaxLeftOutKinds || kind == kOtherKinds)
        left_out.push_back({std::string(kind), count});
    else
        LeaveOut(kOtherKinds, count);
}

void Model::Append(Model other)
{
    if (pieces.empty() && !meters_per_unit)
        meters_per_unit = other.meters_per_unit;
    const bool differs = meters_per_unit && other.meters_per_unit && meters_per_unit != other.meters_per_unit;
    const int first_category = CategoryCount();
    for (Piece& piece : other.pieces) {
        piece.category += first_category;
        if (differs)
            Scale(piece, *other.meters_per_unit / *meters_per_unit);
    }
    std::move(other.pieces.begin(), other.pieces.end(), std::back_inserter(pieces));
    if (!other.category_names.empty())
        category_names.resize(static_cast<std::size_t>(first_category));
    std::move(other.category_names.begin(), other.category_names.end(), std::back_inserter(category_names));
    for (const LeftOut& parts : other.left_out)
        LeaveOut(parts.kind, parts.count);
    if (!title.empty() && !other.title.empty())
        title += ", ";
    title += other.title;
}

void Model::PutTranslucentLast()
{
    std::stable_partition(pieces.begin(), pieces.end(),
                          [](const Piece& piece) { return piece.alpha >= 1.0F; });
}

} // namespace viewer
