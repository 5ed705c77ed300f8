#include "tests/viewer/import/dxf/dxf_fixture.h"
#include "viewer/import/dxf/piece_builder.h"
#include "viewer/import/dxf/placed_entities.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace viewer
{
namespace
{

using testing::ElementsAre;

/// Dimensions, leaders and the like. Without a style texts and arrows have a size of 2.5.
class DxfAnnotationsTest : public DxfTest
{
  protected:
    static bool Holds(const std::vector<Segment>& lines, const Point& from, const Point& to)
    {
        return std::ranges::any_of(lines, [&](const Segment& line) {
            return Length(line.from - from) < 1e-9 && Length(line.to - to) < 1e-9;
        });
    }
    /// How many of a kind were left out.
    static std::size_t LeftOutOf(const Model& model, const std::string& kind)
    {
        const auto found = std::ranges::find(model.left_out, kind, &LeftOut::kind);
        return found != model.left_out.end() ? found->count : 0;
    }
    /// The number of segments of a text.
    [[nodiscard]] std::size_t SegmentsOf(const std::string& text) const
    {
        return LinesOf("0 MTEXT 40 1 1 " + text).size();
    }
};

TEST_F(DxfAnnotationsTest, DimensionIsItsBlock)
{
    const Model model = Import("0 DIMENSION 8 measures 62 2 2 *D1 70 0 10 7 20 7 13 0 23 0 14 9 24 0",
                               "0 BLOCK 2 *D1 10 0 20 0 0 LINE 8 0 62 0 10 5 20 6 11 7 21 8 0 ENDBLK");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "measures");
    EXPECT_EQ(model.pieces[0].color, 2);
    EXPECT_TRUE(model.pieces[0].parents.empty()) << "the block is the dimension's own";
    ASSERT_EQ(model.pieces[0].lines.size(), 1U);
    ExpectLine(model.pieces[0].lines[0], {5, 6, 0}, {7, 8, 0});
    EXPECT_TRUE(model.left_out.empty());
}

TEST_F(DxfAnnotationsTest, DimensionsOfABlockArePlacedWithIt)
{
    const Model model = Import("0 INSERT 2 part 10 100", "0 BLOCK 2 part 0 DIMENSION 2 *D1 0 ENDBLK "
                                                         "0 BLOCK 2 *D1 0 LINE 10 5 11 7 0 ENDBLK");
    ExpectLine(model.pieces.at(0).lines.at(0), {105, 0, 0}, {107, 0, 0});
    EXPECT_THAT(model.pieces[0].parents, ElementsAre("part"));
}

TEST_F(DxfAnnotationsTest, LengthWithoutABlockIsDrawnFromItsPoints)
{
    for (const char* entity : {"0 DIMENSION 70 32 10 40 20 10 13 0 23 0 14 40 24 0 50 0",
                               "0 DIMENSION 70 33 10 40 20 10 13 0 23 0 14 40 24 0",
                               "0 DIMENSION 2 *D7 70 32 10 40 20 10 13 0 23 0 14 40 24 0 42 40"}) {
        const Model model = Import(entity);
        ASSERT_EQ(model.pieces.size(), 1U);
        const auto& lines = model.pieces[0].lines;
        EXPECT_TRUE(Holds(lines, {0, 0, 0}, {0, 10, 0}));
        EXPECT_TRUE(Holds(lines, {40, 0, 0}, {40, 10, 0}));
        EXPECT_TRUE(Holds(lines, {0, 10, 0}, {40, 10, 0}));
        EXPECT_EQ(lines.size(), 3 + SegmentsOf("40"));
        EXPECT_EQ(model.pieces[0].faces.size(), 2U) << "arrows";
        EXPECT_TRUE(model.left_out.empty());
    }
}

TEST_F(DxfAnnotationsTest, TextOfADimensionReplacesOrHoldsTheValue)
{
    const std::string points = "0 DIMENSION 70 32 10 40 20 10 13 0 23 0 14 40 24 0 1 ";
    EXPECT_EQ(LinesOf(points + "HH").size(), 3U + 24U);
    EXPECT_EQ(LinesOf(points + "H<>H").size(), 3U + 24U + SegmentsOf("40"));
    std::string text = Drawing(points + "_");
    text.replace(text.find("\n_\n"), 3, "\n \n");
    EXPECT_EQ(ImportText(text).pieces.at(0).lines.size(), 3U) << "a blank shows no value";
}

TEST_F(DxfAnnotationsTest, StyleOfADimensionGivesItsSizes)
{
    const std::string style = Lines("0 SECTION 2 TABLES 0 DIMSTYLE 2 big 40 10 41 0.5 140 3 271 1 0 ENDSEC");
    const Model model = ImportText(
        style +
        Drawing("0 DIMENSION 3 BIG 70 32 10 400 20 100 13 0 23 0 14 400 24 0 11 200 21 300 31 0 1 H"));
    // An arrow of 10 x 0.5, and a letter of 10 x 3 around its place.
    Box arrow;
    for (const Point& corner : model.pieces.at(0).faces.at(0).corners)
        arrow.Add(corner);
    EXPECT_NEAR(arrow.max.x - arrow.min.x, 5, 1e-9);
    EXPECT_NEAR(model.Extents().max.y, 315, 1e-2);
}

TEST_F(DxfAnnotationsTest, RadiusDiameterAndOrdinateAreDrawnFromTheirPoints)
{
    const Model radius = Import("0 DIMENSION 70 4 10 1 20 0 15 1 25 8 1 H");
    EXPECT_TRUE(Holds(radius.pieces.at(0).lines, {1, 0, 0}, {1, 8, 0}));
    EXPECT_EQ(radius.pieces[0].faces.size(), 1U);
    EXPECT_EQ(LinesOf("0 DIMENSION 70 4 10 1 20 0 15 1 25 8").size(), 1 + SegmentsOf("R8"));
    const Model diameter = Import("0 DIMENSION 70 3 10 1 20 0 15 1 25 8 1 H");
    EXPECT_TRUE(Holds(diameter.pieces.at(0).lines, {1, 0, 0}, {1, 8, 0}));
    EXPECT_EQ(diameter.pieces[0].faces.size(), 2U);
    EXPECT_EQ(LinesOf("0 DIMENSION 70 70 10 1 20 0 13 4 23 2 14 4 24 9").size(), 1 + SegmentsOf("3"))
        << "x from the origin";
    EXPECT_EQ(LinesOf("0 DIMENSION 70 6 10 1 20 0 13 4 23 2 14 4 24 9").size(), 1 + SegmentsOf("2"))
        << "y from the origin";
}

TEST_F(DxfAnnotationsTest, AngleIsAnArcBetweenItsLines)
{
    // A right angle at the origin, through (10 cos 45, 10 sin 45).
    for (const char* entity :
         {"0 DIMENSION 70 5 15 0 25 0 13 5 23 0 14 0 24 5 10 7.0710678118654755 20 7.0710678118654755 1 H",
          "0 DIMENSION 70 2 13 2 23 0 14 5 24 0 15 0 25 2 10 0 20 5 16 7.0710678118654755 26 "
          "7.0710678118654755 1 H"}) {
        const Model model = Import(entity);
        const auto& lines = model.pieces.at(0).lines;
        EXPECT_TRUE(Holds(lines, {5, 0, 0}, {10, 0, 0})) << entity;
        EXPECT_TRUE(Holds(lines, {0, 5, 0}, {0, 10, 0})) << entity;
        EXPECT_EQ(model.pieces[0].faces.size(), 2U);
        const auto on_arc = std::ranges::count_if(lines, [](const Segment& line) {
            return std::abs(Length(line.from) - 10) < 1e-9 && std::abs(Length(line.to) - 10) < 1e-9;
        });
        EXPECT_GT(on_arc, 5);
        EXPECT_GT(model.Extents().min.x, -1) << "the arc is the one that its point is on";
    }
    const std::string angle = "0 DIMENSION 70 5 15 0 25 0 13 5 23 0 14 0 24 5 10 8 20 6";
    EXPECT_EQ(LinesOf(angle).size() - LinesOf(angle + " 1 H").size(), SegmentsOf("90%%d") - 12);
}

TEST_F(DxfAnnotationsTest, DimensionThatCannotBeDrawnIsCounted)
{
    const Model model = Import("0 LINE 11 1 0 DIMENSION 70 1 13 5 23 5 14 5 24 5 0 DIMENSION 70 0 13 nan "
                               "0 DIMENSION 70 5 0 DIMENSION 70 2");
    EXPECT_EQ(LeftOutOf(model, "DIMENSION"), 4U);
    EXPECT_EQ(model.pieces.at(0).lines.size(), 1U);
}

TEST_F(DxfAnnotationsTest, TableIsItsBlockAtItsPlace)
{
    const Model model = Import("0 ACAD_TABLE 2 *T1 10 100 20 50 30 0 11 0 21 1 31 0 1 cell 2 other",
                               "0 BLOCK 2 *T1 0 LINE 11 10 0 ENDBLK");
    ExpectLine(model.pieces.at(0).lines.at(0), {100, 50, 0}, {100, 60, 0});
    EXPECT_EQ(LeftOutOf(Import("0 LINE 11 1 0 ACAD_TABLE 2 *T1 10 100"), "ACAD_TABLE"), 1U);
}

TEST_F(DxfAnnotationsTest, DimensionInItsOwnBlockIsRefused)
{
    EXPECT_THAT(ErrorOf(Drawing("0 DIMENSION 2 *D1", "0 BLOCK 2 *D1 0 LINE 11 1 0 DIMENSION 2 *D1 0 ENDBLK")),
                testing::HasSubstr("inserted into itself"));
}

TEST_F(DxfAnnotationsTest, LeaderIsALineWithAnArrow)
{
    const std::string points = " 10 0 20 0 30 0 10 50 20 0 30 0 10 50 20 50 30 0";
    const Model model = Import("0 LEADER 71 1 72 0" + points);
    ASSERT_EQ(model.pieces.size(), 1U);
    ASSERT_EQ(model.pieces[0].lines.size(), 2U);
    ExpectLine(model.pieces[0].lines[0], {0, 0, 0}, {50, 0, 0});
    ExpectLine(model.pieces[0].lines[1], {50, 0, 0}, {50, 50, 0});
    ASSERT_EQ(model.pieces[0].faces.size(), 1U);
    Box arrow;
    for (const Point& corner : model.pieces[0].faces[0].corners)
        arrow.Add(corner);
    ExpectNear(arrow.min, {0, -2.5 / 6, 0});
    ExpectNear(arrow.max, {2.5, 2.5 / 6, 0});
    EXPECT_TRUE(FacesOf("0 LEADER 71 0 72 0" + points).empty()) << "without an arrow";
    EXPECT_GT(LinesOf("0 LEADER 71 0 72 1" + points).size(), 4U) << "a curve";
}

TEST_F(DxfAnnotationsTest, MultileaderHasLinesLandingsAndText)
{
    const std::string context = "0 MULTILEADER 300 CONTEXT_DATA{ 40 1 10 7 20 7 30 7 41 10 140 5 290 1 304 H "
                                "11 0 21 0 31 1 12 100 22 50 "
                                "32 0 13 1 23 0 33 0 42 0 43 0 171 1 90 -1023410175 302 LEADER{ 290 1 10 90 "
                                "20 50 30 0 11 1 21 0 31 0 "
                                "40 8 304 LEADER_LINE{ 10 0 20 0 30 0 91 0 305 } 271 0 303 } 301 }";
    const Model model = Import(context + " 170 1 62 6");
    ASSERT_EQ(model.pieces.size(), 2U);
    ASSERT_EQ(model.pieces[0].lines.size(), 2U);
    ExpectLine(model.pieces[0].lines[0], {0, 0, 0}, {90, 50, 0});
    ExpectLine(model.pieces[0].lines[1], {90, 50, 0}, {98, 50, 0});
    EXPECT_EQ(model.pieces[0].faces.size(), 1U);
    EXPECT_EQ(model.pieces[0].color, 6);
    EXPECT_EQ(model.pieces[1].lines.size(), 12U) << "the text";
    EXPECT_EQ(model.pieces[1].color, 1) << "the text's own colour";
    EXPECT_NEAR(model.Extents().max.y, 50, 1e-3);
    EXPECT_EQ(LinesOf(context + " 170 0").size(), 12U) << "no lines";
}

TEST_F(DxfAnnotationsTest, MultileaderEndsAtABlockWithAttributes)
{
    const std::string record = Lines("0 SECTION 2 TABLES 0 BLOCK_RECORD 5 1F 2 balloon 0 ENDSEC");
    const std::string blocks =
        "0 BLOCK 2 balloon 0 LINE 11 1 0 ATTDEF 5 AB 10 0 20 1 40 4 2 NO 1 x 70 0 0 ENDBLK";
    const std::string entity =
        "0 MULTILEADER 300 CONTEXT_DATA{ 290 0 296 1 341 1F 14 0 24 0 34 1 15 20 25 30 35 0 "
        "16 2 26 2 36 2 46 0 301 } 170 1 330 AB 177 1 44 0 302 H";
    const Model model = ImportText(record + Drawing(entity, blocks));
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].lines.size(), 13U);
    EXPECT_TRUE(Holds(model.pieces[0].lines, {20, 30, 0}, {22, 30, 0}));
    EXPECT_NEAR(model.Extents().max.y, 30 + 2 * (1 + 4), 1e-3);
    EXPECT_EQ(LeftOutOf(ImportText(Drawing(entity + " 0 LINE 11 1")), "MULTILEADER"), 1U)
        << "a block that the file does not have";
}

