#include "viewer/import/dxf/hatch.h"

#include "viewer/scene/polygon_fill.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace viewer
{

namespace
{

/// The parameter of an ellipse's point at this angle from the major axis.
double ParameterOf(double angle, double ratio)
{
    const double parameter = std::atan2(std::sin(angle), std::cos(angle) * ratio);
    // Keep the turn, which the arctangent loses.
    return parameter + std::round((angle - parameter) / kFullTurn) * kFullTurn;
}

/// Reads the groups of a hatch. Their codes have different meanings in the kinds of edges, in the pattern and
/// outside.
class HatchReader
{
  public:
    explicit HatchReader(const Affine& frame) { hatch_.frame = frame; }

    DxfHatch Read(const DxfEntityNumbers& numbers)
    {
        hatch_.elevation = numbers.FirstOr(30, 0.0);
        for (const DxfNumber& number : numbers.all)
            Take(number);
        EndPath();
        hatch_.is_solid = numbers.IntegerOr(70, 0) != 0 || numbers.IntegerOr(450, 0) != 0;
        const int style = numbers.IntegerOr(75, 0);
        if (style == 1)
            hatch_.style = DxfHatch::Style::Outermost;
        else if (style == 2)
            hatch_.style = DxfHatch::Style::IgnoreIslands;
        return std::move(hatch_);
    }

  private:
    enum class Part { Head, Polyline, Edges, Pattern };
    enum class Kind { None, Line, Arc, Ellipse, Spline };

    void Take(const DxfNumber& number)
    {
        if (number.code == 92) {
            EndPath();
            part_ = (static_cast<std::int64_t>(number.value) & 2) != 0 ? Part::Polyline : Part::Edges;
        } else if ((number.code == 75 || number.code == 76 || number.code == 98) && part_ != Part::Pattern) {
            EndPath();
            part_ = Part::Pattern;
        } else if (part_ == Part::Polyline) {
            TakeOfPolyline(number);
        } else if (part_ == Part::Edges && number.code == 72) {
            EndEdge();
            constexpr std::array kKinds{Kind::None, Kind::Line, Kind::Arc, Kind::Ellipse, Kind::Spline};
            kind_ = number.value >= 1.0 && number.value < 5.0
                        ? kKinds.at(static_cast<std::size_t>(number.value))
                        : Kind::None;
        } else if (part_ == Part::Edges) {
            edge_.all.push_back(number);
        } else if (part_ == Part::Pattern) {
            TakeOfPattern(number);
        }
    }

    void TakeOfPolyline(const DxfNumber& number)
    {
        if (number.code == 10)
            vertices_.push_back({{number.value, 0.0, hatch_.elevation}, 0.0});
        else if (number.code == 20 && !vertices_.empty())
            vertices_.back().point.y = number.value;
        else if (number.code == 42 && !vertices_.empty())
            vertices_.back().bulge = number.value;
    }

    void TakeOfPattern(const DxfNumber& number)
    {
        std::vector<DxfHatch::PatternLine>& pattern = hatch_.pattern;
        if (number.code == 53)
            pattern.emplace_back().direction = {std::cos(Radians(number.value)),
                                                std::sin(Radians(number.value)), 0.0};
        if (pattern.empty())
            return;
        DxfHatch::PatternLine& line = pattern.back();
        if (number.code == 43)
            line.base.x = number.value;
        else if (number.code == 44)
            line.base.y = number.value;
        else if (number.code == 45)
            line.offset.x = number.value;
        else if (number.code == 46)
            line.offset.y = number.value;
        else if (number.code == 49)
            line.dashes.push_back(number.value);
    }

    void EndPath()
    {
        EndEdge();
        for (std::size_t i = 0; i < vertices_.size(); ++i) {
            const auto& [from, bulge] = vertices_[i];
            const Point& to = vertices_[(i + 1) % vertices_.size()].point;
            if (const auto arc = ArcOfBulge(from, to, bulge))
                path_.emplace_back(*arc);
            else
                path_.emplace_back(Segment{from, to});
        }
        vertices_.clear();
        if (!path_.empty())
            hatch_.paths.push_back(std::move(path_));
        path_.clear();
    }

    void EndEdge()
    {
        if (kind_ == Kind::Line)
            path_.emplace_back(Segment{At(edge_.PointOf(10)), At(edge_.PointOf(11))});
        else if (kind_ == Kind::Arc)
            AddArc({edge_.FirstOr(40, 0.0), 0.0, 0.0}, 1.0);
        else if (kind_ == Kind::Ellipse)
            AddArc(edge_.PointOf(11), edge_.FirstOr(40, 1.0));
        else if (kind_ == Kind::Spline)
            AddSpline();
        kind_ = Kind::None;
        edge_.all.clear();
    }

    void AddArc(Point major, double ratio)
    {
        major.z = 0.0;
        ratio = std::abs(ratio);
        // NOTE: The angles of a clockwise arc are negated.
        const bool is_clockwise = edge_.IntegerOr(73, 1) == 0;
        double start = Radians(is_clockwise ? -edge_.FirstOr(51, 360.0) : edge_.FirstOr(50, 0.0));
        double end = Radians(is_clockwise ? -edge_.FirstOr(50, 0.0) : edge_.FirstOr(51, 360.0));
        if (ratio != 1.0 && ratio > 0.0) {
            start = ParameterOf(start, ratio);
            end = ParameterOf(end, ratio);
        }
        path_.emplace_back(EllipticArc{At(edge_.PointOf(10)), major, Point{-major.y, major.x, 0.0} * ratio,
                                       start, SweepBetween(start, end)});
    }

    void AddSpline()
    {
        Spline spline;
        spline.degree = edge_.IntegerOr(94, 3);
        spline.knots = edge_.AllOf(40);
        for (const Point& point : edge_.PointsOf(10))
            spline.points.push_back(At(point));
        spline.weights = edge_.AllOf(42);
        if (spline.weights.size() != spline.points.size())
            spline.weights.clear();
        if (spline.points.empty()) {
            std::vector<Point> fit_points;
            for (const Point& point : edge_.PointsOf(11))
                fit_points.push_back(At(point));
            spline = SplineThrough(std::move(fit_points), {}, {}, false);
        }
        CompleteKnots(spline, edge_.IntegerOr(74, 0) != 0);
        if (FaultOf(spline) == nullptr)
            path_.emplace_back(std::move(spline));
    }

    [[nodiscard]] Point At(const Point& point) const { return {point.x, point.y, hatch_.elevation}; }

    struct Vertex {
        Point point;
        double bulge = 0.0;
    };

    DxfHatch hatch_;
    Part part_ = Part::Head;
    Kind kind_ = Kind::None;
    std::vector<Vertex> vertices_;
    DxfEntityNumbers edge_;
    DxfHatch::Path path_;
};

FlatPoint Flat(const Point& point)
{
    return {point.x, point.y};
}

double Distance(const FlatPoint& a, const FlatPoint& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// The corners of an edge, cut within the tolerance.
FlatLoop CornersOf(const DxfHatch::Edge& edge, double tolerance)
{
    std::vector<Segment> segments;
    if (const auto* line = std::get_if<Segment>(&edge))
        segments.push_back(*line);
    else if (const auto* arc = std::get_if<EllipticArc>(&edge))
        CutArc(*arc, tolerance, segments);
    else if (const auto* spline = std::get_if<Spline>(&edge))
        CutSpline(*spline, tolerance, segments);
    FlatLoop corners;
    for (const Segment& segment : segments) {
        if (corners.empty())
            corners.push_back(Flat(segment.from));
        corners.push_back(Flat(segment.to));
    }
    return corners;
}

/// Appends an edge at the end that is closer to the end of the loop. Files state edges in either direction.
void AppendEdge(FlatLoop corners, bool is_second, FlatLoop& loop)
{
    if (corners.empty())
        return;
    if (!loop.empty()) {
        const auto gap = [&](const FlatPoint& point) {
            return std::min(Distance(point, corners.front()), Distance(point, corners.back()));
        };
        if (is_second && gap(loop.front()) < gap(loop.back()))
            std::reverse(loop.begin(), loop.end());
        if (Distance(loop.back(), corners.back()) < Distance(loop.back(), corners.front()))
            std::reverse(corners.begin(), corners.end());
    }
    for (const FlatPoint& corner : corners)
        if (loop.empty() || loop.back() != corner)
            loop.push_back(corner);
}

std::vector<FlatLoop> LoopsOf(const DxfHatch& hatch, double tolerance)
{
    std::vector<FlatLoop> loops;
    for (const DxfHatch::Path& path : hatch.paths) {
        FlatLoop loop;
        for (std::size_t i = 0; i < path.size(); ++i)
            AppendEdge(CornersOf(path[i], tolerance), i == 1, loop);
        while (loop.size() > 1 && loop.front() == loop.back())
            loop.pop_back();
        if (loop.size() > 2)
            loops.push_back(std::move(loop));
    }
    return loops;
}

/// Whether most of a few points of the loop lie inside the other one.
bool LiesIn(const FlatLoop& loop, const FlatLoop& other)
{
    constexpr std::size_t kProbes = 5;
    int inside = 0;
    for (std::size_t i = 0; i < kProbes; ++i) {
        const std::size_t corner = loop.size() * i / kProbes;
        const FlatPoint& a = loop[corner];
        const FlatPoint& b = loop[(corner + 1) % loop.size()];
        inside += IsInside({(a.x + b.x) / 2.0, (a.y + b.y) / 2.0}, other) ? 1 : -1;
    }
    return inside > 0;
}

/// Drops the loops that are nested deeper than the style considers. Returns false if `work` is used up.
bool ApplyStyle(DxfHatch::Style style, std::size_t& work, std::vector<FlatLoop>& loops)
{
    if (style == DxfHatch::Style::OddEven || loops.size() < 2)
        return true;
    std::size_t corners = 0;
    for (const FlatLoop& loop : loops)
        corners += loop.size();
    if (work / loops.size() < 5 * corners)
        return false;
    work -= 5 * corners * loops.size();
    const int max_depth = style == DxfHatch::Style::Outermost ? 1 : 0;
    std::vector<FlatLoop> kept;
    for (const FlatLoop& loop : loops) {
        int depth = 0;
        for (const FlatLoop& other : loops)
            depth += &other != &loop && LiesIn(loop, other) ? 1 : 0;
        if (depth <= max_depth)
            kept.push_back(loop);
    }
    loops = std::move(kept);
    return true;
}

/// Where a line of the pattern crosses an outline.
struct Crossing {
    std::int64_t line = 0; ///< number of the line
    double along = 0.0;    ///< in the direction of the line, from the start of its dashes

    auto operator<=>(const Crossing&) const = default;
};

/// The lines of one part of a pattern, clipped to loops by the odd-even rule.
class PatternClipper
{
  public:
    PatternClipper(const DxfHatch::PatternLine& line, double dot_length, std::size_t max_lines)
        : line_(line), dot_length_(dot_length), max_lines_(max_lines)
    {
    }

    /// Returns false if there are more than `max_lines`.
    bool Clip(const std::vector<FlatLoop>& loops, std::vector<std::pair<FlatPoint, FlatPoint>>& pieces)
    {
        const double spacing = Across(line_.offset.x, line_.offset.y);
        if (spacing == 0.0 || !std::isfinite(1.0 / spacing))
            return true;
        for (const FlatLoop& loop : loops)
            for (std::size_t i = 0; i < loop.size(); ++i)
                if (!Cross(loop[i], loop[(i + 1) % loop.size()], spacing))
                    return false;
        std::sort(crossings_.begin(), crossings_.end());
        for (std::size_t i = 0; i + 1 < crossings_.size(); i += 2)
            if (crossings_[i].line == crossings_[i + 1].line &&
                !Dash(crossings_[i].line, crossings_[i].along, crossings_[i + 1].along, pieces))
                return false;
        return true;
    }

  private:
    [[nodiscard]] double Across(double x, double y) const
    {
        return line_.direction.x * y - line_.direction.y * x;
    }
    [[nodiscard]] double Along(double x, double y) const
    {
        return line_.direction.x * x + line_.direction.y * y;
    }

    /// Adds the crossings of all lines with an edge. An edge contains the lower one of its ends only, so that
    /// every line crosses a loop an even number of times.
    bool Cross(const FlatPoint& from, const FlatPoint& to, double spacing)
    {
        const double first = Across(from.x - line_.base.x, from.y - line_.base.y) / spacing;
        const double last = Across(to.x - line_.base.x, to.y - line_.base.y) / spacing;
        const double low = std::ceil(std::min(first, last));
        const double high = std::ceil(std::max(first, last));
        // Larger whole numbers and fractions between them are not distinct.
        constexpr double kMaxNumber = 1e15;
        if (!(std::abs(low) < kMaxNumber) || !(std::abs(high) < kMaxNumber) ||
            high - low > static_cast<double>(2 * max_lines_ - std::min(2 * max_lines_, crossings_.size())))
            return false;
        const double start = Along(from.x - line_.base.x, from.y - line_.base.y);
        const double end = Along(to.x - line_.base.x, to.y - line_.base.y);
        const double shift = Along(line_.offset.x, line_.offset.y);
        double number = low;
        while (number < high) {
            const double share = (number - first) / (last - first);
            crossings_.push_back(
                {static_cast<std::int64_t>(number), start + (end - start) * share - shift * number});
            number += 1.0;
        }
        return true;
    }

    bool Dash(std::int64_t line, double from, double to, std::vector<std::pair<FlatPoint, FlatPoint>>& pieces)
    {
        double period = 0.0;
        for (const double dash : line_.dashes)
            period += std::abs(dash);
        if (!(period > 0.0))
            return Add(line, from, to, pieces);
        const double repeats = (to - from) / period * static_cast<double>(line_.dashes.size());
        if (!(repeats < static_cast<double>(max_lines_)))
            return false;
        double start = std::floor(from / period) * period;
        while (start < to) {
            const double at = start;
            for (const double dash : line_.dashes) {
                const double end = start + std::abs(dash);
                const double visible_end = dash == 0.0 ? start + dot_length_ : end;
                if (dash >= 0.0 && visible_end > from && start < to &&
                    !Add(line, std::max(start, from), std::min(visible_end, to), pieces))
                    return false;
                start = end;
                // The period vanishes beside the place on the line.
                if (start >= to || !(at + period > at))
                    return at + period > at;
            }
        }
        return true;
    }

    bool Add(std::int64_t line, double from, double to, std::vector<std::pair<FlatPoint, FlatPoint>>& pieces)
    {
        if (pieces.size() >= max_lines_)
            return false;
        const auto number = static_cast<double>(line);
        const FlatPoint base{line_.base.x + line_.offset.x * number, line_.base.y + line_.offset.y * number};
        pieces.push_back({{base.x + line_.direction.x * from, base.y + line_.direction.y * from},
                          {base.x + line_.direction.x * to, base.y + line_.direction.y * to}});
        return true;
    }

    const DxfHatch::PatternLine& line_;
    double dot_length_;
    std::size_t max_lines_;
    std::vector<Crossing> crossings_;
};

/// The maps from the hatch to its place.
struct Placing {
    Affine map;
    double elevation = 0.0;

    [[nodiscard]] Point At(const FlatPoint& point) const { return map.Apply({point.x, point.y, elevation}); }
};

HatchResult Fill(const std::vector<FlatLoop>& loops, const Placing& placing, std::size_t& work, Piece& piece)
{
    const PolygonFill fill = FillLoops(loops, work);
    if (fill.result != FillResult::Filled)
        return HatchResult::TooComplex;
    if (!piece.edges)
        piece.edges.emplace();
    std::vector<Point> points;
    for (const FlatLoop& loop : loops)
        for (const FlatPoint& corner : loop)
            points.push_back(placing.At(corner));
    for (const AddedCorner& corner : fill.added)
        points.push_back(placing.At(corner.point));
    const std::size_t before = piece.faces.size();
    for (const FlatTriangle& triangle : fill.triangles) {
        std::vector<Point> corners{points[triangle[0]], points[triangle[1]], points[triangle[2]]};
        if (placing.map.Mirrors())
            std::reverse(corners.begin(), corners.end());
        if (auto face = MakeFace(std::move(corners)))
            piece.faces.push_back(std::move(*face));
    }
    return piece.faces.size() > before ? HatchResult::Drawn : HatchResult::Empty;
}

} // namespace

std::vector<Point> DxfHatch::Extremes() const
{
    std::vector<Point> points;
    for (const Path& path : paths)
        for (const Edge& edge : path)
            if (const auto* line = std::get_if<Segment>(&edge)) {
                points.insert(points.end(), {line->from, line->to});
            } else if (const auto* arc = std::get_if<EllipticArc>(&edge)) {
                const Box box = BoxOfArc(*arc);
                points.insert(
                    points.end(),
                    {box.min, box.max, {box.min.x, box.max.y, box.min.z}, {box.max.x, box.min.y, box.min.z}});
            } else if (const auto* spline = std::get_if<Spline>(&edge)) {
                points.insert(points.end(), spline->points.begin(), spline->points.end());
            }
    return points;
}

DxfHatch HatchOf(const DxfEntityNumbers& numbers, const Affine& frame)
{
    return HatchReader(frame).Read(numbers);
}

HatchResult AppendHatch(const DxfHatch& hatch, const Affine& place, double tolerance, std::size_t& work,
                        Piece& piece)
{
    const Placing placing{place * hatch.frame, hatch.elevation};
    const double stretch = std::hypot(Length(placing.map.x), Length(placing.map.y));
    if (!(stretch > 0.0) || !std::isfinite(stretch))
        return HatchResult::Empty;
    std::vector<FlatLoop> loops = LoopsOf(hatch, tolerance / stretch);
    if (!ApplyStyle(hatch.style, work, loops))
        return HatchResult::TooComplex;
    if (loops.empty() || (!hatch.is_solid && hatch.pattern.empty()))
        return HatchResult::Empty;
    if (hatch.is_solid)
        return Fill(loops, placing, work, piece);
    std::vector<std::pair<FlatPoint, FlatPoint>> pieces;
    for (const DxfHatch::PatternLine& line : hatch.pattern)
        if (!PatternClipper(line, tolerance / stretch, kMaxHatchLines).Clip(loops, pieces)) {
            const HatchResult result = Fill(loops, placing, work, piece);
            return result == HatchResult::Drawn ? HatchResult::FilledInstead : result;
        }
    work -= std::min(work, pieces.size());
    for (const auto& [from, to] : pieces)
        AppendSegment(placing.At(from), placing.At(to), piece.lines);
    return HatchResult::Drawn;
}

} // namespace viewer
