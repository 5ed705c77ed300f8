// Counts what C++ code allocates, in the module too: the program's operators new and delete stand before the
// standard library's. Memory that C libraries take is the same with and without the component and is not
// counted here.
#pragma once

#include <cstddef>
#include <cstdint>

namespace karv_bench
{

/// Counts while it lives; one at a time.
class AllocationMeter
{
  public:
    AllocationMeter();
    AllocationMeter(const AllocationMeter&) = delete;
    AllocationMeter& operator=(const AllocationMeter&) = delete;
    ~AllocationMeter();

    /// The most bytes that were allocated at once, above those at its beginning.
    [[nodiscard]] std::int64_t PeakBytes() const;
    [[nodiscard]] std::int64_t Allocations() const;
};

/// The bytes that the whole process holds in its heap, C libraries included.
[[nodiscard]] double HeapBytes();

} // namespace karv_bench
