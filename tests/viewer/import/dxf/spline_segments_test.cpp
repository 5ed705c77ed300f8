#include "viewer/import/dxf/spline_segments.h"

#include "viewer/import/dxf/curve_segments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace viewer
{
namespace
{

using testing::HasSubstr;

/// The cubic x = 3 t^2 - 2 t^3, y = 3 t - 3 t^2.
const Spline kArch{3, {{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}}, {0, 0, 0, 0, 1, 1, 1, 1}, {}};

std::vector<Segment> Cut(const Spline& spline, double tolerance)
{
    std::vector<Segment> segments;
    CutSpline(spline, tolerance, segments);
    return segments;
}

void ExpectPoint(const Point& actual, const Point& expected, double tolerance = 1e-12)
{
    EXPECT_LE(Length(actual - expected), tolerance) << actual.x << ' ' << actual.y << ' ' << actual.z;
}

Point ArchAt(double t)
{
    return {3 * t * t - 2 * t * t * t, 3 * t - 3 * t * t, 0};
}

TEST(SplineSegments, DegreeOneIsItsPolygon)
{
    const std::vector<Segment> segments =
        Cut({1, {{0, 0, 0}, {1, 2, 3}, {4, 0, 0}}, {0, 0, 1, 2, 2}, {}}, 1e-9);
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_EQ(segments[0].from, (Point{0, 0, 0}));
    EXPECT_EQ(segments[0].to, (Point{1, 2, 3}));
    EXPECT_EQ(segments[1].to, (Point{4, 0, 0}));
}

TEST(SplineSegments, CornersLieOnTheCubicAtEvenParts)
{
    // The arch is 0.75 high, so that this tolerance takes several halvings.
    const std::vector<Segment> segments = Cut(kArch, 1e-4);
    ExpectPoint(segments[segments.size() / 2].from, {0.5, 0.75, 0});
    for (const Segment& segment : segments) {
        // x grows with t: the t of the corner is found by halving.
        double low = 0.0;
        double high = 1.0;
        for (int i = 0; i < 60; ++i)
            (ArchAt((low + high) / 2).x < segment.to.x ? low : high) = (low + high) / 2;
        ExpectPoint(segment.to, ArchAt(low), 1e-7); // the derivative of x is 0 at both ends
    }
}

TEST(SplineSegments, ChordsStayWithinTheTolerance)
{
    const double tolerance = 1e-3;
    const std::vector<Segment> segments = Cut(kArch, tolerance);
    for (int i = 0; i <= 1000; ++i) {
        const Point point = ArchAt(i / 1000.0);
        double nearest = 1.0;
        for (const Segment& segment : segments) {
            const Point way = segment.to - segment.from;
            const double along = std::clamp(Dot(point - segment.from, way) / Dot(way, way), 0.0, 1.0);
            nearest = std::min(nearest, Length(point - (segment.from + way * along)));
        }
        EXPECT_LE(nearest, tolerance);
    }
    EXPECT_LT(segments.size(), 64U);
}

TEST(SplineSegments, WeightsMakeACircle)
{
    const Spline quarter{2, {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 0, 0, 1, 1, 1}, {1, std::sqrt(0.5), 1}};
    const std::vector<Segment> segments = Cut(quarter, 1e-4);
    EXPECT_GT(segments.size(), 8U);
    for (const Segment& segment : segments) {
        EXPECT_NEAR(Length(segment.to), 1.0, 1e-12);
        EXPECT_GE(Length((segment.from + segment.to) * 0.5), 1.0 - 1e-4);
    }
}

TEST(SplineSegments, EvenKnotsWithoutRepeatsEndBetweenTheControlPoints)
{
    // A quadratic over even knots runs through the middles of its polygon.
    const std::vector<Segment> segments =
        Cut({2, {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}}, {0, 1, 2, 3, 4, 5}, {}}, 1e-3);
    ExpectPoint(segments.front().from, {1, 0, 0});
    ExpectPoint(segments.back().to, {2, 1, 0});
}

TEST(SplineSegments, KnotsOfFullMultiplicityLeaveAGap)
{
    const Spline spline{1, {{0, 0, 0}, {1, 0, 0}, {5, 0, 0}, {6, 0, 0}}, {0, 0, 1, 1, 2, 2}, {}};
    ASSERT_EQ(FaultOf(spline), nullptr);
    const std::vector<Segment> segments = Cut(spline, 1e-3);
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_EQ(segments[0].to, (Point{1, 0, 0}));
    EXPECT_EQ(segments[1].from, (Point{5, 0, 0}));
}

TEST(SplineSegments, LoopInOneSpanIsNotTakenForItsChord)
{
    const Spline loop{3, {{0, 0, 0}, {4, 4, 0}, {-4, 4, 0}, {0, 0, 0}}, {0, 0, 0, 0, 1, 1, 1, 1}, {}};
    const std::vector<Segment> segments = Cut(loop, 0.01);
    EXPECT_GT(segments.size(), 8U);
    ExpectPoint(segments[segments.size() / 2].from, {0, 3, 0}); // 3/8 of each of the two inner points
}

TEST(SplineSegments, ToleranceOfZeroEndsAtTheLimit)
{
    EXPECT_EQ(Cut(kArch, 0.0).size(), static_cast<std::size_t>(kMaxSegmentsPerCurve));
}

TEST(SplineSegments, KnotsThatAreAllTheSameLeaveNothing)
{
    EXPECT_TRUE(Cut({1, {{0, 0, 0}, {1, 0, 0}}, {3, 3, 3, 3}, {}}, 1e-3).empty());
}

TEST(SplineSegments, EvenKnotsEndInTheFirstAndTheLastPoint)
{
    EXPECT_EQ(EvenKnots(2, 5), (std::vector<double>{0, 0, 0, 1, 2, 3, 3, 3}));
    EXPECT_EQ(EvenKnots(3, 4), (std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1}));
}

