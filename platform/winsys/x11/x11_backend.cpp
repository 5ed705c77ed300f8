#include "platform/winsys/x11/x11_backend.h"

#include "platform/tools/utf8.h"
#include "platform/winsys/backends.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <memory>
#include <vector>

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace winsys::x11
{
namespace
{

/// The limits of X windows: sides of 1 to 32767 pixels, positions of 16 bits with a sign.
constexpr LONG kMaxSide = 32767;
constexpr LONG kMaxCoordinate = 32767;

unsigned ClampSide(LONG length)
{
    return static_cast<unsigned>(std::clamp<LONG>(length, 1, kMaxSide));
}

int ClampCoordinate(LONG place)
{
    return std::clamp<LONG>(place, -kMaxCoordinate, kMaxCoordinate);
}

bool IsEmpty(SIZE size)
{
    return size.cx <= 0 || size.cy <= 0;
}

} // namespace

X11Backend::X11Backend(const std::string& display)
    : connection_(display), contexts_(connection_), ready_descriptor_(eventfd(1, EFD_CLOEXEC | EFD_NONBLOCK))
{
    // A held key repeats its press without releases, as on Windows.
    XkbSetDetectableAutoRepeat(connection_.Get(), True, nullptr);
}

X11Backend::~X11Backend()
{
    close(ready_descriptor_);
}

std::string X11Backend::Name() const
{
    return "x11";
}

bool X11Backend::IsUsable()
{
    if (!connection_.IsAlive())
        contexts_.Abandon();
    return connection_.IsAlive();
}

NativeRecord* X11Backend::FindOurs(HWND window)
{
    NativeRecord* record = IsUsable() ? windows_.Find(window) : nullptr;
    return record == nullptr || record->is_adopted || record->is_gone ? nullptr : record;
}

bool X11Backend::CreateNativeWindow(HWND window, const NativeWindow& description)
{
    const NativeRecord* parent = windows_.Find(description.parent);
    if (!IsUsable() || (description.parent != nullptr && (parent == nullptr || parent->is_gone)))
        return false;
    NativeRecord record;
    record.handle = window;
    record.parent = description.parent;
    record.position = description.position;
    record.size = description.size;
    Display* const display = connection_.Get();
    const int screen = connection_.Screen();
    XSetWindowAttributes attributes{};
    // Not the parent's visual: a window of another toolkit may have one with an alpha channel.
    attributes.colormap = DefaultColormap(display, screen);
    attributes.background_pixel = BlackPixel(display, screen);
    attributes.bit_gravity = NorthWestGravity;
    ErrorTrap trap(connection_);
    record.outer = XCreateWindow(display, parent != nullptr ? parent->outer : connection_.Root(),
                                 ClampCoordinate(record.position.x), ClampCoordinate(record.position.y),
                                 ClampSide(record.size.cx), ClampSide(record.size.cy), 0,
                                 DefaultDepth(display, screen), InputOutput, DefaultVisual(display, screen),
                                 CWBackPixel | CWBorderPixel | CWBitGravity | CWColormap, &attributes);
    SelectEvents(record, record.IsTopLevel());
    // The parent may belong to another toolkit and be destroyed.
    if (trap.Caught())
        return false;
    windows_.Add(record);
    if (record.IsTopLevel()) {
        AnnounceTopLevel(record, description.is_placed_by_system);
        SetNativeTitle(window, description.title);
        if (description.icon != nullptr)
            SetNativeIcon(record, *description.icon);
    }
    return true;
}

std::optional<NativePlace> X11Backend::AdoptNativeWindow(HWND window, std::uintptr_t id)
{
    if (!IsUsable() || id == 0)
        return std::nullopt;
    ErrorTrap trap(connection_);
    // Each connection has its own event mask on a window; that of the owner is unaffected. Selected before
    // the query, so no change after the answer is missed.
    XSelectInput(connection_.Get(), id, StructureNotifyMask);
    const auto place = QueryPlace(id);
    if (place) {
        NativeRecord record;
        record.handle = window;
        record.outer = id;
        record.position = place->position;
        record.size = place->size;
        record.is_adopted = true;
        windows_.Add(record);
    }
    return place;
}

void X11Backend::DestroyNativeWindow(HWND window)
{
    const NativeRecord* record = windows_.Find(window);
    if (IsUsable() && record != nullptr) {
        if (record->surface.format != 0)
            contexts_.RemoveSurface(record->surface, record->is_gone);
        ErrorTrap trap(connection_);
        if (record->is_adopted)
            XSelectInput(connection_.Get(), record->outer, NoEventMask);
        else if (!record->is_gone)
            XDestroyWindow(connection_.Get(), record->outer);
    }
    pointer_.ForgetWindow(window);
    focused_ = focused_ == window ? nullptr : focused_;
    windows_.Remove(window);
}

void X11Backend::ShowNativeWindow(HWND window, bool visible)
{
    if (NativeRecord* record = FindOurs(window); record != nullptr) {
        record->is_shown = visible;
        UpdateMapping(*record);
        // As on Windows, the window is shown when the call returns, unless a window manager is involved. The
        // layer paints what it shows; a reported exposure would paint it twice.
        XSync(connection_.Get(), False);
        ReadArrivedEvents();
        const auto is_exposure = [&](const XEvent& event) {
            const NativeRecord* exposed = windows_.FindById(event.xany.window);
            return event.type == Expose && exposed != nullptr && windows_.IsWithin(*exposed, window);
        };
        XEvent exposure;
        while (ExtractEvent(is_exposure, exposure)) {
        }
    }
}

void X11Backend::MoveNativeWindow(HWND window, POINT position, SIZE size)
{
    if (NativeRecord* record = FindOurs(window); record != nullptr) {
        Place(*record, position, size);
        UpdateMapping(*record);
    }
}

void X11Backend::SetNativeTitle(HWND window, const std::wstring& title)
{
    const NativeRecord* record = FindOurs(window);
    if (record == nullptr || !record->IsTopLevel())
        return;
    const std::string text = Utf8FromWide(title);
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    XStoreName(connection_.Get(), record->outer, text.c_str());
    XChangeProperty(connection_.Get(), record->outer, connection_.net_wm_name, connection_.utf8_string, 8,
                    PropModeReplace, bytes, static_cast<int>(text.size()));
}

void X11Backend::FocusNativeWindow(HWND window)
{
    NativeRecord* record = FindOurs(window);
    // In a top-level window of the layer the server's focus stays on that window, and the layer distributes
    // the keys. Only a window inside another toolkit's window needs the server's focus itself. It may take it
    // from the same top-level window only, not from other programs.
    if (record == nullptr || window == focused_ || !windows_.TopOf(*record).is_adopted)
        return;
    ErrorTrap trap(connection_);
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(connection_.Get(), record->outer, &attributes) != 0 &&
        attributes.map_state == IsViewable && IsFocusInSameTopLevel(record->outer)) {
        SelectEvents(*record, true);
        XSetInputFocus(connection_.Get(), record->outer, RevertToParent, CurrentTime);
        if (trap.Caught())
            SelectEvents(*record, false);
        else
            focused_ = window;
    }
}

