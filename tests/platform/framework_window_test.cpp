#include "platform/framework/window.h"
#include "platform/winsys/backend.h"
#include "platform/winsys/provider.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using Log = std::vector<std::string>;
using testing::ElementsAre;

constexpr RECT kPlace{10, 20, 110, 70};

/// A window that logs what its handlers and its default procedure get. The log outlives it.
class LoggedWindow : public CWnd
{
  public:
    explicit LoggedWindow(Log& log) : log_(log) {}

    int create_result = 0;
    std::function<void()> on_create = [] {};
    std::function<void()> on_timer = [] {};
    std::function<void()> on_gone = [] {};

    BOOL Create(CWnd* parent = nullptr)
    {
        const DWORD style = parent != nullptr ? WS_CHILD | WS_VISIBLE : WS_POPUP | WS_VISIBLE;
        return CreateEx(0, AfxRegisterWndClass(CS_OWNDC), L"window", style, kPlace, parent, 0);
    }
    LRESULT CallDefault() { return Default(); }
    void Note(const std::string& line) { log_.push_back(line); }

  protected:
    [[nodiscard]] const AFX_MSGMAP* GetMessageMap() const override { return GetThisMessageMap(); }
    [[nodiscard]] static const AFX_MSGMAP* GetThisMessageMap()
    {
        static const std::array<AFX_MSGMAP_ENTRY, 3> entries{OnWmCreate<&LoggedWindow::OnCreate>(),
                                                             OnWmSize<&LoggedWindow::OnSize>(),
                                                             OnWmTimer<&LoggedWindow::OnTimer>()};
        static const AFX_MSGMAP map{CWnd::GetThisMessageMap(), entries};
        return &map;
    }
    LRESULT DefWindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (message == WM_TIMER || message == WM_USER || message == WM_SIZE)
            Note("default " + std::to_string(message) + " " + std::to_string(wparam) + " " +
                 std::to_string(lparam));
        return CWnd::DefWindowProc(message, wparam, lparam);
    }
    void PostNcDestroy() override
    {
        Note(m_hWnd == nullptr ? "gone" : "gone, with a window");
        on_gone();
    }

    int OnCreate(CREATESTRUCT* create)
    {
        Note("create " + std::to_string(create->cx) + " " + std::to_string(create->cy));
        if (CWnd::OnCreate(create) == -1)
            return -1;
        on_create();
        return create_result;
    }
    void OnSize(UINT type, int cx, int cy)
    {
        Note("size " + std::to_string(type) + " " + std::to_string(cx) + " " + std::to_string(cy));
    }
    void OnTimer(UINT_PTR id)
    {
        Note("timer " + std::to_string(id));
        on_timer();
    }

  private:
    Log& log_;
};

/// Handles timers itself and leaves the rest to its base.
class DerivedWindow : public LoggedWindow
{
  public:
    using LoggedWindow::LoggedWindow;

  protected:
    [[nodiscard]] const AFX_MSGMAP* GetMessageMap() const override
    {
        static const std::array<AFX_MSGMAP_ENTRY, 1> entries{OnWmTimer<&DerivedWindow::OnTimer>()};
        static const AFX_MSGMAP map{LoggedWindow::GetThisMessageMap(), entries};
        return &map;
    }
    void OnTimer(UINT_PTR id)
    {
        Note("derived timer " + std::to_string(id));
        LoggedWindow::OnTimer(id);
    }
};

/// Deletes itself inside the last message of its window.
class ShortLivedWindow : public LoggedWindow
{
  public:
    using LoggedWindow::LoggedWindow;

    std::function<void()> drop;

  protected:
    LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
    {
        if (message != WM_NCDESTROY)
            return LoggedWindow::WindowProc(message, wparam, lparam);
        // Copied, since the object takes its own functions along.
        const std::function<void()> last = drop;
        last();
        return 0;
    }
};

/// The window that got the last message of the foreign procedure.
HWND last_foreign = nullptr;

LRESULT CALLBACK ForeignProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    last_foreign = window;
    return ::DefWindowProcW(window, message, wparam, lparam);
}

constexpr LPCWSTR kForeignClass = L"framework_window_test foreign";