TEST(SplineSegments, FaultsAreNamed)
{
    EXPECT_EQ(FaultOf(kArch), nullptr);
    Spline spline = kArch;
    spline.degree = 0;
    EXPECT_THAT(FaultOf(spline), HasSubstr("degree"));
    spline.degree = 26;
    EXPECT_THAT(FaultOf(spline), HasSubstr("degree"));
    spline.degree = 4;
    EXPECT_THAT(FaultOf(spline), HasSubstr("too few points"));
    spline = kArch;
    spline.knots.pop_back();
    EXPECT_THAT(FaultOf(spline), HasSubstr("knots are not one"));
    spline = kArch;
    spline.knots[4] = -1;
    EXPECT_THAT(FaultOf(spline), HasSubstr("decrease"));
    spline = kArch;
    spline.knots.back() = 1e308;
    EXPECT_THAT(FaultOf(spline), HasSubstr("knots is beyond"));
    spline = kArch;
    spline.weights = {1, 1, 1};
    EXPECT_THAT(FaultOf(spline), HasSubstr("weights are not one"));
    spline.weights = {1, 0, 1, 1};
    EXPECT_THAT(FaultOf(spline), HasSubstr("between 1e-100 and 1e100"));
}

TEST(SplineThrough, EveryPointIsACorner)
{
    const std::vector<Point> points{{0, 0, 0}, {3, 1, 2}, {4, 4, 0}, {0, 5, 1}};
    const Spline spline = SplineThrough(points, {}, {}, false);
    ASSERT_EQ(FaultOf(spline), nullptr);
    for (std::size_t i = 0; i < points.size(); ++i)
        EXPECT_EQ(spline.points.at(3 * i), points[i]);
}

TEST(SplineThrough, EndsWithoutTangentsAreNotCurved)
{
    // Chords of sqrt(2). By the symmetry the slope of y is 0 in the middle, and at the ends 3/2 of the
    // chord's, which is sqrt(1/2); x keeps the chord's: a third of the way on, (1/3, 1/2).
    const Spline spline = SplineThrough({{0, 0, 0}, {1, 1, 0}, {2, 0, 0}}, {}, {}, false);
    ASSERT_EQ(spline.points.size(), 7U);
    ExpectPoint(spline.points[1], {1.0 / 3, 0.5, 0});
    ExpectPoint(spline.points[2], {2.0 / 3, 1, 0});
    ExpectPoint(spline.points[4], {4.0 / 3, 1, 0});
}

