#include "viewer/import/dxf/dxf_import.h"

#include "platform/host/cm/color.h"
#include "tests/viewer/import/dxf/dxf_fixture.h"

#include <dxflib/dl_dxf.h>
#include <dxflib/dl_writer_ascii.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace viewer
{
namespace
{

using testing::ElementsAre;

using DxfImport = DxfTest;

TEST_F(DxfImport, LineIsOneLineOfItsLayersPiece)
{
    const Model model =
        Import("0 LINE 8 walls 10 1 20 2 30 3 11 4 21 5 31 6 0 LINE 8 walls 10 0 20 0 11 1 21 0");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.title, "drawing.dxf");
    EXPECT_EQ(model.pieces[0].name, "walls");
    EXPECT_TRUE(model.pieces[0].parents.empty());
    EXPECT_TRUE(model.pieces[0].faces.empty());
    ASSERT_EQ(model.pieces[0].lines.size(), 2U);
    ExpectLine(model.pieces[0].lines[0], {1, 2, 3}, {4, 5, 6});
    ExpectLine(model.pieces[0].lines[1], {0, 0, 0}, {1, 0, 0});
}

TEST_F(DxfImport, LineOfNoLengthIsLeftOut)
{
    EXPECT_EQ(LinesOf("0 LINE 10 1 20 1 11 1 21 1 0 LINE 10 0 20 0 11 1 21 0").size(), 1U);
}

TEST_F(DxfImport, LightPolylineKeepsElevationAndCloses)
{
    const auto lines = LinesOf("0 LWPOLYLINE 90 3 70 1 38 5 10 0 20 0 10 2 20 0 10 2 20 1");
    ASSERT_EQ(lines.size(), 3U);
    ExpectLine(lines[0], {0, 0, 5}, {2, 0, 5});
    ExpectLine(lines[1], {2, 0, 5}, {2, 1, 5});
    ExpectLine(lines[2], {2, 1, 5}, {0, 0, 5});
}

TEST_F(DxfImport, OpenLightPolylineIsNotClosed)
{
    EXPECT_EQ(LinesOf("0 LWPOLYLINE 90 3 70 0 10 0 20 0 10 2 20 0 10 2 20 1").size(), 2U);
}

TEST_F(DxfImport, LightPolylineHoldsAsManyVerticesAsThereAre)
{
    EXPECT_EQ(LinesOf("0 LWPOLYLINE 90 2 10 0 20 0 10 2 20 0 10 2 20 1").size(), 2U);
    EXPECT_EQ(LinesOf("0 LWPOLYLINE 90 2000000000 10 0 20 0 10 2 20 0 10 2 20 1").size(), 2U);
    EXPECT_EQ(LinesOf("0 LWPOLYLINE 90 -5 10 0 20 0 10 2 20 0").size(), 1U);
    EXPECT_EQ(LinesOf("0 LWPOLYLINE 10 0 20 0 10 2 20 0").size(), 1U);
}

TEST_F(DxfImport, BulgeOfOneIsHalfACircle)
{
    ExpectArc(LinesOf("0 LWPOLYLINE 90 2 10 0 20 0 42 1 10 2 20 0"), {1, 0, 0}, 1, {0, 0, 0}, {2, 0, 0});
    const auto lines = LinesOf("0 LWPOLYLINE 90 2 10 0 20 0 42 1 10 2 20 0");
    EXPECT_LT(lines[lines.size() / 2].from.y, -0.9) << "it bulges to the right of the way";
}

TEST_F(DxfImport, BulgeOfTheLastVertexClosesAPolyline)
{
    // Two half circles make a whole one.
    const auto lines = LinesOf("0 LWPOLYLINE 90 2 70 1 10 0 20 0 42 1 10 2 20 0 42 1");
    ExpectArc(lines, {1, 0, 0}, 1, {0, 0, 0}, {0, 0, 0});
}

TEST_F(DxfImport, OldPolylineHasVerticesOfItsOwn)
{
    const auto lines =
        LinesOf("0 POLYLINE 66 1 70 1 10 0 20 0 30 4 0 VERTEX 10 0 20 0 0 VERTEX 10 2 20 0 0 VERTEX "
                "10 2 20 1 0 SEQEND 0 LINE 10 0 20 0 11 0 21 9");
    ASSERT_EQ(lines.size(), 4U);
    ExpectLine(lines[0], {0, 0, 4}, {2, 0, 4});
    ExpectLine(lines[2], {2, 1, 4}, {0, 0, 4});
    ExpectLine(lines[3], {0, 0, 0}, {0, 9, 0});
}

TEST_F(DxfImport, OldPolylineBulges)
{
    ExpectArc(LinesOf("0 POLYLINE 66 1 0 VERTEX 10 0 20 0 42 -1 0 VERTEX 10 2 20 0 0 SEQEND"), {1, 0, 0}, 1,
              {0, 0, 0}, {2, 0, 0});
}

TEST_F(DxfImport, PolylineInSpaceKeepsItsHeights)
{
    const auto lines =
        LinesOf("0 POLYLINE 66 1 70 8 0 VERTEX 10 0 20 0 30 1 70 32 0 VERTEX 10 2 20 0 30 3 70 32 0 "
                "SEQEND");
    ASSERT_EQ(lines.size(), 1U);
    ExpectLine(lines[0], {0, 0, 1}, {2, 0, 3});
}

TEST_F(DxfImport, PolylineWithoutItsEndEndsWhereSomethingElseBegins)
{
    EXPECT_EQ(
        LinesOf("0 POLYLINE 66 1 0 VERTEX 10 0 20 0 0 VERTEX 10 2 20 0 0 LINE 10 0 20 0 11 0 21 9").size(),
        2U);
    EXPECT_EQ(LinesOf("0 POLYLINE 66 1 0 VERTEX 10 0 20 0 0 VERTEX 10 2 20 0").size(), 1U);
}

TEST_F(DxfImport, VerticesThatOnlySteerAFittedCurveAreNotOnIt)
{
    const auto lines =
        LinesOf("0 POLYLINE 66 1 70 4 0 VERTEX 10 0 20 0 70 16 0 VERTEX 10 5 20 5 70 16 0 VERTEX 10 1 "
                "20 1 70 8 0 VERTEX 10 2 20 1 70 8 0 SEQEND");
    ASSERT_EQ(lines.size(), 1U);
    ExpectLine(lines[0], {1, 1, 0}, {2, 1, 0});
}

TEST_F(DxfImport, ArcRunsCounterClockwiseBetweenItsAngles)
{
    ExpectArc(LinesOf("0 ARC 10 10 20 20 30 30 40 2 50 270 51 90"), {10, 20, 30}, 2, {10, 18, 30},
              {10, 22, 30});
    const auto lines = LinesOf("0 ARC 10 10 20 20 30 30 40 2 50 270 51 90");
    EXPECT_GT(lines[lines.size() / 2].from.x, 11.9);
}

TEST_F(DxfImport, CircleClosesExactly)
{
    const auto lines = LinesOf("0 CIRCLE 10 1 20 1 40 3");
    ExpectArc(lines, {1, 1, 0}, 3, {4, 1, 0}, {4, 1, 0});
    EXPECT_EQ(lines.front().from, lines.back().to);
    // A chord of an n-th of the turn lies 3 (1 - cos(pi / n)) off: n = 39 is the first below 0.01.
    EXPECT_GT(3 * (1 - std::cos(std::numbers::pi / 38)), kTolerance);
    EXPECT_LT(3 * (1 - std::cos(std::numbers::pi / 39)), kTolerance);
    EXPECT_EQ(lines.size(), 39U);
}

TEST_F(DxfImport, DefaultToleranceIsAPartOfTheDiagonal)
{
    // Of a circle of radius 1 in a picture of 100 pixels: 0.5 / 90 x 2 sqrt(2), which 18 chords keep and 17 do
    // not.
    const double tolerance = 0.5 / 90 * 2 * std::sqrt(2);
    EXPECT_GT(1 - std::cos(std::numbers::pi / 17), tolerance);
    EXPECT_LT(1 - std::cos(std::numbers::pi / 18), tolerance);
    const std::string path = Write("circle.dxf", Drawing("0 CIRCLE 10 5 20 5 40 1"));
    EXPECT_EQ(ImportDxf(path, {.deflection = {}, .pixels = 100}).pieces.at(0).lines.size(), 18U);
}

TEST_F(DxfImport, EllipseIsGivenByItsMajorAxisAndARatio)
{
    const auto lines = LinesOf("0 ELLIPSE 10 1 20 0 11 0 21 4 40 0.5 41 0 42 6.283185307");
    for (const Segment& line : lines)
        EXPECT_NEAR(std::pow((line.from.x - 1) / 2, 2) + std::pow(line.from.y / 4, 2), 1, 1e-9);
    ExpectLine({lines.front().from, lines.back().to}, {1, 4, 0}, {1, 4, 0});
    EXPECT_GT(lines.size(), 20U);
}

TEST_F(DxfImport, EllipticArcRunsBetweenItsParameters)
{
    // A quarter turn from the end of the major axis: the end of the minor axis, along z cross the major axis.
    const auto lines = LinesOf("0 ELLIPSE 10 0 20 0 11 4 21 0 40 0.5 41 0 42 1.5707963267948966");
    ExpectLine({lines.front().from, lines.back().to}, {4, 0, 0}, {0, 2, 0});
}

TEST_F(DxfImport, SplineRunsThroughThePointsOfItsBezierCurve)
{
    const auto lines =
        LinesOf("0 SPLINE 70 8 71 3 72 8 73 4 74 0 40 0 40 0 40 0 40 0 40 1 40 1 40 1 40 1 10 0 20 0 30 "
                "0 10 0 20 1 30 0 10 1 20 1 30 0 10 1 20 0 30 0");
    ExpectLine({lines.front().from, lines.back().to}, {0, 0, 0}, {1, 0, 0});
    ExpectNear(lines[lines.size() / 2].from, {0.5, 0.75, 0});
}

TEST_F(DxfImport, SplineTakesItsWeights)
{
    ExpectArc(
        LinesOf(
            "0 SPLINE 70 4 71 2 72 6 73 3 74 0 40 0 40 0 40 0 40 1 40 1 40 1 10 1 20 0 30 0 10 1 20 1 30 0 "
            "10 0 20 1 30 0 41 1 41 0.7071067811865476 41 1"),
        {0, 0, 0}, 1, {1, 0, 0}, {0, 1, 0});
}

TEST_F(DxfImport, SplineWithoutKnotsHasEvenOnes)
{
    const auto lines = LinesOf("0 SPLINE 70 8 71 1 73 3 10 0 20 0 30 0 10 1 20 1 30 0 10 2 20 0 30 0");
    ASSERT_EQ(lines.size(), 2U);
    ExpectLine(lines[0], {0, 0, 0}, {1, 1, 0});
}

TEST_F(DxfImport, SplineOfFitPointsRunsThroughThem)
{
    // Its first control points are (1/3, 1/2) and (2/3, 1): in the middle of the first span it is at x = 1/2
    // and y = (3 x 1/2 + 3 x 1 + 1) / 8.
    const auto lines = LinesOf("0 SPLINE 70 8 71 3 74 3 11 0 21 0 31 0 11 1 21 1 31 0 11 2 21 0 31 0");
    ExpectLine({lines.front().from, lines.back().to}, {0, 0, 0}, {2, 0, 0});
    const auto passes = [&](const Point& point) {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const Segment& l) { return Length(l.to - point) < 1e-9; });
    };
    EXPECT_TRUE(passes({1, 1, 0}));
    EXPECT_TRUE(passes({0.5, 5.5 / 8, 0}));
}

