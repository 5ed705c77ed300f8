#include "viewer/import/dxf/entity_numbers.h"

#include <algorithm>
#include <cmath>

namespace viewer
{

std::optional<double> DxfEntityNumbers::First(int code) const
{
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const DxfNumber& number) { return number.code == code; });
    return found == all.end() ? std::nullopt : std::optional(found->value);
}

int DxfEntityNumbers::IntegerOr(int code, int otherwise) const
{
    constexpr double kMax = 2e9;
    const double value = FirstOr(code, otherwise);
    return std::abs(value) <= kMax ? static_cast<int>(value) : otherwise;
}

std::vector<double> DxfEntityNumbers::AllOf(int code) const
{
    std::vector<double> values;
    for (const DxfNumber& number : all)
        if (number.code == code)
            values.push_back(number.value);
    return values;
}

std::vector<Point> DxfEntityNumbers::PointsOf(int code) const
{
    std::vector<Point> points;
    for (const DxfNumber& number : all)
        if (number.code == code)
            points.push_back({number.value, 0.0, 0.0});
        else if (number.code == code + 10 && !points.empty())
            points.back().y = number.value;
        else if (number.code == code + 20 && !points.empty())
            points.back().z = number.value;
    return points;
}

Point DxfEntityNumbers::PointOf(int code) const
{
    return {FirstOr(code, 0.0), FirstOr(code + 10, 0.0), FirstOr(code + 20, 0.0)};
}

DxfEntityNumbers DxfEntityNumbers::LastSubclass() const
{
    const auto marker = std::find_if(all.rbegin(), all.rend(),
                                     [](const DxfNumber& number) { return number.code == kSubclassMarker; });
    return {{marker.base(), all.end()}};
}

} // namespace viewer