int X11Backend::EventDescriptor() const
{
    if (!connection_.IsAlive())
        return -1;
    // Events that Xlib has read along with a reply are no longer readable on the connection.
    ReadArrivedEvents();
    // If the connection was lost in that call, the next pump handles it.
    const bool is_ready = !arrived_.empty() || !connection_.IsAlive();
    return is_ready ? ready_descriptor_ : ConnectionNumber(connection_.Get());
}

void X11Backend::PumpEvents(EventSink& sink)
{
    ReadArrivedEvents();
    while (IsUsable() && !arrived_.empty()) {
        XEvent event = arrived_.front();
        arrived_.pop_front();
        Report(event, sink);
        ReadArrivedEvents();
    }
    IsUsable();
}

std::span<const PixelFormat> X11Backend::PixelFormats() const
{
    return contexts_.Formats();
}

bool X11Backend::SetNativePixelFormat(HWND window, int format)
{
    NativeRecord* record = FindOurs(window);
    if (record == nullptr)
        return false;
    record->surface = contexts_.AddSurface(record->outer, record->size, format);
    if (record->surface.format == 0)
        return false;
    // Without this the server would paint the window black on every enlargement, before the inner window has
    // grown.
    XSetWindowBackgroundPixmap(connection_.Get(), record->outer, 0);
    return true;
}

bool X11Backend::CreateContext(HGLRC context, HWND, int format)
{
    return IsUsable() && contexts_.AddContext(context, format);
}

void X11Backend::DeleteContext(HGLRC context)
{
    if (IsUsable())
        contexts_.RemoveContext(context);
}

bool X11Backend::MakeCurrent(HWND window, HGLRC context)
{
    const NativeRecord* record = FindOurs(window);
    return record != nullptr && record->surface.format != 0 &&
           contexts_.MakeCurrent(record->surface, context);
}

void X11Backend::ReleaseCurrent()
{
    if (IsUsable())
        contexts_.ReleaseCurrent();
}

bool X11Backend::SwapBuffers(HWND window)
{
    const NativeRecord* record = FindOurs(window);
    const bool swapped = record != nullptr && record->surface.format != 0 && contexts_.Swap(record->surface);
    return IsUsable() && swapped;
}

GlFunction X11Backend::FindGlFunction(const char* name)
{
    return glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name));
}

