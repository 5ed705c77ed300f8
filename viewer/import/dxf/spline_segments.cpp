#include "viewer/import/dxf/spline_segments.h"

#include "viewer/import/dxf/curve_segments.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <utility>

namespace viewer
{

namespace
{

constexpr double kMaxParameter = 1e100;

/// A control point in homogeneous coordinates: the point times its weight, and the weight.
struct Weighted {
    Point point;
    double weight = 1.0;

    [[nodiscard]] Point Project() const { return point * (1.0 / weight); }
};

Weighted Mix(const Weighted& a, const Weighted& b, double share)
{
    return {a.point * (1.0 - share) + b.point * share, a.weight * (1.0 - share) + b.weight * share};
}

using Bezier = std::vector<Weighted>;

double DistanceToSegment(const Point& point, const Point& from, const Point& to)
{
    const Point way = to - from;
    const double length = Length(way);
    if (length == 0.0)
        return Length(point - from);
    const Point direction = way * (1.0 / length);
    const double along = std::clamp(Dot(point - from, direction), 0.0, length);
    return Length(point - (from + direction * along));
}

/// Whether the curve is within the tolerance of its chord. It lies in the convex hull of its control points,
/// because the weights are above 0.
bool IsFlat(const Bezier& bezier, double tolerance)
{
    const Point from = bezier.front().Project();
    const Point to = bezier.back().Project();
    return std::all_of(bezier.begin() + 1, bezier.end() - 1, [&](const Weighted& control) {
        return DistanceToSegment(control.Project(), from, to) <= tolerance;
    });
}

/// Splits the curve in the middle. Returns the first half; `bezier` becomes the second.
Bezier TakeFirstHalf(Bezier& bezier)
{
    Bezier first;
    first.reserve(bezier.size());
    for (std::size_t last = bezier.size(); last-- > 0;) {
        first.push_back(bezier.front());
        for (std::size_t i = 0; i < last; ++i)
            bezier[i] = Mix(bezier[i], bezier[i + 1], 0.5);
    }
    return first;
}

void CutBezier(Bezier bezier, double tolerance, int halvings, std::vector<Segment>& segments)
{
    while (halvings > 0 && !IsFlat(bezier, tolerance)) {
        --halvings;
        CutBezier(TakeFirstHalf(bezier), tolerance, halvings, segments);
    }
    AppendSegment(bezier.front().Project(), bezier.back().Project(), segments);
}

/// Converts the spans of a spline to Bezier curves.
class SpanCutter
{
  public:
    explicit SpanCutter(const Spline& spline)
        : spline_(spline), degree_(static_cast<std::size_t>(spline.degree))
    {
    }

    /// The curve between the knots `span` and `span + 1`, which differ.
    [[nodiscard]] Bezier SpanAt(std::size_t span) const
    {
        Bezier bezier;
        for (std::size_t control = 0; control <= degree_; ++control)
            bezier.push_back(Blossom(span, control));
        return bezier;
    }

  private:
    [[nodiscard]] Weighted ControlAt(std::size_t index) const
    {
        const double weight = spline_.weights.empty() ? 1.0 : spline_.weights[index];
        return {spline_.points[index] * weight, weight};
    }

    /// The polar form (blossom) of the span, with the end of the span for the last `ends` arguments and its
    /// start for the others. This is control point number `ends` of its Bezier curve. All divisors are at
    /// least the length of the span.
    [[nodiscard]] Weighted Blossom(std::size_t span, std::size_t ends) const
    {
        const std::vector<double>& knots = spline_.knots;
        std::vector<Weighted> values;
        for (std::size_t i = span - degree_; i <= span; ++i)
            values.push_back(ControlAt(i));
        for (std::size_t round = 1; round <= degree_; ++round) {
            const double argument = round > degree_ - ends ? knots[span + 1] : knots[span];
            for (std::size_t i = 0; i + round <= degree_; ++i) {
                const double low = knots[span - degree_ + i + round];
                const double high = knots[span + 1 + i];
                values[i] = Mix(values[i], values[i + 1], (argument - low) / (high - low));
            }
        }
        return values.front();
    }

