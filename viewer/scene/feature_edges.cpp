#include "viewer/scene/feature_edges.h"

#include "platform/modeler/body_builder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>
#include <unordered_map>
#include <unordered_set>

namespace viewer
{

namespace
{

struct PointHash {
    std::size_t operator()(const Point& point) const
    {
        std::uint64_t hash = 0;
        for (const double coordinate : {point.x, point.y, point.z}) {
            // Positive and negative zero are equal.
            const auto bits = std::bit_cast<std::uint64_t>(coordinate == 0.0 ? 0.0 : coordinate);
            constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15U;
            hash = (std::rotl(hash, 23) ^ bits) * kGoldenRatio;
        }
        return static_cast<std::size_t>(hash ^ (hash >> 32U));
    }
};

/// The corners of all faces as indices of points; corners with the same coordinates share an index.
struct SharedCorners {
    std::vector<Point> points;
    std::vector<std::vector<int>> faces;
    std::unordered_map<Point, int, PointHash> known;

    explicit SharedCorners(const Piece& piece)
    {
        faces.reserve(piece.faces.size());
        for (const ModelFace& face : piece.faces) {
            std::vector<int>& corners = faces.emplace_back();
            corners.reserve(face.corners.size());
            for (const Point& corner : face.corners) {
                const auto [entry, is_new] = known.emplace(corner, static_cast<int>(points.size()));
                if (is_new)
                    points.push_back(corner);
                corners.push_back(entry->second);
            }
        }
    }
};

/// The use of an edge by faces.
struct EdgeUse {
    std::size_t first_face = 0;
    std::size_t second_face = 0;   ///< the latest one, where there are more than two
    int count = 0;                 ///< of faces
    bool first_is_upwards = false; ///< the first face runs from the lower index to the higher one
    bool is_twisted = false;       ///< another face runs in the same direction as the first one
};

std::uint64_t EdgeKey(int a, int b)
{
    const auto [low, high] = std::minmax(a, b);
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(low)) << 32U |
           static_cast<std::uint32_t>(high);
}

/// Calls `visit` for both sides of every edge.
void ForEachEdge(AModeler::Body& body, const auto& visit)
{
    for (AModeler::Face* face = body.faceList(); face != nullptr; face = face->next()) {
        AModeler::Edge* edge = face->edgeLoop();
        for (int i = 0; i < face->edgeCount(); ++i, edge = edge->next())
            visit(*edge);
    }
}

/// Makes all edges non-physical that are not in the list. Segments that are not an edge of a face are
/// ignored.
void MarkListedEdges(AModeler::Body& body, const std::vector<Segment>& listed, const SharedCorners& corners)
{
    std::unordered_set<std::uint64_t> keys;
    for (const Segment& segment : listed) {
        const auto from = corners.known.find(segment.from);
        const auto to = corners.known.find(segment.to);
        if (from != corners.known.end() && to != corners.known.end())
            keys.insert(EdgeKey(from->second, to->second));
    }
    // The body keeps its vertices in one array in the order in which they were added, and every vertex is a
    // corner of a face.
    const AModeler::Vertex* first = nullptr;
    ForEachEdge(body, [&](const AModeler::Edge& edge) {
        first = first == nullptr ? edge.vertex()
                                 : std::min<const AModeler::Vertex*>(first, edge.vertex(), std::less<>());
    });
    const auto number_of = [&](const AModeler::Edge& edge) {
        return static_cast<int>(edge.vertex() - first);
    };
    ForEachEdge(body, [&](AModeler::Edge& edge) {
        if (edge.isPhysical())
            edge.setPhysical(keys.contains(EdgeKey(number_of(edge), number_of(*edge.partner()))));
    });
}

bool IsSmooth(const Point& a, const Point& b)
{
    // atan2 is accurate for small angles and for normals whose length is not exactly 1.
    const double angle = std::atan2(Length(Cross(a, b)), Dot(a, b));
    return angle < kSmoothAngle * std::numbers::pi / 180.0;
}

} // namespace

std::optional<AModeler::Body> MakeSolid(const Piece& piece, const std::function<Point(const Point&)>& place)
{
    const SharedCorners corners(piece);
    try {
        AModeler::BodyBuilder builder;
        for (const Point& point : corners.points) {
            const Point placed = place(point);
            builder.AddPoint({placed.x, placed.y, placed.z});
        }
        for (const std::vector<int>& face : corners.faces)
            builder.AddFace(face);
        AModeler::Body body = builder.Build();
        if (piece.edges)
            MarkListedEdges(body, *piece.edges, corners);
        else
            body.markSmoothEdges(kSmoothAngle);
        return body;
    } catch (const AModeler::BodyError&) {
        return std::nullopt;
    }
}

std::vector<Segment> FeatureEdges(const Piece& piece)
{
    if (piece.edges)
        return *piece.edges;
    const SharedCorners corners(piece);
    std::unordered_map<std::uint64_t, EdgeUse> uses;
    std::vector<std::uint64_t> order;
    for (std::size_t face = 0; face < corners.faces.size(); ++face) {
        const std::vector<int>& loop = corners.faces[face];
        for (std::size_t i = 0; i < loop.size(); ++i) {
            const int from = loop[i];
            const int to = loop[(i + 1) % loop.size()];
            EdgeUse& use = uses[EdgeKey(from, to)];
            if (++use.count == 1) {
                use.first_face = face;
                use.first_is_upwards = from < to;
                order.push_back(EdgeKey(from, to));
            } else {
                use.second_face = face;
                use.is_twisted = use.is_twisted || use.first_is_upwards == (from < to);
            }
        }
    }
    std::vector<Segment> edges;
    for (const std::uint64_t key : order) {
        const EdgeUse& use = uses.at(key);
        const bool is_inner = use.count == 2 && !use.is_twisted;
        if (is_inner && IsSmooth(piece.faces[use.first_face].normal, piece.faces[use.second_face].normal))
            continue;
        edges.push_back({corners.points[key >> 32U], corners.points[key & 0xFFFFFFFFU]});
    }
    return edges;
}

} // namespace viewer
