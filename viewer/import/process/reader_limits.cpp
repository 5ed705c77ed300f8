#include "viewer/import/process/reader_limits.h"

#include <algorithm>

#include <unistd.h>

namespace viewer
{

std::size_t DefaultReaderMemory()
{
    constexpr std::size_t kMin = std::size_t{1} << 30U;
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long page_size = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || page_size <= 0)
        return kMin;
    return std::max(kMin, static_cast<std::size_t>(pages) * static_cast<std::size_t>(page_size) / 2);
}

} // namespace viewer