void X11Backend::AnnounceTopLevel(const NativeRecord& record, bool is_placed_by_system)
{
    Display* const display = connection_.Get();
    XSizeHints place{};
    // The layer's windows have no frame: the position is that of the client area, and the frame goes around
    // it.
    place.flags = (is_placed_by_system ? 0 : USPosition) | USSize | PWinGravity;
    place.win_gravity = StaticGravity;
    XSetWMNormalHints(display, record.outer, &place);
    XWMHints hints{};
    hints.flags = InputHint;
    hints.input = True;
    XSetWMHints(display, record.outer, &hints);
    XSetWMProtocols(display, record.outer, &connection_.wm_delete_window, 1);
    SetProgram(record);
}

void X11Backend::SetProgram(const NativeRecord& record)
{
    // Window managers and desktops find the settings of a program by this pair: the name of the program's
    // file, and the same with a capital letter.
    std::string name = program_invocation_short_name;
    std::string program = name;
    if (!program.empty())
        program.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(program.front())));
    XClassHint hint{name.data(), program.data()};
    XSetClassHint(connection_.Get(), record.outer, &hint);
}

void X11Backend::SetNativeIcon(const NativeRecord& record, const IconImage& icon)
{
    // NOTE: Xlib takes each number of 32 bits as a long. A property has width, height and the pixels.
    std::vector<long> numbers{icon.width, icon.height};
    numbers.insert(numbers.end(), icon.pixels.begin(), icon.pixels.end());
    XChangeProperty(connection_.Get(), record.outer, connection_.net_wm_icon, XA_CARDINAL, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(numbers.data()),
                    static_cast<int>(numbers.size()));
}

void X11Backend::Place(NativeRecord& record, POINT position, SIZE size)
{
    Display* const display = connection_.Get();
    const bool is_sized = size.cx != record.size.cx || size.cy != record.size.cy;
    record.position = position;
    record.size = size;
    record.last_placement = NextRequest(display);
    XMoveResizeWindow(display, record.outer, ClampCoordinate(position.x), ClampCoordinate(position.y),
                      ClampSide(size.cx), ClampSide(size.cy));
    if (is_sized && record.surface.format != 0)
        contexts_.ResizeSurface(record.surface, size);
}

void X11Backend::UpdateMapping(NativeRecord& record)
{
    // An X window has at least one pixel, so an empty window is unmapped.
    const bool is_mapped = record.is_shown && !IsEmpty(record.size);
    if (is_mapped == record.is_mapped)
        return;
    record.is_mapped = is_mapped;
    if (is_mapped) {
        XMapWindow(connection_.Get(), record.outer);
    } else if (record.IsTopLevel()) {
        // Also informs the window manager.
        XWithdrawWindow(connection_.Get(), record.outer, connection_.Screen());
    } else {
        XUnmapWindow(connection_.Get(), record.outer);
    }
}

std::optional<NativePlace> X11Backend::QueryPlace(::Window id)
{
    ErrorTrap trap(connection_);
    XWindowAttributes attributes{};
    NativePlace place;
    ::Window child = 0;
    if (XGetWindowAttributes(connection_.Get(), id, &attributes) == 0 ||
        XTranslateCoordinates(connection_.Get(), id, connection_.Root(), 0, 0, &place.position.x,
                              &place.position.y, &child) == 0) {
        return std::nullopt;
    }
    place.size = {attributes.width, attributes.height};
    return place;
}

bool X11Backend::IsFocusInSameTopLevel(::Window id)
{
    ::Window focus = 0;
    int revert_to = 0;
    XGetInputFocus(connection_.Get(), &focus, &revert_to);
    if (focus == 0 || focus == PointerRoot || focus == connection_.Root())
        return false;
    const ::Window outermost = OutermostOf(id);
    return outermost != 0 && outermost == OutermostOf(focus);
}

::Window X11Backend::OutermostOf(::Window id)
{
    while (id != 0) {
        ::Window root = 0;
        ::Window parent = 0;
        ::Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(connection_.Get(), id, &root, &parent, &children, &count) == 0)
            return 0;
        if (children != nullptr)
            XFree(children);
        if (parent == root)
            return id;
        id = parent;
    }
    return 0;
}

void X11Backend::SelectEvents(const NativeRecord& record, bool with_keys)
{
    constexpr long kBaseMask = StructureNotifyMask | ExposureMask | FocusChangeMask | PointerMotionMask |
                               ButtonPressMask | ButtonReleaseMask | EnterWindowMask;
    // The server sends keys to the window under the pointer if that is inside the focused window. A window
    // inside another toolkit's window must not select them until it has the focus itself; other children let
    // them propagate to their parents.
    XSelectInput(connection_.Get(), record.outer,
                 with_keys ? kBaseMask | KeyPressMask | KeyReleaseMask : kBaseMask);
}

} // namespace winsys::x11

namespace winsys
{

std::unique_ptr<Backend> MakeX11Backend(const std::string& display)
{
    return std::make_unique<x11::X11Backend>(display);
}

} // namespace winsys
