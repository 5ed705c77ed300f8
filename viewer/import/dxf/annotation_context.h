// Shared by all annotations of a drawing: styles of texts and dimensions, the code page, and the outlines of
// characters. Annotations are the texts, dimensions, leaders and tables of a drawing.
#pragma once

#include "viewer/import/dxf/drawing.h"
#include "viewer/import/dxf/glyph_outlines.h"
#include "viewer/import/dxf/raw_entity.h"
#include "viewer/import/dxf/text_decoder.h"
#include "viewer/import/dxf/text_layout.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace viewer
{

struct DxfTextStyle {
    FontFace face;
    double height = 0.0; ///< 0 if each text has its own
    double width = 1.0;
    double oblique = 0.0; ///< degrees
};

/// Lengths are multiplied by the scale of the style.
struct DxfDimensionStyle {
    double text_height = 2.5;
    double arrow_size = 2.5;
    double text_gap = 0.625;
    int decimals = 4;
};

/// A shape of an annotation; no colour for that of the entity.
struct DxfColoredShape {
    decltype(DxfEntity::shape) shape;
    std::optional<int> color;
};

using DxfShapes = std::vector<DxfColoredShape>;

class DxfAnnotationContext
{
  public:
    GlyphOutlines outlines;
    DxfTextDecoder decoder;

    /// Take the groups of the header and of table entries. Throw DxfValueError.
    void TakeHeader(const DxfGroups& groups);
    void TakeTextStyle(const DxfGroups& groups);
    void TakeDimensionStyle(const DxfGroups& groups);
    void TakeBlockRecord(const DxfGroups& groups);

    /// The style with this name, else that of the header.
    [[nodiscard]] DxfTextStyle TextStyle(const std::string& name) const;
    [[nodiscard]] DxfDimensionStyle DimensionStyle(const std::string& name) const;
    /// The name of the block whose record has this handle; empty if there is none.
    [[nodiscard]] std::string BlockName(const std::string& handle) const;
    [[nodiscard]] double DefaultTextHeight() const { return default_text_height_; }

  private:
    std::map<std::string, DxfTextStyle> text_styles_;
    std::map<std::string, DxfDimensionStyle> dimension_styles_;
    std::map<std::string, std::string> block_names_;
    DxfDimensionStyle header_style_;
    double default_text_height_ = 2.5;
};

/// Appends the parts of a text, placed by the frame.
void AppendTexts(DxfColoredTexts texts, const Affine& frame, DxfShapes& shapes);

/// Appends paragraphs of this height in the plane of the frame, around its origin. `text` has codes.
void AppendParagraphs(std::string_view text, const DxfTextFormat& format, const DxfTextBlock& block,
                      const Affine& frame, DxfAnnotationContext& context, DxfShapes& shapes);

/// The format of texts in this style. `height` replaces that of the style.
[[nodiscard]] DxfTextFormat FormatOf(const DxfTextStyle& style, double height);

/// The frame with this normal whose x axis is the direction; the frame of the normal where the direction is 0
/// or along the normal.
[[nodiscard]] Affine FrameAlong(const Point& origin, const Point& direction, const Point& normal);

/// The direction with length 1; no value for a length of 0 and for lengths that are not finite.
[[nodiscard]] std::optional<Point> Direction(const Point& vector);

/// A filled triangle whose tip points along the direction.
[[nodiscard]] DxfFace ArrowAt(const Point& tip, const Point& direction, const Point& normal, double size);

// The shapes of annotations. They throw DxfValueError for values that are not numbers.

/// TEXT, ATTRIB and ATTDEF, the latter two with embedded paragraphs. Nothing for those that are not visible.
[[nodiscard]] DxfShapes ShapesOfText(const DxfRawEntity& entity, DxfAnnotationContext& context);
/// The value of an attribute at the place of its definition.
[[nodiscard]] DxfShapes ShapesOfValue(const DxfGroups& definition, const std::string& text,
                                      DxfAnnotationContext& context);
[[nodiscard]] DxfShapes ShapesOfMText(const DxfGroups& groups, DxfAnnotationContext& context);
/// A dimension without its block, from the points that define it: lines, arrows and the measured value.
/// Nothing for damaged points.
[[nodiscard]] DxfShapes ShapesOfDimension(const DxfRawEntity& entity, DxfAnnotationContext& context);
[[nodiscard]] DxfShapes ShapesOfLeader(const DxfRawEntity& entity, DxfAnnotationContext& context);
/// The value of an attribute, for the definition with this handle.
struct DxfAttributeValue {
    std::string definition;
    std::string text;
};
/// A block that a leader ends at.
struct DxfBlockContent {
    std::string name; ///< empty if the file does not have it
    Affine placement;
    std::vector<DxfAttributeValue> values;
};
/// `block` gets the block that the leader ends at, if any.
[[nodiscard]] DxfShapes ShapesOfMultileader(const DxfRawEntity& entity, DxfAnnotationContext& context,
                                            std::optional<DxfBlockContent>& block);
[[nodiscard]] DxfShapes ShapesOfTolerance(const DxfRawEntity& entity, DxfAnnotationContext& context);
/// The parallel lines of a multiple line.
[[nodiscard]] DxfShapes ShapesOfMultiline(const DxfRawEntity& entity);

} // namespace viewer
