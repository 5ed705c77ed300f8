#include "tests/viewer/import/dxf/dxf_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

namespace viewer
{
namespace
{

/// A capital H reaches from the baseline to the height of its text, and fills most of its cell.
class DxfTexts : public DxfTest
{
  protected:
    /// A drawing of entities with texts: `texts` replace the words "$1", "$2", ...
    static std::string WithTexts(const std::string& entities, const std::vector<std::string>& texts,
                                 const std::string& header = {})
    {
        std::string text = Drawing(entities);
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const std::string place = "\n$" + std::to_string(i + 1) + "\n";
            const std::size_t found = text.find(place);
            EXPECT_NE(found, std::string::npos) << place;
            text.replace(found + 1, place.size() - 2, texts[i]);
        }
        return header.empty() ? text : Lines("0 SECTION 2 HEADER") + Lines(header) + Lines("0 ENDSEC") + text;
    }
    [[nodiscard]] Box BoxOf(const std::string& entities, const std::vector<std::string>& texts) const
    {
        return ImportText(WithTexts(entities, texts)).Extents();
    }
    /// All lines of a text of height 10.
    [[nodiscard]] std::vector<Segment> Outline(const std::string& kind, const std::string& text,
                                               const std::string& header = {}) const
    {
        const Model model = ImportText(WithTexts("0 " + kind + " 40 10 1 $1", {text}, header));
        std::vector<Segment> lines;
        for (const Piece& piece : model.pieces)
            lines.insert(lines.end(), piece.lines.begin(), piece.lines.end());
        return lines;
    }
    void ExpectSameOutline(const std::string& kind, const std::string& text, const std::string& other,
                           const std::string& header = {}) const
    {
        const auto lines = Outline(kind, text, header);
        const auto others = Outline(kind, other);
        ASSERT_GT(others.size(), 3U) << other;
        ASSERT_EQ(lines.size(), others.size()) << text;
        for (std::size_t i = 0; i < lines.size(); ++i)
            ExpectLine(lines[i], others[i].from, others[i].to);
    }
    static void ExpectBox(const Box& box, const Point& min, const Point& max, double tolerance)
    {
        ExpectNear(box.min, min, tolerance);
        ExpectNear(box.max, max, tolerance);
    }
    /// The numbers of baselines that capital letters stand on, by height, of letters H alone.
    static std::vector<double> Baselines(const std::vector<Segment>& lines)
    {
        std::vector<double> heights;
        for (const Segment& line : lines)
            heights.push_back(std::min(line.from.y, line.to.y));
        std::ranges::sort(heights);
        const auto repeated = [](double a, double b) { return std::abs(a - b) < 1e-6; };
        heights.erase(std::ranges::unique(heights, repeated).begin(), heights.end());
        return heights;
    }
};

TEST_F(DxfTexts, CapitalsStandOnTheBaselineAndAreAsHighAsTheText)
{
    const Model model = Import("0 TEXT 8 notes 62 3 10 5 20 7 30 2 40 10 1 HH");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "notes");
    EXPECT_EQ(model.pieces[0].color, 3);
    const Box box = model.Extents();
    EXPECT_NEAR(box.min.y, 7, 1e-3);
    EXPECT_NEAR(box.max.y, 17, 1e-3);
    EXPECT_EQ(box.min.z, 2);
    EXPECT_EQ(box.max.z, 2);
    EXPECT_GT(box.min.x, 5);
    EXPECT_GT(box.max.x - box.min.x, 10) << "two letters are wider than one is high";
    EXPECT_LT(box.max.x - box.min.x, 20);
    EXPECT_EQ(model.pieces[0].lines.size(), 24U) << "an H has twelve corners";
}

