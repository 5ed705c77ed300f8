#include "tests/geometry/shapes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <vector>

using karv_test::Square;
using Entity = KARVGraphicalEntity;

TEST(Vertex, DefaultIsTheOrigin)
{
    const KARVGLVertex vertex;
    EXPECT_EQ(vertex.x, 0.0F);
    EXPECT_EQ(vertex.y, 0.0F);
    EXPECT_EQ(vertex.z, 0.0F);
}

TEST(Vertex, DoublesAreNarrowedToTheNearestFloat)
{
    // Just above and just below half-way between 1 and the next float.
    const KARVGLVertex vertex(1.0 + 0x1p-24 + 0x1p-40, 1.0 + 0x1p-24 - 0x1p-40, 0.1);
    EXPECT_EQ(vertex.x, 1.0F + 0x1p-23F);
    EXPECT_EQ(vertex.y, 1.0F);
    EXPECT_EQ(vertex.z, 0.1F);
}

TEST(Vertex, HugeTinyAndSpecialDoublesAreNarrowed)
{
    const KARVGLVertex vertex(1e300, 1e-300, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(vertex.x, std::numeric_limits<float>::infinity());
    EXPECT_EQ(vertex.y, 0.0F);
    EXPECT_TRUE(std::isnan(vertex.z));
}

TEST(Vertex, ColorChannelsMapToTheUnitRange)
{
    const KARVGLVertex color(static_cast<unsigned char>(255), static_cast<unsigned char>(128),
                             static_cast<unsigned char>(0));
    EXPECT_EQ(color.x, 1.0F);
    EXPECT_EQ(color.y, 0.5019608F);
    EXPECT_EQ(color.z, 0.0F);
}

TEST(Vertex, EveryColorChannelIsTheProductTakenIn64Bits)
{
    for (int value = 0; value < 256; ++value) {
        const auto channel = static_cast<unsigned char>(value);
        const auto expected = static_cast<float>(value * 0.00392156862745098);
        const KARVGLVertex color(channel, channel, channel);
        EXPECT_EQ(color.x, expected) << value;
        EXPECT_EQ(color.y, expected) << value;
        EXPECT_EQ(color.z, expected) << value;
    }
}

TEST(Vertex, EqualsOnlyWhereEachComponentDoes)
{
    const KARVGLVertex vertex(1.0, 2.0, 3.0);
    EXPECT_TRUE(vertex == KARVGLVertex(1.0, 2.0, 3.0));
    EXPECT_FALSE(vertex == KARVGLVertex(4.0, 2.0, 3.0));
    EXPECT_FALSE(vertex == KARVGLVertex(1.0, 4.0, 3.0));
    EXPECT_FALSE(vertex == KARVGLVertex(1.0, 2.0, 4.0));
}

TEST(Vertex, ArraysAreWalkedInStridesOfThreeFloats)
{
    static_assert(std::is_standard_layout_v<KARVGLVertex>);
    static_assert(std::is_trivially_copyable_v<KARVGLVertex>);
    const std::vector<KARVGLVertex> vertices = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}};
    const auto* first = reinterpret_cast<const char*>(vertices.data());
    EXPECT_EQ(reinterpret_cast<const char*>(&vertices[1]) - first, 3 * static_cast<int>(sizeof(float)));
    EXPECT_EQ(reinterpret_cast<const char*>(&vertices[0].y) - first, static_cast<int>(sizeof(float)));
    EXPECT_EQ(reinterpret_cast<const char*>(&vertices[0].z) - first, 2 * static_cast<int>(sizeof(float)));
}

TEST(Vertex, ProductWith255thIsNotTakenIn32Bits)
{
    // 1/255 as a float has a relative error of 1.8e-8, which shows in at least one channel.
    int different = 0;
    for (int value = 0; value < 256; ++value) {
        const auto channel = static_cast<unsigned char>(value);
        const float narrow = static_cast<float>(value) * static_cast<float>(0.00392156862745098);
        different += KARVGLVertex(channel, channel, channel).x != narrow ? 1 : 0;
    }
    EXPECT_GT(different, 0);
}

TEST(Face, FieldsStandInTheirOrderInTheirTypes)
{
    static_assert(std::is_same_v<decltype(KARVGLFace::vertices), std::vector<KARVGLVertex>>);
    static_assert(std::is_same_v<decltype(KARVGLFace::normal), KARVGLVertex>);
    static_assert(std::is_same_v<decltype(KARVGLFace::displayList), std::uint32_t>);
    static_assert(!std::is_polymorphic_v<KARVGLFace> && !std::is_polymorphic_v<KARVGLVertex>);
    const KARVGLFace face;
    EXPECT_EQ(static_cast<const void*>(&face), static_cast<const void*>(&face.vertices));
    EXPECT_TRUE(
        std::less<>()(static_cast<const void*>(&face.vertices), static_cast<const void*>(&face.normal)));
    EXPECT_TRUE(
        std::less<>()(static_cast<const void*>(&face.normal), static_cast<const void*>(&face.displayList)));
}

TEST(Face, FreshFaceIsEmptyAndHasNoList)
{
    const KARVGLFace face;
    EXPECT_TRUE(face.vertices.empty());
    EXPECT_EQ(face.normal, KARVGLVertex());
    EXPECT_EQ(face.displayList, 0U);
}

TEST(Face, CopyHasItsOwnCornersAndTheSameList)
{
    KARVGLFace face = Square();
    face.displayList = 7;
    KARVGLFace copy = face;
    copy.vertices[0].x = 99.0F;
    EXPECT_EQ(face.vertices[0].x, 0.0F);
    EXPECT_EQ(copy.displayList, 7U);
    EXPECT_EQ(copy.normal, face.normal);
}

TEST(Face, AssignmentHasItsOwnCornersAndTheSameList)
{
    KARVGLFace face = Square();
    face.displayList = 7;
    KARVGLFace other;
    other = face;
    other.vertices.clear();
    EXPECT_EQ(face.vertices.size(), 4U);
    EXPECT_EQ(other.displayList, 7U);
}

TEST(Face, SelfAssignmentKeepsTheCorners)
{
    KARVGLFace face = Square();
    const KARVGLFace& same = face;
    face = same;
    EXPECT_EQ(face.vertices.size(), 4U);
}

TEST(Face, CornerOutOfRangeIsAFault)
{
    const KARVGLFace face = Square();
    EXPECT_THROW((void)face.vertices.at(4), std::out_of_range);
}

TEST(EntityType, ElevenCategoriesHaveTheValues0To10In32Bits)
{
    static_assert(std::is_same_v<std::underlying_type_t<Entity::EntityType>, std::int32_t>);
    int value = 0;
    for (const Entity::EntityType type :
         {Entity::EntityType0, Entity::EntityType1, Entity::EntityType2, Entity::EntityType3,
          Entity::EntityType4, Entity::EntityType5, Entity::EntityType6, Entity::EntityType7,
          Entity::EntityType8, Entity::EntityType9, Entity::EntityType10})
        EXPECT_EQ(static_cast<int>(type), value++);
    EXPECT_EQ(value, 11);
}
