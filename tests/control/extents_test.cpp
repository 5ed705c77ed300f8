// The box of the scene, its centre and its size, and their effect on the camera.
#include "tests/support/control_test.h"

#include "platform/host/db/entities.h"

#include <cmath>
#include <limits>

using namespace karv_test;
using testing::IsEmpty;

namespace
{

constexpr float kInfinity = std::numeric_limits<float>::infinity();

class ControlExtents : public ControlTest
{
  protected:
    /// Appends one triangle with this box. Needs no window.
    void AppendBox(KARVGLVertex a, KARVGLVertex b)
    {
        control_.AppendGeometry(TriangleInBox(a, b), TypeOf(0), 1, 1.0F);
    }

    /// Appends an entity that reports this box.
    void AppendClaiming(KARVGLVertex a, KARVGLVertex b)
    {
        KARVGraphicalEntity entity;
        entity.minExtent = a;
        entity.maxExtent = b;
        control_.AppendGeometry(entity);
    }

    void ExpectBox(KARVGLVertex min, KARVGLVertex max) const
    {
        EXPECT_EQ(control_.extentsMin, min);
        EXPECT_EQ(control_.extentsMax, max);
    }

    void ExpectTarget(double x, double y, double z) const
    {
        EXPECT_EQ(control_.camera.target.x, x);
        EXPECT_EQ(control_.camera.target.y, y);
        EXPECT_EQ(control_.camera.target.z, z);
    }

    /// The scene size, and the far distance of 100 scene sizes, computed in double and narrowed.
    void ExpectSize(float size) const
    {
        EXPECT_EQ(control_.sceneSize, size);
        EXPECT_EQ(control_.camera.farPlane, static_cast<float>(static_cast<double>(size) * 100.0));
    }

