#include "viewer/import/dxf/thick_curve.h"

#include "viewer/import/dxf/face_conversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

namespace viewer
{

namespace
{

/// The two borders of a band beside one place of its center line.
struct Station {
    Point left;
    Point right;
};

/// One part of a band, between two vertices.
struct Part {
    Point from;
    Point to;
    Point start_normal; ///< to the left, of unit length
    Point end_normal;
    double start = 0.0; ///< half widths
    double end = 0.0;
    std::optional<EllipticArc> arc;
};

Point LeftOf(const Point& direction)
{
    const double length = Length(direction);
    return length > 0.0 ? Point{-direction.y / length, direction.x / length, 0.0} : Point{};
}

std::vector<Part> PartsOf(const DxfBand& band)
{
    std::vector<Part> parts;
    const std::size_t count = band.vertices.size();
    for (std::size_t i = 0; i + (band.is_closed ? 0 : 1) < count; ++i) {
        const DxfBand::Vertex& vertex = band.vertices[i];
        Part part;
        part.from = vertex.point;
        part.to = band.vertices[(i + 1) % count].point;
        part.start = std::abs(vertex.start_width) / 2.0;
        part.end = std::abs(vertex.end_width) / 2.0;
        part.arc = ArcOfBulge(part.from, part.to, vertex.bulge);
        if (part.from == part.to)
            continue;
        part.start_normal = part.end_normal = LeftOf(part.to - part.from);
        if (part.arc) {
            const double turn = vertex.bulge > 0.0 ? -1.0 : 1.0;
            const double radius = Length(part.arc->u);
            part.start_normal = (part.from - part.arc->center) * (turn / radius);
            part.end_normal = (part.to - part.arc->center) * (turn / radius);
        }
        parts.push_back(part);
    }
    return parts;
}

/// Turns the normals at a corner to the miter, which is longer than 1, unless the corner is too sharp.
void Miter(Part& before, Part& after)
{
    constexpr double kMinCosine = 0.25;
    if (before.arc || after.arc || before.end != after.start || before.end == 0.0)
        return;
    const Point sum = before.end_normal + after.start_normal;
    const double length = Length(sum);
    if (length / 2.0 < kMinCosine)
        return;
    before.end_normal = after.start_normal = sum * (2.0 / (length * length));
}

std::vector<Station> StationsOf(const Part& part, double tolerance)
{
    const auto station = [](const Point& center, const Point& normal, double half_width) {
        return Station{center + normal * half_width, center - normal * half_width};
    };
    std::vector<Station> stations{station(part.from, part.start_normal, part.start)};
    if (part.arc) {
        // The outer border needs the most segments.
        EllipticArc outer = *part.arc;
        const double radius = Length(outer.u);
        const double growth = (radius + std::max(part.start, part.end)) / radius;
        outer.u = outer.u * growth;
        outer.v = outer.v * growth;
        std::vector<Segment> segments;
        CutArc(outer, tolerance, segments);
        const double side = Dot(part.start_normal, part.from - part.arc->center) > 0.0 ? 1.0 : -1.0;
        for (std::size_t i = 1; i < segments.size(); ++i) {
            const double share = static_cast<double>(i) / static_cast<double>(segments.size());
            const Point spoke =
                (part.arc->At(part.arc->start + part.arc->sweep * share) - part.arc->center) * (1.0 / radius);
            stations.push_back(station(part.arc->center + spoke * radius, spoke * side,
                                       part.start + (part.end - part.start) * share));
        }
    }
    stations.push_back(station(part.to, part.end_normal, part.end));
    return stations;
}

/// Appends faces in the frame of a band.
class BandFaces
{
  public:
    BandFaces(const DxfBand& band, const Affine& place, Piece& piece)
        : place_(place * band.frame), by_{0.0, 0.0, band.thickness}, piece_(piece)
    {
    }

    void Add(const Station& from, const Station& to, bool begins, bool ends)
    {
        const bool is_thick = by_ != Point{};
        AddFace({from.right, to.right, to.left, from.left}, {!is_thick, true, !is_thick, true});
        if (!is_thick)
            return;
        AddFace({from.left + by_, to.left + by_, to.right + by_, from.right + by_},
                {false, true, false, true});
        AddFace({from.left, to.left, to.left + by_, from.left + by_}, {true, true, true, true});
        AddFace({to.right, from.right, from.right + by_, to.right + by_}, {true, true, true, true});
        if (begins)
            AddFace({from.right, from.left, from.left + by_, from.right + by_}, {});
        if (ends)
            AddFace({to.left, to.right, to.right + by_, to.left + by_}, {});
    }

