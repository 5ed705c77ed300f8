#include "tests/geometry/shapes.h"

#include "platform/host/db/entities.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <vector>

using karv_test::EntityOf;
using karv_test::Face;
using karv_test::kRed;

using Entity = KARVGraphicalEntity;

namespace
{

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Box {
    KARVGLVertex min;
    KARVGLVertex max;

    bool operator==(const Box&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Box& box)
{
    return out << '(' << box.min.x << ", " << box.min.y << ", " << box.min.z << ")-(" << box.max.x << ", "
               << box.max.y << ", " << box.max.z << ')';
}

KARVGLVertex Vertex(float x, float y = 0.0F, float z = 0.0F)
{
    KARVGLVertex vertex;
    vertex.x = x;
    vertex.y = y;
    vertex.z = z;
    return vertex;
}

Box BoxOf(Entity entity)
{
    Box box;
    entity.GetExtents(box.min, box.max);
    return box;
}

Box LineBox(const AcGePoint3d& start, const AcGePoint3d& end)
{
    AcDbLine line(start, end);
    return BoxOf(Entity(&line, Entity::EntityType0));
}

/// The box on the x axis from `low` to `high`, grown by the point `p`.
Box Grown(float p, float low, float high)
{
    Box box{Vertex(low), Vertex(high)};
    Entity::DoesPointContainExtent(Vertex(p), box.min, box.max);
    return box;
}

} // namespace

TEST(Extents, TriangleSeedsTheBoxWithItsFirstCorner)
{
    const Box box = BoxOf(EntityOf(Face({{1.0, 1.0, 1.0}, {2.0, 1.0, 1.0}, {1.0, 3.0, 1.0}})));
    EXPECT_EQ(box, (Box{{1.0, 1.0, 1.0}, {2.0, 3.0, 1.0}}));
}

TEST(Extents, FacesAtNegativeCoordinatesEndBelowTheOrigin)
{
    const Box box = BoxOf(EntityOf(Face({{-3.0, -2.0, -1.0}, {-2.0, -2.0, -1.0}, {-3.0, -1.0, -4.0}})));
    EXPECT_EQ(box, (Box{{-3.0, -2.0, -4.0}, {-2.0, -1.0, -1.0}}));
}

TEST(Extents, FacesAfterTheFirstGrowTheBox)
{
    const Entity entity({Face({}), Face({{5.0, 5.0, 5.0}}), Face({{7.0, 4.0, 5.0}, {6.0, 9.0, 1.0}})},
                        Entity::EntityType0, kRed);
    EXPECT_EQ(BoxOf(entity), (Box{{5.0, 4.0, 1.0}, {7.0, 9.0, 5.0}}));
    EXPECT_TRUE(entity.extentsValid);
}

TEST(Extents, FacesWithoutCornersSeedNothing)
{
    const Entity entity({Face({}), Face({})}, Entity::EntityType0, kRed);
    EXPECT_EQ(BoxOf(entity), Box());
    EXPECT_FALSE(entity.extentsValid);
}

TEST(Extents, OneCornerIsABoxOfNoSize)
{
    EXPECT_EQ(BoxOf(EntityOf(Face({{4.0, 5.0, 6.0}}))), (Box{{4.0, 5.0, 6.0}, {4.0, 5.0, 6.0}}));
}

TEST(Extents, HugeCornersAreKept)
{
    const float huge = std::numeric_limits<float>::max();
    const Box box = BoxOf(EntityOf(Face({Vertex(-huge), Vertex(huge), Vertex(0.0F, kInfinity)})));
    EXPECT_EQ(box.min.x, -huge);
    EXPECT_EQ(box.max.x, huge);
    EXPECT_EQ(box.max.y, kInfinity);
}

TEST(Extents, NaNInALaterCornerIsPassedOver)
{
    const Box box = BoxOf(EntityOf(Face({Vertex(1.0F), Vertex(kNaN, 2.0F), Vertex(3.0F)})));
    EXPECT_EQ(box, (Box{Vertex(1.0F, 0.0F), Vertex(3.0F, 2.0F)}));
}

TEST(Extents, NaNInTheFirstCornerSpoilsItsAxis)
{
    const Box box = BoxOf(EntityOf(Face({Vertex(kNaN, 1.0F), Vertex(2.0F, 2.0F), Vertex(3.0F)})));
    EXPECT_TRUE(std::isnan(box.min.x));
    EXPECT_TRUE(std::isnan(box.max.x));
    EXPECT_EQ(box.min.y, 0.0F);
    EXPECT_EQ(box.max.y, 2.0F);
}

TEST(Extents, LineKeepsItsFarCornerAtTheOrigin)
{
    EXPECT_EQ(LineBox({-3.0, -2.0, -1.0}, {-1.0, -1.0, -1.0}), (Box{{-3.0, -2.0, -1.0}, {0.0, 0.0, 0.0}}));
    EXPECT_EQ(LineBox({-1.0, -1.0, -1.0}, {-3.0, -2.0, -1.0}), (Box{{-3.0, -2.0, -1.0}, {0.0, 0.0, 0.0}}));
}

TEST(Extents, LineAtPositiveCoordinatesHasATightBox)
{
    EXPECT_EQ(LineBox({1.0, 5.0, 3.0}, {4.0, 2.0, 6.0}), (Box{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}}));
}