/// A window that the framework knows nothing of; destroyed with the object.
class ForeignWindow
{
  public:
    ForeignWindow()
    {
        WNDCLASSW foreign{};
        foreign.lpfnWndProc = &ForeignProcedure;
        foreign.lpszClassName = kForeignClass;
        foreign.hInstance = ::GetModuleHandleW(nullptr);
        ::RegisterClassW(&foreign);
        handle = ::CreateWindowExW(0, kForeignClass, L"", WS_POPUP | WS_VISIBLE, 0, 0, 10, 10, nullptr,
                                   nullptr, foreign.hInstance, nullptr);
    }
    ForeignWindow(const ForeignWindow&) = delete;
    ForeignWindow& operator=(const ForeignWindow&) = delete;
    ~ForeignWindow() { ::DestroyWindow(handle); }

    HWND handle;
};

class FrameworkWindow : public testing::Test
{
  public:
    ~FrameworkWindow() override { CWnd::DeleteTempMap(); }

  protected:
    static void SetUpTestSuite() { winsys::UseBackend(winsys::MakeHeadlessBackend()); }

    /// Dispatches messages until none waits, at most `limit` of them.
    static int Pump(int limit = 1000)
    {
        int count = 0;
        MSG message{};
        while (count < limit && ::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            ::DispatchMessageW(&message);
            ++count;
        }
        return count;
    }

    Log log;
};

// Life of a window.

TEST_F(FrameworkWindow, NewObjectHasNoWindow)
{
    LoggedWindow window(log);
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_EQ(window.GetSafeHwnd(), nullptr);
    EXPECT_FALSE(window.DestroyWindow());
    EXPECT_FALSE(window.ShowWindow(SW_SHOW));
    EXPECT_FALSE(window.MoveWindow(kPlace));
    EXPECT_EQ(window.GetParent(), nullptr);
    EXPECT_TRUE(log.empty());
}

TEST_F(FrameworkWindow, CreationReachesTheHandlersInOrder)
{
    LoggedWindow window(log);
    HWND during = nullptr;
    window.on_create = [&] { during = window.m_hWnd; };
    ASSERT_TRUE(window.Create());
    EXPECT_NE(window.m_hWnd, nullptr);
    EXPECT_EQ(during, window.m_hWnd);
    EXPECT_TRUE(::IsWindow(window.m_hWnd));
    ASSERT_GE(log.size(), 2U);
    EXPECT_EQ(log[0], "create 100 50");
    EXPECT_EQ(log[1], "size 0 100 50");
}

TEST_F(FrameworkWindow, CreationPassesPlaceTitleAndParent)
{
    LoggedWindow parent(log);
    ASSERT_TRUE(parent.Create());
    LoggedWindow child(log);
    ASSERT_TRUE(child.Create(&parent));
    EXPECT_EQ(child.GetParent(), &parent);
    CRect client;
    EXPECT_TRUE(child.GetClientRect(&client));
    EXPECT_EQ(client.Width(), 100);
    EXPECT_EQ(client.Height(), 50);
    std::array<wchar_t, 16> title{};
    ::GetWindowTextW(child.m_hWnd, title.data(), static_cast<int>(title.size()));
    EXPECT_STREQ(title.data(), L"window");
}

TEST_F(FrameworkWindow, SecondCreationIsRefusedAndKeepsTheFirst)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    const HWND first = window.m_hWnd;
    EXPECT_FALSE(window.Create());
    EXPECT_EQ(window.m_hWnd, first);
    EXPECT_TRUE(::IsWindow(first));
}

TEST_F(FrameworkWindow, UnknownClassIsRefused)
{
    LoggedWindow window(log);
    EXPECT_FALSE(window.CreateEx(0, L"framework_window_test unknown", L"", WS_POPUP, kPlace, nullptr, 0));
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_TRUE(log.empty());
    EXPECT_TRUE(window.Create()) << "a later creation succeeds";
}

TEST_F(FrameworkWindow, ChildWithoutAParentIsRefused)
{
    LoggedWindow window(log);
    EXPECT_FALSE(window.CreateEx(0, AfxRegisterWndClass(0), L"", WS_CHILD, kPlace, nullptr, 0));
    EXPECT_EQ(window.m_hWnd, nullptr);
}

TEST_F(FrameworkWindow, RefusedCreationDoesNotClaimALaterWindow)
{
    LoggedWindow window(log);
    EXPECT_FALSE(window.CreateEx(0, L"framework_window_test unknown", L"", WS_POPUP, kPlace, nullptr, 0));
    const HWND plain = ::CreateWindowExW(0, AfxRegisterWndClass(0), L"", WS_POPUP, 0, 0, 10, 10, nullptr,
                                         nullptr, ::GetModuleHandleW(nullptr), nullptr);
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(plain), nullptr);
    ::DestroyWindow(plain);
}