TEST_F(DxfImport, SplineOfFitPointsCloses)
{
    const auto lines =
        LinesOf("0 SPLINE 70 9 71 3 74 4 11 1 21 0 31 0 11 0 21 1 31 0 11 -1 21 0 31 0 11 0 21 -1 31 0");
    EXPECT_EQ(lines.front().from, (Point{1, 0, 0}));
    EXPECT_EQ(lines.back().to, (Point{1, 0, 0}));
}

TEST_F(DxfImport, SplinesFollowEachOtherWithoutMixing)
{
    const auto lines =
        LinesOf("0 SPLINE 71 1 72 4 73 2 40 0 40 0 40 1 40 1 10 0 20 0 30 0 10 1 20 0 30 0 0 SPLINE 71 3 "
                "74 2 11 0 21 5 31 0 11 1 21 5 31 0 0 SPLINE 71 1 72 4 73 2 40 0 40 0 40 1 40 1 10 0 20 "
                "9 30 0 10 1 20 9 30 0");
    ASSERT_EQ(lines.size(), 3U);
    ExpectLine(lines[1], {0, 5, 0}, {1, 5, 0});
    ExpectLine(lines[2], {0, 9, 0}, {1, 9, 0});
}

TEST_F(DxfImport, ExtrusionDownwardsMirrorsX)
{
    ExpectArc(LinesOf("0 ARC 10 10 20 0 30 3 40 2 50 0 51 90 210 0 220 0 230 -1"), {-10, 0, -3}, 2,
              {-12, 0, -3}, {-10, 2, -3});
    const auto lines = LinesOf("0 LWPOLYLINE 90 2 38 3 10 1 20 2 10 4 20 5 210 0 220 0 230 -1");
    ExpectLine(lines.at(0), {-1, 2, -3}, {-4, 5, -3});
}

