// Hatches: filled areas, islands, patterns, and the kinds of their boundaries.

#include "tests/viewer/import/dxf/dxf_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

/// A closed path of straight lines between the corners of a square.
std::string SquarePath(double low, double high)
{
    const std::string a = std::to_string(low);
    const std::string b = std::to_string(high);
    return " 92 2 72 0 73 1 93 4 10 " + a + " 20 " + a + " 10 " + b + " 20 " + a + " 10 " + b + " 20 " + b +
           " 10 " + a + " 20 " + b + " 97 0";
}

/// Three squares, one in the other, of 100, 36 and 4 square units.
std::string NestedSquares(int style)
{
    return "0 HATCH 10 0 20 0 30 0 2 SOLID 70 1 71 0 91 3" + SquarePath(0, 10) + SquarePath(2, 8) +
           SquarePath(4, 6) + " 75 " + std::to_string(style) + " 76 1 98 0";
}

class DxfHatches : public DxfTest
{
  protected:
    static double LengthOf(const std::vector<Segment>& lines)
    {
        double length = 0.0;
        for (const Segment& line : lines)
            length += Length(line.to - line.from);
        return length;
    }
    /// The area that a solid hatch with this path fills.
    [[nodiscard]] double FilledArea(const std::string& path) const
    {
        return AreaOf(FacesOf("0 HATCH 10 0 20 0 30 0 70 1 91 1 " + path + " 75 0 76 1 98 0"));
    }
};

TEST_F(DxfHatches, SolidFillIsFacesWithoutEdges)
{
    const Model model = Import("0 HATCH 62 3 30 7 70 1 91 1" + SquarePath(0, 10) + " 75 0");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_DOUBLE_EQ(AreaOf(model.pieces[0].faces), 100.0);
    EXPECT_EQ(model.pieces[0].color, 3);
    ASSERT_TRUE(model.pieces[0].edges.has_value());
    EXPECT_THAT(*model.pieces[0].edges, IsEmpty());
    EXPECT_THAT(model.pieces[0].lines, IsEmpty());
    for (const ModelFace& face : model.pieces[0].faces)
        for (const Point& corner : face.corners)
            EXPECT_EQ(corner.z, 7.0);
}

TEST_F(DxfHatches, IslandsStayEmptyByTheStyle)
{
    EXPECT_NEAR(AreaOf(FacesOf(NestedSquares(0))), 100.0 - 36.0 + 4.0, 1e-9);
    EXPECT_NEAR(AreaOf(FacesOf(NestedSquares(1))), 100.0 - 36.0, 1e-9);
    EXPECT_NEAR(AreaOf(FacesOf(NestedSquares(2))), 100.0, 1e-9);
}

TEST_F(DxfHatches, BulgesOfAPolylineBoundTheArea)
{
    // Half a disc of radius 5 to the right of the first side of a square, which is outside.
    EXPECT_NEAR(
        FilledArea("92 2 72 1 73 1 93 4 10 0 20 0 42 1 10 10 20 0 42 0 10 10 20 10 42 0 10 0 20 10 42 0"),
        100.0 + std::numbers::pi * 25.0 / 2.0, 0.2);
}

TEST_F(DxfHatches, EdgesInAnyDirectionAreOneOutline)
{
    // The second and third sides run backwards.
    EXPECT_NEAR(
        FilledArea("92 1 93 4 72 1 10 0 20 0 11 10 21 0 72 1 10 10 20 10 11 10 21 0 72 1 10 0 20 10 11 "
                   "10 21 10 72 1 10 0 20 10 11 0 21 0 97 0"),
        100.0, 1e-9);
    EXPECT_NEAR(FilledArea("92 1 93 2 72 1 10 0 20 0 11 10 21 0 72 2 10 5 20 0 40 5 50 0 51 180 73 1 97 0"),
                std::numbers::pi * 25.0 / 2.0, 0.2);
}

