#include "platform/modeler/face_splitting.h"

#include "platform/modeler/edge_table.h"
#include "platform/modeler/loop_plane.h"
#include "platform/winsys/opengl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numbers>
#include <numeric>
#include <utility>

namespace AModeler
{

namespace
{

/// A point in the plane of a face, scaled to lengths of about 1.
struct FlatPoint {
    double x = 0.0;
    double y = 0.0;
};

/// The change of direction at b on the path from a over b to c.
class Turn
{
  public:
    Turn(FlatPoint a, FlatPoint b, FlatPoint c)
        : cross_((b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x)),
          dot_((b.x - a.x) * (c.x - b.x) + (b.y - a.y) * (c.y - b.y))
    {
    }

    /// Whether the path turns right by more than an angle that shows: corners are drawn in single
    /// precision. A path straight back, which rounding may put on either side, does not count as right.
    [[nodiscard]] bool IsRight() const
    {
        constexpr double kStraight = 1e-6;
        return cross_ < -kStraight * std::hypot(cross_, dot_);
    }
    /// The turn to the left in radians, from -pi to pi; 0 where two of the points coincide.
    [[nodiscard]] double Angle() const { return std::atan2(cross_, dot_); }

  private:
    double cross_;
    double dot_;
};

/// Coordinates in the plane of a face's first loop, in which that loop runs counter-clockwise.
class FacePlane
{
  public:
    FacePlane(const Outline& outline, std::span<const AcGePoint3d> points)
        : points_(points), origin_(Point(outline.front()))
    {
        const auto for_each_corner = [&](const auto& visit) {
            for (const int corner : outline)
                visit(Point(corner));
        };
        reach_ = ReachOfLoop(for_each_corner);
        // Negated: loops run clockwise as seen from the side that the plane's normal points to.
        normal_ = -PlaneOfLoop(for_each_corner).normal;
    }

    /// Whether the loop encloses an area.
    [[nodiscard]] bool IsValid() const { return normal_.lengthSqrd() > 0.0; }

    /// Drops the coordinate that changes least in the plane. Corners in one line stay exactly in one line.
    [[nodiscard]] FlatPoint Project(int corner) const
    {
        const AcGeVector3d arm = (Point(corner) - origin_) / reach_;
        const AcGeVector3d sizes{std::fabs(normal_.x), std::fabs(normal_.y), std::fabs(normal_.z)};
        if (sizes.z >= sizes.x && sizes.z >= sizes.y)
            return normal_.z > 0.0 ? FlatPoint{arm.x, arm.y} : FlatPoint{arm.y, arm.x};
        if (sizes.x >= sizes.y)
            return normal_.x > 0.0 ? FlatPoint{arm.y, arm.z} : FlatPoint{arm.z, arm.y};
        return normal_.y > 0.0 ? FlatPoint{arm.z, arm.x} : FlatPoint{arm.x, arm.z};
    }

  private:
    [[nodiscard]] const AcGePoint3d& Point(int corner) const
    {
        return points_[static_cast<std::size_t>(corner)];
    }

    std::span<const AcGePoint3d> points_;
    AcGePoint3d origin_;
    double reach_ = 0.0;
    AcGeVector3d normal_;
};

std::size_t CountCorners(const std::vector<Outline>& loops)
{
    return std::accumulate(loops.begin(), loops.end(), std::size_t{0},
                           [](std::size_t sum, const Outline& loop) { return sum + loop.size(); });
}

template <typename Visit>
void ForEachEdge(const std::vector<Outline>& loops, const Visit& visit)
{
    for (std::size_t loop = 0; loop < loops.size(); ++loop)
        for (std::size_t i = 0; i < loops[loop].size(); ++i)
            visit(loops[loop][i], loops[loop][(i + 1) % loops[loop].size()], loop);
}

/// One run of the GLU tessellator, which calls back with the corners of triangles.
class Triangulation
{
  public:
    /// The corners of the triangles one after the other, counter-clockwise. None where the loops cross.
    static std::optional<std::vector<int>> Run(const std::vector<Outline>& loops, const FacePlane& plane)
    {
        Triangulation run(loops, plane);
        const std::unique_ptr<GLUtesselator, Deleter> tessellator(gluNewTess());
        if (!tessellator)
            return std::nullopt;
        run.Tessellate(tessellator.get(), loops);
        if (run.has_failed_ || run.found_.size() % 3 != 0)
            return std::nullopt;
        return std::move(run.found_);
    }

