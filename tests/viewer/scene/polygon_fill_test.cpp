#include "viewer/scene/polygon_fill.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace viewer
{
namespace
{

using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t kEnough = 10 * kMaxFillWork;

PolygonFill Fill(const std::vector<FlatLoop>& loops)
{
    std::size_t work = kEnough;
    return FillLoops(loops, work);
}

/// The work of loops that are filled.
std::size_t WorkFor(const std::vector<FlatLoop>& loops)
{
    std::size_t work = kEnough;
    EXPECT_EQ(FillLoops(loops, work).result, FillResult::Filled);
    return kEnough - work;
}

/// The area of the triangles. Clockwise ones count negative.
double AreaOfFill(const std::vector<FlatLoop>& loops, const PolygonFill& fill)
{
    FlatLoop points;
    for (const FlatLoop& loop : loops)
        points.insert(points.end(), loop.begin(), loop.end());
    for (const AddedCorner& corner : fill.added)
        points.push_back(corner.point);
    double area = 0.0;
    for (const FlatTriangle& triangle : fill.triangles) {
        const FlatPoint& a = points.at(triangle[0]);
        const FlatPoint& b = points.at(triangle[1]);
        const FlatPoint& c = points.at(triangle[2]);
        area += ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x)) / 2.0;
    }
    return area;
}

FlatLoop Square(double x, double y, double size)
{
    return {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}};
}

/// A comb of teeth of width 1 and height 9, one unit apart, on a bar of height 1.
FlatLoop FlatComb(int teeth)
{
    FlatLoop loop{{0, 0}, {2.0 * teeth, 0}};
    for (int i = teeth - 1; i >= 0; --i)
        loop.insert(loop.end(), {{2.0 * i + 2, 1}, {2.0 * i + 2, 10}, {2.0 * i + 1, 10}, {2.0 * i + 1, 1}});
    loop.push_back({0, 1});
    return loop;
}

/// Squares side by side.
std::vector<FlatLoop> Row(int count)
{
    std::vector<FlatLoop> loops;
    for (int i = 0; i < count; ++i)
        loops.push_back(Square(2.0 * i, 0, 1));
    return loops;
}

TEST(PolygonFill, TrianglesAreCounterclockwiseWhateverTheDirectionOfTheLoop)
{
    FlatLoop loop{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}};
    for (int i = 0; i < 2; ++i) {
        const PolygonFill fill = Fill({loop});
        EXPECT_EQ(fill.result, FillResult::Filled);
        EXPECT_THAT(fill.triangles, SizeIs(4));
        EXPECT_THAT(fill.added, IsEmpty());
        EXPECT_DOUBLE_EQ(AreaOfFill({loop}, fill), 3.0);
        std::reverse(loop.begin(), loop.end());
    }
}

TEST(PolygonFill, CrossingLoopsAreFilledByTheOddEvenRule)
{
    const std::vector<FlatLoop> loops{Square(0, 0, 2), Square(1, 1, 2)};
    const PolygonFill fill = Fill(loops);
    ASSERT_EQ(fill.result, FillResult::Filled);
    // Squares of 4 with a common square of 1.
    EXPECT_NEAR(AreaOfFill(loops, fill), 4.0 + 4.0 - 2.0, 1e-9);
}

TEST(PolygonFill, CornerThatIsAddedIsInterpolatedFromTheEndsOfTheEdges)
{
    const FlatLoop bow_tie{{0, 0}, {4, 4}, {4, 0}, {0, 4}};
    const PolygonFill fill = Fill({bow_tie});
    ASSERT_THAT(fill.added, SizeIs(1));
    const AddedCorner& added = fill.added[0];
    EXPECT_NEAR(added.point.x, 2.0, 1e-12);
    EXPECT_NEAR(added.point.y, 2.0, 1e-12);
    EXPECT_EQ(added.count, 4U);
    FlatPoint sum;
    double weights = 0.0;
    for (std::size_t i = 0; i < added.count; ++i) {
        const FlatPoint& from = bow_tie.at(added.from.at(i));
        sum = {sum.x + from.x * added.weights.at(i), sum.y + from.y * added.weights.at(i)};
        weights += added.weights.at(i);
    }
    EXPECT_NEAR(sum.x / weights, 2.0, 1e-6);
    EXPECT_NEAR(sum.y / weights, 2.0, 1e-6);
}

TEST(PolygonFill, CornersAtOnePlaceAddNone)
{
    // To a hole and back, with coordinates that rounding would change.
    FlatLoop loop{{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 0}, {1, 1}, {1, 3}, {3, 3}, {3, 1}, {1, 1}};
    for (FlatPoint& point : loop)
        point = {point.x * 0.1 + 1e6 + 0.3, point.y * 0.1 - 1e6};
    const PolygonFill fill = Fill({loop});
    EXPECT_EQ(fill.result, FillResult::Filled);
    EXPECT_THAT(fill.added, IsEmpty());
    EXPECT_NEAR(AreaOfFill({loop}, fill), 0.12, 1e-9);
}

TEST(PolygonFill, LoopsWithoutAreaFillNothing)
{
    for (const std::vector<FlatLoop>& loops :
         {std::vector<FlatLoop>{}, {{}, {{1, 1}}, {{1, 1}, {1, 1}}, {{0, 0}, {1, 1}}}}) {
        const PolygonFill fill = Fill(loops);
        EXPECT_EQ(fill.result, FillResult::Filled);
        EXPECT_THAT(fill.triangles, IsEmpty());
    }
}

