// The benchmark of the trace-and-guard wrapper.
#pragma once

#include "bench/pairs.h"

namespace karv_bench
{

/// Registers the time of a guarded call beside a plain one, with no sink installed.
void RegisterTraceEntries(const Effort& effort);

} // namespace karv_bench
