#include "bench/scenes.h"

#include <array>
#include <cmath>
#include <span>

namespace karv_bench
{

namespace
{

/// A point of a face's outline, in halves of its cell's filled part: x to the right, z up.
struct OutlinePoint {
    int x;
    int z;
};

/// The cells of a scene: a cubic grid in which the lower half of each cell, along every axis, is filled.
class Grid
{
  public:
    explicit Grid(std::size_t count)
        : side_(static_cast<std::size_t>(std::ceil(std::cbrt(static_cast<double>(count))))),
          step_(kSceneEdge / static_cast<double>(side_))
    {
    }

    /// A point in cell `index`. Each coordinate runs from 0 to 1 within the cell's filled part.
    [[nodiscard]] KARVGLVertex Point(std::size_t index, double x, double y, double z) const
    {
        const auto along = [this](std::size_t cell, double part) {
            return (static_cast<double>(cell) + part * 0.5) * step_;
        };
        return {along(index % side_, x), along(index / side_ % side_, y), along(index / side_ / side_, z)};
    }

  private:
    std::size_t side_;
    double step_;
};

Faces MakeFaces(std::size_t count, std::span<const OutlinePoint> outline)
{
    const Grid grid(count);
    Faces faces(count);
    for (std::size_t i = 0; i < count; ++i) {
        faces[i].normal = KARVGLVertex(0.0, -1.0, 0.0);
        faces[i].vertices.reserve(outline.size());
        for (const OutlinePoint& point : outline)
            faces[i].vertices.push_back(grid.Point(i, point.x * 0.5, 0.0, point.z * 0.5));
    }
    return faces;
}

Faces MakeBox(const Grid& grid, std::size_t index)
{
    struct Side {
        std::array<int, 4> corners; // bit 0 is x, bit 1 is y, bit 2 is z
        KARVGLVertex normal;
    };
    const std::array<Side, 6> sides{{
        {{0, 1, 3, 2}, {0.0, 0.0, -1.0}},
        {{4, 6, 7, 5}, {0.0, 0.0, 1.0}},
        {{0, 4, 5, 1}, {0.0, -1.0, 0.0}},
        {{2, 3, 7, 6}, {0.0, 1.0, 0.0}},
        {{0, 2, 6, 4}, {-1.0, 0.0, 0.0}},
        {{1, 5, 7, 3}, {1.0, 0.0, 0.0}},
    }};
    Faces faces;
    faces.reserve(sides.size());
    for (const Side& side : sides) {
        KARVGLFace& face = faces.emplace_back();
        face.normal = side.normal;
        for (const int corner : side.corners)
            face.vertices.push_back(grid.Point(index, corner & 1, (corner >> 1) & 1, (corner >> 2) & 1));
    }
    return faces;
}

} // namespace

Faces MakeTriangles(std::size_t count)
{
    constexpr std::array<OutlinePoint, 3> kOutline{{{0, 0}, {0, 2}, {2, 2}}};
    return MakeFaces(count, kOutline);
}

Faces MakeQuads(std::size_t count)
{
    constexpr std::array<OutlinePoint, 4> kOutline{{{0, 0}, {0, 2}, {2, 2}, {2, 0}}};
    return MakeFaces(count, kOutline);
}

Faces MakeLShapes(std::size_t count)
{
    constexpr std::array<OutlinePoint, 6> kOutline{{{0, 0}, {0, 2}, {1, 2}, {1, 1}, {2, 1}, {2, 0}}};
    return MakeFaces(count, kOutline);
}

std::vector<Piece> MakeBoxes(std::size_t count)
{
    const Grid grid(count);
    std::vector<Piece> pieces(count);
    for (std::size_t i = 0; i < count; ++i)
        pieces[i].faces = MakeBox(grid, i);
    return pieces;
}

std::vector<Piece> MakeSegments(std::size_t count)
{
    const Grid grid(count);
    std::vector<Piece> pieces(count);
    for (std::size_t i = 0; i < count; ++i)
        pieces[i].line_vertices = {grid.Point(i, 0.0, 0.0, 0.0), grid.Point(i, 1.0, 0.0, 1.0)};
    return pieces;
}

Piece JoinLines(const std::vector<Piece>& pieces)
{
    Piece joined;
    for (const Piece& piece : pieces)
        joined.line_vertices.insert(joined.line_vertices.end(), piece.line_vertices.begin(),
                                    piece.line_vertices.end());
    return joined;
}

} // namespace karv_bench
