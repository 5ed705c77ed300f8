// Words and numbers of a text file in memory.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace viewer
{

/// Whether a text begins with the byte order mark of UTF-16.
[[nodiscard]] bool HasUtf16Mark(std::string_view content);
/// The text, which begins with that mark, as UTF-8.
[[nodiscard]] std::string FromUtf16(std::string_view content);

/// Reads a whole file; UTF-16 becomes UTF-8. Throws FileError if it cannot be read.
[[nodiscard]] std::string ReadWholeFile(const std::string& path);

/// The number that is the whole word. Infinities and what is not a number are numbers, too: "inf", "nan".
[[nodiscard]] std::optional<double> ToNumber(std::string_view word);
/// Nothing for a number with decimals or an exponent.
[[nodiscard]] std::optional<long long> ToInteger(std::string_view word);

/// Walks through the words of a text. Lines end with any of the usual line ends. A line may be continued on the
/// next one by a backslash at its end. A byte order mark at the start is skipped.
class TextScanner
{
  public:
    /// The text must outlive the object. From `comment` on, the rest of a line is skipped; 0 for none.
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

    /// How much of the text was read, from 0 to 1.
    [[nodiscard]] double Fraction() const;

  private:
    void SkipBlanks();
    /// The length of a backslash and a line end here; 0 if there are none.
    [[nodiscard]] std::size_t ContinuationLength() const;
    [[nodiscard]] bool IsAtLineEnd() const;
    [[nodiscard]] bool IsAtComment() const
    {
        return comment_ != '\0' && position_ < text_.size() && text_[position_] == comment_;
    }

    std::string_view text_;
    std::size_t position_ = 0;
    char comment_;
    bool started_ = false; ///< a line has been entered
};

} // namespace viewer
