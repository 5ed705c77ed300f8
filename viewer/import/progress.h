// How importers report progress.
#pragma once

#include <functional>

namespace viewer
{

/// Called with the part that is done, from 0 to 1.
using ProgressFunction = std::function<void(double fraction)>;

} // namespace viewer
