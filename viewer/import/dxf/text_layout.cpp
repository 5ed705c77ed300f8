#include "viewer/import/dxf/text_layout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

/// The depth of letters below the baseline, in heights of capital letters.
constexpr double kDescent = 0.3;
/// The distance of baselines, in heights of capital letters.
constexpr double kLineDistance = 5.0 / 3.0;
constexpr double kTabStop = 4.0;
constexpr double kUnderline = -0.2;
constexpr double kOverline = 1.2;
constexpr double kStrike = 0.5;
/// The free height between the texts of a stack.
constexpr double kStackGap = 0.4;
constexpr double kStackMargin = 0.1;

using Kind = DxfTextItem::Kind;

/// Adds characters and lines to texts of their colours.
class TextWriter
{
  public:
    TextWriter(const DxfMarkup& markup, GlyphOutlines& outlines) : markup_(markup), outlines_(outlines) {}

    [[nodiscard]] const DxfTextFormat& FormatOf(const DxfTextItem& item) const
    {
        return markup_.formats[item.format];
    }

    [[nodiscard]] double AdvanceOf(const DxfTextFormat& format, char32_t character)
    {
        const auto glyph = outlines_.Of(format.face, character);
        return glyph ? glyph->advance * format.height * format.width * format.tracking : 0.0;
    }

    [[nodiscard]] double AdvanceOf(const DxfTextFormat& format, const std::u32string& text)
    {
        double width = 0.0;
        for (const char32_t c : text)
            width += AdvanceOf(format, c);
        return width;
    }

    [[nodiscard]] double WidthOf(const DxfTextItem& item)
    {
        const DxfTextFormat& format = FormatOf(item);
        if (item.kind == Kind::Character)
            return AdvanceOf(format, item.character);
        if (item.kind != Kind::Stack)
            return 0.0;
        const DxfStack& stack = markup_.stacks[item.number];
        const double upper = AdvanceOf(format, stack.upper);
        const double lower = AdvanceOf(format, stack.lower);
        const double margins = 2.0 * kStackMargin * format.height;
        if (stack.kind == DxfStack::Kind::Diagonal)
            return upper + lower + margins + 0.4 * format.height;
        return std::max(upper, lower) + margins;
    }

    [[nodiscard]] static double HeightOf(const DxfTextItem& item, const DxfTextFormat& format)
    {
        return item.kind == Kind::Stack ? (2.0 + kStackGap) * format.height : format.height;
    }

    /// `line_height` is that of the text around the item. Returns the item's width.
    double Write(const DxfTextItem& item, double x, double y, double line_height)
    {
        const DxfTextFormat& format = FormatOf(item);
        const double width = WidthOf(item);
        const double rise = (line_height - HeightOf(item, format)) * 0.5 * format.alignment;
        if (item.kind == Kind::Stack)
            WriteStack(markup_.stacks[item.number], format, x, y + rise, width);
        else if (item.kind == Kind::Character)
            WriteCharacter(format, item.character, x, y + rise);
        WriteLines(format, x, y + rise, width);
        return width;
    }

    /// Lines under, over and through a part of a text.
    void WriteLines(const DxfTextFormat& format, double x, double y, double width)
    {
        const auto draw = [&](double height) {
            AddLine(format, {x, y + height * format.height, 0.0},
                    {x + width, y + height * format.height, 0.0});
        };
        if (format.is_underlined)
            draw(kUnderline);
        if (format.is_overlined)
            draw(kOverline);
        if (format.is_struck)
            draw(kStrike);
    }

    DxfColoredTexts Finish()
    {
        for (auto& [color, text] : texts_)
            text.segment_count += text.lines.size();
        return std::move(texts_);
    }

