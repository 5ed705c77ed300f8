#include "viewer/scene/model.h"

#include "tests/viewer/test_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace viewer
{
namespace
{

using testing::ElementsAre;

Piece PieceOf(std::string name, int category, float alpha)
{
    return MakePiece(std::move(name), {}, category, 7, alpha);
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

TEST(Model, AppendedCategoriesKeepTheirNames)
{
    Model model;
    model.pieces = {PieceOf("a0", 0, 1), PieceOf("a1", 1, 1)};
    model.category_names = {"steel"};
    Model other;
    other.pieces = {PieceOf("b0", 0, 1)};
    other.category_names = {"brass", "unused"};
    model.Append(other);
    EXPECT_THAT(model.category_names, ElementsAre("steel", "", "brass", "unused"));
    EXPECT_EQ(model.CategoryCount(), 4) << "a category with a name counts";
    Model third;
    third.pieces = {PieceOf("c0", 0, 1)};
    model.Append(third);
    EXPECT_EQ(model.pieces.back().category, 4);
    EXPECT_EQ(model.category_names.size(), 4U);
}

/// One line from the origin to (x,0,0).
Model LineModel(double x, std::optional<double> meters_per_unit)
{
    Model model;
    model.pieces.emplace_back().lines = {{{0, 0, 0}, {x, 0, 0}}};
    model.meters_per_unit = meters_per_unit;
    return model;
}

TEST(Model, AppendedLengthsAreInTheFirstUnitWhereBothAreKnown)
{
    Model millimeters = LineModel(500, 0.001);
    Model meters = LineModel(2, 1.0);
    meters.pieces[0].faces.push_back(MakeFace({{0, 0, 0}, {1, 0, 0}, {0, 3, 0}}).value());
    meters.pieces[0].edges = std::vector<Segment>{{{0, 0, 0}, {1, 0, 0}}};
    millimeters.Append(meters);
    const Piece& scaled = millimeters.pieces.at(1);
    EXPECT_EQ(scaled.lines.at(0).to, (Point{2000, 0, 0}));
    EXPECT_THAT(scaled.faces.at(0).corners,
                ElementsAre(Point{0, 3000, 0}, Point{1000, 0, 0}, Point{0, 0, 0}));
    EXPECT_EQ(scaled.faces.at(0).normal, (Point{0, 0, 1}));
    EXPECT_EQ(scaled.edges.value().at(0).to, (Point{1000, 0, 0}));
    EXPECT_EQ(millimeters.meters_per_unit, 0.001);
}

TEST(Model, AppendedLengthsStayWhereAUnitIsUnknown)
{
    for (const auto& [first, second] :
         {std::pair<std::optional<double>, std::optional<double>>{0.001, {}}, {{}, 0.001}, {{}, {}}}) {
        Model model = LineModel(1, first);
        model.Append(LineModel(2, second));
        EXPECT_EQ(model.pieces.at(1).lines.at(0).to, (Point{2, 0, 0}));
        EXPECT_EQ(model.meters_per_unit, first);
    }
}

TEST(PointMark, IsACrossOfThreeLinesAlongTheAxes)
{
    std::vector<viewer::Segment> lines;
    viewer::AppendPointMark({1.0, 2.0, 3.0}, 0.5, lines);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].from, (viewer::Point{0.75, 2.0, 3.0}));
    EXPECT_EQ(lines[0].to, (viewer::Point{1.25, 2.0, 3.0}));
    EXPECT_EQ(lines[1].to - lines[1].from, (viewer::Point{0.0, 0.5, 0.0}));
    EXPECT_EQ(lines[2].to - lines[2].from, (viewer::Point{0.0, 0.0, 0.5}));
}

TEST(Model, CountsWhatIsLeftOutByKindAndSumsItUpWhenAppended)
{
    viewer::Model model;
    model.LeaveOut("TEXT", 2);
    model.LeaveOut("3DSOLID");
    model.LeaveOut("IMAGE", 0);
    viewer::Model other;
    other.LeaveOut("3DSOLID", 4);
    other.LeaveOut("WIPEOUT");
    model.Append(other);
    ASSERT_EQ(model.left_out.size(), 3U);
    EXPECT_EQ(model.left_out[0].kind, "TEXT");
    EXPECT_EQ(model.left_out[0].count, 2U);
    EXPECT_EQ(model.left_out[1].kind, "3DSOLID");
    EXPECT_EQ(model.left_out[1].count, 5U);
    EXPECT_EQ(model.left_out[2].kind, "WIPEOUT");
    EXPECT_EQ(model.left_out[2].count, 1U);
}

TEST(Model, AnEmptyOneTakesTheUnitOfTheFirstThatIsAppended)
{
    Model model;
    model.Append(LineModel(1, 0.0254));
    EXPECT_EQ(model.meters_per_unit, 0.0254);
}

TEST(Model, ExtentsHoldTheLinesToo)
{
    Model model = LineModel(5, {});
    model.pieces[0].lines.push_back({{1, -2, 3}, {0, 0, 0}});
    model.pieces[0].faces.push_back(MakeFace({{0, 0, 0}, {1, 0, 0}, {0, 4, 0}}).value());
    EXPECT_EQ(model.Extents().min, (Point{0, -2, 0}));
    EXPECT_EQ(model.Extents().max, (Point{5, 4, 3}));
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

TEST(Model, ListOfLeftOutKindsIsOneLineOfLimitedLength)
{
    EXPECT_EQ(ListOf({}), "");
    EXPECT_EQ(ListOf({{"TEXT", 3}, {"3D\nSOLID", 1}}), "3 TEXT, 1 3D SOLID");
    EXPECT_EQ(ListOf({{std::string(498, 'x'), 7}}), "7 " + std::string(498, 'x'));
    EXPECT_EQ(ListOf({{std::string(499, 'x'), 7}}), "7 " + std::string(498, 'x') + "...");
}

TEST(Model, KindsThatAFileNamesWithoutEndAreCountedTogether)
{
    Model model;
    model.LeaveOut("TEXT");
    for (int i = 0; i < 10'000; ++i)
        model.LeaveOut("kind " + std::to_string(i), 2);
    model.LeaveOut("TEXT");
    ASSERT_EQ(model.left_out.size(), kMaxLeftOutKinds + 1);
    EXPECT_EQ(model.left_out.front().count, 2U);
    EXPECT_EQ(model.left_out.back().kind, kOtherKinds);
    EXPECT_EQ(model.left_out.back().count, 2 * (10'000 - (kMaxLeftOutKinds - 1)));
}

TEST(Model, PartsOfAFaceCountAsOne)
{
    Model model = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
    model.pieces[0].faces[3].continues = true;
    EXPECT_EQ(model.FaceCount(), 5U);
}

} // namespace
} // namespace viewer
