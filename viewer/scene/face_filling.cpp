#include "viewer/scene/face_filling.h"

#include "viewer/scene/polygon_fill.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace viewer
{

namespace
{

constexpr std::size_t kMinCorners = 3;

/// The corners in the plane of the face, seen from the side that its normal points to, scaled to lengths of
/// about 1. The coordinate that changes least is dropped, so that corners in one line stay in one line.
FlatLoop Flatten(const ModelFace& face)
{
    const Point& origin = face.corners.front();
    double reach = 0.0;
    for (const Point& corner : face.corners) {
        const Point arm = corner - origin;
        reach = std::max({reach, std::abs(arm.x), std::abs(arm.y), std::abs(arm.z)});
    }
    const Point& normal = face.normal;
    const Point sizes{std::abs(normal.x), std::abs(normal.y), std::abs(normal.z)};
    FlatLoop flat;
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
bool IsConvex(const FlatLoop& outline)
{
    double total_turn = 0.0;
    const std::size_t count = outline.size();
    for (std::size_t i = 0; i < count; ++i) {
        const FlatPoint& a = outline[i];
        const FlatPoint& b = outline[(i + 1) % count];
        const FlatPoint& c = outline[(i + 2) % count];
        // Above 0 where the outline turns to the right.
        const double cross = (b.y - a.y) * (c.x - b.x) - (b.x - a.x) * (c.y - b.y);
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

/// The limits for one face.
constexpr std::size_t kMaxCrossings = 1000;
constexpr std::size_t kMaxCorners = 20'000;

/// The budget of a model.
constexpr std::size_t kMaxFillingWork = 10 * kMaxFillWork;

/// The corners of the face, followed by the added ones in space.
std::vector<Point> CornersInSpace(std::vector<Point> corners, const std::vector<AddedCorner>& added)
{
    for (const AddedCorner& corner : added) {
        Point point;
        double sum = 0.0;
        for (std::size_t i = 0; i < corner.count; ++i) {
            point = point + corners[corner.from.at(i)] * corner.weights.at(i);
            sum += corner.weights.at(i);
        }
        corners.push_back(point * (1.0 / sum));
    }
    return corners;
}

/// Fills the faces of one piece.
class Filling
{
  public:
    /// `work` is reduced by the steps.
    Filling(std::vector<ModelFace>& faces, std::size_t& work) : source_(faces), work_(work) {}

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
        const FlatLoop flat = Flatten(face);
        if (IsConvex(flat))
            return AddFan(std::move(face));
        if (flat.size() > kMaxCorners) {
            ++large_;
            return;
        }
        const PolygonFill fill = FillLoops({flat}, work_, kMaxCrossings);
        large_ += fill.result == FillResult::TooLarge ? 1 : 0;
        crossing_ += fill.result == FillResult::Crossing ? 1 : 0;
        const std::vector<Point> corners = CornersInSpace(std::move(face.corners), fill.added);
        for (const FlatTriangle& triangle : fill.triangles)
            AddTriangle({corners[triangle[2]], corners[triangle[1]], corners[triangle[0]]}, face.normal);
    }

    void AddTriangle(const std::array<Point, 3>& corners, const Point& normal)
    {
        // Corners at one place leave an edge to and fro.
        if (corners[0] != corners[1] && corners[1] != corners[2] && corners[2] != corners[0])
            Add({corners.begin(), corners.end()}, normal);
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
    std::size_t& work_;
    std::size_t crossing_ = 0;
    std::size_t large_ = 0;
    bool has_begun_ = false; ///< the face of the file has a part already
    bool continues_ = false; ///< the next part continues a face
};

} // namespace

void FillFaces(Model& model)
{
    std::size_t work = kMaxFillingWork;
    for (Piece& piece : model.pieces)
        Filling(piece.faces, work).Run(model);
}

} // namespace viewer
