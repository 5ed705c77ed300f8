#include "viewer/import/dxf/group_reader.h"

#include "viewer/import/dxf/binary_values.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>

namespace viewer
{

namespace
{

constexpr int kComment = 999;
constexpr int kMaxCode = 1071;

/// The shortest text of the number that reads as the same number.
template <class Number>
std::string TextOf(Number value)
{
    std::array<char, 40> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), end};
}

/// Whether the value is a text, whose blanks count.
bool IsText(int code)
{
    return code == 1 || code == 3 || code == 302 || code == 304;
}

std::size_t MaxLength(int code)
{
    return IsText(code) ? kMaxDxfText : kMaxDxfLine;
}

} // namespace

std::string QuotedForMessage(std::string_view text)
{
    constexpr std::size_t kMaxBytes = 40;
    return '\'' + OneLine(text, kMaxBytes) + '\'';
}

std::optional<long long> ParseWholeNumber(std::string_view text)
{
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

DxfGroupReader::DxfGroupReader(std::string path, const ProgressFunction& progress)
    : path_(std::move(path)), progress_(progress), file_(path_, std::ios::binary)
{
    if (!file_)
        throw FileError(path_, "cannot be opened for reading");
    size_ = std::filesystem::file_size(path_);
}

int DxfGroupReader::ReadByte()
{
    if (block_next_ == block_size_) {
        file_.read(block_.data(), static_cast<std::streamsize>(block_.size()));
        block_size_ = static_cast<std::size_t>(file_.gcount());
        block_next_ = 0;
        if (block_size_ == 0)
            return -1;
        bytes_read_ += block_size_;
        if (progress_)
            progress_(std::min(1.0, static_cast<double>(bytes_read_) / static_cast<double>(size_)));
    }
    return static_cast<unsigned char>(block_[block_next_++]);
}

/// Returns false at the end of the file. Of a line longer than `max_length`, one byte more than that is kept.
bool DxfGroupReader::ReadLine(std::string& text, std::size_t max_length)
{
    text.clear();
    ++line_;
    int byte = ReadByte();
    const bool is_there = byte >= 0;
    for (; byte >= 0 && byte != '\n' && byte != '\r'; byte = ReadByte()) {
        if (byte == 0)
            throw FileError(path_, line_ == 1 ? "is not a DXF file: it begins with zero bytes"
                                              : "line " + std::to_string(line_) + ": holds zero bytes");
        if (text.size() <= max_length)
            text += static_cast<char>(byte);
    }
    if (byte != '\r')
        return is_there;
    if (ReadByte() != '\n' && block_next_ > 0)
        --block_next_;
    return true;
}

int DxfGroupReader::ParseCode(std::string_view text) const
{
    const std::optional<long long> code = ParseWholeNumber(Trimmed(text));
    if (code && *code >= -5 && *code <= kMaxCode)
        return static_cast<int>(*code);
    if (line_ == 1 && text.ends_with("Binary DXF"))
        throw FileError(path_, "is a damaged binary DXF file");
    if (line_ == 1)
        throw FileError(path_, "is not a DXF file: line 1 is " + QuotedForMessage(text) +
                                   ", which is no group code");
    throw FileError(path_,
                    "line " + std::to_string(line_) + ": " + QuotedForMessage(text) + " is no group code");
}

/// Reads a line for the code and one for the value. Blank lines are skipped where the file may end. Returns
/// false where it ends.
bool DxfGroupReader::ReadText(DxfGroup& group, bool may_end)
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    std::string text;
    bool has_code = ReadLine(text, kMaxDxfLine);
    while (may_end && has_code && Trimmed(text).empty())
        has_code = ReadLine(text, kMaxDxfLine);
    if (!has_code)
        return false;
    if (line_ == 1 && text.starts_with(kByteOrderMark))
        text.erase(0, kByteOrderMark.size());
    group.line = line_;
    group.code = ParseCode(text);
    const bool is_text = IsText(group.code);
    if (!ReadLine(text, MaxLength(group.code)))
        return false;
    group.value = is_text ? text : Trimmed(text);
    if (!is_text && text.size() > kMaxDxfLine)
        group.value.resize(kMaxDxfLine + 1);
    return true;
}