TEST(Extents, LineAcrossTheOriginMixesTheAxes)
{
    EXPECT_EQ(LineBox({-1.0, 2.0, -3.0}, {1.0, 3.0, -2.0}), (Box{{-1.0, 2.0, -3.0}, {1.0, 3.0, 0.0}}));
}

TEST(Extents, LineOfNoLengthIsAPointAndTheOrigin)
{
    EXPECT_EQ(LineBox({2.0, 2.0, -2.0}, {2.0, 2.0, -2.0}), (Box{{2.0, 2.0, -2.0}, {2.0, 2.0, 0.0}}));
}

TEST(Extents, LineSeedsItsNearCornerWithItsEnd)
{
    // The other point is then beyond the seed, but within the tolerance: the seed stays.
    ASSERT_LT(static_cast<double>(1e-20F), 1e-20);
    EXPECT_EQ(LineBox({0.0, 0.0, 0.0}, {1e-20, 0.0, 0.0}).min.x, 1e-20F);
    EXPECT_EQ(LineBox({1e-20, 0.0, 0.0}, {0.0, 0.0, 0.0}).min.x, 0.0F);
}

TEST(Extents, NaNInTheEndOfALineSpoilsItsAxisAndInTheStartIsPassedOver)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(LineBox({1.0, 1.0, 1.0}, {nan, 2.0, 2.0}).min.x));
    EXPECT_EQ(LineBox({1.0, 1.0, 1.0}, {nan, 2.0, 2.0}).max.x, 1.0F);
    EXPECT_EQ(LineBox({nan, 1.0, 1.0}, {2.0, 2.0, 2.0}), (Box{{2.0, 1.0, 1.0}, {2.0, 2.0, 2.0}}));
}

TEST(Extents, LineMarksTheBoxAsValid)
{
    AcDbLine line({1.0, 1.0, 1.0}, {2.0, 2.0, 2.0});
    EXPECT_TRUE(Entity(&line, Entity::EntityType0).extentsValid);
    AcDbCircle circle;
    EXPECT_FALSE(Entity(&circle, Entity::EntityType0).extentsValid);
}

TEST(Extents, GetExtentsReadsTheBoxWhetherValidOrNot)
{
    Entity entity;
    entity.minExtent = {1.0, 2.0, 3.0};
    entity.maxExtent = {4.0, 5.0, 6.0};
    ASSERT_FALSE(entity.extentsValid);
    EXPECT_EQ(BoxOf(entity), (Box{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}}));
}

TEST(Extents, InitParametersEmptiesTheBoxAndMakesOpaque)
{
    Entity entity = EntityOf(Face({{4.0, 5.0, 6.0}}));
    entity.SetAlpha(0.25F);
    entity.InitParameters();
    EXPECT_EQ(BoxOf(entity), Box());
    EXPECT_FALSE(entity.extentsValid);
    EXPECT_EQ(entity.alpha, 1.0F);
    EXPECT_EQ(entity.entityType, Entity::EntityType2);
    EXPECT_EQ(entity.color, KARVGLVertex(1.0, 0.0, 0.0));
    EXPECT_EQ(entity.faces.size(), 1U);
}

TEST(ExtentsGrowth, PointBeyondMovesOneSide)
{
    EXPECT_EQ(Grown(5.0F, 0.0F, 4.0F), (Box{Vertex(0.0F), Vertex(5.0F)}));
    EXPECT_EQ(Grown(-5.0F, 0.0F, 4.0F), (Box{Vertex(-5.0F), Vertex(4.0F)}));
}