  private:
    void WriteCharacter(const DxfTextFormat& format, char32_t character, double x, double y)
    {
        const auto glyph = outlines_.Of(format.face, character);
        if (!glyph || glyph->outline.empty())
            return;
        DxfText& text = texts_[format.color];
        const double width = format.height * format.width;
        const double slant = format.slant / format.width;
        text.characters.push_back({glyph, x, y, width, format.height, slant});
        text.segment_count += glyph->outline.size();
        // Every outline lies in this frame around its cell.
        const double lean = std::abs(format.slant) * 2.0 * format.height;
        text.box.Add({x - lean - width, y - format.height, 0.0});
        text.box.Add({x + lean + (glyph->advance + 1.0) * width, y + 2.0 * format.height, 0.0});
    }

    void WriteString(const DxfTextFormat& format, const std::u32string& string, double x, double y)
    {
        for (const char32_t c : string) {
            WriteCharacter(format, c, x, y);
            x += AdvanceOf(format, c);
        }
    }

    void WriteStack(const DxfStack& stack, const DxfTextFormat& format, double x, double y, double width)
    {
        const double height = format.height;
        const double raised = y + (1.0 + kStackGap) * height;
        const double upper = AdvanceOf(format, stack.upper);
        const double lower = AdvanceOf(format, stack.lower);
        if (stack.kind == DxfStack::Kind::Diagonal) {
            const double margin = kStackMargin * height;
            WriteString(format, stack.upper, x + margin, raised);
            WriteString(format, stack.lower, x + width - margin - lower, y);
            AddLine(format, {x + upper, y + 0.4 * height, 0.0},
                    {x + upper + 0.7 * height, y + 2.0 * height, 0.0});
            return;
        }
        // Numbers of a tolerance are aligned at their left ends, numbers of a fraction at their centers.
        const bool is_fraction = stack.kind == DxfStack::Kind::Fraction;
        const auto start = [&](double of) {
            return x + (is_fraction ? (width - of) * 0.5 : kStackMargin * height);
        };
        WriteString(format, stack.upper, start(upper), raised);
        WriteString(format, stack.lower, start(lower), y);
        const double bar = y + (1.0 + 0.5 * kStackGap) * height;
        if (is_fraction)
            AddLine(format, {x, bar, 0.0}, {x + width, bar, 0.0});
    }

    void AddLine(const DxfTextFormat& format, const Point& from, const Point& to)
    {
        if (from == to)
            return;
        DxfText& text = texts_[format.color];
        text.box.Add(from);
        text.box.Add(to);
        const bool continues = !text.lines.empty() && text.lines.back().to == from &&
                               text.lines.back().from.y == from.y && from.y == to.y;
        if (continues)
            text.lines.back().to = to;
        else
            text.lines.push_back({from, to});
    }

    const DxfMarkup& markup_;
    GlyphOutlines& outlines_;
    DxfColoredTexts texts_;
};

bool IsBlank(const DxfTextItem& item)
{
    return item.kind == Kind::Tab || (item.kind == Kind::Character && item.character == U' ');
}

/// Whether a line can be wrapped before or after the item although there is no blank.
bool IsIdeograph(const DxfTextItem& item)
{
    return item.kind == Kind::Character && item.character >= 0x2E80 && item.character <= 0x2FFFF;
}

/// Where a tab ends: at `stop` if that is ahead, else at the next multiple.
double AfterTab(double x, double height, double stop = 0.0)
{
    if (x < stop || !(height > 0.0))
        return std::max(x, stop);
    return (std::floor(x / (kTabStop * height)) + 1.0) * kTabStop * height;
}

/// A part of the items, from `begin` to before `end`.
struct Line {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t paragraph = 0;
    bool is_first = true; ///< of its paragraph
    double width = 0.0;   ///< without the blanks at its end
    double height = 0.0;
};

class ParagraphLayout
{
  public:
    ParagraphLayout(const DxfMarkup& markup, const DxfTextBlock& block, GlyphOutlines& outlines)
        : markup_(markup), block_(block), writer_(markup, outlines)
    {
    }

