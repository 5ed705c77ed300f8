#include "viewer/scene/surface_sides.h"

#include "viewer/scene/shared_corners.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>
#include <unordered_set>
#include <utility>

namespace viewer
{

namespace
{

/// The use of an edge by a face.
struct EdgeUse {
    std::uint64_t key;
    std::uint32_t face;
    bool is_upwards; ///< from the lower number to the higher one
};

/// Disjoint sets of faces.
class FaceSets
{
  public:
    explicit FaceSets(std::size_t count) : parents_(count)
    {
        std::iota(parents_.begin(), parents_.end(), std::uint32_t{0});
    }

    /// The face that represents the set.
    std::uint32_t Find(std::uint32_t face)
    {
        while (parents_[face] != face) {
            parents_[face] = parents_[parents_[face]];
            face = parents_[face];
        }
        return face;
    }
    void Join(std::uint32_t a, std::uint32_t b) { parents_[Find(a)] = Find(b); }

  private:
    std::vector<std::uint32_t> parents_;
};

/// A closed surface.
struct Shell {
    std::vector<std::uint32_t> faces;
    Box box;
    double volume = 0.0; ///< negative if the faces point inwards; 0 if it is a rounding error
};

/// Six times the volume between the triangle and the origin; positive where the corners run clockwise as seen
/// from outside.
double VolumeOf(const Point& a, const Point& b, const Point& c)
{
    return -Dot(a, Cross(b, c));
}

/// The solid angle of the triangle as seen from the origin, with the same sign.
double SolidAngleOf(const Point& a, const Point& b, const Point& c)
{
    const double of_a = std::sqrt(Dot(a, a));
    const double of_b = std::sqrt(Dot(b, b));
    const double of_c = std::sqrt(Dot(c, c));
    return 2.0 * std::atan2(VolumeOf(a, b, c),
                            of_a * of_b * of_c + Dot(a, b) * of_c + Dot(b, c) * of_a + Dot(c, a) * of_b);
}

/// Calls `visit` with each triangle of a fan that fills the face, with its corners relative to `origin`.
void ForEachTriangle(const ModelFace& face, const Point& origin, const auto& visit)
{
    for (std::size_t i = 1; i + 1 < face.corners.size(); ++i)
        visit(face.corners.front() - origin, face.corners[i] - origin, face.corners[i + 1] - origin);
}

/// The surfaces of one piece.
class Surfaces
{
  public:
    explicit Surfaces(Piece& piece) : piece_(piece), sets_(piece.faces.size()), is_open_(piece.faces.size())
    {
        FindEdges();
        JoinAcrossPlainEdges();
        MarkOpen();
        if (std::ranges::find(is_open_, true) == is_open_.end())
            return;
        // Surfaces that meet along an edge of several faces can be closed together.
        JoinOpenOnes();
        std::fill(is_open_.begin(), is_open_.end(), false);
        MarkOpen();
    }

    [[nodiscard]] bool IsOpen(std::size_t face)
    {
        return is_open_[sets_.Find(static_cast<std::uint32_t>(face))];
    }

    /// Turns closed surfaces that point inwards. Returns false if it would take too long to find them.
    [[nodiscard]] bool TurnOutwards()
    {
        const std::vector<Shell> shells = FindShells();
        for (const Shell& shell : shells) {
            if (shell.volume >= 0.0)
                continue;
            const auto depth = DepthOf(shell, shells);
            if (depth < 0)
                return false;
            if (depth % 2 == 0)
                Turn(shell);
        }
        return true;
    }

    /// The keys of the edges of all open surfaces, or of all closed ones.
    [[nodiscard]] std::unordered_set<std::uint64_t> KeysOf(bool of_open)
    {
        std::unordered_set<std::uint64_t> keys;
        for (const EdgeUse& use : uses_)
            if (IsOpen(use.face) == of_open)
                keys.insert(use.key);
        return keys;
    }

    [[nodiscard]] std::uint64_t KeyOf(const Segment& segment) const
    {
        return EdgeKey(corners_.Find(segment.from), corners_.Find(segment.to));
    }

