// The numbers of an entity, as its groups state them.
#pragma once

#include "viewer/scene/model.h"

#include <optional>
#include <vector>

namespace viewer
{

struct DxfNumber {
    int code = 0;
    double value = 0.0; ///< finite; 0 for the marker of a subclass
};

/// The code of the marker that begins the groups of a subclass.
inline constexpr int kSubclassMarker = 100;

struct DxfEntityNumbers {
    std::vector<DxfNumber> all; ///< in the order of the file

    /// The first number with this code.
    [[nodiscard]] std::optional<double> First(int code) const;
    [[nodiscard]] double FirstOr(int code, double otherwise) const { return First(code).value_or(otherwise); }
    /// The number with this code, cut to an integer; `otherwise` also if it is too large for one.
    [[nodiscard]] int IntegerOr(int code, int otherwise) const;
    /// All numbers with this code.
    [[nodiscard]] std::vector<double> AllOf(int code) const;
    /// All points whose x coordinate has this code. The codes of y and z are 10 and 20 higher; missing
    /// coordinates are 0.
    [[nodiscard]] std::vector<Point> PointsOf(int code) const;
    /// The first of these points, otherwise the origin.
    [[nodiscard]] Point PointOf(int code) const;
    /// The numbers after the last marker of a subclass.
    [[nodiscard]] DxfEntityNumbers LastSubclass() const;
};

} // namespace viewer
