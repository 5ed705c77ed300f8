// Icons of window classes under their Win32 names.
#include "platform/winsys/core/process_state.h"

#include <cstddef>

using namespace winsys::core;

HICON CreateIcon(HINSTANCE, int width, int height, BYTE planes, BYTE bits, const BYTE*, const BYTE* xor_bits)
{
    constexpr int kMaxSide = 256;
    constexpr BYTE kBits = 32;
    const bool is_sized = width > 0 && width <= kMaxSide && height > 0 && height <= kMaxSide;
    if (!is_sized || planes != 1 || bits != kBits || xor_bits == nullptr)
        return nullptr;
    winsys::IconImage image{width, height, {}};
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    image.pixels.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const BYTE* const bytes = xor_bits + 4 * i;
        image.pixels.push_back(std::uint32_t{bytes[3]} << 24U | std::uint32_t{bytes[2]} << 16U |
                               std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[0]});
    }
    const auto icon = NewHandle<HICON>();
    GetProcessState().icons.emplace(icon, std::move(image));
    return icon;
}

BOOL DestroyIcon(HICON icon)
{
    return GetProcessState().icons.erase(icon) != 0 ? TRUE : FALSE;
}
