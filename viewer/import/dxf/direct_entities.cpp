#include "viewer/import/dxf/direct_entities.h"

#include "viewer/import/dxf/extrusion_frame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace viewer
{

namespace
{

using Shape = decltype(DxfEntity::shape);

DirectShapes PointShapes(const DxfEntityNumbers& numbers, const Affine& frame)
{
    DxfPoint point;
    // NOTE: The angle of the mark is stored clockwise, and the point itself is not in the frame.
    point.frame = frame * RotationAboutZ(-numbers.FirstOr(50, 0.0));
    point.frame.origin = numbers.PointOf(10);
    point.by = frame.z * numbers.FirstOr(39, 0.0);
    return {{point}, {}, {}};
}

DirectShapes InfiniteShapes(const DxfEntityNumbers& numbers, bool is_ray)
{
    const DxfInfiniteLine line{numbers.PointOf(10), numbers.PointOf(11), is_ray};
    if (line.direction == Point{})
        return {{}, {}, std::string(is_ray ? "RAY" : "XLINE") + " without direction"};
    return {{line}, {}, {}};
}

/// The helix around an axis whose radius changes evenly.
std::optional<Spline> HelixOfParameters(const DxfEntityNumbers& numbers)
{
    constexpr double kMaxTurns = 10000.0;
    constexpr double kPointsPerTurn = 24.0;
    const Point base = numbers.PointOf(10);
    const Point start = numbers.PointOf(11);
    const double radius = numbers.FirstOr(40, 0.0); // at the top
    const double turns = numbers.FirstOr(41, 0.0);
    const double height = numbers.FirstOr(42, 0.0);
    const double handedness = numbers.FirstOr(290, 1.0);
    Point axis = numbers.PointOf(12);
    if (Length(axis) == 0.0 || !(turns > 0.0) || turns > kMaxTurns)
        return std::nullopt;
    axis = axis * (1.0 / Length(axis));
    Point spoke = start - base;
    spoke = spoke - axis * Dot(spoke, axis);
    const double start_radius = Length(spoke);
    const Point out = start_radius > 0.0 ? spoke * (1.0 / start_radius) : FrameOfExtrusion(axis).x;
    const Point side = Cross(axis, out) * (handedness == 0.0 ? -1.0 : 1.0);
    const auto steps = static_cast<int>(std::ceil(turns * kPointsPerTurn));
    std::vector<Point> points;
    for (int step = 0; step <= steps; ++step) {
        const double share = static_cast<double>(step) / steps;
        const double turn = turns * share;
        const double reach = start_radius + (radius - start_radius) * share;
        points.push_back(base + axis * (height * turn) +
                         (out * std::cos(kFullTurn * turn) + side * std::sin(kFullTurn * turn)) * reach);
    }
    Spline spline = SplineThrough(std::move(points), {}, {}, false);
    return FaultOf(spline) == nullptr ? std::optional(std::move(spline)) : std::nullopt;
}

/// A helix is stored as a spline, which is followed by its own parameters.
DirectShapes HelixShapes(const DxfEntityNumbers& numbers)
{
    const DxfEntityNumbers parameters = numbers.LastSubclass();
    DxfEntityNumbers curve;
    curve.all.assign(numbers.all.begin(),
                     numbers.all.end() - static_cast<std::ptrdiff_t>(parameters.all.size()));
    Spline spline;
    spline.degree = curve.IntegerOr(71, 3);
    spline.points = curve.PointsOf(10);
    spline.knots = curve.AllOf(40);
    spline.weights = curve.AllOf(41);
    if (spline.weights.size() != spline.points.size())
        spline.weights.clear();
    CompleteKnots(spline, false);
    if (FaultOf(spline) == nullptr)
        return {{std::move(spline)}, {}, {}};
    if (auto made = HelixOfParameters(parameters))
        return {{std::move(*made)}, {}, {}};
    return {{}, {}, "HELIX without a curve"};
}

/// Two axes of the plane in which the corners lie.
std::pair<Point, Point> PlaneOf(const std::vector<Point>& corners)
{
    Point normal;
    for (std::size_t i = 0; i + 2 < corners.size(); ++i)
        normal = normal + Cross(corners[i + 1] - corners[0], corners[i + 2] - corners[0]);
    const Affine frame = FrameOfExtrusion(normal);
    return {frame.x, frame.y};
}

/// Appends the triangles of a polygon of more than four corners. Edges inside the polygon are hidden.
/// `work` is reduced by the steps.
void AppendPolygon(const std::vector<Point>& corners, std::size_t& work, DxfMesh& mesh)
{
    const auto [x, y] = PlaneOf(corners);
    FlatLoop loop;
    for (const Point& corner : corners)
        loop.push_back({Dot(corner - corners[0], x), Dot(corner - corners[0], y)});
    const PolygonFill fill = FillLoops({loop}, work);
    const auto add = [&](const FlatTriangle& triangle) {
        DxfFace& face = mesh.emplace_back();
        face.count = 3;
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t next = triangle.at((i + 1) % 3);
            face.corners.at(i) = corners[triangle.at(i)];
            face.hidden_edges.at(i) = (triangle.at(i) + 1) % corners.size() != next &&
                                      (next + 1) % corners.size() != triangle.at(i);
        }
    };
    if (fill.result == FillResult::Filled && fill.added.empty())
        std::for_each(fill.triangles.begin(), fill.triangles.end(), add);
    else // It crosses itself, takes too much work, or has coordinates that overflow and are refused later.
        for (std::size_t i = 1; i + 1 < corners.size(); ++i)
            add({0, i, i + 1});
}

/// The groups of a subdivision mesh: counts and lists in a fixed order.
class MeshReader
{
  public:
    /// `work` is reduced by the steps.
    MeshReader(const DxfEntityNumbers& numbers, std::size_t& work) : numbers_(numbers), work_(work) {}

    DirectShapes Read()
    {
        std::size_t next = 0;
        const auto find = [&](int code) {
            while (next < numbers_.all.size() && numbers_.all[next].code != code)
                ++next;
            return next < numbers_.all.size();
        };
        vertices_ = numbers_.PointsOf(10);
        if (!find(92) || !find(93))
            return {{}, {}, "MESH without faces"};
        std::vector<std::size_t> face;
        std::size_t left = 0;
        for (++next; next < numbers_.all.size() && numbers_.all[next].code == 90; ++next) {
            const double value = numbers_.all[next].value;
            if (left == 0) {
                left = value > 0.0 ? static_cast<std::size_t>(value) : 0;
                face.clear();
                continue;
            }
            face.push_back(value >= 0.0 ? static_cast<std::size_t>(value) : vertices_.size());
            if (--left == 0 && !Add(face))
                return {{}, {}, "MESH with a face of missing vertices"};
        }
        if (mesh_.empty())
            return {{}, {}, "MESH without faces"};
        return {{std::move(mesh_)}, {}, {}};
    }

  private:
    bool Add(const std::vector<std::size_t>& face)
    {
        std::vector<Point> corners;
        for (const std::size_t index : face) {
            if (index >= vertices_.size())
                return false;
            corners.push_back(vertices_[index]);
        }
        if (corners.size() > 4) {
            AppendPolygon(corners, work_, mesh_);
        } else if (corners.size() > 2) {
            DxfFace& made = mesh_.emplace_back();
            made.count = corners.size();
            std::copy(corners.begin(), corners.end(), made.corners.begin());
        }
        return true;
    }

    const DxfEntityNumbers& numbers_;
    std::vector<Point> vertices_;
    DxfMesh mesh_;
    std::size_t& work_;
};

DirectShapes HatchShapes(const DxfEntityNumbers& numbers, const Affine& frame)
{
    DxfHatch hatch = HatchOf(numbers, frame);
    if (hatch.paths.empty())
        return {{}, {}, "HATCH without boundary"};
    if (!hatch.is_solid && hatch.pattern.empty())
        return {{}, {}, "HATCH without pattern"};
    // A gradient gets its first colour.
    const bool is_gradient = numbers.IntegerOr(450, 0) != 0;
    const int color24 = numbers.IntegerOr(421, -1);
    return {{std::move(hatch)}, is_gradient && color24 >= 0 ? std::optional(color24) : std::nullopt, {}};
}

/// The frame of an image, by its size in pixels and the vectors of one pixel. The image itself is left out.
DirectShapes ImageShapes(const DxfEntityNumbers& numbers)
{
    const Point corner = numbers.PointOf(10);
    const Point right = numbers.PointOf(11) * numbers.FirstOr(13, 0.0);
    const Point up = numbers.PointOf(12) * numbers.FirstOr(23, 0.0);
    return {{Segment{corner, corner + right}, Segment{corner + right, corner + right + up},
             Segment{corner + right + up, corner + up}, Segment{corner + up, corner}},
            {},
            "IMAGE (only its frame is drawn)"};
}

} // namespace

bool IsReadDirectly(std::string_view kind)
{
    constexpr std::array<std::string_view, 7> kKinds{"POINT", "XLINE", "RAY",  "HELIX",
                                                     "MESH",  "HATCH", "IMAGE"};
    return std::find(kKinds.begin(), kKinds.end(), kind) != kKinds.end();
}

DirectShapes ShapesOfEntity(std::string_view kind, const DxfEntityNumbers& numbers, const Affine& frame,
                            std::size_t& work)
{
    if (kind == "POINT")
        return PointShapes(numbers, frame);
    if (kind == "XLINE" || kind == "RAY")
        return InfiniteShapes(numbers, kind == "RAY");
    if (kind == "HELIX")
        return HelixShapes(numbers);
    if (kind == "MESH")
        return MeshReader(numbers, work).Read();
    if (kind == "IMAGE")
        return ImageShapes(numbers);
    return HatchShapes(numbers, frame);
}

} // namespace viewer
