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
#include <unordered_map>
#include <utility>

namespace AModeler
{

namespace
{

/// A point of a face's own plane, at lengths of about 1.
struct FlatPoint {
    double x = 0.0;
    double y = 0.0;
};

/// What the way from a over b to c does at b.
class Turn
{
  public:
    Turn(FlatPoint a, FlatPoint b, FlatPoint c)
        : cross_((b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x)),
          dot_((b.x - a.x) * (c.x - b.x) + (b.y - a.y) * (c.y - b.y))
    {
    }

    /// Whether it turns right, by more than an angle that is not seen: corners are drawn in single precision.
    /// The way straight back, which rounding may show on either side, is no turn to the right.
    [[nodiscard]] bool IsRight() const
    {
        constexpr double kStraight = 1e-6;
        return cross_ < -kStraight * std::hypot(cross_, dot_);
    }
    /// To the left, in radians from -pi to pi; 0 where two of the points are one.
    [[nodiscard]] double Angle() const { return std::atan2(cross_, dot_); }

  private:
    double cross_;
    double dot_;
};

/// The first loop's plane, in which that loop runs counter-clockwise.
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
        // Loops run clockwise to whoever the plane's normal points to.
        normal_ = -PlaneOfLoop(for_each_corner).normal;
    }

    /// Whether the loop encloses an area.
    [[nodiscard]] bool IsValid() const { return normal_.lengthSqrd() > 0.0; }

    /// Leaves out the coordinate that changes least in the plane: corners that are in one line stay so
    /// exactly.
    [[nodiscard]] FlatPoint Flat(int corner) const
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
    /// The corners of the triangles one after the other, counter-clockwise. Nothing where the loops cross.
    static std::optional<std::vector<int>> Of(const std::vector<Outline>& loops, const FacePlane& plane)
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
                const FlatPoint flat = plane.Flat(corner);
                corners_.push_back({{flat.x, flat.y, 0.0}, corner});
            }
        // Each hole adds two triangles to the two less than corners. Made now, because the callbacks must not
        // throw.
        found_.reserve(3 * (count + 2 * loops.size()));
    }

    void Tessellate(GLUtesselator* tessellator, const std::vector<Outline>& loops)
    {
        const auto set_callback = [&](GLenum which, auto* callback) {
            gluTessCallback(tessellator, which, reinterpret_cast<GluTessCallback>(callback));
        };
        set_callback(GLU_TESS_VERTEX_DATA, &OnVertex);
        // Being told of edges keeps it from making fans and strips.
        set_callback(GLU_TESS_EDGE_FLAG_DATA, &OnEdgeFlag);
        // With no callback that makes new corners, loops that cross are an error.
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

    std::vector<Corner> corners_; ///< fixed while the tessellator runs, which keeps pointers to them
    std::vector<int> found_;
    bool has_failed_ = false;
};

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

/// A face cut into parts along edges between its corners. It begins with triangles; parts become one where
/// the edge between them is taken out.
class Subdivision
{
  public:
    explicit Subdivision(const FacePlane& plane) : plane_(&plane) {}