TEST_F(DxfHatches, AnglesOfClockwiseArcsAreNegated)
{
    // From 0 clockwise to -180 degrees: the lower half, whose lowest point is at y = -5.
    const std::vector<ModelFace> faces = FacesOf(
        "0 HATCH 10 0 20 0 30 0 70 1 91 1 92 1 93 2 72 1 10 0 20 0 11 10 21 0 72 2 10 5 20 0 40 5 50 0 "
        "51 180 73 0 97 0 75 0");
    Box box;
    for (const ModelFace& face : faces)
        for (const Point& corner : face.corners)
            box.Add(corner);
    EXPECT_NEAR(box.min.y, -5.0, 1e-9);
    EXPECT_NEAR(box.max.y, 0.0, 1e-9);
}

TEST_F(DxfHatches, EllipsesBoundTheArea)
{
    EXPECT_NEAR(FilledArea("92 1 93 1 72 3 10 0 20 0 11 10 21 0 40 0.5 50 0 51 360 73 1 97 0"),
                std::numbers::pi * 50.0, 1.0);
    // The angle of an elliptic edge is that of its point: 45 degrees on an ellipse of 10 by 5 is the parameter
    // atan(2), so that the sector holds half of 50 atan(2) less the triangle to the center.
    const double sector = 0.5 * 50.0 * std::atan(2.0);
    EXPECT_NEAR(FilledArea("92 1 93 3 72 3 10 0 20 0 11 10 21 0 40 0.5 50 0 51 45 73 1 72 1 10 4.472136 20 "
                           "4.472136 11 0 21 0 72 1 10 0 20 0 11 10 21 0 97 0"),
                sector, 0.1);
}

TEST_F(DxfHatches, SplinesBoundTheArea)
{
    // The Bezier curve of (0,0) (0,8) (10,8) (10,0) has y = 24 t (1 - t) and dx = 60 t (1 - t) dt; the integral
    // of t^2 (1 - t)^2 is 1/30.
    const double area = 24.0 * 60.0 / 30.0;
    EXPECT_NEAR(
        FilledArea("92 1 93 2 72 4 94 3 73 0 74 0 95 8 96 4 40 0 40 0 40 0 40 0 40 1 40 1 40 1 40 1 10 0 "
                   "20 0 10 0 20 8 10 10 20 8 10 10 20 0 97 0 72 1 10 10 20 0 11 0 21 0 97 0"),
        area, 0.2);
}

TEST_F(DxfHatches, PatternLinesAreClippedToTheArea)
{
    // Horizontal lines at 1, 3, 5, 7 and 9 in a square of 10 with a hole from 4 to 6: 5 lines of 10, one of
    // which loses 2.
    const std::vector<Segment> lines =
        LinesOf("0 HATCH 10 0 20 0 30 0 2 LINE 70 0 91 2" + SquarePath(0, 10) + SquarePath(4, 6) +
                " 75 0 76 1 52 0 41 1 77 0 78 1 53 0 43 0 44 1 45 0 46 2 79 0");
    EXPECT_EQ(lines.size(), 6U);
    EXPECT_NEAR(LengthOf(lines), 48.0, 1e-9);
}

TEST_F(DxfHatches, DashesBeginAtTheBaseOfTheirLine)
{
    // Dashes of 1 and gaps of 2 from x = 0.5; the next line, at y = 2, is shifted by 1.
    const std::vector<Segment> lines = LinesOf(
        "0 HATCH 10 0 20 0 30 0 2 DASH 70 0 91 1 92 2 72 0 73 1 93 4 10 0 20 0.5 10 6 20 0.5 10 6 20 2.5 "
        "10 0 20 2.5 97 0 75 0 76 1 78 1 53 0 43 0.5 44 0 45 1 46 1 79 2 49 1 49 -2");
    ASSERT_EQ(lines.size(), 5U);
    ExpectLine(lines[0], {1.5, 1, 0}, {2.5, 1, 0});
    ExpectLine(lines[1], {4.5, 1, 0}, {5.5, 1, 0});
    ExpectLine(lines[2], {0, 2, 0}, {0.5, 2, 0});
    ExpectLine(lines[3], {2.5, 2, 0}, {3.5, 2, 0});
    ExpectLine(lines[4], {5.5, 2, 0}, {6, 2, 0});
}

