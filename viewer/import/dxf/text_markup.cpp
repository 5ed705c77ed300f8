#include "viewer/import/dxf/text_markup.h"

#include "platform/host/cm/color.h"
#include "viewer/import/dxf/drawing.h"
#include "viewer/scene/affine.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <string>
#include <utility>

namespace viewer
{

namespace
{

/// Heights and factors of codes stay within these multiples of the text's own, which damaged codes exceed.
constexpr double kMaxFactor = 1000.0;
constexpr double kMaxSlantDegrees = 85.0;

std::string AsciiOf(std::u32string_view text)
{
    std::string ascii;
    for (const char32_t c : text)
        ascii += c < 0x80 ? static_cast<char>(c) : '?';
    return ascii;
}

/// The number at the start of the text.
std::optional<double> NumberOf(std::string_view text)
{
    text = Trimmed(text);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

bool HoldsOneOf(std::string_view text, std::initializer_list<std::string_view> words)
{
    return std::ranges::any_of(words,
                               [&](std::string_view word) { return text.find(word) != std::string::npos; });
}

/// The sign that `%%` and this letter write.
std::optional<char32_t> SignOf(char32_t letter)
{
    switch (letter) {
    case U'c':
    case U'C':
        return U'\u00D8'; // diameter
    case U'd':
    case U'D':
        return U'\u00B0'; // degree
    case U'p':
    case U'P':
        return U'\u00B1'; // plus or minus
    case U'%':
        return U'%';
    default:
        return std::nullopt;
    }
}

bool IsDigit(char32_t c)
{
    return c >= U'0' && c <= U'9';
}

/// Shared by both kinds of texts: signs, control characters, and the list of items.
class Parser
{
  public:
    Parser(std::u32string_view text, const DxfTextFormat& format, DxfTextDecoder& decoder)
        : text_(text), decoder_(decoder), current_(format)
    {
        markup_.formats.push_back(format);
        markup_.paragraphs.emplace_back();
    }

  protected:
    [[nodiscard]] bool IsAtEnd() const { return next_ >= text_.size(); }
    [[nodiscard]] char32_t Peek(std::size_t ahead = 0) const
    {
        return next_ + ahead < text_.size() ? text_[next_ + ahead] : U'\0';
    }

    void Emit(DxfTextItem::Kind kind, char32_t character, std::size_t number = 0)
    {
        if (markup_.formats[format_] != current_) {
            format_ = markup_.formats.size();
            markup_.formats.push_back(current_);
        }
        markup_.items.push_back({kind, character, format_, number});
    }

    /// Takes a sign `%%c`, or `%%` with the number of a character.
    bool TakeSign()
    {
        if (Peek() != U'%' || Peek(1) != U'%')
            return false;
        if (const auto sign = SignOf(Peek(2))) {
            Emit(DxfTextItem::Kind::Character, *sign);
            next_ += 3;
            return true;
        }
        if (!IsDigit(Peek(2)) || !IsDigit(Peek(3)) || !IsDigit(Peek(4)))
            return false;
        const char32_t code = (Peek(2) - U'0') * 100 + (Peek(3) - U'0') * 10 + (Peek(4) - U'0');
        next_ += 5;
        if (code >= 32 && code < 256)
            Emit(DxfTextItem::Kind::Character, decoder_.CharacterOf(static_cast<unsigned char>(code)));
        return true;
    }

    bool TakeEscape()
    {
        const auto escape = Peek() == U'\\' ? decoder_.EscapeAt(text_.substr(next_)) : std::nullopt;
        if (!escape)
            return false;
        Emit(DxfTextItem::Kind::Character, escape->character);
        next_ += escape->length;
        return true;
    }

    /// Takes a control character, written as such or as a caret and a letter; "^ " is the caret itself.
    bool TakeControl(bool has_lines)
    {
        char32_t control = Peek();
        std::size_t length = 1;
        if (control == U'^' && Peek(1) == U' ') {
            Emit(DxfTextItem::Kind::Character, U'^');
            next_ += 2;
            return true;
        }
        if (control == U'^' && Peek(1) >= U'@' && Peek(1) <= U'_') {
            control = Peek(1) - U'@';
            length = 2;
        }
        if (control >= U' ')
            return false;
        next_ += length;
        if (control == U'\t')
            Emit(DxfTextItem::Kind::Tab, U' ');
        else if (control == U'\n' && has_lines)
            NewLine();
        return true;
    }

    void NewLine()
    {
        new_line_ = markup_.items.size();
        Emit(DxfTextItem::Kind::NewLine, U' ', markup_.paragraphs.size() - 1);
    }

    std::u32string_view text_;
    std::size_t next_ = 0;
    DxfTextDecoder& decoder_;
    DxfMarkup markup_;
    DxfTextFormat current_;
    std::optional<std::size_t> new_line_; ///< the item that begins the line

  private:
    std::size_t format_ = 0;
};

class LineParser : Parser
{
  public:
    using Parser::Parser;

    DxfMarkup Parse()
    {
        while (!IsAtEnd())
            if (!TakeSwitch() && !TakeSign() && !TakeEscape() && !TakeControl(false)) {
                Emit(DxfTextItem::Kind::Character, Peek());
                ++next_;
            }
        return std::move(markup_);
    }

  private:
    bool TakeSwitch()
    {
        if (Peek() != U'%' || Peek(1) != U'%')
            return false;
        const char32_t letter = Peek(2) | 0x20U;
        if (letter == U'u')
            current_.is_underlined = !current_.is_underlined;
        else if (letter == U'o')
            current_.is_overlined = !current_.is_overlined;
        else if (letter == U'k')
            current_.is_struck = !current_.is_struck;
        else
            return false;
        next_ += 3;
        return true;
    }
};

class ParagraphsParser : Parser
{
  public:
    using Parser::Parser;

    DxfMarkup Parse()
    {
        while (!IsAtEnd())
            if (!TakeSign() && !TakeEscape() && !TakeControl(true))
                TakeCharacterOrCode();
        return std::move(markup_);
    }

  private:
    void TakeCharacterOrCode()
    {
        const char32_t c = Peek();
        ++next_;
        if (c == U'{') {
            outer_.push_back(current_);
        } else if (c == U'}') {
            if (!outer_.empty()) {
                current_ = outer_.back();
                outer_.pop_back();
            }
        } else if (c == U'\\' && !IsAtEnd()) {
            const char32_t code = Peek();
            ++next_;
            TakeCode(code);
        } else {
            Emit(DxfTextItem::Kind::Character, c);
        }
    }

    void TakeCode(char32_t code)
    {
        switch (code) {
        case U'P':
        case U'N':
        case U'X':
            NewLine();
            break;
        case U'~':
            Emit(DxfTextItem::Kind::Character, U'\u00A0');
            break;
        case U'L':
        case U'l':
            current_.is_underlined = code == U'L';
            break;
        case U'O':
        case U'o':
            current_.is_overlined = code == U'O';
            break;
        case U'K':
        case U'k':
            current_.is_struck = code == U'K';
            break;
        case U'S':
            TakeStack();
            break;
        case U'H':
        case U'W':
        case U'Q':
        case U'T':
        case U'A':
        case U'C':
        case U'c':
        case U'f':
        case U'F':
        case U'p':
            ApplyCode(code, AsciiOf(TakeArguments()));
            break;
        default:
            Emit(DxfTextItem::Kind::Character, code);
        }
    }

    /// The text up to the next semicolon, which is skipped.
    std::u32string_view TakeArguments()
    {
        const std::size_t start = next_;
        const std::size_t end = std::min(text_.find(U';', start), text_.size());
        next_ = std::min(end + 1, text_.size());
        return text_.substr(start, end - start);
    }

    void ApplyCode(char32_t code, const std::string& arguments)
    {
        if (code == U'f' || code == U'F') {
            current_.face = FaceOfFont(arguments);
            return;
        }
        if (code == U'p') {
            ApplyParagraph(arguments);
            return;
        }
        const auto number = NumberOf(arguments);
        if (!number)
            return;
        const bool is_factor = !arguments.empty() && (arguments.back() | 0x20) == 'x';
        const double own = markup_.formats.front().height;
        if (code == U'H' && *number > 0.0)
            current_.height = std::clamp(is_factor ? current_.height * *number : *number, own / kMaxFactor,
                                         own * kMaxFactor);
        else if (code == U'W' && *number > 0.0)
            current_.width =
                std::clamp(is_factor ? current_.width * *number : *number, 1.0 / kMaxFactor, kMaxFactor);
        else if (code == U'T' && *number > 0.0)
            current_.tracking = std::clamp(*number, 1.0 / kMaxFactor, kMaxFactor);
        else if (code == U'Q')
            current_.slant = std::tan(Radians(std::clamp(*number, -kMaxSlantDegrees, kMaxSlantDegrees)));
        else if (code == U'A')
            current_.alignment = static_cast<int>(std::clamp(*number, 0.0, 2.0));
        else if (code == U'C' && *number >= 0.0 && *number <= kColorByLayer)
            current_.color = static_cast<int>(*number);
        else if (code == U'c' && *number >= 0.0 && *number <= 0xFFFFFF)
            current_.color = IndexOfReversedColor(static_cast<unsigned int>(*number));
    }

    /// The palette index of a colour whose lowest byte is red.
    static int IndexOfReversedColor(unsigned int color)
    {
        return NearestColorIndex(static_cast<unsigned char>(color & 0xFFU),
                                 static_cast<unsigned char>(color >> 8U & 0xFFU),
                                 static_cast<unsigned char>(color >> 16U & 0xFFU));
    }

    /// Applies the parts of `\p`, such as "xqc,i2,l1"; tab stops are not kept. Lengths are multiples of the
    /// text's height.
    void ApplyParagraph(std::string_view arguments)
    {
        DxfParagraph paragraph = markup_.paragraphs.back();
        const double height = markup_.formats.front().height;
        while (!arguments.empty()) {
            const std::size_t end = std::min(arguments.find(','), arguments.size());
            std::string_view part = arguments.substr(0, end);
            arguments.remove_prefix(std::min(end + 1, arguments.size()));
            if (part.starts_with('x'))
                part.remove_prefix(1);
            if (part.empty())
                continue;
            const char kind = part.front();
            part.remove_prefix(1);
            const double length = std::clamp(NumberOf(part).value_or(0.0), -kMaxFactor, kMaxFactor) * height;
            if (kind == 't')
                break;
            if (kind == 'q')
                paragraph.alignment = AlignmentOf(part);
            else if (kind == 'i')
                paragraph.first_indent = length;
            else if (kind == 'l')
                paragraph.left = length;
            else if (kind == 'r')
                paragraph.right = length;
        }
        // The paragraph of a line is named by its beginning; the line may have begun before the code.
        markup_.paragraphs.push_back(paragraph);
        if (new_line_)
            markup_.items[*new_line_].number = markup_.paragraphs.size() - 1;
        else
            markup_.paragraphs.front() = paragraph;
    }

    static DxfParagraph::Alignment AlignmentOf(std::string_view part)
    {
        switch (part.empty() ? ' ' : part.front()) {
        case 'c':
            return DxfParagraph::Alignment::Center;
        case 'r':
            return DxfParagraph::Alignment::Right;
        case 'l':
        case 'j':
        case 'd':
            return DxfParagraph::Alignment::Left;
        default:
            return DxfParagraph::Alignment::OfText;
        }
    }

    void TakeStack()
    {
        DxfStack stack;
        bool is_lower = false;
        for (; !IsAtEnd() && Peek() != U';'; ++next_) {
            char32_t c = Peek();
            const bool is_escaped = c == U'\\' && next_ + 1 < text_.size();
            if (is_escaped) {
                ++next_;
                c = Peek();
            }
            const bool separates = !is_escaped && !is_lower && (c == U'^' || c == U'/' || c == U'#');
            if (separates) {
                is_lower = true;
                stack.kind = c == U'^'   ? DxfStack::Kind::Tolerance
                             : c == U'/' ? DxfStack::Kind::Fraction
                                         : DxfStack::Kind::Diagonal;
            } else {
                (is_lower ? stack.lower : stack.upper) += c;
            }
        }
        next_ = std::min(next_ + 1, text_.size());
        if (!is_lower) {
            for (const char32_t c : stack.upper)
                Emit(DxfTextItem::Kind::Character, c);
            return;
        }
        // A blank keeps a caret from being a control character.
        if (stack.lower.starts_with(U' '))
            stack.lower.erase(0, 1);
        markup_.stacks.push_back(std::move(stack));
        Emit(DxfTextItem::Kind::Stack, U' ', markup_.stacks.size() - 1);
    }

    std::vector<DxfTextFormat> outer_;
};

} // namespace

DxfMarkup ParseLine(std::u32string_view text, const DxfTextFormat& format, DxfTextDecoder& decoder)
{
    return LineParser(text, format, decoder).Parse();
}

DxfMarkup ParseParagraphs(std::u32string_view text, const DxfTextFormat& format, DxfTextDecoder& decoder)
{
    return ParagraphsParser(text, format, decoder).Parse();
}

FontFace FaceOfFont(std::string_view name)
{
    const std::string font = LowerCase(name);
    FontFace face;
    if (HoldsOneOf(font, {"gdt"}))
        face.family = FontFamily::Tolerance;
    else if (HoldsOneOf(font, {"courier", "mono", "consol", "typewriter"}))
        face.family = FontFamily::Mono;
    else if (HoldsOneOf(font,
                        {"times", "serif", "roman", "georgia", "garamond", "cambria", "song", "ming"}) &&
             !HoldsOneOf(font, {"sans", "romans"}))
        face.family = FontFamily::Serif;
    face.is_bold = HoldsOneOf(font, {"|b1", "bold", "black", "heavy"});
    face.is_italic = HoldsOneOf(font, {"|i1", "italic", "oblique"});
    return face;
}

} // namespace viewer