TEST_F(DxfImport, ExtrusionAlongXHasYAndZForItsAxes)
{
    // z cross x is y: the frame's axes are y, z, x.
    const auto lines =
        LinesOf("0 POLYLINE 66 1 70 0 30 7 210 1 220 0 230 0 0 VERTEX 10 1 20 2 0 VERTEX 10 3 20 4 0 "
                "SEQEND");
    ASSERT_EQ(lines.size(), 1U);
    ExpectLine(lines[0], {7, 1, 2}, {7, 3, 4});
}

TEST_F(DxfImport, ExtrusionWithinASixtyFourthOfZTakesItsXAxisFromY)
{
    // y cross (0.01, 0, 1) is (1, 0, -0.01); z cross (0.02, 0, 1) is along y.
    const double length = std::hypot(1.0, 0.01);
    const auto near = LinesOf("0 LWPOLYLINE 90 2 10 0 20 0 10 1 20 0 210 0.01 220 0 230 1");
    ExpectLine(near.at(0), {0, 0, 0}, {1 / length, 0, -0.01 / length});
    const auto far = LinesOf("0 LWPOLYLINE 90 2 10 0 20 0 10 1 20 0 210 0.02 220 0 230 1");
    ExpectLine(far.at(0), {0, 0, 0}, {0, 1, 0});
}