TEST_F(FrameworkWindow, ClassWithAnotherProcedureIsRefusedAndLeavesNoWindow)
{
    const ForeignWindow registered;
    LoggedWindow window(log);
    EXPECT_FALSE(window.CreateEx(0, kForeignClass, L"", WS_POPUP, kPlace, nullptr, 0));
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_TRUE(log.empty());
    EXPECT_NE(last_foreign, registered.handle) << "there was a window";
    EXPECT_FALSE(::IsWindow(last_foreign));
}

TEST_F(FrameworkWindow, CreationRefusedByAHandlerLeavesNoWindow)
{
    LoggedWindow window(log);
    HWND during = nullptr;
    window.on_create = [&] { during = window.m_hWnd; };
    window.create_result = -1;
    EXPECT_FALSE(window.Create());
    EXPECT_EQ(window.m_hWnd, nullptr);
    ASSERT_NE(during, nullptr);
    EXPECT_FALSE(::IsWindow(during));
    EXPECT_EQ(CWnd::FromHandlePermanent(during), nullptr);
    EXPECT_THAT(log, ElementsAre("create 100 50", "gone"));
    window.create_result = 0;
    EXPECT_TRUE(window.Create()) << "a later creation succeeds";
}

TEST_F(FrameworkWindow, DestroyedWindowLeavesTheObject)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    const HWND handle = window.m_hWnd;
    log.clear();
    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_EQ(CWnd::FromHandlePermanent(handle), nullptr);
    EXPECT_THAT(log, ElementsAre("gone"));
    EXPECT_FALSE(window.DestroyWindow());
    EXPECT_TRUE(window.Create());
}

TEST_F(FrameworkWindow, DestroyedObjectTakesItsWindowAlongWithoutCallingHandlers)
{
    HWND handle = nullptr;
    {
        LoggedWindow window(log);
        ASSERT_TRUE(window.Create());
        handle = window.m_hWnd;
        log.clear();
    }
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_EQ(CWnd::FromHandlePermanent(handle), nullptr);
    EXPECT_TRUE(log.empty());
}

TEST_F(FrameworkWindow, ParentDestroyedFirstLeavesTheChildWithoutAWindow)
{
    LoggedWindow child(log);
    {
        LoggedWindow parent(log);
        ASSERT_TRUE(parent.Create());
        ASSERT_TRUE(child.Create(&parent));
        log.clear();
    }
    EXPECT_EQ(child.m_hWnd, nullptr);
    EXPECT_THAT(log, ElementsAre("gone"));
}

TEST_F(FrameworkWindow, ForeignParentDestroyedFirstLeavesTheChildWithoutAWindow)
{
    LoggedWindow child(log);
    {
        const ForeignWindow parent;
        ASSERT_TRUE(child.Create(CWnd::FromHandle(parent.handle)));
        EXPECT_NE(child.m_hWnd, nullptr);
    }
    EXPECT_EQ(child.m_hWnd, nullptr);
    EXPECT_EQ(log.back(), "gone");
}

TEST_F(FrameworkWindow, HundredInARowLeaveNothing)
{
    for (int round = 0; round < 100; ++round) {
        LoggedWindow window(log);
        ASSERT_TRUE(window.Create());
        EXPECT_EQ(CWnd::FromHandlePermanent(window.m_hWnd), &window);
    }
    EXPECT_EQ(Pump(), 0);
}

TEST_F(FrameworkWindow, TwoAtOnceGetTheirOwnMessages)
{
    Log other_log;
    LoggedWindow window(log);
    LoggedWindow other(other_log);
    ASSERT_TRUE(window.Create());
    ASSERT_TRUE(other.Create());
    log.clear();
    other_log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 1, 0);
    ::SendMessageW(other.m_hWnd, WM_TIMER, 2, 0);
    EXPECT_THAT(log, ElementsAre("timer 1"));
    EXPECT_THAT(other_log, ElementsAre("timer 2"));
}

// Windows made while one is created.