TEST_F(DxfTexts, AlignmentIsAtTheSecondPoint)
{
    const auto box = [&](const std::string& groups) {
        return Import("0 TEXT 10 500 20 500 11 0 21 0 40 10 1 HHH" + groups).Extents();
    };
    EXPECT_NEAR(box(" 72 1").min.x + box(" 72 1").max.x, 0, 1e-3) << "center";
    EXPECT_LT(box(" 72 2").max.x, 0) << "right";
    EXPECT_GT(box(" 72 2").max.x, -3);
    EXPECT_NEAR(box(" 73 3").max.y, 0, 1e-3) << "top";
    EXPECT_NEAR(box(" 73 2").max.y, 5, 1e-3) << "middle";
    EXPECT_GT(box(" 73 1").min.y, 1) << "bottom, below letters that reach under the baseline";
    EXPECT_NEAR(box(" 72 4").max.y, 5, 1e-3) << "the middle both ways";
    EXPECT_NEAR(box(" 72 4").min.x + box(" 72 4").max.x, 0, 1e-3);
    EXPECT_GT(box("").min.x, 500) << "left at the baseline: the first point";
}

TEST_F(DxfTexts, TextBetweenTwoPointsIsStretchedOrScaledToReachBoth)
{
    const auto box = [&](const std::string& groups) {
        return Import("0 TEXT 10 0 20 0 11 100 21 0 40 10 1 HHH " + groups).Extents();
    };
    const double natural = Import("0 TEXT 40 10 1 HHH").Extents().max.x;
    EXPECT_GT(box("72 5").max.x, 90);
    EXPECT_LT(box("72 5").max.x, 100);
    EXPECT_NEAR(box("72 5").max.y, 10, 1e-3) << "fitted: the height stays";
    EXPECT_GT(box("72 3").max.x, 90);
    EXPECT_NEAR(box("72 3").max.y, 10 * box("72 3").max.x / natural, 0.01)
        << "aligned: the height grows, too";
    const Box upwards = Import("0 TEXT 10 0 20 0 11 0 21 100 40 10 72 5 1 HHH").Extents();
    EXPECT_NEAR(upwards.min.x, -10, 1e-3);
    EXPECT_GT(upwards.max.y, 90);
}

TEST_F(DxfTexts, RotationMirrorsAndExtrusionPlaceTheText)
{
    const Box plain = Import("0 TEXT 40 10 1 HH").Extents();
    const auto box = [&](const std::string& groups) {
        return Import("0 TEXT 40 10 1 HH " + groups).Extents();
    };
    ExpectBox(box("50 90"), {-10, plain.min.x, 0}, {0, plain.max.x, 0}, 1e-3);
    ExpectBox(box("71 2"), {-plain.max.x, 0, 0}, {-plain.min.x, 10, 0}, 1e-3);
    ExpectBox(box("71 4"), {plain.min.x, -10, 0}, {plain.max.x, 0, 0}, 1e-3);
    ExpectBox(box("210 0 220 0 230 -1"), {-plain.max.x, 0, 0}, {-plain.min.x, 10, 0}, 1e-3);
    ExpectBox(box("41 2"), {2 * plain.min.x, 0, 0}, {2 * plain.max.x, 10, 0}, 1e-3);
    EXPECT_NEAR(box("51 45").max.x, plain.max.x + 10, 1e-3) << "the top leans by the height";
}

TEST_F(DxfTexts, SignsAndNumbersOfCharactersAreCharacters)
{
    ExpectSameOutline("TEXT", "%%065", "A");
    ExpectSameOutline("TEXT", "\\U+0041", "A");
    ExpectSameOutline("TEXT", "45%%d", "45\u00B0");
    ExpectSameOutline("TEXT", "%%p%%%", "\u00B1%");
    ExpectSameOutline("TEXT", "%%C5", "\u00D85");
    ExpectSameOutline("MTEXT", R"(%%d\~\\\{\}\U+0041)", "\u00B0\u00A0\\\\\\{\\}A");
    ExpectSameOutline("TEXT", "a^ b", "a\\U+005Eb");
}

