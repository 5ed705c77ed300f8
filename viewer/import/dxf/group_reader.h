// Reads a DXF file, of text or binary, as groups. A group is a code, which gives the meaning of the value,
// and the value; in a text file each has a line. Files of other kinds and truncated files are detected here.
// Groups are not interpreted.
#pragma once

#include "viewer/import/progress.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace viewer
{

/// The maximum length of a line, in bytes.
inline constexpr std::size_t kMaxDxfLine = 1000;

/// The maximum length of a line of text, in bytes; the rest is dropped.
inline constexpr std::size_t kMaxDxfText = 65536;

struct DxfGroup {
    int code = 0;
    /// Trimmed; of a line longer than `kMaxDxfLine`, the first `kMaxDxfLine` + 1 bytes. Texts, codes 1, 3,
    /// 302 and 304, are not trimmed.
    std::string value;
    /// The line of the code, counted from 1. In a binary file it is the line that the code would have in a
    /// text file.
    std::size_t line = 0;
};

/// Text of a file for a message: in quotes, without control characters, at most 40 bytes.
[[nodiscard]] std::string QuotedForMessage(std::string_view text);

/// A whole number, with an optional plus sign and nothing else around it. No value for other texts.
[[nodiscard]] std::optional<long long> ParseWholeNumber(std::string_view text);

class DxfGroupReader
{
  public:
    /// Throws FileError if the file cannot be opened. `progress` gets the fraction of the bytes that are
    /// read. It must outlive the object.
    DxfGroupReader(std::string path, const ProgressFunction& progress);

    /// The next group that is not a comment. Values of binary files are converted to text; data without a
    /// meaning here become an empty text. Throws FileError if a code is not valid. At the end of the file, or
    /// if it ends within the group, the group "EOF" is returned if `may_end` is set; otherwise FileError is
    /// thrown.
    [[nodiscard]] DxfGroup Read(bool may_end = false);

  private:
    int ReadByte();
    bool ReadLine(std::string& text, std::size_t max_length);
    [[nodiscard]] int ParseCode(std::string_view text) const;
    bool ReadText(DxfGroup& group, bool may_end);
    bool ReadBinary(DxfGroup& group);
    void DetectBinary();
    bool ReadBytes(std::size_t count, std::string& bytes);
    std::optional<std::uint64_t> ReadUnsigned(std::size_t bytes);
    bool ReadZeroEndedText(std::string& text, std::size_t max_length);
    std::optional<int> ReadBinaryCode();
    bool ReadBinaryValue(DxfGroup& group);
    [[nodiscard]] std::string EndPlace() const;

    std::string path_;
    const ProgressFunction& progress_;
    std::ifstream file_;
    std::uintmax_t size_ = 0;
    std::uintmax_t bytes_read_ = 0;
    std::array<char, 65536> block_{};
    std::size_t block_size_ = 0;
    std::size_t block_next_ = 0;
    std::size_t line_ = 0;
    bool is_binary_ = false;
    std::size_t code_bytes_ = 2; ///< of a binary file: 1 in the oldest version
};

} // namespace viewer
