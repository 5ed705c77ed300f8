// Builds a DxfDrawing from the calls of the parsing library. Entities are converted from their object
// coordinate system to that of the drawing. Limits, hidden layers and inserts are handled later.
#pragma once

#include "viewer/import/dxf/direct_entities.h"
#include "viewer/import/dxf/drawing.h"
#include "viewer/import/dxf/entity_stream.h"
#include "viewer/import/dxf/polyline.h"

#include <dxflib/dl_creationadapter.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace viewer
{

/// A spline whose points are not complete yet.
struct OpenSpline {
    Spline spline;
    std::vector<Point> fit_points;
    Point start_tangent;
    Point end_tangent;
    bool is_closed = false;
};

/// A polyline whose vertices are not complete yet.
struct OpenPolyline {
    DxfEntity entity;
    DxfPolyline polyline;
    DxfPolyline::Vertex widths;                    ///< of vertices without widths of their own
    std::vector<DxfPolyline::Vertex> light_widths; ///< of a light polyline's vertices
    std::map<int, std::vector<DxfPolyline::FaceRecord>> face_records; ///< by colour
};

/// Receives the library's calls. They throw FileError, with the file and the line where the entity begins.
class DxfDrawingBuilder final : public DL_CreationAdapter
{
  public:
    /// `drawing` must outlive the object.
    DxfDrawingBuilder(std::string path, DxfDrawing& drawing);

    /// Announces the entity that the library reads next. The library adds the previous entity only after this
    /// call.
    void Begin(const DxfEntityHead& head);

    void addLayer(const DL_LayerData& data) override;
    void addBlock(const DL_BlockData& data) override;
    void endBlock() override;
    void addLine(const DL_LineData& data) override;
    void addArc(const DL_ArcData& data) override;
    void addCircle(const DL_CircleData& data) override;
    void addEllipse(const DL_EllipseData& data) override;
    void addPolyline(const DL_PolylineData& data) override;
    void addVertex(const DL_VertexData& data) override;
    void endSequence() override;
    void endEntity() override;
    void addSpline(const DL_SplineData& data) override;
    void addControlPoint(const DL_ControlPointData& data) override;
    void addFitPoint(const DL_FitPointData& data) override;
    void addKnot(const DL_KnotData& data) override;
    void addInsert(const DL_InsertData& data) override;
    void addPoint(const DL_PointData& data) override;
    void addTrace(const DL_TraceData& data) override;
    void addSolid(const DL_SolidData& data) override;
    void add3dFace(const DL_3dFaceData& data) override;

  private:
    [[noreturn]] void Fail(std::size_t line, const std::string& reason) const;
    void TakeFaceRecord();
    /// Adds a shape with the attributes of the entity, but with this colour if there is one.
    void Add(decltype(DxfEntity::shape) shape, std::optional<int> color = {});
    void AddWall(const std::variant<Segment, EllipticArc>& curve);
    [[nodiscard]] DxfOpacity EntityOpacity() const;
    [[nodiscard]] DxfFace FaceOf(const DL_TraceData& data, const Affine& frame) const;
    void AddBand(const DL_TraceData& data);
    void FinishPolyline();
    void FinishSpline();
    [[nodiscard]] int EntityColor();
    [[nodiscard]] Affine Frame();

    std::string path_;
    DxfDrawing& drawing_;
    std::optional<std::size_t> block_;
    DxfEntityHead current_;
    DxfEntityHead finished_; ///< of the entity that the library adds now
    std::optional<OpenPolyline> polyline_;
    std::optional<OpenSpline> spline_;
    std::size_t mesh_work_ = kMaxMeshWork; ///< left for meshes
};

} // namespace viewer
