// The window system under its Win32 names. On Windows this is the system's own header and nothing else.
// Elsewhere the window layer (core/ over a backend) implements the same names, only those that are used. Code
// above platform/ includes this file and never asks which one it gets.
#pragma once

#ifdef _WIN32
#include <windows.h>
#include <windowsx.h>
#else
#include "platform/winsys/core/win32.h"
#endif
