// The window base class, its message map, and the registration of window classes.
//
// A CWnd has at most one window. Messages of that window are looked up in the message maps of the object's
// class and its bases, most derived first. A message without an entry goes to the system's default procedure.
// Everything here is for the thread that owns the windows.
#pragma once

#include "platform/export.h"
#include "platform/framework/geometry.h"
#include "platform/winsys/winsys.h"

#include <span>

class CWnd;
struct WindowProcedure;

/// The window procedure of every framework window. A window without an object gets the system's default
/// handling.
KARV_PLATFORM_API LRESULT CALLBACK AfxWndProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

/// A device context of a window; only its handle is used.
class CDC
{
  public:
    HDC m_hDC = nullptr;
};

/// One row of a message map: the message, and a function that unpacks its parameters and calls the handler.
struct AFX_MSGMAP_ENTRY {
    UINT message;
    LRESULT (*dispatch)(CWnd& window, WPARAM wparam, LPARAM lparam);
};

/// The messages that a class handles, and the map of its base (null at the root).
struct AFX_MSGMAP {
    const AFX_MSGMAP* base;
    std::span<const AFX_MSGMAP_ENTRY> entries;
};

/// A window of the framework. Not copyable. The object owns its window: destroying the object destroys the
/// window, whose last messages then get the default handling. If the system destroys the window, with its
/// parent for example, the object stays and its `m_hWnd` is null. An object may be deleted inside its own
/// handler. An exception that leaves a handler propagates to the sender or dispatcher of the message.
class KARV_PLATFORM_API CWnd
{
  public:
    /// The window, null before creation and after destruction.
    HWND m_hWnd = nullptr;

    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    virtual ~CWnd();

    /// Returns the object of a window, or else a temporary one, which the framework owns and which lives
    /// until `DeleteTempMap`; null for null. A temporary object does not destroy its window at the end of its
    /// life; once the window no longer exists, its calls fail.
    static CWnd* FromHandle(HWND window);
    /// Returns the object of a window; null if there is none.
    static CWnd* FromHandlePermanent(HWND window);
    /// Deletes the temporary objects of `FromHandle`; their windows stay.
    static void DeleteTempMap();

    [[nodiscard]] HWND GetSafeHwnd() const noexcept { return m_hWnd; }

    /// Creates the window; the messages of its creation already reach this object. `class_name` must be
    /// registered with `AfxRegisterWndClass`. Returns FALSE, without a window, if the system or a handler
    /// refuses it; FALSE, without a change, if the object already has a window. A handler may delete the
    /// object during the call.
    BOOL CreateEx(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style, const RECT& rect,
                  CWnd* parent, UINT id, LPVOID param = nullptr);
    /// The same with separate position and size, so that the system can choose the position
    /// (`CW_USEDEFAULT`).
    BOOL CreateEx(DWORD ex_style, LPCWSTR class_name, LPCWSTR window_name, DWORD style, int x, int y,
                  int width, int height, HWND parent, HMENU id, LPVOID param = nullptr);
    /// Destroys the window; FALSE if there is none. The object stays, unless its class deletes it in
    /// `PostNcDestroy`.
    virtual BOOL DestroyWindow();

    BOOL ShowWindow(int command) { return ::ShowWindow(m_hWnd, command); }
    BOOL MoveWindow(const RECT& rect, BOOL repaint = TRUE);
    BOOL GetClientRect(RECT* rect) const { return ::GetClientRect(m_hWnd, rect); }
    [[nodiscard]] CWnd* GetParent() const { return FromHandle(::GetParent(m_hWnd)); }
    /// Gives this window the keyboard focus; returns the window that had it, null for none. Without a window
    /// nothing changes: the system would take the focus from every window.
    CWnd* SetFocus();

    /// Passes a message, before it is translated and dispatched, to the objects of its window and of that
    /// window's parents, innermost first, up to and including `stop` (all of them for null). TRUE if one of
    /// them consumed it: it must then be neither translated nor dispatched.
    static BOOL WalkPreTranslateTree(HWND stop, MSG* message);
    /// Called with a message before it is dispatched, for example to handle keys for a window around the
    /// focused one. TRUE consumes the message. The default does nothing.
    virtual BOOL PreTranslateMessage(MSG* message);

    /// Looks the message up in the message map and passes it to its handler or to `DefWindowProc`.
    virtual LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam);

  protected:
    [[nodiscard]] virtual const AFX_MSGMAP* GetMessageMap() const;
    [[nodiscard]] static const AFX_MSGMAP* GetThisMessageMap();
    /// The system's default handling of a message; 0 without a window.
    virtual LRESULT DefWindowProc(UINT message, WPARAM wparam, LPARAM lparam);
    /// Called last, when the window no longer exists, also after a refused creation; `m_hWnd` is already
    /// null. A class may delete its object here. Not called for a window that the destructor destroys.
    virtual void PostNcDestroy();

    /// The system's default handling of the message that is being dispatched to this window, with its own
    /// parameters; of the innermost one if several are nested; 0 outside a message.
    LRESULT Default();

    // Default handlers, called by handlers of derived classes.
    int OnCreate(CREATESTRUCT* create);
    void OnSize(UINT type, int cx, int cy);
    void OnPaint();
    void OnTimer(UINT_PTR id);

  private:
    friend struct WindowProcedure;
};

