#include "platform/winsys/x11/connection.h"

#include "platform/tools/trace.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace winsys::x11
{
namespace
{

constexpr const wchar_t* kSourceFile = L"platform/winsys/x11/connection.cpp";

/// Process-wide state, because Xlib's handlers are process-wide. Never destroyed: connections of other
/// libraries may fail until the very end of the process.
struct Handlers {
    std::vector<Connection*> connections;
    XErrorHandler previous_error = nullptr;
    XIOErrorHandler previous_loss = nullptr;
    /// Stops recursion: another library may have installed its handler over ours and ours again over that, so
    /// each would pass errors to the other.
    bool is_passing_on = false;
    /// Displays of lost connections. No call is allowed on them, so they are never closed. Kept here to
    /// remain reachable for the leak checker.
    std::vector<Display*> lost_displays;
};

Handlers& GetHandlers()
{
    static Handlers& handlers = *new Handlers;
    return handlers;
}

Connection* FindConnection(const Display* display)
{
    const auto& connections = GetHandlers().connections;
    const auto found = std::ranges::find(connections, display, &Connection::Get);
    return found != connections.end() ? *found : nullptr;
}

} // namespace

Connection::Connection(const std::string& name)
    : display_(XOpenDisplay(name.empty() ? nullptr : name.c_str()))
{
    if (display_ == nullptr) {
        throw std::runtime_error("no X server answers on display '" +
                                 std::string(XDisplayName(name.c_str())) + "'");
    }
    Handlers& handlers = GetHandlers();
    handlers.connections.push_back(this);
    // Another library may have installed its handlers meanwhile. Ours are installed over them and pass errors
    // of other connections to them.
    if (const XErrorHandler before = XSetErrorHandler(&HandleError); before != &HandleError)
        handlers.previous_error = before;
    if (const XIOErrorHandler before = XSetIOErrorHandler(&HandleLoss); before != &HandleLoss)
        handlers.previous_loss = before;
    // Without an exit handler Xlib ends the process after the handler.
    XSetIOErrorExitHandler(
        display_, [](Display*, void* connection) { static_cast<Connection*>(connection)->NoteLoss(); }, this);
    wm_protocols = XInternAtom(display_, "WM_PROTOCOLS", False);
    wm_delete_window = XInternAtom(display_, "WM_DELETE_WINDOW", False);
    net_wm_name = XInternAtom(display_, "_NET_WM_NAME", False);
    net_wm_icon = XInternAtom(display_, "_NET_WM_ICON", False);
    utf8_string = XInternAtom(display_, "UTF8_STRING", False);
}

Connection::~Connection()
{
    if (lost_)
        GetHandlers().lost_displays.push_back(display_);
    else
        XCloseDisplay(display_);
    std::erase(GetHandlers().connections, this);
}

int Connection::HandleError(Display* display, XErrorEvent* error)
{
    if (Connection* connection = FindConnection(display); connection != nullptr) {
        connection->NoteError(*error);
        return 0;
    }
    Handlers& handlers = GetHandlers();
    if (handlers.is_passing_on || handlers.previous_error == nullptr)
        return 0;
    handlers.is_passing_on = true;
    const int answer = handlers.previous_error(display, error);
    handlers.is_passing_on = false;
    return answer;
}

int Connection::HandleLoss(Display* display)
{
    // For our own connections the exit handler, which is called next, records the loss.
    const XIOErrorHandler previous = GetHandlers().previous_loss;
    return FindConnection(display) == nullptr && previous != nullptr ? previous(display) : 0;
}

void Connection::NoteError(const XErrorEvent& error)
{
    for (ErrorTrap* trap = trap_; trap != nullptr; trap = trap->outer_) {
        if (error.serial >= trap->first_request_) {
            trap->caught_ = true;
            return;
        }
    }
    const CTqCrashHandler report(kSourceFile, __LINE__);
}

void Connection::NoteLoss()
{
    if (!lost_) {
        lost_ = true;
        const CTqCrashHandler report(kSourceFile, __LINE__);
    }
}

ErrorTrap::ErrorTrap(Connection& connection)
    : connection_(connection), outer_(connection.trap_), first_request_(NextRequest(connection.Get())),
      answered_(first_request_)
{
    connection_.trap_ = this;
}

ErrorTrap::~ErrorTrap()
{
    if (connection_.IsAlive() && NextRequest(connection_.Get()) != answered_)
        XSync(connection_.Get(), False);
    connection_.trap_ = outer_;
}

bool ErrorTrap::Caught()
{
    if (connection_.IsAlive()) {
        XSync(connection_.Get(), False);
        answered_ = NextRequest(connection_.Get());
    }
    return caught_ || !connection_.IsAlive();
}

} // namespace winsys::x11
