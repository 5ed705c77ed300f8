// The backend over an X server, by way of Xlib and GLX. Each window of the layer is a plain X window that
// takes the input; a pixel format puts an inner one with the format's visual over it, because an X window's
// visual is fixed at its creation and a pixel format is not.
//
// It makes no rules of its own: what the server reports goes to the sink. Once the connection is lost it
// calls neither X nor GLX any more; windows go on as records.
#pragma once

#include "platform/winsys/x11/glx_contexts.h"
#include "platform/winsys/x11/native_windows.h"
#include "platform/winsys/x11/pointer.h"

#include <deque>
#include <functional>

namespace winsys::x11
{

class X11Backend final : public Backend
{
  public:
    /// Throws std::runtime_error with the reason where no server answers, or none with GLX.
    explicit X11Backend(const std::string& display);
    ~X11Backend() override;

    [[nodiscard]] std::string Name() const override;

    bool CreateNativeWindow(HWND window, const NativeWindow& description) override;
    std::optional<NativePlace> AdoptNativeWindow(HWND window, std::uintptr_t id) override;
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
    /// Whether the server may be called; lets go of GLX where it may not any more.
    bool IsUsable();
    /// The window, if it is ours and the server may be called about it.
    NativeRecord* FindOurs(HWND window);

    void AnnounceTopLevel(const NativeRecord& record, bool is_placed_by_system);
    void Place(NativeRecord& record, POINT position, SIZE size);
    void UpdateMapping(NativeRecord& record);
    /// Where the client area of a window is now; none where it is gone.
    std::optional<NativePlace> QueryPlace(::Window id);
    /// Whether the window or another one within the same top-level window has the keyboard focus.
    bool IsFocusNear(::Window id);
    /// The window below the root that this one is in; 0 where it is gone.
    ::Window OutermostOf(::Window id);
    void SelectEvents(const NativeRecord& record, bool with_keys);

    /// Takes in every event that has arrived, and drops those that mean nothing to the layer.
    void TakeIn() const;
    [[nodiscard]] bool IsOfInterest(const XEvent& event) const;
    /// Takes the first event that has arrived and satisfies the condition out of its turn; false where none
    /// does.
    bool TakeOutOfTurn(const std::function<bool(const XEvent&)>& condition, XEvent& taken);

    void Report(XEvent& event, EventSink& sink);
    void ReportConfigure(XConfigureEvent event, EventSink& sink);
    void ReportPlace(HWND window, const NativePlace& place, EventSink& sink);
    void ReportDestroyed(const XDestroyWindowEvent& event, EventSink& sink);
    void ReportButton(const XButtonEvent& event, EventSink& sink);
    void ReportMotion(const XMotionEvent& event, EventSink& sink);
    void ReportMouse(HWND window, const std::optional<MouseEvent>& mouse, POINT screen_point,
                     EventSink& sink);
    void ReportKey(XKeyEvent& event, EventSink& sink);
    void ReportFocus(const XFocusChangeEvent& event, EventSink& sink);
    void ReportMessage(const XClientMessageEvent& event, EventSink& sink);

    Connection connection_;
    GlxContexts contexts_;
    NativeWindows windows_;
    Pointer pointer_;
    /// The window that the server sends keys to.
    HWND focused_ = nullptr;
    /// Events that have arrived and wait to be reported. Looking whether there are any takes them in.
    mutable std::deque<XEvent> arrived_;
    /// A descriptor that is always readable.
    int ready_descriptor_;
};

} // namespace winsys::x11
