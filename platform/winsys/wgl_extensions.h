// The WGL extensions that are looked up at run time with wglGetProcAddress, on every system: the extension
// string (WGL_ARB_extensions_string), the pixel-format query (WGL_ARB_pixel_format) and its multisample
// attributes (WGL_ARB_multisample). The values are the registered ones.
#pragma once

#include "platform/winsys/winsys.h"

using PFNWGLGETEXTENSIONSSTRINGARBPROC = const char*(WINAPI*)(HDC);
using PFNWGLCHOOSEPIXELFORMATARBPROC = BOOL(WINAPI*)(HDC, const int*, const float*, UINT, int*, UINT*);

inline constexpr int WGL_DRAW_TO_WINDOW_ARB = 0x2001;
inline constexpr int WGL_ACCELERATION_ARB = 0x2003;
inline constexpr int WGL_SUPPORT_OPENGL_ARB = 0x2010;
inline constexpr int WGL_DOUBLE_BUFFER_ARB = 0x2011;
inline constexpr int WGL_PIXEL_TYPE_ARB = 0x2013;
inline constexpr int WGL_COLOR_BITS_ARB = 0x2014;
inline constexpr int WGL_ALPHA_BITS_ARB = 0x201B;
inline constexpr int WGL_DEPTH_BITS_ARB = 0x2022;
inline constexpr int WGL_STENCIL_BITS_ARB = 0x2023;
inline constexpr int WGL_FULL_ACCELERATION_ARB = 0x2027;
inline constexpr int WGL_TYPE_RGBA_ARB = 0x202B;
inline constexpr int WGL_SAMPLE_BUFFERS_ARB = 0x2041;
inline constexpr int WGL_SAMPLES_ARB = 0x2042;
