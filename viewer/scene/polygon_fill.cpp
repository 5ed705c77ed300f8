#include "viewer/scene/polygon_fill.h"

#include "platform/winsys/opengl.h"

#include <algorithm>
#include <cmath>
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
    /// In the order in which the sweep of the tessellator reaches corners.
    [[nodiscard]] bool RunsForward() const { return from < to; }
};

/// Above 0 where the point lies to the left of the edge.
double Side(const Edge& edge, const FlatPoint& point)
{
    return (edge.to.x - edge.from.x) * (point.y - edge.from.y) -
           (edge.to.y - edge.from.y) * (point.x - edge.from.x);
}

/// Whether edges with a common end overlap.
bool OverlapFrom(const FlatPoint& common, const FlatPoint& a, const FlatPoint& b)
{
    const double dot = (a.x - common.x) * (b.x - common.x) + (a.y - common.y) * (b.y - common.y);
    return Side({common, a}, b) == 0.0 && dot > 0.0;
}

/// Whether the edges cross within both of them, touch, or overlap. A common end is no crossing.
bool Meet(const Edge& a, const Edge& b)
{
    if (a.Top() < b.Bottom() || b.Top() < a.Bottom())
        return false;
    if (a.from == b.from)
        return OverlapFrom(a.from, a.to, b.to);
    if (a.from == b.to)
        return OverlapFrom(a.from, a.to, b.from);
    if (a.to == b.from)
        return OverlapFrom(a.to, a.from, b.to);
    if (a.to == b.to)
        return OverlapFrom(a.to, a.from, b.from);
    return Side(b, a.from) * Side(b, a.to) <= 0.0 && Side(a, b.from) * Side(a, b.to) <= 0.0;
}

/// The edges of all loops, and the cost of filling them.
class Outlines
{
  public:
    struct Loop {
        std::size_t corners = 0;
        std::size_t turns = 0; ///< corners where the outline turns back in x
    };

    explicit Outlines(const std::vector<FlatLoop>& loops)
    {
        for (const FlatLoop& loop : loops)
            Add(loop);
    }

    [[nodiscard]] std::size_t CornerCount() const { return edges_.size(); }
    [[nodiscard]] const std::vector<Loop>& Loops() const { return loops_; }
    /// The result of `CountCrossings`.
    [[nodiscard]] std::size_t Crossings() const { return crossings_; }

    /// Counts the pairs of edges that meet, by a sweep along x. The work is reduced by the edges and the
    /// compared pairs.
    [[nodiscard]] FillResult CountCrossings(std::size_t max, std::size_t& work)
    {
        std::ranges::sort(edges_, {}, &Edge::Left);
        // Edges whose range of x has begun and may not have ended.
        std::vector<Edge> open;
        for (const Edge& edge : edges_) {
            std::erase_if(open, [&](const Edge& other) { return other.Right() < edge.Left(); });
            if (work < open.size() + 1)
                return FillResult::TooLarge;
            work -= open.size() + 1;
            for (const Edge& other : open)
                crossings_ += Meet(edge, other) ? 1 : 0;
            if (crossings_ > max)
                return FillResult::Crossing;
            open.push_back(edge);
        }
        return FillResult::Filled;
    }

  private:
    void Add(const FlatLoop& loop)
    {
        const std::size_t first = edges_.size();
        for (std::size_t i = 0; i < loop.size(); ++i)
            if (const Edge edge{loop[i], loop[(i + 1) % loop.size()]}; edge.from != edge.to)
                edges_.push_back(edge);
        if (first == edges_.size())
            return;
        Loop& counts = loops_.emplace_back();
        counts.corners = edges_.size() - first;
        for (std::size_t i = first; i < edges_.size(); ++i) {
            const Edge& before = edges_[i > first ? i - 1 : edges_.size() - 1];
            counts.turns += before.RunsForward() != edges_[i].RunsForward() ? 1 : 0;
        }
    }

    std::vector<Edge> edges_;
    std::vector<Loop> loops_;
    std::size_t crossings_ = 0;
};

/// The steps of the tessellator for `events` in a region of this many corners. It cuts or joins regions at
/// corners where an outline turns back and where edges cross, and walks around one of the regions each time.
/// The more corners there are, the longer a step takes, because fewer of them are in the processor's caches.
std::size_t Steps(std::size_t events, std::size_t corners)
{
    constexpr std::size_t kCachedCorners = 1000;
    constexpr std::size_t kMaxSlowdown = 20;
    return events * corners * (1 + std::min(corners / kCachedCorners, kMaxSlowdown));
}

