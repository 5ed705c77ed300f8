// A run of karv-view: models in, pictures and figures out.
#pragma once

#include "viewer/apps/karv-view/options.h"

#include <chrono>
#include <iosfwd>

namespace viewer
{

/// Carries out the options and returns the exit status of the program: 0, or 1 after a line "karv-view:
/// reason" on `err`. For a model file that cannot be read the line is "karv-view: FILE: reason", and the
/// other files are shown, drawn or listed. After other failures, and if no file can be read, no picture or
/// sheet is written. `start` is when the program started. Never throws.
[[nodiscard]] int Run(const Options& options, std::chrono::steady_clock::time_point start, std::ostream& out,
                      std::ostream& err);

} // namespace viewer
