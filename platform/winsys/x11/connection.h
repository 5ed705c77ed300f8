// A connection to an X server that cannot end the process: errors that the server reports become faults of
// the tools library, and a broken connection is only marked as lost. Independent of windows.
//
// Handlers for X errors are process-wide; errors of other connections go to the handlers that were installed
// before.
#pragma once

#include <string>

#include <X11/Xlib.h>

namespace winsys::x11
{

class ErrorTrap;

class Connection
{
  public:
    /// Connects to the display of this name; if it is empty, to the one that the variable DISPLAY names.
    /// Throws std::runtime_error if no server answers.
    explicit Connection(const std::string& name);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    /// Closes the connection. A lost one is left as it is: closing would be a call on it.
    ~Connection();

    /// Whether calls may be made. On a lost connection no call is allowed, not even to close it.
    [[nodiscard]] bool IsAlive() const { return !lost_; }
    [[nodiscard]] Display* Get() const { return display_; }
    [[nodiscard]] int Screen() const { return DefaultScreen(display_); }
    [[nodiscard]] ::Window Root() const { return DefaultRootWindow(display_); }

    // Atoms of the protocol between windows and window managers.
    Atom wm_protocols = 0;
    Atom wm_delete_window = 0;
    Atom net_wm_name = 0;
    Atom net_wm_icon = 0;
    Atom utf8_string = 0;

  private:
    friend class ErrorTrap;

    static int HandleError(Display* display, XErrorEvent* error);
    static int HandleLoss(Display* display);
    void NoteError(const XErrorEvent& error);
    void NoteLoss();

    Display* display_;
    ErrorTrap* trap_ = nullptr;
    bool lost_ = false;
};

/// Catches the errors of requests made in its scope instead of reporting them. Traps may be nested; an error
/// belongs to the innermost trap that existed when its request was made.
class ErrorTrap
{
  public:
    explicit ErrorTrap(Connection& connection);
    ErrorTrap(const ErrorTrap&) = delete;
    ErrorTrap& operator=(const ErrorTrap&) = delete;
    /// Waits until the server has answered all requests, unless `Caught` has done so already.
    ~ErrorTrap();

    /// Waits until the server has handled all requests; returns whether one failed or the connection is lost.
    [[nodiscard]] bool Caught();

  private:
    friend class Connection;

    Connection& connection_;
    ErrorTrap* outer_;
    unsigned long first_request_;
    unsigned long answered_;
    bool caught_ = false;
};

} // namespace winsys::x11