TEST(PolygonFill, HugeAndTinyLoopsAreFilledAndInfiniteOnesAreNot)
{
    for (const double size : {1e-300, 1e-12, 1e150, 1e308}) {
        const FlatLoop loop{{-size, -size}, {size, -size}, {0, 0}, {size, size}, {-size, size}};
        const PolygonFill fill = Fill({loop});
        EXPECT_EQ(fill.result, FillResult::Filled) << size;
        EXPECT_THAT(fill.triangles, SizeIs(3)) << size;
        EXPECT_THAT(fill.added, IsEmpty()) << size;
    }
    for (const double wrong :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        const PolygonFill fill = Fill({{{0, 0}, {1, wrong}, {1, 1}}});
        EXPECT_EQ(fill.result, FillResult::TooLarge);
        EXPECT_THAT(fill.triangles, IsEmpty());
    }
}

TEST(PolygonFill, LoopsThatCrossTooOftenAreRefused)
{
    // Two zigzags of 2000 edges each across the other one: a million crossings.
    FlatLoop a;
    FlatLoop b;
    for (int i = 0; i < 2000; ++i) {
        a.push_back({i % 2 == 0 ? 0.0 : 2000.0, i * 1.0});
        b.push_back({i * 1.0, i % 2 == 0 ? 0.0 : 2000.0});
    }
    std::size_t work = kEnough;
    EXPECT_EQ(FillLoops({a, b}, work).result, FillResult::Crossing);
    EXPECT_LT(work, kEnough);
    EXPECT_GE(work, kEnough - kMaxFillWork);
}

TEST(PolygonFill, LimitOfCrossingsIsThatOfTheCaller)
{
    const std::vector<FlatLoop> loops{Square(0, 0, 2), Square(1, 1, 2)};
    std::size_t work = kEnough;
    EXPECT_EQ(FillLoops(loops, work, 2).result, FillResult::Filled);
    EXPECT_EQ(FillLoops(loops, work, 1).result, FillResult::Crossing);
}

TEST(PolygonFill, LoopsShareTheWorkAndThoseThatNeedMoreAreRefused)
{
    const FlatLoop comb = FlatComb(50);
    const std::size_t needed = WorkFor({comb});
    std::size_t work = 2 * needed;
    EXPECT_EQ(FillLoops({comb}, work).result, FillResult::Filled);
    EXPECT_EQ(work, needed);
    EXPECT_EQ(FillLoops({comb}, work).result, FillResult::Filled);
    EXPECT_EQ(work, 0U);
    EXPECT_EQ(FillLoops({comb}, work).result, FillResult::TooLarge);
    work = needed - 1;
    const PolygonFill refused = FillLoops({comb}, work);
    EXPECT_EQ(refused.result, FillResult::TooLarge);
    EXPECT_THAT(refused.triangles, IsEmpty());
}

TEST(PolygonFill, WorkOfACombGrowsWithTheCubeOfItsCornersUpToTheLimit)
{
    // Two turns of each tooth, and a factor that grows with the corners, too.
    EXPECT_GT(WorkFor({FlatComb(1000)}), 6 * WorkFor({FlatComb(500)}));
    std::size_t work = kEnough;
    EXPECT_EQ(FillLoops({FlatComb(2000)}, work).result, FillResult::TooLarge);
    EXPECT_EQ(work, kEnough);
}

TEST(PolygonFill, LargeLoopThatTurnsBackRarelyIsFilled)
{
    // A wave over a bar.
    constexpr int kCorners = 50'000;
    FlatLoop loop{{0, -2}, {1.0 * kCorners, -2}};
    for (int i = kCorners; i >= 0; --i)
        loop.push_back({1.0 * i, i % 2 == 0 ? 0.0 : 1.0});
    const PolygonFill fill = Fill({loop});
    EXPECT_EQ(fill.result, FillResult::Filled);
    EXPECT_THAT(fill.triangles, SizeIs(loop.size() - 2));
    EXPECT_NEAR(AreaOfFill({loop}, fill), 2.5 * kCorners, 1e-3);
}

TEST(PolygonFill, GridOfHolesIsFilledAndALongRowOfSquaresIsRefused)
{
    constexpr int kSide = 45;
    std::vector<FlatLoop> plate{Square(-1, -1, 2.0 * kSide + 1)};
    for (int i = 0; i < kSide; ++i)
        for (int j = 0; j < kSide; ++j)
            plate.push_back(Square(2.0 * i, 2.0 * j, 1));
    const PolygonFill fill = Fill(plate);
    EXPECT_EQ(fill.result, FillResult::Filled);
    EXPECT_NEAR(AreaOfFill(plate, fill), 91.0 * 91.0 - 45.0 * 45.0, 1e-6);

    EXPECT_EQ(Fill(Row(500)).result, FillResult::Filled);
    EXPECT_EQ(Fill(Row(4000)).result, FillResult::TooLarge);
}

TEST(PolygonFill, PointIsInsideALoopThatGoesAroundItOnce)
{
    const FlatLoop comb = FlatComb(2);
    EXPECT_TRUE(IsInside({1.5, 5}, comb));
    EXPECT_FALSE(IsInside({2.5, 5}, comb));
    EXPECT_TRUE(IsInside({2.5, 0.5}, comb));
    EXPECT_FALSE(IsInside({-1, 0.5}, comb));
    EXPECT_FALSE(IsInside({0, 0}, {}));
}

} // namespace
} // namespace viewer
