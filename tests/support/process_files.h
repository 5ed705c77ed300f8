// The files that the process has mapped and open, and its heap, as the system reports them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace karv_test
{

/// The lowest address at which a file whose path ends with `path_end` is mapped into the process; 0 if none
/// is. Paths have slashes; upper and lower case differ where they do for the system.
[[nodiscard]] std::uintptr_t LoadAddress(const std::string& path_end);
/// Whether such a file is mapped.
[[nodiscard]] inline bool IsMapped(const std::string& path_end)
{
    return LoadAddress(path_end) != 0;
}
/// The number of open descriptors, or handles, of the process.
[[nodiscard]] std::ptrdiff_t OpenDescriptors();
/// The bytes that are allocated on the process's heaps, with or without the allocator's rounding.
[[nodiscard]] std::size_t HeapInUse();
/// Whether that heap belongs to AddressSanitizer.
[[nodiscard]] bool IsHeapSanitized();

} // namespace karv_test
