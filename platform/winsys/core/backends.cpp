#include "platform/winsys/backends.h"

#include "platform/winsys/core/process_state.h"
#include "platform/winsys/core/window_lifecycle.h"

#include <stdexcept>
#include <utility>

namespace winsys
{
namespace
{

/// Deletes all contexts: they may outlive their windows, but not their backend.
void DeleteContexts(core::ProcessState& state)
{
    wglMakeCurrent(nullptr, nullptr);
    for (const auto& [context, format] : state.rendering_contexts)
        state.backend->DeleteContext(context);
    state.rendering_contexts.clear();
}

} // namespace

void SetFrameObserver(FrameObserver observer)
{
    core::GetProcessState().frame_observer = std::move(observer);
}

unsigned long GetSwapCount(HWND window)
{
    const core::Window* record = core::GetProcessState().windows.Find(window);
    return record != nullptr ? record->swap_count : 0;
}

void UseBackend(std::unique_ptr<Backend> backend)
{
    const core::DescriptorUpdate update;
    core::ProcessState& state = core::GetProcessState();
    if (!state.windows.IsEmpty())
        throw std::logic_error("the window backend cannot change while a window exists");
    DeleteContexts(state);
    state.backend = std::move(backend);
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
    return core::GetProcessState().InstalledBackend().Name();
}

int GetMessageDescriptor()
{
    const core::DescriptorUpdate update;
    core::ProcessState& state = core::GetProcessState();
    if (state.descriptor == nullptr)
        state.descriptor = std::make_unique<core::WaitDescriptor>();
    return state.descriptor->Get();
}

} // namespace winsys
