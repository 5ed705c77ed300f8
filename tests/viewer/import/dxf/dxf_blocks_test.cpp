#include "tests/viewer/import/dxf/dxf_fixture.h"
#include "viewer/import/dxf/placed_entities.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace viewer
{
namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

using DxfBlocks = DxfTest;

/// A block of one line from its base point (1, 0) to (2, 0).
constexpr const char* kDash = "0 BLOCK 2 dash 10 1 20 0 0 LINE 10 1 20 0 11 2 21 0 0 ENDBLK";
constexpr const char* kQuarter = "0 BLOCK 2 quarter 0 ARC 40 1 50 0 51 90 0 ENDBLK";

TEST_F(DxfBlocks, InsertScalesTurnsAndMovesTheBasePoint)
{
    // The line is 1 long and runs along x from the base; three times that, a quarter turn on.
    const auto lines = LinesOf("0 INSERT 2 dash 10 10 20 20 30 5 41 3 50 90", kDash);
    ASSERT_EQ(lines.size(), 1U);
    ExpectLine(lines[0], {10, 20, 5}, {10, 23, 5});
}

TEST_F(DxfBlocks, BlocksAloneAreNotShown)
{
    EXPECT_EQ(LinesOf("0 LINE 11 5", kDash).size(), 1U);
}

TEST_F(DxfBlocks, PieceIsNamedAfterItsLayerUnderItsBlocks)
{
    const Model model = Import(
        "0 INSERT 2 outer", std::string(kDash) + " 0 BLOCK 2 outer 0 LINE 11 1 0 INSERT 2 DASH 8 0 0 ENDBLK");
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_THAT(model.pieces[0].parents, ElementsAre("outer"));
    EXPECT_THAT(model.pieces[1].parents, ElementsAre("outer", "dash"));
    EXPECT_EQ(model.pieces[1].name, "0");
}

TEST_F(DxfBlocks, NestedInsertsMultiply)
{
    // dash at (5, 0), twice as long: (5, 0) to (7, 0); that thrice, turned by 180 degrees, at (100, 0).
    const auto lines =
        LinesOf("0 INSERT 2 outer 10 100 20 0 41 3 42 3 43 3 50 180",
                std::string(kDash) + " 0 BLOCK 2 outer 0 INSERT 2 dash 10 5 20 0 41 2 0 ENDBLK");
    ASSERT_EQ(lines.size(), 1U);
    ExpectLine(lines[0], {85, 0, 0}, {79, 0, 0});
}

TEST_F(DxfBlocks, ManyInsertsOfABlockAreOnePiece)
{
    std::string entities = "0 INSERT 2 dash 10 0";
    for (int i = 1; i < 1000; ++i)
        entities += " 0 INSERT 2 dash 10 " + std::to_string(i);
    EXPECT_EQ(LinesOf(entities, kDash).size(), 1000U);
}

TEST_F(DxfBlocks, UnequalScalesMakeAnEllipseOfACircle)
{
    const auto lines =
        LinesOf("0 INSERT 2 ring 10 1 20 1 41 3 42 2", "0 BLOCK 2 ring 0 CIRCLE 40 1 0 ENDBLK");
    for (const Segment& line : lines)
        EXPECT_NEAR(std::pow((line.to.x - 1) / 3, 2) + std::pow((line.to.y - 1) / 2, 2), 1, 1e-9);
    // The tolerance applies to the placed circle, which has the larger radius: 39 chords.
    EXPECT_EQ(lines.size(), 39U);
}

TEST_F(DxfBlocks, ToleranceCountsInTheDrawingNotInTheBlock)
{
    const auto lines =
        LinesOf("0 INSERT 2 ring 41 0.001 42 0.001 43 0.001", "0 BLOCK 2 ring 0 CIRCLE 40 1000 0 ENDBLK");
    ExpectArc(lines, {0, 0, 0}, 1, {1, 0, 0}, {1, 0, 0});
    EXPECT_EQ(lines.size(), 23U);
}

TEST_F(DxfBlocks, NegativeScaleMirrors)
{
    ExpectArc(LinesOf("0 INSERT 2 quarter 41 -1", kQuarter), {0, 0, 0}, 1, {-1, 0, 0}, {0, 1, 0});
}

TEST_F(DxfBlocks, MirroredFacesStillShowTheirFront)
{
    const auto faces =
        FacesOf("0 INSERT 2 tile 41 -1 0 INSERT 2 tile 10 5",
                "0 BLOCK 2 tile 0 3DFACE 10 0 20 0 30 0 11 1 21 0 31 0 12 1 22 1 32 0 13 0 23 1 33 0 0 "
                "ENDBLK");
    ASSERT_EQ(faces.size(), 2U);
    EXPECT_EQ(faces[0].normal, (Point{0, 0, 1}));
    EXPECT_EQ(faces[1].normal, (Point{0, 0, 1}));
}

TEST_F(DxfBlocks, ArrayStepsAlongTheTurnedAxesUnscaled)
{
    const auto lines = LinesOf("0 INSERT 2 dash 10 1 20 2 41 3 50 90 70 3 71 2 44 10 45 20", kDash);
    ASSERT_EQ(lines.size(), 6U);
    // Columns go up, rows to the left.
    ExpectLine(lines[0], {1, 2, 0}, {1, 5, 0});
    ExpectLine(lines[1], {1, 12, 0}, {1, 15, 0});
    ExpectLine(lines[2], {1, 22, 0}, {1, 25, 0});
    ExpectLine(lines[3], {-19, 2, 0}, {-19, 5, 0});
    ExpectLine(lines[5], {-19, 22, 0}, {-19, 25, 0});
}

TEST_F(DxfBlocks, ArrayOfNoneIsOne)
{
    EXPECT_EQ(LinesOf("0 INSERT 2 dash 70 0 71 -4 44 10 45 20", kDash).size(), 1U);
}

TEST_F(DxfBlocks, ExtrusionOfAnInsertTurnsWhatItHolds)
{
    // The extrusion points down: x is mirrored, for the insertion point and for the block.
    ExpectArc(LinesOf("0 INSERT 2 quarter 10 10 20 1 30 2 210 0 220 0 230 -1", kQuarter), {-10, 1, -2}, 1,
              {-11, 1, -2}, {-10, 2, -2});
}

TEST_F(DxfBlocks, AttributesOfAnInsertEndWithTheirSequence)
{
    const Model model =
        Import("0 INSERT 2 dash 66 1 0 ATTRIB 10 1 70 1 1 text 0 ATTRIB 10 2 0 SEQEND 0 LINE 11 1", kDash);
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.pieces[0].lines.size(), 1U);
    ExpectLine(model.pieces[1].lines.at(0), {0, 0, 0}, {1, 0, 0});
}

