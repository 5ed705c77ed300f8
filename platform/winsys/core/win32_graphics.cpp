// Device contexts, pixel formats and rendering contexts under their Win32 and WGL names.
#include "platform/winsys/core/pixel_formats.h"
#include "platform/winsys/core/process_state.h"
#include "platform/winsys/frame_resolve.h"
#include "platform/winsys/wgl_extensions.h"

#include <algorithm>
#include <array>
#include <string_view>

using namespace winsys::core;

namespace
{

bool IsDeviceContext(HDC dc)
{
    return GetProcessState().device_contexts.contains(dc);
}

/// The window of a device context; null for a context of the screen or of a destroyed window.
Window* FindWindowOf(HDC dc)
{
    return GetProcessState().windows.Find(WindowFromDC(dc));
}

/// The backend of a device context; null for an unknown context.
winsys::Backend* FindBackendOf(HDC dc)
{
    return IsDeviceContext(dc) ? GetProcessState().FindBackend() : nullptr;
}

std::span<const winsys::PixelFormat> FormatsOf(HDC dc)
{
    const winsys::Backend* backend = FindBackendOf(dc);
    return backend != nullptr ? backend->PixelFormats() : std::span<const winsys::PixelFormat>{};
}

HDC NewDeviceContext(HWND window)
{
    const HDC dc = NewHandle<HDC>();
    GetProcessState().device_contexts.emplace(dc, window);
    return dc;
}

void ReleaseCurrentContext()
{
    ProcessState& state = GetProcessState();
    if (state.current_context != nullptr) {
        state.backend->ReleaseCurrent();
        state.current_context = nullptr;
        state.current_dc = nullptr;
    }
}

void ObserveFrame(const Window& window)
{
    const ProcessState& state = GetProcessState();
    if (state.frame_observer && state.current_context != nullptr &&
        WindowFromDC(state.current_dc) == window.handle) {
        // A copy: the observer may install another one.
        const winsys::FrameObserver observer = state.frame_observer;
        const winsys::FrameResolve resolve(window.size.cx, window.size.cy);
        observer(window.handle, window.size.cx, window.size.cy);
    }
}

const char* WINAPI GetExtensionsString(HDC dc)
{
    winsys::Backend* backend = FindBackendOf(dc);
    const auto extensions = backend != nullptr ? backend->Extensions() : std::nullopt;
    if (!extensions)
        return nullptr;
    std::string& kept = GetProcessState().extensions;
    kept = *extensions;
    return kept.c_str();
}

/// The pairs of a list that ends with a zero attribute; a null list is empty.
std::span<const int> AttributePairs(const int* attributes)
{
    std::size_t length = 0;
    while (attributes != nullptr && attributes[length] != 0)
        length += 2;
    return {attributes, length};
}

BOOL WINAPI ChooseFormats(HDC dc, const int* attributes, const float*, UINT max_formats, int* formats,
                          UINT* count)
{
    winsys::Backend* backend = FindBackendOf(dc);
    if (backend == nullptr || count == nullptr || (formats == nullptr && max_formats > 0))
        return FALSE;
    const auto matches = backend->MatchFormats(AttributePairs(attributes));
    if (!matches)
        return FALSE;
    *count = std::min(max_formats, static_cast<UINT>(matches->size()));
    std::copy_n(matches->begin(), *count, formats);
    return TRUE;
}

/// Casts through `void (*)()`, the one function type whose conversions compilers do not warn of.
template <typename Function>
PROC ToProc(Function* function)
{
    return reinterpret_cast<PROC>(reinterpret_cast<void (*)()>(function));
}

struct EntryPoint {
    std::string_view name;
    PROC function;
};

const std::array<EntryPoint, 2> kEntryPoints{{
    {"wglGetExtensionsStringARB", ToProc(&GetExtensionsString)},
    {"wglChoosePixelFormatARB", ToProc(&ChooseFormats)},
}};

} // namespace

HDC GetDC(HWND window)
{
    if (window == nullptr)
        return NewDeviceContext(nullptr);
    Window* record = GetProcessState().windows.Find(window);
    if (record == nullptr)
        return nullptr;
    if ((record->window_class->record.style & CS_OWNDC) == 0)
        return NewDeviceContext(window);
    if (record->own_dc == nullptr)
        record->own_dc = NewDeviceContext(window);
    return record->own_dc;
}

