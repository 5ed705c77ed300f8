#include "geometry/KARVGraphicalEntity.h"

#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <vector>

namespace
{

KARVGLVertex Normal(const std::vector<KARVGLVertex>& corners)
{
    KARVGraphicalEntity entity;
    return entity.FindFaceNormal(corners);
}

} // namespace

TEST(FaceNormal, CounterClockwiseCornersPointToTheViewer)
{
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}), KARVGLVertex(0.0, 0.0, 1.0));
}

TEST(FaceNormal, ClockwiseCornersPointAway)
{
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {1.0, 0.0, 0.0}}), KARVGLVertex(0.0, 0.0, -1.0));
}

TEST(FaceNormal, LengthIsTwiceTheArea)
{
    // The area is half of 2 times 2, and the normal is twice as long.
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {0.0, 2.0, 0.0}}), KARVGLVertex(0.0, 0.0, 4.0));
}

TEST(FaceNormal, OtherPlanesGiveTheirOwnAxes)
{
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}), KARVGLVertex(1.0, 0.0, 0.0));
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 0.0}}), KARVGLVertex(0.0, 1.0, 0.0));
}

TEST(FaceNormal, PlaceInSpaceDoesNotMatter)
{
    EXPECT_EQ(Normal({{5.0, 6.0, 7.0}, {6.0, 6.0, 7.0}, {5.0, 7.0, 7.0}}), KARVGLVertex(0.0, 0.0, 1.0));
}

TEST(FaceNormal, CornersAfterTheThirdAreIgnored)
{
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {9.0, 9.0, 9.0}}),
              KARVGLVertex(0.0, 0.0, 1.0));
}

TEST(FaceNormal, FewerThanThreeCornersGiveZero)
{
    const karv_test::TraceRecording trace;
    EXPECT_EQ(Normal({}), KARVGLVertex());
    EXPECT_EQ(Normal({{1.0, 2.0, 3.0}}), KARVGLVertex());
    EXPECT_EQ(Normal({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}}), KARVGLVertex());
    EXPECT_THAT(trace.Faults(), testing::IsEmpty());
}

TEST(FaceNormal, CollinearCornersGiveZero)
{
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}, {2.0, 2.0, 2.0}}), KARVGLVertex());
}

TEST(FaceNormal, CoincidentCornersGiveZero)
{
    EXPECT_EQ(Normal({{1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}}), KARVGLVertex());
}

TEST(FaceNormal, IsComputedIn64Bits)
{
    // a = (4097, 4096, 0), b = (4098, 4097, 0): the products 4098 * 4096 = 16785408 and 4097 * 4097 =
    // 16785409 round to the same float, so their difference of -1 shows only in 64 bits.
    ASSERT_EQ(4098.0F * 4096.0F, 4097.0F * 4097.0F);
    EXPECT_EQ(Normal({{4097.0, 4096.0, 0.0}, {0.0, 0.0, 0.0}, {4098.0, 4097.0, 0.0}}),
              KARVGLVertex(0.0, 0.0, -1.0));
}

TEST(FaceNormal, EdgesAreTakenIn64Bits)
{
    // a = (16777215.25, 1, 0) and b = (16777217.25, 1, 0), so z of b x a is their difference in x, 2. As
    // floats the edges would be 16777215 and 16777218 long.
    ASSERT_EQ(16777216.0F - 0.75F, 16777215.0F);
    ASSERT_EQ(16777218.0F - 0.75F, 16777218.0F);
    EXPECT_EQ(Normal({{16777216.0, 1.0, 0.0}, {0.75, 0.0, 0.0}, {16777218.0, 1.0, 0.0}}),
              KARVGLVertex(0.0, 0.0, 2.0));
}

TEST(FaceNormal, TinyAndHugeTrianglesKeepTheirScale)
{
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {1e-10, 0.0, 0.0}, {0.0, 1e-10, 0.0}}).z,
              static_cast<float>(static_cast<double>(1e-10F) * static_cast<double>(1e-10F)));
    EXPECT_EQ(Normal({{0.0, 0.0, 0.0}, {1e30, 0.0, 0.0}, {0.0, 1e30, 0.0}}).z,
              std::numeric_limits<float>::infinity());
}

TEST(FaceNormal, NaNCornersGiveNaN)
{
    EXPECT_TRUE(std::isnan(
        Normal({{std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}).z));
}
