// What reading one file may cost.
#pragma once

#include <chrono>
#include <cstddef>

namespace viewer
{

/// Half of the machine's memory, but at least a GiB, in bytes.
[[nodiscard]] std::size_t DefaultReaderMemory();

struct ReaderLimits {
    std::chrono::milliseconds wall = std::chrono::minutes(10);
    std::chrono::seconds processor = std::chrono::minutes(10);
    /// In bytes: of address space, of resident memory (polled), and of the stream.
    std::size_t memory = DefaultReaderMemory();
};

} // namespace viewer
