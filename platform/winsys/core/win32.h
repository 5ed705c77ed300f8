// The Win32 names that the project uses, for systems that lack them: types, constants and functions with the
// meaning that they have on Windows. Only what is used is declared.
//
// All windows, timers and contexts belong to one thread, the one that creates the first window; no function
// may be called from another. Handles are never reused within a process, so a stale one is refused, not
// mistaken for a newer object. Strings are wide, as for the W functions.
#pragma once

#include "platform/export.h"

#include <cstddef>
#include <cstdint>
#include <limits>

#define CALLBACK
#define WINAPI

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ATOM = std::uint16_t;
using COLORREF = std::uint32_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using DWORD_PTR = std::uintptr_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using LPVOID = void*;
using LPCSTR = const char*;
using LPCWSTR = const wchar_t*;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

// Handles are distinct opaque pointer types, so the compiler can tell them apart.
using HWND = struct HWND__*;
using HDC = struct HDC__*;
using HGLRC = struct HGLRC__*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HICON = struct HICON__*;
using HCURSOR = struct HICON__*;
using HMENU = struct HMENU__*;
using HGDIOBJ = void*;
using HBRUSH = struct HBRUSH__*;

using PROC = std::intptr_t(WINAPI*)();
using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using TIMERPROC = void(CALLBACK*)(HWND, UINT, UINT_PTR, DWORD);

struct POINT {
    LONG x;
    LONG y;
};

struct SIZE {
    LONG cx;
    LONG cy;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};

struct WNDCLASSW {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
};

struct CREATESTRUCTW {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCWSTR lpszName;
    LPCWSTR lpszClass;
    DWORD dwExStyle;
};
using CREATESTRUCT = CREATESTRUCTW;
using LPCREATESTRUCT = CREATESTRUCTW*;

struct PAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
};

struct PIXELFORMATDESCRIPTOR {
    WORD nSize;
    WORD nVersion;
    DWORD dwFlags;
    BYTE iPixelType;
    BYTE cColorBits;
    BYTE cRedBits;
    BYTE cRedShift;
    BYTE cGreenBits;
    BYTE cGreenShift;
    BYTE cBlueBits;
    BYTE cBlueShift;
    BYTE cAlphaBits;
    BYTE cAlphaShift;
    BYTE cAccumBits;
    BYTE cAccumRedBits;
    BYTE cAccumGreenBits;
    BYTE cAccumBlueBits;
    BYTE cAccumAlphaBits;
    BYTE cDepthBits;
    BYTE cStencilBits;
    BYTE cAuxBuffers;
    BYTE iLayerType;
    BYTE bReserved;
    DWORD dwLayerMask;
    DWORD dwVisibleMask;
    DWORD dwDamageMask;
};
static_assert(sizeof(PIXELFORMATDESCRIPTOR) == 40);

// Notifications of the process to a module.
inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;
inline constexpr DWORD DLL_THREAD_ATTACH = 2;
inline constexpr DWORD DLL_THREAD_DETACH = 3;

// Window classes.
inline constexpr UINT CS_VREDRAW = 0x0001;
inline constexpr UINT CS_HREDRAW = 0x0002;
inline constexpr UINT CS_OWNDC = 0x0020;
inline constexpr int BLACK_BRUSH = 4;

// Window styles.
inline constexpr DWORD WS_OVERLAPPED = 0x00000000;
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
inline constexpr DWORD WS_CLIPCHILDREN = 0x02000000;
inline constexpr DWORD WS_OVERLAPPEDWINDOW = 0x00CF0000;
inline constexpr DWORD WS_EX_NOPARENTNOTIFY = 0x00000004;

/// The horizontal position of a top-level window that the system places; the vertical one is then ignored.
inline constexpr int CW_USEDEFAULT = std::numeric_limits<int>::min();

// Messages.
inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_MOVE = 0x0003;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_ERASEBKGND = 0x0014;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_CHAR = 0x0102;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_RBUTTONDOWN = 0x0204;
inline constexpr UINT WM_RBUTTONUP = 0x0205;
inline constexpr UINT WM_MBUTTONDOWN = 0x0207;
inline constexpr UINT WM_MBUTTONUP = 0x0208;
inline constexpr UINT WM_MOUSEWHEEL = 0x020A;
inline constexpr UINT WM_USER = 0x0400;

