// A DXF file as groups: a line with a code that says what the value is, and a line with the value. What is no
// such file is told here, and a file that ends too early; what groups mean is not known.
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

/// No line is kept beyond this, in bytes.
inline constexpr std::size_t kMaxDxfLine = 1000;

struct DxfGroup {
    int code = 0;
    std::string value;    ///< without blanks around it; of a longer line one byte more than the longest has
    std::size_t line = 0; ///< where the code stands, counted from 1
};

/// Text of a file as it can stand in a message: in quotes, printable and short.
[[nodiscard]] std::string QuotedForMessage(std::string_view text);

/// A whole number, with nothing around it but a plus sign; nothing for other texts.
[[nodiscard]] std::optional<long long> ParseWholeNumber(std::string_view text);

class DxfGroupReader
{
  public:
    /// Throws FileError where the file cannot be opened. `progress` gets the part of the bytes that have been
    /// read, and must outlive the object.
    DxfGroupReader(std::string path, const ProgressFunction& progress);

    /// The next group that is no comment. Throws FileError where the file ends, or a code is none.
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
