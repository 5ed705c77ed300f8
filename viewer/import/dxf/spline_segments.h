// Splines, given by control points or by the points that they interpolate, and their approximation by
// segments. Lengths are in the caller's unit.
#pragma once

#include "viewer/scene/model.h"

#include <cstddef>
#include <vector>

namespace viewer
{

/// The maximum degree of a valid spline.
inline constexpr int kMaxSplineDegree = 25;

/// A non-uniform rational B-spline.
struct Spline {
    int degree = 3;
    std::vector<Point> points;
    std::vector<double> knots;   ///< not decreasing; number of points + degree + 1 of them
    std::vector<double> weights; ///< above 0, one for each point; empty if all are equal
};

/// The reason why the spline is not valid, in a few words; null if it is valid.
[[nodiscard]] const char* FaultOf(const Spline& spline);

/// Uniform knots with which a spline begins in its first point and ends in its last.
[[nodiscard]] std::vector<double> EvenKnots(int degree, std::size_t points);

/// Adds the knots that a file left out: all of them, or the first and the last, which do not change the
/// curve. Without knots a closed spline whose last point is not its first is made periodic, by repeating its
/// first points. A spline that remains not valid is unchanged.
void CompleteKnots(Spline& spline, bool is_closed);

/// The cubic spline that interpolates the points, with continuous curvature over chord lengths. The tangents
/// give the directions at its start and end; at an end with a zero tangent the curvature is 0. A closed
/// spline returns to its first point and is as smooth there as elsewhere. Repeated points are merged. For
/// fewer than two different points the result has no points.
[[nodiscard]] Spline SplineThrough(std::vector<Point> points, const Point& start_tangent,
                                   const Point& end_tangent, bool is_closed);

/// Appends segments that lie within `tolerance` of a valid spline, unless that takes more than
/// `kMaxSegmentsPerCurve` for a span. Corners lie on the spline. There is a gap where the knots make the
/// spline discontinuous.
void CutSpline(const Spline& spline, double tolerance, std::vector<Segment>& segments);

} // namespace viewer
