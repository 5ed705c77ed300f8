// One connection to an X server that cannot end the process: errors that the server reports become faults of
// the tools library, and a connection that breaks is only marked as lost. It knows nothing of windows.
//
// Handlers for X errors are process-wide: the ones that stood before stay in charge of other connections.
#pragma once

#include <string>

#include <X11/Xlib.h>

namespace winsys::x11
{

class ErrorTrap;

class Connection
{
  public:
    /// Connects to the display of this name, to the one that the variable DISPLAY names where it is empty.
    /// Throws std::runtime_error where no server answers.
    explicit Connection(const std::string& name);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    /// Closes the connection; a lost one is left as it is, because closing would be a further call.
    ~Connection();

    /// Whether calls may still be made: once the connection is lost, none may, not even to close it.
    [[nodiscard]] bool IsAlive() const { return !lost_; }
    [[nodiscard]] Display* Get() const { return display_; }
    [[nodiscard]] int Screen() const { return DefaultScreen(display_); }
    [[nodiscard]] ::Window Root() const { return DefaultRootWindow(display_); }

    // Names that windows and window managers talk with.
    Atom wm_protocols = 0;
    Atom wm_delete_window = 0;
    Atom net_wm_name = 0;
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

/// Keeps errors of the requests made in its scope from being reported: they are expected, and asked for here.
/// Traps may be nested; an error belongs to the innermost one that was there when its request was made.
class ErrorTrap
{
  public:
    explicit ErrorTrap(Connection& connection);
    ErrorTrap(const ErrorTrap&) = delete;
    ErrorTrap& operator=(const ErrorTrap&) = delete;
    /// Waits for the server to have answered everything, unless `Caught` did.
    ~ErrorTrap();

    /// Waits for the server to have handled every request; whether one failed or the connection is lost.
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
