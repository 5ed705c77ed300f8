#include "viewer/import/dxf/annotation_context.h"
#include "viewer/import/dxf/text_markup.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>

namespace viewer
{

namespace
{

// Bits of the flags of attributes.
constexpr int kInvisibleAttribute = 1;
constexpr int kConstantAttribute = 2;

/// The code of the vertical alignment.
constexpr int kVerticalOfAttribute = 74;

double HeightOf(const DxfGroups& groups, const DxfTextStyle& style, const DxfAnnotationContext& context)
{
    const double height = std::abs(groups.Real(40));
    if (height > 0.0)
        return height;
    return style.height > 0.0 ? style.height : context.DefaultTextHeight();
}

/// The position of a line of text, and the frame around its insertion point.
struct LinePlace {
    DxfLinePosition position;
    Affine frame;
};

LinePlace PlaceOfLine(const DxfGroups& groups, int vertical_code)
{
    using Horizontal = DxfLinePosition::Horizontal;
    using Vertical = DxfLinePosition::Vertical;
    constexpr int kCenter = 1;
    constexpr int kRight = 2;
    constexpr int kAligned = 3;
    constexpr int kMiddle = 4;
    constexpr int kFit = 5;
    LinePlace place;
    const int horizontal = groups.Integer(72);
    const int vertical = groups.Integer(vertical_code);
    const Point first = groups.PointAt(10).value_or(Point{});
    const std::optional<Point> second = groups.PointAt(11);
    Point origin = first;
    double rotation = groups.Real(50);
    if (second && (horizontal == kAligned || horizontal == kFit)) {
        const Point along = *second - first;
        place.position.length = std::hypot(along.x, along.y);
        place.position.horizontal = horizontal == kFit ? Horizontal::Fitted : Horizontal::Scaled;
        if (place.position.length > 0.0)
            rotation = std::atan2(along.y, along.x) * 180.0 / std::numbers::pi;
    } else {
        if (second && (horizontal != 0 || vertical != 0))
            origin = *second;
        if (horizontal == kCenter || horizontal == kMiddle)
            place.position.horizontal = Horizontal::Center;
        else if (horizontal == kRight)
            place.position.horizontal = Horizontal::Right;
    }
    if (horizontal == kMiddle)
        place.position.vertical = Vertical::Middle;
    else
        place.position.vertical = static_cast<Vertical>(std::clamp(vertical, 0, 3));
    place.frame = groups.Frame() * Translation(origin) * RotationAboutZ(rotation);
    return place;
}

DxfShapes ShapesOfLine(const DxfGroups& groups, const std::string& text, int vertical_code,
                       DxfAnnotationContext& context)
{
    constexpr int kBackward = 2;
    constexpr int kUpsideDown = 4;
    DxfTextStyle style = context.TextStyle(groups.Text(7));
    const double height = HeightOf(groups, style, context);
    style.width = groups.Real(41, style.width);
    style.oblique = groups.Real(51, style.oblique);
    const int flags = groups.Integer(71);
    const LinePlace place = PlaceOfLine(groups, vertical_code);
    const Affine mirror =
        Scaling((flags & kBackward) != 0 ? -1.0 : 1.0, (flags & kUpsideDown) != 0 ? -1.0 : 1.0, 1.0);
    const DxfMarkup markup =
        ParseLine(context.decoder.Decode(text), FormatOf(style, height), context.decoder);
    DxfShapes shapes;
    AppendTexts(LayOutLine(markup, place.position, context.outlines), place.frame * mirror, shapes);
    return shapes;
}

} // namespace

DxfShapes ShapesOfValue(const DxfGroups& definition, const std::string& text, DxfAnnotationContext& context)
{
    return ShapesOfLine(definition, text, kVerticalOfAttribute, context);
}

DxfShapes ShapesOfText(const DxfRawEntity& entity, DxfAnnotationContext& context)
{
    constexpr int kVerticalOfText = 73;
    if (entity.kind == "TEXT")
        return ShapesOfLine(entity.groups, entity.groups.Text(1), kVerticalOfText, context);
    const int flags = entity.groups.Integer(70);
    const bool is_definition = entity.kind == "ATTDEF";
    // A definition shows its tag, unless it is part of a block: inserts have values of their own then, all
    // but the constant ones.
    const bool is_value = !is_definition || (entity.block && (flags & kConstantAttribute) != 0);
    if ((flags & kInvisibleAttribute) != 0 || (is_definition && entity.block && !is_value))
        return {};
    if (is_value && entity.embedded.Find(1) != nullptr)
        return ShapesOfMText(entity.embedded, context);
    return ShapesOfLine(entity.groups, entity.groups.Text(is_value ? 1 : 2), kVerticalOfAttribute, context);
}

DxfShapes ShapesOfMText(const DxfGroups& groups, DxfAnnotationContext& context)
{
    constexpr int kColumns = 75;
    constexpr int kExact = 2;
    const DxfTextStyle style = context.TextStyle(groups.Text(7));
    const Affine axes = groups.Frame();
    const Point origin = groups.PointAt(10).value_or(Point{});
    std::string text;
    std::optional<double> rotation;
    bool has_columns = false;
    for (const DxfGroup& group : groups.All()) {
        has_columns = has_columns || group.code == kColumns;
        if (group.code == 3 || group.code == 1)
            text += group.value;
        else if (group.code == 50 && !has_columns) // among columns, it is their height
            rotation = RealOf(group);
        else if (group.code == 11)
            rotation.reset();
    }
    const Point turned = (axes * RotationAboutZ(rotation.value_or(0.0))).x;
    const Point direction = rotation ? turned : groups.PointAt(11).value_or(turned);
    const int attachment = std::clamp(groups.Integer(71, 1), 1, 9) - 1;
    DxfTextBlock block;
    block.width = std::max(0.0, groups.Real(41));
    block.column = attachment % 3;
    block.row = attachment / 3;
    block.line_spacing = std::clamp(groups.Real(44, 1.0), 0.25, 4.0);
    block.has_exact_spacing = groups.Integer(73, 1) == kExact;
    DxfShapes shapes;
    AppendParagraphs(text, FormatOf(style, HeightOf(groups, style, context)), block,
                     FrameAlong(origin, direction, axes.z), context, shapes);
    return shapes;
}

} // namespace viewer
