#include "viewer/import/dxf/polygon_fill.h"

#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <memory>
#include <new>

namespace viewer
{

namespace
{

struct Edge {
    FlatPoint from;
    FlatPoint to;

    [[nodiscard]] double Left() const { return std::min(from.x, to.x); }
    [[nodiscard]] double Right() const { return std::max(from.x, to.x); }
    [[nodiscard]] double Bottom() const { return std::min(from.y, to.y); }
    [[nodiscard]] double Top() const { return std::max(from.y, to.y); }
};

double Side(const Edge& edge, const FlatPoint& point)
{
    return (edge.to.x - edge.from.x) * (point.y - edge.from.y) -
           (edge.to.y - edge.from.y) * (point.x - edge.from.x);
}

/// Whether the edges have a point in common that is not just an end of both.
bool Meet(const Edge& a, const Edge& b)
{
    if (a.Left() > b.Right() || b.Left() > a.Right())
        return false;
    const double from_a = Side(b, a.from);
    const double to_a = Side(b, a.to);
    const double from_b = Side(a, b.from);
    const double to_b = Side(a, b.to);
    const bool is_collinear = from_a == 0.0 && to_a == 0.0;
    const bool shares_end = a.from == b.from || a.from == b.to || a.to == b.from || a.to == b.to;
    if (shares_end && !is_collinear)
        return false;
    return from_a * to_a <= 0.0 && from_b * to_b <= 0.0;
}

/// Whether the edges meet so rarely that the tessellator needs little more than memory for the points. It takes
/// memory for every intersection, and cannot be stopped.
bool AreSimpleEnough(std::vector<Edge> edges, std::size_t& work)
{
    const std::size_t max_meetings = 4 * edges.size() + 1000;
    std::size_t meetings = 0;
    std::sort(edges.begin(), edges.end(),
              [](const Edge& a, const Edge& b) { return a.Bottom() < b.Bottom(); });
    std::vector<Edge> open;
    for (const Edge& edge : edges) {
        std::erase_if(open, [&](const Edge& other) { return other.Top() < edge.Bottom(); });
        if (work < open.size() + 1)
            return false;
        work -= open.size() + 1;
        for (const Edge& other : open)
            meetings += Meet(edge, other) ? 1 : 0;
        if (meetings > max_meetings)
            return false;
        open.push_back(edge);
    }
    return true;
}

/// A corner for the tessellator, scaled to its safe range, with the point in the caller's unit.
struct Vertex {
    std::array<GLdouble, 3> scaled{};
    FlatPoint point;
};

struct Filling {
    std::deque<Vertex> vertices; ///< keeps their addresses
    std::vector<FlatPoint> corners;
    FlatPoint center;
    double reach = 1.0;
    bool has_failed = false;
};

void GLAPIENTRY TakeCorner(void* vertex, void* filling)
{
    static_cast<Filling*>(filling)->corners.push_back(static_cast<const Vertex*>(vertex)->point);
}

void GLAPIENTRY Combine(const GLdouble* at, void** /*vertices*/, const GLfloat* /*weights*/, void** made,
                        void* filling)
{
    auto& fill = *static_cast<Filling*>(filling);
    Vertex& vertex = fill.vertices.emplace_back();
    vertex.scaled = {at[0], at[1], at[2]};
    vertex.point = {fill.center.x + at[0] * fill.reach, fill.center.y + at[1] * fill.reach};
    *made = &vertex;
}

/// A callback for the flags of edges makes the tessellator return separate triangles only.
void GLAPIENTRY IgnoreEdgeFlag(GLboolean /*flag*/) {}

void GLAPIENTRY TakeError(GLenum /*error*/, void* filling)
{
    static_cast<Filling*>(filling)->has_failed = true;
}

using Callback = void(GLAPIENTRY*)();

template <class Function>
Callback CallbackOf(Function* function)
{
    return reinterpret_cast<Callback>(function); // as the library's interface demands
}

void Tessellate(const std::vector<FlatLoop>& loops, Filling& filling)
{
    const std::unique_ptr<GLUtesselator, decltype(&gluDeleteTess)> tessellator(gluNewTess(), &gluDeleteTess);
    if (tessellator == nullptr)
        throw std::bad_alloc();
    GLUtesselator* const tess = tessellator.get();
    gluTessProperty(tess, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
    gluTessNormal(tess, 0.0, 0.0, 1.0);
    gluTessCallback(tess, GLU_TESS_VERTEX_DATA, CallbackOf(&TakeCorner));
    gluTessCallback(tess, GLU_TESS_COMBINE_DATA, CallbackOf(&Combine));
    gluTessCallback(tess, GLU_TESS_EDGE_FLAG, CallbackOf(&IgnoreEdgeFlag));
    gluTessCallback(tess, GLU_TESS_ERROR_DATA, CallbackOf(&TakeError));
    gluTessBeginPolygon(tess, &filling);
    for (const FlatLoop& loop : loops) {
        gluTessBeginContour(tess);
        for (const FlatPoint& point : loop) {
            Vertex& vertex = filling.vertices.emplace_back();
            vertex.point = point;
            vertex.scaled = {(point.x - filling.center.x) / filling.reach,
                             (point.y - filling.center.y) / filling.reach, 0.0};
            gluTessVertex(tess, vertex.scaled.data(), &vertex);
        }
        gluTessEndContour(tess);
    }
    gluTessEndPolygon(tess);
}

} // namespace

std::optional<std::vector<FlatTriangle>> FillLoops(const std::vector<FlatLoop>& loops, std::size_t& work)
{
    std::vector<Edge> edges;
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    FlatPoint low{kInfinity, kInfinity};
    FlatPoint high{-kInfinity, -kInfinity};
    for (const FlatLoop& loop : loops)
        for (std::size_t i = 0; i < loop.size(); ++i) {
            edges.push_back({loop[i], loop[(i + 1) % loop.size()]});
            low = {std::min(low.x, loop[i].x), std::min(low.y, loop[i].y)};
            high = {std::max(high.x, loop[i].x), std::max(high.y, loop[i].y)};
        }
    std::erase_if(edges, [](const Edge& edge) { return edge.from == edge.to; });
    if (edges.empty())
        return std::vector<FlatTriangle>();
    if (!std::isfinite(high.x - low.x) || !std::isfinite(high.y - low.y))
        return std::nullopt;
    if (!AreSimpleEnough(std::move(edges), work))
        return std::nullopt;
    Filling filling;
    filling.center = {low.x + (high.x - low.x) / 2.0, low.y + (high.y - low.y) / 2.0};
    filling.reach = std::max({(high.x - low.x) / 2.0, (high.y - low.y) / 2.0, 1e-300});
    Tessellate(loops, filling);
    if (filling.has_failed)
        return std::nullopt;
    std::vector<FlatTriangle> triangles;
    for (std::size_t i = 0; i + 2 < filling.corners.size(); i += 3)
        triangles.push_back({filling.corners[i], filling.corners[i + 1], filling.corners[i + 2]});
    return triangles;
}

bool IsInside(const FlatPoint& point, const FlatLoop& loop)
{
    bool is_inside = false;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const Edge edge{loop[i], loop[(i + 1) % loop.size()]};
        if ((edge.from.y > point.y) == (edge.to.y > point.y))
            continue;
        const bool is_left = Side(edge, point) > 0.0;
        if (is_left == (edge.to.y > edge.from.y))
            is_inside = !is_inside;
    }
    return is_inside;
}

} // namespace viewer
