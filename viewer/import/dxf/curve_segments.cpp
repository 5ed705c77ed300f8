#include "viewer/import/dxf/curve_segments.h"

#include <algorithm>
#include <cmath>

namespace viewer
{

namespace
{

/// The maximum rounding error of a full turn in a file, in radians.
constexpr double kAngleRounding = 1e-6;

/// Half of the longer axis of the ellipse, from two conjugate half axes.
double LongerRadius(const EllipticArc& arc)
{
    const double reach = std::max(Length(arc.u), Length(arc.v));
    if (reach == 0.0)
        return 0.0;
    const Point u = arc.u * (1.0 / reach);
    const Point v = arc.v * (1.0 / reach);
    const double mean = (Dot(u, u) + Dot(v, v)) / 2.0;
    const double difference = (Dot(u, u) - Dot(v, v)) / 2.0;
    return reach * std::sqrt(mean + std::hypot(difference, Dot(u, v)));
}

int CountSegments(const EllipticArc& arc, double tolerance)
{
    // With s for half the step, the arc is radius (1 - cos s) = 2 radius sin^2(s / 2) away from the middle of
    // the chord.
    constexpr double kMaxStep = kFullTurn / 8.0;
    const double radius = LongerRadius(arc);
    const double ratio = radius > 0.0 ? tolerance / (2.0 * radius) : 1.0;
    const double step = std::min(kMaxStep, 4.0 * std::asin(std::sqrt(std::clamp(ratio, 0.0, 1.0))));
    // The offset keeps rounding from adding a segment to a sweep of whole steps.
    const double count = step > 0.0 ? std::ceil(arc.sweep / step - 1e-9) : kMaxSegmentsPerCurve;
    return static_cast<int>(std::clamp(count, 1.0, static_cast<double>(kMaxSegmentsPerCurve)));
}

} // namespace

Point EllipticArc::At(double angle) const
{
    return center + u * std::cos(angle) + v * std::sin(angle);
}

EllipticArc Transformed(const EllipticArc& arc, const Affine& map)
{
    return {map.Apply(arc.center), map.ApplyToVector(arc.u), map.ApplyToVector(arc.v), arc.start, arc.sweep};
}

double SweepBetween(double start, double end)
{
    const double difference = end - start;
    double sweep = std::fmod(difference, kFullTurn);
    if (sweep < 0.0)
        sweep += kFullTurn;
    const bool is_turn = std::abs(difference) > std::numbers::pi && sweep < kAngleRounding;
    return is_turn || sweep == 0.0 ? kFullTurn : sweep;
}

std::optional<EllipticArc> ArcOfBulge(const Point& from, const Point& to, double bulge)
{
    // A smaller bulge lies within a billionth of the chord, and its center is so far away that digits are
    // lost.
    constexpr double kStraight = 1e-9;
    const Point chord{to.x - from.x, to.y - from.y, 0.0};
    if (std::abs(bulge) < kStraight || Length(chord) == 0.0)
        return std::nullopt;
    const Point left{-chord.y, chord.x, 0.0};
    const double offset = (1.0 / bulge - bulge) / 4.0;
    EllipticArc arc;
    arc.center = from + chord * 0.5 + left * offset;
    arc.u = chord * -0.5 + left * -offset;
    const double turn = bulge > 0.0 ? 1.0 : -1.0;
    arc.v = Point{-arc.u.y, arc.u.x, 0.0} * turn;
    arc.sweep = 4.0 * std::atan(std::abs(bulge));
    return arc;
}

Box BoxOfArc(const EllipticArc& arc)
{
    Box box;
    box.Add(arc.At(arc.start));
    box.Add(arc.At(arc.start + arc.sweep));
    for (const double extreme :
         {std::atan2(arc.v.x, arc.u.x), std::atan2(arc.v.y, arc.u.y), std::atan2(arc.v.z, arc.u.z)})
        for (const double angle : {extreme, extreme + std::numbers::pi}) {
            double ahead = std::fmod(angle - arc.start, kFullTurn);
            ahead += ahead < 0.0 ? kFullTurn : 0.0;
            if (ahead <= arc.sweep)
                box.Add(arc.At(angle));
        }
    return box;
}

void AppendSegment(const Point& from, const Point& to, std::vector<Segment>& segments)
{
    if (from != to)
        segments.push_back({from, to});
}

void CutArc(const EllipticArc& arc, double tolerance, std::vector<Segment>& segments)
{
    const int count = CountSegments(arc, tolerance);
    const Point first = arc.At(arc.start);
    Point from = first;
    for (int i = 1; i <= count; ++i) {
        const bool closes = i == count && arc.sweep == kFullTurn;
        const Point to = closes ? first : arc.At(arc.start + arc.sweep * i / count);
        AppendSegment(from, to, segments);
        from = to;
    }
}

} // namespace viewer
