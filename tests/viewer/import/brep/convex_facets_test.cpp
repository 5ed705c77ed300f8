#include "viewer/import/brep/convex_facets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace viewer
{
namespace
{

using Triangles = std::vector<std::array<int, 3>>;

class ConvexFacets : public testing::Test
{
  protected:
    std::vector<FacetCorners> Join(
        const Triangles& triangles,
        const std::function<bool(int, int)>& must_stay = [](int, int) { return false; })
    {
        const auto point_of = [this](int corner) { return points_.at(static_cast<std::size_t>(corner)); };
        return JoinIntoConvexPolygons(triangles, point_of, {0, 0, 1}, must_stay);
    }

    std::vector<Point> points_;
};

TEST_F(ConvexFacets, NoTrianglesMakeNothing)
{
    EXPECT_TRUE(Join({}).empty());
}

TEST_F(ConvexFacets, OneTriangleStays)
{
    points_ = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    EXPECT_THAT(Join({{0, 1, 2}}), testing::ElementsAre(FacetCorners{0, 1, 2}));
}

TEST_F(ConvexFacets, SquareBecomesOne)
{
    points_ = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    const auto joined = Join({{0, 1, 2}, {0, 2, 3}});
    ASSERT_EQ(joined.size(), 1U);
    EXPECT_EQ(joined[0].size(), 4U);
}

TEST_F(ConvexFacets, EdgeThatMustStayKeepsTheSquareApart)
{
    points_ = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    const auto stays = [](int a, int b) { return a + b == 2 && a * b == 0; };
    EXPECT_EQ(Join({{0, 1, 2}, {0, 2, 3}}, stays).size(), 2U);
}

TEST_F(ConvexFacets, DiscOfAThousandCornersBecomesOne)
{
    constexpr int kCorners = 1000;
    Triangles triangles;
    for (int i = 0; i < kCorners; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / kCorners;
        points_.push_back({std::cos(angle), std::sin(angle), 0.0});
        if (i >= 2)
            triangles.push_back({0, i - 1, i});
    }
    const auto joined = Join(triangles);
    ASSERT_EQ(joined.size(), 1U);
    EXPECT_EQ(joined[0].size(), 1000U);
}

TEST_F(ConvexFacets, CornersInOneLineAreKept)
{
    points_ = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}};
    const auto joined = Join({{0, 1, 4}, {1, 3, 4}, {1, 2, 3}});
    ASSERT_EQ(joined.size(), 1U);
    EXPECT_EQ(joined[0].size(), 5U);
}

TEST_F(ConvexFacets, TriangleWithoutAreaGoesIntoItsNeighbour)
{
    points_ = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 2, 0}};
    const auto joined = Join({{0, 1, 2}, {0, 2, 3}});
    ASSERT_EQ(joined.size(), 1U);
    EXPECT_EQ(joined[0].size(), 4U);
}

TEST_F(ConvexFacets, NotchIsNotFilled)
{
    // An arrow head with its notch at (1, 1).
    points_ = {{0, 0, 0}, {1, 1, 0}, {2, 0, 0}, {1, 3, 0}};
    const auto joined = Join({{0, 1, 3}, {1, 2, 3}});
    EXPECT_EQ(joined.size(), 2U);
}

TEST_F(ConvexFacets, RingIsNotClosedOverItsHole)
{
    // A square of 3 around one of 1.
    points_ = {{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 3, 0}, {1, 1, 0}, {2, 1, 0}, {2, 2, 0}, {1, 2, 0}};
    const auto joined =
        Join({{0, 1, 5}, {0, 5, 4}, {1, 2, 6}, {1, 6, 5}, {2, 3, 7}, {2, 7, 6}, {3, 0, 4}, {3, 4, 7}});
    EXPECT_EQ(joined.size(), 4U);
    std::size_t corners = 0;
    for (const FacetCorners& facet : joined)
        corners += facet.size();
    EXPECT_EQ(corners, 16U);
}

TEST_F(ConvexFacets, EdgeOfThreeTrianglesStays)
{
    points_ = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    EXPECT_EQ(Join({{0, 1, 2}, {0, 2, 3}, {0, 2, 3}}).size(), 3U);
}

} // namespace
} // namespace viewer
