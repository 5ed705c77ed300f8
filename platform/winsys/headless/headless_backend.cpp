#include "platform/winsys/headless/headless_backend.h"

#include "platform/winsys/backends.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

// Keeps EGL from including the headers of a display system.
#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace winsys
{
namespace
{

/// The surfaceless display of the process. It is initialised once and never terminated; the objects made on
/// it belong to the backends.
EGLDisplay OpenDisplay()
{
    static const EGLDisplay display = [] {
        EGLDisplay opened =
            eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        return opened != EGL_NO_DISPLAY && eglInitialize(opened, nullptr, nullptr) == EGL_TRUE
                   ? opened
                   : EGL_NO_DISPLAY;
    }();
    if (display == EGL_NO_DISPLAY)
        throw std::runtime_error("no off-screen OpenGL: EGL has no surfaceless platform here");
    if (eglBindAPI(EGL_OPENGL_API) != EGL_TRUE)
        throw std::runtime_error("no off-screen OpenGL: EGL offers OpenGL ES only");
    return display;
}

int Attribute(EGLDisplay display, EGLConfig config, EGLint name)
{
    EGLint value = 0;
    eglGetConfigAttrib(display, config, name, &value);
    return value;
}

std::vector<EGLConfig> MatchingConfigs(EGLDisplay display)
{
    const EGLint wanted[] = {EGL_SURFACE_TYPE,
                             EGL_PBUFFER_BIT,
                             EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT,
                             EGL_COLOR_BUFFER_TYPE,
                             EGL_RGB_BUFFER,
                             EGL_ALPHA_SIZE,
                             8,
                             EGL_NONE};
    EGLint count = 0;
    eglChooseConfig(display, wanted, nullptr, 0, &count);
    std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
    eglChooseConfig(display, wanted, configs.data(), count, &count);
    configs.resize(static_cast<std::size_t>(count));
    // The sizes are minimums, so deeper channels match too.
    std::erase_if(configs, [&](EGLConfig config) {
        return Attribute(display, config, EGL_RED_SIZE) != 8 ||
               Attribute(display, config, EGL_GREEN_SIZE) != 8 ||
               Attribute(display, config, EGL_BLUE_SIZE) != 8 ||
               Attribute(display, config, EGL_ALPHA_SIZE) != 8;
    });
    return configs;
}

} // namespace

/// The EGL side: the formats, a surface for each window that has a format, the contexts.
class HeadlessBackend::Egl
{
  public:
    Egl() : display_(OpenDisplay()), configs_(MatchingConfigs(display_))
    {
        if (configs_.empty())
            throw std::runtime_error("no off-screen OpenGL: no format with 8 bits a channel");
        for (EGLConfig config : configs_) {
            PixelFormat format;
            format.depth_bits = Attribute(display_, config, EGL_DEPTH_SIZE);
            format.stencil_bits = Attribute(display_, config, EGL_STENCIL_SIZE);
            format.samples = Attribute(display_, config, EGL_SAMPLES);
            formats_.push_back(format);
        }
    }

    [[nodiscard]] std::span<const PixelFormat> Formats() const { return formats_; }

    void AddWindow(HWND window, SIZE size) { windows_[window].size = size; }

    /// EGL defers the destruction of a surface that is current until it is no longer current.
    void RemoveWindow(HWND window)
    {
        eglDestroySurface(display_, windows_[window].surface);
        windows_.erase(window);
        if (current_window_ == window)
            current_window_ = nullptr;
    }

    /// EGL cannot resize an off-screen surface, so the window gets a new one. If memory does not suffice for
    /// it, the window keeps the old one.
    void Resize(HWND window, SIZE size)
    {
        Window& record = windows_[window];
        if (record.config == nullptr || (size.cx == record.size.cx && size.cy == record.size.cy)) {
            record.size = size;
            return;
        }
        record.size = size;
        EGLSurface surface = MakeSurface(record.config, size);
        if (surface == EGL_NO_SURFACE)
            return;
        if (current_window_ == window &&
            eglMakeCurrent(display_, surface, surface, eglGetCurrentContext()) != EGL_TRUE) {
            std::swap(surface, record.surface);
        }
        std::swap(surface, record.surface);
        eglDestroySurface(display_, surface);
    }

    bool SetFormat(HWND window, int format)
    {
        Window& record = windows_[window];
        EGLConfig config = configs_[static_cast<std::size_t>(format) - 1];
        record.surface = MakeSurface(config, record.size);
        record.config = record.surface != EGL_NO_SURFACE ? config : nullptr;
        return record.config != nullptr;
    }

    bool AddContext(HGLRC context, int format)
    {
        EGLConfig config = configs_[static_cast<std::size_t>(format) - 1];
        // Other users of EGL in the process may have bound another API to this thread.
        eglBindAPI(EGL_OPENGL_API);
        EGLContext made = eglCreateContext(display_, config, EGL_NO_CONTEXT, nullptr);
        if (made == EGL_NO_CONTEXT)
            return false;
        contexts_.emplace(context, made);
        return true;
    }

    void RemoveContext(HGLRC context)
    {
        eglDestroyContext(display_, contexts_[context]);
        contexts_.erase(context);
    }

    bool MakeCurrent(HWND window, HGLRC context)
    {
        EGLSurface surface = windows_[window].surface;
        if (eglMakeCurrent(display_, surface, surface, contexts_[context]) != EGL_TRUE)
            return false;
        current_window_ = window;
        return true;
    }

    void ReleaseCurrent()
    {
        eglBindAPI(EGL_OPENGL_API);
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        current_window_ = nullptr;
    }

  private:
    struct Window {
        SIZE size{};
        EGLConfig config = nullptr;
        EGLSurface surface = EGL_NO_SURFACE;
    };

    EGLSurface MakeSurface(EGLConfig config, SIZE size)
    {
        const EGLint attributes[] = {EGL_WIDTH, std::max<EGLint>(size.cx, 1), EGL_HEIGHT,
                                     std::max<EGLint>(size.cy, 1), EGL_NONE};
        return eglCreatePbufferSurface(display_, config, attributes);
    }

    EGLDisplay display_;
    std::vector<EGLConfig> configs_;
    std::vector<PixelFormat> formats_;
    std::map<HWND, Window> windows_;
    std::map<HGLRC, EGLContext> contexts_;
    HWND current_window_ = nullptr;
};

std::unique_ptr<Backend> MakeHeadlessBackend()
{
    return std::make_unique<HeadlessBackend>();
}

HeadlessBackend::HeadlessBackend() : egl_(std::make_unique<Egl>()) {}

HeadlessBackend::~HeadlessBackend() = default;

std::string HeadlessBackend::Name() const
{
    return "headless";
}

bool HeadlessBackend::CreateNativeWindow(HWND window, const NativeWindow& description)
{
    egl_->AddWindow(window, description.size);
    return true;
}

void HeadlessBackend::DestroyNativeWindow(HWND window)
{
    egl_->RemoveWindow(window);
}

void HeadlessBackend::ShowNativeWindow(HWND, bool) {}

void HeadlessBackend::MoveNativeWindow(HWND window, POINT, SIZE size)
{
    egl_->Resize(window, size);
}

void HeadlessBackend::SetNativeTitle(HWND, const std::wstring&) {}

void HeadlessBackend::FocusNativeWindow(HWND) {}

int HeadlessBackend::EventDescriptor() const
{
    return -1;
}

void HeadlessBackend::PumpEvents(EventSink&) {}

std::span<const PixelFormat> HeadlessBackend::PixelFormats() const
{
    return egl_->Formats();
}

bool HeadlessBackend::SetNativePixelFormat(HWND window, int format)
{
    return egl_->SetFormat(window, format);
}

bool HeadlessBackend::CreateContext(HGLRC context, HWND, int format)
{
    return egl_->AddContext(context, format);
}

void HeadlessBackend::DeleteContext(HGLRC context)
{
    egl_->RemoveContext(context);
}

bool HeadlessBackend::MakeCurrent(HWND window, HGLRC context)
{
    return egl_->MakeCurrent(window, context);
}

void HeadlessBackend::ReleaseCurrent()
{
    egl_->ReleaseCurrent();
}

bool HeadlessBackend::SwapBuffers(HWND)
{
    // An off-screen surface has one buffer, and reading it waits until drawing is complete.
    return true;
}

GlFunction HeadlessBackend::FindGlFunction(const char* name)
{
    return eglGetProcAddress(name);
}

} // namespace winsys