TEST(ExtentsGrowth, PointInsideOrOnTheBoxLeavesIt)
{
    EXPECT_EQ(Grown(5.0F, 0.0F, 5.0F), (Box{Vertex(0.0F), Vertex(5.0F)}));
    EXPECT_EQ(Grown(0.0F, 0.0F, 5.0F), (Box{Vertex(0.0F), Vertex(5.0F)}));
    EXPECT_EQ(Grown(2.0F, 0.0F, 5.0F), (Box{Vertex(0.0F), Vertex(5.0F)}));
}

TEST(ExtentsGrowth, EveryAxisGrowsOnItsOwn)
{
    Box box{{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}};
    Entity::DoesPointContainExtent({-1.0, 0.5, 7.0}, box.min, box.max);
    EXPECT_EQ(box, (Box{{-1.0, 0.0, 0.0}, {1.0, 1.0, 7.0}}));
}

TEST(ExtentsGrowth, PointWithinTheToleranceOfZeroLeavesTheBox)
{
    // The float nearest to 1e-20 is slightly less, and the comparison is strict.
    ASSERT_LT(static_cast<double>(1e-20F), 1e-20);
    EXPECT_EQ(Grown(1e-20F, 0.0F, 0.0F), Box());
    EXPECT_EQ(Grown(-1e-20F, 0.0F, 0.0F), Box());
    EXPECT_EQ(Grown(1e-38F, 0.0F, 0.0F), Box());
}

TEST(ExtentsGrowth, PointBeyondTheToleranceOfZeroMovesIt)
{
    const float beyond = std::nextafter(1e-20F, 1.0F);
    ASSERT_GT(static_cast<double>(beyond), 1e-20);
    EXPECT_EQ(Grown(beyond, 0.0F, 0.0F), (Box{Vertex(0.0F), Vertex(beyond)}));
    EXPECT_EQ(Grown(-beyond, 0.0F, 0.0F), (Box{Vertex(-beyond), Vertex(0.0F)}));
}

TEST(ExtentsGrowth, NextFloatBeyondALargerBoundMovesIt)
{
    // At 4 the tolerance is 5e-20, far below the distance to the next float.
    const float beyond = std::nextafter(4.0F, 5.0F);
    EXPECT_EQ(Grown(beyond, 0.0F, 4.0F).max.x, beyond);
    EXPECT_EQ(Grown(-beyond, -4.0F, 0.0F).min.x, -beyond);
}

TEST(ExtentsGrowth, InvertedBoxIsNotRepairedButGrown)
{
    // The box is inverted, from 5 to -5: the point is below the low side and above the high side.
    EXPECT_EQ(Grown(0.0F, 5.0F, -5.0F), (Box{Vertex(0.0F), Vertex(0.0F)}));
}

TEST(ExtentsGrowth, NaNPointLeavesTheBox)
{
    EXPECT_EQ(Grown(kNaN, -1.0F, 1.0F), (Box{Vertex(-1.0F), Vertex(1.0F)}));
}

TEST(ExtentsGrowth, NaNBoxStaysNaN)
{
    const Box box = Grown(3.0F, kNaN, kNaN);
    EXPECT_TRUE(std::isnan(box.min.x));
    EXPECT_TRUE(std::isnan(box.max.x));
}

TEST(ExtentsGrowth, InfinitePointsGrowTheBox)
{
    EXPECT_EQ(Grown(kInfinity, -1.0F, 1.0F), (Box{Vertex(-1.0F), Vertex(kInfinity)}));
    EXPECT_EQ(Grown(-kInfinity, -1.0F, 1.0F), (Box{Vertex(-kInfinity), Vertex(1.0F)}));
}

TEST(ExtentsGrowth, InvertedInfiniteBoxStays)
{
    // The tolerance is infinite too, and infinity minus infinity is NaN, which compares as false.
    EXPECT_EQ(Grown(3.0F, kInfinity, -kInfinity), (Box{Vertex(kInfinity), Vertex(-kInfinity)}));
}

TEST(ExtentsGrowth, NeverShrinks)
{
    Box box{{-1.0, -1.0, -1.0}, {1.0, 1.0, 1.0}};
    for (int i = 0; i < 100; ++i)
        Entity::DoesPointContainExtent({0.0, 0.0, 0.0}, box.min, box.max);
    EXPECT_EQ(box, (Box{{-1.0, -1.0, -1.0}, {1.0, 1.0, 1.0}}));
}
