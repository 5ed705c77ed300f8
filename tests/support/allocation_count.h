// Counts, or refuses, what the calling thread allocates with operator new while an object lives, in libraries
// too: the program's operators stand before the standard library's. What C libraries take is not counted.
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

/// Makes allocations of this many bytes or more fail. One at a time.
class AllocationRefusal
{
  public:
    explicit AllocationRefusal(std::size_t from_bytes);
    AllocationRefusal(const AllocationRefusal&) = delete;
    AllocationRefusal& operator=(const AllocationRefusal&) = delete;
    ~AllocationRefusal();
};

} // namespace karv_test