TEST_F(FrameworkWindow, PlainWindowMadeWhileCreatingHasNoObject)
{
    LoggedWindow window(log);
    HWND plain = nullptr;
    window.on_create = [&] {
        plain = ::CreateWindowExW(0, AfxRegisterWndClass(CS_OWNDC), L"plain", WS_OVERLAPPED, 0, 0, 10, 10,
                                  nullptr, nullptr, ::GetModuleHandleW(nullptr), nullptr);
    };
    ASSERT_TRUE(window.Create());
    ASSERT_NE(plain, nullptr);
    EXPECT_NE(plain, window.m_hWnd);
    EXPECT_EQ(CWnd::FromHandlePermanent(plain), nullptr);
    log.clear();
    ::SendMessageW(plain, WM_TIMER, 1, 0);
    EXPECT_TRUE(log.empty());
    EXPECT_TRUE(::DestroyWindow(plain));
    EXPECT_TRUE(::IsWindow(window.m_hWnd));
}

TEST_F(FrameworkWindow, ObjectsCreatedInsideOneAnotherGetTheirOwnWindows)
{
    LoggedWindow parent(log);
    LoggedWindow child(log);
    parent.on_create = [&] { EXPECT_TRUE(child.Create(&parent)); };
    ASSERT_TRUE(parent.Create());
    EXPECT_EQ(CWnd::FromHandlePermanent(parent.m_hWnd), &parent);
    EXPECT_EQ(CWnd::FromHandlePermanent(child.m_hWnd), &child);
    EXPECT_EQ(child.GetParent(), &parent);
}

// Message maps.

TEST_F(FrameworkWindow, MostDerivedMapAnswersFirst)
{
    DerivedWindow window(log);
    ASSERT_TRUE(window.Create());
    log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 9, 0);
    EXPECT_THAT(log, ElementsAre("derived timer 9", "timer 9"));
}

TEST_F(FrameworkWindow, MapOfTheBaseAnswersWhatTheDerivedOneDoesNot)
{
    DerivedWindow window(log);
    ASSERT_TRUE(window.Create());
    log.clear();
    ::SendMessageW(window.m_hWnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(3, 4));
    EXPECT_THAT(log, ElementsAre("size 0 3 4"));
}

TEST_F(FrameworkWindow, MessageThatNoMapNamesGetsTheDefaultHandling)
{
    DerivedWindow window(log);
    ASSERT_TRUE(window.Create());
    log.clear();
    EXPECT_EQ(::SendMessageW(window.m_hWnd, WM_USER, 5, 6), 0);
    EXPECT_THAT(log, ElementsAre("default 1024 5 6"));
}

TEST_F(FrameworkWindow, SizesAreUnsignedHalvesOfTheParameter)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    log.clear();
    ::SendMessageW(window.m_hWnd, WM_SIZE, SIZE_MINIMIZED, MAKELPARAM(0, 0));
    ::SendMessageW(window.m_hWnd, WM_SIZE, SIZE_MAXIMIZED, MAKELPARAM(65535, 40000));
    EXPECT_THAT(log, ElementsAre("size 1 0 0", "size 2 65535 40000"));
}

TEST_F(FrameworkWindow, MovingSendsTheNewSize)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    log.clear();
    EXPECT_TRUE(window.MoveWindow(CRect(1, 2, 31, 42)));
    EXPECT_THAT(log, ElementsAre("size 0 30 40"));
}

TEST_F(FrameworkWindow, PaintingOfTheBaseEndsThePaint)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    Pump();
    ::InvalidateRect(window.m_hWnd, nullptr, FALSE);
    EXPECT_EQ(Pump(), 1) << "a window that stays invalid is painted for ever";
}

// Default handling inside a message.

TEST_F(FrameworkWindow, DefaultHandlesTheMessageWithItsOwnParameters)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    window.on_timer = [&] { window.CallDefault(); };
    log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 7, 8);
    EXPECT_THAT(log, ElementsAre("timer 7", "default 275 7 8"));
}

TEST_F(FrameworkWindow, DefaultOutsideAnyMessageDoesNothing)
{
    LoggedWindow window(log);
    EXPECT_EQ(window.CallDefault(), 0);
    ASSERT_TRUE(window.Create());
    log.clear();
    EXPECT_EQ(window.CallDefault(), 0);
    EXPECT_TRUE(log.empty());
}

TEST_F(FrameworkWindow, NestedMessageRestoresTheOuterOne)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    window.on_timer = [&] {
        ::SendMessageW(window.m_hWnd, WM_USER, 1, 2);
        window.CallDefault();
    };
    log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 3, 4);
    EXPECT_THAT(log, ElementsAre("timer 3", "default 1024 1 2", "default 275 3 4"));
    EXPECT_EQ(window.CallDefault(), 0);
}

