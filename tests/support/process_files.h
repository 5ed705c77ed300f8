// What the process has mapped and open, as the system tells it.
#pragma once

#include <cstddef>
#include <string>

namespace karv_test
{

/// Whether a file whose path ends so is mapped into the process.
[[nodiscard]] bool IsMapped(const std::string& path_end);
/// The number of descriptors that the process has open.
[[nodiscard]] std::ptrdiff_t OpenDescriptors();
/// The bytes that the process holds on its heap, as asked for or as its allocator rounds them.
[[nodiscard]] std::size_t HeapInUse();
/// Whether that heap is AddressSanitizer's.
[[nodiscard]] bool IsHeapSanitized();

} // namespace karv_test
