#include "control/pixel_format_probe.h"

#include "platform/winsys/opengl.h"
#include "platform/winsys/wgl_extensions.h"

#include <array>
#include <cstddef>
#include <cstring>

bool arbMultisampleSupported = false;
int arbPixelFormat = 0;

const PIXELFORMATDESCRIPTOR kPixelFormatDescriptor = {
    .nSize = sizeof(PIXELFORMATDESCRIPTOR),
    .nVersion = 1,
    .dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER,
    .iPixelType = PFD_TYPE_RGBA,
    .cColorBits = 32,
    .cRedBits = 0,
    .cRedShift = 0,
    .cGreenBits = 0,
    .cGreenShift = 0,
    .cBlueBits = 0,
    .cBlueShift = 0,
    .cAlphaBits = 0,
    .cAlphaShift = 0,
    .cAccumBits = 0,
    .cAccumRedBits = 0,
    .cAccumGreenBits = 0,
    .cAccumBlueBits = 0,
    .cAccumAlphaBits = 0,
    .cDepthBits = 16,
    .cStencilBits = 0,
    .cAuxBuffers = 0,
    .iLayerType = PFD_MAIN_PLANE,
    .bReserved = 0,
    .dwLayerMask = 0,
    .dwVisibleMask = 0,
    .dwDamageMask = 0,
};

namespace
{

template <typename Function>
Function FindExtensionFunction(const char* name)
{
    // Compilers accept a cast from `void (*)()` to every function type without a warning.
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(wglGetProcAddress(name)));
}

/// The window system's extensions if it lists them, otherwise those of OpenGL. Null if neither lists them.
const char* ExtensionString()
{
    const auto extensions_of =
        FindExtensionFunction<PFNWGLGETEXTENSIONSSTRINGARBPROC>("wglGetExtensionsStringARB");
    const char* extensions = nullptr;
    if (extensions_of != nullptr)
        extensions = extensions_of(wglGetCurrentDC());
    if (extensions == nullptr)
        extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    return extensions;
}

/// Whether the space-separated list contains the name as a whole word.
bool HasWord(const char* list, const char* name)
{
    const std::size_t length = std::strlen(name);
    for (const char* hit = std::strstr(list, name); hit != nullptr; hit = std::strstr(hit + 1, name)) {
        const bool begins = hit == list || hit[-1] == ' ';
        const bool ends = hit[length] == '\0' || hit[length] == ' ';
        if (begins && ends)
            return true;
    }
    return false;
}

/// Asks for a format with this many samples. Returns false if the query fails or finds none.
bool QueryFormat(PFNWGLCHOOSEPIXELFORMATARBPROC choose, HDC dc, int samples, int& format)
{
    const std::array<float, 2> float_attributes = {0.0F, 0.0F};
    // clang-format off
    const std::array<int, 22> attributes = {
        WGL_DRAW_TO_WINDOW_ARB, 1,
        WGL_SUPPORT_OPENGL_ARB, 1,
        WGL_ACCELERATION_ARB,   WGL_FULL_ACCELERATION_ARB,
        WGL_COLOR_BITS_ARB,     24,
        WGL_ALPHA_BITS_ARB,     8,
        WGL_DEPTH_BITS_ARB,     16,
        WGL_STENCIL_BITS_ARB,   0,
        WGL_DOUBLE_BUFFER_ARB,  1,
        WGL_SAMPLE_BUFFERS_ARB, 1,
        WGL_SAMPLES_ARB,        samples,
        0,                      0,
    };
    // clang-format on
    UINT count = 0;
    const BOOL answered = choose(dc, attributes.data(), float_attributes.data(), 1, &format, &count);
    return answered != FALSE && count >= 1;
}

} // namespace

bool ChooseMultisamplePixelFormat(HWND window, PIXELFORMATDESCRIPTOR /*descriptor*/)
{
    const char* extensions = ExtensionString();
    if (extensions == nullptr || !HasWord(extensions, "WGL_ARB_multisample")) {
        arbMultisampleSupported = false;
        return false;
    }
    const auto choose = FindExtensionFunction<PFNWGLCHOOSEPIXELFORMATARBPROC>("wglChoosePixelFormatARB");
    if (choose == nullptr) {
        arbMultisampleSupported = false;
        return false;
    }
    // The device context lives as long as its window.
    const HDC dc = GetDC(window);
    for (const int samples : {4, 2}) {
        int format = 0;
        if (QueryFormat(choose, dc, samples, format)) {
            arbMultisampleSupported = true;
            arbPixelFormat = format;
            return true;
        }
    }
    return arbMultisampleSupported;
}
