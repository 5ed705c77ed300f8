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

} // namespace
