#include "viewer/import/dxf/drawing_builder.h"

#include "viewer/import/dxf/extrusion_frame.h"
#include "viewer/text/file_error.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <utility>

namespace viewer
{

namespace
{

constexpr int kForeground = 7;

/// The palette index of an entity's 24-bit colour, if it has one.
std::optional<int> TrueColorOf(const DL_Attributes& attributes)
{
    return viewer::TrueColorOf(attributes.getColor(), attributes.getColor24());
}

int ColorOf(const DL_Attributes& attributes)
{
    const int color = attributes.getColor();
    if (const std::optional<int> true_color = TrueColorOf(attributes))
        return *true_color;
    return color >= 0 && color < kColorByLayer ? color : kColorByLayer;
}

/// The colour that these groups state, if any.
std::optional<int> ColorOf(const DxfEntityNumbers& numbers)
{
    if (const auto color24 = numbers.First(420); color24 && *color24 >= 0.0)
        return NearestIndexOf(static_cast<int>(static_cast<std::int64_t>(*color24) & 0xFFFFFF));
    const int color = numbers.IntegerOr(62, -1);
    return color >= 0 && color <= kColorByLayer ? std::optional(color) : std::nullopt;
}

/// The widths of the vertices of a light polyline, in their order.
std::vector<DxfPolyline::Vertex> LightWidths(const DxfEntityNumbers& numbers)
{
    DxfPolyline::Vertex widths;
    widths.start_width = widths.end_width = numbers.FirstOr(43, 0.0);
    std::vector<DxfPolyline::Vertex> vertices;
    for (const DxfNumber& number : numbers.all)
        if (number.code == 10)
            vertices.push_back(widths);
        else if (number.code == 40 && !vertices.empty())
            vertices.back().start_width = number.value;
        else if (number.code == 41 && !vertices.empty())
            vertices.back().end_width = number.value;
    return vertices;
}

/// The faces of the body that a face sweeps.
DxfMesh PrismOf(const DxfFace& base, const Point& by)
{
    DxfMesh mesh{base, base};
    for (std::size_t i = 0; i < base.count; ++i) {
        const std::size_t next = (i + 1) % base.count;
        mesh[1].corners.at(i) = base.corners.at(i) + by;
        mesh.push_back(
            {{base.corners.at(i), base.corners.at(next), base.corners.at(next) + by, base.corners.at(i) + by},
             4,
             {}});
    }
    return mesh;
}

} // namespace

DxfDrawingBuilder::DxfDrawingBuilder(std::string path, DxfDrawing& drawing)
    : path_(std::move(path)), drawing_(drawing)
{
}

void DxfDrawingBuilder::Fail(std::size_t line, const std::string& reason) const
{
    throw FileError(path_, "line " + std::to_string(line) + ": " + reason);
}

void DxfDrawingBuilder::Begin(const DxfEntityHead& head)
{
    finished_ = std::exchange(current_, head);
    TakeFaceRecord();
}

/// The library ignores those vertices of a polyface mesh that define its faces.
void DxfDrawingBuilder::TakeFaceRecord()
{
    constexpr int kFace = 128;
    constexpr int kLocation = 64;
    const auto [flags, a, b, c, d] = finished_.integers;
    if (finished_.kind == "VERTEX" && polyline_ && (flags & kFace) != 0 && (flags & kLocation) == 0)
        polyline_->face_records[ColorOf(finished_.numbers).value_or(polyline_->entity.color)].push_back(
            {a, b, c, d});
}

DxfOpacity DxfDrawingBuilder::EntityOpacity() const
{
    return OpacityOf(finished_.numbers.FirstOr(440, 0.0));
}

int DxfDrawingBuilder::EntityColor()
{
    return ColorOf(getAttributes());
}

Affine DxfDrawingBuilder::Frame()
{
    const double* direction = getExtrusion()->getDirection();
    return FrameOfExtrusion({direction[0], direction[1], direction[2]});
}

void DxfDrawingBuilder::Add(decltype(DxfEntity::shape) shape, std::optional<int> color)
{
    std::vector<DxfEntity>& entities = block_ ? drawing_.blocks[*block_].entities : drawing_.entities;
    entities.push_back({std::move(shape), drawing_.LayerNumber(getAttributes().getLayer()),
                        color.value_or(EntityColor()), finished_.line, EntityOpacity()});
}

/// Adds the wall of a curve that has a thickness.
void DxfDrawingBuilder::AddWall(const std::variant<Segment, EllipticArc>& curve)
{
    const double thickness = finished_.numbers.FirstOr(39, 0.0);
    if (thickness != 0.0)
        Add(DxfWall{curve, Frame().z * thickness});
}

/// Points, and all entities that are not read by the library: it gets a point for each of them.
void DxfDrawingBuilder::addPoint(const DL_PointData& /*data*/)
{
    DirectShapes made = ShapesOfEntity(finished_.kind, finished_.numbers, Frame(), mesh_work_);
    if (!made.left_out.empty())
        Add(DxfLeftOut{made.left_out});
    const std::optional<int> color =
        made.color24 ? std::optional(NearestIndexOf(*made.color24)) : std::nullopt;
    for (auto& shape : made.shapes)
        Add(std::move(shape), color);
}

void DxfDrawingBuilder::addLayer(const DL_LayerData& data)
{
    constexpr int kFrozen = 1;
    DxfLayer& layer = drawing_.layers[drawing_.LayerNumber(data.name)];
    // A negative index means that the layer is off.
    const DL_Attributes entry = getAttributes();
    const bool is_off = data.off || entry.getColor() < 0;
    const int color =
        TrueColorOf(entry).value_or(is_off ? -std::max(entry.getColor(), -kColorByLayer) : entry.getColor());
    layer.color = static_cast<unsigned char>(color > 0 && color < kColorByLayer ? color : kForeground);
    layer.is_off = is_off;
    layer.is_frozen = (data.flags & kFrozen) != 0;
    layer.opacity = EntityOpacity().value;
}

void DxfDrawingBuilder::addBlock(const DL_BlockData& data)
{
    block_ = drawing_.BlockNumber(data.name);
    DxfBlock& block = drawing_.blocks[*block_];
    constexpr int kExternal = 4 | 8;
    block.is_defined = true;
    block.is_external = (data.flags & kExternal) != 0;
    block.base = {data.bpx, data.bpy, data.bpz};
    block.entities.clear();
}

void DxfDrawingBuilder::endBlock()
{
    block_.reset();
}

void DxfDrawingBuilder::addLine(const DL_LineData& data)
{
    const Segment line{{data.x1, data.y1, data.z1}, {data.x2, data.y2, data.z2}};
    Add(line);
    AddWall(line);
}

void DxfDrawingBuilder::addArc(const DL_ArcData& data)
{
    const Affine frame = Frame();
    const double radius = std::abs(data.radius);
    const double start = Radians(data.angle1);
    const EllipticArc arc{frame.Apply({data.cx, data.cy, data.cz}), frame.x * radius, frame.y * radius, start,
                          SweepBetween(start, Radians(data.angle2))};
    Add(arc);
    AddWall(arc);
}

void DxfDrawingBuilder::addCircle(const DL_CircleData& data)
{
    const Affine frame = Frame();
    const double radius = std::abs(data.radius);
    const EllipticArc circle{frame.Apply({data.cx, data.cy, data.cz}), frame.x * radius, frame.y * radius,
                             0.0, kFullTurn};
    Add(circle);
    AddWall(circle);
}

void DxfDrawingBuilder::addEllipse(const DL_EllipseData& data)
{
    const Point major{data.mx, data.my, data.mz};
    const Point minor = Cross(Frame().z, major) * data.ratio;
    Add(EllipticArc{
        {data.cx, data.cy, data.cz}, major, minor, data.angle1, SweepBetween(data.angle1, data.angle2)});
}

void DxfDrawingBuilder::addPolyline(const DL_PolylineData& data)
{
    OpenPolyline& open = polyline_.emplace();
    open.entity = {
        {}, drawing_.LayerNumber(getAttributes().getLayer()), EntityColor(), finished_.line, EntityOpacity()};
    DxfPolyline& polyline = open.polyline;
    polyline.flags = data.flags;
    const bool is_light = finished_.kind == "LWPOLYLINE";
    if (is_light)
        polyline.flags &= DxfPolyline::kClosed;
    // A smoothed mesh has separate counts for the vertices on its surface; those on its frame are not drawn.
    const bool is_smooth = (polyline.flags & DxfPolyline::kSplineFit) != 0;
    polyline.rows = finished_.integers[is_smooth ? 3 : 1];
    polyline.columns = finished_.integers[is_smooth ? 4 : 2];
    if (is_light)
        open.light_widths = LightWidths(finished_.numbers);
    open.widths.start_width = finished_.numbers.FirstOr(40, 0.0);
    open.widths.end_width = finished_.numbers.FirstOr(41, 0.0);
    if (polyline.IsFlat()) {
        polyline.thickness = finished_.numbers.FirstOr(39, 0.0);
        polyline.frame = Frame();
        polyline.elevation = is_light ? data.elevation : getExtrusion()->getElevation();
    }
}

void DxfDrawingBuilder::addVertex(const DL_VertexData& data)
{
    const bool is_frame =
        finished_.kind == "VERTEX" && (finished_.integers[0] & DxfPolyline::kFrameVertex) != 0;
    if (!polyline_ || is_frame)
        return;
    std::vector<DxfPolyline::Vertex>& vertices = polyline_->polyline.vertices;
    DxfPolyline::Vertex vertex = polyline_->widths;
    if (vertices.size() < polyline_->light_widths.size()) {
        vertex = polyline_->light_widths[vertices.size()];
    } else if (finished_.kind == "VERTEX") {
        vertex.start_width = finished_.numbers.FirstOr(40, vertex.start_width);
        vertex.end_width = finished_.numbers.FirstOr(41, vertex.end_width);
    }
    vertex.point = {data.x, data.y, data.z};
    vertex.bulge = data.bulge;
    vertices.push_back(vertex);
}

void DxfDrawingBuilder::endSequence()
{
    FinishPolyline();
}

void DxfDrawingBuilder::endEntity()
{
    if (finished_.kind == "LWPOLYLINE")
        FinishPolyline();
    if (finished_.kind == "SPLINE")
        FinishSpline();
}

void DxfDrawingBuilder::FinishPolyline()
{
    if (!polyline_)
        return;
    OpenPolyline open = std::move(*polyline_);
    polyline_.reset();
    std::vector<DxfEntity>& entities = block_ ? drawing_.blocks[*block_].entities : drawing_.entities;
    if (open.face_records.empty())
        open.face_records[open.entity.color];
    try {
        for (auto& [color, records] : open.face_records) {
            open.polyline.face_records = std::move(records);
            for (auto& shape : ShapesOf(open.polyline))
                entities.push_back(
                    {std::move(shape), open.entity.layer, color, open.entity.line, open.entity.opacity});
        }
    } catch (const std::runtime_error& error) {
        Fail(open.entity.line, error.what());
    }
}

void DxfDrawingBuilder::addSpline(const DL_SplineData& data)
{
    OpenSpline& open = spline_.emplace();
    open.spline.degree = static_cast<int>(data.degree);
    open.is_closed = (data.flags & 1) != 0;
    open.start_tangent = {data.tangentStartX, data.tangentStartY, data.tangentStartZ};
    open.end_tangent = {data.tangentEndX, data.tangentEndY, data.tangentEndZ};
}

void DxfDrawingBuilder::addControlPoint(const DL_ControlPointData& data)
{
    if (!spline_)
        return;
    spline_->spline.points.push_back({data.x, data.y, data.z});
    spline_->spline.weights.push_back(data.w);
}

void DxfDrawingBuilder::addFitPoint(const DL_FitPointData& data)
{
    if (spline_)
        spline_->fit_points.push_back({data.x, data.y, data.z});
}

void DxfDrawingBuilder::addKnot(const DL_KnotData& data)
{
    if (spline_)
        spline_->spline.knots.push_back(data.k);
}

void DxfDrawingBuilder::FinishSpline()
{
    if (!spline_)
        return;
    OpenSpline open = std::move(*spline_);
    spline_.reset();
    Spline& spline = open.spline;
    if (spline.points.empty())
        spline =
            SplineThrough(std::move(open.fit_points), open.start_tangent, open.end_tangent, open.is_closed);
    else
        CompleteKnots(spline, open.is_closed);
    if (spline.points.empty())
        return;
    if (const char* fault = FaultOf(spline))
        Fail(finished_.line, std::string("not a spline: ") + fault);
    Add(std::move(spline));
}

void DxfDrawingBuilder::addInsert(const DL_InsertData& data)
{
    DxfInsert insert;
    insert.block = drawing_.BlockNumber(data.name);
    const Affine place = Frame() * Translation({data.ipx, data.ipy, data.ipz}) * RotationAboutZ(data.angle);
    insert.placement = place * Scaling(data.sx, data.sy, data.sz);
    insert.columns = std::max(1, data.cols);
    insert.rows = std::max(1, data.rows);
    insert.column_step = place.x * data.colSp;
    insert.row_step = place.y * data.rowSp;
    Add(insert);
}

/// The library sets a missing fourth corner to the origin.
DxfFace DxfDrawingBuilder::FaceOf(const DL_TraceData& data, const Affine& frame) const
{
    DxfFace face;
    face.count = finished_.has_fourth_corner ? 4 : 3;
    for (std::size_t i = 0; i < face.count; ++i)
        face.corners.at(i) = frame.Apply({data.x[i], data.y[i], data.z[i]});
    return face;
}

/// Traces and solids list their corners as bands: the third corner is opposite to the second, so that the
/// last two corners are swapped.
void DxfDrawingBuilder::AddBand(const DL_TraceData& data)
{
    DxfFace face = FaceOf(data, Frame());
    if (face.count == 4)
        std::swap(face.corners[2], face.corners[3]);
    const double thickness = finished_.numbers.FirstOr(39, 0.0);
    if (thickness == 0.0)
        Add(face);
    else
        Add(PrismOf(face, Frame().z * thickness));
}

void DxfDrawingBuilder::addTrace(const DL_TraceData& data)
{
    AddBand(data);
}

void DxfDrawingBuilder::addSolid(const DL_SolidData& data)
{
    AddBand(data);
}

void DxfDrawingBuilder::add3dFace(const DL_3dFaceData& data)
{
    DxfFace face = FaceOf(data, Affine{});
    for (std::size_t i = 0; i < 4; ++i)
        face.hidden_edges.at(i) = (finished_.integers[0] >> i & 1) != 0;
    Add(face);
}

} // namespace viewer