    KARVOpenGLControl control_;
};

TEST_F(ControlExtents, TheFirstEntitySeedsTheScene)
{
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    EXPECT_TRUE(control_.extentsSeeded);
    ExpectBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    EXPECT_EQ(control_.centroid, KARVGLVertex(2.5, 3.5, 4.5));
    ExpectTarget(2.5, 3.5, 4.5);
    // The diagonal is the root of 27, 5.196152210235596 as a float; times 1.2.
    ExpectSize(6.235382556915283F);
}

TEST_F(ControlExtents, OnlyTargetAndFarDistanceOfTheCameraMove)
{
    control_.camera.SetPosition({7.0, 8.0, 9.0});
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    EXPECT_EQ(control_.camera.position.x, 7.0);
    EXPECT_EQ(control_.camera.position.y, 8.0);
    EXPECT_EQ(control_.camera.position.z, 9.0);
    EXPECT_EQ(control_.camera.upVector.z, 1.0);
    EXPECT_EQ(control_.zoomFactor, 1.0F);
    EXPECT_EQ(control_.fieldOfView, 40.0F);
}

TEST_F(ControlExtents, ASceneMakesNoGlCall)
{
    const GlRecording gl;
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    control_.OverrideExtents({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    EXPECT_THAT(gl.Listing(), IsEmpty());
}

TEST_F(ControlExtents, NegativeCoordinatesSeedAsTheyAre)
{
    AppendBox({-4.0, -5.0, -6.0}, {-1.0, -2.0, -3.0});
    ExpectBox({-4.0, -5.0, -6.0}, {-1.0, -2.0, -3.0});
    ExpectTarget(-2.5, -3.5, -4.5);
}

TEST_F(ControlExtents, ALineAtNegativeCoordinatesReachesUpToTheOrigin)
{
    AcDbLine line({-3.0, -2.0, -1.0}, {-1.0, -1.0, -1.0});
    control_.AppendGeometry(&line, TypeOf(0));
    ExpectBox({-3.0, -2.0, -1.0}, {0.0, 0.0, 0.0});
}

TEST_F(ControlExtents, ASecondEntityGrowsTheBoxAxisByAxis)
{
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    AppendBox({0.0, 3.0, 4.0}, {3.0, 9.0, 5.0});
    ExpectBox({0.0, 2.0, 3.0}, {4.0, 9.0, 6.0});
    ExpectTarget(2.0, 5.5, 4.5);
    // The root of 16 + 49 + 9 = 74.
    ExpectSize(static_cast<float>(static_cast<double>(static_cast<float>(std::sqrt(74.0))) * 1.2));
}

TEST_F(ControlExtents, AnEntityInsideSetsTheTargetAgain)
{
    AppendBox({0.0, 0.0, 0.0}, {4.0, 4.0, 4.0});
    control_.camera.SetTarget({9.0, 9.0, 9.0});
    control_.centroid = {};
    AppendBox({1.0, 1.0, 1.0}, {2.0, 2.0, 2.0});
    ExpectBox({0.0, 0.0, 0.0}, {4.0, 4.0, 4.0});
    EXPECT_EQ(control_.centroid, KARVGLVertex(2.0, 2.0, 2.0));
    ExpectTarget(2.0, 2.0, 2.0);
}

TEST_F(ControlExtents, AnEntityWithoutGeometrySeedsTheOrigin)
{
    control_.AppendGeometry(KARVGraphicalEntity());
    EXPECT_TRUE(control_.extentsSeeded);
    ExpectBox({0.0, 0.0, 0.0}, {0.0, 0.0, 0.0});
    ExpectSize(0.0F);
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    ExpectBox({0.0, 0.0, 0.0}, {4.0, 5.0, 6.0});
}

TEST_F(ControlExtents, ANullHostEntitySeedsTheOrigin)
{
    AcDbEntity* const nothing = nullptr;
    control_.AppendGeometry(nothing, TypeOf(0));
    EXPECT_TRUE(control_.extentsSeeded);
    ExpectBox({0.0, 0.0, 0.0}, {0.0, 0.0, 0.0});
}

TEST_F(ControlExtents, ASinglePointIsASceneOfNoSize)
{
    AppendBox({3.0, 3.0, 3.0}, {3.0, 3.0, 3.0});
    ExpectTarget(3.0, 3.0, 3.0);
    ExpectSize(0.0F);
}

TEST_F(ControlExtents, TheSeedIsTheFarCornerForBoth)
{
    // A reported box whose minimum lies above its maximum: the seed is the maximum. Then the minimum is added
    // as a point and raises the maximum.
    AppendClaiming({5.0, 5.0, 5.0}, {1.0, 1.0, 1.0});
    ExpectBox({1.0, 1.0, 1.0}, {5.0, 5.0, 5.0});
}

TEST_F(ControlExtents, ABoundMovesOnlyBeyondItsTolerance)
{
    AppendClaiming({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    AppendClaiming({-0.5e-20F, 0.0, 0.0}, {1.0, 1.0, 1.0}); // within the tolerance 0 x 1e-20 + 1e-20
    ExpectBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    AppendClaiming({-2e-20F, 0.0, 0.0}, {1.0, 1.0, 1.0});
    EXPECT_EQ(control_.extentsMin.x, -2e-20F);
}

TEST_F(ControlExtents, AnUpperBoundMovesOnlyBeyondItsTolerance)
{
    AppendClaiming({-1.0, -1.0, -1.0}, {0.0, 0.0, 0.0});
    AppendClaiming({-1.0, -1.0, -1.0}, {0.5e-20F, 0.0, 0.0});
    EXPECT_EQ(control_.extentsMax.x, 0.0F);
    AppendClaiming({-1.0, -1.0, -1.0}, {2e-20F, 0.0, 0.0});
    EXPECT_EQ(control_.extentsMax.x, 2e-20F);
}

TEST_F(ControlExtents, TheNearCornerIsAddedBeforeTheFarOne)
{
    // Within the tolerance the order shows: 2e-20 is beyond 0 + 1e-20 and becomes the bound, whose tolerance
    // then includes 2.5e-20. In the other order 2.5e-20 would become the bound.
    AppendClaiming({-1.0, -1.0, -1.0}, {0.0, 0.0, 0.0});
    AppendClaiming({2e-20, 0.0, 0.0}, {2.5e-20, 0.0, 0.0});
    EXPECT_EQ(control_.extentsMax.x, 2e-20F);
}

TEST_F(ControlExtents, TheDiagonalIsTakenInDouble)
{
    // The squares of 1000 and 4107 add up to 17867449. As a float the sum is even, and its root would round
    // to 4226.990234375, the float below.
    AppendBox({0.0, 0.0, 0.0}, {1000.0, 4107.0, 0.0});
    const auto diagonal = static_cast<float>(std::sqrt(17867449.0));
    ASSERT_NE(diagonal, std::sqrt(1000.0F * 1000.0F + 4107.0F * 4107.0F));
    ExpectSize(static_cast<float>(static_cast<double>(diagonal) * 1.2));
}

TEST_F(ControlExtents, TheScaleOfTheDiagonalIsADouble)
{
    // The root of 1 + 121 as a float; the float nearest to 1.2 is greater than 1.2.
    AppendBox({0.0, 0.0, 0.0}, {1.0, 11.0, 0.0});
    const auto diagonal = static_cast<float>(std::sqrt(122.0));
    const auto expected = static_cast<float>(static_cast<double>(diagonal) * 1.2);
    ASSERT_NE(expected, diagonal * 1.2F);
    ExpectSize(expected);
}

TEST_F(ControlExtents, TheDiagonalIsRoundedToFloatBeforeItIsScaled)
{
    // The root of 1 + 36 = 37 is 6.082762530298219, as a float 6.082762718200684. Times 1.2 that rounds to
    // the float 7.299315452575684; the unrounded root times 1.2 would round to 7.299314975738525.
    AppendBox({0.0, 0.0, 0.0}, {1.0, 6.0, 0.0});
    ExpectSize(7.299315452575684F);
    ASSERT_NE(7.299315452575684F, static_cast<float>(std::sqrt(37.0) * 1.2));
}

TEST_F(ControlExtents, TheCenterIsTakenInSinglePrecision)
{
    // 16777216 + 1 is 16777216 in float, whose neighbours are 2 apart; half of it is 8388608. In double it
    // would be 8388608.5.
    AppendBox({1.0, 0.0, 0.0}, {16777216.0, 1.0, 1.0});
    EXPECT_EQ(control_.centroid.x, 8388608.0F);
    EXPECT_EQ(control_.camera.target.x, 8388608.0);
}

TEST_F(ControlExtents, AHugeSceneOverflowsItsCenterInFloatButNotItsSize)
{
    AppendBox({3e38, 0.0, 0.0}, {3e38, 1.0, 0.0});
    EXPECT_EQ(control_.centroid.x, kInfinity); // 6e38 exceeds the range of floats
    ExpectSize(static_cast<float>(1.2));
}

TEST_F(ControlExtents, EveryCoordinateOfTheCenterIsHalfOfAFloatSum)
{
    AppendBox({3e38, 3e38, 3e38}, {3e38, 3e38, 3e38});
    // The sum exceeds the range of floats, although half of it does not.
    EXPECT_EQ(control_.centroid.x, kInfinity);
    EXPECT_EQ(control_.centroid.y, kInfinity);
    EXPECT_EQ(control_.centroid.z, kInfinity);
}

TEST_F(ControlExtents, ATinySceneHasATinySize)
{
    AppendBox({0.0, 0.0, 0.0}, {1e-15, 0.0, 0.0});
    ExpectSize(static_cast<float>(static_cast<double>(1e-15F) * 1.2));
}

TEST_F(ControlExtents, ANaNCoordinateDoesNotMoveTheBox)
{
    AppendBox({0.0, 0.0, 0.0}, {2.0, 2.0, 2.0});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    AppendClaiming({nan, nan, nan}, {nan, 3.0, nan});
    ExpectBox({0.0, 0.0, 0.0}, {2.0, 3.0, 2.0});
}

TEST_F(ControlExtents, ASceneSeededWithNaNStaysNaN)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    AppendClaiming({nan, 0.0, 0.0}, {nan, 1.0, 1.0});
    AppendBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    EXPECT_TRUE(std::isnan(control_.extentsMin.x));
    EXPECT_TRUE(std::isnan(control_.extentsMax.x));
    EXPECT_TRUE(std::isnan(control_.sceneSize));
    EXPECT_TRUE(std::isnan(control_.camera.farPlane));
}

TEST_F(ControlExtents, AnInfiniteCoordinateGivesAnInfiniteSize)
{
    AppendBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    AppendBox({0.0, 0.0, 0.0}, {std::numeric_limits<double>::infinity(), 1.0, 1.0});
    EXPECT_EQ(control_.extentsMax.x, kInfinity);
    EXPECT_EQ(control_.centroid.x, kInfinity);
    EXPECT_EQ(control_.sceneSize, kInfinity);
}

TEST_F(ControlExtents, ASceneSeededAtInfinityStaysThere)
{
    // The far corner seeds both bounds. The tolerance of an infinite bound is infinite, and infinity minus
    // infinity is NaN, so nothing lies beyond it.
    AppendBox({0.0, 0.0, 0.0}, {std::numeric_limits<double>::infinity(), 1.0, 1.0});
    EXPECT_EQ(control_.extentsMin.x, kInfinity);
    EXPECT_EQ(control_.extentsMax.x, kInfinity);
    EXPECT_TRUE(std::isnan(control_.sceneSize));
}

TEST_F(ControlExtents, WithoutComputingAppendsLeaveSceneAndCamera)
{
    control_.ComputeExtents(false);
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    EXPECT_FALSE(control_.extentsSeeded);
    ExpectBox({0.0, 0.0, 0.0}, {0.0, 0.0, 0.0});
    EXPECT_EQ(control_.sceneSize, 0.0F);
    EXPECT_EQ(control_.camera.farPlane, 1000.0F);
    ExpectTarget(0.0, 0.0, 0.0);
    EXPECT_EQ(control_.entities.size(), 1U);
}

TEST_F(ControlExtents, ComputingAgainDoesNotCatchUp)
{
    control_.ComputeExtents(false);
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    control_.ComputeExtents(true);
    EXPECT_FALSE(control_.extentsSeeded);
    AppendBox({10.0, 10.0, 10.0}, {11.0, 11.0, 11.0});
    ExpectBox({10.0, 10.0, 10.0}, {11.0, 11.0, 11.0});
}

TEST_F(ControlExtents, SwitchingComputingLeavesACameraThatWasMovedSince)
{
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    control_.camera.SetTarget({7.0, 8.0, 9.0});
    control_.camera.SetFarPlaneDistance(5.0);
    control_.ComputeExtents(false);
    control_.ComputeExtents(true);
    ExpectTarget(7.0, 8.0, 9.0);
    EXPECT_EQ(control_.camera.farPlane, 500.0F);
}

TEST_F(ControlExtents, SwitchingComputingKeepsThePresentBox)
{
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    control_.ComputeExtents(false);
    control_.ComputeExtents(true);
    ExpectBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
}

TEST_F(ControlExtents, AnOverrideReplacesTheBox)
{
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    control_.OverrideExtents({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0});
    ExpectBox({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0});
    ExpectTarget(1.5, 2.0, 0.0);
    ExpectSize(6.0F); // 5 x 1.2
}

TEST_F(ControlExtents, AnOverrideIsNarrowedToFloat)
{
    control_.OverrideExtents({0.1, 0.0, 0.0}, {1e300, 0.0, 0.0});
    EXPECT_EQ(control_.extentsMin.x, 0.1F);
    EXPECT_EQ(control_.extentsMax.x, kInfinity);
}

TEST_F(ControlExtents, AnOverrideWithSwappedCornersIsKeptAsGiven)
{
    control_.OverrideExtents({3.0, 4.0, 0.0}, {0.0, 0.0, 0.0});
    ExpectBox({3.0, 4.0, 0.0}, {0.0, 0.0, 0.0});
    ExpectTarget(1.5, 2.0, 0.0);
    ExpectSize(6.0F);
}

TEST_F(ControlExtents, AnOverrideOfNoSizeGivesNoSize)
{
    control_.OverrideExtents({7.0, 7.0, 7.0}, {7.0, 7.0, 7.0});
    ExpectTarget(7.0, 7.0, 7.0);
    ExpectSize(0.0F);
}

TEST_F(ControlExtents, AnOverrideOfNaNIsUsedAsItIs)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    control_.OverrideExtents({nan, 0.0, 0.0}, {1.0, 1.0, 1.0});
    EXPECT_TRUE(std::isnan(control_.centroid.x));
    EXPECT_TRUE(std::isnan(control_.sceneSize));
    EXPECT_TRUE(std::isnan(control_.camera.target.x));
    EXPECT_EQ(control_.camera.target.y, 0.5);
}

TEST_F(ControlExtents, AnOverrideOfAFreshControlIsLostWithTheFirstAppend)
{
    control_.OverrideExtents({-100.0, -100.0, -100.0}, {100.0, 100.0, 100.0});
    EXPECT_FALSE(control_.extentsSeeded);
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    ExpectBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    ExpectSize(6.235382556915283F);
}

TEST_F(ControlExtents, AnOverrideAfterTheFirstAppendIsGrownByTheNext)
{
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    control_.OverrideExtents({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    AppendBox({0.0, 0.0, 0.0}, {0.0, 2.0, 0.0});
    ExpectBox({0.0, 0.0, 0.0}, {1.0, 2.0, 1.0});
}

TEST_F(ControlExtents, AnOverrideWorksWithoutComputing)
{
    control_.ComputeExtents(false);
    control_.OverrideExtents({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0});
    AppendBox({50.0, 50.0, 50.0}, {60.0, 60.0, 60.0});
    ExpectBox({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0});
    ExpectSize(6.0F);
}

TEST_F(ControlExtents, AfterSetCameraTheTargetStaysAndTheFarDistanceFollows)
{
    control_.SetCamera({0.0, -9.0, 0.0}, {8.0, 8.0, 8.0}, AcGeVector3d::kZAxis);
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    ExpectTarget(8.0, 8.0, 8.0);
    ExpectSize(6.235382556915283F);
    EXPECT_EQ(control_.centroid, KARVGLVertex(2.5, 3.5, 4.5));
}

TEST_F(ControlExtents, AfterSetCameraDataTheTargetStaysAndTheFarDistanceFollows)
{
    control_.SetCameraData({0.0, -9.0, 0.0}, {8.0, 8.0, 8.0}, AcGeVector3d::kZAxis);
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    ExpectTarget(8.0, 8.0, 8.0);
    ExpectSize(6.235382556915283F);
}

TEST_F(ControlExtents, AfterSetCameraAnOverrideLeavesTheTargetToo)
{
    control_.SetCamera({0.0, -9.0, 0.0}, {8.0, 8.0, 8.0}, AcGeVector3d::kZAxis);
    control_.OverrideExtents({0.0, 0.0, 0.0}, {3.0, 4.0, 0.0});
    ExpectTarget(8.0, 8.0, 8.0);
    ExpectSize(6.0F);
}

TEST_F(ControlExtents, AStandardViewDoesNotEndTheCentering)
{
    control_.CameraViewTop();
    AppendBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    ExpectTarget(2.5, 3.5, 4.5);
}

} // namespace
