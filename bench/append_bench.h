// Measures the time and the memory of appends.
#pragma once

#include "bench/pairs.h"

namespace karv_bench
{

/// Registers the benchmarks of appends.
void RegisterAppends(const Effort& effort);

} // namespace karv_bench