  private:
    void AddFace(const std::array<Point, 4>& corners, const std::array<bool, 4>& hidden_edges)
    {
        AppendDxfFace({corners, 4, hidden_edges}, place_, piece_);
    }

    Affine place_;
    Point by_;
    Piece& piece_;
};

void AppendCenterLine(const Part& part, const Affine& place, double tolerance, Piece& piece)
{
    if (part.arc)
        CutArc(Transformed(*part.arc, place), tolerance, piece.lines);
    else
        AppendSegment(place.Apply(part.from), place.Apply(part.to), piece.lines);
}

DxfWall CenterWall(const Part& part, const DxfBand& band)
{
    const Point by = band.frame.z * band.thickness;
    if (part.arc)
        return {Transformed(*part.arc, band.frame), by};
    return {Segment{band.frame.Apply(part.from), band.frame.Apply(part.to)}, by};
}

} // namespace

std::vector<Point> DxfWall::Extremes() const
{
    Box box;
    if (const auto* line = std::get_if<Segment>(&curve)) {
        box.Add(line->from);
        box.Add(line->to);
    } else if (const auto* arc = std::get_if<EllipticArc>(&curve)) {
        box = BoxOfArc(*arc);
    }
    // Corners, because the place can turn the box.
    std::vector<Point> points;
    for (const double x : {box.min.x, box.max.x})
        for (const double y : {box.min.y, box.max.y})
            for (const double z : {box.min.z, box.max.z})
                points.insert(points.end(), {Point{x, y, z}, Point{x, y, z} + by});
    return points;
}

std::vector<Point> DxfBand::Extremes() const
{
    std::vector<Point> points;
    for (const Vertex& vertex : vertices) {
        const double reach = std::max(std::abs(vertex.start_width), std::abs(vertex.end_width)) / 2.0;
        points.push_back(vertex.point - Point{reach, reach, 0.0});
        points.push_back(vertex.point + Point{reach, reach, thickness});
    }
    return points;
}

void AppendWall(const DxfWall& wall, const Affine& place, double tolerance, Piece& piece)
{
    std::vector<Segment> segments;
    bool is_closed = false;
    if (const auto* line = std::get_if<Segment>(&wall.curve))
        AppendSegment(place.Apply(line->from), place.Apply(line->to), segments);
    if (const auto* arc = std::get_if<EllipticArc>(&wall.curve)) {
        CutArc(Transformed(*arc, place), tolerance, segments);
        is_closed = arc->sweep == kFullTurn;
    }
    const Point by = place.ApplyToVector(wall.by);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const auto& [from, to] = segments[i];
        const bool hides_start = is_closed || i > 0;
        const bool hides_end = is_closed || i + 1 < segments.size();
        AppendDxfFace({{from, to, to + by, from + by}, 4, {true, hides_end, false, hides_start}}, Affine{},
                      piece);
    }
}

void AppendBand(const DxfBand& band, const Affine& place, double tolerance, double line_width, Piece& piece)
{
    std::vector<Part> parts = PartsOf(band);
    for (std::size_t i = 0; i + 1 < parts.size(); ++i)
        Miter(parts[i], parts[i + 1]);
    const bool is_ring = band.is_closed && parts.size() > 2;
    if (is_ring)
        Miter(parts.back(), parts.front());
    const double stretch = std::hypot(Length(place.x), Length(place.y), Length(place.z));
    BandFaces faces(band, place, piece);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const double width = 2.0 * std::max(parts[i].start, parts[i].end);
        if (width == 0.0 || width * stretch < line_width)
            AppendCenterLine(parts[i], place * band.frame, tolerance, piece);
        if (width == 0.0 && band.thickness != 0.0)
            AppendWall(CenterWall(parts[i], band), place, tolerance, piece);
        if (width == 0.0)
            continue;
        const std::vector<Station> stations =
            StationsOf(parts[i], stretch > 0.0 ? tolerance / stretch : tolerance);
        for (std::size_t k = 0; k + 1 < stations.size(); ++k)
            faces.Add(stations[k], stations[k + 1], k == 0 && i == 0 && !is_ring,
                      k + 2 == stations.size() && i + 1 == parts.size() && !is_ring);
    }
}

} // namespace viewer