    DxfColoredTexts LayOut()
    {
        FindLines();
        double total = block_.width;
        for (const Line& line : lines_)
            total = std::max(total, line.width + StartOf(line) + markup_.paragraphs[line.paragraph].right);
        const std::vector<double> baselines = Baselines();
        const double shift = -baselines.back() * 0.5 * block_.row;
        const double left = -total * 0.5 * block_.column;
        for (std::size_t i = 0; i < lines_.size(); ++i)
            WriteLine(lines_[i], left, total, baselines[i] + shift);
        return writer_.Finish();
    }

  private:
    [[nodiscard]] double StartOf(const Line& line) const
    {
        const DxfParagraph& paragraph = markup_.paragraphs[line.paragraph];
        return paragraph.left + (line.is_first ? paragraph.first_indent : 0.0);
    }

    /// The first tab of a line that begins left of the others ends where those begin.
    [[nodiscard]] double HangingStop(const Line& line) const
    {
        return line.is_first ? std::max(0.0, -markup_.paragraphs[line.paragraph].first_indent) : 0.0;
    }

    /// Cuts the items into lines, at new lines and where they exceed the width.
    void FindLines()
    {
        Line line;
        line.height = writer_.FormatOf({}).height;
        bool has_height = false;
        double x = 0.0;
        std::size_t word = 0; // the item where the last word begins
        double width_before_word = 0.0;
        for (std::size_t i = 0; i < markup_.items.size(); ++i) {
            const DxfTextItem& item = markup_.items[i];
            const DxfTextFormat& format = writer_.FormatOf(item);
            if (item.kind == Kind::NewLine) {
                line.end = i;
                lines_.push_back(line);
                line = {i + 1, i + 1, item.number, true, 0.0, format.height};
                has_height = false;
                x = 0.0;
                word = i + 1;
                width_before_word = 0.0;
                continue;
            }
            const double after = item.kind == Kind::Tab ? AfterTab(x, format.height, HangingStop(line))
                                                        : x + writer_.WidthOf(item);
            if (IsBlank(item)) {
                x = after;
                word = i + 1;
                width_before_word = line.width;
                continue;
            }
            if (IsIdeograph(item)) {
                word = i;
                width_before_word = line.width;
            }
            const double limit = block_.width - markup_.paragraphs[line.paragraph].right - StartOf(line);
            const bool is_full = block_.width > 0.0 && after > limit && word > line.begin;
            if (is_full) {
                Line next{word, word, line.paragraph, false, 0.0, format.height};
                line.end = word;
                line.width = width_before_word;
                lines_.push_back(line);
                line = next;
                x = 0.0;
                for (std::size_t k = word; k < i; ++k) {
                    x += writer_.WidthOf(markup_.items[k]);
                    line.height = std::max(line.height, HeightOf(markup_.items[k]));
                }
                x += writer_.WidthOf(item);
                has_height = true;
                width_before_word = 0.0;
            } else {
                x = after;
            }
            line.width = x;
            line.height = has_height ? std::max(line.height, HeightOf(item)) : HeightOf(item);
            has_height = true;
        }
        line.end = markup_.items.size();
        lines_.push_back(line);
    }

    [[nodiscard]] double HeightOf(const DxfTextItem& item) const { return writer_.FormatOf(item).height; }

    /// The height of a stack above that of its line, less the room that is free between lines.
    [[nodiscard]] double RiseOf(const Line& line) const
    {
        double rise = 0.0;
        for (std::size_t i = line.begin; i < line.end; ++i) {
            const DxfTextItem& item = markup_.items[i];
            if (item.kind != Kind::Stack)
                continue;
            const DxfTextFormat& format = writer_.FormatOf(item);
            const double excess = TextWriter::HeightOf(item, format) - line.height;
            rise = std::max(rise, excess * (1.0 - 0.5 * format.alignment) - kStackGap * line.height);
        }
        return rise;
    }