TEST_F(DxfAnnotationsTest, ToleranceIsTextInAFrame)
{
    const auto lines = LinesOf("0 TOLERANCE 10 5 20 7 11 1 21 0 31 0 1 {\\Fgdt;u}%%vH%%v%%v");
    // Two cells of three lines each, and the last line; the sign of straightness is one stroke.
    EXPECT_EQ(lines.size(), 7U + 1U + 12U);
    Box box;
    for (const Segment& line : lines)
        box.Add(line.from);
    EXPECT_NEAR(box.min.x, 5, 1e-9);
    EXPECT_NEAR(box.min.y, 7 - 2.5, 1e-9);
    EXPECT_NEAR(box.max.y, 7 + 2.5, 1e-9);
    EXPECT_GT(LinesOf("0 TOLERANCE 1 H%%vH^JH").size(), 11U + 36U - 1U) << "two rows";
}

TEST_F(DxfAnnotationsTest, SignsOfTolerancesAreDrawnInTextsToo)
{
    for (const char sign : std::string("abcdefghijklmnprstu"))
        EXPECT_NE(SegmentsOf(std::string("{\\Fgdt;") + sign + "}"), SegmentsOf(std::string(1, sign))) << sign;
    EXPECT_EQ(SegmentsOf("{\\Fgdt;H}"), 12U);
}