TEST_F(DxfBlocks, LayerZeroInABlockIsTheInsertsLayer)
{
    const Model model = Import("0 INSERT 2 b 8 red 62 4",
                               "0 BLOCK 2 b 0 LINE 8 0 11 1 0 LINE 8 0 62 0 11 2 0 LINE 8 "
                               "blue 11 3 0 LINE 8 blue 62 0 11 4 0 ENDBLK",
                               "0 LAYER 2 0 62 7 70 0 0 LAYER 2 red 62 1 70 0 0 LAYER 2 blue 62 5 70 0");
    ASSERT_EQ(model.pieces.size(), 4U);
    EXPECT_EQ(model.pieces[0].name, "red");
    EXPECT_EQ(model.pieces[0].color, 1) << "by layer: that of the insert";
    EXPECT_EQ(model.pieces[1].name, "red");
    EXPECT_EQ(model.pieces[1].color, 4) << "by block: the insert's own";
    EXPECT_EQ(model.pieces[2].name, "blue");
    EXPECT_EQ(model.pieces[2].color, 5);
    EXPECT_EQ(model.pieces[3].color, 4);
}

TEST_F(DxfBlocks, ColourByBlockGoesThroughNestedInserts)
{
    const Model model =
        Import("0 INSERT 2 outer 62 30",
               "0 BLOCK 2 inner 0 LINE 62 0 11 1 0 ENDBLK 0 BLOCK 2 outer 0 INSERT 2 inner 62 0 0 ENDBLK");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].color, 30);
}

TEST_F(DxfBlocks, FrozenLayerHidesWhatIsInsertedOnIt)
{
    const Model model = Import(
        "0 INSERT 2 b 8 cold 0 INSERT 2 b 8 off 10 7",
        "0 BLOCK 2 b 0 LINE 8 0 11 1 0 LINE 8 on 11 2 0 ENDBLK",
        "0 LAYER 2 0 70 0 62 7 0 LAYER 2 cold 70 1 62 7 0 LAYER 2 off 70 0 62 -7 0 LAYER 2 on 70 0 62 7");
    ASSERT_EQ(model.pieces.size(), 1U) << "only what is on a layer of its own shows through one that is off";
    EXPECT_EQ(model.pieces[0].name, "on");
    ExpectLine(model.pieces[0].lines.at(0), {7, 0, 0}, {9, 0, 0});
}

TEST_F(DxfBlocks, BlockWithoutItsEndEndsWithTheSection)
{
    const Model model = Import("0 LINE 11 5 0 INSERT 2 b", "0 BLOCK 2 a 0 LINE 11 1 0 BLOCK 2 b 0 LINE 11 2");
    ASSERT_EQ(model.pieces.size(), 2U);
    ExpectLine(model.pieces[0].lines.at(0), {0, 0, 0}, {5, 0, 0});
    ASSERT_EQ(model.pieces[1].lines.size(), 1U);
    ExpectLine(model.pieces[1].lines[0], {0, 0, 0}, {2, 0, 0});
}

