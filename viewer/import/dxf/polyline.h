// Converts the polylines of a drawing to segments, arcs and faces. A polyline is flat with arcs, spatial, a
// polygon mesh or a polyface mesh.
#pragma once

#include "viewer/import/dxf/drawing.h"

#include <array>
#include <string>
#include <vector>

namespace viewer
{

/// A polyline with its vertices.
struct DxfPolyline {
    /// Bits of `flags`.
    static constexpr int kClosed = 1;
    static constexpr int kSplineFit = 4;
    static constexpr int kInSpace = 8;
    static constexpr int kPolygonMesh = 16;
    static constexpr int kClosedInN = 32;
    static constexpr int kPolyfaceMesh = 64;
    /// Bit of a vertex's flags: a control point of the fitted curve or surface, which is not drawn.
    static constexpr int kFrameVertex = 16;

    struct Vertex {
        Point point;
        double bulge = 0.0;
        double start_width = 0.0; ///< of the part that begins here
        double end_width = 0.0;
    };
    /// Numbers of vertices, counted from 1; 0 for none, negative if the edge that begins there is hidden.
    using FaceRecord = std::array<int, 4>;

    int flags = 0;
    int rows = 0;    ///< of a polygon mesh
    int columns = 0; ///< of a polygon mesh
    Affine frame;    ///< of a flat polyline: the frame of its vertices
    double elevation = 0.0;
    double thickness = 0.0; ///< of a flat polyline, along z of its frame
    std::vector<Vertex> vertices;
    std::vector<FaceRecord> face_records;

    [[nodiscard]] bool IsMesh() const { return (flags & (kPolygonMesh | kPolyfaceMesh)) != 0; }
    [[nodiscard]] bool IsFlat() const { return (flags & (kInSpace | kPolygonMesh | kPolyfaceMesh)) == 0; }
};

/// The shapes of the polyline, in order. Throws std::runtime_error with the reason if a mesh has the wrong
/// number of vertices or refers to a vertex that does not exist.
[[nodiscard]] std::vector<decltype(DxfEntity::shape)> ShapesOf(const DxfPolyline& polyline);

} // namespace viewer
