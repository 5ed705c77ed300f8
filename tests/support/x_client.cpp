#include "tests/support/x_client.h"

#include <algorithm>
#include <stdexcept>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

namespace karv_test
{

class XClient::Impl
{
  public:
    explicit Impl(const std::string& name) : display(XOpenDisplay(name.c_str()))
    {
        if (display == nullptr)
            throw std::runtime_error("no X server on " + name);
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl() { XCloseDisplay(display); }

    void Sync() const { XSync(display, False); }

    [[nodiscard]] Atom AtomOf(const char* name) const { return XInternAtom(display, name, False); }

    /// Zero if the window no longer exists: other programs may destroy it at any time.
    [[nodiscard]] XWindowAttributes Attributes(Id window) const
    {
        XWindowAttributes attributes{};
        const Tolerance tolerance(*this);
        XGetWindowAttributes(display, window, &attributes);
        return attributes;
    }

    struct Family {
        Id parent = 0;
        std::vector<Id> children;
    };

    [[nodiscard]] Family FamilyOf(Id window) const
    {
        Family family;
        Id root = 0;
        Id* children = nullptr;
        unsigned count = 0;
        const Tolerance tolerance(*this);
        if (XQueryTree(display, window, &root, &family.parent, &children, &count) != 0 &&
            children != nullptr) {
            family.children.assign(children, children + count);
            XFree(children);
        }
        return family;
    }

    [[nodiscard]] std::string NameOf(Id window) const
    {
        char* text = nullptr;
        const Tolerance tolerance(*this);
        std::string name;
        if (XFetchName(display, window, &text) != 0 && text != nullptr) {
            name = text;
            XFree(text);
        }
        return name;
    }

    void FindByName(Id window, const std::string& name, std::vector<Id>& found) const
    {
        if (NameOf(window) == name)
            found.push_back(window);
        for (const Id child : FamilyOf(window).children)
            FindByName(child, name, found);
    }

    void SendKey(const char* symbol, bool is_press) const
    {
        const KeyCode code = XKeysymToKeycode(display, XStringToKeysym(symbol));
        XTestFakeKeyEvent(display, code, is_press ? True : False, CurrentTime);
        Sync();
    }

    Display* display;

  private:
    /// Ignores the errors of queries about destroyed windows.
    class Tolerance
    {
      public:
        explicit Tolerance(const Impl& impl) : impl_(impl)
        {
            impl_.Sync();
            before_ = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        }
        Tolerance(const Tolerance&) = delete;
        Tolerance& operator=(const Tolerance&) = delete;
        ~Tolerance()
        {
            impl_.Sync();
            XSetErrorHandler(before_);
        }

      private:
        const Impl& impl_;
        XErrorHandler before_ = nullptr;
    };
};

XClient::XClient(const std::string& display) : impl_(std::make_unique<Impl>(display)) {}

XClient::~XClient() = default;

XClient::Id XClient::Root() const
{
    return DefaultRootWindow(impl_->display);
}

XClient::Id XClient::MakeWindow(int x, int y, int width, int height, Id parent, bool is_managed)
{
    XSetWindowAttributes attributes{};
    attributes.override_redirect = is_managed ? False : True;
    attributes.background_pixel = 0x00FFFF;
    attributes.event_mask =
        ButtonPressMask | ButtonReleaseMask | PointerMotionMask | KeyPressMask | KeyReleaseMask;
    const Id window =
        XCreateWindow(impl_->display, parent != 0 ? parent : Root(), x, y, static_cast<unsigned>(width),
                      static_cast<unsigned>(height), 0, CopyFromParent, InputOutput, nullptr,
                      CWOverrideRedirect | CWBackPixel | CWEventMask, &attributes);
    XMapWindow(impl_->display, window);
    impl_->Sync();
    return window;
}

void XClient::DestroyWindow(Id window)
{
    XDestroyWindow(impl_->display, window);
    impl_->Sync();
}

void XClient::MoveResize(Id window, int x, int y, int width, int height)
{
    XMoveResizeWindow(impl_->display, window, x, y, static_cast<unsigned>(width),
                      static_cast<unsigned>(height));
    impl_->Sync();
}

void XClient::Unmap(Id window)
{
    XUnmapWindow(impl_->display, window);
    impl_->Sync();
}

void XClient::AskToClose(Id window)
{
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = impl_->AtomOf("WM_PROTOCOLS");
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(impl_->AtomOf("WM_DELETE_WINDOW"));
    XSendEvent(impl_->display, window, False, NoEventMask, &event);
    impl_->Sync();
}

void XClient::Focus(Id window)
{
    XSetInputFocus(impl_->display, window, RevertToPointerRoot, CurrentTime);
    impl_->Sync();
}

void XClient::FocusPointer()
{
    Focus(PointerRoot);
}

XClient::Id XClient::Focused()
{
    Id window = 0;
    int revert_to = 0;
    XGetInputFocus(impl_->display, &window, &revert_to);
    return window;
}

bool XClient::HasSeen(int type, int count)
{
    // By the time the server answers, it has sent all events before.
    impl_->Sync();
    std::vector<XEvent> others;
    int seen = 0;
    while (XPending(impl_->display) > 0) {
        XEvent event;
        XNextEvent(impl_->display, &event);
        seen += event.type == type ? 1 : 0;
        if (event.type != type)
            others.push_back(event);
    }
    std::reverse(others.begin(), others.end());
    for (XEvent& event : others)
        XPutBackEvent(impl_->display, &event);
    return seen >= count;
}

std::vector<XClient::Id> XClient::FindByName(const std::string& name)
{
    std::vector<Id> found;
    impl_->FindByName(Root(), name, found);
    return found;
}

std::pair<std::string, std::string> XClient::ClassOf(Id window)
{
    XClassHint hint{};
    std::pair<std::string, std::string> texts;
    if (XGetClassHint(impl_->display, window, &hint) != 0) {
        texts = {hint.res_name, hint.res_class};
        XFree(hint.res_name);
        XFree(hint.res_class);
    }
    return texts;
}

std::vector<unsigned long> XClient::NumbersOf(Id window, const char* property)
{
    constexpr long kMaxNumbers = 1L << 20;
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* bytes = nullptr;
    std::vector<unsigned long> numbers;
    if (XGetWindowProperty(impl_->display, window, impl_->AtomOf(property), 0, kMaxNumbers, False,
                           XA_CARDINAL, &type, &format, &count, &left, &bytes) == Success &&
        bytes != nullptr) {
        // NOTE: Xlib delivers each number of 32 bits as a long.
        const auto* const longs = reinterpret_cast<const unsigned long*>(bytes);
        if (format == 32)
            for (unsigned long i = 0; i < count; ++i)
                numbers.push_back(longs[i] & 0xFFFFFFFFUL);
        XFree(bytes);
    }
    return numbers;
}

XClient::Id XClient::ParentOf(Id window)
{
    return impl_->FamilyOf(window).parent;
}

std::vector<XClient::Id> XClient::ChildrenOf(Id window)
{
    return impl_->FamilyOf(window).children;
}

bool XClient::Exists(Id window)
{
    return impl_->Attributes(window).width != 0;
}

bool XClient::IsSeen(Id window)
{
    return impl_->Attributes(window).map_state == IsViewable;
}

std::pair<int, int> XClient::PositionOnScreen(Id window)
{
    std::pair<int, int> position;
    Id child = 0;
    XTranslateCoordinates(impl_->display, window, Root(), 0, 0, &position.first, &position.second, &child);
    return position;
}

std::pair<int, int> XClient::SizeOf(Id window)
{
    const XWindowAttributes attributes = impl_->Attributes(window);
    return {attributes.width, attributes.height};
}

int XClient::DepthOf(Id window)
{
    return impl_->Attributes(window).depth;
}

unsigned XClient::ScreenPixel(int x, int y)
{
    return Screen(x, y, 1, 1).front();
}

std::vector<unsigned> XClient::Screen(int x, int y, int width, int height)
{
    XImage* image = XGetImage(impl_->display, Root(), x, y, static_cast<unsigned>(width),
                              static_cast<unsigned>(height), AllPlanes, ZPixmap);
    std::vector<unsigned> pixels;
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            pixels.push_back(static_cast<unsigned>(XGetPixel(image, column, row)) & 0xFFFFFFU);
    XDestroyImage(image);
    return pixels;
}

void XClient::MovePointer(int x, int y)
{
    XTestFakeMotionEvent(impl_->display, 0, x, y, CurrentTime);
    impl_->Sync();
}

void XClient::Press(unsigned button)
{
    XTestFakeButtonEvent(impl_->display, button, True, CurrentTime);
    impl_->Sync();
}

void XClient::Release(unsigned button)
{
    XTestFakeButtonEvent(impl_->display, button, False, CurrentTime);
    impl_->Sync();
}

void XClient::Click(unsigned button)
{
    Press(button);
    Release(button);
}

void XClient::PressKey(const char* symbol)
{
    impl_->SendKey(symbol, true);
}

void XClient::ReleaseKey(const char* symbol)
{
    impl_->SendKey(symbol, false);
}

void XClient::HoldServer()
{
    XGrabServer(impl_->display);
    impl_->Sync();
}

void XClient::LetServerGo()
{
    XUngrabServer(impl_->display);
    impl_->Sync();
}

bool XClient::TakesItsOwnErrors(const std::function<void()>& meanwhile)
{
    static int errors = 0;
    errors = 0;
    const XErrorHandler before = XSetErrorHandler([](Display*, XErrorEvent*) { return ++errors; });
    meanwhile();
    constexpr Id kNoWindow = 0x1FFFFFFF;
    XMapWindow(impl_->display, kNoWindow);
    impl_->Sync();
    XSetErrorHandler(before);
    return errors == 1;
}

} // namespace karv_test