int ReleaseDC(HWND window, HDC dc)
{
    if (!IsDeviceContext(dc) || WindowFromDC(dc) != window)
        return 0;
    const Window* record = FindWindowOf(dc);
    if (record == nullptr || record->own_dc != dc)
        GetProcessState().device_contexts.erase(dc);
    return 1;
}

HWND WindowFromDC(HDC dc)
{
    const ProcessState& state = GetProcessState();
    const auto found = state.device_contexts.find(dc);
    return found != state.device_contexts.end() ? found->second : nullptr;
}

int ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* descriptor)
{
    return descriptor != nullptr ? ChooseFormat(FormatsOf(dc), *descriptor) : 0;
}

int DescribePixelFormat(HDC dc, int format, UINT size, PIXELFORMATDESCRIPTOR* descriptor)
{
    const auto formats = FormatsOf(dc);
    const auto count = static_cast<int>(formats.size());
    if (descriptor != nullptr) {
        if (size < sizeof *descriptor || format < 1 || format > count)
            return 0;
        *descriptor = Describe(formats[static_cast<std::size_t>(format) - 1]);
    }
    return count;
}

BOOL SetPixelFormat(HDC dc, int format, const PIXELFORMATDESCRIPTOR*)
{
    Window* window = FindWindowOf(dc);
    if (window == nullptr || format < 1 || format > static_cast<int>(FormatsOf(dc).size()))
        return FALSE;
    if (window->pixel_format != 0)
        return window->pixel_format == format ? TRUE : FALSE;
    if (!GetProcessState().backend->SetNativePixelFormat(window->handle, format))
        return FALSE;
    window->pixel_format = format;
    return TRUE;
}

int GetPixelFormat(HDC dc)
{
    const Window* window = FindWindowOf(dc);
    return window != nullptr ? window->pixel_format : 0;
}

BOOL SwapBuffers(HDC dc)
{
    Window* window = FindWindowOf(dc);
    if (window == nullptr || window->pixel_format == 0)
        return FALSE;
    ObserveFrame(*window);
    if (!GetProcessState().backend->SwapBuffers(window->handle))
        return FALSE;
    ++window->swap_count;
    return TRUE;
}

HGLRC wglCreateContext(HDC dc)
{
    ProcessState& state = GetProcessState();
    const Window* window = FindWindowOf(dc);
    if (window == nullptr || window->pixel_format == 0)
        return nullptr;
    const HGLRC context = NewHandle<HGLRC>();
    if (!state.backend->CreateContext(context, window->handle, window->pixel_format))
        return nullptr;
    state.rendering_contexts.emplace(context, window->pixel_format);
    return context;
}

BOOL wglDeleteContext(HGLRC context)
{
    ProcessState& state = GetProcessState();
    if (!state.rendering_contexts.contains(context))
        return FALSE;
    if (state.current_context == context)
        ReleaseCurrentContext();
    state.backend->DeleteContext(context);
    state.rendering_contexts.erase(context);
    return TRUE;
}

BOOL wglMakeCurrent(HDC dc, HGLRC context)
{
    ProcessState& state = GetProcessState();
    if (context == nullptr) {
        ReleaseCurrentContext();
        return TRUE;
    }
    const auto found = state.rendering_contexts.find(context);
    const Window* window = FindWindowOf(dc);
    if (found == state.rendering_contexts.end() || window == nullptr || window->pixel_format != found->second)
        return FALSE;
    if (!state.backend->MakeCurrent(window->handle, context))
        return FALSE;
    state.current_context = context;
    state.current_dc = dc;
    return TRUE;
}

HGLRC wglGetCurrentContext()
{
    return GetProcessState().current_context;
}

HDC wglGetCurrentDC()
{
    return GetProcessState().current_dc;
}

PROC wglGetProcAddress(LPCSTR name)
{
    const ProcessState& state = GetProcessState();
    if (state.current_context == nullptr || name == nullptr)
        return nullptr;
    const auto found = std::ranges::find(kEntryPoints, std::string_view(name), &EntryPoint::name);
    return found != kEntryPoints.end() && state.backend->OffersEntryPoint(name) ? found->function : nullptr;
}
