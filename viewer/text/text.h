// Small text functions for importers, lists and messages.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace viewer
{

/// The text without white space (blanks, tabs, line ends, vertical tabs, form feeds) at its ends.
[[nodiscard]] std::string_view Trimmed(std::string_view text);

/// The text with ASCII letters in lower case. Other bytes are unchanged.
[[nodiscard]] std::string LowerCase(std::string_view text);

/// The text with ASCII letters in upper case. Other bytes are unchanged.
[[nodiscard]] std::string UpperCase(std::string_view text);

/// The number that is the whole text, in decimal or scientific notation, with or without a plus sign. A number
/// that is too small for a double becomes 0. Infinities and "nan" are returned as such. No value for other texts
/// and for numbers that are too large.
[[nodiscard]] std::optional<double> ParseReal(std::string_view text);

/// The extension of the file name, with its dot, in lower case: ".step". Empty if there is none.
[[nodiscard]] std::string LowerCaseExtension(const std::string& path);

/// UTF-8 as one line for a terminal: every text of a file, a user or a library is printed through it.
///
/// Each run of control characters becomes one blank; at the start and after a blank it is dropped. These are
/// the C0 and C1 controls, DEL, the line and paragraph separators, and the characters that change the
/// direction of a text: marks (U+200E, U+200F, U+061C), embeddings and overrides (U+202A to U+202E), isolates
/// (U+2066 to U+2069). A byte that is not UTF-8 becomes U+FFFD. Other characters are unchanged.
///
/// A result of more than `max_bytes` bytes is cut there, or before the character that the limit falls into,
/// and "..." is appended.
[[nodiscard]] std::string OneLine(std::string_view text, std::size_t max_bytes = std::string::npos);

} // namespace viewer
