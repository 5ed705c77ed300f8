#include "viewer/scene/feature_edges.h"

#include "platform/modeler/body_builder.h"
#include "viewer/scene/affine.h"
#include "viewer/scene/shared_corners.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <unordered_set>

namespace viewer
{

namespace
{

/// The use of an edge by faces.
struct EdgeUse {
    std::size_t first_face = 0;
    std::size_t second_face = 0;   ///< the latest one, where there are more than two
    int count = 0;                 ///< of faces
    bool first_is_upwards = false; ///< the first face runs from the lower index to the higher one
    bool is_twisted = false;       ///< another face runs in the same direction as the first one
};

/// Calls `visit` for both sides of every edge.
void ForEachSide(AModeler::Body& body, const auto& visit)
{
    for (AModeler::Face* face = body.faceList(); face != nullptr; face = face->next()) {
        AModeler::Edge* edge = face->edgeLoop();
        for (int i = 0; i < face->edgeCount(); ++i, edge = edge->next())
            visit(*edge);
    }
}

/// Makes physical edges non-physical, except for those whose key `is_physical` accepts.
void SetPhysicalEdges(AModeler::Body& body, const auto& is_physical)
{
    // The body keeps its vertices in one array in the order in which they were added, and every vertex is a
    // corner of a face.
    const AModeler::Vertex* first = nullptr;
    ForEachSide(body, [&](const AModeler::Edge& edge) {
        first = first == nullptr ? edge.vertex()
                                 : std::min<const AModeler::Vertex*>(first, edge.vertex(), std::less<>());
    });
    const auto number_of = [&](const AModeler::Edge& edge) {
        return static_cast<int>(edge.vertex() - first);
    };
    ForEachSide(body, [&](AModeler::Edge& edge) {
        if (edge.isPhysical())
            edge.setPhysical(is_physical(EdgeKey(number_of(edge), number_of(*edge.partner()))));
    });
}

/// Makes all edges non-physical that are not in the list. Segments that are not an edge of a face are
/// ignored.
void MarkListedEdges(AModeler::Body& body, const std::vector<Segment>& listed, const SharedCorners& corners)
{
    std::unordered_set<std::uint64_t> keys;
    for (const Segment& segment : listed) {
        const int from = corners.Find(segment.from);
        const int to = corners.Find(segment.to);
        if (from >= 0 && to >= 0)
            keys.insert(EdgeKey(from, to));
    }
    SetPhysicalEdges(body, [&](std::uint64_t key) { return keys.contains(key); });
}

/// The edges between the parts of one face, as keys.
std::unordered_set<std::uint64_t> InnerEdges(const Piece& piece, const SharedCorners& corners)
{
    std::unordered_set<std::uint64_t> inner;
    std::unordered_set<std::uint64_t> seen;
    for (std::size_t face = 0; face < piece.faces.size(); ++face) {
        const bool is_part =
            piece.faces[face].continues || (face + 1 < piece.faces.size() && piece.faces[face + 1].continues);
        // Swapped, because `clear` takes time in proportion to the largest face so far.
        if (!piece.faces[face].continues && !seen.empty())
            std::unordered_set<std::uint64_t>().swap(seen);
        if (is_part)
            ForEachEdge(corners.Of(face), [&](int from, int to) {
                if (!seen.insert(EdgeKey(from, to)).second)
                    inner.insert(EdgeKey(from, to));
            });
    }
    return inner;
}

bool IsSmooth(const Point& a, const Point& b)
{
    // atan2 is accurate for small angles and for normals whose length is not exactly 1.
    const double angle = std::atan2(Length(Cross(a, b)), Dot(a, b));
    return angle < Radians(kSmoothAngle);
}

} // namespace

std::optional<AModeler::Body> MakeSolid(const Piece& piece, const std::function<Point(const Point&)>& place)
{
    const SharedCorners corners(piece);
    try {
        AModeler::BodyBuilder builder;
        for (const Point& point : corners.Points()) {
            const Point placed = place(point);
            builder.AddPoint({placed.x, placed.y, placed.z});
        }
        for (std::size_t face = 0; face < corners.FaceCount(); ++face)
            builder.AddFace(corners.Of(face));
        AModeler::Body body = builder.Build();
        if (piece.edges) {
            MarkListedEdges(body, *piece.edges, corners);
        } else {
            body.markSmoothEdges(kSmoothAngle);
            const auto inner = InnerEdges(piece, corners);
            if (!inner.empty())
                SetPhysicalEdges(body, [&](std::uint64_t key) { return !inner.contains(key); });
        }
        return body;
    } catch (const AModeler::BodyError&) {
        return std::nullopt;
    }
}

AModeler::Body MakeWires(AModeler::Body& solid)
{
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    solid.getPhysicalEdgesAndVertices(true, false, edges, vertices);
    AModeler::BodyBuilder builder;
    for (const AModeler::Edge* edge : edges) {
        const int from = builder.AddPoint(edge->vertex()->point());
        builder.AddWire(from, builder.AddPoint(edge->next()->vertex()->point()));
    }
    return builder.Build();
}

AModeler::Body MakeWires(const std::vector<Segment>& segments,
                         const std::function<Point(const Point&)>& place)
{
    AModeler::BodyBuilder builder;
    for (const Segment& segment : segments) {
        const Point from = place(segment.from);
        const Point to = place(segment.to);
        if (!IsFinite(from) || !IsFinite(to))
            continue;
        const int first = builder.AddPoint({from.x, from.y, from.z});
        builder.AddWire(first, builder.AddPoint({to.x, to.y, to.z}));
    }
    return builder.Build();
}

std::vector<Segment> FeatureEdges(const Piece& piece)
{
    if (piece.edges)
        return *piece.edges;
    const SharedCorners corners(piece);
    std::unordered_map<std::uint64_t, EdgeUse> uses;
    std::vector<std::uint64_t> order;
    for (std::size_t face = 0; face < corners.FaceCount(); ++face)
        ForEachEdge(corners.Of(face), [&](int from, int to) {
            EdgeUse& use = uses[EdgeKey(from, to)];
            if (++use.count == 1) {
                use.first_face = face;
                use.first_is_upwards = from < to;
                order.push_back(EdgeKey(from, to));
            } else {
                use.second_face = face;
                use.is_twisted = use.is_twisted || use.first_is_upwards == (from < to);
            }
        });
    const auto inner = InnerEdges(piece, corners);
    std::vector<Segment> edges;
    for (const std::uint64_t key : order) {
        if (inner.contains(key))
            continue;
        const EdgeUse& use = uses.at(key);
        const bool is_inner = use.count == 2 && !use.is_twisted;
        if (is_inner && IsSmooth(piece.faces[use.first_face].normal, piece.faces[use.second_face].normal))
            continue;
        edges.push_back({corners.Points()[key >> 32U], corners.Points()[key & 0xFFFFFFFFU]});
    }
    return edges;
}

} // namespace viewer