  private:
    struct Deleter {
        void operator()(GLUtesselator* tessellator) const { gluDeleteTess(tessellator); }
    };
    struct Corner {
        std::array<GLdouble, 3> place;
        int point;
    };

    Triangulation(const std::vector<Outline>& loops, const FacePlane& plane)
    {
        const std::size_t count = CountCorners(loops);
        corners_.reserve(count);
        for (const Outline& loop : loops)
            for (const int corner : loop) {
                const FlatPoint flat = plane.Project(corner);
                corners_.push_back({{flat.x, flat.y, 0.0}, corner});
            }
        // An outline of n corners has n - 2 triangles, and each hole adds two. Reserved now, because the
        // callbacks must not throw.
        found_.reserve(3 * (count + 2 * loops.size()));
    }

    void Tessellate(GLUtesselator* tessellator, const std::vector<Outline>& loops)
    {
        const auto set_callback = [&](GLenum which, auto* callback) {
            gluTessCallback(tessellator, which, reinterpret_cast<GluTessCallback>(callback));
        };
        set_callback(GLU_TESS_VERTEX_DATA, &OnVertex);
        // With an edge-flag callback the tessellator makes no fans and strips.
        set_callback(GLU_TESS_EDGE_FLAG_DATA, &OnEdgeFlag);
        // There is no combine callback, so loops that cross are an error.
        set_callback(GLU_TESS_ERROR_DATA, &OnError);
        gluTessNormal(tessellator, 0.0, 0.0, 1.0);
        gluTessBeginPolygon(tessellator, this);
        auto corner = corners_.begin();
        for (const Outline& loop : loops) {
            gluTessBeginContour(tessellator);
            for (std::size_t i = 0; i < loop.size(); ++i, ++corner)
                gluTessVertex(tessellator, corner->place.data(), &*corner);
            gluTessEndContour(tessellator);
        }
        gluTessEndPolygon(tessellator);
    }

    static void CALLBACK OnVertex(void* corner, void* self)
    {
        auto* const run = static_cast<Triangulation*>(self);
        if (corner == nullptr || run->found_.size() == run->found_.capacity())
            run->has_failed_ = true;
        else
            run->found_.push_back(static_cast<const Corner*>(corner)->point);
    }
    static void CALLBACK OnEdgeFlag(GLboolean /*flag*/, void* /*self*/) {}
    static void CALLBACK OnError(GLenum /*error*/, void* self)
    {
        static_cast<Triangulation*>(self)->has_failed_ = true;
    }

    std::vector<Corner> corners_; ///< never resized while the tessellator runs: it keeps pointers to them
    std::vector<int> found_;
    bool has_failed_ = false;
};

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

/// A face cut into parts along edges between its corners. At first the parts are triangles; removing the edge
/// between two parts merges them.
class Subdivision
{
  public:
    explicit Subdivision(const FacePlane& plane) : plane_(&plane) {}