    /// The heights of the baselines; the top of the first line is at 0.
    [[nodiscard]] std::vector<double> Baselines() const
    {
        std::vector<double> baselines;
        double y = -lines_.front().height;
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            const double height =
                block_.has_exact_spacing ? markup_.formats.front().height : lines_[i].height;
            if (i > 0)
                y -= kLineDistance * block_.line_spacing * height + RiseOf(lines_[i]);
            baselines.push_back(y);
        }
        return baselines;
    }

    void WriteLine(const Line& line, double left, double total, double y)
    {
        const DxfParagraph& paragraph = markup_.paragraphs[line.paragraph];
        const double start = StartOf(line);
        const double room = total - start - paragraph.right - line.width;
        double share = 0.5 * block_.column;
        if (paragraph.alignment != DxfParagraph::Alignment::OfText)
            share = 0.5 *
                    (static_cast<int>(paragraph.alignment) - static_cast<int>(DxfParagraph::Alignment::Left));
        const double origin = left + start + room * share;
        double x = 0.0;
        for (std::size_t i = line.begin; i < line.end; ++i) {
            const DxfTextItem& item = markup_.items[i];
            if (item.kind == Kind::Tab)
                x = AfterTab(x, writer_.FormatOf(item).height, HangingStop(line));
            else
                x += writer_.Write(item, origin + x, y, line.height);
        }
    }

    const DxfMarkup& markup_;
    const DxfTextBlock& block_;
    TextWriter writer_;
    std::vector<Line> lines_;
};

/// The share of the width that lies left of the insertion point.
double ShareBefore(DxfLinePosition::Horizontal horizontal)
{
    switch (horizontal) {
    case DxfLinePosition::Horizontal::Center:
        return 0.5;
    case DxfLinePosition::Horizontal::Right:
        return 1.0;
    default:
        return 0.0;
    }
}

double BaselineOf(DxfLinePosition::Vertical vertical, double height)
{
    switch (vertical) {
    case DxfLinePosition::Vertical::Bottom:
        return kDescent * height;
    case DxfLinePosition::Vertical::Middle:
        return -0.5 * height;
    case DxfLinePosition::Vertical::Top:
        return -height;
    default:
        return 0.0;
    }
}

/// The formats with widths and heights multiplied.
DxfMarkup Scaled(DxfMarkup markup, double width, double height)
{
    for (DxfTextFormat& format : markup.formats) {
        format.width *= width;
        format.height *= height;
    }
    return markup;
}

} // namespace

double WidthOfLine(const DxfMarkup& markup, GlyphOutlines& outlines)
{
    TextWriter writer(markup, outlines);
    double width = 0.0;
    for (const DxfTextItem& item : markup.items)
        width = item.kind == Kind::Tab ? AfterTab(width, writer.FormatOf(item).height)
                                       : width + writer.WidthOf(item);
    return width;
}

DxfColoredTexts LayOutLine(const DxfMarkup& markup, const DxfLinePosition& position, GlyphOutlines& outlines)
{
    const double width = WidthOfLine(markup, outlines);
    const bool has_length = position.length > 0.0 && width > 0.0;
    const double factor = has_length ? position.length / width : 1.0;
    const bool is_fitted = position.horizontal == DxfLinePosition::Horizontal::Fitted;
    const bool is_scaled = position.horizontal == DxfLinePosition::Horizontal::Scaled;
    if (has_length && factor != 1.0 && (is_fitted || is_scaled)) {
        DxfLinePosition rest = position;
        rest.length = 0.0;
        return LayOutLine(Scaled(markup, is_fitted ? factor : 1.0, is_scaled ? factor : 1.0), rest, outlines);
    }
    TextWriter writer(markup, outlines);
    const double height = markup.formats.front().height;
    double x = 0.0;
    const double origin = -width * ShareBefore(position.horizontal);
    const double y = BaselineOf(position.vertical, height);
    for (const DxfTextItem& item : markup.items)
        if (item.kind == Kind::Tab)
            x = AfterTab(x, writer.FormatOf(item).height);
        else
            x += writer.Write(item, origin + x, y, height);
    return writer.Finish();
}

DxfColoredTexts LayOutParagraphs(const DxfMarkup& markup, const DxfTextBlock& block, GlyphOutlines& outlines)
{
    return ParagraphLayout(markup, block, outlines).LayOut();
}

} // namespace viewer
