// The icon of the program's windows.
#pragma once

#include "platform/winsys/winsys.h"

namespace viewer
{

/// The icon, a cube seen from a corner; made by the first call and kept until the process ends. Null where
/// the system makes none.
[[nodiscard]] HICON ProgramIcon();

} // namespace viewer
