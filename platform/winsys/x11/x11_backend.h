// The backend for an X server, over Xlib and GLX. Each window of the layer is a plain X window that receives
// the input. Its pixel format adds an inner window with the format's visual: the visual of an X window is
// fixed at its creation, its pixel format is not.
//
// It reports everything to the sink and applies no rules of its own. After the connection is lost it calls
// neither X nor GLX; windows remain as records.
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
    /// Throws std::runtime_error with the reason if no server answers or it has no GLX.
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
    /// Whether the server may be called. Once it may not, releases the current GLX context.
    bool IsUsable();
    /// The record of a window that belongs to the layer and can be used in requests; null otherwise.
    NativeRecord* FindOurs(HWND window);

    /// Sets the window manager's properties of a new top-level window.
    void AnnounceTopLevel(const NativeRecord& record, bool is_placed_by_system);
    /// Sets the property that names the program of a window (WM_CLASS).
    void SetProgram(const NativeRecord& record);
    void SetNativeIcon(const NativeRecord& record, const IconImage& icon);
    void Place(NativeRecord& record, POINT position, SIZE size);
    /// Maps or unmaps the X window: it is mapped if it is shown and not empty.
    void UpdateMapping(NativeRecord& record);
    /// The current place of a window's client area; none if the window no longer exists.
    std::optional<NativePlace> QueryPlace(::Window id);
    /// Whether the keyboard focus is in the same top-level window as this one.
    bool IsFocusInSameTopLevel(::Window id);
    /// The window directly below the root that contains this one; 0 if it no longer exists.
    ::Window OutermostOf(::Window id);
    void SelectEvents(const NativeRecord& record, bool with_keys);

    /// Moves all events that have arrived from the connection to `arrived_`; drops those without meaning to
    /// the layer. Flushes the requests.
    void ReadArrivedEvents() const;
    [[nodiscard]] bool IsOfInterest(const XEvent& event) const;
    /// Removes the first arrived event that satisfies the condition, out of order; false if there is none.
    bool ExtractEvent(const std::function<bool(const XEvent&)>& condition, XEvent& taken);

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
    /// Events that have arrived but are not reported yet. Mutable: a check for waiting events reads them.
    mutable std::deque<XEvent> arrived_;
    /// A descriptor that is always readable.
    int ready_descriptor_;
};

} // namespace winsys::x11