    /// False where triangles do not fill the loops exactly.
    [[nodiscard]] bool Triangulate(const std::vector<Outline>& loops)
    {
        const auto triangles = Triangulation::Of(loops, *plane_);
        if (!triangles)
            return false;
        EdgeTable given(CountCorners(loops));
        ForEachEdge(loops, [&](int from, int to, std::size_t loop) { given.Add(from, to, loop); });
        std::size_t given_left = CountCorners(loops);

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
                --given_left;
                continue;
            }
            const auto partner = known.Find(to, from);
            if (!partner || given.Find(to, from))
                return false;
            sides_[i].partner = *partner;
        }
        return given_left == 0;
    }

    /// Takes out every edge that leaves convex corners at both its ends.
    void MergeWhereConvex()
    {
        for (std::size_t i = 0; i < sides_.size(); ++i) {
            const std::size_t partner = sides_[i].partner;
            if (partner != kNone && i < partner && LeavesConvexCorner(i) && LeavesConvexCorner(partner))
                TakeOut(i);
        }
    }

    /// Takes out all edges but the shortest that keep the loops connected.
    void MergeAroundBridges(const std::vector<Outline>& loops)
    {
        std::vector<std::size_t> group(loops.size());
        std::iota(group.begin(), group.end(), std::size_t{0});
        const auto group_of = [&](std::size_t loop) {
            while (group[loop] != loop)
                loop = group[loop] = group[group[loop]];
            return loop;
        };
        std::unordered_map<int, std::size_t> loop_of_point;
        ForEachEdge(loops, [&](int point, int, std::size_t loop) {
            group[group_of(loop)] = group_of(loop_of_point.emplace(point, loop).first->second);
        });
        for (const std::size_t side : InnerSidesByLength()) {
            const std::size_t start = group_of(loop_of_point.at(StartOf(side)));
            const std::size_t end = group_of(loop_of_point.at(EndOf(side)));
            if (start == end)
                TakeOut(side);
            else
                group[start] = end;
        }
    }

    [[nodiscard]] std::vector<Outline> Parts() const
    {
        std::vector<Outline> parts;
        std::vector<bool> is_told(sides_.size());
        for (std::size_t first = 0; first < sides_.size(); ++first) {
            if (is_told[first] || sides_[first].is_out)
                continue;
            Outline& part = parts.emplace_back();
            for (std::size_t i = first; !is_told[i]; i = sides_[i].next) {
                part.push_back(StartOf(i));
                is_told[i] = true;
            }
        }
        return parts;
    }

  private:
    /// One side of an edge, along the part on its left.
    struct Side {
        int start = 0;
        std::size_t next = kNone;
        std::size_t previous = kNone;
        std::size_t partner = kNone; ///< none at the border of the face
        bool is_out = false;
    };

    [[nodiscard]] int StartOf(std::size_t side) const { return sides_[side].start; }
    [[nodiscard]] int EndOf(std::size_t side) const { return sides_[sides_[side].next].start; }

    [[nodiscard]] bool LeavesConvexCorner(std::size_t side) const
    {
        const std::size_t way_on = sides_[sides_[side].partner].next;
        const Turn turn(plane_->Flat(StartOf(sides_[side].previous)), plane_->Flat(StartOf(side)),
                        plane_->Flat(EndOf(way_on)));
        return !turn.IsRight();
    }

    /// Inner edges, one side of each, the shortest first.
    [[nodiscard]] std::vector<std::size_t> InnerSidesByLength() const
    {
        std::vector<std::pair<double, std::size_t>> order;
        for (std::size_t i = 0; i < sides_.size(); ++i) {
            if (sides_[i].partner == kNone || sides_[i].partner < i)
                continue;
            const FlatPoint start = plane_->Flat(StartOf(i));
            const FlatPoint end = plane_->Flat(EndOf(i));
            order.emplace_back(std::hypot(end.x - start.x, end.y - start.y), i);
        }
        std::ranges::sort(order);
        std::vector<std::size_t> sides(order.size());
        std::ranges::transform(order, sides.begin(), [](const auto& entry) { return entry.second; });
        return sides;
    }

    void TakeOut(std::size_t side)
    {
        const std::size_t partner = sides_[side].partner;
        Join(sides_[side].previous, sides_[partner].next);
        Join(sides_[partner].previous, sides_[side].next);
        sides_[side].is_out = true;
        sides_[partner].is_out = true;
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
    double whole_turn = 0.0;
    const std::size_t count = outline.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Turn turn(plane.Flat(outline[i]), plane.Flat(outline[(i + 1) % count]),
                        plane.Flat(outline[(i + 2) % count]));
        if (turn.IsRight())
            return false;
        whole_turn += turn.Angle();
    }
    // Outlines that go around more than once turn left all the way, too.
    return whole_turn < 3.0 * std::numbers::pi;
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

std::optional<Outline> JoinHoles(const std::vector<Outline>& loops, std::span<const AcGePoint3d> points)
{
    const FacePlane plane(loops.front(), points);
    Subdivision subdivision(plane);
    if (!plane.IsValid() || !subdivision.Triangulate(loops))
        return std::nullopt;
    subdivision.MergeAroundBridges(loops);
    std::vector<Outline> parts = subdivision.Parts();
    if (parts.size() != 1)
        return std::nullopt;
    return std::move(parts.front());
}

} // namespace AModeler
