// The benchmarks of frames.
#pragma once

#include "bench/pairs.h"

namespace karv_bench
{

/// Registers the time of a frame for scenes of several kinds and sizes.
void RegisterFrames(const Effort& effort);

} // namespace karv_bench
