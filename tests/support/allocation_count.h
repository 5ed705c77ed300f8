// Counts what the calling thread allocates with operator new while an object lives, in libraries too: the
// program's operators stand before the standard library's. What C libraries take is not counted.
#pragma once

#include <cstddef>

namespace karv_test
{

/// One at a time.
class AllocationCount
{
  public:
    AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;
    ~AllocationCount();

    [[nodiscard]] std::size_t Allocations() const;
    /// As asked for, with what was given back since.
    [[nodiscard]] std::size_t Bytes() const;
};

} // namespace karv_test