TEST(SplineThrough, TangentsOfAnyLengthGiveTheDirection)
{
    const Spline spline = SplineThrough({{0, 0, 0}, {3, 0, 0}}, {0, 50, 0}, {0, -0.1, 0}, false);
    ASSERT_EQ(spline.points.size(), 4U);
    ExpectPoint(spline.points[1], {0, 1, 0}); // a third of the chord along the tangent
    ExpectPoint(spline.points[2], {3, 1, 0});
}

TEST(SplineThrough, ClosedOneIsAsSmoothInItsFirstPoint)
{
    // The corners of a square. At (1, 0) the neighbours' slopes cancel each other: 4 m = 3 (0, sqrt 2), and a
    // third of the chord of sqrt(2) along it is (0, 1/2).
    const Spline spline = SplineThrough({{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}}, {}, {}, true);
    ASSERT_EQ(spline.points.size(), 13U);
    ExpectPoint(spline.points[1], {1, 0.5, 0});
    ExpectPoint(spline.points[2], {0.5, 1, 0});
    ExpectPoint(spline.points[11], {1, -0.5, 0});
    EXPECT_EQ(spline.points[12], (Point{1, 0, 0}));
}

TEST(SplineThrough, ClosedOneOverUnevenChordsHasOneTangentInItsFirstPoint)
{
    const Spline spline =
        SplineThrough({{0, 0, 0}, {4, 0, 0}, {5, 3, 0}, {0, 1, 2}, {0, 0, 0}}, {}, {}, true);
    ASSERT_EQ(spline.points.size(), 13U);
    const Point first = spline.points[1] - spline.points[0];
    const Point last = spline.points[12] - spline.points[11];
    const double first_chord = spline.knots[4];
    const double last_chord = spline.knots[13] - spline.knots[10];
    ExpectPoint(first * (1 / first_chord), last * (1 / last_chord));
    // And one curvature: second derivatives of the cubics on both sides agree.
    const auto second = [&](std::size_t a, std::size_t b, std::size_t c, double chord) {
        return (spline.points[a] - spline.points[b] * 2.0 + spline.points[c]) * (1 / (chord * chord));
    };
    ExpectPoint(second(0, 1, 2, first_chord), second(12, 11, 10, last_chord));
}

TEST(SplineThrough, TwoPointsMakeALineEvenIfClosed)
{
    const Spline spline = SplineThrough({{0, 0, 0}, {3, 0, 0}, {0, 0, 0}}, {}, {}, true);
    EXPECT_EQ(Cut(spline, 1e-6).size(), 1U);
}

TEST(SplineThrough, PointsAtNextToNoDistanceAreOne)
{
    const Spline spline =
        SplineThrough({{0, 0, 0}, {1e-300, 0, 0}, {3, 0, 0}, {3, 1e-13, 0}, {6, 0, 0}}, {}, {}, false);
    EXPECT_EQ(spline.points.size(), 7U);
    EXPECT_EQ(Cut(spline, 1e-6).size(), 2U);
    EXPECT_TRUE(SplineThrough({{0, 0, 0}, {1e-310, 0, 0}}, {}, {}, false).points.empty());
}

TEST(SplineThrough, RepeatedPointsCountOnceAndOneIsTooFew)
{
    EXPECT_EQ(SplineThrough({{0, 0, 0}, {0, 0, 0}, {3, 0, 0}, {3, 0, 0}}, {}, {}, false).points.size(), 4U);
    EXPECT_TRUE(SplineThrough({{1, 1, 1}, {1, 1, 1}}, {}, {}, false).points.empty());
    EXPECT_TRUE(SplineThrough({}, {}, {}, true).points.empty());
}

} // namespace
} // namespace viewer
