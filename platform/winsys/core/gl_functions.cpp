#include "platform/winsys/gl_functions.h"

#include "platform/winsys/core/process_state.h"

namespace winsys
{

GlFunction FindGlFunction(const char* name)
{
    return core::GetProcessState().InstalledBackend().FindGlFunction(name);
}

} // namespace winsys
