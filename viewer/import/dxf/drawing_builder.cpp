#include "viewer/import/dxf/drawing_builder.h"

#include "platform/host/cm/color.h"
#include "viewer/import/dxf/extrusion_frame.h"
#include "viewer/text/file_error.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace viewer
{

namespace
{

constexpr int kForeground = 7;

/// The nearest palette index to a 24-bit colour.
int NearestIndexOf(int color24)
{
    const auto channel = [&](unsigned int shift) {
        return static_cast<unsigned char>(static_cast<unsigned int>(color24) >> shift & 0xFFU);
    };
    return NearestColorIndex(channel(16), channel(8), channel(0));
}

/// The palette index of an entity's 24-bit colour, if it has one.
std::optional<int> TrueColorOf(const DL_Attributes& attributes)
{
    // NOTE: Programs with a white background write the foreground, index 7, together with black.
    const bool is_foreground = attributes.getColor() == kForeground && attributes.getColor24() == 0;
    if (attributes.getColor24() < 0 || is_foreground)
        return std::nullopt;
    return NearestIndexOf(attributes.getColor24());
}

int ColorOf(const DL_Attributes& attributes)
{
    const int color = attributes.getColor();
    if (const std::optional<int> true_color = TrueColorOf(attributes))
        return *true_color;
    return color >= 0 && color < kColorByLayer ? color : kColorByLayer;
}

double Radians(double degrees)
{
    return degrees * std::numbers::pi / 180.0;
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
        polyline_->polyline.face_records.push_back({a, b, c, d});
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

void DxfDrawingBuilder::Add(decltype(DxfEntity::shape) shape)
{
    std::vector<DxfEntity>& entities = block_ ? drawing_.blocks[*block_].entities : drawing_.entities;
    entities.push_back(
        {std::move(shape), drawing_.LayerNumber(getAttributes().getLayer()), EntityColor(), finished_.line});
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
}

void DxfDrawingBuilder::addBlock(const DL_BlockData& data)
{
    block_ = drawing_.BlockNumber(data.name);
    DxfBlock& block = drawing_.blocks[*block_];
    block.is_defined = true;
    block.base = {data.bpx, data.bpy, data.bpz};
    block.entities.clear();
}

void DxfDrawingBuilder::endBlock()
{
    block_.reset();
}

void DxfDrawingBuilder::addLine(const DL_LineData& data)
{
    Add(Segment{{data.x1, data.y1, data.z1}, {data.x2, data.y2, data.z2}});
}

void DxfDrawingBuilder::addArc(const DL_ArcData& data)
{
    const Affine frame = Frame();
    const double radius = std::abs(data.radius);
    const double start = Radians(data.angle1);
    Add(EllipticArc{frame.Apply({data.cx, data.cy, data.cz}), frame.x * radius, frame.y * radius, start,
                    SweepBetween(start, Radians(data.angle2))});
}

void DxfDrawingBuilder::addCircle(const DL_CircleData& data)
{
    const Affine frame = Frame();
    const double radius = std::abs(data.radius);
    Add(EllipticArc{frame.Apply({data.cx, data.cy, data.cz}), frame.x * radius, frame.y * radius, 0.0,
                    kFullTurn});
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
    open.entity = {{}, drawing_.LayerNumber(getAttributes().getLayer()), EntityColor(), finished_.line};
    DxfPolyline& polyline = open.polyline;
    polyline.flags = data.flags;
    const bool is_light = finished_.kind == "LWPOLYLINE";
    if (is_light)
        polyline.flags &= DxfPolyline::kClosed;
    // A smoothed mesh has separate counts for the vertices on its surface; those on its frame are not drawn.
    const bool is_smooth = (polyline.flags & DxfPolyline::kSplineFit) != 0;
    polyline.rows = finished_.integers[is_smooth ? 3 : 1];
    polyline.columns = finished_.integers[is_smooth ? 4 : 2];
    if (polyline.IsFlat()) {
        polyline.frame = Frame();
        polyline.elevation = is_light ? data.elevation : getExtrusion()->getElevation();
    }
}

void DxfDrawingBuilder::addVertex(const DL_VertexData& data)
{
    const bool is_frame =
        finished_.kind == "VERTEX" && (finished_.integers[0] & DxfPolyline::kFrameVertex) != 0;
    if (polyline_ && !is_frame)
        polyline_->polyline.vertices.push_back({{data.x, data.y, data.z}, data.bulge});
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
    const OpenPolyline open = std::move(*polyline_);
    polyline_.reset();
    std::vector<DxfEntity>& entities = block_ ? drawing_.blocks[*block_].entities : drawing_.entities;
    try {
        for (auto& shape : ShapesOf(open.polyline))
            entities.push_back({std::move(shape), open.entity.layer, open.entity.color, open.entity.line});
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
    else if (spline.knots.empty() && spline.degree >= 1 && spline.degree <= kMaxSplineDegree &&
             spline.points.size() > static_cast<std::size_t>(spline.degree))
        spline.knots = EvenKnots(spline.degree, spline.points.size());
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
    Add(face);
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
