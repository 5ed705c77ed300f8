// A run of karv-view: models in, pictures and figures out.
#pragma once

#include "viewer/apps/karv-view/options.h"

#include <chrono>
#include <iosfwd>

namespace viewer
{

/// Carries out the options and returns the exit status of the program: 0, or 1 after a line "karv-view:
/// reason" on `err`. A model file that cannot be read costs a line "karv-view: FILE: reason"; the others are
/// shown, drawn or listed. After other failures, and where no file can be read, no picture or sheet is
/// written. `start` is when the program started. Never throws.
[[nodiscard]] int Run(const Options& options, std::chrono::steady_clock::time_point start, std::ostream& out,
                      std::ostream& err);

} // namespace viewer
