// Names of the enums of OpenGL 1.1 and of GLU's tessellator, for readable listings and for the check that no
// others are used. It knows no functions, and of later versions only the enum for multisampling.
#pragma once

#include <string>

namespace karv_test
{

/// The enum's name, also for GL_MULTISAMPLE; hexadecimal if it is not of OpenGL 1.1 or GLU.
[[nodiscard]] std::string EnumName(unsigned value);
/// The name of a primitive as `glBegin` takes it.
[[nodiscard]] std::string PrimitiveName(unsigned value);
/// The bits of `glClear`'s mask, joined by " | ".
[[nodiscard]] std::string ClearMaskName(unsigned mask);
/// Whether the enum is of OpenGL 1.1 or GLU. False for GL_MULTISAMPLE.
[[nodiscard]] bool IsEnumOf11(unsigned value);

} // namespace karv_test
