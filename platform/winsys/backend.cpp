#include "platform/winsys/backend.h"

#include "platform/winsys/core/pixel_formats.h"

#include <algorithm>

namespace winsys
{

EventSink::~EventSink() = default;

Backend::~Backend() = default;

std::optional<NativePlace> Backend::AdoptNativeWindow(HWND, std::uintptr_t)
{
    return std::nullopt;
}

GlFunction Backend::FindGlFunction(const char*)
{
    return nullptr;
}

std::optional<std::string> Backend::Extensions()
{
    std::string words = "WGL_ARB_extensions_string WGL_ARB_pixel_format";
    if (std::ranges::any_of(PixelFormats(), [](const PixelFormat& format) { return format.samples > 0; }))
        words += " WGL_ARB_multisample";
    return words;
}

bool Backend::OffersEntryPoint(std::string_view)
{
    return true;
}

std::optional<std::vector<int>> Backend::MatchFormats(std::span<const int> attributes)
{
    return core::MatchAttributes(PixelFormats(), attributes);
}

} // namespace winsys