TEST_F(FrameworkWindow, DefaultIsOfTheWindowsOwnMessageWhileAnotherHandlesOne)
{
    Log other_log;
    LoggedWindow window(log);
    LoggedWindow other(other_log);
    ASSERT_TRUE(window.Create());
    ASSERT_TRUE(other.Create());
    window.on_timer = [&] { ::SendMessageW(other.m_hWnd, WM_TIMER, 22, 0); };
    other.on_timer = [&] {
        window.CallDefault();
        other.CallDefault();
    };
    log.clear();
    other_log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 11, 0);
    EXPECT_THAT(log, ElementsAre("timer 11", "default 275 11 0"));
    EXPECT_THAT(other_log, ElementsAre("timer 22", "default 275 22 0"));
}

TEST_F(FrameworkWindow, DefaultOfAWindowThatOnlyWatchesDoesNothing)
{
    Log other_log;
    LoggedWindow window(log);
    LoggedWindow watcher(other_log);
    ASSERT_TRUE(window.Create());
    ASSERT_TRUE(watcher.Create());
    window.on_timer = [&] { EXPECT_EQ(watcher.CallDefault(), 0); };
    other_log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 1, 0);
    EXPECT_TRUE(other_log.empty());
}

// Windows and objects that go while a message is handled.

TEST_F(FrameworkWindow, WindowMayBeDestroyedInAHandler)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    window.on_timer = [&] {
        window.DestroyWindow();
        EXPECT_EQ(window.m_hWnd, nullptr);
        EXPECT_EQ(window.CallDefault(), 0);
    };
    log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 1, 0);
    EXPECT_THAT(log, ElementsAre("timer 1", "gone", "default 275 1 0"));
}

TEST_F(FrameworkWindow, ObjectMayBeDeletedInAHandler)
{
    auto window = std::make_unique<LoggedWindow>(log);
    ASSERT_TRUE(window->Create());
    const HWND handle = window->m_hWnd;
    // The handler lies outside the object, which takes its own functions along.
    const std::function<void()> drop = [&] { window.reset(); };
    window->on_timer = [&drop] { drop(); };
    log.clear();
    ::SendMessageW(handle, WM_TIMER, 1, 0);
    EXPECT_EQ(window, nullptr);
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_THAT(log, ElementsAre("timer 1"));
}

TEST_F(FrameworkWindow, ObjectMayBeDeletedInAMessageInsideItsOwn)
{
    LoggedWindow outer(log);
    ASSERT_TRUE(outer.Create());
    auto inner = std::make_unique<LoggedWindow>(log);
    ASSERT_TRUE(inner->Create());
    outer.on_timer = [&] { inner.reset(); };
    inner->on_timer = [&outer] { ::SendMessageW(outer.m_hWnd, WM_TIMER, 2, 0); };
    log.clear();
    ::SendMessageW(inner->m_hWnd, WM_TIMER, 1, 0);
    EXPECT_THAT(log, ElementsAre("timer 1", "timer 2"));
}

TEST_F(FrameworkWindow, ObjectMayDeleteItselfWhenItsWindowIsGone)
{
    auto window = std::make_unique<LoggedWindow>(log);
    ASSERT_TRUE(window->Create());
    const std::function<void()> drop = [&] { window.reset(); };
    window->on_gone = [&drop] { drop(); };
    log.clear();
    EXPECT_TRUE(window->DestroyWindow());
    EXPECT_EQ(window, nullptr);
    EXPECT_THAT(log, ElementsAre("gone"));
}

TEST_F(FrameworkWindow, ObjectMayBeDeletedInTheLastMessageOfItsWindow)
{
    auto window = std::make_unique<ShortLivedWindow>(log);
    ASSERT_TRUE(window->Create());
    const HWND handle = window->m_hWnd;
    window->drop = [&window] { window.reset(); };
    log.clear();
    EXPECT_TRUE(::DestroyWindow(handle));
    EXPECT_EQ(window, nullptr);
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_TRUE(log.empty());
}

TEST_F(FrameworkWindow, ObjectMayDeleteItselfWhenItsCreationIsRefused)
{
    auto window = std::make_unique<LoggedWindow>(log);
    const std::function<void()> drop = [&] { window.reset(); };
    window->on_gone = [&drop] { drop(); };
    window->create_result = -1;
    EXPECT_FALSE(window->Create());
    EXPECT_EQ(window, nullptr);
}

