// Counts, or refuses, the allocations of the calling thread through operator new while an object lives, in
// libraries too: the program's operators pre-empt the standard library's. Allocations of C libraries are not
// counted.
#pragma once

#include <cstddef>

namespace karv_test
{

/// Counts the allocations made during its life. Only one may exist at a time.
class AllocationCount
{
  public:
    AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;
    ~AllocationCount();

    [[nodiscard]] std::size_t Allocations() const;
    /// The bytes asked for; what was freed since is included.
    [[nodiscard]] std::size_t Bytes() const;
};

/// Makes allocations of this many bytes or more fail during its life. Only one may exist at a time.
class AllocationRefusal
{
  public:
    explicit AllocationRefusal(std::size_t from_bytes);
    AllocationRefusal(const AllocationRefusal&) = delete;
    AllocationRefusal& operator=(const AllocationRefusal&) = delete;
    ~AllocationRefusal();
};

} // namespace karv_test