/// Returns false, and leaves the work as it is, if there is too little.
bool Charge(std::size_t steps, std::size_t& work)
{
    if (steps > work)
        return false;
    work -= steps;
    return true;
}

/// Whether the tessellator, which cannot be stopped, can fill the outlines with the work, which is reduced.
/// There must be corners.
///
/// NOTE: Measured with combs, saws, stars, waves, spirals, and rows and grids of holes, of 300 to 65000
/// corners.
FillResult Examine(Outlines& outlines, std::size_t max_crossings, std::size_t& work)
{
    std::size_t turns = 0;
    for (const Outlines::Loop& loop : outlines.Loops()) {
        turns += loop.turns;
        if (!Charge(Steps(loop.turns, loop.corners), work))
            return FillResult::TooLarge;
    }
    const std::size_t before = work;
    const FillResult result = outlines.CountCrossings(max_crossings, work);
    if (result != FillResult::Filled)
        return result;
    const std::size_t corners = outlines.CornerCount();
    std::size_t steps = Steps(outlines.Crossings(), corners);
    // Loops are joined into regions, which are the smaller the more edges lie above each other.
    if (outlines.Loops().size() > 1)
        steps = (steps + Steps(turns, corners)) / std::max<std::size_t>(1, (before - work) / corners);
    return Charge(steps, work) ? FillResult::Filled : FillResult::TooLarge;
}

/// A factor that scales the largest coordinate to between 0.5 and 1, where products neither overflow nor
/// vanish. It is a power of two, so that corners in one line stay in one line. No value if a coordinate is
/// not finite.
std::optional<double> ScaleOf(const std::vector<FlatLoop>& loops)
{
    double reach = 0.0;
    for (const FlatLoop& loop : loops)
        for (const FlatPoint& point : loop) {
            if (!std::isfinite(point.x) || !std::isfinite(point.y))
                return std::nullopt;
            reach = std::max({reach, std::abs(point.x), std::abs(point.y)});
        }
    int exponent = 0;
    static_cast<void>(std::frexp(reach, &exponent));
    constexpr int kMaxExponent = std::numeric_limits<double>::max_exponent - 1;
    return std::ldexp(1.0, std::min(-exponent, kMaxExponent));
}

/// One run of the GLU tessellator, which calls back with the corners of triangles.
class Tessellation
{
  public:
    explicit Tessellation(const std::vector<FlatLoop>& loops) : loops_(loops)
    {
        for (const FlatLoop& loop : loops)
            original_count_ += loop.size();
    }

    /// Returns false if the loops cannot be filled.
    [[nodiscard]] bool Run(std::size_t crossings, PolygonFill& fill)
    {
        // Neither list grows beyond its capacity while the tessellator runs: it keeps pointers to the
        // corners, and callbacks must not throw. Rounding can make it add corners where no edges cross.
        constexpr std::size_t kSpareCorners = 100;
        corners_.reserve(2 * original_count_ + 4 * crossings + kSpareCorners);
        // There are fewer than two triangles for each corner.
        found_.reserve(6 * corners_.capacity());
        for (const FlatLoop& loop : loops_)
            for (const FlatPoint& point : loop)
                corners_.push_back({{point.x, point.y, 0.0}, {}});
        Tessellate();
        if (has_failed_ || found_.size() % 3 != 0)
            return false;
        for (std::size_t i = 0; i < found_.size(); i += 3)
            fill.triangles.push_back({NumberOf(found_[i]), NumberOf(found_[i + 1]), NumberOf(found_[i + 2])});
        for (std::size_t i = original_count_; i < corners_.size(); ++i)
            fill.added.push_back(corners_[i].origin);
        return true;
    }

  private:
    struct Corner {
        std::array<GLdouble, 3> place;
        AddedCorner origin; ///< of an added corner
    };

    [[nodiscard]] std::size_t NumberOf(const Corner* corner) const
    {
        return static_cast<std::size_t>(corner - corners_.data());
    }

