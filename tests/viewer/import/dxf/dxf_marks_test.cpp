// Points and the marks that they are drawn as, construction lines, and other entities that are read from their
// groups: helices, subdivision meshes, images.

#include "tests/viewer/import/dxf/dxf_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace viewer
{
namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::SizeIs;

class DxfMarks : public DxfTest
{
  protected:
    /// A drawing whose header chooses the mark of points.
    [[nodiscard]] Model ImportMarked(int mode, const std::string& size, const std::string& entities) const
    {
        return ImportText(Lines("0 SECTION 2 HEADER 9 $PDMODE 70 " + std::to_string(mode) + " 9 $PDSIZE 40 " +
                                size + " 0 ENDSEC") +
                          Drawing(entities));
    }
    [[nodiscard]] std::vector<Segment> MarkOf(int mode, const std::string& size = "2") const
    {
        return ImportMarked(mode, size, "0 POINT 8 marks 10 5 20 5 0 LINE 8 frame 11 10 21 10")
            .pieces.at(0)
            .lines;
    }
};

TEST_F(DxfMarks, PlainPointIsASmallPlusAroundIt)
{
    const Model model = Import("0 POINT 10 5 20 6 30 7 0 LINE 8 far 11 100");
    ASSERT_EQ(model.pieces.size(), 2U);
    ASSERT_THAT(model.pieces[0].lines, SizeIs(2));
    for (const Segment& line : model.pieces[0].lines) {
        ExpectNear((line.from + line.to) * 0.5, {5, 6, 7});
        EXPECT_GT(Length(line.to - line.from), 0.0);
        EXPECT_LT(Length(line.to - line.from), 1.0);
    }
}

TEST_F(DxfMarks, DrawingOfASinglePointIsDrawn)
{
    EXPECT_THAT(LinesOf("0 POINT 10 5 20 6"), SizeIs(2));
}

TEST_F(DxfMarks, MarksHaveTheShapeOfTheMode)
{
    EXPECT_THAT(MarkOf(0), SizeIs(2));
    const std::vector<Segment> plus = MarkOf(2);
    ASSERT_THAT(plus, SizeIs(2));
    ExpectLine(plus[0], {3, 5, 0}, {7, 5, 0});
    ExpectLine(plus[1], {5, 3, 0}, {5, 7, 0});
    const std::vector<Segment> cross = MarkOf(3);
    ASSERT_THAT(cross, SizeIs(2));
    ExpectLine(cross[0], {3, 3, 0}, {7, 7, 0});
    const std::vector<Segment> tick = MarkOf(4);
    ASSERT_THAT(tick, SizeIs(1));
    ExpectLine(tick[0], {5, 5, 0}, {5, 6, 0});
}

TEST_F(DxfMarks, DrawingInOnePlaneStaysFlatInEveryMode)
{
    for (int mode = 0; mode <= 4; ++mode) {
        const Box box =
            ImportMarked(mode, "2", "0 POINT 10 5 20 5 30 3 0 LINE 30 3 31 3 11 10 21 10").Extents();
        EXPECT_EQ(box.min.z, 3.0) << mode;
        EXPECT_EQ(box.max.z, 3.0) << mode;
    }
}

TEST_F(DxfMarks, CircleAndSquareSurroundTheMark)
{
    for (const Segment& line : MarkOf(33))
        EXPECT_NEAR(Length(line.from - Point{5, 5, 0}), 1.0, 1e-9);
    const std::vector<Segment> square = MarkOf(65);
    ASSERT_THAT(square, SizeIs(4));
    ExpectLine(square[0], {4, 4, 0}, {6, 4, 0});
    EXPECT_EQ(MarkOf(98).size(), MarkOf(33).size() + 4 + 2);
}

TEST_F(DxfMarks, PointsThatDefineDimensionsAreDotsInEveryMode)
{
    for (const char* layer : {"Defpoints", "DEFPOINTS"}) {
        const Model model =
            ImportMarked(98, "2", std::string("0 POINT 10 5 20 5 8 ") + layer + " 0 LINE 11 10");
        EXPECT_THAT(model.pieces.at(0).lines, SizeIs(2)) << layer;
        EXPECT_LT(model.pieces.at(0).lines.at(0).to.x - model.pieces.at(0).lines.at(0).from.x, 0.1);
    }
}

TEST_F(DxfMarks, ModeOneShowsNothing)
{
    EXPECT_EQ(ImportMarked(1, "2", "0 POINT 10 5 20 5 0 LINE 11 10").pieces.at(0).lines.size(), 1U);
}

TEST_F(DxfMarks, SizesOfZeroAndBelowAreAPartOfTheHeight)
{
    // The drawing is 10 units high: 5 and 20 percent.
    ExpectLine(MarkOf(4, "0").at(0), {5, 5, 0}, {5, 5.25, 0});
    ExpectLine(MarkOf(4, "-20").at(0), {5, 5, 0}, {5, 6, 0});
}

TEST_F(DxfMarks, AngleOfAMarkIsClockwise)
{
    const std::vector<Segment> tick =
        ImportMarked(4, "2", "0 POINT 10 5 20 5 50 90 0 LINE 8 frame 11 10").pieces.at(0).lines;
    ASSERT_THAT(tick, SizeIs(1));
    ExpectLine(tick[0], {5, 5, 0}, {6, 5, 0});
}

TEST_F(DxfMarks, ThicknessOfAPointIsALine)
{
    const std::vector<Segment> lines =
        ImportMarked(1, "2", "0 POINT 10 5 39 3 0 LINE 8 frame 11 10").pieces.at(0).lines;
    ASSERT_THAT(lines, SizeIs(1));
    ExpectLine(lines[0], {5, 0, 0}, {5, 0, 3});
}

TEST_F(DxfMarks, ConstructionLinesEndAtTheBoxOfTheDrawing)
{
    // The box is 30 by 40, so that its margin is 5 percent of 50.
    const Model model =
        Import("0 LINE 8 frame 11 30 21 40 0 XLINE 8 aid 10 10 20 10 11 0 21 1 0 RAY 8 aid 10 10 "
               "20 10 11 -1 21 0");
    ASSERT_EQ(model.pieces.size(), 2U);
    ASSERT_THAT(model.pieces[1].lines, SizeIs(2));
    ExpectLine(model.pieces[1].lines[0], {10, -2.5, 0}, {10, 42.5, 0});
    ExpectLine(model.pieces[1].lines[1], {10, 10, 0}, {-2.5, 10, 0});
}

TEST_F(DxfMarks, DrawingOfConstructionLinesOnlyHasABoxOfAUnit)
{
    const std::vector<Segment> lines = LinesOf("0 XLINE 10 3 20 4 11 1");
    ASSERT_THAT(lines, SizeIs(1));
    ExpectLine(lines[0], {2.5, 4, 0}, {3.5, 4, 0});
}

TEST_F(DxfMarks, ConstructionLineWithoutDirectionIsCounted)
{
    EXPECT_THAT(Import("0 LINE 11 1 0 XLINE 10 1 11 0 0 RAY 10 1").left_out,
                ElementsAre(Field(&LeftOut::kind, "XLINE without direction"),
                            Field(&LeftOut::kind, "RAY without direction")));
}

TEST_F(DxfMarks, HelixIsItsSplineOrIsMadeOfItsParameters)
{
    const std::vector<Segment> stored = LinesOf(
        "0 HELIX 100 AcDbSpline 71 1 40 0 40 0 40 1 40 1 10 0 20 0 30 0 10 1 20 2 30 3 100 AcDbHelix 10 "
        "9 20 9 11 9 40 1 41 1 42 1");
    ASSERT_THAT(stored, SizeIs(1));
    ExpectLine(stored[0], {0, 0, 0}, {1, 2, 3});
    const std::vector<Segment> made =
        LinesOf("0 HELIX 100 AcDbHelix 10 0 20 0 30 0 11 2 21 0 31 0 12 0 22 0 32 1 40 2 41 3 42 5 290 1");
    ASSERT_GT(made.size(), 24U);
    ExpectNear(made.front().from, {2, 0, 0});
    ExpectNear(made.back().to, {2, 0, 15}, 1e-6);
    for (const Segment& line : made)
        EXPECT_NEAR(std::hypot(line.from.x, line.from.y), 2.0, 0.01);
    EXPECT_GT(made[1].from.y, 0.0) << "it turns to the left";
}

TEST_F(DxfMarks, SubdivisionMeshIsItsCage)
{
    // A triangle and a concave pentagon; the lists of edges and creases follow.
    const Model model =
        Import("0 MESH 71 2 72 0 91 1 92 6 10 0 20 0 30 0 10 4 20 0 30 0 10 4 20 4 30 0 10 2 20 1 "
               "30 0 10 0 20 4 30 0 10 2 20 -3 30 0 93 10 90 3 90 0 90 5 90 1 90 5 90 0 90 1 90 2 "
               "90 3 90 4 94 1 90 0 90 1 95 1 140 0 90 0");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_THAT(model.pieces[0].faces, SizeIs(4)) << "the pentagon is three triangles";
    ASSERT_TRUE(model.pieces[0].edges.has_value());
    EXPECT_THAT(*model.pieces[0].edges, SizeIs(7)) << "three and five, of which one is common";
}

TEST_F(DxfMarks, MeshWithoutItsVerticesIsCounted)
{
    EXPECT_THAT(Import("0 LINE 11 1 0 MESH 92 1 10 0 20 0 30 0 93 4 90 3 90 0 90 1 90 2").left_out,
                ElementsAre(Field(&LeftOut::kind, "MESH with a face of missing vertices")));
    EXPECT_THAT(Import("0 LINE 11 1 0 MESH 92 0 93 1 90 2000000000").left_out,
                ElementsAre(Field(&LeftOut::kind, "MESH without faces")));
}

TEST_F(DxfMarks, PolygonsBeyondTheLimitOfCoordinatesAreRefused)
{
    EXPECT_THAT(
        ErrorOf(Drawing("0 MESH 92 5 10 1e308 20 0 30 0 10 0 20 1e308 30 0 10 -1e308 20 0 30 0 10 0 20 "
                        "-1e308 30 0 10 0 20 0 30 1e308 93 6 90 5 90 0 90 1 90 2 90 3 90 4")),
        testing::HasSubstr("beyond 1e70"));
}

TEST_F(DxfMarks, ImageIsItsFrameAndCounted)
{
    const Model model = Import("0 IMAGE 10 1 20 2 30 0 11 0.5 21 0 31 0 12 0 22 0.25 32 0 13 8 23 4");
    ASSERT_EQ(model.pieces.size(), 1U);
    ASSERT_THAT(model.pieces[0].lines, SizeIs(4));
    ExpectLine(model.pieces[0].lines[0], {1, 2, 0}, {5, 2, 0});
    ExpectLine(model.pieces[0].lines[1], {5, 2, 0}, {5, 3, 0});
    EXPECT_THAT(model.left_out, ElementsAre(Field(&LeftOut::kind, "IMAGE (only its frame is drawn)")));
}

TEST_F(DxfMarks, InsertOfAnotherDrawingIsCountedByItsName)
{
    const Model model =
        Import("0 LINE 11 1 0 INSERT 2 plan 0 INSERT 2 plan", "0 BLOCK 2 plan 70 4 1 plan.dwg 0 ENDBLK");
    EXPECT_THAT(model.left_out,
                ElementsAre(AllOf(Field(&LeftOut::kind, "XREF plan"), Field(&LeftOut::count, 2U))));
}

TEST_F(DxfMarks, OpacityIsTheEntitysOrTheLayersOrTheInserts)
{
    // 0x02000000 + 51 is an opacity of 51/255; 0x01000000 is that of the insert.
    const auto alpha = [&](const std::string& entities, const std::string& blocks = {}) {
        return Import(entities, blocks, "0 LAYER 2 a 70 0 62 3 1001 AcCmTransparency 1071 33554483")
            .pieces.at(0)
            .alpha;
    };
    EXPECT_FLOAT_EQ(alpha("0 LINE 11 1"), 1.0F);
    EXPECT_FLOAT_EQ(alpha("0 LINE 440 33554483 11 1"), 0.2F);
    EXPECT_FLOAT_EQ(alpha("0 LINE 8 a 11 1"), 0.2F);
    EXPECT_FLOAT_EQ(alpha("0 LINE 8 a 440 33554687 11 1"), 1.0F);
    EXPECT_FLOAT_EQ(alpha("0 TEXT 440 33554483 40 1 1 H"), 0.2F);
    EXPECT_FLOAT_EQ(alpha("0 TEXT 8 a 40 1 1 H"), 0.2F);
    EXPECT_FLOAT_EQ(
        alpha("0 DIMENSION 2 *D 440 33554483 10 1", "0 BLOCK 2 *D 0 LINE 440 16777216 11 1 0 ENDBLK"), 0.2F);
    EXPECT_FLOAT_EQ(alpha("0 INSERT 2 b 440 33554483", "0 BLOCK 2 b 0 LINE 440 16777216 11 1 0 ENDBLK"),
                    0.2F);
}

} // namespace
} // namespace viewer
