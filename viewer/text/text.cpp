#include "viewer/text/text.h"

#include "platform/tools/utf8.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>

namespace viewer
{

namespace
{

/// Whether a terminal obeys the character instead of showing it, or may end the line there.
bool IsControl(wchar_t c)
{
    constexpr wchar_t kArabicLetterMark = 0x061C;
    const auto is_in = [c](wchar_t first, wchar_t last) { return c >= first && c <= last; };
    return is_in(0x00, 0x1F) || is_in(0x7F, 0x9F) || c == kArabicLetterMark ||
           is_in(0x200E, 0x200F) || // the marks of the direction
           is_in(0x2028, 0x202E) || // separators of lines and paragraphs, embeddings and overrides
           is_in(0x2066, 0x2069);   // isolates
}

bool IsContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// The first characters of UTF-8 that fit into `max_bytes` bytes.
std::string_view FirstCharacters(std::string_view text, std::size_t max_bytes)
{
    while (max_bytes > 0 && IsContinuation(text[max_bytes]))
        --max_bytes;
    return text.substr(0, max_bytes);
}

} // namespace

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view kWhiteSpace = " \t\r\n\f\v";
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

std::string UpperCase(std::string_view text)
{
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return upper;
}

std::optional<double> ParseReal(std::string_view text)
{
    // The conversion accepts no plus sign.
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size())
        return std::nullopt;
    if (error == std::errc::result_out_of_range && text.find('-', 1) != std::string_view::npos)
        return 0.0;
    return error == std::errc() ? std::optional(value) : std::nullopt;
}

std::string LowerCaseExtension(const std::string& path)
{
    return LowerCase(std::filesystem::path(path).extension().string());
}

std::string OneLine(std::string_view text, std::size_t max_bytes)
{
    std::wstring line;
    for (const wchar_t c : WideFromUtf8(text))
        if (!IsControl(c))
            line += c;
        else if (!line.empty() && line.back() != L' ')
            line += L' ';
    const std::string bytes = Utf8FromWide(line);
    return bytes.size() > max_bytes ? std::string(FirstCharacters(bytes, max_bytes)) + "..." : bytes;
}

} // namespace viewer
