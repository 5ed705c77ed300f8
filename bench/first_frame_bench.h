// The benchmark of a process's start.
#pragma once

#include "bench/pairs.h"

#include <string>

namespace karv_bench
{

/// Registers the time from the start of a process to its first frame. `folder` contains the two programs.
void RegisterFirstFrames(const Effort& effort, const std::string& folder);

} // namespace karv_bench