inline constexpr WPARAM SIZE_RESTORED = 0;
inline constexpr WPARAM SIZE_MINIMIZED = 1;
inline constexpr WPARAM SIZE_MAXIMIZED = 2;

inline constexpr WPARAM MK_LBUTTON = 0x0001;
inline constexpr WPARAM MK_RBUTTON = 0x0002;
inline constexpr WPARAM MK_SHIFT = 0x0004;
inline constexpr WPARAM MK_CONTROL = 0x0008;
inline constexpr WPARAM MK_MBUTTON = 0x0010;

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOW = 5;

inline constexpr UINT PM_NOREMOVE = 0x0000;
inline constexpr UINT PM_REMOVE = 0x0001;

inline constexpr int GWLP_USERDATA = -21;
inline constexpr int GWL_STYLE = -16;

// Pixel formats.
inline constexpr DWORD PFD_DOUBLEBUFFER = 0x00000001;
inline constexpr DWORD PFD_DRAW_TO_WINDOW = 0x00000004;
inline constexpr DWORD PFD_SUPPORT_OPENGL = 0x00000020;
inline constexpr BYTE PFD_TYPE_RGBA = 0;
inline constexpr BYTE PFD_MAIN_PLANE = 0;

[[nodiscard]] constexpr WORD LOWORD(DWORD_PTR value)
{
    return static_cast<WORD>(value & 0xFFFFU);
}

[[nodiscard]] constexpr WORD HIWORD(DWORD_PTR value)
{
    return static_cast<WORD>((value >> 16U) & 0xFFFFU);
}

/// Packs the low 16 bits of each value into one message parameter.
[[nodiscard]] constexpr LPARAM MAKELPARAM(int low, int high)
{
    const std::uint32_t bits =
        static_cast<std::uint32_t>(low & 0xFFFF) | (static_cast<std::uint32_t>(high & 0xFFFF) << 16U);
    return static_cast<LPARAM>(bits);
}

[[nodiscard]] constexpr WPARAM MAKEWPARAM(int low, int high)
{
    return static_cast<WPARAM>(static_cast<std::uint32_t>(MAKELPARAM(low, high)));
}

/// The signed coordinates of mouse messages.
[[nodiscard]] constexpr int GET_X_LPARAM(LPARAM value)
{
    return static_cast<std::int16_t>(LOWORD(static_cast<DWORD_PTR>(value)));
}

[[nodiscard]] constexpr int GET_Y_LPARAM(LPARAM value)
{
    return static_cast<std::int16_t>(HIWORD(static_cast<DWORD_PTR>(value)));
}

[[nodiscard]] constexpr std::int16_t GET_WHEEL_DELTA_WPARAM(WPARAM value)
{
    return static_cast<std::int16_t>(HIWORD(value));
}

// Window classes and windows.
KARV_PLATFORM_API ATOM RegisterClassW(const WNDCLASSW* window_class);
KARV_PLATFORM_API BOOL UnregisterClassW(LPCWSTR name, HINSTANCE instance);
KARV_PLATFORM_API BOOL GetClassInfoW(HINSTANCE instance, LPCWSTR name, WNDCLASSW* window_class);
KARV_PLATFORM_API HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style,
                                       int x, int y, int width, int height, HWND parent, HMENU menu,
                                       HINSTANCE instance, LPVOID param);
