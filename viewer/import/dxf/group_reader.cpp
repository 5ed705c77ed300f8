#include "viewer/import/dxf/group_reader.h"

#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <algorithm>
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

/// Returns false at the end of the file. Of a line longer than `kMaxDxfLine`, one byte more than that is
/// kept.
bool DxfGroupReader::ReadLine(std::string& text)
{
    text.clear();
    ++line_;
    int byte = ReadByte();
    const bool is_there = byte >= 0;
    for (; byte >= 0 && byte != '\n' && byte != '\r'; byte = ReadByte()) {
        if (byte == 0)
            throw FileError(path_, line_ == 1 ? "is not a DXF file: it begins with zero bytes"
                                              : "line " + std::to_string(line_) + ": holds zero bytes");
        if (text.size() <= kMaxDxfLine)
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
        throw FileError(path_, "is a binary DXF file; only those of text are read");
    if (line_ == 1)
        throw FileError(path_, "is not a DXF file: line 1 is " + QuotedForMessage(text) +
                                   ", which is no group code");
    throw FileError(path_,
                    "line " + std::to_string(line_) + ": " + QuotedForMessage(text) + " is no group code");
}

DxfGroup DxfGroupReader::Read()
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    DxfGroup group;
    std::string text;
    do {
        const bool has_code = ReadLine(text);
        if (line_ == 1 && text.starts_with(kByteOrderMark))
            text.erase(0, kByteOrderMark.size());
        if (has_code) {
            group.line = line_;
            group.code = ParseCode(text);
        }
        if (!has_code || !ReadLine(text))
            throw FileError(path_,
                            "truncated: it ends in line " + std::to_string(line_ - 1) + ", without its EOF");
    } while (group.code == kComment);
    group.value = Trimmed(text);
    if (text.size() > kMaxDxfLine)
        group.value.resize(kMaxDxfLine + 1);
    return group;
}

} // namespace viewer
