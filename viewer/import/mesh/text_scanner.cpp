#include "viewer/import/mesh/text_scanner.h"

#include "platform/tools/utf8.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace viewer
{

namespace
{

enum class Kind : unsigned char { Word, Blank, LineEnd, Backslash };

constexpr std::array<Kind, 256> MakeKinds()
{
    std::array<Kind, 256> kinds{};
    for (const char c : {' ', '\t', '\v', '\f', '\0'})
        kinds.at(static_cast<unsigned char>(c)) = Kind::Blank;
    kinds.at(static_cast<unsigned char>('\n')) = Kind::LineEnd;
    kinds.at(static_cast<unsigned char>('\r')) = Kind::LineEnd;
    kinds.at(static_cast<unsigned char>('\\')) = Kind::Backslash;
    return kinds;
}

Kind KindOf(char c)
{
    static constexpr std::array<Kind, 256> kKinds = MakeKinds();
    return kKinds.at(static_cast<unsigned char>(c));
}

bool IsLineEnd(char c)
{
    return KindOf(c) == Kind::LineEnd;
}

/// The text, which begins with a byte order mark of UTF-16, as UTF-8 without the mark.
std::string FromUtf16(std::string_view content)
{
    const std::size_t high = content.front() == '\xFF' ? 1 : 0;
    const auto byte = [&](std::size_t i) {
        return static_cast<unsigned int>(static_cast<unsigned char>(content[i]));
    };
    std::wstring units;
    units.reserve(content.size() / 2);
    for (std::size_t i = 2; i + 1 < content.size(); i += 2)
        units += static_cast<wchar_t>(byte(i + high) << 8U | byte(i + 1 - high));
    return Utf8FromWide(units);
}

} // namespace

bool HasUtf16Mark(std::string_view content)
{
    return content.starts_with("\xFF\xFE") || content.starts_with("\xFE\xFF");
}

std::string ReadWholeFile(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!stream || error)
        throw FileError(path, "cannot be opened for reading");
    std::string content(static_cast<std::size_t>(size), '\0');
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(stream.gcount()));
    return HasUtf16Mark(content) ? FromUtf16(content) : content;
}

std::optional<long long> ParseInteger(std::string_view text)
{
    // The conversion accepts no plus sign.
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

TextScanner::TextScanner(std::string_view text, char comment) : text_(text), comment_(comment)
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text_.starts_with(kByteOrderMark))
        position_ = kByteOrderMark.size();
}

bool TextScanner::IsAtLineEnd() const
{
    return position_ >= text_.size() || IsLineEnd(text_[position_]) || IsAtComment();
}

std::size_t TextScanner::ContinuationLength() const
{
    if (text_[position_] != '\\' || position_ + 1 >= text_.size() || !IsLineEnd(text_[position_ + 1]))
        return 0;
    return text_.substr(position_ + 1).starts_with("\r\n") ? 3 : 2;
}

void TextScanner::SkipBlanks()
{
    while (position_ < text_.size()) {
        const Kind kind = KindOf(text_[position_]);
        const std::size_t blanks = kind == Kind::Backslash ? ContinuationLength() : 1;
        if (kind == Kind::Word || kind == Kind::LineEnd || blanks == 0)
            return;
        position_ += blanks;
    }
}

bool TextScanner::NextLine()
{
    // The position is at the start of the first line, or somewhere in the current one.
    if (started_)
        while (position_ < text_.size() && !IsLineEnd(text_[position_]))
            ++position_;
    started_ = true;
    while (position_ < text_.size()) {
        SkipBlanks();
        if (!IsAtLineEnd())
            return true;
        while (position_ < text_.size() && !IsLineEnd(text_[position_]))
            ++position_;
        while (position_ < text_.size() && IsLineEnd(text_[position_]))
            ++position_;
    }
    return false;
}

std::string_view TextScanner::Word()
{
    SkipBlanks();
    const std::size_t begin = position_;
    for (; position_ < text_.size(); ++position_) {
        const Kind kind = KindOf(text_[position_]);
        if (kind == Kind::Blank || kind == Kind::LineEnd || IsAtComment())
            break;
        if (kind == Kind::Backslash && ContinuationLength() != 0)
            break;
    }
    return text_.substr(begin, position_ - begin);
}

bool TextScanner::HasWord()
{
    SkipBlanks();
    return !IsAtLineEnd();
}

std::string_view TextScanner::Rest()
{
    SkipBlanks();
    const std::size_t begin = position_;
    while (!IsAtLineEnd())
        ++position_;
    return Trimmed(text_.substr(begin, position_ - begin));
}

std::string_view TextScanner::WordOfText()
{
    std::string_view word = Word();
    if (word.empty() && NextLine())
        word = Word();
    return word;
}

double TextScanner::Fraction() const
{
    return text_.empty() ? 1.0 : static_cast<double>(position_) / static_cast<double>(text_.size());
}

} // namespace viewer
