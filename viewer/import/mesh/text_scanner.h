// Words and numbers of a text file in memory.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace viewer
{

/// Whether a text begins with the byte order mark of UTF-16, in either byte order.
[[nodiscard]] bool HasUtf16Mark(std::string_view content);

/// Reads a whole file. A file of UTF-16 with a byte order mark becomes UTF-8. Throws FileError if it cannot
/// be read.
[[nodiscard]] std::string ReadWholeFile(const std::string& path);

/// The integer that is the whole text, in decimal notation, with or without a sign. No value for other texts,
/// for numbers with decimals or an exponent, and for numbers that are too large.
[[nodiscard]] std::optional<long long> ParseInteger(std::string_view text);

/// Splits a text into lines and words. Lines end with LF, CR or both. A backslash at the end of a line
/// continues it on the next one. A byte order mark of UTF-8 at the start is skipped.
class TextScanner
{
  public:
    /// The text must outlive the object. The rest of a line from the character `comment` on is skipped; 0 for
    /// a text without comments.
    explicit TextScanner(std::string_view text, char comment = '\0');

    /// Goes to the next line that has words. Returns false at the end of the text.
    bool NextLine();
    /// The next word of the line; empty at its end.
    std::string_view Word();
    /// Whether the line has a further word.
    bool HasWord();
    /// The rest of the line without white space at its ends.
    std::string_view Rest();
    /// The next word of the text, in this or a later line; empty at the end of the text.
    std::string_view WordOfText();

    /// The fraction of the text before the current position, from 0 to 1.
    [[nodiscard]] double Fraction() const;

  private:
    void SkipBlanks();
    /// The length of a backslash and a line end at the current position; 0 if there are none.
    [[nodiscard]] std::size_t ContinuationLength() const;
    [[nodiscard]] bool IsAtLineEnd() const;
    [[nodiscard]] bool IsAtComment() const
    {
        return comment_ != '\0' && position_ < text_.size() && text_[position_] == comment_;
    }

    std::string_view text_;
    std::size_t position_ = 0;
    char comment_;
    bool started_ = false; ///< `NextLine` was called
};

} // namespace viewer
