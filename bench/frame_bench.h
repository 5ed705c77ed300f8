// Measures the time of frames.
#pragma once

#include "bench/pairs.h"

namespace karv_bench
{

/// Registers the benchmarks of frames.
void RegisterFrames(const Effort& effort);

} // namespace karv_bench