    /// Cuts the loops into triangles; false where triangles do not fill them exactly.
    [[nodiscard]] bool Triangulate(const std::vector<Outline>& loops)
    {
        const auto triangles = Triangulation::Run(loops, *plane_);
        if (!triangles)
            return false;
        EdgeTable given(CountCorners(loops));
        ForEachEdge(loops, [&](int from, int to, std::size_t loop) { given.Add(from, to, loop); });
        std::size_t missing = CountCorners(loops);

        EdgeTable known(triangles->size());
        sides_.reserve(triangles->size());
        for (std::size_t i = 0; i < triangles->size(); ++i) {
            const std::size_t first = i - i % 3;
            sides_.push_back({(*triangles)[i], first + (i + 1) % 3, first + (i + 2) % 3});
        }
        for (std::size_t i = 0; i < sides_.size(); ++i)
            if (known.Add(StartOf(i), EndOf(i), i))
                return false;
        for (std::size_t i = 0; i < sides_.size(); ++i) {
            const int from = StartOf(i);
            const int to = EndOf(i);
            if (given.Find(from, to)) {
                --missing;
                continue;
            }
            const auto partner = known.Find(to, from);
            if (!partner || given.Find(to, from))
                return false;
            sides_[i].partner = *partner;
        }
        return missing == 0;
    }

    /// Removes every edge without which the corners at both its ends are convex.
    void MergeWhereConvex()
    {
        for (std::size_t i = 0; i < sides_.size(); ++i) {
            const std::size_t partner = sides_[i].partner;
            if (partner != kNone && i < partner && LeavesConvexCorner(i) && LeavesConvexCorner(partner))
                RemoveEdge(i);
        }
    }

    [[nodiscard]] std::vector<Outline> Parts() const
    {
        std::vector<Outline> parts;
        std::vector<bool> is_listed(sides_.size());
        for (std::size_t first = 0; first < sides_.size(); ++first) {
            if (is_listed[first] || sides_[first].is_removed)
                continue;
            Outline& part = parts.emplace_back();
            for (std::size_t i = first; !is_listed[i]; i = sides_[i].next) {
                part.push_back(StartOf(i));
                is_listed[i] = true;
            }
        }
        return parts;
    }

  private:
    /// A half-edge, along the part on its left.
    struct Side {
        int start = 0;
        std::size_t next = kNone;
        std::size_t previous = kNone;
        std::size_t partner = kNone; ///< kNone at the border of the face
        bool is_removed = false;
    };

    [[nodiscard]] int StartOf(std::size_t side) const { return sides_[side].start; }
    [[nodiscard]] int EndOf(std::size_t side) const { return sides_[sides_[side].next].start; }

    [[nodiscard]] bool LeavesConvexCorner(std::size_t side) const
    {
        const std::size_t following = sides_[sides_[side].partner].next;
        const Turn turn(plane_->Project(StartOf(sides_[side].previous)), plane_->Project(StartOf(side)),
                        plane_->Project(EndOf(following)));
        return !turn.IsRight();
    }

    void RemoveEdge(std::size_t side)
    {
        const std::size_t partner = sides_[side].partner;
        Join(sides_[side].previous, sides_[partner].next);
        Join(sides_[partner].previous, sides_[side].next);
        sides_[side].is_removed = true;
        sides_[partner].is_removed = true;
    }
    void Join(std::size_t side, std::size_t next)
    {
        sides_[side].next = next;
        sides_[next].previous = side;
    }

    const FacePlane* plane_;
    std::vector<Side> sides_;
};

} // namespace

bool IsConvex(const Outline& outline, std::span<const AcGePoint3d> points)
{
    const FacePlane plane(outline, points);
    if (!plane.IsValid())
        return true;
    double total_turn = 0.0;
    const std::size_t count = outline.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Turn turn(plane.Project(outline[i]), plane.Project(outline[(i + 1) % count]),
                        plane.Project(outline[(i + 2) % count]));
        if (turn.IsRight())
            return false;
        total_turn += turn.Angle();
    }
    // An outline that goes around more than once turns left everywhere too.
    return total_turn < 3.0 * std::numbers::pi;
}

std::optional<std::vector<Outline>> SplitIntoConvex(const std::vector<Outline>& loops,
                                                    std::span<const AcGePoint3d> points)
{
    const FacePlane plane(loops.front(), points);
    Subdivision subdivision(plane);
    if (!plane.IsValid() || !subdivision.Triangulate(loops))
        return std::nullopt;
    subdivision.MergeWhereConvex();
    return subdivision.Parts();
}

} // namespace AModeler
