#include "viewer/scene/extrusion.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace viewer
{

namespace
{

void AddFace(std::vector<ModelFace>& faces, std::vector<Point> counterclockwise)
{
    if (auto face = MakeFace(std::move(counterclockwise)))
        faces.push_back(std::move(*face));
}

bool HasEdge(const Outline& tile, const PlanePoint& from, const PlanePoint& to)
{
    for (std::size_t i = 0; i < tile.size(); ++i)
        if (tile[i] == from && tile[(i + 1) % tile.size()] == to)
            return true;
    return false;
}

bool IsInside(const std::vector<Outline>& tiles, const PlanePoint& from, const PlanePoint& to)
{
    return std::any_of(tiles.begin(), tiles.end(),
                       [&](const Outline& tile) { return HasEdge(tile, to, from); });
}

void AddCaps(std::vector<ModelFace>& faces, const Outline& tile, const Frame& frame, double from, double to)
{
    std::vector<Point> top;
    std::vector<Point> bottom;
    for (const PlanePoint& point : tile) {
        top.push_back(frame.At(point, to));
        bottom.push_back(frame.At(point, from));
    }
    std::reverse(bottom.begin(), bottom.end());
    AddFace(faces, std::move(top));
    AddFace(faces, std::move(bottom));
}

} // namespace

Outline Arc(PlanePoint center, double radius, double from, double to, int steps)
{
    Outline points;
    for (int i = 0; i <= steps; ++i) {
        const double angle = (from + (to - from) * i / steps) * std::numbers::pi / 180.0;
        points.push_back({center.u + radius * std::cos(angle), center.v + radius * std::sin(angle)});
    }
    return points;
}

std::vector<Outline> RingTiles(PlanePoint center, double inner, double outer, int steps)
{
    Outline inside = Arc(center, inner, 0.0, 360.0, steps);
    Outline outside = Arc(center, outer, 0.0, 360.0, steps);
    // The sine of 360 degrees is not exactly that of 0, and the last tile must meet the first.
    inside.back() = inside.front();
    outside.back() = outside.front();
    std::vector<Outline> tiles;
    for (std::size_t i = 0; i + 1 < inside.size(); ++i)
        tiles.push_back({inside[i], outside[i], outside[i + 1], inside[i + 1]});
    return tiles;
}

std::vector<ModelFace> Extrude(const std::vector<Outline>& tiles, const Frame& frame, double from, double to)
{
    std::vector<ModelFace> faces;
    for (const Outline& tile : tiles) {
        AddCaps(faces, tile, frame, from, to);
        for (std::size_t i = 0; i < tile.size(); ++i) {
            const PlanePoint& a = tile[i];
            const PlanePoint& b = tile[(i + 1) % tile.size()];
            if (!IsInside(tiles, a, b))
                AddFace(faces, {frame.At(a, from), frame.At(b, from), frame.At(b, to), frame.At(a, to)});
        }
    }
    return faces;
}

} // namespace viewer