KARV_PLATFORM_API BOOL DestroyWindow(HWND window);
KARV_PLATFORM_API BOOL IsWindow(HWND window);
KARV_PLATFORM_API BOOL IsWindowVisible(HWND window);
KARV_PLATFORM_API BOOL ShowWindow(HWND window, int command);
KARV_PLATFORM_API BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
KARV_PLATFORM_API BOOL GetClientRect(HWND window, RECT* rect);
KARV_PLATFORM_API BOOL GetWindowRect(HWND window, RECT* rect);
KARV_PLATFORM_API BOOL ClientToScreen(HWND window, POINT* point);
KARV_PLATFORM_API BOOL ScreenToClient(HWND window, POINT* point);
KARV_PLATFORM_API HWND GetParent(HWND window);
KARV_PLATFORM_API BOOL SetWindowTextW(HWND window, LPCWSTR text);
KARV_PLATFORM_API int GetWindowTextW(HWND window, wchar_t* text, int capacity);
KARV_PLATFORM_API int GetClassNameW(HWND window, wchar_t* name, int capacity);
KARV_PLATFORM_API HWND SetFocus(HWND window);
KARV_PLATFORM_API HWND GetFocus();
KARV_PLATFORM_API LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value);
KARV_PLATFORM_API LONG_PTR GetWindowLongPtrW(HWND window, int index);
/// Creates an icon for the windows of a class (`hIcon`). Only one plane of 32 bits is supported: four bytes
/// for each pixel, blue, green, red and opacity, row by row from the top. `and_bits` is not used. Null for
/// other formats and for sides that are not 1 to 256 pixels.
KARV_PLATFORM_API HICON CreateIcon(HINSTANCE instance, int width, int height, BYTE planes, BYTE bits,
                                   const BYTE* and_bits, const BYTE* xor_bits);
/// Deletes an icon. Windows that were created with it keep it.
KARV_PLATFORM_API BOOL DestroyIcon(HICON icon);
KARV_PLATFORM_API HMODULE GetModuleHandleW(LPCWSTR name);
KARV_PLATFORM_API HGDIOBJ GetStockObject(int object);

// Painting.
KARV_PLATFORM_API BOOL InvalidateRect(HWND window, const RECT* rect, BOOL erase);
KARV_PLATFORM_API BOOL ValidateRect(HWND window, const RECT* rect);
KARV_PLATFORM_API BOOL UpdateWindow(HWND window);
KARV_PLATFORM_API HDC BeginPaint(HWND window, PAINTSTRUCT* paint);
KARV_PLATFORM_API BOOL EndPaint(HWND window, const PAINTSTRUCT* paint);

// Messages and timers.
KARV_PLATFORM_API LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
KARV_PLATFORM_API BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
KARV_PLATFORM_API void PostQuitMessage(int exit_code);
KARV_PLATFORM_API BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT flags);
KARV_PLATFORM_API BOOL GetMessageW(MSG* message, HWND window, UINT first, UINT last);
KARV_PLATFORM_API BOOL TranslateMessage(const MSG* message);
KARV_PLATFORM_API LRESULT DispatchMessageW(const MSG* message);
KARV_PLATFORM_API LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
KARV_PLATFORM_API UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT period_ms, TIMERPROC callback);
KARV_PLATFORM_API BOOL KillTimer(HWND window, UINT_PTR id);

// Device contexts, pixel formats and rendering contexts.
KARV_PLATFORM_API HDC GetDC(HWND window);
KARV_PLATFORM_API int ReleaseDC(HWND window, HDC dc);
KARV_PLATFORM_API HWND WindowFromDC(HDC dc);
KARV_PLATFORM_API int ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* descriptor);
KARV_PLATFORM_API int DescribePixelFormat(HDC dc, int format, UINT size, PIXELFORMATDESCRIPTOR* descriptor);
KARV_PLATFORM_API BOOL SetPixelFormat(HDC dc, int format, const PIXELFORMATDESCRIPTOR* descriptor);
KARV_PLATFORM_API int GetPixelFormat(HDC dc);
KARV_PLATFORM_API BOOL SwapBuffers(HDC dc);
KARV_PLATFORM_API HGLRC wglCreateContext(HDC dc);
KARV_PLATFORM_API BOOL wglDeleteContext(HGLRC context);
KARV_PLATFORM_API BOOL wglMakeCurrent(HDC dc, HGLRC context);
KARV_PLATFORM_API HGLRC wglGetCurrentContext();
KARV_PLATFORM_API HDC wglGetCurrentDC();
KARV_PLATFORM_API PROC wglGetProcAddress(LPCSTR name);
