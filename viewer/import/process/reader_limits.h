// Limits for reading one model file.
#pragma once

#include <chrono>
#include <cstddef>

namespace viewer
{

/// Half of the machine's memory, but at least 1 GiB, in bytes. 0 on Windows, where no reader runs.
[[nodiscard]] std::size_t DefaultReaderMemory();

struct ReaderLimits {
    /// Elapsed time.
    std::chrono::milliseconds wall = std::chrono::minutes(10);
    /// Processor time of the reader.
    std::chrono::seconds processor = std::chrono::minutes(10);
    /// In bytes. The same limit applies to the reader's address space, to its resident memory, which is
    /// polled, to the length of the stream, and to what the model occupies in the client while it arrives. A
    /// lower limit of address space that the client's process has (`ulimit -v`) replaces it.
    std::size_t memory = DefaultReaderMemory();
};

} // namespace viewer
