#include "viewer/model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace viewer
{
namespace
{

using testing::ElementsAre;

Piece PieceOf(std::string name, int category, float alpha)
{
    return {std::move(name), {}, category, 7, alpha};
}

std::vector<std::string> NamesOf(const Model& model)
{
    std::vector<std::string> names;
    for (const Piece& piece : model.pieces)
        names.push_back(piece.name);
    return names;
}

TEST(ModelFace, CounterClockwiseCornersAreTurnedAndTheNormalPointsOutwards)
{
    const auto face = MakeFace({{0, 0, 0}, {2, 0, 0}, {0, 3, 0}});
    ASSERT_TRUE(face);
    EXPECT_THAT(face->corners, ElementsAre(Point{0, 3, 0}, Point{2, 0, 0}, Point{0, 0, 0}));
    EXPECT_EQ(face->normal, (Point{0, 0, 1}));
}

TEST(ModelFace, NormalOfAConcaveOutlineIsThatOfTheWholeAndNotOfItsFirstCorners)
{
    // The first three corners turn the other way round than the outline: (2,2) is the tip of a dent.
    const auto face = MakeFace({{4, 0, 0}, {2, 2, 0}, {4, 4, 0}, {0, 4, 0}, {0, 0, 0}});
    ASSERT_TRUE(face);
    EXPECT_EQ(face->normal, (Point{0, 0, 1}));
}

TEST(ModelFace, TinyFarAndHugeFacesHaveUnitNormals)
{
    for (const double size : {1e-30, 1e-3, 1.0, 1e30}) {
        const auto face = MakeFace({{0, 0, 0}, {0, size, 0}, {0, 0, size}});
        ASSERT_TRUE(face) << size;
        EXPECT_EQ(face->normal, (Point{1, 0, 0})) << size;
    }
    const auto far = MakeFace({{1e6, 1e6, 1e6}, {1e6 + 0.5, 1e6, 1e6}, {1e6, 1e6 + 0.5, 1e6}});
    ASSERT_TRUE(far);
    EXPECT_EQ(far->normal, (Point{0, 0, 1}));
}

TEST(ModelFace, FewerThanThreeCornersMakeNone)
{
    EXPECT_FALSE(MakeFace({}));
    EXPECT_FALSE(MakeFace({{0, 0, 0}}));
    EXPECT_FALSE(MakeFace({{0, 0, 0}, {1, 0, 0}}));
}

TEST(ModelFace, CornersInOneLineOrOnePlaceMakeNone)
{
    EXPECT_FALSE(MakeFace({{0, 0, 0}, {0.1, 0.2, 0.3}, {0.3, 0.6, 0.9}}));
    EXPECT_FALSE(MakeFace({{5, 5, 5}, {5, 5, 5}, {5, 5, 5}}));
}

TEST(ModelBox, EmptyUntilTheFirstPoint)
{
    Box box;
    EXPECT_TRUE(box.IsEmpty());
    box.Add({-1, 2, 3});
    EXPECT_FALSE(box.IsEmpty());
    EXPECT_EQ(box.min, box.max);
    EXPECT_EQ(box.Center(), (Point{-1, 2, 3}));
}

TEST(Model, AppendedCategoriesFollowThoseThatAreThere)
{
    Model model;
    model.title = "a";
    model.pieces = {PieceOf("a0", 0, 1), PieceOf("a2", 2, 1)};
    Model other;
    other.title = "b";
    other.pieces = {PieceOf("b0", 0, 1), PieceOf("b1", 1, 1)};
    model.Append(other);
    EXPECT_EQ(model.title, "a, b");
    EXPECT_EQ(model.pieces.at(1).category, 2);
    EXPECT_EQ(model.pieces.at(2).category, 3);
    EXPECT_EQ(model.pieces.at(3).category, 4);
    EXPECT_EQ(model.CategoryCount(), 5);
}

TEST(Model, TranslucentPiecesComeLastAndEachKindKeepsItsOrder)
{
    Model model;
    model.pieces = {PieceOf("glass", 0, 0.5F), PieceOf("steel", 1, 1), PieceOf("water", 2, 0.9F),
                    PieceOf("brass", 3, 1)};
    model.PutTranslucentLast();
    EXPECT_THAT(NamesOf(model), ElementsAre("steel", "brass", "glass", "water"));
}

TEST(Model, AnEmptyOneHasNoFacesNoCategoriesAndAnEmptyBox)
{
    const Model model;
    EXPECT_EQ(model.FaceCount(), 0U);
    EXPECT_EQ(model.CategoryCount(), 0);
    EXPECT_FALSE(model.IsTranslucent());
    EXPECT_TRUE(model.Extents().IsEmpty());
}

} // namespace
} // namespace viewer
