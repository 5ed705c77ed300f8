#include "viewer/import/dxf/curve_segments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace viewer
{
namespace
{

constexpr double kPi = std::numbers::pi;

/// A circle about the origin in the plane z = 0, counter-clockwise from the x axis.
EllipticArc Circle(double radius)
{
    return {{}, {radius, 0, 0}, {0, radius, 0}, 0.0, kFullTurn};
}

std::vector<Segment> Cut(const EllipticArc& arc, double tolerance)
{
    std::vector<Segment> segments;
    CutArc(arc, tolerance, segments);
    return segments;
}

double LengthOf(const std::vector<Segment>& segments)
{
    double length = 0.0;
    for (const Segment& segment : segments)
        length += Length(segment.to - segment.from);
    return length;
}

void ExpectNear(const Point& actual, const Point& expected, double tolerance = 1e-12)
{
    EXPECT_LE(Length(actual - expected), tolerance) << actual.x << ' ' << actual.y << ' ' << actual.z;
}

TEST(CurveSegments, CircleTakesAsFewSegmentsAsTheToleranceAllows)
{
    // A chord of an n-th of the turn is 1 - cos(pi / n) away: 0.0102 for 22, 0.0093 for 23.
    EXPECT_GT(1.0 - std::cos(kPi / 22), 0.01);
    EXPECT_LT(1.0 - std::cos(kPi / 23), 0.01);
    EXPECT_EQ(Cut(Circle(1.0), 0.01).size(), 23U);
}

TEST(CurveSegments, MiddleOfEveryChordIsWithinTheTolerance)
{
    for (const Segment& segment : Cut(Circle(5.0), 0.001)) {
        EXPECT_NEAR(Length(segment.from), 5.0, 1e-12);
        EXPECT_GE(Length((segment.from + segment.to) * 0.5), 5.0 - 0.001);
    }
}

TEST(CurveSegments, FullTurnEndsExactlyWhereItBegan)
{
    EllipticArc arc = Circle(3.0);
    arc.start = 1.0;
    const std::vector<Segment> segments = Cut(arc, 0.01);
    EXPECT_EQ(segments.front().from, segments.back().to);
    for (std::size_t i = 1; i < segments.size(); ++i)
        EXPECT_EQ(segments[i - 1].to, segments[i].from);
}

TEST(CurveSegments, ToleranceOfAnySizeLeavesEightSegmentsToTheTurn)
{
    EXPECT_EQ(Cut(Circle(1.0), 1e9).size(), 8U);
    EXPECT_EQ(Cut(Circle(1.0), std::numeric_limits<double>::infinity()).size(), 8U);
}

TEST(CurveSegments, ToleranceOfZeroEndsAtTheLimit)
{
    EXPECT_EQ(Cut(Circle(1.0), 0.0).size(), static_cast<std::size_t>(kMaxSegmentsPerCurve));
}

TEST(CurveSegments, RadiusOfZeroLeavesNothing)
{
    EXPECT_TRUE(Cut(Circle(0.0), 0.01).empty());
}

TEST(CurveSegments, QuarterArcHasTheLengthOfItsChords)
{
    EllipticArc arc = Circle(2.0);
    arc.start = kPi / 2;
    arc.sweep = kPi / 2;
    const std::vector<Segment> segments = Cut(arc, 1e-5);
    const auto count = static_cast<double>(segments.size());
    EXPECT_NEAR(LengthOf(segments), count * 2.0 * 2.0 * std::sin(kPi / 4 / count), 1e-12);
    // The arc itself is pi long; chords are shorter by about the sweep cubed over 24 n^2.
    EXPECT_NEAR(LengthOf(segments), kPi, 2.0 * std::pow(kPi / 2, 3) / (23.9 * count * count));
    ExpectNear(segments.front().from, {0, 2, 0});
    ExpectNear(segments.back().to, {-2, 0, 0});
}

TEST(CurveSegments, EllipseIsCutByItsLongerRadius)
{
    const EllipticArc arc{{1, 1, 0}, {3, 0, 0}, {0, 1, 0}, 0.0, kFullTurn};
    const std::vector<Segment> segments = Cut(arc, 0.01);
    EXPECT_EQ(segments.size(), Cut(Circle(3.0), 0.01).size());
    for (const Segment& segment : segments) {
        const Point p = segment.from - arc.center;
        EXPECT_NEAR(p.x * p.x / 9 + p.y * p.y, 1.0, 1e-12);
    }
}

TEST(CurveSegments, SlantedHalfAxesAreCutByTheLongerRadiusToo)
{
    // The circle sheared by (x, y) -> (x + y, y): its longer half axis is the golden ratio.
    const double golden = (1.0 + std::sqrt(5.0)) / 2.0;
    const EllipticArc sheared{{}, {1, 0, 0}, {1, 1, 0}, 0.0, kFullTurn};
    EXPECT_EQ(Cut(sheared, 1e-4).size(), Cut(Circle(golden), 1e-4).size());
}

TEST(CurveSegments, SweepRunsCounterClockwise)
{
    EXPECT_NEAR(SweepBetween(350 * kPi / 180, 10 * kPi / 180), 20 * kPi / 180, 1e-12);
    EXPECT_NEAR(SweepBetween(0.5, 2.0), 1.5, 1e-12);
    EXPECT_NEAR(SweepBetween(-0.5, 100 * kFullTurn), 0.5, 1e-9);
}

TEST(CurveSegments, EqualAnglesMakeATurn)
{
    EXPECT_EQ(SweepBetween(1.0, 1.0), kFullTurn);
    EXPECT_EQ(SweepBetween(0.0, kFullTurn), kFullTurn);
}

TEST(CurveSegments, TurnIsRecognisedInRoundedFigures)
{
    EXPECT_EQ(SweepBetween(0.0, 6.28318531), kFullTurn); // a little more than 2 pi
    EXPECT_NEAR(SweepBetween(0.0, 6.283185), kFullTurn, 1e-6);
    EXPECT_NEAR(SweepBetween(1.0, 1.0 + 1e-9), 1e-9, 1e-15) << "a short arc is one";
}

TEST(CurveSegments, BulgeOfOneIsHalfACircleOnTheRight)
{
    const auto arc = ArcOfBulge({0, 0, 7}, {2, 0, 7}, 1.0);
    ASSERT_TRUE(arc);
    ExpectNear(arc->center, {1, 0, 7});
    EXPECT_DOUBLE_EQ(arc->sweep, kPi);
    ExpectNear(arc->At(0), {0, 0, 7});
    ExpectNear(arc->At(kPi / 2), {1, -1, 7});
    ExpectNear(arc->At(kPi), {2, 0, 7});
}

TEST(CurveSegments, NegativeBulgeLiesOnTheLeft)
{
    const auto arc = ArcOfBulge({0, 0, 0}, {2, 0, 0}, -1.0);
    ASSERT_TRUE(arc);
    ExpectNear(arc->At(arc->sweep / 2), {1, 1, 0});
    ExpectNear(arc->At(arc->sweep), {2, 0, 0});
}

TEST(CurveSegments, BulgeIsTheTangentOfAQuarterOfTheAngle)
{
    const auto arc = ArcOfBulge({1, 0, 0}, {0, 1, 0}, std::tan(kPi / 8));
    ASSERT_TRUE(arc);
    ExpectNear(arc->center, {0, 0, 0});
    EXPECT_NEAR(arc->sweep, kPi / 2, 1e-12);
    ExpectNear(arc->At(kPi / 4), {std::sqrt(0.5), std::sqrt(0.5), 0});
}

TEST(CurveSegments, BulgeAboveOneIsMoreThanHalfACircle)
{
    // tan(67.5 degrees): three quarters of the circle about (0, 0) from (1, 0) backwards over (-1, 0).
    const auto arc = ArcOfBulge({0, 1, 0}, {1, 0, 0}, std::tan(3 * kPi / 8));
    ASSERT_TRUE(arc);
    ExpectNear(arc->center, {0, 0, 0});
    EXPECT_NEAR(arc->sweep, 3 * kPi / 2, 1e-12);
    ExpectNear(arc->At(kPi / 2), {-1, 0, 0});
}

TEST(CurveSegments, BulgeWithoutASagittaOrAChordIsNoArc)
{
    EXPECT_FALSE(ArcOfBulge({0, 0, 0}, {2, 0, 0}, 0.0));
    EXPECT_FALSE(ArcOfBulge({0, 0, 0}, {2, 0, 0}, 1e-12));
    EXPECT_FALSE(ArcOfBulge({2, 1, 0}, {2, 1, 0}, 1.0));
}

TEST(CurveSegments, BoxOfACircleTouchesIt)
{
    EllipticArc circle = Circle(2.0);
    circle.center = {10, 20, 30};
    const Box box = BoxOfArc(circle);
    ExpectNear(box.min, {8, 18, 30});
    ExpectNear(box.max, {12, 22, 30});
}

TEST(CurveSegments, BoxOfAnArcHoldsOnlyWhatItReaches)
{
    EllipticArc arc = Circle(2.0);
    arc.start = kPi / 4;
    arc.sweep = kPi / 2;
    const Box box = BoxOfArc(arc);
    ExpectNear(box.min, {-std::sqrt(2), std::sqrt(2), 0});
    ExpectNear(box.max, {std::sqrt(2), 2, 0});
}

} // namespace
} // namespace viewer
