// What the module may export: the names as they are written in sources, the same on every system.
#pragma once

#include <string>
#include <vector>

namespace karv_test
{

/// Whether a demangled name belongs to the module's boundary.
[[nodiscard]] bool IsOfTheBoundary(const std::string& name);

/// Some of what has to be there of each class, functions without their parameters.
[[nodiscard]] const std::vector<std::string>& BoundarySamples();

} // namespace karv_test