  private:
    void FindEdges()
    {
        for (std::uint32_t face = 0; face < piece_.faces.size(); ++face)
            ForEachEdge(corners_.Of(face), [&](int from, int to) {
                if (from != to)
                    uses_.push_back({EdgeKey(from, to), face, from < to});
            });
        std::ranges::sort(uses_, {}, &EdgeUse::key);
    }

    /// Calls `visit` with the uses of each edge.
    void ForEachRun(const auto& visit)
    {
        for (auto first = uses_.begin(); first != uses_.end();) {
            const auto end =
                std::find_if(first, uses_.end(), [&](const EdgeUse& use) { return use.key != first->key; });
            visit(std::span<EdgeUse>(first, end));
            first = end;
        }
    }

    void JoinAcrossPlainEdges()
    {
        ForEachRun([&](std::span<EdgeUse> uses) {
            if (uses.size() == 2 && uses[0].is_upwards != uses[1].is_upwards)
                sets_.Join(uses[0].face, uses[1].face);
        });
    }

    void JoinOpenOnes()
    {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> joined;
        ForEachRun([&](std::span<EdgeUse> uses) {
            if (uses.size() <= 2)
                return;
            const EdgeUse* before = nullptr;
            for (const EdgeUse& use : uses) {
                if (!IsOpen(use.face))
                    continue;
                if (before != nullptr)
                    joined.emplace_back(before->face, use.face);
                before = &use;
            }
        });
        // Joined last, because a set that is joined with an open one counts as open.
        for (const auto& [one, other] : joined)
            sets_.Join(one, other);
    }

    /// Marks the sets for which an edge is used more often in one direction than in the other one.
    void MarkOpen()
    {
        ForEachRun([&](std::span<EdgeUse> uses) {
            if (uses.size() == 2 && uses[0].is_upwards != uses[1].is_upwards)
                return;
            std::ranges::sort(uses, {}, [&](const EdgeUse& use) { return sets_.Find(use.face); });
            for (std::size_t i = 0; i < uses.size();) {
                const std::uint32_t set = sets_.Find(uses[i].face);
                std::ptrdiff_t balance = 0;
                for (; i < uses.size() && sets_.Find(uses[i].face) == set; ++i)
                    balance += uses[i].is_upwards ? 1 : -1;
                if (balance != 0)
                    is_open_[set] = true;
            }
        });
    }

    std::vector<Shell> FindShells()
    {
        constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);
        std::vector<std::uint32_t> number(piece_.faces.size(), kNone);
        std::vector<Shell> shells;
        for (std::uint32_t face = 0; face < piece_.faces.size(); ++face) {
            const std::uint32_t set = sets_.Find(face);
            if (is_open_[set])
                continue;
            if (number[set] == kNone) {
                number[set] = static_cast<std::uint32_t>(shells.size());
                shells.emplace_back();
            }
            Shell& shell = shells[number[set]];
            shell.faces.push_back(face);
            for (const Point& corner : piece_.faces[face].corners)
                shell.box.Add(corner);
        }
        for (Shell& shell : shells)
            shell.volume = VolumeIn(shell);
        return shells;
    }

    [[nodiscard]] double VolumeIn(const Shell& shell) const
    {
        double volume = 0.0;
        double sum = 0.0;
        const Point center = shell.box.Center();
        for (const std::uint32_t face : shell.faces)
            ForEachTriangle(piece_.faces[face], center, [&](const Point& a, const Point& b, const Point& c) {
                const double part = VolumeOf(a, b, c);
                volume += part;
                sum += std::abs(part);
            });
        // A smaller volume is a rounding error, as that of a sheet with both its sides. NaN fails the
        // comparison.
        constexpr double kMinShare = 1e-9;
        return std::abs(volume) > kMinShare * sum ? volume : 0.0;
    }

    /// The number of other shells around the shell; -1 if it would take too long to count them.
    [[nodiscard]] int DepthOf(const Shell& shell, const std::vector<Shell>& shells)
    {
        int depth = 0;
        for (const Shell& other : shells) {
            constexpr std::size_t kMaxBoxes = 100'000'000;
            if (++box_count_ > kMaxBoxes)
                return -1;
            if (&other == &shell || !Contains(other.box, shell.box))
                continue;
            constexpr std::size_t kMaxAngles = 1'000'000;
            angle_count_ += other.faces.size();
            if (angle_count_ > kMaxAngles + 10 * piece_.faces.size())
                return -1;
            if (Encloses(other, piece_.faces[shell.faces.front()].corners.front()))
                ++depth;
        }
        return depth;
    }

