// The geometry that is measured: faces and lines spread evenly over a small cube in the positive octant.
#pragma once

#include "geometry/KARVGLFace.h"

#include <cstddef>
#include <vector>

namespace karv_bench
{

using Faces = std::vector<KARVGLFace>;

/// The edge of the cube that every scene fills, in model units: the control's near distance suits it.
inline constexpr double kSceneEdge = 0.1;

/// What becomes one entity: faces, or end points of line segments, two for each.
struct Piece {
    Faces faces;
    std::vector<KARVGLVertex> line_vertices;
};

/// Single faces in planes that look along y, every one in a place of its own.
[[nodiscard]] Faces MakeTriangles(std::size_t count);
[[nodiscard]] Faces MakeQuads(std::size_t count);
[[nodiscard]] Faces MakeLShapes(std::size_t count);

/// Boxes of 6 quadrilaterals each.
[[nodiscard]] std::vector<Piece> MakeBoxes(std::size_t count);
/// Pieces of one segment each.
[[nodiscard]] std::vector<Piece> MakeSegments(std::size_t count);
/// The pieces' lines in one.
[[nodiscard]] Piece JoinLines(const std::vector<Piece>& pieces);

} // namespace karv_bench
