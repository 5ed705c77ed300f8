#include "viewer/scene/scene_placement.h"

#include "tests/viewer/test_support.h"

#include <gtest/gtest.h>

#include <cmath>

namespace viewer
{
namespace
{

TEST(ScenePlacement, PutsTheModelAtTheOriginAndScalesItToTheSceneSize)
{
    const Box box = BoxOf({1e6, -5e6, 2e6}, {1e6 + 3, -5e6 + 4, 2e6 + 12});
    const ScenePlacement placement(box);
    EXPECT_EQ(placement.ToScene(box.min), (Point{0, 0, 0}));
    const Point edges = placement.ToScene(box.max);
    EXPECT_NEAR(Length(edges), 0.65 * kSceneSize, 1e-12);
    // The edges are still in the proportion 3 : 4 : 12.
    EXPECT_NEAR(edges.y / edges.x, 4.0 / 3.0, 1e-12);
    EXPECT_NEAR(edges.z / edges.x, 4.0, 1e-12);
}

TEST(ScenePlacement, SinglePointLiesInTheMiddleOfACubeOfUsualSize)
{
    const ScenePlacement placement(BoxOf({5, 5, 5}, {5, 5, 5}));
    const Point middle = placement.ToScene({5, 5, 5});
    EXPECT_NEAR(2.0 * Length(middle), 0.65 * kSceneSize, 1e-12);
    EXPECT_NEAR(middle.x, middle.y, 1e-15);
    EXPECT_NEAR(middle.x, middle.z, 1e-15);
}

} // namespace
} // namespace viewer
