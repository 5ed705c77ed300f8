#include "platform/tools/utf8.h"

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

/// The next unit, without a sign whatever wchar_t has.
std::uint32_t Unit(wchar_t character)
{
    return static_cast<std::make_unsigned_t<wchar_t>>(character);
}

/// Takes one character off the front of `text`, which is not empty.
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

/// The `count` last groups of six bits, highest first.
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

} // namespace

std::string Utf8FromWide(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty())
        AppendCharacter(bytes, TakeCharacter(text));
    return bytes;
}
