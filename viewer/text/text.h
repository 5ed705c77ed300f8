// Texts of files, as importers, lists and messages need them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace viewer
{

/// The text without white space (blanks, tabs, line ends, form feeds) at its ends.
[[nodiscard]] std::string_view Trimmed(std::string_view text);

/// ASCII letters in lower case; other bytes are unchanged.
[[nodiscard]] std::string LowerCase(std::string_view text);

/// The file name's extension with its dot, in lower case: ".step"; empty where there is none.
[[nodiscard]] std::string LowerCaseExtension(const std::string& path);

/// The text as one line for a terminal: each run of control characters becomes one blank, and none at the
/// start. A text of more than `max_bytes` bytes is cut there and ends with "...".
[[nodiscard]] std::string OneLine(std::string_view text, std::size_t max_bytes = std::string::npos);

} // namespace viewer
