// Arcs of circles and ellipses, and their approximation by segments within a tolerance. Lengths are in the
// caller's unit.
#pragma once

#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <numbers>
#include <optional>
#include <vector>

namespace viewer
{

inline constexpr double kFullTurn = 2.0 * std::numbers::pi;

/// The maximum number of segments of a full turn, or of one span of a spline, whatever the tolerance. The
/// segments of a circle then lie within a billionth of its radius, which is below single precision.
inline constexpr int kMaxSegmentsPerCurve = 65536;

/// An arc of an ellipse: the points `center + u cos t + v sin t` for t from `start` to `start + sweep`, in
/// radians. `u` and `v` need not be perpendicular, so that the affine image of an arc is an arc.
struct EllipticArc {
    Point center;
    Point u;
    Point v;
    double start = 0.0;
    double sweep = kFullTurn; ///< in (0, 2 pi]

    [[nodiscard]] Point At(double angle) const;
};

/// The image of the arc.
[[nodiscard]] EllipticArc Transformed(const EllipticArc& arc, const Affine& map);

/// The counter-clockwise angle from `start` to `end`, in radians, in (0, 2 pi]. Equal angles give a full
/// turn, and so do angles that differ from a full turn by 1e-6 or less, which is a file's rounding.
[[nodiscard]] double SweepBetween(double start, double end);

/// The arc between two points in the plane z = `from.z`. `bulge` is the tangent of a quarter of the arc's
/// angle. The arc lies to the right of the direction from `from` to `to` if `bulge` is positive, to the left
/// if it is negative. No value if the arc is straight.
[[nodiscard]] std::optional<EllipticArc> ArcOfBulge(const Point& from, const Point& to, double bulge);

/// The smallest box around the arc.
[[nodiscard]] Box BoxOfArc(const EllipticArc& arc);

/// Appends a segment unless its length is 0.
void AppendSegment(const Point& from, const Point& to, std::vector<Segment>& segments);

/// Appends segments that lie within `tolerance` of the arc: at least eight for a full turn, and at most
/// `kMaxSegmentsPerCurve`. Corners lie on the arc. A full turn ends exactly at its first corner.
void CutArc(const EllipticArc& arc, double tolerance, std::vector<Segment>& segments);

} // namespace viewer