    void Tessellate()
    {
        const std::unique_ptr<GLUtesselator, decltype(&gluDeleteTess)> owner(gluNewTess(), &gluDeleteTess);
        if (owner == nullptr)
            throw std::bad_alloc();
        GLUtesselator* const tessellator = owner.get();
        const auto set_callback = [&](GLenum which, auto* callback) {
            gluTessCallback(tessellator, which, reinterpret_cast<GluTessCallback>(callback));
        };
        set_callback(GLU_TESS_VERTEX_DATA, &OnVertex);
        // With an edge-flag callback the tessellator makes no fans and strips.
        set_callback(GLU_TESS_EDGE_FLAG_DATA, &OnEdgeFlag);
        set_callback(GLU_TESS_COMBINE_DATA, &OnCombine);
        set_callback(GLU_TESS_ERROR_DATA, &OnError);
        gluTessProperty(tessellator, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
        gluTessNormal(tessellator, 0.0, 0.0, 1.0);
        gluTessBeginPolygon(tessellator, this);
        Corner* corner = corners_.data();
        for (const FlatLoop& loop : loops_) {
            gluTessBeginContour(tessellator);
            for (std::size_t i = 0; i < loop.size(); ++i, ++corner)
                gluTessVertex(tessellator, corner->place.data(), corner);
            gluTessEndContour(tessellator);
        }
        gluTessEndPolygon(tessellator);
    }

    static void CALLBACK OnVertex(void* corner, void* self)
    {
        auto* const run = static_cast<Tessellation*>(self);
        if (corner == nullptr || run->found_.size() == run->found_.capacity())
            run->has_failed_ = true;
        else
            run->found_.push_back(static_cast<const Corner*>(corner));
    }
    static void CALLBACK OnEdgeFlag(GLboolean /*flag*/, void* /*self*/) {}
    static void CALLBACK OnError(GLenum /*error*/, void* self)
    {
        static_cast<Tessellation*>(self)->has_failed_ = true;
    }

    /// Returns the corner where edges cross, or where corners are at the same place, from up to four corners.
    static void CALLBACK OnCombine(const GLdouble* place, void** from, const GLfloat* weights, void** result,
                                   void* self)
    {
        auto* const run = static_cast<Tessellation*>(self);
        AddedCorner added;
        added.point = {place[0], place[1]};
        double sum = 0.0;
        for (std::size_t i = 0; i < 4; ++i) {
            auto* const corner = static_cast<Corner*>(from[i]);
            if (corner == nullptr)
                continue;
            if (corner->place[0] == place[0] && corner->place[1] == place[1]) {
                *result = corner;
                return;
            }
            added.from.at(added.count) = run->NumberOf(corner);
            added.weights.at(added.count) = static_cast<double>(weights[i]);
            sum += static_cast<double>(weights[i]);
            ++added.count;
        }
        if (run->corners_.size() == run->corners_.capacity() || !(sum > 0.0)) {
            run->has_failed_ = true;
            *result = from[0];
            return;
        }
        run->corners_.push_back({{place[0], place[1], 0.0}, added});
        *result = &run->corners_.back();
    }

    const std::vector<FlatLoop>& loops_;
    std::size_t original_count_ = 0;
    std::vector<Corner> corners_;
    std::vector<const Corner*> found_;
    bool has_failed_ = false;
};

} // namespace

PolygonFill FillLoops(const std::vector<FlatLoop>& loops, std::size_t& work,
                      std::optional<std::size_t> max_crossings)
{
    PolygonFill fill;
    const std::optional<double> scale = ScaleOf(loops);
    if (!scale) {
        fill.result = FillResult::TooLarge;
        return fill;
    }
    std::vector<FlatLoop> scaled = loops;
    for (FlatLoop& loop : scaled)
        for (FlatPoint& point : loop)
            point = {point.x * *scale, point.y * *scale};
    Outlines outlines(scaled);
    if (outlines.CornerCount() == 0)
        return fill;
    const std::size_t allowed = std::min(work, kMaxFillWork);
    std::size_t left = allowed;
    fill.result = Examine(outlines, max_crossings.value_or(4 * outlines.CornerCount() + 1000), left);
    work -= allowed - left;
    if (fill.result != FillResult::Filled)
        return fill;
    if (!Tessellation(scaled).Run(outlines.Crossings(), fill))
        fill.result = FillResult::Crossing;
    for (AddedCorner& corner : fill.added)
        corner.point = {corner.point.x / *scale, corner.point.y / *scale};
    return fill;
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