TEST_F(DxfTexts, SwitchesDrawLinesUnderAndOverTheText)
{
    const Box plain = BoxOf("0 TEXT 40 10 1 $1", {"HHHH"});
    const Box under = BoxOf("0 TEXT 40 10 1 $1", {"%%uHHHH"});
    EXPECT_LT(under.min.y, -1);
    EXPECT_LE(under.min.x, plain.min.x);
    EXPECT_GE(under.max.x, plain.max.x);
    EXPECT_GT(BoxOf("0 TEXT 40 10 1 $1", {"%%oHHHH"}).max.y, 11);
    // The line ends with the switch: it is about half as long as the text.
    const auto lines = Outline("TEXT", "%%uHH%%uHH");
    const auto line = std::ranges::find_if(lines, [](const Segment& part) { return part.from.y < -1; });
    ASSERT_NE(line, lines.end());
    EXPECT_NEAR(line->to.x, (plain.min.x + plain.max.x) / 2, 0.01);
}

TEST_F(DxfTexts, CodePageOfTheDrawingSaysWhatItsBytesAre)
{
    const auto page = [](const std::string& name) { return "9 $ACADVER 1 AC1015 9 $DWGCODEPAGE 3 " + name; };
    ExpectSameOutline("TEXT", "\xCF\xF0", "\u041F\u0440", page("ANSI_1251"));
    ExpectSameOutline("TEXT", "\xE4", "\u00E4", page("ANSI_1252"));
    ExpectSameOutline("TEXT", "\x83\xBF", "\u03B1", page("ANSI_932"));
    ExpectSameOutline("TEXT", "\x84", "\u00E4", page("dos850"));
    ExpectSameOutline("TEXT", "\u00E4", "\u00E4", "9 $ACADVER 1 AC1021 9 $DWGCODEPAGE 3 ANSI_1251");
    ExpectSameOutline("TEXT", "\u00E4", "\u00E4", page("ANSI_1252"));
    ExpectSameOutline("TEXT", "\\M+183BF", "\u03B1");
}

TEST_F(DxfTexts, SecondByteThatLooksLikeABackslashIsNoCode)
{
    ExpectSameOutline("MTEXT", "\x83\x5CP", "\u30BDP", "9 $ACADVER 1 AC1015 9 $DWGCODEPAGE 3 ANSI_932");
}

TEST_F(DxfTexts, BytesThatAreNoTextBecomeReplacements)
{
    ExpectSameOutline("TEXT", "a\xFFz", "a\uFFFDz");
}

TEST_F(DxfTexts, StylesGiveHeightAndWidth)
{
    const std::string style = Lines("0 SECTION 2 TABLES 0 STYLE 2 Wide 40 20 41 3 50 0 3 any.shx 0 ENDSEC");
    const Box plain = Import("0 TEXT 40 20 1 HH").Extents();
    const Box styled = ImportText(style + Drawing("0 TEXT 7 WIDE 1 HH")).Extents();
    EXPECT_NEAR(styled.max.y, 20, 1e-3);
    EXPECT_NEAR(styled.max.x, 3 * plain.max.x, 1e-3);
    EXPECT_NEAR(ImportText(style + Drawing("0 MTEXT 7 wide 40 20 1 HH")).Extents().max.x, 3 * plain.max.x,
                1e-3);
    EXPECT_NEAR(ImportText(style + Drawing("0 TEXT 7 wide 40 5 41 1 1 HH")).Extents().max.y, 5, 1e-3)
        << "a text's own height and width count";
}

TEST_F(DxfTexts, ParagraphsAreFiveThirdsOfTheHeightApart)
{
    // The top of the first line is at the insertion point: baselines are at -10 and -10 - 50/3.
    const Box box = BoxOf("0 MTEXT 40 10 1 $1", {"H\\PHH"});
    EXPECT_NEAR(box.max.y, 0, 1e-3);
    EXPECT_NEAR(box.min.y, -10 - 50.0 / 3, 1e-3);
    EXPECT_NEAR(BoxOf("0 MTEXT 40 10 44 2 1 $1", {"H\\PHH"}).min.y, -10 - 100.0 / 3, 1e-3);
    EXPECT_NEAR(BoxOf("0 MTEXT 40 10 1 $1", {"H\\P\\PH"}).min.y, -10 - 100.0 / 3, 1e-3) << "an empty line";
}

