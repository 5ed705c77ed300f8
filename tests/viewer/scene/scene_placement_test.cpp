#include "viewer/scene/scene_placement.h"

#include "tests/viewer/test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace viewer
{
namespace
{

constexpr double kDegree = std::numbers::pi / 180.0;

TEST(ScenePlacement, PutsTheModelAtTheOriginAndScalesItToTheSceneSize)
{
    const ScenePlacement placement(BoxOf({1e6, -5e6, 2e6}, {1e6 + 3, -5e6 + 4, 2e6 + 12}));
    EXPECT_EQ(placement.SceneBox().min, (Point{0, 0, 0}));
    const Box fitted = placement.FittedBox(1.0);
    EXPECT_NEAR(1.2 * fitted.Diagonal(), kSceneSize, 1e-12);
    // The edges are still in the proportion 3 : 4 : 12.
    const Point edges = placement.SceneBox().max;
    EXPECT_NEAR(edges.y / edges.x, 4.0 / 3.0, 1e-12);
    EXPECT_NEAR(edges.z / edges.x, 4.0, 1e-12);
}

TEST(ScenePlacement, FittedBoxKeepsTheCenter)
{
    const ScenePlacement placement(BoxOf({-1, -2, -3}, {4, 8, 1}));
    for (const double aspect : {0.2, 1.0, 5.0}) {
        const Point offset = placement.FittedBox(aspect).Center() - placement.SceneBox().Center();
        EXPECT_LT(Length(offset), 1e-15) << aspect;
    }
}

TEST(ScenePlacement, FittedBoxLeavesAMarginAroundTheSphereOfTheModelInBothProjections)
{
    const ScenePlacement placement(BoxOf({0, 0, 0}, {1, 2, 3}));
    for (const double aspect : {0.2, 0.5, 0.99, 1.0, 1.01, 4.0 / 3.0, 1.45, 1.46, 2.0, 5.0}) {
        const double growth = placement.FittedBox(aspect).Diagonal() / placement.SceneBox().Diagonal();
        // For a sphere of radius 1 the eye is at 1.2 times the grown diagonal of 2.
        const double distance = 1.2 * 2.0 * growth;
        const double sideways = std::atan(aspect * std::tan(20.0 * kDegree));
        EXPECT_GT(distance * std::sin(20.0 * kDegree), 1.04) << aspect;
        EXPECT_GT(distance * std::sin(sideways), 1.04) << aspect;
        EXPECT_GT(distance * 0.5, 1.04) << aspect;
        EXPECT_GT(distance * 0.5 / aspect, 1.04) << aspect;
    }
}

TEST(ScenePlacement, SinglePointLiesInTheMiddleOfASceneOfUsualSize)
{
    const ScenePlacement placement(BoxOf({5, 5, 5}, {5, 5, 5}));
    EXPECT_NEAR(1.2 * placement.FittedBox(1.0).Diagonal(), kSceneSize, 1e-12);
    EXPECT_LT(Length(placement.ToScene({5, 5, 5}) - placement.SceneBox().Center()), 1e-12);
}

} // namespace
} // namespace viewer
