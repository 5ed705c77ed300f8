// The backend that needs no display: windows are records of their size, contexts are OpenGL contexts of EGL
// that draw to off-screen buffers. There are no native events, nothing is shown, and a swap leaves the frame
// in the buffer.
//
// Not final: a test derives from it to make calls fail.
#pragma once

#include "platform/export.h"
#include "platform/winsys/backend.h"

#include <memory>

namespace winsys
{

class KARV_PLATFORM_API HeadlessBackend : public Backend
{
  public:
    /// Throws std::runtime_error with the reason if EGL has no surfaceless platform, no OpenGL, or no format
    /// with 8 bits per channel.
    HeadlessBackend();
    ~HeadlessBackend() override;

    [[nodiscard]] std::string Name() const override;

    bool CreateNativeWindow(HWND window, const NativeWindow& description) override;
    void DestroyNativeWindow(HWND window) override;
    void ShowNativeWindow(HWND window, bool visible) override;
    void MoveNativeWindow(HWND window, POINT position, SIZE size) override;
    void SetNativeTitle(HWND window, const std::wstring& title) override;
    void FocusNativeWindow(HWND window) override;

    [[nodiscard]] int EventDescriptor() const override;
    void PumpEvents(EventSink& sink) override;

    [[nodiscard]] std::span<const PixelFormat> PixelFormats() const override;
    bool SetNativePixelFormat(HWND window, int format) override;

    bool CreateContext(HGLRC context, HWND window, int format) override;
    void DeleteContext(HGLRC context) override;
    bool MakeCurrent(HWND window, HGLRC context) override;
    void ReleaseCurrent() override;
    bool SwapBuffers(HWND window) override;
    [[nodiscard]] GlFunction FindGlFunction(const char* name) override;

  private:
    class Egl;

    std::unique_ptr<Egl> egl_;
};

} // namespace winsys
