#include "viewer/text/text.h"

#include <algorithm>
#include <filesystem>

namespace viewer
{

namespace
{

bool IsControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
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

std::string LowerCaseExtension(const std::string& path)
{
    return LowerCase(std::filesystem::path(path).extension().string());
}

std::string OneLine(std::string_view text, std::size_t max_bytes)
{
    std::string line;
    for (const char c : text)
        if (!IsControl(c))
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    return line.size() > max_bytes ? line.substr(0, max_bytes) + "..." : line;
}

} // namespace viewer
