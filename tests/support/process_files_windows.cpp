#include "tests/support/process_files.h"

#include "platform/winsys/winsys.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <vector>

// Needs the basic types of the header above.
#include <psapi.h>

namespace karv_test
{
namespace
{

std::string Normal(std::string path)
{
    std::ranges::transform(path, path.begin(), [](unsigned char letter) {
        return letter == '\\' ? '/' : static_cast<char>(std::tolower(letter));
    });
    return path;
}

/// The modules of the process: its libraries and the program.
std::vector<HMODULE> Modules()
{
    std::vector<HMODULE> modules(64);
    DWORD bytes = 0;
    while (true) {
        const auto room = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
        if (EnumProcessModules(GetCurrentProcess(), modules.data(), room, &bytes) == FALSE)
            throw std::runtime_error("the system does not tell the libraries of the process");
        const bool fits = bytes <= room;
        modules.resize(bytes / sizeof(HMODULE));
        if (fits)
            return modules;
    }
}

std::size_t BusyBytes(HANDLE heap)
{
    std::size_t bytes = 0;
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry) != FALSE)
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
            bytes += entry.cbData;
    HeapUnlock(heap);
    return bytes;
}

} // namespace

std::uintptr_t LoadAddress(const std::string& path_end)
{
    const std::string end = Normal(path_end);
    for (const HMODULE module : Modules()) {
        std::array<char, 1024> file{};
        GetModuleFileNameA(module, file.data(), static_cast<DWORD>(file.size() - 1));
        if (Normal(file.data()).ends_with(end))
            return reinterpret_cast<std::uintptr_t>(module);
    }
    return 0;
}

std::ptrdiff_t OpenDescriptors()
{
    // NOTE: GetProcessHandleCount reports nothing under Wine, so each possible handle is tried. Handles are
    // multiples of four, and the lowest free one is used next.
    constexpr std::uintptr_t kStep = 4;
    constexpr std::uintptr_t kLimit = 512 * kStep;
    std::ptrdiff_t count = 0;
    for (std::uintptr_t value = kStep; value <= kLimit; value += kStep) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE ? 1 : 0;
    }
    if (count == 0)
        throw std::runtime_error("the system does not tell the handles of the process");
    return count;
}

std::size_t HeapInUse()
{
    // The C library has a heap of its own. The array is large so that nothing is allocated between the count
    // and the walk.
    std::array<HANDLE, 256> heaps{};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    std::size_t bytes = 0;
    for (DWORD i = 0; i < count && i < heaps.size(); ++i)
        bytes += BusyBytes(heaps[i]);
    if (bytes == 0)
        throw std::runtime_error("the system does not tell what is on the heaps");
    return bytes;
}

bool IsHeapSanitized()
{
    return false;
}

} // namespace karv_test
