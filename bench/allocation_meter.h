// Counts the allocations of C++ code, the module's included: the program's operators new and delete replace
// the standard library's. Memory of C libraries is the same with and without the component and is not
// counted.
#pragma once

#include <cstddef>
#include <cstdint>

namespace karv_bench
{

/// Counts allocations during its lifetime. Only one may exist at a time.
class AllocationMeter
{
  public:
    AllocationMeter();
    AllocationMeter(const AllocationMeter&) = delete;
    AllocationMeter& operator=(const AllocationMeter&) = delete;
    ~AllocationMeter();

    /// The maximum number of allocated bytes, counted from the construction.
    [[nodiscard]] std::int64_t PeakBytes() const;
    /// The number of allocations.
    [[nodiscard]] std::int64_t Allocations() const;
};

/// The bytes that the whole process, including C libraries, has allocated on its heap.
[[nodiscard]] double HeapBytes();

} // namespace karv_bench
