#include "viewer/import/dxf/polyline.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace viewer
{

namespace
{

using Shape = decltype(DxfEntity::shape);

/// The elevation of a flat polyline replaces the z coordinates of its vertices, unless it is 0.
Point CornerOf(const DxfPolyline& polyline, std::size_t index)
{
    Point corner = polyline.vertices[index].point;
    if (polyline.IsFlat() && polyline.elevation != 0.0)
        corner.z = polyline.elevation;
    return corner;
}

bool HasWidth(const DxfPolyline& polyline)
{
    return polyline.IsFlat() &&
           std::any_of(polyline.vertices.begin(), polyline.vertices.end(), [](const auto& vertex) {
               return vertex.start_width != 0.0 || vertex.end_width != 0.0;
           });
}

DxfBand BandOf(const DxfPolyline& polyline, bool is_closed)
{
    DxfBand band;
    band.frame = polyline.frame;
    band.is_closed = is_closed;
    band.thickness = polyline.thickness;
    for (std::size_t i = 0; i < polyline.vertices.size(); ++i) {
        const DxfPolyline::Vertex& vertex = polyline.vertices[i];
        band.vertices.push_back({CornerOf(polyline, i), vertex.bulge, vertex.start_width, vertex.end_width});
    }
    return band;
}

std::vector<Shape> CurveShapes(const DxfPolyline& polyline)
{
    std::vector<Shape> shapes;
    const std::size_t count = polyline.vertices.size();
    const bool is_closed = (polyline.flags & DxfPolyline::kClosed) != 0 && count > 1;
    if (HasWidth(polyline)) {
        shapes.emplace_back(BandOf(polyline, is_closed));
        return shapes;
    }
    const Point by = polyline.frame.z * polyline.thickness;
    const auto add = [&](std::variant<Segment, EllipticArc> curve) {
        if (by != Point{} && polyline.IsFlat())
            shapes.emplace_back(DxfWall{curve, by});
        std::visit([&](const auto& part) { shapes.emplace_back(part); }, curve);
    };
    for (std::size_t i = 0; i + (is_closed ? 0 : 1) < count; ++i) {
        const Point from = CornerOf(polyline, i);
        const Point to = CornerOf(polyline, (i + 1) % count);
        const double bulge = polyline.IsFlat() ? polyline.vertices[i].bulge : 0.0;
        if (const auto arc = ArcOfBulge(from, to, bulge))
            add(Transformed(*arc, polyline.frame));
        else
            add(Segment{polyline.frame.Apply(from), polyline.frame.Apply(to)});
    }
    return shapes;
}

DxfMesh PolygonMesh(const DxfPolyline& polyline)
{
    const std::int64_t rows = polyline.rows;
    const std::int64_t columns = polyline.columns;
    const auto count = static_cast<std::int64_t>(polyline.vertices.size());
    if (rows < 1 || columns < 1 || rows * columns != count)
        throw std::runtime_error("a polygon mesh of " + std::to_string(rows) + " by " +
                                 std::to_string(columns) + " with " + std::to_string(count) + " vertices");
    const auto corner = [&](std::int64_t row, std::int64_t column) {
        return polyline.vertices[static_cast<std::size_t>(row % rows * columns + column % columns)].point;
    };
    DxfMesh mesh;
    const std::int64_t row_steps = (polyline.flags & DxfPolyline::kClosed) != 0 ? rows : rows - 1;
    const std::int64_t column_steps = (polyline.flags & DxfPolyline::kClosedInN) != 0 ? columns : columns - 1;
    for (std::int64_t row = 0; row < row_steps; ++row)
        for (std::int64_t column = 0; column < column_steps; ++column)
            mesh.push_back({{corner(row, column), corner(row + 1, column), corner(row + 1, column + 1),
                             corner(row, column + 1)},
                            4,
                            {}});
    return mesh;
}

DxfFace FaceOf(const DxfPolyline& polyline, const DxfPolyline::FaceRecord& record)
{
    DxfFace face;
    face.count = 0;
    for (const int index : record) {
        if (index == 0)
            continue;
        const std::int64_t number = std::abs(static_cast<std::int64_t>(index));
        if (number > static_cast<std::int64_t>(polyline.vertices.size()))
            throw std::runtime_error("a face refers to vertex " + std::to_string(number) + " of " +
                                     std::to_string(polyline.vertices.size()));
        face.corners.at(face.count) = polyline.vertices[static_cast<std::size_t>(number - 1)].point;
        face.hidden_edges.at(face.count) = index < 0;
        ++face.count;
    }
    return face;
}

DxfMesh PolyfaceMesh(const DxfPolyline& polyline)
{
    DxfMesh mesh;
    mesh.reserve(polyline.face_records.size());
    for (const DxfPolyline::FaceRecord& record : polyline.face_records)
        mesh.push_back(FaceOf(polyline, record));
    return mesh;
}

} // namespace

std::vector<Shape> ShapesOf(const DxfPolyline& polyline)
{
    if (!polyline.IsMesh())
        return CurveShapes(polyline);
    const bool is_polyface = (polyline.flags & DxfPolyline::kPolyfaceMesh) != 0;
    std::vector<Shape> shapes;
    shapes.emplace_back(is_polyface ? PolyfaceMesh(polyline) : PolygonMesh(polyline));
    return shapes;
}

} // namespace viewer
