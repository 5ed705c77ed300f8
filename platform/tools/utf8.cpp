#include "platform/tools/utf8.h"

#include <array>
#include <cstdint>
#include <type_traits>

namespace
{

constexpr std::uint32_t kReplacementCharacter = 0xFFFD;

bool IsHighSurrogate(std::uint32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(std::uint32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The value of a unit. wchar_t may be signed.
std::uint32_t Unit(wchar_t character)
{
    return static_cast<std::make_unsigned_t<wchar_t>>(character);
}

/// Removes one character from the front of `text`, which is not empty, and returns it.
std::uint32_t TakeCharacter(std::wstring_view& text)
{
    const std::uint32_t first = Unit(text.front());
    text.remove_prefix(1);
    if (IsHighSurrogate(first) && !text.empty()) {
        const std::uint32_t second = Unit(text.front());
        if (IsLowSurrogate(second)) {
            text.remove_prefix(1);
            return 0x10000U + ((first - 0xD800U) << 10U) + (second - 0xDC00U);
        }
    }
    const bool is_character = first <= 0x10FFFF && !IsHighSurrogate(first) && !IsLowSurrogate(first);
    return is_character ? first : kReplacementCharacter;
}

void AppendByte(std::string& bytes, std::uint32_t value)
{
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(value)));
}

/// Appends the `count` lowest groups of six bits, the highest first.
void AppendContinuation(std::string& bytes, std::uint32_t character, unsigned count)
{
    for (unsigned group = count; group-- > 0;)
        AppendByte(bytes, 0x80U | ((character >> (6U * group)) & 0x3FU));
}

void AppendCharacter(std::string& bytes, std::uint32_t character)
{
    if (character < 0x80) {
        AppendByte(bytes, character);
    } else if (character < 0x800) {
        AppendByte(bytes, 0xC0U | (character >> 6U));
        AppendContinuation(bytes, character, 1);
    } else if (character < 0x10000) {
        AppendByte(bytes, 0xE0U | (character >> 12U));
        AppendContinuation(bytes, character, 2);
    } else {
        AppendByte(bytes, 0xF0U | (character >> 18U));
        AppendContinuation(bytes, character, 3);
    }
}

std::uint32_t Byte(char byte)
{
    return static_cast<unsigned char>(byte);
}

/// The length in bytes of a character, by its first byte; 0 for a byte that cannot be the first.
std::size_t LengthFromFirst(std::uint32_t first)
{
    if (first < 0x80)
        return 1;
    if (first >= 0xC0 && first < 0xE0)
        return 2;
    if (first >= 0xE0 && first < 0xF0)
        return 3;
    return first >= 0xF0 && first < 0xF8 ? 4 : 0;
}

/// Removes one character from the front of `text`, which is not empty, and returns it. Removes one byte
/// where no character begins.
std::uint32_t TakeCharacter(std::string_view& text)
{
    constexpr std::array<std::uint32_t, 5> kPayloadMask{0, 0x7F, 0x1F, 0x0F, 0x07};
    constexpr std::array<std::uint32_t, 5> kMinCharacter{0, 0, 0x80, 0x800, 0x10000};
    const std::size_t length = LengthFromFirst(Byte(text.front()));
    std::uint32_t character = Byte(text.front()) & kPayloadMask.at(length);
    bool is_whole = length != 0 && length <= text.size();
    for (std::size_t i = 1; is_whole && i < length; ++i) {
        is_whole = (Byte(text[i]) & 0xC0U) == 0x80U;
        character = (character << 6U) | (Byte(text[i]) & 0x3FU);
    }
    const bool is_character = is_whole && character >= kMinCharacter.at(length) && character <= 0x10FFFF &&
                              !IsHighSurrogate(character) && !IsLowSurrogate(character);
    text.remove_prefix(is_character ? length : 1);
    return is_character ? character : kReplacementCharacter;
}

void AppendCharacter(std::wstring& text, std::uint32_t character)
{
    if (sizeof(wchar_t) == 2 && character >= 0x10000) {
        text.push_back(static_cast<wchar_t>(0xD800U + ((character - 0x10000U) >> 10U)));
        text.push_back(static_cast<wchar_t>(0xDC00U + ((character - 0x10000U) & 0x3FFU)));
    } else {
        text.push_back(static_cast<wchar_t>(character));
    }
}

} // namespace

std::string Utf8FromWide(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty())
        AppendCharacter(bytes, TakeCharacter(text));
    return bytes;
}

std::wstring WideFromUtf8(std::string_view text)
{
    std::wstring wide;
    wide.reserve(text.size());
    while (!text.empty())
        AppendCharacter(wide, TakeCharacter(text));
    return wide;
}
