// Reads a DXF file as groups. A group is a line with a code, which gives the meaning of the value, and a line
// with the value. Files of other kinds and truncated files are detected here. Groups are not interpreted.
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

struct DxfGroup {
    int code = 0;
    std::string value;    ///< trimmed; of a line longer than `kMaxDxfLine`, the first `kMaxDxfLine` + 1 bytes
    std::size_t line = 0; ///< the line of the code, counted from 1
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

    /// The next group that is not a comment. Throws FileError at the end of the file, and if a code is not
    /// valid.
    [[nodiscard]] DxfGroup Read();

  private:
    int ReadByte();
    bool ReadLine(std::string& text);
    [[nodiscard]] int ParseCode(std::string_view text) const;

    std::string path_;
    const ProgressFunction& progress_;
    std::ifstream file_;
    std::uintmax_t size_ = 0;
    std::uintmax_t bytes_read_ = 0;
    std::array<char, 65536> block_{};
    std::size_t block_size_ = 0;
    std::size_t block_next_ = 0;
    std::size_t line_ = 0;
};

} // namespace viewer
