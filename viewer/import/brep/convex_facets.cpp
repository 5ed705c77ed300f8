#include "viewer/import/brep/convex_facets.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <numeric>
#include <utility>

namespace viewer
{

namespace
{

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

/// A half-edge in the loop of its polygon.
struct HalfEdge {
    int from = 0;
    std::size_t next = 0;
    std::size_t previous = 0;
    std::size_t twin = kNone;
    std::size_t polygon = 0;
    bool is_removed = false;
};

/// Removes edges, the longest first, while the polygon without the edge is convex (after Hertel and
/// Mehlhorn). The longest first, because a sliver is then joined along its long side and the polygons stay
/// compact.
class ConvexJoiner
{
  public:
    ConvexJoiner(const std::vector<std::array<int, 3>>& triangles, const std::function<Point(int)>& point_of,
                 const Point& normal)
        : point_of_(point_of), normal_(normal), polygon_of_(triangles.size())
    {
        std::iota(polygon_of_.begin(), polygon_of_.end(), std::size_t{0});
        edges_.reserve(triangles.size() * 3);
        for (const std::array<int, 3>& triangle : triangles) {
            const std::size_t first = edges_.size();
            for (std::size_t i = 0; i < 3; ++i)
                edges_.push_back(
                    {triangle.at(i), first + (i + 1) % 3, first + (i + 2) % 3, kNone, first / 3, false});
        }
        FindTwins();
    }

    void Join(const std::function<bool(int, int)>& must_stay)
    {
        for (const std::size_t edge : InnerEdges())
            if (!must_stay(edges_[edge].from, To(edge)) && CanBeRemoved(edge))
                Remove(edge);
    }

    std::vector<FacetCorners> Polygons() const
    {
        std::vector<FacetCorners> polygons;
        std::vector<bool> is_seen(edges_.size(), false);
        for (std::size_t first = 0; first < edges_.size(); ++first) {
            if (edges_[first].is_removed || is_seen[first])
                continue;
            FacetCorners& corners = polygons.emplace_back();
            for (std::size_t edge = first; !is_seen[edge]; edge = edges_[edge].next) {
                is_seen[edge] = true;
                corners.push_back(edges_[edge].from);
            }
        }
        return polygons;
    }

  private:
    int To(std::size_t edge) const { return edges_[edges_[edge].next].from; }

    void FindTwins()
    {
        // More than two half-edges between the same corners cannot be paired.
        std::map<std::pair<int, int>, std::vector<std::size_t>> sides;
        for (std::size_t i = 0; i < edges_.size(); ++i)
            sides[std::minmax(edges_[i].from, To(i))].push_back(i);
        for (const auto& [corners, edges] : sides) {
            if (edges.size() != 2 || edges_[edges[0]].from == edges_[edges[1]].from)
                continue;
            edges_[edges[0]].twin = edges[1];
            edges_[edges[1]].twin = edges[0];
        }
    }

    std::vector<std::size_t> InnerEdges() const
    {
        std::vector<std::pair<double, std::size_t>> by_length;
        for (std::size_t i = 0; i < edges_.size(); ++i)
            if (edges_[i].twin != kNone && i < edges_[i].twin)
                by_length.emplace_back(-Length(point_of_(edges_[i].from) - point_of_(To(i))), i);
        std::sort(by_length.begin(), by_length.end());
        std::vector<std::size_t> inner;
        inner.reserve(by_length.size());
        for (const auto& [length, edge] : by_length)
            inner.push_back(edge);
        return inner;
    }

    std::size_t PolygonOf(std::size_t edge)
    {
        std::size_t polygon = edges_[edge].polygon;
        while (polygon_of_[polygon] != polygon) {
            polygon_of_[polygon] = polygon_of_[polygon_of_[polygon]];
            polygon = polygon_of_[polygon];
        }
        return polygon;
    }

    /// Whether the path a, b, c turns left or goes straight on.
    bool TurnsLeft(int a, int b, int c) const
    {
        // Sines below this are rounding errors of collinear corners.
        constexpr double kStraight = 1e-9;
        const Point in = point_of_(b) - point_of_(a);
        const Point out = point_of_(c) - point_of_(b);
        const double size = Length(in) * Length(out);
        const double sine = Dot(Cross(in, out), normal_);
        return sine > kStraight * size || (sine >= -kStraight * size && Dot(in, out) > 0.0);
    }

    bool CanBeRemoved(std::size_t edge)
    {
        const std::size_t twin = edges_[edge].twin;
        if (PolygonOf(edge) == PolygonOf(twin))
            return false;
        const auto turns_at = [&](std::size_t leaving, std::size_t other) {
            return TurnsLeft(edges_[edges_[leaving].previous].from, edges_[leaving].from,
                             To(edges_[other].next));
        };
        return turns_at(edge, twin) && turns_at(twin, edge);
    }

    void Remove(std::size_t edge)
    {
        const std::size_t twin = edges_[edge].twin;
        const auto link = [&](std::size_t before, std::size_t after) {
            edges_[before].next = after;
            edges_[after].previous = before;
        };
        polygon_of_[PolygonOf(twin)] = PolygonOf(edge);
        link(edges_[edge].previous, edges_[twin].next);
        link(edges_[twin].previous, edges_[edge].next);
        edges_[edge].is_removed = true;
        edges_[twin].is_removed = true;
    }

    const std::function<Point(int)>& point_of_;
    Point normal_;
    std::vector<HalfEdge> edges_;
    std::vector<std::size_t> polygon_of_; ///< union-find: for each triangle, one that it is joined to
};

} // namespace

std::vector<FacetCorners> JoinIntoConvexPolygons(const std::vector<std::array<int, 3>>& triangles,
                                                 const std::function<Point(int)>& point_of,
                                                 const Point& normal,
                                                 const std::function<bool(int, int)>& must_stay)
{
    ConvexJoiner joiner(triangles, point_of, normal);
    joiner.Join(must_stay);
    return joiner.Polygons();
}

} // namespace viewer
