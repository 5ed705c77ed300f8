#include "tests/support/process_files.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <malloc.h>

/// A sanitizer's allocator, which mallinfo2 does not report; null without a sanitizer.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace karv_test
{

std::uintptr_t LoadAddress(const std::string& path_end)
{
    // Lines are in order of their address, which comes first.
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.ends_with(path_end))
            return std::stoull(line, nullptr, 16);
    return 0;
}

std::ptrdiff_t OpenDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

std::size_t HeapInUse()
{
    if (IsHeapSanitized())
        return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

bool IsHeapSanitized()
{
    return __sanitizer_get_current_allocated_bytes != nullptr;
}

} // namespace karv_test
