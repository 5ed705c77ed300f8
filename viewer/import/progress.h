// Progress of an import.
#pragma once

#include <functional>

namespace viewer
{

/// Called with the fraction that is done, from 0 to 1.
using ProgressFunction = std::function<void(double fraction)>;

} // namespace viewer