/// Registers a window class with these styles, cursor, brush and icon, unless an equal one is registered.
/// Returns its name, which stays valid for the life of the process; null if the system refuses. A class of
/// the same name with another procedure than `AfxWndProc` is left alone, and the new one gets another name.
///
/// When Windows unloads this library, the classes are unregistered. Windows that still exist get the system's
/// default procedure and keep their class, which gets it too. Elsewhere the library is never unloaded.
KARV_PLATFORM_API LPCWSTR AfxRegisterWndClass(UINT style, HCURSOR cursor = nullptr, HBRUSH brush = nullptr,
                                              HICON icon = nullptr);

namespace message_map_detail
{

template <typename Class, typename Result, typename... Arguments>
Class& Target(CWnd& window, Result (Class::*)(Arguments...))
{
    return static_cast<Class&>(window);
}

} // namespace message_map_detail

// Rows of a message map. `Handler` is a pointer to a member function of the class that the map belongs to.

/// WM_CREATE to `int OnCreate(CREATESTRUCT*)`.
template <auto Handler>
constexpr AFX_MSGMAP_ENTRY OnWmCreate()
{
    return {WM_CREATE, [](CWnd& window, WPARAM, LPARAM lparam) -> LRESULT {
                auto& target = message_map_detail::Target(window, Handler);
                return (target.*Handler)(reinterpret_cast<CREATESTRUCT*>(lparam));
            }};
}

/// WM_SIZE to `void OnSize(UINT type, int cx, int cy)`.
template <auto Handler>
constexpr AFX_MSGMAP_ENTRY OnWmSize()
{
    return {WM_SIZE, [](CWnd& window, WPARAM wparam, LPARAM lparam) -> LRESULT {
                auto& target = message_map_detail::Target(window, Handler);
                const auto size = static_cast<DWORD_PTR>(lparam);
                (target.*Handler)(static_cast<UINT>(wparam), LOWORD(size), HIWORD(size));
                return 0;
            }};
}

/// WM_CLOSE to `void OnClose()`, instead of the destruction by default.
template <auto Handler>
constexpr AFX_MSGMAP_ENTRY OnWmClose()
{
    return {WM_CLOSE, [](CWnd& window, WPARAM, LPARAM) -> LRESULT {
                auto& target = message_map_detail::Target(window, Handler);
                (target.*Handler)();
                return 0;
            }};
}

/// WM_TIMER to `void OnTimer(UINT_PTR id)`.
template <auto Handler>
constexpr AFX_MSGMAP_ENTRY OnWmTimer()
{
    return {WM_TIMER, [](CWnd& window, WPARAM wparam, LPARAM) -> LRESULT {
                auto& target = message_map_detail::Target(window, Handler);
                (target.*Handler)(static_cast<UINT_PTR>(wparam));
                return 0;
            }};
}

/// WM_MOUSEMOVE to `void OnMouseMove(UINT keys, CPoint point)`; the point in client pixels.
template <auto Handler>
constexpr AFX_MSGMAP_ENTRY OnWmMouseMove()
{
    return {WM_MOUSEMOVE, [](CWnd& window, WPARAM wparam, LPARAM lparam) -> LRESULT {
                auto& target = message_map_detail::Target(window, Handler);
                (target.*Handler)(static_cast<UINT>(wparam),
                                  CPoint(GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)));
                return 0;
            }};
}

/// WM_MOUSEWHEEL to `BOOL OnMouseWheel(UINT keys, short delta, CPoint point)`; the point in screen pixels.
template <auto Handler>
constexpr AFX_MSGMAP_ENTRY OnWmMouseWheel()
{
    return {WM_MOUSEWHEEL, [](CWnd& window, WPARAM wparam, LPARAM lparam) -> LRESULT {
                auto& target = message_map_detail::Target(window, Handler);
                return (target.*Handler)(LOWORD(wparam), GET_WHEEL_DELTA_WPARAM(wparam),
                                         CPoint(GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)));
            }};
}

/// WM_PAINT to `void OnPaint()`.
template <auto Handler>
constexpr AFX_MSGMAP_ENTRY OnWmPaint()
{
    return {WM_PAINT, [](CWnd& window, WPARAM, LPARAM) -> LRESULT {
                auto& target = message_map_detail::Target(window, Handler);
                (target.*Handler)();
                return 0;
            }};
}
