// What differs between the systems that can serve the window layer: native windows, native events, pixel
// formats, contexts and swaps. Everything else (the window tree, classes, messages, timers, device contexts,
// and who may do what when) is decided once, in core/, above this interface.
//
// A backend never calls a window procedure and keeps no second copy of the layer's rules. It knows windows
// and contexts by the handles the layer gives it. Every call comes from the one thread that owns the windows,
// with handles that are alive. A backend whose calls cannot succeed says so by its results and never throws
// from them.
#pragma once

#include "platform/winsys/frame_resolve.h"
#include "platform/winsys/winsys.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace winsys
{

/// A pixel format that windows can have. All formats are RGBA, drawn to a window by OpenGL with full
/// acceleration, and double-buffered; what a system cannot offer so is left out.
struct PixelFormat {
    int red_bits = 8;
    int green_bits = 8;
    int blue_bits = 8;
    int alpha_bits = 8;
    int depth_bits = 0;
    int stencil_bits = 0;
    /// Samples for each pixel; 0 where the format is not multisampled.
    int samples = 0;
};

/// What the layer tells a backend of a window to be made. Positions are relative to the parent's client area,
/// to the screen for a top-level window; windows have no frame of their own, so this is the client area too.
struct NativeWindow {
    /// The parent of a child window, null for a top-level one.
    HWND parent = nullptr;
    std::wstring title;
    POINT position{};
    SIZE size{};
    /// The system places this top-level window where it likes; `position` holds until it tells.
    bool is_placed_by_system = false;
};

/// Where a native window is: on the screen for a top-level or adopted one, else in its parent.
struct NativePlace {
    POINT position{};
    SIZE size{};
};

/// A press, release, movement or turn of the wheel, over one window.
struct MouseEvent {
    /// WM_MOUSEMOVE, WM_LBUTTONDOWN and so on, or WM_MOUSEWHEEL.
    UINT message = WM_MOUSEMOVE;
    /// Buttons and modifiers that are down after the event, as MK_ flags.
    WPARAM keys = 0;
    /// In pixels from the window's client origin.
    POINT position{};
    /// For WM_MOUSEWHEEL: multiples of 120, positive away from the user.
    int wheel_delta = 0;
};

/// Where a backend reports what happened to its windows. Only to be called from inside `Backend::PumpEvents`.
/// Events for handles that are gone are ignored, so a backend need not filter out late ones. Handlers run
/// within these calls and may destroy any window.
class KARV_PLATFORM_API EventSink
{
  public:
    virtual ~EventSink();

    /// The user or the window manager gave the window this client size; sends WM_SIZE where it is a new one.
    virtual void OnResize(HWND window, SIZE size) = 0;
    /// The window is at this place in its parent or on the screen; sends WM_MOVE where it is a new one.
    virtual void OnMove(HWND window, POINT position) = 0;
    /// The user asked to close the window; posts WM_CLOSE.
    virtual void OnClose(HWND window) = 0;
    /// Some of the window's picture is lost; the window is painted again, completely.
    virtual void OnExpose(HWND window) = 0;
    /// Posts the mouse message to the window. Events outside its client area are dropped: there is no
    /// capture.
    virtual void OnMouse(HWND window, const MouseEvent& event) = 0;
    /// Posts WM_KEYDOWN, WM_KEYUP or WM_CHAR to the window that has the focus, to `window` where none has. A
    /// backend reports WM_CHAR itself, right after its WM_KEYDOWN, because it alone knows the keyboard's
    /// layout.
    virtual void OnKey(HWND window, UINT message, WPARAM code) = 0;
    /// The system moved the keyboard focus to this window, or away from it and its children.
    virtual void OnFocus(HWND window, bool gained) = 0;
    /// The native window is gone by another's doing; the window is destroyed, with its children.
    virtual void OnDestroyed(HWND window) = 0;
};

class KARV_PLATFORM_API Backend
{
  public:
    Backend() = default;
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;
    /// The layer has destroyed every window and context before.
    virtual ~Backend();

    /// "headless", for example; the same for the backend's whole life.
    [[nodiscard]] virtual std::string Name() const = 0;

    /// Makes the window, hidden. False refuses it, and the creation fails.
    virtual bool CreateNativeWindow(HWND window, const NativeWindow& description) = 0;
    /// Takes a window of another toolkit, by the id that its window system gave it, as a parent for windows
    /// of the layer, and watches it from now on. It stays the other toolkit's: no call below shows, moves,
    /// titles or ends it, and `DestroyNativeWindow` only stops the watching. None refuses it, as backends
    /// without native windows do.
    virtual std::optional<NativePlace> AdoptNativeWindow(HWND window, std::uintptr_t id);
    /// The window is gone, its children went before. Where a context is current on it, that context stays
    /// current and GL calls stay harmless, without visible effect, until another is made current or it is
    /// released.
    virtual void DestroyNativeWindow(HWND window) = 0;
    virtual void ShowNativeWindow(HWND window, bool visible) = 0;
    /// Moves and sizes the window. A context that is current on it stays so, its viewport untouched, and its
    /// next frame has the new size. The size may be 0x0; a surface has at least 1x1 pixels.
    virtual void MoveNativeWindow(HWND window, POINT position, SIZE size) = 0;
    virtual void SetNativeTitle(HWND window, const std::wstring& title) = 0;
    /// The focus was given to this window by the program, or taken from all windows where null.
    virtual void FocusNativeWindow(HWND window) = 0;

    /// The descriptor that is readable whenever `PumpEvents` has something to report, events included that
    /// the display's library has already read; -1 where none will ever come, or none any more. Owned by the
    /// backend. Asked anew before each wait.
    [[nodiscard]] virtual int EventDescriptor() const = 0;
    /// Reports every event that has arrived, without waiting. Entered again when a handler fetches messages.
    virtual void PumpEvents(EventSink& sink) = 0;

    /// All formats, always the same ones in the same order; the first has index 1 in the calls below.
    [[nodiscard]] virtual std::span<const PixelFormat> PixelFormats() const = 0;
    /// Gives the window its format; comes once for each window, unless it fails. False refuses it.
    virtual bool SetNativePixelFormat(HWND window, int format) = 0;

    /// Makes a rendering context of this format, current nowhere. The window has the format. False refuses
    /// it.
    virtual bool CreateContext(HGLRC context, HWND window, int format) = 0;
    /// The context is not current.
    virtual void DeleteContext(HGLRC context) = 0;
    /// Makes the context current on the window, both of one format. False refuses it; the context that was
    /// current then still is.
    virtual bool MakeCurrent(HWND window, HGLRC context) = 0;
    /// Makes no context current; comes only while one is.
    virtual void ReleaseCurrent() = 0;
    /// Shows the frame of a window that has a format. False where it cannot.
    virtual bool SwapBuffers(HWND window) = 0;

    /// The address of an OpenGL function of any version for the current context; null where there is none. By
    /// default none is found, and frames are then read as the driver reads them.
    [[nodiscard]] virtual GlFunction FindGlFunction(const char* name);

    /// The words that `wglGetExtensionsStringARB` answers; none makes it answer null. By default those that
    /// the layer implements, with WGL_ARB_multisample where a format has samples.
    [[nodiscard]] virtual std::optional<std::string> Extensions();
    /// Whether `wglGetProcAddress` finds this entry point, one of those that the layer implements. True by
    /// default.
    [[nodiscard]] virtual bool OffersEntryPoint(std::string_view name);
    /// The formats that satisfy a list of `wglChoosePixelFormatARB` attributes (pairs, without the final
    /// zeros), best first; none makes the call fail. By default the layer's own choice among `PixelFormats`.
    [[nodiscard]] virtual std::optional<std::vector<int>> MatchFormats(std::span<const int> attributes);
};

} // namespace winsys
