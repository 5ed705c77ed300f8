// Reports events of the X server to the layer. Message handlers run within the sink's calls and may destroy
// any window, so records are looked up again after each call.
#include "platform/winsys/x11/keyboard.h"
#include "platform/winsys/x11/x11_backend.h"

#include <algorithm>
#include <ranges>
#include <vector>

#include <X11/Xutil.h>

namespace winsys::x11
{
namespace
{

/// False for focus changes caused by a grab of the window manager or by the pointer's position: they do not
/// affect the program.
bool IsRealFocusChange(const XFocusChangeEvent& event)
{
    const bool by_grab = event.mode == NotifyGrab || event.mode == NotifyUngrab;
    const bool by_pointer = event.detail == NotifyPointer || event.detail == NotifyPointerRoot ||
                            event.detail == NotifyDetailNone;
    return !by_grab && !by_pointer && event.detail != NotifyInferior;
}

} // namespace

void X11Backend::ReadArrivedEvents() const
{
    // XPending also flushes the requests.
    while (connection_.IsAlive() && XPending(connection_.Get()) > 0) {
        XEvent event;
        XNextEvent(connection_.Get(), &event);
        if (IsOfInterest(event))
            arrived_.push_back(event);
    }
}

bool X11Backend::IsOfInterest(const XEvent& event) const
{
    if (event.type == MappingNotify)
        return true;
    const NativeRecord* record = windows_.FindById(event.xany.window);
    if (record == nullptr || record->is_gone)
        return false;
    switch (event.type) {
    case ConfigureNotify:
        // Children are only moved by the program itself.
        return record->is_adopted || record->IsTopLevel();
    case FocusIn:
    case FocusOut:
        return IsRealFocusChange(event.xfocus);
    case MapNotify:
    case UnmapNotify:
    case GravityNotify:
    case CirculateNotify:
        return false;
    default:
        return true;
    }
}

bool X11Backend::ExtractEvent(const std::function<bool(const XEvent&)>& condition, XEvent& taken)
{
    const auto found = std::ranges::find_if(arrived_, condition);
    if (found == arrived_.end())
        return false;
    taken = *found;
    arrived_.erase(found);
    return true;
}

void X11Backend::Report(XEvent& event, EventSink& sink)
{
    switch (event.type) {
    case ConfigureNotify:
        ReportConfigure(event.xconfigure, sink);
        break;
    case ReparentNotify:
        if (NativeRecord* record = windows_.FindById(event.xreparent.window); record != nullptr)
            record->is_framed = event.xreparent.parent != connection_.Root();
        break;
    case DestroyNotify:
        ReportDestroyed(event.xdestroywindow, sink);
        break;
    case Expose:
        if (const NativeRecord* record = windows_.FindById(event.xexpose.window);
            record != nullptr && event.xexpose.count == 0) {
            sink.OnExpose(record->handle);
        }
        break;
    case ButtonPress:
    case ButtonRelease:
        ReportButton(event.xbutton, sink);
        break;
    case MotionNotify:
        ReportMotion(event.xmotion, sink);
        break;
    case EnterNotify:
        pointer_.UpdateButtons(event.xcrossing.state);
        break;
    case KeyPress:
    case KeyRelease:
        ReportKey(event.xkey, sink);
        break;
    case FocusIn:
    case FocusOut:
        ReportFocus(event.xfocus, sink);
        break;
    case ClientMessage:
        ReportMessage(event.xclient, sink);
        break;
    case MappingNotify:
        XRefreshKeyboardMapping(&event.xmapping);
        break;
    default:
        break;
    }
}

void X11Backend::ReportConfigure(XConfigureEvent event, EventSink& sink)
{
    // While the user drags an edge, only the latest size is worth a frame.
    const auto is_later = [window = event.window](const XEvent& other) {
        return other.type == ConfigureNotify && other.xconfigure.window == window;
    };
    XEvent later;
    while (ExtractEvent(is_later, later))
        event = later.xconfigure;
    NativeRecord* record = windows_.FindById(event.window);
    if (record == nullptr || record->surface.window == event.window || record->is_gone)
        return;
    if (record->is_adopted) {
        if (const auto place = QueryPlace(record->outer))
            ReportPlace(record->handle, *place, sink);
        return;
    }
    // An older report would undo the program's own last placement.
    if (event.serial < record->last_placement || !record->is_mapped)
        return;
    NativePlace place{{event.x, event.y}, {event.width, event.height}};
    // Inside a frame the coordinates are relative to the frame, unless the event was sent by the window
    // manager, with coordinates on the screen.
    if (record->is_framed && event.send_event == False) {
        if (const auto queried = QueryPlace(record->outer))
            place.position = queried->position;
    }
    ReportPlace(record->handle, place, sink);
}

void X11Backend::ReportPlace(HWND window, const NativePlace& place, EventSink& sink)
{
    NativeRecord* record = windows_.Find(window);
    record->position = place.position;
    const bool sized = place.size.cx != record->size.cx || place.size.cy != record->size.cy;
    record->size = place.size;
    if (sized && record->surface.format != 0) {
        // Resized before the layer is told, so that the frame it then draws has the new size.
        contexts_.ResizeSurface(record->surface, place.size);
    }
    sink.OnMove(window, place.position);
    if (sized && windows_.Find(window) != nullptr)
        sink.OnResize(window, place.size);
}

void X11Backend::ReportDestroyed(const XDestroyWindowEvent& event, EventSink& sink)
{
    // The server destroys children before their parents and reports all at once; programs expect the parent
    // first.
    std::vector<HWND> gone;
    const auto note = [&](::Window id) {
        if (NativeRecord* record = windows_.FindById(id); record != nullptr && record->outer == id) {
            record->is_gone = true;
            gone.push_back(record->handle);
        }
    };
    note(event.window);
    XEvent later;
    while (ExtractEvent([](const XEvent& other) { return other.type == DestroyNotify; }, later))
        note(later.xdestroywindow.window);
    for (const HWND window : std::views::reverse(gone))
        sink.OnDestroyed(window);
}

void X11Backend::ReportButton(const XButtonEvent& event, EventSink& sink)
{
    if (event.type == ButtonPress) {
        // On Windows the mouse can move on to other windows while a button is down.
        // NOTE: with CurrentTime, because the server may date the grab a moment after the event's time and
        // would then refuse.
        XUngrabPointer(connection_.Get(), CurrentTime);
    }
    if (const NativeRecord* record = windows_.FindById(event.window); record != nullptr) {
        ReportMouse(record->handle, pointer_.OnButton(record->handle, event), {event.x_root, event.y_root},
                    sink);
    }
}

void X11Backend::ReportMotion(const XMotionEvent& event, EventSink& sink)
{
    if (const NativeRecord* record = windows_.FindById(event.window); record != nullptr) {
        ReportMouse(record->handle, pointer_.OnMotion(record->handle, event), {event.x_root, event.y_root},
                    sink);
    }
}

void X11Backend::ReportMouse(HWND window, const std::optional<MouseEvent>& mouse, POINT screen_point,
                             EventSink& sink)
{
    if (!mouse)
        return;
    NativeRecord& top = windows_.TopOf(*windows_.Find(window));
    if (top.is_adopted) {
        // There is no event if another toolkit's window moves along with a window around it; the pointer's
        // position tells.
        const POINT offset = windows_.OffsetInTop(*windows_.Find(window));
        top.position = {screen_point.x - mouse->position.x - offset.x,
                        screen_point.y - mouse->position.y - offset.y};
        sink.OnMove(top.handle, top.position);
    }
    sink.OnMouse(window, *mouse);
}

void X11Backend::ReportKey(XKeyEvent& event, EventSink& sink)
{
    const NativeRecord* record = windows_.FindById(event.window);
    if (record == nullptr)
        return;
    const HWND window = record->handle;
    const KeyStroke stroke = ReadKey(event);
    const bool is_press = event.type == KeyPress;
    if (stroke.code != 0)
        sink.OnKey(window, is_press ? WM_KEYDOWN : WM_KEYUP, stroke.code);
    if (is_press && stroke.character != 0)
        sink.OnKey(window, WM_CHAR, static_cast<WPARAM>(stroke.character));
}

void X11Backend::ReportFocus(const XFocusChangeEvent& event, EventSink& sink)
{
    const NativeRecord* record = windows_.FindById(event.window);
    if (record == nullptr)
        return;
    const bool gained = event.type == FocusIn;
    const HWND window = record->handle;
    if (gained)
        focused_ = window;
    else if (focused_ == window)
        focused_ = nullptr;
    if (!record->IsTopLevel() && !record->is_gone)
        SelectEvents(*record, gained);
    sink.OnFocus(window, gained);
}

void X11Backend::ReportMessage(const XClientMessageEvent& event, EventSink& sink)
{
    const NativeRecord* record = windows_.FindById(event.window);
    if (record != nullptr && event.message_type == connection_.wm_protocols && event.format == 32 &&
        static_cast<Atom>(event.data.l[0]) == connection_.wm_delete_window) {
        sink.OnClose(record->handle);
    }
}

} // namespace winsys::x11
