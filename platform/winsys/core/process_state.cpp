#include "platform/winsys/core/process_state.h"

#include <exception>

namespace winsys::core
{

Backend& ProcessState::InstalledBackend()
{
    if (backend == nullptr)
        backend = MakeDefaultBackend();
    return *backend;
}

Backend* ProcessState::FindBackend() noexcept
{
    try {
        return &InstalledBackend();
    } catch (const std::exception&) {
        return nullptr;
    }
}

ProcessState& GetProcessState()
{
    // Never destroyed: at the end of the process the graphics driver may have cleaned up before.
    static ProcessState& state = *new ProcessState;
    return state;
}

DescriptorUpdate::~DescriptorUpdate()
{
    const ProcessState& state = GetProcessState();
    if (state.descriptor != nullptr) {
        const int backend_descriptor = state.backend != nullptr ? state.backend->EventDescriptor() : -1;
        state.descriptor->Update(state.queue.HasMessage(), state.queue.NextTimerDue({}), backend_descriptor);
    }
}

} // namespace winsys::core