    const Spline& spline_;
    std::size_t degree_;
};

/// Whether products with the weight neither underflow nor overflow.
bool IsMeasurable(double weight)
{
    return weight >= 1.0 / kMaxParameter && weight <= kMaxParameter;
}

/// Removes points that equal the previous one, within rounding errors.
void DropRepeats(std::vector<Point>& points, bool is_closed)
{
    constexpr double kNothing = 1e-12;
    double reach = 1e-100;
    for (const Point& point : points)
        reach = std::max(reach, Length(point - points.front()));
    const auto repeats = [&](const Point& a, const Point& b) { return Length(b - a) <= kNothing * reach; };
    points.erase(std::unique(points.begin(), points.end(), repeats), points.end());
    while (is_closed && points.size() > 1 && repeats(points.front(), points.back()))
        points.pop_back();
}

/// Solves a x[i-1] + b x[i] + c x[i+1] = d for all rows. `a` of the first row and `c` of the last are 0.
std::vector<Point> SolveTridiagonal(const std::vector<std::array<double, 3>>& rows, std::vector<Point> right)
{
    std::vector<double> above(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto [a, b, c] = rows[i];
        const double pivot = i == 0 ? b : b - a * above[i - 1];
        above[i] = c / pivot;
        right[i] = (i == 0 ? right[i] : right[i] - right[i - 1] * a) * (1.0 / pivot);
    }
    for (std::size_t i = rows.size() - 1; i-- > 0;)
        right[i] = right[i] - right[i + 1] * above[i];
    return right;
}

/// The points that a cubic interpolates and the distances between them.
struct Chords {
    std::vector<Point> points;
    std::vector<double> lengths;