TEST_F(DxfBlocks, BlocksMayFollowTheEntities)
{
    const std::string text = Lines("0 SECTION 2 ENTITIES 0 INSERT 2 dash 10 3 0 ENDSEC 0 SECTION 2 BLOCKS") +
                             Lines(kDash) + Lines("0 ENDSEC 0 EOF");
    ExpectLine(ImportText(text).pieces.at(0).lines.at(0), {3, 0, 0}, {4, 0, 0});
}

TEST_F(DxfBlocks, BlockInItselfIsRefusedByName)
{
    // Line 9: the section takes two lines of groups (four lines), the block and its name four more.
    EXPECT_EQ(ErrorOf(Drawing("0 INSERT 2 loop", "0 BLOCK 2 loop 0 INSERT 2 loop 0 ENDBLK")),
              "line 9: block 'loop' is inserted into itself");
}

TEST_F(DxfBlocks, BlockInItselfByAnotherIsRefused)
{
    EXPECT_THAT(ErrorOf(Drawing("0 INSERT 2 a",
                                "0 BLOCK 2 a 0 INSERT 2 b 0 ENDBLK 0 BLOCK 2 b 0 INSERT 2 c 0 ENDBLK 0 "
                                "BLOCK 2 c 0 LINE 11 1 0 INSERT 2 A 0 ENDBLK")),
                HasSubstr("block 'a' is inserted into itself"));
}

TEST_F(DxfBlocks, BlockInItselfThatNobodyInsertsDoesNoHarm)
{
    EXPECT_EQ(LinesOf("0 LINE 11 1", "0 BLOCK 2 loop 0 INSERT 2 loop 0 ENDBLK").size(), 1U);
}

TEST_F(DxfBlocks, BlockThatIsNotThereIsRefused)
{
    EXPECT_EQ(ErrorOf(Drawing("0 LINE 11 1 0 INSERT 2 ghost")),
              "line 9: block 'ghost' is inserted but not there");
}

TEST_F(DxfBlocks, NamelessBlocksAndInsertsAreRefused)
{
    EXPECT_EQ(ErrorOf(Drawing("0 INSERT 10 1")), "line 5: INSERT without the name of a block");
    EXPECT_EQ(ErrorOf(Drawing("0 LINE 11 1", "0 BLOCK 10 1 0 ENDBLK")),
              "line 5: BLOCK without the name of a block");
}

/// Blocks b1, b2, ... Each inserts the previous one `times` times; b0 has a line.
std::string Tower(int height, int times)
{
    std::string blocks = "0 BLOCK 2 b0 0 LINE 11 1 0 ENDBLK";
    for (int i = 1; i < height; ++i) {
        blocks += " 0 BLOCK 2 b" + std::to_string(i);
        for (int k = 0; k < times; ++k)
            blocks += " 0 INSERT 2 b" + std::to_string(i - 1);
        blocks += " 0 ENDBLK";
    }
    return blocks;
}

TEST_F(DxfBlocks, NestingHasALimit)
{
    EXPECT_EQ(LinesOf("0 INSERT 2 b99", Tower(100, 1)).size(), 1U);
    EXPECT_THAT(ErrorOf(Drawing("0 INSERT 2 b100", Tower(101, 1))), HasSubstr("nested more than 100 deep"));
    EXPECT_THAT(ErrorOf(Drawing("0 INSERT 2 b50 0 INSERT 2 b100", Tower(101, 1))),
                HasSubstr("nested more than 100 deep"));
    EXPECT_THAT(ErrorOf(Drawing("0 INSERT 2 b99999", Tower(100000, 1))),
                HasSubstr("nested more than 100 deep"));
}

TEST_F(DxfBlocks, BlocksThatMultiplyBeyondMeasureAreRefused)
{
    // 10 inserts on each of 10 levels: 10^9 lines in b9, 10^7 and the inserts in b7.
    EXPECT_THAT(ErrorOf(Drawing("0 INSERT 2 b9", Tower(10, 10))),
                AllOf(HasSubstr("block 'b7'"), HasSubstr("more than 10 million entities")));
    EXPECT_THAT(ErrorOf(Drawing("0 INSERT 2 b99", Tower(100, 2))),
                HasSubstr("more than 10 million entities"));
}

TEST_F(DxfBlocks, ArraysThatMultiplyBeyondMeasureAreRefused)
{
    EXPECT_EQ(ErrorOf(Drawing("0 INSERT 2 dash 70 2147483647 71 2147483647", kDash)),
              "its blocks come to more than 10 million entities");
    EXPECT_THAT(ErrorOf(Drawing("0 INSERT 2 empty 70 30000 71 30000", "0 BLOCK 2 empty 0 ENDBLK")),
                HasSubstr("more than 10 million entities"));
}

} // namespace
} // namespace viewer