TEST_F(DxfHatches, PatternTooDenseIsFilledAndCounted)
{
    const std::string pattern = " 75 0 76 1 78 1 53 30 43 0 44 0 45 0 46 1e-9 79 0";
    const Model model = Import("0 HATCH 30 0 70 0 91 1" + SquarePath(0, 10) + pattern);
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_NEAR(AreaOf(model.pieces[0].faces), 100.0, 1e-9);
    EXPECT_THAT(model.left_out,
                ElementsAre(Field(&LeftOut::kind, "HATCH pattern (too dense, filled instead)")));
    const Model dashes = Import("0 HATCH 30 0 70 0 91 1" + SquarePath(0, 10) +
                                " 75 0 76 1 78 1 53 0 43 0 44 0 45 0 46 1 79 2 49 1e-9 49 -1e-9");
    EXPECT_EQ(dashes.left_out.size(), 1U);
}

TEST_F(DxfHatches, HatchWithoutBoundaryOrPatternIsCounted)
{
    EXPECT_THAT(Import("0 LINE 11 1 0 HATCH 70 1 91 0 75 0").left_out,
                ElementsAre(Field(&LeftOut::kind, "HATCH without boundary")));
    EXPECT_THAT(Import("0 LINE 11 1 0 HATCH 70 0 91 1" + SquarePath(0, 1) + " 75 0 78 0").left_out,
                ElementsAre(Field(&LeftOut::kind, "HATCH without pattern")));
    EXPECT_THAT(Import("0 LINE 11 1 0 HATCH 70 1 91 1" + SquarePath(1, 1) + " 75 0").left_out,
                ElementsAre(Field(&LeftOut::kind, "HATCH without area")));
}

TEST_F(DxfHatches, HatchFollowsItsExtrusionAndInsert)
{
    // Extrusion along -z mirrors x, and the insert doubles y.
    const std::vector<ModelFace> faces =
        FacesOf("0 INSERT 2 b 42 2", "0 BLOCK 2 b 0 HATCH 30 0 210 0 220 0 230 -1 70 1 91 1" +
                                         SquarePath(1, 2) + " 75 0 0 ENDBLK");
    EXPECT_NEAR(AreaOf(faces), 2.0, 1e-9);
    Box box;
    for (const ModelFace& face : faces)
        for (const Point& corner : face.corners)
            box.Add(corner);
    EXPECT_EQ(box.min.x, -2.0);
    EXPECT_EQ(box.max.y, 4.0);
}

TEST_F(DxfHatches, GradientIsFilledWithItsFirstColour)
{
    // 16711680 is 0xFF0000, which is index 1.
    EXPECT_EQ(Import("0 HATCH 30 0 62 5 70 1 91 1" + SquarePath(0, 1) +
                     " 75 0 450 1 453 2 463 0 421 16711680 463 "
                     "1 421 255")
                  .pieces.at(0)
                  .color,
              1);
}

TEST_F(DxfHatches, BoundaryThatCannotBeFilledInSeveralSecondsIsLeftOut)
{
    // A comb of 2000 teeth, and a square.
    std::string corners = " 10 0 20 0 10 4000 20 0";
    for (int i = 1999; i >= 0; --i)
        for (const auto& [x, y] : {std::pair(2 * i + 2, 1), {2 * i + 2, 9}, {2 * i + 1, 9}, {2 * i + 1, 1}})
            corners += " 10 " + std::to_string(x) + " 20 " + std::to_string(y);
    const Model model = Import("0 HATCH 30 0 70 1 91 1 92 2 72 0 73 1 93 8002" + corners +
                               " 75 0 0 HATCH 30 0 70 1 91 1" + SquarePath(0, 10) + " 75 0");
    EXPECT_NEAR(AreaOf(model.pieces.at(0).faces), 100.0, 1e-9);
    EXPECT_THAT(model.left_out, ElementsAre(Field(&LeftOut::kind, "HATCH (boundary too complex)")));
}

} // namespace
} // namespace viewer