TEST_F(DxfTexts, AttachmentIsAtOneOfNinePoints)
{
    const double height = 10 + 50.0 / 3;
    for (int attachment = 1; attachment <= 9; ++attachment) {
        const Box box = BoxOf("0 MTEXT 40 10 71 " + std::to_string(attachment) + " 1 $1", {"HHHH\\PH"});
        const double left = box.max.x - box.min.x;
        const int column = (attachment - 1) % 3;
        const int row = (attachment - 1) / 3;
        EXPECT_NEAR(box.max.y, height * row / 2, 1e-3) << attachment;
        EXPECT_NEAR(box.min.x, -left * column / 2, 2.0) << attachment;
    }
}

TEST_F(DxfTexts, WordsThatExceedTheWidthBeginANewLine)
{
    const auto lines_of = [&](const std::string& width) {
        const Box box = BoxOf("0 MTEXT 40 10 41 " + width + " 1 $1", {"HHH HHH HHH"});
        return (-box.min.y - 10) / (50.0 / 3) + 1;
    };
    EXPECT_NEAR(lines_of("0"), 1, 1e-3) << "no width: no wrapping";
    EXPECT_NEAR(lines_of("1000"), 1, 1e-3);
    EXPECT_NEAR(lines_of("65"), 2, 1e-3);
    EXPECT_NEAR(lines_of("30"), 3, 1e-3);
    EXPECT_NEAR(lines_of("1"), 3, 1e-3) << "words are not split";
    const Box centered = BoxOf("0 MTEXT 40 10 41 200 71 1 1 $1", {"\\pxqc;HHH"});
    EXPECT_NEAR((centered.min.x + centered.max.x) / 2, 100, 1e-3);
    EXPECT_GT(BoxOf("0 MTEXT 40 10 41 200 1 $1", {"\\pqr;HHH"}).max.x, 195);
    EXPECT_GT(BoxOf("0 MTEXT 40 10 41 200 1 $1", {"\\pi2;HHH"}).min.x, 20) << "indent of twice the height";
}

TEST_F(DxfTexts, GroupsOfFormatsEndWithTheirBrace)
{
    const Model model = ImportText(WithTexts("0 MTEXT 62 5 40 10 1 $1", {"H{\\C1;H}{\\c65280;H}H"}));
    std::map<int, std::size_t> lines;
    for (const Piece& piece : model.pieces)
        lines[piece.color] += piece.lines.size();
    EXPECT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[5], 24U);
    EXPECT_EQ(lines[1], 12U);
    EXPECT_EQ(lines[3], 12U) << "green of 24 bits";
    EXPECT_NEAR(BoxOf("0 MTEXT 40 10 1 $1", {"{\\H2x;H}H"}).min.y, -20, 1e-3) << "twice the height";
    EXPECT_NEAR(BoxOf("0 MTEXT 40 10 1 $1", {"\\H30;H"}).min.y, -30, 1e-3);
    const double width = BoxOf("0 MTEXT 40 10 1 $1", {"H"}).max.x;
    EXPECT_NEAR(BoxOf("0 MTEXT 40 10 1 $1", {"\\W3;H"}).max.x, 3 * width, 1e-3);
}

TEST_F(DxfTexts, StacksAreAboveEachOther)
{
    const auto fraction = Outline("MTEXT", "\\SH/H;");
    EXPECT_EQ(fraction.size(), 25U) << "two letters and the bar";
    const auto tolerance = Outline("MTEXT", "\\SH^ H;");
    EXPECT_EQ(tolerance.size(), 24U);
    const Box box = BoxOf("0 MTEXT 40 10 1 $1", {"\\SH/H;"});
    EXPECT_GT(box.max.y - box.min.y, 20);
    EXPECT_LT(box.max.x, 20);
    EXPECT_EQ(Outline("MTEXT", "\\SH#H;").size(), 25U);
    EXPECT_EQ(Outline("MTEXT", "\\SH;").size(), 12U) << "nothing to stack";
}

