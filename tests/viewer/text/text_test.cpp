#include "viewer/text/text.h"

#include "platform/tools/utf8.h"
#include "viewer/text/file_error.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <ios>
#include <iterator>
#include <string>
#include <string_view>

namespace viewer
{
namespace
{

using std::string_view_literals::operator""sv;

TEST(TrimmedText, LosesWhiteSpaceOfEveryKindAtBothEnds)
{
    EXPECT_EQ(Trimmed(" \t\r\n\f\va\v\f\n\r\t "), "a");
    EXPECT_EQ(Trimmed("  a"), "a");
    EXPECT_EQ(Trimmed("a\r\n"), "a");
}

TEST(TrimmedText, KeepsWhiteSpaceInside)
{
    EXPECT_EQ(Trimmed(" a \t b "), "a \t b");
}

TEST(TrimmedText, OfNothingButWhiteSpaceIsEmpty)
{
    EXPECT_EQ(Trimmed(""), "");
    EXPECT_EQ(Trimmed(" "), "");
    EXPECT_EQ(Trimmed("\r\n\t "), "");
}

TEST(TrimmedText, KeepsControlCharactersThatAreNoWhiteSpace)
{
    EXPECT_EQ(Trimmed(" \0a\x1b "sv), "\0a\x1b"sv);
}

TEST(UpperCaseText, ChangesTheLettersOfAsciiAlone)
{
    EXPECT_EQ(UpperCase("Az09_\xC3\xA4"), "AZ09_\xC3\xA4");
}

TEST(ParsedReal, IsTheNumberThatIsTheWholeText)
{
    EXPECT_EQ(ParseReal("12.5"), 12.5);
    EXPECT_EQ(ParseReal("-1e3"), -1000.0);
    EXPECT_EQ(ParseReal("+.5"), 0.5);
    for (const char* const text : {"", "+", "+-1", "++1", "1 ", " 1", "1x", "x", "0x10"})
        EXPECT_FALSE(ParseReal(text)) << text;
}

TEST(ParsedReal, IsZeroBelowTheRangeAndNothingAboveIt)
{
    EXPECT_EQ(ParseReal("1e-999"), 0.0);
    EXPECT_EQ(ParseReal("-1e-999"), 0.0);
    EXPECT_FALSE(ParseReal("1e999"));
    EXPECT_FALSE(ParseReal("-1e999"));
}

TEST(LowerCaseText, ChangesTheLettersOfAsciiAlone)
{
    EXPECT_EQ(LowerCase("AZaz09"), "azaz09");
    // The characters around the letters.
    EXPECT_EQ(LowerCase("@[`{"), "@[`{");
    // Two capital letters beyond ASCII, in UTF-8 and in Latin-1.
    EXPECT_EQ(LowerCase("\xC3\x84\xC3\x96"), "\xC3\x84\xC3\x96");
    EXPECT_EQ(LowerCase("\xC4\xD6"), "\xC4\xD6");
    EXPECT_EQ(LowerCase(""), "");
}

TEST(LowerCaseExtensionOfAPath, HasItsDotAndOnlyTheLastPart)
{
    EXPECT_EQ(LowerCaseExtension("part.STEP"), ".step");
    EXPECT_EQ(LowerCaseExtension("/a/b.c/Part.v2.Stp"), ".stp");
    EXPECT_EQ(LowerCaseExtension("part."), ".");
}

TEST(LowerCaseExtensionOfAPath, IsEmptyWhereTheNameHasNone)
{
    for (const char* path : {"", "part", "/a.step/part", ".step", "/a/.step", "..", "/"})
        EXPECT_EQ(LowerCaseExtension(path), "") << path;
}

TEST(OneLineOfText, LeavesPrintableTextAsItIs)
{
    EXPECT_EQ(OneLine(""), "");
    EXPECT_EQ(OneLine("no such layer"), "no such layer");
}

TEST(OneLineOfText, LeavesTextOfEveryScriptAsItIs)
{
    for (const char* text : {
             "gr\u00FC\u00DFe \u00A0\u00FF", // Latin, from the first after C1
             "\u0395\u03BB\u03BB\u03AC\u03B4\u03B1 \u041C\u043E\u0441\u043A\u0432\u0430", // Greek, Cyrillic
             "\u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D\u0628\u0627",                   // Hebrew and Arabic
             "\u0928\u092E\u0938\u094D\u0924\u0947 \u0E2A\u0E27\u0E31\u0E2A\u0E14\u0E35", // Devanagari, Thai
             "\u65E5\u672C\u8A9E \uD55C\uAD6D\uC5B4",                                     // Japanese, Korean
             "e\u0301 \u200D \u2013 \u2027 \u202F \u2065 \u206A", // neighbors of the controls
             "\U0001F44B \U00010348 \U0010FFFF",                  // four bytes
         })
        EXPECT_EQ(OneLine(text), text);
}

TEST(OneLineOfText, HasOneBlankForEachRunOfControlCharacters)
{
    EXPECT_EQ(OneLine("a\nb"), "a b");
    EXPECT_EQ(OneLine("a\r\n\t\x1b\x7f\0b"sv), "a b");
    EXPECT_EQ(OneLine("a\nb\n\nc"), "a b c");
    EXPECT_EQ(OneLine("a\n"), "a ");
}

TEST(OneLineOfText, HasNoBlankForControlCharactersAtTheStartOrAfterABlank)
{
    EXPECT_EQ(OneLine("\n\na"), "a");
    EXPECT_EQ(OneLine("\n"), "");
    EXPECT_EQ(OneLine("a \nb"), "a b");
}

TEST(OneLineOfText, EveryControlCharacterOfAsciiBecomesABlank)
{
    for (int c = 0; c < 0x80; ++c) {
        const std::string text = std::string("a") + static_cast<char>(c) + "b";
        const bool is_control = c < 0x20 || c == 0x7F;
        EXPECT_EQ(OneLine(text), is_control ? "a b" : text) << c;
    }
}

TEST(OneLineOfText, EveryC1ControlBecomesABlank)
{
    // U+0080 to U+009F are C2 80 to C2 9F; U+009B starts a terminal's commands, U+0085 is a line end.
    for (int c = 0x80; c < 0xA0; ++c)
        EXPECT_EQ(OneLine(std::string("a\xC2") + static_cast<char>(c) + "b"), "a b") << c;
}

/// The character in UTF-8. Tests hold no text that changes the direction of their own source.
std::string Character(wchar_t c)
{
    return Utf8FromWide({&c, 1});
}

TEST(OneLineOfText, CharactersThatChangeTheDirectionBecomeABlank)
{
    for (const wchar_t mark : std::initializer_list<wchar_t>{0x061C, 0x200E, 0x200F, 0x202A, 0x202B, 0x202C,
                                                             0x202D, 0x202E, 0x2066, 0x2067, 0x2068, 0x2069})
        EXPECT_EQ(OneLine("a" + Character(mark) + "b"), "a b") << std::hex << static_cast<unsigned>(mark);
}

TEST(OneLineOfText, SeparatorsOfLinesAndParagraphsBecomeABlank)
{
    EXPECT_EQ(OneLine("a\u2028b\u2029c"), "a b c");
}

TEST(OneLineOfText, RunOfControlsOfEveryKindBecomesOneBlank)
{
    EXPECT_EQ(OneLine("a\n" + Character(0x202E) + "\u0085\x7F\u2029" + Character(0x2066) + "b"), "a b");
    EXPECT_EQ(OneLine(Character(0x202E) + "\u2028"), "");
}

TEST(OneLineOfText, ByteThatIsNotUtf8BecomesAReplacementCharacter)
{
    const std::string replacement = "\uFFFD";
    for (int c = 0x80; c < 0x100; ++c)
        EXPECT_EQ(OneLine(std::string("a") + static_cast<char>(c) + "b"), "a" + replacement + "b") << c;
    EXPECT_EQ(OneLine("\xE2\x80"), replacement + replacement) << "ends early";
    EXPECT_EQ(OneLine("\xE2\x80\n"), replacement + replacement + " ");
    EXPECT_EQ(OneLine("\xC0\x8A"), replacement + replacement) << "a line end of two bytes";
    EXPECT_EQ(OneLine("\xED\xA0\x80"), replacement + replacement + replacement) << "a surrogate";
    EXPECT_EQ(OneLine("\xF4\x90\x80\x80"), replacement + replacement + replacement + replacement)
        << "above U+10FFFF";
}

TEST(OneLineOfText, LongerThanAllowedIsCutAndEndsWithDots)
{
    EXPECT_EQ(OneLine("12345", 5), "12345");
    EXPECT_EQ(OneLine("123456", 5), "12345...");
    EXPECT_EQ(OneLine("1", 0), "...");
    EXPECT_EQ(OneLine("", 0), "");
}

TEST(OneLineOfText, IsNeverCutInsideACharacter)
{
    // One, two, three and four bytes: characters end after 1, 3, 6 and 10.
    const std::string text = "a\u00FC\u65E5\U0001F44Bz";
    const std::size_t ends[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10};
    for (std::size_t max_bytes = 0; max_bytes < std::size(ends); ++max_bytes)
        EXPECT_EQ(OneLine(text, max_bytes), text.substr(0, ends[max_bytes]) + "...") << max_bytes;
    EXPECT_EQ(OneLine(text, text.size()), text);
}

TEST(OneLineOfText, IsMeasuredWithoutItsControlCharacters)
{
    EXPECT_EQ(OneLine("\n\n12\n\n\n45", 5), "12 45");
}

TEST(FileErrorText, IsTheFileAndTheReason)
{
    EXPECT_STREQ(FileError("a b.step", "is empty").what(), "a b.step: is empty");
}

TEST(FileErrorText, IsOneLineWhateverTheFileAndTheReasonHold)
{
    const FileError error("a\nb\x1b[2J" + Character(0x202E) + ".step", "layer 'x\r\n\u2028y\u009B' \xFF");
    EXPECT_STREQ(error.what(), "a b [2J .step: layer 'x y ' \uFFFD");
    EXPECT_STREQ(error.Reason(), "layer 'x y ' \uFFFD");
}

TEST(FileErrorText, ReasonIsWithoutTheFile)
{
    EXPECT_STREQ(FileError("a: b.step", "is: empty").Reason(), "is: empty");
    EXPECT_STREQ(FileError("", "").Reason(), "");
}

} // namespace
} // namespace viewer
