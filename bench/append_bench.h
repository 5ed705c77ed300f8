// The benchmarks of appends.
#pragma once

#include "bench/pairs.h"

namespace karv_bench
{

/// Registers the time, the peak memory and the held memory of appends.
void RegisterAppends(const Effort& effort);

} // namespace karv_bench