TEST_F(DxfTexts, LongTextsAreJoinedWithTheBlanksAtTheEndsOfTheirParts)
{
    const Box whole = BoxOf("0 MTEXT 40 10 1 $1", {"HH  HH"});
    const Box parts = BoxOf("0 MTEXT 40 10 3 $1 1 $2", {"HH ", " HH"});
    EXPECT_NEAR(parts.max.x, whole.max.x, 1e-9);
}

TEST_F(DxfTexts, ParagraphsAreTurnedByAnAngleOrADirectionWhicheverIsLast)
{
    const Box plain = BoxOf("0 MTEXT 40 10 1 $1", {"HHH"});
    const auto expect_up = [&](const std::string& groups) {
        const Box box = BoxOf("0 MTEXT 40 10 " + groups + " 1 $1", {"HHH"});
        ExpectBox(box, {0, plain.min.x, 0}, {10, plain.max.x, 0}, 1e-3);
    };
    expect_up("50 90");
    expect_up("11 0 21 5 31 0");
    expect_up("50 30 11 0 21 1 31 0");
    expect_up("11 1 21 0 31 0 50 90");
    expect_up("50 90 75 1 50 30"); // the height of a column
}

TEST_F(DxfTexts, DamagedCodesShowTheRest)
{
    for (const char* text : {"H\\", "H\\C;", "H\\C99999999999;", "H\\Hx;", "H\\H-5;", "H{{{", "H}}}", "H\\S",
                             "H\\A;", "H\\pi", "H\\f", "H\\U+00", "H\\M+1", "H\\Q1e300;", "H\\W0;"})
        EXPECT_GE(Outline("MTEXT", text).size(), 12U) << text;
    for (const char* text : {"H%%", "H%%u", "H%%00", "H%", "H^"})
        EXPECT_GE(Outline("TEXT", text).size(), 12U) << text;
}

TEST_F(DxfTexts, HeightsAndPlacesBeyondMeasureAreRefused)
{
    EXPECT_THAT(ErrorOf(Drawing("0 LINE 11 1 0 TEXT 10 1e80 40 1 1 H")), testing::HasSubstr("beyond 1e70"));
    EXPECT_THAT(ErrorOf(Drawing("0 LINE 11 1 0 MTEXT 40 1e300 1 H")), testing::HasSubstr("beyond 1e70"));
}

TEST_F(DxfTexts, TextOfBadNumbersIsCountedAndTheRestIsShown)
{
    const Model model = Import("0 LINE 11 1 0 TEXT 10 nan 40 1 1 H 0 TEXT 10 0 40 x 1 H 0 MTEXT 71 1.5 1 H");
    ASSERT_EQ(model.left_out.size(), 2U);
    EXPECT_EQ(model.left_out[0].kind, "MTEXT");
    EXPECT_EQ(model.left_out[0].count, 1U);
    EXPECT_EQ(model.left_out[1].kind, "TEXT");
    EXPECT_EQ(model.left_out[1].count, 2U);
    EXPECT_EQ(model.pieces.at(0).lines.size(), 1U);
}

TEST_F(DxfTexts, InvisibleAndPaperSpaceTextsAreNeitherShownNorCounted)
{
    const Model model = Import("0 LINE 11 1 0 TEXT 60 1 40 1 1 H 0 TEXT 67 1 40 1 1 H 0 IMAGE 67 1");
    EXPECT_EQ(model.pieces.at(0).lines.size(), 1U);
    EXPECT_TRUE(model.left_out.empty());
}

TEST_F(DxfTexts, AttributesOfInsertsShowTheirValues)
{
    const std::string blocks = "0 BLOCK 2 tag 0 ATTDEF 10 0 20 0 40 1 2 TAG 1 default 70 0 0 ENDBLK";
    const Model model = Import("0 INSERT 2 tag 66 1 0 ATTRIB 10 50 20 60 40 10 2 TAG 1 H 70 0 "
                               "0 ATTRIB 10 90 40 10 2 TAG 1 H 70 1 0 SEQEND",
                               blocks);
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].lines.size(), 12U) << "the invisible one is not shown, nor the definition";
    EXPECT_NEAR(model.Extents().min.y, 60, 1e-3);
    // The second point and the vertical alignment, which has another code than that of texts.
    const Box box = Import("0 ATTRIB 10 500 11 0 21 0 40 10 74 3 1 H").Extents();
    EXPECT_NEAR(box.max.y, 0, 1e-3);
}