TEST_F(DxfImport, ExtrusionOfAnyLengthIsADirection)
{
    ExpectArc(LinesOf("0 CIRCLE 10 1 20 2 30 0 40 1 210 0 220 0 230 -100"), {-1, 2, 0}, 1, {-2, 2, 0},
              {-2, 2, 0});
    ExpectArc(LinesOf("0 CIRCLE 10 1 20 2 30 0 40 1 210 0 220 0 230 0"), {1, 2, 0}, 1, {2, 2, 0}, {2, 2, 0});
}

TEST_F(DxfImport, ExtrusionTurnsTheSenseOfAnEllipseOnly)
{
    const auto lines =
        LinesOf("0 ELLIPSE 10 5 20 0 11 4 21 0 40 0.5 41 0 42 1.5707963267948966 210 0 220 0 230 -1");
    ExpectLine({lines.front().from, lines.back().to}, {9, 0, 0}, {5, -2, 0});
}

TEST_F(DxfImport, ExtrusionDoesNotMoveLines)
{
    ExpectLine(LinesOf("0 LINE 10 1 20 2 11 3 21 4 210 0 220 0 230 -1").at(0), {1, 2, 0}, {3, 4, 0});
}

TEST_F(DxfImport, LayersAreCategoriesByTheTableThenByFirstUse)
{
    const Model model = Import("0 LINE 8 late 11 1 0 LINE 8 B 11 1 0 LINE 8 a 11 1", {},
                               "0 LAYER 2 0 70 0 62 7 0 LAYER 2 a 70 0 62 1 0 LAYER 2 b 70 0 62 2");
    EXPECT_THAT(model.category_names, ElementsAre("0", "a", "b", "late"));
    ASSERT_EQ(model.pieces.size(), 3U);
    EXPECT_EQ(model.pieces[0].category, 3);
    EXPECT_EQ(model.pieces[1].category, 2) << "capitals do not count";
    EXPECT_EQ(model.pieces[2].category, 1);
    EXPECT_EQ(model.pieces[0].color, 7);
    EXPECT_EQ(model.pieces[1].color, 2);
    EXPECT_EQ(model.pieces[2].color, 1);
}

TEST_F(DxfImport, ThousandLayersAreAThousandCategories)
{
    std::string entities;
    for (int i = 0; i < 1000; ++i)
        entities += "0 LINE 8 layer" + std::to_string(i) + " 11 1 ";
    entities.pop_back();
    const Model model = Import(entities);
    EXPECT_EQ(model.CategoryCount(), 1000);
    EXPECT_EQ(model.category_names.at(999), "layer999");
}

