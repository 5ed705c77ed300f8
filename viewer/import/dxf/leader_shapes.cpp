// Leaders, tolerance frames and multiple lines.

#include "viewer/import/dxf/annotation_context.h"
#include "viewer/import/dxf/spline_segments.h"
#include "viewer/import/dxf/text_markup.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <string_view>
#include <utility>

namespace viewer
{

namespace
{

Point NormalOf(const DxfGroups& groups)
{
    return groups.PointAt(210).value_or(Point{0.0, 0.0, 1.0});
}

/// A line through the points, as a curve if `is_curved`, with an arrow at the first one.
void AppendLeader(const std::vector<Point>& points, bool is_curved, double arrow, const Point& normal,
                  DxfShapes& shapes)
{
    if (points.size() < 2)
        return;
    Spline spline;
    if (is_curved)
        spline = SplineThrough(points, {}, {}, false);
    if (!spline.points.empty() && FaultOf(spline) == nullptr)
        shapes.push_back({std::move(spline), std::nullopt});
    else
        for (std::size_t i = 0; i + 1 < points.size(); ++i)
            shapes.push_back({Segment{points[i], points[i + 1]}, std::nullopt});
    const Point first = points[0] - points[1];
    if (arrow > 0.0 && Direction(first))
        shapes.push_back({ArrowAt(points[0], first, normal, arrow), std::nullopt});
}

/// The context data of a multileader, which are groups between braces.
class MultileaderReader
{
  public:
    MultileaderReader(const DxfRawEntity& entity, DxfAnnotationContext& context)
        : groups_(entity.groups), context_(context)
    {
    }

    DxfShapes Read(std::optional<DxfBlockContent>& block)
    {
        ReadGroups();
        constexpr int kNoLine = 0;
        constexpr int kCurve = 2;
        if (line_type_ != kNoLine)
            for (const Leader& leader : leaders_)
                AppendLines(leader, line_type_ == kCurve);
        if (has_text_)
            AppendText();
        if (has_block_)
            block = DxfBlockContent{context_.BlockName(block_handle_), BlockPlacement(), std::move(values_)};
        return std::move(shapes_);
    }

  private:
    struct Leader {
        std::optional<Point> last;
        Point dogleg;
        double dogleg_length = 0.0;
        std::vector<std::vector<Point>> lines;
    };
    enum class Level { Entity, Context, Leader, Line };

    void ReadGroups()
    {
        const auto& all = groups_.All();
        for (std::size_t i = 0; i < all.size(); ++i)
            if (!ChangesLevel(all[i]))
                Take(i);
    }

    bool ChangesLevel(const DxfGroup& group)
    {
        const std::string_view value = Trimmed(group.value);
        if ((level_ == Level::Entity && group.code == 300 && value == "CONTEXT_DATA{") ||
            (level_ == Level::Leader && group.code == 303))
            level_ = Level::Context;
        else if (level_ == Level::Context && group.code == 301)
            level_ = Level::Entity;
        else if (level_ == Level::Context && group.code == 302 && value == "LEADER{") {
            level_ = Level::Leader;
            leaders_.emplace_back();
        } else if (level_ == Level::Leader && group.code == 304) {
            level_ = Level::Line;
            leaders_.back().lines.emplace_back();
        } else if (level_ == Level::Line && group.code == 305)
            level_ = Level::Leader;
        else
            return false;
        return true;
    }

    void Take(std::size_t index)
    {
        const DxfGroup& group = groups_.All()[index];
        if (level_ == Level::Line && group.code == 10)
            leaders_.back().lines.back().push_back(groups_.PointFrom(index));
        else if (level_ == Level::Leader)
            TakeOfLeader(index);
        else if (level_ == Level::Context)
            TakeOfContext(index);
        else if (level_ == Level::Entity && group.code == 170)
            line_type_ = IntegerOf(group);
        else if (level_ == Level::Entity && group.code == 330)
            definition_ = group.value;
        else if (level_ == Level::Entity && group.code == 302 && !definition_.empty())
            values_.push_back({std::exchange(definition_, {}), group.value});
    }

    void TakeOfLeader(std::size_t index)
    {
        const DxfGroup& group = groups_.All()[index];
        Leader& leader = leaders_.back();
        if (group.code == 10)
            leader.last = groups_.PointFrom(index);
        else if (group.code == 11)
            leader.dogleg = groups_.PointFrom(index);
        else if (group.code == 40)
            leader.dogleg_length = RealOf(group);
    }

