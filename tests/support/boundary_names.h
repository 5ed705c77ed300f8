// The names that the module may export, as they are written in sources, the same on every system.
#pragma once

#include <string>
#include <vector>

namespace karv_test
{

/// Whether a demangled name belongs to the module's boundary.
[[nodiscard]] bool IsOfTheBoundary(const std::string& name);

/// Names that must be exported, some of each class; functions without their parameters.
[[nodiscard]] const std::vector<std::string>& BoundarySamples();

} // namespace karv_test
