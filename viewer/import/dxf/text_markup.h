// The texts of a drawing as characters with their formats. Codes between the characters set the formats.
// Nothing is measured or placed here.
#pragma once

#include "viewer/import/dxf/glyph_outlines.h"
#include "viewer/import/dxf/text_decoder.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace viewer
{

/// The format of a character. Lengths are in the unit of the drawing.
struct DxfTextFormat {
    FontFace face;
    double height = 1.0;   ///< of a capital letter
    double width = 1.0;    ///< factor on the widths of characters
    double slant = 0.0;    ///< tangent of the angle by which characters lean to the right
    double tracking = 1.0; ///< factor on the distances of characters
    std::optional<int> color;
    bool is_underlined = false;
    bool is_overlined = false;
    bool is_struck = false;
    int alignment = 0; ///< in a line with higher characters: 0 at its baseline, 1 in its middle, 2 at its top

    bool operator==(const DxfTextFormat&) const = default;
};

/// Where the lines of a paragraph begin and end.
struct DxfParagraph {
    enum class Alignment { OfText, Left, Center, Right };
    Alignment alignment = Alignment::OfText;
    double first_indent = 0.0; ///< of the first line; added to `left`
    double left = 0.0;
    double right = 0.0;
};

/// Two texts above each other.
struct DxfStack {
    enum class Kind { Tolerance, Fraction, Diagonal };
    Kind kind = Kind::Fraction;
    std::u32string upper;
    std::u32string lower;
};

struct DxfTextItem {
    enum class Kind { Character, Tab, Stack, NewLine };
    Kind kind = Kind::Character;
    char32_t character = 0;
    std::size_t format = 0;
    std::size_t number = 0; ///< of the stack; for a new line, of the paragraph that begins with it
};

struct DxfMarkup {
    std::vector<DxfTextFormat> formats;   ///< the first one is that of the text
    std::vector<DxfParagraph> paragraphs; ///< the first line is in the first one
    std::vector<DxfStack> stacks;
    std::vector<DxfTextItem> items;
};

/// A text of one line: `%%c`, `%%d` and `%%p` are signs, `%%u`, `%%o` and `%%k` draw lines, `%%nnn` is a
/// character of the code page.
[[nodiscard]] DxfMarkup ParseLine(std::u32string_view text, const DxfTextFormat& format,
                                  DxfTextDecoder& decoder);

/// A text of paragraphs, whose codes begin with a backslash. Codes that are unknown or damaged show nothing.
[[nodiscard]] DxfMarkup ParseParagraphs(std::u32string_view text, const DxfTextFormat& format,
                                        DxfTextDecoder& decoder);

/// The face that is drawn for a font with this name, of a family or of a file.
[[nodiscard]] FontFace FaceOfFont(std::string_view name);

} // namespace viewer