    void TakeOfContext(std::size_t index)
    {
        const DxfGroup& group = groups_.All()[index];
        switch (group.code) {
        case 11:
            normal_ = groups_.PointFrom(index);
            break;
        case 12:
            text_origin_ = groups_.PointFrom(index);
            break;
        case 13:
            text_direction_ = groups_.PointFrom(index);
            break;
        case 14:
            block_normal_ = groups_.PointFrom(index);
            break;
        case 15:
            block_origin_ = groups_.PointFrom(index);
            break;
        case 16:
            block_scale_ = groups_.PointFrom(index);
            break;
        case 41:
            text_height_ = std::abs(RealOf(group));
            break;
        case 43:
            text_width_ = std::max(0.0, RealOf(group));
            break;
        case 45:
            line_spacing_ = std::clamp(RealOf(group), 0.25, 4.0);
            break;
        case 46:
            block_rotation_ = RealOf(group);
            break;
        case 90:
            text_color_ = RawColorOf(group);
            break;
        case 140:
            arrow_size_ = std::abs(RealOf(group));
            break;
        case 171:
            attachment_ = std::clamp(IntegerOf(group), 1, 3);
            break;
        case 290:
            has_text_ = IntegerOf(group) != 0;
            break;
        case 296:
            has_block_ = IntegerOf(group) != 0;
            break;
        case 304:
            text_ = group.value;
            break;
        case 341:
            block_handle_ = group.value;
            break;
        default:
            break;
        }
    }

    /// The palette index of a colour whose highest byte is its kind; none for other kinds.
    static std::optional<int> RawColorOf(const DxfGroup& group)
    {
        constexpr unsigned int kIndexed = 0xC3;
        const auto raw = static_cast<unsigned int>(IntegerOf(group));
        if (raw >> 24U != kIndexed || (raw & 0xFFU) == 0)
            return std::nullopt;
        return static_cast<int>(raw & 0xFFU);
    }

    void AppendLines(const Leader& leader, bool is_curved)
    {
        for (std::vector<Point> points : leader.lines) {
            if (leader.last)
                points.push_back(*leader.last);
            AppendLeader(points, is_curved, arrow_size_, normal_, shapes_);
        }
        if (leader.last && Length(leader.dogleg * leader.dogleg_length) > 0.0)
            shapes_.push_back(
                {Segment{*leader.last, *leader.last + leader.dogleg * leader.dogleg_length}, std::nullopt});
    }

    void AppendText()
    {
        const double height = text_height_ > 0.0 ? text_height_ : context_.DefaultTextHeight();
        DxfTextFormat format = FormatOf(context_.TextStyle({}), height);
        format.color = text_color_;
        DxfTextBlock block;
        block.width = text_width_;
        block.column = attachment_ - 1;
        block.line_spacing = line_spacing_;
        AppendParagraphs(text_, format, block, FrameAlong(text_origin_, text_direction_, normal_), context_,
                         shapes_);
    }

    [[nodiscard]] Affine BlockPlacement() const
    {
        Affine place = FrameAlong({}, {}, block_normal_);
        place.origin = block_origin_;
        return place * RotationAboutZ(block_rotation_ * 180.0 / std::numbers::pi) *
               Scaling(block_scale_.x, block_scale_.y, block_scale_.z);
    }

    const DxfGroups& groups_;
    DxfAnnotationContext& context_;
    DxfShapes shapes_;
    Level level_ = Level::Entity;
    std::vector<Leader> leaders_;
    int line_type_ = 1;
    double arrow_size_ = 0.0;
    Point normal_{0.0, 0.0, 1.0};
    bool has_text_ = false;
    std::string text_;
    Point text_origin_;
    Point text_direction_{1.0, 0.0, 0.0};
    double text_height_ = 0.0;
    double text_width_ = 0.0;
    double line_spacing_ = 1.0;
    int attachment_ = 1;
    std::optional<int> text_color_;
    bool has_block_ = false;
    std::string block_handle_;
    Point block_normal_{0.0, 0.0, 1.0};
    Point block_origin_;
    Point block_scale_{1.0, 1.0, 1.0};
    double block_rotation_ = 0.0;
    std::string definition_; ///< of the attribute whose value follows
    std::vector<DxfAttributeValue> values_;
};

/// The texts of a tolerance's cells, by rows, with their codes.
std::vector<std::vector<std::u32string>> CellsOf(std::u32string_view text)
{
    std::vector<std::vector<std::u32string>> rows(1, {U""});
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::u32string_view rest = text.substr(i);
        if (rest.starts_with(U"%%v") || rest.starts_with(U"%%V")) {
            rows.back().emplace_back();
            i += 2;
        } else if (rest.starts_with(U"^J") || rest.starts_with(U"\\n") || rest.starts_with(U"\\P")) {
            rows.push_back({U""});
            ++i;
        } else {
            rows.back().back() += text[i];
        }
    }
    return rows;
}

bool IsEmpty(const std::u32string& text)
{
    return text.find_first_not_of(U' ') == std::u32string::npos;
}

/// The parameters of a multiple line at one vertex: for each of its elements the distance along the miter,
/// then the distances along the line where it begins and breaks.
struct MultilineVertex {
    Point point;
    Point direction;
    Point miter;
    std::vector<std::vector<double>> elements;
};

std::vector<MultilineVertex> VerticesOf(const DxfGroups& groups)
{
    std::vector<MultilineVertex> vertices;
    const auto& all = groups.All();
    for (std::size_t i = 0; i < all.size(); ++i) {
        const DxfGroup& group = all[i];
        if (group.code == 11)
            vertices.push_back({groups.PointFrom(i), {}, {}, {}});
        if (vertices.empty())
            continue;
        MultilineVertex& vertex = vertices.back();
        if (group.code == 12)
            vertex.direction = groups.PointFrom(i);
        else if (group.code == 13)
            vertex.miter = groups.PointFrom(i);
        else if (group.code == 74)
            vertex.elements.emplace_back();
        else if (group.code == 41 && !vertex.elements.empty())
            vertex.elements.back().push_back(RealOf(group));
    }
    return vertices;
}

/// The parts of one element's line between two vertices: from each odd distance to the next even one.
void AppendElement(const MultilineVertex& vertex, const MultilineVertex& next, std::size_t element,
                   DxfShapes& shapes)
{
    const std::vector<double>& parameters = vertex.elements[element];
    if (parameters.empty() || element >= next.elements.size() || next.elements[element].empty())
        return;
    const Point start = vertex.point + vertex.miter * parameters[0];
    const Point end = next.point + next.miter * next.elements[element][0];
    const auto at = [&](std::size_t i) { return start + vertex.direction * parameters[i]; };
    if (parameters.size() < 2)
        shapes.push_back({Segment{start, end}, std::nullopt});
    for (std::size_t i = 1; i < parameters.size(); i += 2)
        shapes.push_back({Segment{at(i), i + 1 < parameters.size() ? at(i + 1) : end}, std::nullopt});
}

} // namespace

