#include "tests/viewer/import/dxf/dxf_fixture.h"
#include "viewer/import/dxf/piece_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace viewer
{
namespace
{

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

using DxfDamage = DxfTest;

/// A drawing with entities of all kinds.
std::string WholeDrawing()
{
    return Drawing(
        "0 LINE 8 a 11 1 0 INSERT 2 b 10 5 0 POLYLINE 66 1 70 1 0 VERTEX 10 1 42 1 0 VERTEX 10 2 0 SEQEND 0 "
        "SPLINE 71 1 72 4 73 2 74 0 40 0 40 0 40 1 40 1 10 0 20 0 30 0 10 1 20 0 30 0 0 3DFACE 11 1 12 1 22 "
        "1 "
        "13 0 23 1 0 LWPOLYLINE 90 2 10 0 20 0 10 1 20 1",
        "0 BLOCK 2 b 0 CIRCLE 40 3 0 ARC 40 2 50 0 51 90 0 ENDBLK", "0 LAYER 2 a 70 0 62 3");
}

TEST_F(DxfDamage, FileCutInItsEntitiesIsRefused)
{
    const std::string whole = WholeDrawing();
    ASSERT_GE(ImportText(whole).pieces.size(), 3U);
    for (std::size_t i = 1; i < 20; ++i)
        EXPECT_THAT(ErrorOf(whole.substr(0, whole.size() * i / 20)), HasSubstr("truncated: it ends in line"));
}

TEST_F(DxfDamage, CutFileTellsWhereItEnds)
{
    EXPECT_EQ(ErrorOf(Lines("0 SECTION 2 ENTITIES 0 LINE")), "truncated: it ends in line 6, without its EOF");
    EXPECT_EQ(ErrorOf(Lines("0 SECTION 2 ENTITIES 0 LINE 10")),
              "truncated: it ends in line 7, without its EOF");
}

TEST_F(DxfDamage, MissingEmptyAndUnreadableFilesAreRefused)
{
    EXPECT_THAT(ErrorOf(""), HasSubstr("is empty"));
    EXPECT_THROW(static_cast<void>(ImportDxf(PathOf("none.dxf"), {})), FileError);
    EXPECT_THROW(static_cast<void>(ImportDxf(std::filesystem::path(PathOf(".")).string(), {})), FileError);
}

TEST_F(DxfDamage, ZerosAreNoDrawing)
{
    EXPECT_EQ(ErrorOf(std::string(1000000, '\0')), "is not a DXF file: it begins with zero bytes");
    std::string text = WholeDrawing();
    text[60] = '\0';
    EXPECT_THAT(ErrorOf(text), AllOf(StartsWith("line "), HasSubstr("zero bytes")));
}

TEST_F(DxfDamage, OtherTextsAreNoDrawings)
{
    EXPECT_EQ(ErrorOf("Dear reader,\nthis is a letter.\n"),
              "is not a DXF file: line 1 is 'Dear reader,', which is no group code");
    EXPECT_EQ(ErrorOf("1\n2\n3\n4\n"), "is not a DXF file: it begins with group 1 instead of a section");
    EXPECT_THAT(ErrorOf("\n\n\n\n"), HasSubstr("is not a DXF file"));
    EXPECT_THAT(ErrorOf(std::string(5000, 'x')), HasSubstr("is not a DXF file"));
}

TEST_F(DxfDamage, GroupCodesOutOfRangeAreRefusedWithTheirLine)
{
    EXPECT_EQ(ErrorOf(Lines("0 SECTION 2 ENTITIES 0 LINE 1072 1 0 EOF")), "line 7: '1072' is no group code");
    EXPECT_EQ(ErrorOf(Lines("0 SECTION 2 ENTITIES 0 LINE -6 1 0 EOF")), "line 7: '-6' is no group code");
    EXPECT_EQ(ErrorOf(Lines("0 SECTION 2 ENTITIES 0 LINE 99999999999999999999 1 0 EOF")),
              "line 7: '99999999999999999999' is no group code");
    EXPECT_EQ(ErrorOf(Lines("0 SECTION 2 ENTITIES 0 LINE 1.5 1 0 EOF")), "line 7: '1.5' is no group code");
    EXPECT_EQ(ErrorOf(Lines("0 SECTION 2 ENTITIES 0 LINE  1 0 EOF")), "line 7: '' is no group code");
}

TEST_F(DxfDamage, NumbersThatAreNoneAreRefusedWithTheirLine)
{
    for (const char* number : {"nan", "NaN", "inf", "-inf", "1e400", "-1e400", "abc", "1,5", "1.5x", "0x10",
                               "", "--1", "+-1", "1e"})
        EXPECT_EQ(ErrorOf(Drawing(std::string("0 LINE 10 0 20 ") + number + " 11 1")),
                  std::string("line 10: '") + number + "' is no finite number");
}

TEST_F(DxfDamage, NumbersTooSmallToTellAreZero)
{
    ExpectLine(LinesOf("0 LINE 10 1e-400 20 -1e-4000 11 1 21 5e-324").at(0), {0, 0, 0}, {1, 0, 0});
}

TEST_F(DxfDamage, WholeNumbersThatAreNoneAreRefusedWithTheirLine)
{
    for (const char* number : {"1.5", "red", "99999999999", "", "1e3"})
        EXPECT_EQ(ErrorOf(Drawing(std::string("0 LINE 62 ") + number + " 11 1")),
                  std::string("line 8: '") + number + "' is no whole number of 32 bits");
}

TEST_F(DxfDamage, ColoursOutsideThePaletteAreTheLayers)
{
    for (const char* color : {"257", "-1", "2147483647", "-2147483648"})
        EXPECT_EQ(Import(std::string("0 LINE 8 a 62 ") + color + " 11 1", {}, "0 LAYER 2 a 62 5 70 0")
                      .pieces.at(0)
                      .color,
                  5);
    for (const char* color : {"0", "256", "999"})
        EXPECT_EQ(
            Import("0 LINE 8 a 11 1", {}, std::string("0 LAYER 2 a 70 0 62 ") + color).pieces.at(0).color, 7);
    for (const char* color : {"-1", "-999", "-2147483648"})
        EXPECT_THAT(ErrorOf(Drawing("0 LINE 8 a 11 1", {}, std::string("0 LAYER 2 a 70 0 62 ") + color)),
                    HasSubstr("layers that are off"));
}

TEST_F(DxfDamage, LongNamesAreRefused)
{
    const std::string name(1001, 'n');
    EXPECT_EQ(ErrorOf(Drawing("0 LINE 8 " + name + " 11 1")), "line 8: longer than 1000 characters");
    EXPECT_EQ(Import("0 LINE 8 " + name.substr(1) + " 11 1").pieces.at(0).name.size(), 1000U);
    EXPECT_EQ(ErrorOf(Drawing("0 LINE 10 " + std::string(2000, '1') + " 11 1")),
              "line 8: longer than 1000 characters");
}

TEST_F(DxfDamage, FaultsOfSplinesAreNamedWithTheirLine)
{
    EXPECT_EQ(ErrorOf(Drawing("0 SPLINE 71 2 40 0 40 0 40 1 40 1 10 0 20 0 10 1 20 1")),
              "line 5: not a spline: it has too few points for its degree");
    EXPECT_EQ(ErrorOf(Drawing("0 SPLINE 71 1 40 0 40 0 40 1 10 0 20 0 10 1 20 1")),
              "line 5: not a spline: its knots are not one for each point and degree + 1 more");
    EXPECT_THAT(ErrorOf(Drawing("0 SPLINE 71 -7 40 0 40 0 40 1 40 1 10 0 20 0 10 1 20 1")),
                HasSubstr("degree"));
    EXPECT_THAT(ErrorOf(Drawing("0 SPLINE 71 2147483647 10 0 20 0 10 1 20 1")), HasSubstr("degree"));
    EXPECT_THAT(ErrorOf(Drawing("0 SPLINE 71 1 40 0 40 1 40 0 40 1 10 0 20 0 10 1 20 1")),
                HasSubstr("decrease"));
    EXPECT_THAT(ErrorOf(Drawing("0 SPLINE 71 1 40 0 40 0 40 1 40 1 10 0 20 0 10 1 20 1 41 1 41 0")),
                HasSubstr("between 1e-100 and 1e100"));
}

TEST_F(DxfDamage, CountsOfSplinesAreNotBelieved)
{
    EXPECT_EQ(
        LinesOf("0 SPLINE 71 1 72 2000000000 73 -3 74 2000000000 40 0 40 0 40 1 40 1 10 0 20 0 10 1 20 1")
            .size(),
        1U);
    EXPECT_THAT(ErrorOf(Drawing("0 SPLINE 71 3 72 8 73 4 74 9")), HasSubstr("holds no entities"));
}

TEST_F(DxfDamage, CoordinatesThatOverflowAreRefused)
{
    EXPECT_EQ(ErrorOf(Drawing("0 INSERT 2 b 41 1e200", "0 BLOCK 2 b 0 LINE 10 1e200 11 1 0 ENDBLK")),
              "line 9: comes to coordinates beyond 1e70");
    EXPECT_EQ(LinesOf("0 LINE 10 1e70 11 -1e70").size(), 1U);
    EXPECT_THAT(ErrorOf(Drawing("0 LINE 10 1.1e70")), HasSubstr("beyond 1e70"));
    EXPECT_THAT(ErrorOf(Drawing("0 CIRCLE 10 1.7e308 40 1.7e308")), HasSubstr("beyond 1e70"));
    EXPECT_THAT(ErrorOf(Drawing("0 LWPOLYLINE 10 0 20 0 42 1e308 10 1e300 20 0")), HasSubstr("beyond 1e70"));
}

TEST_F(DxfDamage, DegenerateCurvesShowNothing)
{
    for (const char* entity :
         {"0 CIRCLE 40 0", "0 ARC 40 0 50 0 51 90", "0 ELLIPSE 11 0 40 1 41 0 42 6", "0 LWPOLYLINE 90 0",
          "0 LWPOLYLINE 10 1 20 1", "0 POLYLINE 66 1 0 SEQEND", "0 SPLINE 71 3", "0 SPLINE 11 1 21 1",
          "0 POLYLINE 66 1 70 64 0 SEQEND", "0 INSERT 2 none"})
        EXPECT_THAT(ErrorOf(Drawing(entity, "0 BLOCK 2 none 0 ENDBLK")),
                    testing::AnyOf(HasSubstr("shows nothing"), HasSubstr("holds no entities")))
            << entity;
}

TEST_F(DxfDamage, DrawingOfNothingToShowTellsWhatItHolds)
{
    EXPECT_EQ(ErrorOf(Drawing("0 TEXT 10 1 0 BODY 1 x 0 HATCH 10 1 0 TEXT 10 2")),
              "holds nothing that can be shown, only 1 BODY, 1 HATCH without boundary, 2 TEXT");
    EXPECT_EQ(ErrorOf(Drawing("")), "holds no entities");
    EXPECT_EQ(ErrorOf(Drawing("0 LINE 8 a 11 1", {}, "0 LAYER 2 a 70 1 62 7")),
              "shows nothing: its 1 entities are on layers that are off or frozen, or have no extent");
}

TEST_F(DxfDamage, MillionEmptyEntitiesAreReadAndRefused)
{
    std::string text = Lines("0 SECTION 2 ENTITIES");
    for (int i = 0; i < 1000000; ++i)
        text += "0\nLINE\n";
    EXPECT_EQ(ErrorOf(text + Lines("0 ENDSEC 0 EOF")),
              "shows nothing: its 1000000 entities are on layers that are off or frozen, or have no extent");
    std::string unknown = Lines("0 SECTION 2 ENTITIES");
    for (int i = 0; i < 1000000; ++i)
        unknown += "0\nKIND" + std::to_string(i) + '\n';
    EXPECT_THAT(ErrorOf(unknown + Lines("0 ENDSEC 0 EOF")),
                AllOf(HasSubstr("only 1 KIND0"), HasSubstr("...")));
}

TEST_F(DxfDamage, CurvesOfTooManySegmentsAreRefused)
{
    DxfDrawing drawing;
    drawing.entities.push_back(
        {EllipticArc{{}, {1, 0, 0}, {0, 1, 0}, 0.0, kFullTurn}, drawing.LayerNumber("0"), 7, 1});
    DxfPlacedEntities placement("round.dxf", drawing);
    const auto cut = [&](std::size_t most) {
        DxfPieceBuilder pieces("round.dxf", drawing, placement, 0.01, most); // 23 segments
        placement.ForEach([&](const PlacedEntity& placed) { pieces.Add(placed); });
        return pieces.Finish().pieces.size();
    };
    EXPECT_EQ(cut(23), 1U);
    EXPECT_THROW(cut(22), FileError);
}

} // namespace
} // namespace viewer