TEST_F(FrameworkWindow, NewObjectInTheOldOnesPlaceIsNotTakenForIt)
{
    alignas(LoggedWindow) std::array<std::byte, sizeof(LoggedWindow)> place;
    auto* const first = std::construct_at(reinterpret_cast<LoggedWindow*>(place.data()), log);
    ASSERT_TRUE(first->Create());
    const HWND handle = first->m_hWnd;
    LRESULT later = -1;
    const std::function<void()> replace = [&] {
        std::destroy_at(first);
        auto* const second = std::construct_at(reinterpret_cast<LoggedWindow*>(place.data()), log);
        later = second->CallDefault();
        std::destroy_at(second);
    };
    first->on_timer = [&replace] { replace(); };
    log.clear();
    ::SendMessageW(handle, WM_TIMER, 1, 0);
    EXPECT_EQ(later, 0);
    EXPECT_THAT(log, ElementsAre("timer 1"));
}

// Faults.

TEST_F(FrameworkWindow, ExceptionOfAHandlerPassesThroughAndLeavesNoMessageBehind)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    window.on_timer = [] { throw std::runtime_error("handler"); };
    log.clear();
    EXPECT_THROW(::SendMessageW(window.m_hWnd, WM_TIMER, 1, 0), std::runtime_error);
    EXPECT_EQ(window.CallDefault(), 0);
    EXPECT_THAT(log, ElementsAre("timer 1"));
    window.on_timer = [&] { window.CallDefault(); };
    ::SendMessageW(window.m_hWnd, WM_TIMER, 2, 0);
    EXPECT_THAT(log, ElementsAre("timer 1", "timer 2", "default 275 2 0"));
}

TEST_F(FrameworkWindow, ExceptionDuringCreationLeavesNoWindow)
{
    LoggedWindow window(log);
    HWND during = nullptr;
    window.on_create = [&] {
        during = window.m_hWnd;
        throw std::runtime_error("handler");
    };
    EXPECT_THROW(window.Create(), std::runtime_error);
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_FALSE(::IsWindow(during));
    EXPECT_EQ(CWnd::FromHandlePermanent(during), nullptr);
    window.on_create = [] {};
    EXPECT_TRUE(window.Create()) << "a later creation succeeds";
}

// Objects of handles.

TEST_F(FrameworkWindow, HandleOfAnObjectAnswersTheObject)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    EXPECT_EQ(CWnd::FromHandle(window.m_hWnd), &window);
    EXPECT_EQ(CWnd::FromHandlePermanent(window.m_hWnd), &window);
}

TEST_F(FrameworkWindow, NullHandleHasNoObject)
{
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(nullptr), nullptr);
}

TEST_F(FrameworkWindow, ForeignHandleAnswersOneTemporaryObject)
{
    const ForeignWindow foreign;
    CWnd* const object = CWnd::FromHandle(foreign.handle);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->m_hWnd, foreign.handle);
    EXPECT_EQ(CWnd::FromHandle(foreign.handle), object);
    EXPECT_EQ(CWnd::FromHandlePermanent(foreign.handle), nullptr);
}

TEST_F(FrameworkWindow, DroppingTemporaryObjectsKeepsTheirWindows)
{
    const ForeignWindow foreign;
    CWnd::FromHandle(foreign.handle);
    CWnd::DeleteTempMap();
    EXPECT_TRUE(::IsWindow(foreign.handle));
    EXPECT_EQ(CWnd::FromHandle(foreign.handle)->m_hWnd, foreign.handle);
}

TEST_F(FrameworkWindow, DroppingTemporaryObjectsKeepsTheOthers)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    CWnd::DeleteTempMap();
    EXPECT_EQ(CWnd::FromHandle(window.m_hWnd), &window);
    EXPECT_TRUE(::IsWindow(window.m_hWnd));
}

TEST_F(FrameworkWindow, TemporaryObjectOfAWindowThatIsGoneIsHarmless)
{
    CWnd* object = nullptr;
    {
        const ForeignWindow foreign;
        object = CWnd::FromHandle(foreign.handle);
    }
    CRect client;
    EXPECT_FALSE(object->GetClientRect(&client));
    EXPECT_FALSE(object->MoveWindow(kPlace));
    EXPECT_FALSE(object->DestroyWindow());
    EXPECT_EQ(object->GetParent(), nullptr);
    const ForeignWindow next;
    EXPECT_NE(CWnd::FromHandle(next.handle), object);
}

