// Numbers that are not finite.
#pragma once

#include <limits>

namespace karv_test
{

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

} // namespace karv_test