DxfShapes ShapesOfLeader(const DxfRawEntity& entity, DxfAnnotationContext& context)
{
    const DxfGroups& groups = entity.groups;
    const bool has_arrow = groups.Integer(71, 1) != 0;
    const bool is_curved = groups.Integer(72) != 0;
    const DxfDimensionStyle style = context.DimensionStyle(groups.Text(3));
    DxfShapes shapes;
    AppendLeader(groups.PointsAt(10), is_curved, has_arrow ? style.arrow_size : 0.0, NormalOf(groups),
                 shapes);
    return shapes;
}

DxfShapes ShapesOfMultileader(const DxfRawEntity& entity, DxfAnnotationContext& context,
                              std::optional<DxfBlockContent>& block)
{
    return MultileaderReader(entity, context).Read(block);
}

DxfShapes ShapesOfTolerance(const DxfRawEntity& entity, DxfAnnotationContext& context)
{
    const DxfGroups& groups = entity.groups;
    const double height = context.DimensionStyle(groups.Text(3)).text_height;
    const Point origin = groups.PointAt(10).value_or(Point{});
    const Affine frame = FrameAlong(origin, groups.PointAt(11).value_or(Point{}), NormalOf(groups));
    const DxfTextFormat format = FormatOf(context.TextStyle({}), height);
    DxfShapes shapes;
    double top = height;
    for (const auto& row : CellsOf(context.decoder.Decode(groups.Text(1)))) {
        double x = 0.0;
        const auto line = [&](double x1, double y1, double x2, double y2) {
            shapes.push_back({Segment{frame.Apply({x1, y1, 0.0}), frame.Apply({x2, y2, 0.0})}, std::nullopt});
        };
        for (const std::u32string& cell : row) {
            if (IsEmpty(cell))
                continue;
            const DxfMarkup markup = ParseParagraphs(cell, format, context.decoder);
            const double width = WidthOfLine(markup, context.outlines) + height;
            AppendTexts(LayOutLine(markup, {}, context.outlines),
                        frame * Translation({x + 0.5 * height, top - 1.5 * height, 0.0}), shapes);
            line(x, top, x, top - 2.0 * height);
            line(x, top, x + width, top);
            line(x, top - 2.0 * height, x + width, top - 2.0 * height);
            x += width;
        }
        if (x > 0.0)
            line(x, top, x, top - 2.0 * height);
        top -= 2.0 * height;
    }
    return shapes;
}

DxfShapes ShapesOfMultiline(const DxfRawEntity& entity)
{
    constexpr int kClosed = 2;
    const std::vector<MultilineVertex> vertices = VerticesOf(entity.groups);
    const int flags = entity.groups.Integer(71);
    const bool is_closed = (flags & kClosed) != 0;
    DxfShapes shapes;
    for (std::size_t i = 0; i + (is_closed ? 0 : 1) < vertices.size(); ++i)
        for (std::size_t element = 0; element < vertices[i].elements.size(); ++element)
            AppendElement(vertices[i], vertices[(i + 1) % vertices.size()], element, shapes);
    return shapes;
}

} // namespace viewer