/// A binary file begins with a line that ends in "Binary DXF", followed by two bytes that end a text.
void DxfGroupReader::DetectBinary()
{
    constexpr std::string_view kEnd("Binary DXF\r\n\x1A\0", 14);
    constexpr std::size_t kMaxStart = 40;
    if (ReadByte() < 0)
        return;
    block_next_ = 0;
    const std::string_view start(block_.data(), std::min(block_size_, kMaxStart));
    const std::size_t found = start.find(kEnd);
    if (found == std::string_view::npos)
        return;
    is_binary_ = true;
    block_next_ = found + kEnd.size();
    // The first group is code 0 with the text "SECTION".
    if (block_next_ + 1 < block_size_ && block_[block_next_ + 1] != 0)
        code_bytes_ = 1;
}

bool DxfGroupReader::ReadBytes(std::size_t count, std::string& bytes)
{
    bytes.clear();
    for (; count > 0; --count) {
        const int byte = ReadByte();
        if (byte < 0)
            return false;
        bytes += static_cast<char>(byte);
    }
    return true;
}

/// A little-endian number. No value where the file ends.
std::optional<std::uint64_t> DxfGroupReader::ReadUnsigned(std::size_t bytes)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        const int byte = ReadByte();
        if (byte < 0)
            return std::nullopt;
        value |= static_cast<std::uint64_t>(byte) << (8U * i);
    }
    return value;
}

/// Of a text longer than `max_length`, one byte more than that is kept.
bool DxfGroupReader::ReadZeroEndedText(std::string& text, std::size_t max_length)
{
    text.clear();
    int byte = ReadByte();
    for (; byte > 0; byte = ReadByte())
        if (text.size() <= max_length)
            text += static_cast<char>(byte);
    return byte == 0;
}

std::optional<int> DxfGroupReader::ReadBinaryCode()
{
    constexpr std::uint64_t kWideCodeFollows = 255;
    auto code = ReadUnsigned(code_bytes_);
    if (code_bytes_ == 1 && code == kWideCodeFollows)
        code = ReadUnsigned(2);
    return code ? std::optional(static_cast<int>(static_cast<std::int16_t>(*code))) : std::nullopt;
}

bool DxfGroupReader::ReadBinaryValue(DxfGroup& group)
{
    const std::optional<DxfValueType> type = TypeOfCode(group.code);
    if (!type)
        throw FileError(path_, "line " + std::to_string(group.line) + ": '" + std::to_string(group.code) +
                                   "' is no group code");
    std::string unused;
    const auto number = [&](std::size_t bytes, auto convert) {
        const auto bits = ReadUnsigned(bytes);
        if (bits)
            group.value = TextOf(convert(*bits));
        return bits.has_value();
    };
    switch (*type) {
    case DxfValueType::Text:
        return ReadZeroEndedText(group.value, MaxLength(group.code));
    case DxfValueType::Real:
        return number(8, [](std::uint64_t bits) { return std::bit_cast<double>(bits); });
    case DxfValueType::Byte:
        return number(1, [](std::uint64_t bits) { return bits; });
    case DxfValueType::Short:
        return number(2, [](std::uint64_t bits) { return static_cast<std::int16_t>(bits); });
    case DxfValueType::Integer:
        return number(4, [](std::uint64_t bits) { return static_cast<std::int32_t>(bits); });
    case DxfValueType::Long:
        return number(8, [](std::uint64_t bits) { return static_cast<std::int64_t>(bits); });
    case DxfValueType::Chunk:
        break;
    }
    const auto size = ReadUnsigned(1);
    return size && ReadBytes(static_cast<std::size_t>(*size), unused);
}

bool DxfGroupReader::ReadBinary(DxfGroup& group)
{
    const std::optional<int> code = ReadBinaryCode();
    if (!code)
        return false;
    group.line = line_ + 1;
    line_ += 2;
    group.code = *code;
    if (!ReadBinaryValue(group))
        return false;
    if (!IsText(group.code))
        group.value = Trimmed(std::string(group.value));
    return true;
}

std::string DxfGroupReader::EndPlace() const
{
    return is_binary_ ? "after " + std::to_string(line_ / 2) + " groups"
                      : "in line " + std::to_string(line_ - 1);
}

DxfGroup DxfGroupReader::Read(bool may_end)
{
    if (line_ == 0)
        DetectBinary();
    DxfGroup group;
    do {
        if (is_binary_ ? ReadBinary(group) : ReadText(group, may_end))
            continue;
        if (may_end)
            return {0, "EOF", line_};
        throw FileError(path_, "truncated: it ends " + EndPlace() + ", without its EOF");
    } while (group.code == kComment);
    return group;
}

} // namespace viewer
