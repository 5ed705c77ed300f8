// Measures the time from the start of a process to its first frame.
#pragma once

#include "bench/pairs.h"

#include <string>

namespace karv_bench
{

/// Registers the benchmark. `folder` holds the two programs whose start is timed.
void RegisterFirstFrames(const Effort& effort, const std::string& folder);

} // namespace karv_bench
