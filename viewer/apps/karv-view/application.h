// A run of karv-view: models in, pictures and figures out.
#pragma once

#include "viewer/apps/karv-view/options.h"

#include <chrono>
#include <iosfwd>

namespace viewer
{

/// Does what the options ask and returns the exit status of the program: 0, or 1 after a line "karv-view:
/// FILE: reason" on `err`, and then no picture was written. `start` is when the program began. Never throws.
[[nodiscard]] int Run(const Options& options, std::chrono::steady_clock::time_point start, std::ostream& out,
                      std::ostream& err);

} // namespace viewer
