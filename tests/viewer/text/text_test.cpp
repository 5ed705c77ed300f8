#include "viewer/text/text.h"

#include "viewer/text/file_error.h"

#include <gtest/gtest.h>

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
    // Bytes from 0x80 on belong to characters of several bytes.
    EXPECT_EQ(OneLine("gr\xC3\xBC\xC3\x9F \xF0\x9F\x91\x8B"), "gr\xC3\xBC\xC3\x9F \xF0\x9F\x91\x8B");
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

TEST(OneLineOfText, EveryControlCharacterIsTakenForOne)
{
    for (int c = 0; c < 256; ++c) {
        const std::string text = std::string("a") + static_cast<char>(c) + "b";
        const bool is_control = c < 0x20 || c == 0x7F;
        EXPECT_EQ(OneLine(text), is_control ? "a b" : text) << c;
    }
}

TEST(OneLineOfText, LongerThanAllowedIsCutAndEndsWithDots)
{
    EXPECT_EQ(OneLine("12345", 5), "12345");
    EXPECT_EQ(OneLine("123456", 5), "12345...");
    EXPECT_EQ(OneLine("1", 0), "...");
    EXPECT_EQ(OneLine("", 0), "");
}

TEST(OneLineOfText, IsMeasuredWithoutItsControlCharacters)
{
    EXPECT_EQ(OneLine("\n\n12\n\n\n45", 5), "12 45");
}

TEST(FileErrorText, IsTheFileAndTheReason)
{
    EXPECT_STREQ(FileError("a b.step", "is empty").what(), "a b.step: is empty");
}

} // namespace
} // namespace viewer