TEST_F(DxfAnnotationsTest, MultipleLineIsALineForEachElement)
{
    const auto line = [](const std::string& first) {
        return "0 MLINE 72 2 73 2 71 1 10 0 20 0 30 0 11 0 21 0 31 0 12 1 22 0 32 0 13 0 23 1 33 0 " + first +
               " 75 0 74 2 41 -1 41 0 75 0 11 10 21 0 31 0 12 1 22 0 32 0 13 0 23 1 33 0 74 2 41 1 41 0 75 0 "
               "74 2 41 -1 41 0 75 0";
    };
    const auto lines = LinesOf(line("74 2 41 1 41 0"));
    ASSERT_EQ(lines.size(), 2U);
    ExpectLine(lines[0], {0, 1, 0}, {10, 1, 0});
    ExpectLine(lines[1], {0, -1, 0}, {10, -1, 0});
    const auto broken = LinesOf(line("74 4 41 1 41 0 41 3 41 6"));
    ASSERT_EQ(broken.size(), 3U);
    ExpectLine(broken[0], {0, 1, 0}, {3, 1, 0});
    ExpectLine(broken[1], {6, 1, 0}, {10, 1, 0});
}

TEST_F(DxfAnnotationsTest, ClosedMultipleLineReturnsToItsBegin)
{
    const auto vertex = [](const std::string& at, const std::string& along) {
        return " 11 " + at + " 12 " + along + " 13 0 23 0 33 1 74 2 41 0 41 0 75 0";
    };
    const auto lines =
        LinesOf("0 MLINE 71 3" + vertex("0 21 0 31 0", "1 22 0 32 0") + vertex("4 21 0 31 0", "0 22 1 32 0") +
                vertex("4 21 3 31 0", "-0.8 22 -0.6 32 0"));
    ASSERT_EQ(lines.size(), 3U);
    ExpectLine(lines[2], {4, 3, 0}, {0, 0, 0});
}

