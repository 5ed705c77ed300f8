#include "viewer/import/dxf/face_conversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace viewer
{

namespace
{

struct Corner {
    Point point;
    bool hides_edge = false; ///< of the edge to the next corner
};

using Outline = std::vector<Corner>;

/// The transformed corners of a face. Of coincident corners the last one is kept, with its edge.
Outline OutlineOf(const DxfFace& face, const Affine& place)
{
    Outline outline;
    for (std::size_t i = 0; i < face.count; ++i) {
        const Corner corner{place.Apply(face.corners.at(i)), face.hidden_edges.at(i)};
        if (!outline.empty() && outline.back().point == corner.point)
            outline.back() = corner;
        else
            outline.push_back(corner);
    }
    if (outline.size() > 1 && outline.front().point == outline.back().point)
        outline.pop_back();
    return outline;
}

Point AreaOf(const Point& a, const Point& b, const Point& c)
{
    return Cross(b - a, c - a);
}

/// Whether the diagonal from corner `first` splits the four corners into two triangles of the same
/// orientation.
bool SplitsAt(const Outline& outline, std::size_t first)
{
    const auto corner = [&](std::size_t i) { return outline[(first + i) % 4].point; };
    return Dot(AreaOf(corner(0), corner(1), corner(2)), AreaOf(corner(0), corner(2), corner(3))) > 0.0;
}

/// Whether the four corners lie in one plane, within a file's rounding.
bool IsFlat(const Outline& outline)
{
    constexpr double kFlatness = 1e-5;
    const Point across = outline[2].point - outline[0].point;
    const Point other = outline[3].point - outline[1].point;
    const Point normal = Cross(across, other);
    const double area = Length(normal);
    if (area == 0.0)
        return true;
    const double height = Dot(outline[1].point - outline[0].point, normal) / area;
    return std::abs(height) <= kFlatness * std::max(Length(across), Length(other));
}

void AppendFace(const std::vector<Point>& corners, std::vector<ModelFace>& faces)
{
    if (auto face = MakeFace(corners))
        faces.push_back(std::move(*face));
}

void AppendFaces(const Outline& outline, std::vector<ModelFace>& faces)
{
    std::vector<Point> corners;
    for (const Corner& corner : outline)
        corners.push_back(corner.point);
    const bool is_convex = corners.size() < 4 || (SplitsAt(outline, 0) && SplitsAt(outline, 1));
    if (is_convex && (corners.size() < 4 || IsFlat(outline))) {
        AppendFace(corners, faces);
        return;
    }
    const std::size_t first = SplitsAt(outline, 0) ? 0 : 1;
    const auto corner = [&](std::size_t i) { return corners[(first + i) % 4]; };
    AppendFace({corner(0), corner(1), corner(2)}, faces);
    AppendFace({corner(0), corner(2), corner(3)}, faces);
}

std::tuple<double, double, double> KeyOf(const Point& point)
{
    return {point.x, point.y, point.z};
}

using EdgeKey = std::array<std::tuple<double, double, double>, 2>;

EdgeKey KeyOf(const Segment& edge)
{
    EdgeKey key{KeyOf(edge.from), KeyOf(edge.to)};
    std::sort(key.begin(), key.end());
    return key;
}

/// Orients the faces of each surface alike, from face to face over shared edges.
class FaceOrienter
{
  public:
    explicit FaceOrienter(std::vector<ModelFace>& faces) : faces_(faces), states_(faces.size())
    {
        for (std::size_t face = 0; face < faces.size(); ++face)
            for (std::size_t i = 0; i < faces[face].corners.size(); ++i)
                edges_.push_back(UseOf(face, i));
        std::sort(edges_.begin(), edges_.end(), [](const Use& a, const Use& b) {
            return std::tie(a.low, a.high, a.face) < std::tie(b.low, b.high, b.face);
        });
    }

    void Settle()
    {
        Link();
        for (std::size_t face = 0; face < faces_.size(); ++face)
            if (!states_[face].is_settled)
                SettleFrom(face);
    }

  private:
    struct Use {
        std::size_t low = 0;
        std::size_t high = 0;
        std::size_t face = 0;
        bool is_upwards = false;
    };
    struct Neighbor {
        std::size_t face = 0;
        bool is_turned = false; ///< its orientation is opposite to that of this face
    };
    struct State {
        std::vector<Neighbor> neighbors;
        bool is_open = false; ///< one of its edges has no face on its other side, or several
        bool is_settled = false;
        bool is_flipped = false;
    };

    std::size_t Number(const Point& point)
    {
        return numbers_.emplace(KeyOf(point), numbers_.size()).first->second;
    }

    Use UseOf(std::size_t face, std::size_t corner)
    {
        const std::vector<Point>& corners = faces_[face].corners;
        const std::size_t from = Number(corners[corner]);
        const std::size_t to = Number(corners[(corner + 1) % corners.size()]);
        return {std::min(from, to), std::max(from, to), face, from < to};
    }

    void Link()
    {
        for (std::size_t first = 0; first < edges_.size();) {
            std::size_t end = first;
            while (end < edges_.size() && edges_[end].low == edges_[first].low &&
                   edges_[end].high == edges_[first].high)
                ++end;
            LinkUses(first, end);
            first = end;
        }
    }

    void LinkUses(std::size_t first, std::size_t end)
    {
        if (end - first != 2) {
            for (; first < end; ++first)
                states_[edges_[first].face].is_open = true;
            return;
        }
        const Use& a = edges_[first];
        const Use& b = edges_[first + 1];
        const bool is_turned = a.is_upwards == b.is_upwards;
        states_[a.face].neighbors.push_back({b.face, is_turned});
        states_[b.face].neighbors.push_back({a.face, is_turned});
    }

    void SettleFrom(std::size_t start)
    {
        std::vector<std::size_t> surface{start};
        states_[start].is_settled = true;
        bool is_closed = true;
        for (std::size_t next = 0; next < surface.size(); ++next) {
            const State& state = states_[surface[next]];
            is_closed = is_closed && !state.is_open;
            for (const Neighbor& neighbor : state.neighbors)
                is_closed = Reach(state, neighbor, surface) && is_closed;
        }
        const bool is_inside_out = is_closed && VolumeOf(surface) < 0.0;
        for (const std::size_t face : surface)
            if (states_[face].is_flipped != is_inside_out)
                Flip(faces_[face]);
    }

    /// Orients a neighbour. Returns false if it has the opposite orientation already, as on a one-sided
    /// surface.
    bool Reach(const State& from, const Neighbor& neighbor, std::vector<std::size_t>& surface)
    {
        State& to = states_[neighbor.face];
        const bool is_flipped = from.is_flipped != neighbor.is_turned;
        if (!to.is_settled) {
            to.is_settled = true;
            to.is_flipped = is_flipped;
            surface.push_back(neighbor.face);
        }
        return to.is_flipped == is_flipped;
    }

    /// Six times the volume. It is computed relative to a corner of the surface, which keeps precision far
    /// from the origin.
    [[nodiscard]] double VolumeOf(const std::vector<std::size_t>& surface) const
    {
        const Point base = faces_[surface.front()].corners.front();
        double volume = 0.0;
        for (const std::size_t face : surface) {
            const std::vector<Point>& corners = faces_[face].corners;
            const double sign = states_[face].is_flipped ? 1.0 : -1.0; // corners run clockwise
            for (std::size_t i = 1; i + 1 < corners.size(); ++i)
                volume += sign * Dot(corners[0] - base, Cross(corners[i] - base, corners[i + 1] - base));
        }
        return volume;
    }

    static void Flip(ModelFace& face)
    {
        std::reverse(face.corners.begin(), face.corners.end());
        face.normal = face.normal * -1.0;
    }

    std::vector<ModelFace>& faces_;
    std::vector<State> states_;
    std::map<std::tuple<double, double, double>, std::size_t> numbers_;
    std::vector<Use> edges_;
};

} // namespace

void AppendDxfFace(const DxfFace& face, const Affine& place, Piece& piece)
{
    Outline outline = OutlineOf(face, place);
    if (outline.size() < 3)
        return;
    if (!piece.edges)
        piece.edges.emplace();
    for (std::size_t i = 0; i < outline.size(); ++i)
        if (!outline[i].hides_edge)
            piece.edges->push_back({outline[i].point, outline[(i + 1) % outline.size()].point});
    // A mirroring reverses the orientation.
    if (place.Mirrors())
        std::reverse(outline.begin(), outline.end());
    AppendFaces(outline, piece.faces);
}

void RemoveRepeatedEdges(Piece& piece)
{
    if (!piece.edges)
        return;
    std::vector<std::pair<EdgeKey, std::size_t>> order;
    order.reserve(piece.edges->size());
    for (std::size_t i = 0; i < piece.edges->size(); ++i)
        order.emplace_back(KeyOf((*piece.edges)[i]), i);
    std::sort(order.begin(), order.end());
    const auto same = [](const auto& a, const auto& b) { return a.first == b.first; };
    order.erase(std::unique(order.begin(), order.end(), same), order.end());
    std::vector<Segment> edges;
    edges.reserve(order.size());
    for (const auto& [key, index] : order)
        edges.push_back((*piece.edges)[index]);
    piece.edges = std::move(edges);
}

void OrientFaces(std::vector<ModelFace>& faces)
{
    FaceOrienter(faces).Settle();
}

} // namespace viewer
