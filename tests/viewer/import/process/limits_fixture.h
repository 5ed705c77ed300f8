// Shared by tests that read files by karv-reader.
#pragma once

#include "viewer/import/process/reader_limits.h"

#include <chrono>
#include <cstddef>

namespace viewer
{

/// Limits of time that a slow machine does not reach.
inline ReaderLimits GenerousLimits(std::size_t memory = std::size_t{4} << 30U)
{
    ReaderLimits limits;
    limits.wall = std::chrono::minutes(2);
    limits.processor = std::chrono::minutes(2);
    limits.memory = memory;
    return limits;
}

} // namespace viewer
