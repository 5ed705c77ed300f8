// Dimensions without a block of their own, drawn from the points that define them.

#include "viewer/import/dxf/annotation_context.h"
#include "viewer/import/dxf/extrusion_frame.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>

namespace viewer
{

namespace
{

/// The kinds of dimensions, from the low bits of group 70.
enum class Kind {
    Rotated = 0,
    Aligned = 1,
    Angular = 2,
    Diameter = 3,
    Radius = 4,
    ThreePoints = 5,
    Ordinate = 6
};

constexpr int kKindBits = 7;
constexpr int kOrdinateOfX = 64;
constexpr Point kUp{0.0, 0.0, 1.0};

std::string NumberText(double value, int decimals)
{
    std::array<char, 400> text{};
    const auto [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    if (error != std::errc())
        return "?";
    std::string number(text.data(), end);
    if (number.find('.') != std::string::npos) {
        number.erase(number.find_last_not_of('0') + 1);
        if (number.ends_with('.'))
            number.pop_back();
    }
    return number;
}

/// The groups of a dimension in the coordinate system of its plane.
class DimensionBuilder
{
  public:
    DimensionBuilder(const DxfRawEntity& entity, DxfAnnotationContext& context)
        : groups_(entity.groups), context_(context), frame_(groups_.Frame()),
          style_(context.DimensionStyle(groups_.Text(3)))
    {
    }

    DxfShapes Build(const std::string& kind)
    {
        const int type = groups_.Integer(70);
        const auto kind_number = static_cast<Kind>(type & kKindBits);
        if (kind == "ARC_DIMENSION")
            AddAngle(In(15), In(13), In(14), In(10), "");
        else if (kind == "LARGE_RADIAL_DIMENSION" || kind_number == Kind::Radius)
            AddRadius(In(10), In(15));
        else if (kind_number == Kind::Diameter)
            AddDiameter(In(10), In(15));
        else if (kind_number == Kind::Angular)
            AddAngleOfLines();
        else if (kind_number == Kind::ThreePoints)
            AddAngle(In(15), In(13), In(14), In(10), "%%d");
        else if (kind_number == Kind::Ordinate)
            AddOrdinate((type & kOrdinateOfX) != 0);
        else
            AddLength(kind_number == Kind::Aligned);
        return std::move(shapes_);
    }

  private:
    /// A point of the file, converted from the coordinates of the drawing to those of the plane.
    [[nodiscard]] Point In(int code) const
    {
        const Point point = groups_.PointAt(code).value_or(Point{});
        return {Dot(frame_.x, point), Dot(frame_.y, point), Dot(frame_.z, point)};
    }

    void AddLine(const Point& from, const Point& to)
    {
        shapes_.push_back({Segment{frame_.Apply(from), frame_.Apply(to)}, std::nullopt});
    }

    void AddArrow(const Point& tip, const Point& direction)
    {
        if (style_.arrow_size > 0.0 && Direction(direction))
            shapes_.push_back(
                {ArrowAt(frame_.Apply(tip), frame_.ApplyToVector(direction), frame_.z, style_.arrow_size),
                 std::nullopt});
    }

    /// Adds the text of the dimension, in which the value replaces "<>". The value of the file is used if
    /// there is one, else `measured`; it is multiplied by `factor`. The text runs along the direction, and is
    /// never upside down. `place` is used where the file has no place for it.
    void AddText(const Point& place, Point direction, const std::string& before, double measured,
                 const std::string& after, double factor = 1.0)
    {
        std::string text = groups_.Text(1);
        // NOTE: A text of one blank suppresses the value.
        if (text == " ")
            return;
        const double value = groups_.Real(42, measured);
        const std::string number =
            before + NumberText((value > 0.0 ? value : measured) * factor, style_.decimals) + after;
        if (text.empty())
            text = number;
        else if (const std::size_t found = text.find("<>"); found != std::string::npos)
            text.replace(found, 2, number);
        if (direction.x < -1e-9 || (std::abs(direction.x) <= 1e-9 && direction.y < 0.0))
            direction = direction * -1.0;
        Point middle = groups_.PointAt(11).value_or(Point{}); // in the plane already
        if (middle == Point{}) {
            const Point up = Direction(Cross(kUp, direction)).value_or(Point{0.0, 1.0, 0.0});
            middle = place + up * (style_.text_height * 0.5 + style_.text_gap);
        }
        const DxfTextFormat format = FormatOf(context_.TextStyle({}), style_.text_height);
        DxfTextBlock block;
        block.column = 1;
        block.row = 1;
        AppendParagraphs(text, format, block, frame_ * FrameAlong(middle, direction, kUp), context_, shapes_);
    }

    void AddLength(bool is_aligned)
    {
        const Point first = In(13);
        const Point second = In(14);
        const auto along =
            is_aligned ? Direction(second - first) : std::optional<Point>(RotationAboutZ(groups_.Real(50)).x);
        if (!along)
            return;
        const Point on_line = In(10);
        const Point start = on_line + *along * Dot(first - on_line, *along);
        const Point end = on_line + *along * Dot(second - on_line, *along);
        if (start == end)
            return;
        AddLine(first, start);
        AddLine(second, end);
        AddLine(start, end);
        AddArrow(start, start - end);
        AddArrow(end, end - start);
        AddText((start + end) * 0.5, *along, "", Length(end - start), "");
    }

    void AddRadius(const Point& center, const Point& on_circle)
    {
        if (center == on_circle)
            return;
        AddLine(center, on_circle);
        AddArrow(on_circle, on_circle - center);
        AddText((center + on_circle) * 0.5, on_circle - center, "R", Length(on_circle - center), "");
    }

    void AddDiameter(const Point& first, const Point& second)
    {
        if (first == second)
            return;
        AddLine(first, second);
        AddArrow(first, first - second);
        AddArrow(second, second - first);
        AddText((first + second) * 0.5, second - first, "%%c", Length(second - first), "");
    }

    void AddAngleOfLines()
    {
        const Point a = In(13);
        const Point b = In(14);
        const Point c = In(15);
        const Point d = In(10);
        const Point u = b - a;
        const Point v = d - c;
        const double cross = u.x * v.y - u.y * v.x;
        if (cross == 0.0)
            return;
        const double t = ((c.x - a.x) * v.y - (c.y - a.y) * v.x) / cross;
        const Point center = a + u * t;
        // Each line is represented by its end that is farther from the corner.
        const auto far = [&](const Point& p, const Point& q) {
            return Length(p - center) > Length(q - center) ? p : q;
        };
        AddAngle(center, far(a, b), far(c, d), In(16), "%%d");
    }

    /// `on_arc` is a point of the arc between the two directions from the center. The value is an angle, or
    /// the length of the arc if `unit` is empty.
    void AddAngle(const Point& center, const Point& first, const Point& second, const Point& on_arc,
                  const std::string& unit)
    {
        const auto angle = [&](const Point& point) {
            return std::atan2(point.y - center.y, point.x - center.x);
        };
        const double radius = std::hypot(on_arc.x - center.x, on_arc.y - center.y);
        double start = angle(first);
        double sweep = SweepBetween(start, angle(second));
        if (SweepBetween(start, angle(on_arc)) > sweep) {
            start = angle(second);
            sweep = kFullTurn - sweep;
        }
        if (!(radius > 0.0) || !std::isfinite(radius) || !(sweep > 0.0))
            return;
        const EllipticArc arc{center, {radius, 0.0, 0.0}, {0.0, radius, 0.0}, start, sweep};
        const auto tangent = [&](double at) { return Point{-std::sin(at), std::cos(at), 0.0}; };
        shapes_.push_back({Transformed(arc, frame_), std::nullopt});
        for (const Point& end : {first, second})
            AddLine(end, arc.At(angle(end)));
        AddArrow(arc.At(start), tangent(start) * -1.0);
        AddArrow(arc.At(start + sweep), tangent(start + sweep));
        const double middle = start + sweep * 0.5;
        const bool is_angle = !unit.empty();
        // NOTE: Angles are in radians in the file.
        AddText(arc.At(middle), tangent(middle) * -1.0, "", is_angle ? sweep : sweep * radius, unit,
                is_angle ? 180.0 / std::numbers::pi : 1.0);
    }

    void AddOrdinate(bool is_of_x)
    {
        const Point origin = In(10);
        const Point feature = In(13);
        const Point end = In(14);
        if (feature == end)
            return;
        AddLine(feature, end);
        const double measured = is_of_x ? feature.x - origin.x : feature.y - origin.y;
        AddText(end, Direction(end - feature).value_or(Point{1.0, 0.0, 0.0}), "", std::abs(measured), "");
    }

    const DxfGroups& groups_;
    DxfAnnotationContext& context_;
    Affine frame_;
    DxfDimensionStyle style_;
    DxfShapes shapes_;
};

} // namespace

DxfShapes ShapesOfDimension(const DxfRawEntity& entity, DxfAnnotationContext& context)
{
    return DimensionBuilder(entity, context).Build(entity.kind);
}

} // namespace viewer