TEST_F(DxfTexts, AttributesOfAHiddenInsertAreHidden)
{
    const Model model = Import("0 LINE 11 1 0 INSERT 2 tag 60 1 66 1 0 ATTRIB 10 50 40 10 1 H 0 SEQEND",
                               "0 BLOCK 2 tag 0 ENDBLK");
    EXPECT_EQ(model.Extents().max.x, 1);
}

TEST_F(DxfTexts, AttributeOfParagraphsShowsThem)
{
    const Model model = ImportText(
        WithTexts("0 ATTRIB 10 1 40 10 1 one 101 $1 10 5 20 6 40 10 1 $2", {"Embedded Object", "H\\PH"}));
    EXPECT_EQ(model.pieces.at(0).lines.size(), 24U);
    EXPECT_NEAR(model.Extents().max.y, 6, 1e-3);
}

TEST_F(DxfTexts, DefinitionsOfAttributesShowTheirTagsOutsideOfBlocksOnly)
{
    EXPECT_EQ(LinesOf("0 ATTDEF 40 10 2 HH 1 H 70 0").size(), 24U);
    EXPECT_EQ(LinesOf("0 INSERT 2 b 0 LINE 11 1", "0 BLOCK 2 b 0 ATTDEF 40 10 2 HH 1 H 70 0 0 ENDBLK").size(),
              1U);
    EXPECT_EQ(LinesOf("0 INSERT 2 b", "0 BLOCK 2 b 0 ATTDEF 40 10 2 HH 1 H 70 2 0 ENDBLK").size(), 12U)
        << "a constant one shows its value";
}

TEST_F(DxfTexts, BlockOfTextsAloneIsShownWhereItIsInserted)
{
    const Model model =
        Import("0 INSERT 2 b 8 top 10 100 41 2 42 2", "0 BLOCK 2 b 0 TEXT 8 0 40 10 1 H 0 ENDBLK");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "top");
    EXPECT_THAT(model.pieces[0].parents, testing::ElementsAre("b"));
    EXPECT_NEAR(model.Extents().max.y, 20, 1e-3);
    EXPECT_GT(model.Extents().min.x, 100);
}

TEST_F(DxfTexts, TextsOfABlockAreInItWhateverStandsBeforeThem)
{
    const Model model =
        Import("0 TEXT 10 100 40 10 1 H 0 INSERT 2 b 0 TEXT 10 200 40 10 1 H",
               "0 BLOCK 2 a 0 TEXT 10 900 40 10 1 H 0 ENDBLK 0 BLOCK 2 b 0 TEXT 10 0 40 10 1 H "
               "0 LINE 11 1 0 TEXT 10 50 40 10 1 H 0 ENDBLK");
    ASSERT_EQ(model.pieces.size(), 2U);
    std::map<std::size_t, std::size_t> lines;
    for (const Piece& piece : model.pieces)
        lines[piece.parents.size()] = piece.lines.size();
    EXPECT_EQ(lines[0], 24U);
    EXPECT_EQ(lines[1], 25U);
}

TEST_F(DxfTexts, BlockWithoutItsEndHoldsNoTextsOfTheDrawing)
{
    const Model model = Import("0 TEXT 40 10 1 H", "0 BLOCK 2 b 0 TEXT 40 10 1 HH");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].lines.size(), 12U);
}

TEST_F(DxfTexts, ManyLettersOfATextShareTheirOutlines)
{
    // A letter of the file may not cost more memory than its place: all are one outline until they are cut.
    const std::string text(20000, 'H');
    EXPECT_EQ(Outline("TEXT", text).size(), 20000U * 12U);
}

} // namespace
} // namespace viewer