    [[nodiscard]] Point Slope(std::size_t chord) const
    {
        return (points[chord + 1] - points[chord]) * (1.0 / lengths[chord]);
    }
};

/// One inner row of the equations for the derivatives, for equal curvature on both sides.
std::array<double, 3> InnerRow(double before, double after)
{
    return {after, 2.0 * (before + after), before};
}

Point InnerRight(const Chords& chords, std::size_t before, std::size_t after)
{
    return (chords.Slope(before) * chords.lengths[after] + chords.Slope(after) * chords.lengths[before]) *
           3.0;
}

std::vector<Point> OpenDerivatives(const Chords& chords, const Point& start_tangent, const Point& end_tangent)
{
    const std::size_t last = chords.points.size() - 1;
    std::vector<std::array<double, 3>> rows(last + 1);
    std::vector<Point> right(last + 1);
    for (std::size_t i = 1; i < last; ++i) {
        rows[i] = InnerRow(chords.lengths[i - 1], chords.lengths[i]);
        right[i] = InnerRight(chords, i - 1, i);
    }
    const auto end = [&](std::size_t row, const Point& tangent, std::size_t chord,
                         std::array<double, 3> natural) {
        const double length = Length(tangent);
        rows[row] = length > 0.0 ? std::array<double, 3>{0.0, 1.0, 0.0} : natural;
        right[row] = length > 0.0 ? tangent * (1.0 / length) : chords.Slope(chord) * 3.0;
    };
    end(0, start_tangent, 0, {0.0, 2.0, 1.0});
    end(last, end_tangent, last - 1, {1.0, 2.0, 0.0});
    return SolveTridiagonal(rows, std::move(right));
}

/// Solves the cyclic system by the Sherman-Morrison formula: the corner entries are split off as a product of
/// two vectors, and the solution is combined from those for the right side and for the first vector.
std::vector<Point> ClosedDerivatives(const Chords& chords)
{
    const std::size_t count = chords.lengths.size();
    std::vector<std::array<double, 3>> rows(count);
    std::vector<Point> right(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t before = (i + count - 1) % count;
        rows[i] = InnerRow(chords.lengths[before], chords.lengths[i]);
        right[i] = InnerRight(chords, before, i);
    }
    const double low_corner = rows.back()[2];
    const double high_corner = rows.front()[0];
    const double gamma = -rows.front()[1];
    rows.front() = {0.0, rows.front()[1] - gamma, rows.front()[2]};
    rows.back() = {rows.back()[0], rows.back()[1] - low_corner * high_corner / gamma, 0.0};
    std::vector<Point> ring(count);
    ring.front().x = gamma;
    ring.back().x = low_corner;
    const std::vector<Point> solution = SolveTridiagonal(rows, std::move(right));
    const std::vector<Point> correction = SolveTridiagonal(rows, std::move(ring));
    const double share = high_corner / gamma;
    const double divisor = 1.0 + correction.front().x + share * correction.back().x;
    const Point factor = (solution.front() + solution.back() * share) * (1.0 / divisor);
    std::vector<Point> derivatives;
    for (std::size_t i = 0; i < count; ++i)
        derivatives.push_back(solution[i] - factor * correction[i].x);
    derivatives.push_back(derivatives.front());
    return derivatives;
}

/// One spline of cubic Bezier curves, one for each chord.
Spline SplineOf(const Chords& chords, const std::vector<Point>& derivatives)
{
    Spline spline;
    double knot = 0.0;
    spline.knots.push_back(knot);
    spline.points.push_back(chords.points.front());
    for (std::size_t i = 0; i < chords.lengths.size(); ++i) {
        const double third = chords.lengths[i] / 3.0;
        spline.points.push_back(chords.points[i] + derivatives[i] * third);
        spline.points.push_back(chords.points[i + 1] - derivatives[i + 1] * third);
        spline.points.push_back(chords.points[i + 1]);
        spline.knots.insert(spline.knots.end(), 3, knot);
        knot += chords.lengths[i];
    }
    spline.knots.insert(spline.knots.end(), 4, knot);
    return spline;
}

} // namespace

const char* FaultOf(const Spline& spline)
{
    if (spline.degree < 1 || spline.degree > kMaxSplineDegree)
        return "its degree is not between 1 and 25";
    if (spline.points.size() <= static_cast<std::size_t>(spline.degree))
        return "it has too few points for its degree";
    if (spline.knots.size() != spline.points.size() + static_cast<std::size_t>(spline.degree) + 1)
        return "its knots are not one for each point and degree + 1 more";
    if (!std::is_sorted(spline.knots.begin(), spline.knots.end()))
        return "its knots decrease";
    if (std::max(std::abs(spline.knots.front()), std::abs(spline.knots.back())) > kMaxParameter)
        return "one of its knots is beyond 1e100";
    if (!spline.weights.empty() && spline.weights.size() != spline.points.size())
        return "its weights are not one for each point";
    if (!std::all_of(spline.weights.begin(), spline.weights.end(), IsMeasurable))
        return "one of its weights is not between 1e-100 and 1e100";
    return nullptr;
}

std::vector<double> EvenKnots(int degree, std::size_t points)
{
    const auto order = static_cast<std::size_t>(degree) + 1;
    std::vector<double> knots(order, 0.0);
    for (std::size_t i = order; i < points; ++i)
        knots.push_back(static_cast<double>(i - order + 1));
    knots.insert(knots.end(), order, static_cast<double>(points - order + 1));
    return knots;
}

void CompleteKnots(Spline& spline, bool is_closed)
{
    if (spline.degree < 1 || spline.degree > kMaxSplineDegree)
        return;
    const auto degree = static_cast<std::size_t>(spline.degree);
    if (spline.points.size() <= degree)
        return;
    if (spline.knots.size() > 1 && spline.knots.size() == spline.points.size() + degree - 1) {
        spline.knots.insert(spline.knots.begin(), spline.knots.front());
        spline.knots.push_back(spline.knots.back());
    } else if (spline.knots.empty() && is_closed && spline.points.front() != spline.points.back()) {
        for (std::size_t i = 0; i < degree; ++i) {
            spline.points.push_back(spline.points[i]);
            if (!spline.weights.empty())
                spline.weights.push_back(spline.weights[i]);
        }
        for (std::size_t i = 0; i < spline.points.size() + degree + 1; ++i)
            spline.knots.push_back(static_cast<double>(i));
    } else if (spline.knots.empty()) {
        spline.knots = EvenKnots(spline.degree, spline.points.size());
    }
}

Spline SplineThrough(std::vector<Point> points, const Point& start_tangent, const Point& end_tangent,
                     bool is_closed)
{
    DropRepeats(points, is_closed);
    if (points.size() < 2)
        return {};
    // A loop of two points would be a line there and back.
    const bool is_ring = is_closed && points.size() > 2;
    if (is_ring)
        points.push_back(points.front());
    Chords chords{std::move(points), {}};
    for (std::size_t i = 0; i + 1 < chords.points.size(); ++i)
        chords.lengths.push_back(Length(chords.points[i + 1] - chords.points[i]));
    return SplineOf(chords, is_ring ? ClosedDerivatives(chords)
                                    : OpenDerivatives(chords, start_tangent, end_tangent));
}

void CutSpline(const Spline& spline, double tolerance, std::vector<Segment>& segments)
{
    constexpr int kHalvings = std::bit_width(static_cast<unsigned int>(kMaxSegmentsPerCurve)) - 1;
    const SpanCutter cutter(spline);
    for (auto span = static_cast<std::size_t>(spline.degree); span < spline.points.size(); ++span)
        if (spline.knots[span] < spline.knots[span + 1])
            CutBezier(cutter.SpanAt(span), tolerance, kHalvings, segments);
}

} // namespace viewer
