#include "viewer/scene/face_filling.h"

#include "platform/winsys/opengl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <numeric>
#include <optional>
#include <utility>

namespace viewer
{

namespace
{

constexpr std::size_t kMinCorners = 3;

/// A corner in the plane of its face, scaled to lengths of about 1.
struct FlatPoint {
    double x = 0.0;
    double y = 0.0;

    bool operator==(const FlatPoint&) const = default;
};

/// Twice the area of the triangle; positive where it runs counter-clockwise.
double Area(const FlatPoint& a, const FlatPoint& b, const FlatPoint& c)
{
    return (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
}

/// The corners in the plane of the face, seen from the side that its normal points to. The coordinate that
/// changes least is dropped, so that corners in one line stay in one line.
std::vector<FlatPoint> Flatten(const ModelFace& face)
{
    const Point& origin = face.corners.front();
    double reach = 0.0;
    for (const Point& corner : face.corners) {
        const Point arm = corner - origin;
        reach = std::max({reach, std::abs(arm.x), std::abs(arm.y), std::abs(arm.z)});
    }
    const Point& normal = face.normal;
    const Point sizes{std::abs(normal.x), std::abs(normal.y), std::abs(normal.z)};
    std::vector<FlatPoint> flat;
    flat.reserve(face.corners.size());
    for (const Point& corner : face.corners) {
        const Point arm = (corner - origin) * (reach > 0.0 ? 1.0 / reach : 0.0);
        if (sizes.z >= sizes.x && sizes.z >= sizes.y)
            flat.push_back(normal.z > 0.0 ? FlatPoint{arm.x, arm.y} : FlatPoint{arm.y, arm.x});
        else if (sizes.x >= sizes.y)
            flat.push_back(normal.x > 0.0 ? FlatPoint{arm.y, arm.z} : FlatPoint{arm.z, arm.y});
        else
            flat.push_back(normal.y > 0.0 ? FlatPoint{arm.z, arm.x} : FlatPoint{arm.x, arm.z});
    }
    return flat;
}

/// Whether a fan from the first corner fills the outline, which runs clockwise. The modeler draws the same
/// line between convex and concave.
bool IsConvex(const std::vector<FlatPoint>& outline)
{
    double total_turn = 0.0;
    const std::size_t count = outline.size();
    for (std::size_t i = 0; i < count; ++i) {
        const FlatPoint& a = outline[i];
        const FlatPoint& b = outline[(i + 1) % count];
        const FlatPoint& c = outline[(i + 2) % count];
        const double cross = -Area(a, b, c);
        const double dot = (b.x - a.x) * (c.x - b.x) + (b.y - a.y) * (c.y - b.y);
        // An angle that does not show, because corners are drawn in single precision.
        constexpr double kStraight = 1e-6;
        if (cross < -kStraight * std::hypot(cross, dot))
            return false;
        total_turn += std::atan2(cross, dot);
    }
    // An outline that goes around more than once turns to one side everywhere, too.
    return total_turn < 3.0 * std::numbers::pi;
}

/// Counts the crossings of an outline with itself, up to a limit.
class CrossingCount
{
  public:
    explicit CrossingCount(const std::vector<FlatPoint>& outline) : outline_(outline) {}

    /// The number of pairs of edges that cross or overlap; no value if there are more than `max`.
    [[nodiscard]] std::optional<std::size_t> UpTo(std::size_t max)
    {
        std::vector<std::size_t> order(outline_.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::ranges::sort(order, {}, [&](std::size_t edge) { return MinX(edge); });
        // Edges whose range of x has begun and may not have ended.
        std::vector<std::size_t> open;
        std::size_t crossings = 0;
        for (const std::size_t edge : order) {
            std::erase_if(open, [&](std::size_t other) { return MaxX(other) < MinX(edge); });
            for (const std::size_t other : open)
                crossings += Meet(edge, other) ? 1 : 0;
            if (crossings > max)
                return std::nullopt;
            open.push_back(edge);
        }
        return crossings;
    }

  private:
    [[nodiscard]] const FlatPoint& From(std::size_t edge) const { return outline_[edge]; }
    [[nodiscard]] const FlatPoint& To(std::size_t edge) const
    {
        return outline_[edge + 1 < outline_.size() ? edge + 1 : 0];
    }
    [[nodiscard]] double MinX(std::size_t edge) const { return std::min(From(edge).x, To(edge).x); }
    [[nodiscard]] double MaxX(std::size_t edge) const { return std::max(From(edge).x, To(edge).x); }

    /// Whether the edges cross within both of them, or lie on each other.
    [[nodiscard]] bool Meet(std::size_t one, std::size_t other) const
    {
        const FlatPoint& a = From(one);
        const FlatPoint& b = To(one);
        const FlatPoint& c = From(other);
        const FlatPoint& d = To(other);
        if (std::max(a.y, b.y) < std::min(c.y, d.y) || std::max(c.y, d.y) < std::min(a.y, b.y))
            return false;
        if (a == d && b == c)
            return true;
        if (a == c || a == d || b == c || b == d)
            return a == c && b == d;
        const double of_c = Area(a, b, c);
        const double of_d = Area(a, b, d);
        const double of_a = Area(c, d, a);
        const double of_b = Area(c, d, b);
        return of_c * of_d <= 0.0 && of_a * of_b <= 0.0;
    }

    const std::vector<FlatPoint>& outline_;
};

/// The crossings that are counted, and the corners that the tessellator may add.
constexpr std::size_t kMaxCrossings = 1000;

/// One run of the GLU tessellator over one outline, which calls back with the corners of triangles.
class Triangulation
{
  public:
    Triangulation(const std::vector<Point>& corners, const std::vector<FlatPoint>& flat)
    {
        // Never resized while the tessellator runs: it keeps pointers to them. Callbacks must not throw.
        corners_.reserve(corners.size() + 4 * kMaxCrossings);
        for (std::size_t i = 0; i < corners.size(); ++i)
            corners_.push_back({{flat[i].x, flat[i].y, 0.0}, corners[i]});
        // An outline of n corners has n - 2 triangles; each corner that is added gives two more.
        found_.reserve(3 * (corners.size() + 8 * kMaxCrossings));
    }

    /// Three corners for each triangle, counter-clockwise; no value if the outline cannot be filled.
    [[nodiscard]] std::optional<std::vector<Point>> Run()
    {
        const std::unique_ptr<GLUtesselator, Deleter> tessellator(gluNewTess());
        if (!tessellator)
            return std::nullopt;
        Tessellate(tessellator.get());
        if (has_failed_ || found_.size() % 3 != 0)
            return std::nullopt;
        std::vector<Point> triangles;
        triangles.reserve(found_.size());
        for (const Corner* corner : found_)
            triangles.push_back(corner->point);
        return triangles;
    }

  private:
    struct Deleter {
        void operator()(GLUtesselator* tessellator) const { gluDeleteTess(tessellator); }
    };
    struct Corner {
        std::array<GLdouble, 3> place;
        Point point;
    };

    void Tessellate(GLUtesselator* tessellator)
    {
        const auto set_callback = [&](GLenum which, auto* callback) {
            gluTessCallback(tessellator, which, reinterpret_cast<GluTessCallback>(callback));
        };
        set_callback(GLU_TESS_VERTEX_DATA, &OnVertex);
        // With an edge-flag callback the tessellator makes no fans and strips.
        set_callback(GLU_TESS_EDGE_FLAG_DATA, &OnEdgeFlag);
        set_callback(GLU_TESS_COMBINE_DATA, &OnCombine);
        set_callback(GLU_TESS_ERROR_DATA, &OnError);
        gluTessNormal(tessellator, 0.0, 0.0, 1.0);
        gluTessBeginPolygon(tessellator, this);
        gluTessBeginContour(tessellator);
        const std::size_t count = corners_.size();
        for (std::size_t i = 0; i < count; ++i)
            gluTessVertex(tessellator, corners_[i].place.data(), &corners_[i]);
        gluTessEndContour(tessellator);
        gluTessEndPolygon(tessellator);
    }

    static void CALLBACK OnVertex(void* corner, void* self)
    {
        auto* const run = static_cast<Triangulation*>(self);
        if (corner == nullptr || run->found_.size() == run->found_.capacity())
            run->has_failed_ = true;
        else
            run->found_.push_back(static_cast<const Corner*>(corner));
    }
    static void CALLBACK OnEdgeFlag(GLboolean /*flag*/, void* /*self*/) {}
    static void CALLBACK OnError(GLenum /*error*/, void* self)
    {
        static_cast<Triangulation*>(self)->has_failed_ = true;
    }

    /// Gives the corner where edges cross, or where corners are at the same place, from up to four corners.
    static void CALLBACK OnCombine(const GLdouble* place, void** from, const GLfloat* weights, void** result,
                                   void* self)
    {
        auto* const run = static_cast<Triangulation*>(self);
        Point point;
        double sum = 0.0;
        for (std::size_t i = 0; i < 4; ++i) {
            auto* const corner = static_cast<Corner*>(from[i]);
            if (corner == nullptr)
                continue;
            if (corner->place[0] == place[0] && corner->place[1] == place[1]) {
                *result = corner;
                return;
            }
            point = point + corner->point * static_cast<double>(weights[i]);
            sum += static_cast<double>(weights[i]);
        }
        if (run->corners_.size() == run->corners_.capacity() || !(sum > 0.0)) {
            run->has_failed_ = true;
            *result = from[0];
            return;
        }
        run->corners_.push_back({{place[0], place[1], 0.0}, point * (1.0 / sum)});
        *result = &run->corners_.back();
    }

    std::vector<Corner> corners_;
    std::vector<const Corner*> found_;
    bool has_failed_ = false;
};

/// Limits the time for all faces of a model, because the tessellator takes time in proportion to the square of
/// the corners of a face.
class FillingBudget
{
  public:
    /// Whether there is time for another face.
    bool Take(std::size_t corners)
    {
        const std::size_t work = corners * corners;
        if (corners > kMaxCorners || work > left_)
            return false;
        left_ -= work;
        return true;
    }

  private:
    static constexpr std::size_t kMaxCorners = 20'000;
    /// About half a minute.
    std::size_t left_ = 2'000'000'000;
};

/// Fills the faces of one piece.
class Filling
{
  public:
    Filling(std::vector<ModelFace>& faces, FillingBudget& budget) : source_(faces), budget_(budget) {}

    void Run(Model& model)
    {
        if (std::ranges::none_of(source_, &MustBeExamined))
            return;
        filled_.reserve(source_.size());
        for (ModelFace& face : source_)
            Fill(std::move(face));
        source_ = std::move(filled_);
        model.LeaveOut(kCrossingFace, crossing_);
        model.LeaveOut(kLargeFace, large_);
    }

  private:
    static bool MustBeExamined(const ModelFace& face) { return face.corners.size() > kMinCorners; }

    void Fill(ModelFace face)
    {
        // A part whose face has lost its first part begins the face.
        continues_ = face.continues && has_begun_;
        has_begun_ = continues_;
        if (!MustBeExamined(face))
            return Add(std::move(face.corners), face.normal);
        const std::vector<FlatPoint> flat = Flatten(face);
        if (IsConvex(flat))
            return AddFan(std::move(face));
        if (!budget_.Take(flat.size())) {
            ++large_;
            return;
        }
        const auto triangles =
            CrossingCount(flat).UpTo(kMaxCrossings) ? Triangulation(face.corners, flat).Run() : std::nullopt;
        if (!triangles) {
            ++crossing_;
            return;
        }
        for (std::size_t i = 0; i < triangles->size(); i += 3) {
            const std::array<Point, 3> corners{(*triangles)[i + 2], (*triangles)[i + 1], (*triangles)[i]};
            // Corners at one place leave an edge to and fro.
            if (corners[0] != corners[1] && corners[1] != corners[2] && corners[2] != corners[0])
                Add({corners.begin(), corners.end()}, face.normal);
        }
    }

    /// Cuts a convex face by diagonals from its first corner.
    void AddFan(ModelFace face)
    {
        const std::size_t count = face.corners.size();
        if (count <= kMaxPartCorners)
            return Add(std::move(face.corners), face.normal);
        for (std::size_t first = 1; first + 1 < count; first += kMaxPartCorners - 2) {
            const std::size_t end = std::min(count, first + kMaxPartCorners - 1);
            std::vector<Point> part{face.corners.front()};
            part.insert(part.end(), face.corners.begin() + static_cast<std::ptrdiff_t>(first),
                        face.corners.begin() + static_cast<std::ptrdiff_t>(end));
            Add(std::move(part), face.normal);
        }
    }

    void Add(std::vector<Point> corners, const Point& normal)
    {
        filled_.push_back({std::move(corners), normal, continues_});
        continues_ = true;
        has_begun_ = true;
    }

    std::vector<ModelFace>& source_;
    std::vector<ModelFace> filled_;
    FillingBudget& budget_;
    std::size_t crossing_ = 0;
    std::size_t large_ = 0;
    bool has_begun_ = false; ///< the face of the file has a part already
    bool continues_ = false; ///< the next part continues a face
};

} // namespace

void FillFaces(Model& model)
{
    FillingBudget budget;
    for (Piece& piece : model.pieces)
        Filling(piece.faces, budget).Run(model);
}

} // namespace viewer
