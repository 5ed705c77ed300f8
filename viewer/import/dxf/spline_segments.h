// Splines, given by control points or by the points they run through, and their cutting into straight
// segments. It knows nothing of files; every unit is the caller's.
#pragma once

#include "viewer/scene/model.h"

#include <cstddef>
#include <vector>

namespace viewer
{

inline constexpr int kMaxSplineDegree = 25;

/// A non-uniform rational B-spline.
struct Spline {
    int degree = 3;
    std::vector<Point> points;
    std::vector<double> knots;   ///< not decreasing, one for each point and degree + 1 more
    std::vector<double> weights; ///< above 0, one for each point; none for all the same
};

/// What keeps the spline from being one: in a few words, or null where nothing does.
[[nodiscard]] const char* FaultOf(const Spline& spline);

/// Knots for a spline that has none: even ones, and it ends in its first and last point.
[[nodiscard]] std::vector<double> EvenKnots(int degree, std::size_t points);

/// The cubic that runs through all points, with continuous curvature over their distances. A tangent gives
/// the direction in which it starts and ends; a zero one leaves that end without curvature. A closed one
/// runs back to its first point, as smooth there as elsewhere. Repeated points count once; no points at
/// all for fewer than two different ones.
[[nodiscard]] Spline SplineThrough(std::vector<Point> points, const Point& start_tangent,
                                   const Point& end_tangent, bool is_closed);

/// Appends the segments of a spline without faults, none farther from it than `tolerance` as long as
/// `kMaxSegmentsPerCurve` to the span suffice. Corners lie on the spline. Where its knots let it jump, there
/// is a gap.
void CutSpline(const Spline& spline, double tolerance, std::vector<Segment>& segments);

} // namespace viewer