// Focus.

TEST_F(FrameworkWindow, FocusAnswersTheWindowThatHadIt)
{
    LoggedWindow parent(log);
    ASSERT_TRUE(parent.Create());
    LoggedWindow one(log);
    LoggedWindow other(log);
    ASSERT_TRUE(one.Create(&parent));
    ASSERT_TRUE(other.Create(&parent));
    one.SetFocus();
    EXPECT_EQ(::GetFocus(), one.m_hWnd);
    EXPECT_EQ(other.SetFocus(), &one);
    EXPECT_EQ(::GetFocus(), other.m_hWnd);
}

TEST_F(FrameworkWindow, FocusOfAnObjectWithoutAWindowTakesItFromNobody)
{
    LoggedWindow window(log);
    ASSERT_TRUE(window.Create());
    window.SetFocus();
    LoggedWindow none(log);
    EXPECT_EQ(none.SetFocus(), nullptr);
    EXPECT_EQ(::GetFocus(), window.m_hWnd);
}

// Window classes.

TEST_F(FrameworkWindow, ClassOfTheSameArgumentsHasOneName)
{
    const LPCWSTR name = AfxRegisterWndClass(CS_OWNDC | CS_HREDRAW);
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(AfxRegisterWndClass(CS_OWNDC | CS_HREDRAW), name);
    WNDCLASSW registered{};
    ASSERT_TRUE(::GetClassInfoW(::GetModuleHandleW(nullptr), name, &registered));
    EXPECT_EQ(registered.style, CS_OWNDC | CS_HREDRAW);
    EXPECT_EQ(registered.lpfnWndProc, &AfxWndProc);
}

TEST_F(FrameworkWindow, ClassOfOtherArgumentsHasAnotherName)
{
    const auto brush = static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH));
    const std::wstring plain = AfxRegisterWndClass(0);
    const std::wstring styled = AfxRegisterWndClass(CS_OWNDC);
    const std::wstring brushed = AfxRegisterWndClass(0, nullptr, brush);
    EXPECT_NE(plain, styled);
    EXPECT_NE(plain, brushed);
    EXPECT_NE(styled, brushed);
    WNDCLASSW registered{};
    ASSERT_TRUE(::GetClassInfoW(::GetModuleHandleW(nullptr), brushed.c_str(), &registered));
    EXPECT_EQ(registered.hbrBackground, brush);
}

TEST_F(FrameworkWindow, NamesOfClassesStayValidWhileOthersAreRegistered)
{
    const LPCWSTR name = AfxRegisterWndClass(0);
    const std::wstring copy = name;
    for (UINT style = 0; style < 4; ++style)
        AfxRegisterWndClass(style);
    EXPECT_EQ(copy, name);
    EXPECT_EQ(AfxRegisterWndClass(0), name);
}

TEST_F(FrameworkWindow, ClassThatWasUnregisteredIsRegisteredAgain)
{
    const LPCWSTR name = AfxRegisterWndClass(CS_VREDRAW);
    ASSERT_TRUE(::UnregisterClassW(name, ::GetModuleHandleW(nullptr)));
    EXPECT_EQ(AfxRegisterWndClass(CS_VREDRAW), name);
    WNDCLASSW registered{};
    EXPECT_TRUE(::GetClassInfoW(::GetModuleHandleW(nullptr), name, &registered));
}

// Rectangles and points.

TEST(FrameworkGeometry, RectangleTellsItsWidthAndHeight)
{
    const CRect rect(10, 20, 110, 70);
    EXPECT_EQ(rect.Width(), 100);
    EXPECT_EQ(rect.Height(), 50);
    EXPECT_EQ(CRect().Width(), 0);
    const RECT turned{5, 5, 3, 4};
    EXPECT_EQ(CRect(turned).Width(), -2);
    EXPECT_EQ(CRect(turned).Height(), -1);
}

TEST(FrameworkGeometry, PointKeepsItsCoordinates)
{
    EXPECT_EQ(CPoint(-3, 7).x, -3);
    EXPECT_EQ(CPoint(POINT{4, 5}).y, 5);
    EXPECT_EQ(CPoint().x, 0);
}

} // namespace
