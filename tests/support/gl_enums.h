// Names of the enums of OpenGL 1.1 and of GLU's tessellator, for readable listings and for the check that
// nothing beyond them is used. It knows no function and no later version, except the one enum for
// multisampling.
#pragma once

#include <string>

namespace karv_test
{

/// The enum's name, also of GL_MULTISAMPLE; hexadecimal for one that is none of OpenGL 1.1 or GLU.
[[nodiscard]] std::string EnumName(unsigned value);
/// The name of a primitive as `glBegin` takes it.
[[nodiscard]] std::string PrimitiveName(unsigned value);
/// The bits of `glClear`, joined by " | ".
[[nodiscard]] std::string ClearMaskName(unsigned mask);
/// Whether OpenGL 1.1 or GLU know the enum. False for GL_MULTISAMPLE.
[[nodiscard]] bool IsEnumOf11(unsigned value);

} // namespace karv_test
