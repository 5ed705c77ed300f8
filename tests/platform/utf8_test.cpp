#include "platform/tools/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

TEST(Utf8, EmptyTextStaysEmpty)
{
    EXPECT_EQ(Utf8FromWide(L""), "");
}

TEST(Utf8, AsciiStaysAsItIs)
{
    EXPECT_EQ(Utf8FromWide(L"KARVGLCamera::SetTarget \x7F"), "KARVGLCamera::SetTarget \x7F");
}

TEST(Utf8, ZeroInsideIsKept)
{
    EXPECT_EQ(Utf8FromWide(std::wstring(L"a\0b", 3)), std::string("a\0b", 3));
}

TEST(Utf8, FirstAndLastCharacterOfEachLength)
{
    EXPECT_EQ(Utf8FromWide(L"\x80"), "\xC2\x80");
    EXPECT_EQ(Utf8FromWide(L"\x7FF"), "\xDF\xBF");
    EXPECT_EQ(Utf8FromWide(L"\x800"), "\xE0\xA0\x80");
    EXPECT_EQ(Utf8FromWide(L"\xFFFF"), "\xEF\xBF\xBF");
    EXPECT_EQ(Utf8FromWide(L"\U00010000"), "\xF0\x90\x80\x80");
    EXPECT_EQ(Utf8FromWide(L"\U0010FFFF"), "\xF4\x8F\xBF\xBF");
}

// U+1F600 is D83D DE00: 0x10000 + 0x3D * 0x400 + 0x200.
TEST(Utf8, PairOfSurrogatesIsOneCharacter)
{
    const std::wstring pair{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
    EXPECT_EQ(Utf8FromWide(pair), "\xF0\x9F\x98\x80");
}

TEST(Utf8, LoneSurrogatesAreReplaced)
{
    const auto high = static_cast<wchar_t>(0xD83D);
    const auto low = static_cast<wchar_t>(0xDE00);
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(Utf8FromWide(std::wstring{high}), replacement);
    EXPECT_EQ(Utf8FromWide(std::wstring{low}), replacement);
    EXPECT_EQ(Utf8FromWide(std::wstring{high, L'x'}), replacement + "x");
    EXPECT_EQ(Utf8FromWide(std::wstring{low, high}), replacement + replacement);
    EXPECT_EQ(Utf8FromWide(std::wstring{high, high, low}), replacement + "\xF0\x9F\x98\x80");
}

TEST(Utf8, ValuesPastTheLastCharacterAreReplaced)
{
    if constexpr (sizeof(wchar_t) > 2) {
        EXPECT_EQ(Utf8FromWide(std::wstring{static_cast<wchar_t>(0x110000)}), "\xEF\xBF\xBD");
        EXPECT_EQ(Utf8FromWide(std::wstring{static_cast<wchar_t>(-1)}), "\xEF\xBF\xBD");
    }
}

TEST(WideText, EmptyAndAsciiStayAsTheyAre)
{
    EXPECT_EQ(WideFromUtf8(""), L"");
    EXPECT_EQ(WideFromUtf8("part 1.stl\x7F"), L"part 1.stl\x7F");
    EXPECT_EQ(WideFromUtf8(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
}

TEST(WideText, FirstAndLastCharacterOfEachLength)
{
    EXPECT_EQ(WideFromUtf8("\xC2\x80"), L"\x80");
    EXPECT_EQ(WideFromUtf8("\xDF\xBF"), L"\x7FF");
    EXPECT_EQ(WideFromUtf8("\xE0\xA0\x80"), L"\x800");
    EXPECT_EQ(WideFromUtf8("\xEF\xBF\xBF"), L"\xFFFF");
    EXPECT_EQ(WideFromUtf8("\xF0\x90\x80\x80"), L"\U00010000");
    EXPECT_EQ(WideFromUtf8("\xF4\x8F\xBF\xBF"), L"\U0010FFFF");
}

// Overlong forms, a surrogate, a value above the last character, a cut character, and bytes that cannot be
// the first: one replacement for each byte.
TEST(WideText, BytesThatAreNoCharacterAreReplacedOneByOne)
{
    EXPECT_EQ(WideFromUtf8("\xC1\xBF"), L"\xFFFD\xFFFD");
    EXPECT_EQ(WideFromUtf8("\xE0\x9F\xBF"), L"\xFFFD\xFFFD\xFFFD");
    EXPECT_EQ(WideFromUtf8("\xF0\x8F\xBF\xBF"), L"\xFFFD\xFFFD\xFFFD\xFFFD");
    EXPECT_EQ(WideFromUtf8("\xED\xA0\x80"), L"\xFFFD\xFFFD\xFFFD");
    EXPECT_EQ(WideFromUtf8("\xF4\x90\x80\x80"), L"\xFFFD\xFFFD\xFFFD\xFFFD");
    EXPECT_EQ(WideFromUtf8("\xE2\x82"), L"\xFFFD\xFFFD");
    EXPECT_EQ(WideFromUtf8("\xE2\x82"
                           "a"),
              L"\xFFFD\xFFFD"
              L"a");
    EXPECT_EQ(WideFromUtf8("\x80\xFF\xF8"), L"\xFFFD\xFFFD\xFFFD");
}

TEST(WideText, GoesThereAndBack)
{
    const std::string text = "Welle \xC3\xB8 20 \xF0\x9F\x98\x80";
    EXPECT_EQ(Utf8FromWide(WideFromUtf8(text)), text);
}

} // namespace
