#include "viewer/import/dxf/annotation_context.h"

#include "viewer/import/dxf/extrusion_frame.h"
#include "viewer/import/dxf/text_markup.h"
#include "viewer/scene/affine.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace viewer
{

namespace
{

std::string KeyOf(const std::string& name)
{
    return LowerCase(Trimmed(name));
}

/// Styles of damaged files have widths of 0.
double WidthFactor(double factor)
{
    const double width = std::abs(factor);
    return width > 0.0 ? std::clamp(width, 0.01, 100.0) : 1.0;
}

DxfDimensionStyle StyleOf(const DxfGroups& groups, DxfDimensionStyle style)
{
    const double scale = std::abs(groups.Real(40, 1.0));
    const double factor = scale > 0.0 ? scale : 1.0;
    style.text_height = std::abs(groups.Real(140, style.text_height)) * factor;
    style.arrow_size = std::abs(groups.Real(41, style.arrow_size)) * factor;
    style.text_gap = std::abs(groups.Real(147, style.text_gap)) * factor;
    style.decimals = std::clamp(groups.Integer(271, style.decimals), 0, 8);
    return style;
}

} // namespace

void DxfAnnotationContext::TakeHeader(const DxfGroups& groups)
{
    std::string variable;
    std::string version;
    std::string code_page;
    double scale = 1.0;
    for (const DxfGroup& group : groups.All())
        if (group.code == 9)
            variable = group.value;
        else if (variable == "$ACADVER")
            version = Trimmed(group.value);
        else if (variable == "$DWGCODEPAGE")
            code_page = Trimmed(group.value);
        else if (variable == "$TEXTSIZE" && RealOf(group) > 0.0)
            default_text_height_ = RealOf(group);
        else if (variable == "$DIMTXT" && RealOf(group) > 0.0)
            header_style_.text_height = RealOf(group);
        else if (variable == "$DIMASZ")
            header_style_.arrow_size = std::abs(RealOf(group));
        else if (variable == "$DIMGAP")
            header_style_.text_gap = std::abs(RealOf(group));
        else if (variable == "$DIMDEC")
            header_style_.decimals = std::clamp(IntegerOf(group), 0, 8);
        else if (variable == "$DIMSCALE" && RealOf(group) > 0.0)
            scale = RealOf(group);
    header_style_.text_height *= scale;
    header_style_.arrow_size *= scale;
    header_style_.text_gap *= scale;
    decoder = DxfTextDecoder(version, code_page);
}

void DxfAnnotationContext::TakeTextStyle(const DxfGroups& groups)
{
    DxfTextStyle style;
    style.face = FaceOfFont(groups.Text(3));
    style.height = std::abs(groups.Real(40));
    style.width = WidthFactor(groups.Real(41, 1.0));
    style.oblique = groups.Real(50);
    text_styles_[KeyOf(groups.Text(2))] = style;
}

void DxfAnnotationContext::TakeDimensionStyle(const DxfGroups& groups)
{
    dimension_styles_[KeyOf(groups.Text(2))] = StyleOf(groups, DxfDimensionStyle{});
}

void DxfAnnotationContext::TakeBlockRecord(const DxfGroups& groups)
{
    if (const DxfGroup* handle = groups.Find(5))
        block_names_[KeyOf(handle->value)] = groups.Text(2);
}

DxfTextStyle DxfAnnotationContext::TextStyle(const std::string& name) const
{
    const auto found = text_styles_.find(name.empty() ? "standard" : KeyOf(name));
    return found != text_styles_.end() ? found->second : DxfTextStyle{};
}

DxfDimensionStyle DxfAnnotationContext::DimensionStyle(const std::string& name) const
{
    const auto found = dimension_styles_.find(KeyOf(name));
    return found != dimension_styles_.end() ? found->second : header_style_;
}

std::string DxfAnnotationContext::BlockName(const std::string& handle) const
{
    const auto found = block_names_.find(KeyOf(handle));
    return found != block_names_.end() ? found->second : std::string();
}

void AppendTexts(DxfColoredTexts texts, const Affine& frame, DxfShapes& shapes)
{
    for (auto& [color, text] : texts) {
        if (text.segment_count == 0)
            continue;
        text.frame = frame;
        shapes.push_back({std::move(text), color});
    }
}

void AppendParagraphs(std::string_view text, const DxfTextFormat& format, const DxfTextBlock& block,
                      const Affine& frame, DxfAnnotationContext& context, DxfShapes& shapes)
{
    const DxfMarkup markup = ParseParagraphs(context.decoder.Decode(text), format, context.decoder);
    AppendTexts(LayOutParagraphs(markup, block, context.outlines), frame, shapes);
}

DxfTextFormat FormatOf(const DxfTextStyle& style, double height)
{
    constexpr double kMaxOblique = 85.0;
    DxfTextFormat format;
    format.face = style.face;
    format.height = height;
    format.width = WidthFactor(style.width);
    // Files give small negative angles as those of a whole turn, too.
    const double oblique = std::remainder(style.oblique, 360.0);
    format.slant = std::tan(Radians(std::clamp(oblique, -kMaxOblique, kMaxOblique)));
    return format;
}

Affine FrameAlong(const Point& origin, const Point& direction, const Point& normal)
{
    Affine frame = FrameOfExtrusion(normal);
    frame.origin = origin;
    const Point across = Cross(frame.z, direction);
    const double length = Length(across);
    if (length > 0.0 && std::isfinite(length)) {
        frame.y = across * (1.0 / length);
        frame.x = Cross(frame.y, frame.z);
    }
    return frame;
}

std::optional<Point> Direction(const Point& vector)
{
    const double length = Length(vector);
    if (!(length > 0.0) || !std::isfinite(length))
        return std::nullopt;
    return vector * (1.0 / length);
}

DxfFace ArrowAt(const Point& tip, const Point& direction, const Point& normal, double size)
{
    constexpr double kHalfWidth = 1.0 / 6.0;
    const Affine frame = FrameAlong(tip, direction, normal);
    DxfFace face;
    face.count = 3;
    face.corners = {tip, frame.Apply({-size, size * kHalfWidth, 0.0}),
                    frame.Apply({-size, -size * kHalfWidth, 0.0}), Point{}};
    return face;
}

} // namespace viewer