TEST_F(DxfImport, ColourIsTheEntitysOrTheLayers)
{
    const Model model =
        Import("0 LINE 8 a 62 30 11 1 0 LINE 8 a 62 256 11 1 0 LINE 8 a 62 0 11 1 0 LINE 8 a 420 "
               "16711680 11 1",
               {}, "0 LAYER 2 a 70 0 62 5");
    ASSERT_EQ(model.pieces.size(), 4U);
    EXPECT_EQ(model.pieces[0].color, 30);
    EXPECT_EQ(model.pieces[1].color, 5);
    EXPECT_EQ(model.pieces[2].color, 7) << "by block outside of any";
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(model.pieces[3].color), 0xFF0000U);
}

TEST_F(DxfImport, BlackBesideTheForegroundIsTheForeground)
{
    const Model model = Import("0 LINE 8 paper 11 1 0 LINE 8 red 11 2 0 LINE 8 red 62 7 420 0 11 3", {},
                               "0 LAYER 2 paper 70 0 62 7 420 0 0 LAYER 2 red 70 0 62 7 420 16711680");
    ASSERT_EQ(model.pieces.size(), 3U);
    EXPECT_EQ(model.pieces[0].color, 7);
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(model.pieces[1].color), 0xFF0000U);
    EXPECT_EQ(model.pieces[2].color, 7);
}

TEST_F(DxfImport, LayersThatAreOffOrFrozenAreNotShown)
{
    const Model model =
        Import("0 LINE 8 off 11 1 0 LINE 8 frozen 11 2 0 LINE 8 locked 11 3", {},
               "0 LAYER 2 off 70 0 62 -3 0 LAYER 2 frozen 70 1 62 3 0 LAYER 2 locked 70 4 62 3");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "locked");
    EXPECT_EQ(model.category_names.size(), 3U);
}

TEST_F(DxfImport, InvisibleAndPaperSpaceEntitiesAreNotShown)
{
    const auto lines =
        LinesOf("0 LINE 60 1 11 1 0 LINE 67 1 11 2 0 POLYLINE 67 1 66 1 0 VERTEX 10 1 20 1 0 VERTEX 10 2 "
                "20 2 0 SEQEND 0 LINE 60 0 67 0 11 3");
    ASSERT_EQ(lines.size(), 1U);
    ExpectLine(lines[0], {0, 0, 0}, {3, 0, 0});
}

TEST_F(DxfImport, OtherKindsAreLeftOutAndTheirVerticesToo)
{
    EXPECT_EQ(LinesOf("0 LIGHT 10 1 0 SHAPE 10 1 2 hello 0 HATCH 10 0 91 1 92 1 93 4 72 9 0 LEADER 76 99 0 "
                      "VERTEX 10 5 20 "
                      "5 0 SEQEND 0 LINE 11 1 0 DIMENSION 2 *D1 10 1 0 OLEFRAME 1 x 0 IMAGE 10 1")
                  .size(),
              1U);
}

TEST_F(DxfImport, WhatIsEmbeddedInAnEntityIsNotPartOfIt)
{
    ExpectLine(LinesOf("0 LINE 10 1 20 1 11 2 21 1 101 Embedded 10 7 20 7 11 8 21 8").at(0), {1, 1, 0},
               {2, 1, 0});
}

TEST_F(DxfImport, ExtendedDataDoNotCount)
{
    ExpectLine(LinesOf("0 LINE 10 1 20 1 11 2 21 1 1001 APP 1010 9 1020 nan 1070 x").at(0), {1, 1, 0},
               {2, 1, 0});
}

TEST_F(DxfImport, CommentsCarriageReturnsBlanksAndByteOrderMarksAreRead)
{
    std::string text = Drawing("0 LINE 999 remark 8 walls 10 1 20 +1.0e0 30 .5 11 2. 21 1");
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 4)
        text.replace(at, 1, "  \r\n");
    const Model model = ImportText("\xEF\xBB\xBF" + Lines("999 made-by-a-test") + text);
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "walls");
    ExpectLine(model.pieces[0].lines.at(0), {1, 1, 0.5}, {2, 1, 0});
}

TEST_F(DxfImport, LinesMayEndInCarriageReturnsAlone)
{
    std::string text = Drawing("0 LINE 11 2");
    std::replace(text.begin(), text.end(), '\n', '\r');
    EXPECT_EQ(ImportText(text).pieces.size(), 1U);
}

