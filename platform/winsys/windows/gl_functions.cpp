#include "platform/winsys/gl_functions.h"

#include "platform/winsys/winsys.h"

namespace winsys
{

GlFunction FindGlFunction(const char* name)
{
    // wglGetProcAddress knows the functions after OpenGL 1.1, the library itself those of OpenGL 1.1.
    if (const PROC function = wglGetProcAddress(name); function != nullptr)
        return reinterpret_cast<GlFunction>(function);
    return reinterpret_cast<GlFunction>(GetProcAddress(GetModuleHandleW(L"opengl32.dll"), name));
}

} // namespace winsys
