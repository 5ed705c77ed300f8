#include "viewer/solid.h"

#include "platform/modeler/body_builder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <unordered_map>

namespace viewer
{

namespace
{

struct PointHash {
    std::size_t operator()(const Point& point) const
    {
        std::uint64_t hash = 0;
        for (const double coordinate : {point.x, point.y, point.z}) {
            // Both zeros are one coordinate.
            const auto bits = std::bit_cast<std::uint64_t>(coordinate == 0.0 ? 0.0 : coordinate);
            constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15U;
            hash = (std::rotl(hash, 23) ^ bits) * kGoldenRatio;
        }
        return static_cast<std::size_t>(hash ^ (hash >> 32U));
    }
};

/// The faces' corners by number: the same one for the same coordinates.
struct SharedCorners {
    std::vector<Point> points;
    std::vector<std::vector<int>> faces;

    explicit SharedCorners(const Piece& piece)
    {
        std::unordered_map<Point, int, PointHash> known;
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

/// Who uses an edge: the first two faces, how many there are, and whether two of them use it in one
/// direction.
struct EdgeUse {
    std::size_t first_face = 0;
    std::size_t second_face = 0;
    int count = 0;
    bool first_is_upwards = false; ///< from the lower to the higher number
    bool is_twisted = false;
};

std::uint64_t EdgeKey(int a, int b)
{
    const auto [low, high] = std::minmax(a, b);
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(low)) << 32U |
           static_cast<std::uint32_t>(high);
}

bool IsSmooth(const Point& a, const Point& b)
{
    // Accurate for small angles, and so are lengths that are not quite 1.
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
        body.markSmoothEdges(kSmoothAngle);
        return body;
    } catch (const AModeler::BodyError&) {
        return std::nullopt;
    }
}

std::vector<std::pair<Point, Point>> FeatureEdges(const Piece& piece)
{
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
    std::vector<std::pair<Point, Point>> edges;
    for (const std::uint64_t key : order) {
        const EdgeUse& use = uses.at(key);
        const bool is_inner = use.count == 2 && !use.is_twisted;
        if (is_inner && IsSmooth(piece.faces[use.first_face].normal, piece.faces[use.second_face].normal))
            continue;
        edges.emplace_back(corners.points[key >> 32U], corners.points[key & 0xFFFFFFFFU]);
    }
    return edges;
}

} // namespace viewer