TEST_F(DxfImport, LongTextsBetweenTheEntitiesAreRead)
{
    const std::string text =
        Lines("999") + std::string(100000, 'x') + '\n' +
        Drawing("0 TEXT 1 " + std::string(5000, 'y') + " 0 LINE 3 " + std::string(3000, 'z') + " 11 1");
    EXPECT_EQ(ImportText(text).pieces.size(), 1U);
}

TEST_F(DxfImport, NamesMayHoldBlanksAndAnyLetters)
{
    const Model model =
        ImportText(Lines("0 SECTION 2 ENTITIES 0 LINE 8") + "Wände im Süd\n" + Lines("11 1 0 ENDSEC 0 EOF"));
    EXPECT_EQ(model.pieces.at(0).name, "Wände im Süd");
}

TEST_F(DxfImport, FileMayStopRightAfterItsEnd)
{
    std::string text = Drawing("0 LINE 11 1");
    text.pop_back();
    EXPECT_EQ(ImportText(text).pieces.size(), 1U);
    EXPECT_EQ(ImportText(text + "\n\n\nwhat follows does not count").pieces.size(), 1U);
}

TEST_F(DxfImport, OtherSectionsAreNotLookedAt)
{
    const std::string other =
        Lines("0 SECTION 2 HEADER 9 $INSUNITS 70 4 9 $EXTMIN 10 nan 0 ENDSEC 0 SECTION 2 CLASSES 0 "
              "CLASS 1 LINE 90 nothing 0 ENDSEC 0 SECTION 2 OBJECTS 0 LINE 10 1 11 2 0 LAYER 2 x "
              "0 DICTIONARY 3 a 0 ENDSEC");
    const Model model = ImportText(other + Drawing("0 LINE 11 25.4"));
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.category_names.size(), 1U);
    ExpectLine(model.pieces[0].lines.at(0), {0, 0, 0}, {25.4, 0, 0}); // the drawing's own units
}

TEST_F(DxfImport, FarAwayDrawingsKeepTheirDigits)
{
    // Doubles are 1.2e-7 apart there.
    for (const Segment& line : LinesOf("0 CIRCLE 10 1e9 20 -1e9 40 1"))
        EXPECT_NEAR(Length(line.from - Point{1e9, -1e9, 0}), 1, 2e-7);
}

TEST_F(DxfImport, ProgressGrowsToOne)
{
    std::string entities;
    for (int i = 0; i < 20000; ++i)
        entities += "0 LINE 11 1 ";
    entities.pop_back();
    std::vector<double> seen;
    static_cast<void>(
        ImportDxf(Write("drawing.dxf", Drawing(entities)), {}, [&](double part) { seen.push_back(part); }));
    EXPECT_GT(seen.size(), 3U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_GT(seen.front(), 0.0);
    EXPECT_EQ(seen.back(), 1.0);
}

TEST_F(DxfImport, WhatTheLibraryWritesIsRead)
{
    const DL_Attributes attributes("ink", 3, -1, 0, "BYLAYER");
    DL_Dxf dxf;
    const std::string path = PathOf("written.dxf");
    {
        const std::unique_ptr<DL_WriterA> out(dxf.out(path.c_str(), DL_Codes::AC1015));
        dxf.writeHeader(*out);
        out->sectionEnd();
        out->sectionTables();
        out->tableLayers(1);
        dxf.writeLayer(*out, DL_LayerData("ink", 0), DL_Attributes("", 5, -1, 0, "CONTINUOUS"));
        out->tableEnd();
        out->sectionEnd();
        out->sectionEntities();
        dxf.writeLine(*out, DL_LineData(0, 0, 0, 1, 2, 3), attributes);
        dxf.writeCircle(*out, DL_CircleData(0, 0, 0, 1), attributes);
        dxf.writePolyline(*out, DL_PolylineData(2, 0, 0, 0), attributes);
        dxf.writeVertex(*out, DL_VertexData(0, 0, 0, 1));
        dxf.writeVertex(*out, DL_VertexData(2, 0, 0, 0));
        dxf.writePolylineEnd(*out);
        out->sectionEnd();
        out->dxfEOF();
        out->close();
    }
    const Model model = ImportDxf(path, {.deflection = kTolerance});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "ink");
    EXPECT_EQ(model.pieces[0].color, 3);
    // The line; the circle in 23 chords, whose sagitta 1 - cos(pi / 23) is 0.0093; half of it in 12.
    EXPECT_EQ(model.pieces[0].lines.size(), 1U + 23U + 12U);
}

} // namespace
} // namespace viewer
