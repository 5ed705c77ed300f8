#include "viewer/import/dxf/raw_entity.h"

#include "viewer/import/dxf/drawing.h"
#include "viewer/import/dxf/extrusion_frame.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace viewer
{

double RealOf(const DxfGroup& group)
{
    const std::string_view text = Trimmed(group.value);
    const std::optional<double> value = ParseReal(text);
    if (!value || !std::isfinite(*value))
        throw DxfValueError(QuotedForMessage(text) + " is no finite number");
    return *value;
}

int IntegerOf(const DxfGroup& group)
{
    const std::optional<long long> value = ParseWholeNumber(Trimmed(group.value));
    if (!value || *value < std::numeric_limits<int>::min() || *value > std::numeric_limits<int>::max())
        throw DxfValueError(QuotedForMessage(group.value) + " is no whole number of 32 bits");
    return static_cast<int>(*value);
}

const DxfGroup* DxfGroups::Find(int code) const
{
    const auto found = std::ranges::find(groups_, code, &DxfGroup::code);
    return found != groups_.end() ? &*found : nullptr;
}

std::string DxfGroups::Text(int code) const
{
    const DxfGroup* group = Find(code);
    return group != nullptr ? group->value : std::string();
}

double DxfGroups::Real(int code, double otherwise) const
{
    const DxfGroup* group = Find(code);
    return group != nullptr ? RealOf(*group) : otherwise;
}

int DxfGroups::Integer(int code, int otherwise) const
{
    const DxfGroup* group = Find(code);
    return group != nullptr ? IntegerOf(*group) : otherwise;
}

Point DxfGroups::PointFrom(std::size_t index) const
{
    Point point{RealOf(groups_[index]), 0.0, 0.0};
    const int code = groups_[index].code;
    if (index + 1 < groups_.size() && groups_[index + 1].code == code + 10)
        point.y = RealOf(groups_[index + 1]);
    if (index + 2 < groups_.size() && groups_[index + 2].code == code + 20)
        point.z = RealOf(groups_[index + 2]);
    return point;
}

std::optional<Point> DxfGroups::PointAt(int code) const
{
    const DxfGroup* group = Find(code);
    if (group == nullptr)
        return std::nullopt;
    return PointFrom(static_cast<std::size_t>(group - groups_.data()));
}

std::vector<Point> DxfGroups::PointsAt(int code) const
{
    std::vector<Point> points;
    for (std::size_t i = 0; i < groups_.size(); ++i)
        if (groups_[i].code == code)
            points.push_back(PointFrom(i));
    return points;
}

Affine DxfGroups::Frame() const
{
    return FrameOfExtrusion(PointAt(210).value_or(Point{0.0, 0.0, 1.0}));
}

int DxfRawEntity::Color() const
{
    const int color = groups.Integer(62, kColorByLayer);
    const double stated = groups.Real(420, -1.0);
    // Some programs set bits above those of the colour.
    constexpr double kMaxStated = 4294967295.0;
    const int color24 = stated >= 0.0 && stated <= kMaxStated
                            ? static_cast<int>(static_cast<std::int64_t>(stated) & 0xFFFFFF)
                            : -1;
    if (const std::optional<int> true_color = TrueColorOf(color, color24))
        return *true_color;
    return color >= 0 && color < kColorByLayer ? color : kColorByLayer;
}

} // namespace viewer