TEST_F(DxfAnnotationsTest, WhatIsNotDrawnIsCountedWhereItWouldShow)
{
    const Model model =
        Import("0 LINE 11 1 0 3DSOLID 1 x 0 3DSOLID 1 y 0 INSERT 2 b 0 INSERT 2 b 10 5 0 SHAPE 2 s 8 off 0 "
               "IMAGE 60 1 "
               "0 VIEWPORT 67 1",
               "0 BLOCK 2 b 0 LINE 11 1 0 OLE2FRAME 70 1 0 ENDBLK 0 BLOCK 2 unused 0 WIPEOUT 10 1 0 ENDBLK",
               "0 LAYER 2 off 70 0 62 -3");
    EXPECT_EQ(LeftOutOf(model, "3DSOLID"), 2U);
    EXPECT_EQ(LeftOutOf(model, "OLE2FRAME"), 2U) << "for each insert";
    EXPECT_EQ(model.left_out.size(), 2U);
}

TEST_F(DxfAnnotationsTest, TextsLeaveRoomForTheOtherLines)
{
    // Three texts of ten segments each, where half of the segments may be of texts: two of them.
    const auto glyph = std::make_shared<Glyph>();
    for (int i = 0; i < 10; ++i)
        glyph->outline.push_back({{0.0, 0.1 * i, 0.0}, {1.0, 0.1 * i, 0.0}});
    DxfText text;
    text.characters.push_back({glyph});
    text.segment_count = 10;
    text.box.Add({0, 0, 0});
    text.box.Add({1, 1, 0});
    DxfDrawing drawing;
    const std::size_t layer = drawing.LayerNumber("0");
    for (int i = 0; i < 3; ++i)
        drawing.entities.push_back({text, layer});
    DxfPlacedEntities placement("drawing.dxf", drawing);
    DxfPieceBuilder builder("drawing.dxf", drawing, placement, kTolerance, 40);
    placement.ForEach([&](const PlacedEntity& placed) { builder.Add(placed); });
    const Model model = builder.Finish();
    EXPECT_EQ(model.pieces.at(0).lines.size(), 20U);
    ASSERT_EQ(model.left_out.size(), 1U);
    EXPECT_EQ(model.left_out[0].count, 1U);
}

} // namespace
} // namespace viewer
