// Converts the texts of a drawing, which are in UTF-8 or in a code page, to Unicode.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace viewer
{

/// A character that a drawing writes with ASCII letters, and the number of letters of its text.
struct DxfEscape {
    char32_t character = 0;
    std::size_t length = 0;
};

class DxfTextDecoder
{
  public:
    /// Decodes UTF-8, as in drawings without a version.
    DxfTextDecoder();
    /// `version` and `code_page` are the values of $ACADVER and $DWGCODEPAGE. Texts are UTF-8 from AC1021 on.
    /// An unknown code page is taken for ANSI_1252.
    DxfTextDecoder(std::string_view version, std::string_view code_page);
    ~DxfTextDecoder();
    DxfTextDecoder(DxfTextDecoder&&) noexcept;
    DxfTextDecoder& operator=(DxfTextDecoder&&) noexcept;

    /// Bytes that are not valid become U+FFFD. A text that is valid UTF-8 is taken for it, whatever the code
    /// page of single bytes: programs write such files, and other texts look like UTF-8 only by chance.
    [[nodiscard]] std::u32string Decode(std::string_view bytes);
    /// The character with this number in the code page; in that of Unicode where it has none.
    [[nodiscard]] char32_t CharacterOf(unsigned char byte);
    /// The character that begins with a backslash as `\U+XXXX`, a Unicode number, or `\M+NXXXX`, a number in
    /// one of five code pages of East Asia.
    [[nodiscard]] std::optional<DxfEscape> EscapeAt(std::u32string_view text);

  private:
    class CodePage;
    CodePage& PageOf(const std::string& name);

    std::string page_; ///< the converter's name of the code page; empty for UTF-8
    std::map<std::string, std::unique_ptr<CodePage>> pages_;
};

} // namespace viewer
