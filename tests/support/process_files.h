// What the process has mapped and open, as the system tells it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace karv_test
{

/// The lowest address at which a file whose path ends so is mapped into the process; 0 where none is. Paths
/// have slashes; the case of their letters counts where it does to the system.
[[nodiscard]] std::uintptr_t LoadAddress(const std::string& path_end);
/// Whether such a file is mapped.
[[nodiscard]] inline bool IsMapped(const std::string& path_end)
{
    return LoadAddress(path_end) != 0;
}
/// The number of descriptors, or handles, that the process has open.
[[nodiscard]] std::ptrdiff_t OpenDescriptors();
/// The bytes that the process holds on its heaps, as asked for or as its allocator rounds them.
[[nodiscard]] std::size_t HeapInUse();
/// Whether that heap is AddressSanitizer's.
[[nodiscard]] bool IsHeapSanitized();

} // namespace karv_test
