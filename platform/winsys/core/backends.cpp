// Choice of backend, and observation.
#include "platform/winsys/provider.h"

#include "platform/winsys/core/layer.h"
#include "platform/winsys/core/pixel_formats.h"
#include "platform/winsys/core/window_lifecycle.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace winsys
{
namespace
{

// Contexts may outlive their windows, but not their backend.
void DropContexts(core::Layer& layer)
{
    wglMakeCurrent(nullptr, nullptr);
    for (const auto& [context, format] : layer.rendering_contexts)
        layer.backend->DeleteContext(context);
    layer.rendering_contexts.clear();
}

} // namespace

EventSink::~EventSink() = default;

Backend::~Backend() = default;

GlFunction Backend::FindGlFunction(const char*)
{
    return nullptr;
}

std::optional<NativePlace> Backend::AdoptNativeWindow(HWND, std::uintptr_t)
{
    return std::nullopt;
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

GlFunction FindGlFunction(const char* name)
{
    return core::GetLayer().InstalledBackend().FindGlFunction(name);
}

void SetFrameObserver(FrameObserver observer)
{
    core::GetLayer().frame_observer = std::move(observer);
}

unsigned long GetSwapCount(HWND window)
{
    const core::Window* record = core::GetLayer().windows.Find(window);
    return record == nullptr ? 0 : record->swap_count;
}

void UseBackend(std::unique_ptr<Backend> backend)
{
    const core::DescriptorUpdate update;
    core::Layer& layer = core::GetLayer();
    if (!layer.windows.IsEmpty())
        throw std::logic_error("the window backend cannot change while a window exists");
    DropContexts(layer);
    layer.backend = std::move(backend);
}

std::unique_ptr<Backend> MakeDefaultBackend()
{
    try {
        return MakeX11Backend();
    } catch (const std::runtime_error&) {
        return MakeHeadlessBackend();
    }
}

HWND AdoptForeignWindow(std::uintptr_t id)
{
    const core::DescriptorUpdate update;
    return core::Adopt(id);
}

std::string BackendName()
{
    return core::GetLayer().InstalledBackend().Name();
}

int GetMessageDescriptor()
{
    const core::DescriptorUpdate update;
    core::Layer& layer = core::GetLayer();
    if (layer.descriptor == nullptr)
        layer.descriptor = std::make_unique<core::WaitDescriptor>();
    return layer.descriptor->Get();
}

} // namespace winsys
