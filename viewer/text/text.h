// Small text functions for importers, lists and messages.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace viewer
{

/// The text without white space (blanks, tabs, line ends, vertical tabs, form feeds) at its ends.
[[nodiscard]] std::string_view Trimmed(std::string_view text);

/// The text with ASCII letters in lower case. Other bytes are unchanged.
[[nodiscard]] std::string LowerCase(std::string_view text);

/// The extension of the file name, with its dot, in lower case: ".step". Empty if there is none.
[[nodiscard]] std::string LowerCaseExtension(const std::string& path);

/// The text as one line for a terminal. Each run of control characters (bytes below 0x20, and 0x7F) becomes
/// one blank; at the start and after a blank it is dropped. A result of more than `max_bytes` bytes is cut
/// there and "..." is appended.
[[nodiscard]] std::string OneLine(std::string_view text, std::size_t max_bytes = std::string::npos);

} // namespace viewer
