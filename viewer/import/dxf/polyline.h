// The five things that a drawing calls polyline: flat ones with arcs, ones in space, polygon meshes and
// polyface meshes, taken apart into segments, arcs and faces.
#pragma once

#include "viewer/import/dxf/drawing.h"

#include <array>
#include <string>
#include <vector>

namespace viewer
{

/// A polyline as its vertices come in.
struct DxfPolyline {
    /// Bits of `flags`.
    static constexpr int kClosed = 1;
    static constexpr int kSplineFit = 4;
    static constexpr int kInSpace = 8;
    static constexpr int kPolygonMesh = 16;
    static constexpr int kClosedInN = 32;
    static constexpr int kPolyfaceMesh = 64;
    /// Bit of a vertex's flags: it only steers the curve or surface that was fitted.
    static constexpr int kFrameVertex = 16;

    struct Vertex {
        Point point;
        double bulge = 0.0;
    };
    /// Numbers of vertices, counted from 1; 0 for none, negative before an edge that is not seen.
    using FaceRecord = std::array<int, 4>;

    int flags = 0;
    int rows = 0;    ///< of a polygon mesh
    int columns = 0; ///< of a polygon mesh
    Affine frame;    ///< of a flat one: the space of its vertices
    double elevation = 0.0;
    std::vector<Vertex> vertices;
    std::vector<FaceRecord> face_records;

    [[nodiscard]] bool IsMesh() const { return (flags & (kPolygonMesh | kPolyfaceMesh)) != 0; }
    [[nodiscard]] bool IsFlat() const { return (flags & (kInSpace | kPolygonMesh | kPolyfaceMesh)) == 0; }
};

/// Its shapes, in order. Throws std::runtime_error with the reason where a mesh does not hold what it refers
/// to.
[[nodiscard]] std::vector<decltype(DxfEntity::shape)> ShapesOf(const DxfPolyline& polyline);

} // namespace viewer
