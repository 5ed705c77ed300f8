// The connection to the X server: choice of the backend, errors, the descriptor to wait on, and the end of
// the server.
#include "platform/winsys/backend.h"
#include "platform/winsys/opengl.h"
#include "tests/support/trace_recording.h"
#include "tests/support/x11_test.h"

#include <cstdlib>
#include <stdexcept>

#include <poll.h>

namespace karv_test
{
namespace
{

/// Sets an environment variable, or removes it if the value is empty; restores it at the end of its life.
class Variable
{
  public:
    Variable(const char* name, const std::string& value) : name_(name)
    {
        const char* before = std::getenv(name);
        before_ = before != nullptr ? before : "";
        Set(value);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { Set(before_); }

  private:
    void Set(const std::string& value) const
    {
        value.empty() ? unsetenv(name_) : setenv(name_, value.c_str(), 1);
    }

    const char* name_;
    std::string before_;
};

std::string WhyNoBackend(const std::string& display)
{
    try {
        const auto backend = winsys::MakeX11Backend(display);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST(X11Choice, DisplayThatDoesNotAnswerIsRefusedByName)
{
    EXPECT_THAT(WhyNoBackend(":12345"), testing::HasSubstr(":12345"));
    const Variable display("DISPLAY", ":12346");
    EXPECT_THAT(WhyNoBackend(""), testing::HasSubstr(":12346"));
}

TEST(X11Choice, DefaultIsTheDisplayThatAnswers)
{
    winsys::UseBackend(nullptr);
    const Variable display("DISPLAY", SharedXServer().Display());
    EXPECT_EQ(winsys::BackendName(), "x11");
    winsys::UseBackend(nullptr);
}

TEST(X11Choice, DefaultIsHeadlessWhereNoDisplayAnswers)
{
    for (const char* name : {"", ":12345"}) {
        winsys::UseBackend(nullptr);
        const Variable display("DISPLAY", name);
        EXPECT_EQ(winsys::BackendName(), "headless") << name;
    }
    winsys::UseBackend(nullptr);
}

TEST(X11Choice, ManyConnectionsInARow)
{
    for (int i = 0; i < 20; ++i)
        winsys::UseBackend(winsys::MakeX11Backend(SharedXServer().Display()));
    winsys::UseBackend(nullptr);
}

using X11Errors = X11Test;

TEST_F(X11Errors, AreReportedAndEndNothing)
{
    const HWND window = MakeShown(L"a");
    PumpArrived();
    TraceRecording trace;
    client_.DestroyWindow(IdOf("a"));
    // The event has not been read yet.
    MoveWindow(window, 1, 2, 30, 40, TRUE);
    EXPECT_TRUE(PumpUntil([&] { return IsWindow(window) == FALSE && !trace.Faults().empty(); }));
    EXPECT_THAT(trace.Faults(), testing::Each(testing::HasSubstr("platform/winsys/x11")));
    EXPECT_NE(MakeShown(L"b"), nullptr) << "the backend goes on";
}

TEST_F(X11Errors, OfAnotherConnectionGoToWhoWasThereBefore)
{
    TraceRecording trace;
    EXPECT_TRUE(client_.TakesItsOwnErrors([] {
        // A backend that is created after the program's handler was installed puts its own in front.
        winsys::UseBackend(winsys::MakeX11Backend(SharedXServer().Display()));
    }));
    EXPECT_TRUE(trace.Faults().empty());
}

using X11Descriptor = X11Test;

TEST_F(X11Descriptor, IsReadableWhenAnEventArrives)
{
    MakeShown(L"a");
    PumpArrived();
    EXPECT_FALSE(IsDescriptorReadable());
    client_.MovePointer(150, 100);
    EXPECT_TRUE(Eventually([] { return IsDescriptorReadable(); }));
    PumpArrived();
    EXPECT_FALSE(IsDescriptorReadable());
}

TEST_F(X11Descriptor, WakesAForeignLoopThatOnlyWaitsOnIt)
{
    MakeShown(L"a");
    PumpArrived();
    // As in a foreign loop: fetched once, then waited on without another call of the layer.
    pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&descriptor, 1, 0), 0);
    client_.MovePointer(150, 100);
    constexpr int kMinute = 60'000;
    EXPECT_EQ(poll(&descriptor, 1, kMinute), 1);
}

TEST_F(X11Descriptor, IsReadableForEventsThatAnAnswerBroughtAlong)
{
    const HWND window = MakeShown(L"a");
    const HWND other = MakeShown(L"b", {500, 400, 520, 420});
    PumpArrived();
    const int descriptor_before = winsys::GetMessageDescriptor();
    client_.MovePointer(150, 100);
    // A call that waits for a reply of the server also reads the event before it.
    MakeCurrentContext(other);
    pollfd descriptor{descriptor_before, POLLIN, 0};
    GetDC(window);
    EXPECT_TRUE(IsDescriptorReadable());
    EXPECT_EQ(poll(&descriptor, 1, 0), 1);
    TakeMessages();
    PumpArrived();
    EXPECT_EQ(CountOf(WM_MOUSEMOVE), 1);
}

TEST_F(X11Descriptor, SendsWhatWaitsToBeSent)
{
    const HWND window = MakeShown(L"a");
    MoveWindow(window, 10, 20, 30, 40, TRUE);
    EXPECT_GE(winsys::GetMessageDescriptor(), 0);
    EXPECT_TRUE(Eventually([&] { return client_.SizeOf(IdOf("a")) == Size(30, 40); }));
}

TEST_F(X11Descriptor, SwitchesBetweenTimersAndTheServer)
{
    const HWND window = MakeShown(L"a");
    PumpArrived();
    SetTimer(window, 1, 1, nullptr);
    pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
    constexpr int kMinute = 60'000;
    EXPECT_EQ(poll(&descriptor, 1, kMinute), 1);
    KillTimer(window, 1);
    EXPECT_EQ(poll(&descriptor, 1, 0), 0);
    client_.MovePointer(150, 100);
    EXPECT_EQ(poll(&descriptor, 1, kMinute), 1);
}

/// A window with a context on its own server, which a test can kill.
class X11Loss : public testing::Test
{
  protected:
    X11Loss()
    {
        // Keeps the driver loaded; see `SharedXServer`.
        SharedXServer();
        winsys::UseBackend(winsys::MakeX11Backend(server_.Display()));
        WNDCLASSW window_class{};
        window_class.style = CS_OWNDC;
        window_class.lpfnWndProc = DefWindowProcW;
        window_class.lpszClassName = L"X11Loss";
        RegisterClassW(&window_class);
        // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): its class is registered above
        window_ = CreateWindowExW(0, L"X11Loss", L"a", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, nullptr,
                                  nullptr, nullptr, nullptr);
        const HDC dc = GetDC(window_);
        SetPixelFormat(dc, 1, nullptr);
        context_ = wglCreateContext(dc);
        wglMakeCurrent(dc, context_);
        DrawFrame();
    }
    ~X11Loss() override
    {
        DestroyWindow(window_);
        UnregisterClassW(L"X11Loss", nullptr);
        winsys::UseBackend(nullptr);
    }

