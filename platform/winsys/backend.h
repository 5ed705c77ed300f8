// The interface to a window system that the window layer runs on: native windows, native events, pixel
// formats, contexts and swaps. Everything else (the window tree, classes, messages, timers, device contexts)
// is implemented once, in core/, above this interface.
//
// A backend never calls a window procedure and keeps no copy of the layer's state. It knows windows and
// contexts by the handles that the layer assigns. Every call comes from the thread that owns the windows,
// with handles that are alive. Failures are returned, never thrown.
#pragma once

#include "platform/export.h"
#include "platform/winsys/gl_functions.h"
#include "platform/winsys/pixel_format.h"
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

/// The icon of windows: pixels of 0xAARRGGBB, row by row from the top; colours are not multiplied by the
/// opacity.
struct IconImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

/// The description of a window to be created. Windows have no frame of their own, so position and size are
/// those of the client area, in pixels.
struct NativeWindow {
    /// The parent of a child window, null for a top-level one.
    HWND parent = nullptr;
    std::wstring title;
    /// Relative to the parent's client area; on the screen for a top-level window.
    POINT position{};
    SIZE size{};
    /// The system chooses the place of this top-level window; `position` holds until the system reports it.
    bool is_placed_by_system = false;
    /// The icon of this top-level window, valid during the call; null for none.
    const IconImage* icon = nullptr;
};

/// The place of a native window: on the screen for a top-level or adopted one, otherwise in its parent.
struct NativePlace {
    POINT position{};
    SIZE size{};
};

/// A button press or release, a movement or a wheel turn over one window.
struct MouseEvent {
    /// WM_MOUSEMOVE, WM_LBUTTONDOWN and so on, or WM_MOUSEWHEEL.
    UINT message = WM_MOUSEMOVE;
    /// Buttons and modifiers that are down after the event, as MK_ flags.
    WPARAM keys = 0;
    /// In pixels from the window's client origin.
    POINT position{};
    /// For WM_MOUSEWHEEL: a multiple of 120, positive away from the user.
    int wheel_delta = 0;
};

/// Receives what happened to a backend's windows. Only called from inside `Backend::PumpEvents`. Events for
/// handles that no longer exist are ignored, so a backend need not filter out late ones. Message handlers run
/// within these calls and may destroy any window.
class KARV_PLATFORM_API EventSink
{
  public:
    virtual ~EventSink();

    /// The user or the window manager gave the window this client size. Sends WM_SIZE if it is new.
    virtual void OnResize(HWND window, SIZE size) = 0;
    /// The window is at this position in its parent or on the screen. Sends WM_MOVE if it is new.
    virtual void OnMove(HWND window, POINT position) = 0;
    /// The user asked to close the window. Posts WM_CLOSE.
    virtual void OnClose(HWND window) = 0;
    /// Part of the window's picture is lost. The whole window is painted again.
    virtual void OnExpose(HWND window) = 0;
    /// Posts the mouse message to the window. Events outside its client area are dropped: there is no
    /// capture.
    virtual void OnMouse(HWND window, const MouseEvent& event) = 0;
    /// Posts WM_KEYDOWN, WM_KEYUP or WM_CHAR to the window that has the focus, or to `window` if none has.
    /// The backend reports WM_CHAR itself, right after its WM_KEYDOWN: it alone knows the keyboard layout.
    virtual void OnKey(HWND window, UINT message, WPARAM code) = 0;
    /// The system moved the keyboard focus to this window, or away from it and its children.
    virtual void OnFocus(HWND window, bool gained) = 0;
    /// Another program destroyed the native window. The window is destroyed with its children.
    virtual void OnDestroyed(HWND window) = 0;
};

class KARV_PLATFORM_API Backend
{
  public:
    Backend() = default;
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;
    /// The layer destroys every window and context first.
    virtual ~Backend();

    /// "headless", for example; constant.
    [[nodiscard]] virtual std::string Name() const = 0;

    /// Creates the window, hidden. False fails the creation.
    virtual bool CreateNativeWindow(HWND window, const NativeWindow& description) = 0;
    /// Makes a window of another toolkit usable as a parent and starts watching it; `id` is the id that its
    /// window system assigned. The other toolkit keeps it: no call below shows, moves, titles or destroys it,
    /// and `DestroyNativeWindow` only stops the watching. None fails the adoption; that is the default, for
    /// backends without native windows.
    virtual std::optional<NativePlace> AdoptNativeWindow(HWND window, std::uintptr_t id);
    /// Destroys the window; its children are destroyed before. A context that is current on it stays current:
    /// GL calls stay harmless, without visible effect, until another context is made current or this one is
    /// released.
    virtual void DestroyNativeWindow(HWND window) = 0;
    virtual void ShowNativeWindow(HWND window, bool visible) = 0;
    /// Moves and resizes the window. A context that is current on it stays current with its viewport
    /// unchanged, and its next frame has the new size. The size may be 0x0; a surface has at least 1x1
    /// pixels.
    virtual void MoveNativeWindow(HWND window, POINT position, SIZE size) = 0;
    virtual void SetNativeTitle(HWND window, const std::wstring& title) = 0;
    /// The program gave the focus to this window, or took it from all windows if null.
    virtual void FocusNativeWindow(HWND window) = 0;

    /// A descriptor that is readable whenever `PumpEvents` has something to report, including events that the
    /// display's library has already read; -1 if no events come, or no longer. Owned by the backend. Asked
    /// for again before each wait.
    [[nodiscard]] virtual int EventDescriptor() const = 0;
    /// Reports every event that has arrived, without waiting. Called again recursively when a handler fetches
    /// messages.
    virtual void PumpEvents(EventSink& sink) = 0;

    /// All formats, always the same ones in the same order. The first one has index 1 in the calls below.
    [[nodiscard]] virtual std::span<const PixelFormat> PixelFormats() const = 0;
    /// Sets the window's format; called once per window, unless it fails. False on failure.
    virtual bool SetNativePixelFormat(HWND window, int format) = 0;

    /// Creates a rendering context of this format, which is not current. The window has the format. False on
    /// failure.
    virtual bool CreateContext(HGLRC context, HWND window, int format) = 0;
    /// Deletes a context that is not current.
    virtual void DeleteContext(HGLRC context) = 0;
    /// Makes the context current on the window; both have the same format. On failure it returns false and
    /// the context that was current stays current.
    virtual bool MakeCurrent(HWND window, HGLRC context) = 0;
    /// Makes no context current; only called while one is.
    virtual void ReleaseCurrent() = 0;
    /// Shows the frame of a window that has a format. False on failure.
    virtual bool SwapBuffers(HWND window) = 0;

    /// The address of an OpenGL function of any version for the current context; null if there is none. By
    /// default always null; frames are then read without resolving.
    [[nodiscard]] virtual GlFunction FindGlFunction(const char* name);

    /// The text that `wglGetExtensionsStringARB` answers; none makes it answer null. By default the names of
    /// the extensions that the layer implements, with WGL_ARB_multisample if a format has samples.
    [[nodiscard]] virtual std::optional<std::string> Extensions();
    /// Whether `wglGetProcAddress` finds this entry point, one of those that the layer implements. True by
    /// default.
    [[nodiscard]] virtual bool OffersEntryPoint(std::string_view name);
    /// The formats that satisfy a list of `wglChoosePixelFormatARB` attributes (pairs, without the final
    /// zeros), best first; none makes the call fail. By default the layer chooses among `PixelFormats`.
    [[nodiscard]] virtual std::optional<std::vector<int>> MatchFormats(std::span<const int> attributes);
};

} // namespace winsys
