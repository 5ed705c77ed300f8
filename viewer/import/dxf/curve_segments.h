// Curves cut into straight segments that lie within a tolerance of them: arcs of circles and ellipses here,
// splines next door. It knows nothing of files; every unit is the caller's.
#pragma once

#include "viewer/scene/model.h"

#include <numbers>
#include <optional>
#include <vector>

namespace viewer
{

inline constexpr double kFullTurn = 2.0 * std::numbers::pi;

/// No tolerance cuts a full turn, or one span of a spline, into more segments than this: the corners are then
/// within a billionth of the radius, which single precision no longer shows.
inline constexpr int kMaxSegmentsPerCurve = 65536;

/// A part of an ellipse: the points `center + u cos t + v sin t` for t from `start` over `sweep`, in radians.
/// The half axes need not be perpendicular, so that every affine picture of a circle is one.
struct EllipticArc {
    Point center;
    Point u;
    Point v;
    double start = 0.0;
    double sweep = kFullTurn; ///< in (0, 2 pi]

    [[nodiscard]] Point At(double angle) const;
};

/// How far it is counter-clockwise from one angle to another, in radians, in (0, 2 pi]: equal angles make a
/// full turn, and so do those that differ from it by what a file's rounding leaves.
[[nodiscard]] double SweepBetween(double start, double end);

/// The arc from one point to another that bulges to the right of the way, in the plane z = `from.z`: `bulge`
/// is the tangent of a quarter of its angle, negative for an arc to the left. Nothing where that is straight.
[[nodiscard]] std::optional<EllipticArc> ArcOfBulge(const Point& from, const Point& to, double bulge);

/// The smallest box around the arc.
[[nodiscard]] Box BoxOfArc(const EllipticArc& arc);

/// Appends the segment; nothing where it has no length.
void AppendSegment(const Point& from, const Point& to, std::vector<Segment>& segments);

/// Appends the segments of the arc, at least eight to the turn and no more than `kMaxSegmentsPerCurve`, none
/// farther from it than `tolerance`. Corners lie on the arc; a full turn ends exactly where it began.
void CutArc(const EllipticArc& arc, double tolerance, std::vector<Segment>& segments);

} // namespace viewer
