// The window system, under its Win32 names. On Windows this is the system's own header and
// nothing else; elsewhere the same names, only those that are used, are implemented by the layer
// in core/ over a backend. Code above platform/ includes this file and never asks which it is.
#pragma once

#include "platform/winsys/export.h"

#ifdef _WIN32
#include <windows.h>
#include <windowsx.h>
#else
#include "platform/winsys/core/win32.h"
#endif
