// The measured geometry: faces and lines spread evenly over a small cube in the positive octant.
#pragma once

#include "geometry/KARVGLFace.h"

#include <cstddef>
#include <vector>

namespace karv_bench
{

using Faces = std::vector<KARVGLFace>;

/// The edge of the cube that every scene fills, in model units. It suits the control's near distance.
inline constexpr double kSceneEdge = 0.1;

/// The geometry of one entity: faces, or the end points of line segments, two for each segment.
struct Piece {
    Faces faces;
    std::vector<KARVGLVertex> line_vertices;
};

/// Single faces with normals along -y, each in a grid cell of its own.
[[nodiscard]] Faces MakeTriangles(std::size_t count);
[[nodiscard]] Faces MakeQuads(std::size_t count);
[[nodiscard]] Faces MakeLShapes(std::size_t count);

/// Pieces with a box of 6 quadrilaterals each.
[[nodiscard]] std::vector<Piece> MakeBoxes(std::size_t count);
/// Pieces with one segment each.
[[nodiscard]] std::vector<Piece> MakeSegments(std::size_t count);
/// One piece with the lines of all pieces.
[[nodiscard]] Piece JoinLines(const std::vector<Piece>& pieces);

} // namespace karv_bench
