// Places the characters of a text: in one line between its points, or as paragraphs with wrapped lines.
#pragma once

#include "viewer/import/dxf/drawing.h"
#include "viewer/import/dxf/glyph_outlines.h"
#include "viewer/import/dxf/text_markup.h"

#include <map>
#include <optional>

namespace viewer
{

/// The parts of a text by their colours; no colour for that of the entity. Coordinates are in the plane of
/// the text, which is still the drawing's: `DxfText::frame` is the identity.
using DxfColoredTexts = std::map<std::optional<int>, DxfText>;

/// The position of a text of one line, whose origin is its insertion point.
struct DxfLinePosition {
    enum class Horizontal { Left, Center, Right, Fitted, Scaled };
    enum class Vertical { Baseline, Bottom, Middle, Top };
    Horizontal horizontal = Horizontal::Left;
    Vertical vertical = Vertical::Baseline;
    double length = 0.0; ///< the width that a fitted or scaled text is given
};

/// The place of paragraphs, whose origin is their insertion point.
struct DxfTextBlock {
    double width = 0.0; ///< where lines are wrapped; 0 if nowhere
    int column = 0;     ///< of the insertion point: 0 left, 1 center, 2 right
    int row = 0;        ///< of the insertion point: 0 top, 1 middle, 2 bottom
    double line_spacing = 1.0;
    bool has_exact_spacing = false; ///< higher characters do not move lines apart
};

[[nodiscard]] DxfColoredTexts LayOutLine(const DxfMarkup& markup, const DxfLinePosition& position,
                                         GlyphOutlines& outlines);

[[nodiscard]] DxfColoredTexts LayOutParagraphs(const DxfMarkup& markup, const DxfTextBlock& block,
                                               GlyphOutlines& outlines);

/// The width of the text in one line.
[[nodiscard]] double WidthOfLine(const DxfMarkup& markup, GlyphOutlines& outlines);

} // namespace viewer
