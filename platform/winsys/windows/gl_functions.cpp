// The OpenGL functions of the system.
#include "platform/winsys/frame_resolve.h"
#include "platform/winsys/winsys.h"

namespace winsys
{

GlFunction FindGlFunction(const char* name)
{
    // The one knows what came after OpenGL 1.1, the other what belongs to it.
    if (const PROC function = wglGetProcAddress(name); function != nullptr)
        return reinterpret_cast<GlFunction>(function);
    return reinterpret_cast<GlFunction>(GetProcAddress(GetModuleHandleW(L"opengl32.dll"), name));
}

} // namespace winsys