    static bool Contains(const Box& outer, const Box& inner)
    {
        return outer.min.x < inner.min.x && outer.min.y < inner.min.y && outer.min.z < inner.min.z &&
               outer.max.x > inner.max.x && outer.max.y > inner.max.y && outer.max.z > inner.max.z;
    }

    [[nodiscard]] bool Encloses(const Shell& shell, const Point& point) const
    {
        double angle = 0.0;
        for (const std::uint32_t face : shell.faces)
            ForEachTriangle(piece_.faces[face], point, [&](const Point& a, const Point& b, const Point& c) {
                angle += SolidAngleOf(a, b, c);
            });
        // Seen from inside, a shell covers the whole sphere, 4 pi or -4 pi. From outside, the angles cancel
        // out.
        return std::abs(angle) > 2.0 * std::numbers::pi;
    }

    void Turn(const Shell& shell)
    {
        for (const std::uint32_t face : shell.faces) {
            ModelFace& turned = piece_.faces[face];
            std::reverse(turned.corners.begin(), turned.corners.end());
            turned.normal = turned.normal * -1.0;
        }
    }

    Piece& piece_;
    SharedCorners corners_{piece_};
    FaceSets sets_;
    std::vector<EdgeUse> uses_;   ///< sorted by edge
    std::vector<bool> is_open_;   ///< by the face that represents the set
    std::size_t box_count_ = 0;   ///< of boxes compared to find cavities
    std::size_t angle_count_ = 0; ///< of faces visited to find cavities
};

/// Moves the open surfaces of the piece to a new piece.
Piece TakeOpen(Piece& piece, Surfaces& surfaces)
{
    Piece open = MakePiece(piece.name, {}, piece.category, piece.color, piece.alpha);
    open.parents = piece.parents;
    open.two_sided = true;
    if (piece.edges) {
        const auto of_closed = surfaces.KeysOf(false);
        const auto of_open = surfaces.KeysOf(true);
        open.edges.emplace();
        std::vector<Segment> kept;
        for (const Segment& edge : *piece.edges) {
            const std::uint64_t key = surfaces.KeyOf(edge);
            if (of_open.contains(key))
                open.edges->push_back(edge);
            if (of_closed.contains(key) || !of_open.contains(key))
                kept.push_back(edge);
        }
        piece.edges = std::move(kept);
    }
    std::vector<ModelFace> closed;
    bool before_is_open = false;
    for (std::size_t i = 0; i < piece.faces.size(); ++i) {
        const bool is_open = surfaces.IsOpen(i);
        ModelFace& face = piece.faces[i];
        face.continues = face.continues && is_open == before_is_open;
        before_is_open = is_open;
        (is_open ? open.faces : closed).push_back(std::move(face));
    }
    piece.faces = std::move(closed);
    return open;
}

/// Settles the sides of a piece and appends it, as one piece or two.
void Settle(Piece piece, std::vector<Piece>& settled)
{
    if (piece.two_sided || piece.closes_with_others || piece.faces.empty()) {
        settled.push_back(std::move(piece));
        return;
    }
    Surfaces surfaces(piece);
    std::size_t open_count = 0;
    for (std::size_t i = 0; i < piece.faces.size(); ++i)
        open_count += surfaces.IsOpen(i) ? 1 : 0;
    piece.two_sided = open_count == piece.faces.size() || !surfaces.TurnOutwards();
    if (piece.two_sided || open_count == 0) {
        settled.push_back(std::move(piece));
        return;
    }
    Piece open = TakeOpen(piece, surfaces);
    settled.push_back(std::move(piece));
    settled.push_back(std::move(open));
}

} // namespace

void SettleSides(Model& model)
{
    std::vector<Piece> settled;
    settled.reserve(model.pieces.size());
    for (Piece& piece : model.pieces)
        Settle(std::move(piece), settled);
    model.pieces = std::move(settled);
}

} // namespace viewer