    bool DrawFrame()
    {
        glClearColor(1, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        return SwapBuffers(GetDC(window_)) != FALSE;
    }

    /// Reads until nothing is left.
    static void Pump()
    {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
            DispatchMessageW(&message);
    }

    XServer server_;
    HWND window_ = nullptr;
    HGLRC context_ = nullptr;
    TraceRecording trace_;
};

TEST_F(X11Loss, IsReportedOnceAndEndsNothing)
{
    server_.Kill();
    Pump();
    ASSERT_EQ(trace_.Faults().size(), 1U);
    EXPECT_THAT(trace_.Faults().front(), testing::HasSubstr("platform/winsys/x11"));
    for (int i = 0; i < 3; ++i) {
        MoveWindow(window_, i, i, 50 + i, 50, TRUE);
        ShowWindow(window_, SW_HIDE);
        ShowWindow(window_, SW_SHOW);
        SetFocus(window_);
        SetWindowTextW(window_, L"b");
        EXPECT_FALSE(DrawFrame());
        Pump();
    }
    EXPECT_EQ(trace_.Faults().size(), 1U);
}

TEST_F(X11Loss, WindowsGoOnAsRecords)
{
    server_.Kill();
    Pump();
    EXPECT_TRUE(IsWindow(window_));
    MoveWindow(window_, 1, 2, 30, 40, TRUE);
    RECT rect{};
    ASSERT_TRUE(GetClientRect(window_, &rect));
    EXPECT_EQ(rect.right, 30);
    EXPECT_EQ(CreateWindowExW(0, L"X11Loss", L"b", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(winsys::AdoptForeignWindow(1234), nullptr);
}

TEST_F(X11Loss, IsNoticedByASwap)
{
    server_.Kill();
    // The first frames may still be sent, into a connection that is no longer read.
    int frames = 0;
    while (DrawFrame() && frames < 10000)
        ++frames;
    EXPECT_FALSE(DrawFrame());
    EXPECT_EQ(trace_.Faults().size(), 1U);
}

TEST_F(X11Loss, LongDrawingAfterItReachesNoServer)
{
    server_.Kill();
    Pump();
    // Requests that are not read would fill Xlib's buffer and end the process.
    for (int i = 0; i < 20000; ++i)
        DrawFrame();
    EXPECT_EQ(glGetString(GL_VERSION), nullptr) << "no context is current in GL any more";
    EXPECT_FALSE(wglMakeCurrent(GetDC(window_), context_));
    EXPECT_TRUE(wglDeleteContext(context_));
}

TEST_F(X11Loss, TimersRunOn)
{
    SetTimer(window_, 1, 1, nullptr);
    server_.Kill();
    int timers = 0;
    MSG message{};
    while (timers < 20 && GetMessageW(&message, nullptr, 0, 0) > 0) {
        timers += message.message == WM_TIMER ? 1 : 0;
        DispatchMessageW(&message);
    }
    EXPECT_EQ(timers, 20);
}

TEST_F(X11Loss, DescriptorIsNotReadableForEver)
{
    Pump();
    server_.Kill();
    pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&descriptor, 1, 60'000), 1) << "the loss is an event";
    Pump();
    ValidateRect(window_, nullptr);
    Pump();
    EXPECT_EQ(poll(&descriptor, 1, 0), 0);
}

TEST_F(X11Loss, AnotherBackendCanFollow)
{
    server_.Kill();
    Pump();
    DestroyWindow(window_);
    winsys::UseBackend(winsys::MakeX11Backend(SharedXServer().Display()));
    window_ = CreateWindowExW(0, L"X11Loss", L"a", WS_POPUP | WS_VISIBLE, 0, 0, 100, 100, nullptr, nullptr,
                              nullptr, nullptr);
    const HDC dc = GetDC(window_);
    ASSERT_TRUE(SetPixelFormat(dc, 1, nullptr));
    context_ = wglCreateContext(dc);
    ASSERT_TRUE(wglMakeCurrent(dc, context_));
    EXPECT_TRUE(DrawFrame());
    wglDeleteContext(context_);
}

TEST_F(X11Loss, OfTwoConnectionsLeavesTheOther)
{
    XClient other(SharedXServer().Display());
    server_.Kill();
    Pump();
    EXPECT_TRUE(other.Exists(other.Root()));
}

} // namespace karv_test
