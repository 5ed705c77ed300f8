// Measures the wrapper around every operation.
#pragma once

#include "bench/pairs.h"

namespace karv_bench
{

/// Registers the benchmark of a traced and guarded call.
void RegisterTraceEntries(const Effort& effort);

} // namespace karv_bench
