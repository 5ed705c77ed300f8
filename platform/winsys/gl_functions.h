// Looks up OpenGL functions of any version at run time. For the thread that owns the windows.
#pragma once

#include "platform/export.h"

namespace winsys
{

/// Any OpenGL function; cast to its own type before the call.
using GlFunction = void (*)();

/// Returns the address of an OpenGL function of any version for the current context; null if there is none.
[[nodiscard]] KARV_PLATFORM_API GlFunction FindGlFunction(const char* name);

} // namespace winsys
