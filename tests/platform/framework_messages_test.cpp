// The messages that reach a window's handlers: message maps, default handling inside a message, and windows
// and objects destroyed during a message.
#include "tests/platform/framework_window.h"

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>

using namespace karv_test;
using testing::ElementsAre;

namespace
{

using FrameworkMessages = FrameworkWindow;

/// Handles timers and leaves other messages to its base.
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
        // A copy: the object's own functions are destroyed with it.
        const std::function<void()> last = drop;
        last();
        return 0;
    }
};

// Message maps.

TEST_F(FrameworkMessages, MostDerivedMapAnswersFirst)
{
    DerivedWindow window(log_);
    ASSERT_TRUE(window.Create());
    log_.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 9, 0);
    EXPECT_THAT(log_, ElementsAre("derived timer 9", "timer 9"));
}

TEST_F(FrameworkMessages, MapOfTheBaseAnswersWhatTheDerivedOneDoesNot)
{
    DerivedWindow window(log_);
    ASSERT_TRUE(window.Create());
    log_.clear();
    ::SendMessageW(window.m_hWnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(3, 4));
    EXPECT_THAT(log_, ElementsAre("size 0 3 4"));
}

TEST_F(FrameworkMessages, MessageThatNoMapNamesGetsTheDefaultHandling)
{
    DerivedWindow window(log_);
    ASSERT_TRUE(window.Create());
    log_.clear();
    EXPECT_EQ(::SendMessageW(window.m_hWnd, WM_USER, 5, 6), 0);
    EXPECT_THAT(log_, ElementsAre("default 1024 5 6"));
}

TEST_F(FrameworkMessages, SizesAreUnsignedHalvesOfTheParameter)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    log_.clear();
    ::SendMessageW(window.m_hWnd, WM_SIZE, SIZE_MINIMIZED, MAKELPARAM(0, 0));
    ::SendMessageW(window.m_hWnd, WM_SIZE, SIZE_MAXIMIZED, MAKELPARAM(65535, 40000));
    EXPECT_THAT(log_, ElementsAre("size 1 0 0", "size 2 65535 40000"));
}

TEST_F(FrameworkMessages, MovingSendsTheNewSize)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    log_.clear();
    EXPECT_TRUE(window.MoveWindow(CRect(1, 2, 31, 42)));
    EXPECT_THAT(log_, ElementsAre("size 0 30 40"));
}

TEST_F(FrameworkMessages, PaintingOfTheBaseEndsThePaint)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    Pump();
    ::InvalidateRect(window.m_hWnd, nullptr, FALSE);
    EXPECT_EQ(Pump(), 1) << "a window that stays invalid is painted for ever";
}

// Default handling inside a message.

TEST_F(FrameworkMessages, DefaultHandlesTheMessageWithItsOwnParameters)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    window.on_timer = [&] { window.CallDefault(); };
    log_.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 7, 8);
    EXPECT_THAT(log_, ElementsAre("timer 7", "default 275 7 8"));
}

TEST_F(FrameworkMessages, DefaultOutsideAnyMessageDoesNothing)
{
    LoggedWindow window(log_);
    EXPECT_EQ(window.CallDefault(), 0);
    ASSERT_TRUE(window.Create());
    log_.clear();
    EXPECT_EQ(window.CallDefault(), 0);
    EXPECT_TRUE(log_.empty());
}

TEST_F(FrameworkMessages, NestedMessageRestoresTheOuterOne)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    window.on_timer = [&] {
        ::SendMessageW(window.m_hWnd, WM_USER, 1, 2);
        window.CallDefault();
    };
    log_.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 3, 4);
    EXPECT_THAT(log_, ElementsAre("timer 3", "default 1024 1 2", "default 275 3 4"));
    EXPECT_EQ(window.CallDefault(), 0);
}

TEST_F(FrameworkMessages, DefaultIsOfTheWindowsOwnMessageWhileAnotherHandlesOne)
{
    Log other_log;
    LoggedWindow window(log_);
    LoggedWindow other(other_log);
    ASSERT_TRUE(window.Create());
    ASSERT_TRUE(other.Create());
    window.on_timer = [&] { ::SendMessageW(other.m_hWnd, WM_TIMER, 22, 0); };
    other.on_timer = [&] {
        window.CallDefault();
        other.CallDefault();
    };
    log_.clear();
    other_log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 11, 0);
    EXPECT_THAT(log_, ElementsAre("timer 11", "default 275 11 0"));
    EXPECT_THAT(other_log, ElementsAre("timer 22", "default 275 22 0"));
}

TEST_F(FrameworkMessages, DefaultOfAWindowThatOnlyWatchesDoesNothing)
{
    Log other_log;
    LoggedWindow window(log_);
    LoggedWindow watcher(other_log);
    ASSERT_TRUE(window.Create());
    ASSERT_TRUE(watcher.Create());
    window.on_timer = [&] { EXPECT_EQ(watcher.CallDefault(), 0); };
    other_log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 1, 0);
    EXPECT_TRUE(other_log.empty());
}

// Windows and objects destroyed during a message.

TEST_F(FrameworkMessages, WindowMayBeDestroyedInAHandler)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    window.on_timer = [&] {
        window.DestroyWindow();
        EXPECT_EQ(window.m_hWnd, nullptr);
        EXPECT_EQ(window.CallDefault(), 0);
    };
    log_.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 1, 0);
    EXPECT_THAT(log_, ElementsAre("timer 1", "gone", "default 275 1 0"));
}

TEST_F(FrameworkMessages, ObjectMayBeDeletedInAHandler)
{
    auto window = std::make_unique<LoggedWindow>(log_);
    ASSERT_TRUE(window->Create());
    const HWND handle = window->m_hWnd;
    // The handler is outside the object, whose own functions are destroyed with it.
    const std::function<void()> drop = [&] { window.reset(); };
    window->on_timer = [&drop] { drop(); };
    log_.clear();
    ::SendMessageW(handle, WM_TIMER, 1, 0);
    EXPECT_EQ(window, nullptr);
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_THAT(log_, ElementsAre("timer 1"));
}

TEST_F(FrameworkMessages, ObjectMayBeDeletedInAMessageInsideItsOwn)
{
    LoggedWindow outer(log_);
    ASSERT_TRUE(outer.Create());
    auto inner = std::make_unique<LoggedWindow>(log_);
    ASSERT_TRUE(inner->Create());
    outer.on_timer = [&] { inner.reset(); };
    inner->on_timer = [&outer] { ::SendMessageW(outer.m_hWnd, WM_TIMER, 2, 0); };
    log_.clear();
    ::SendMessageW(inner->m_hWnd, WM_TIMER, 1, 0);
    EXPECT_THAT(log_, ElementsAre("timer 1", "timer 2"));
}

TEST_F(FrameworkMessages, ObjectMayDeleteItselfWhenItsWindowIsGone)
{
    auto window = std::make_unique<LoggedWindow>(log_);
    ASSERT_TRUE(window->Create());
    const std::function<void()> drop = [&] { window.reset(); };
    window->on_gone = [&drop] { drop(); };
    log_.clear();
    EXPECT_TRUE(window->DestroyWindow());
    EXPECT_EQ(window, nullptr);
    EXPECT_THAT(log_, ElementsAre("gone"));
}

TEST_F(FrameworkMessages, ObjectMayBeDeletedInTheLastMessageOfItsWindow)
{
    auto window = std::make_unique<ShortLivedWindow>(log_);
    ASSERT_TRUE(window->Create());
    const HWND handle = window->m_hWnd;
    window->drop = [&window] { window.reset(); };
    log_.clear();
    EXPECT_TRUE(::DestroyWindow(handle));
    EXPECT_EQ(window, nullptr);
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_TRUE(log_.empty());
}

TEST_F(FrameworkMessages, ObjectMayDeleteItselfWhenItsCreationIsRefused)
{
    auto window = std::make_unique<LoggedWindow>(log_);
    const std::function<void()> drop = [&] { window.reset(); };
    window->on_gone = [&drop] { drop(); };
    window->create_result = -1;
    EXPECT_FALSE(window->Create());
    EXPECT_EQ(window, nullptr);
}

TEST_F(FrameworkMessages, NewObjectInTheOldOnesPlaceIsNotTakenForIt)
{
    alignas(LoggedWindow) std::array<std::byte, sizeof(LoggedWindow)> place;
    auto* const first = std::construct_at(reinterpret_cast<LoggedWindow*>(place.data()), log_);
    ASSERT_TRUE(first->Create());
    const HWND handle = first->m_hWnd;
    LRESULT later = -1;
    const std::function<void()> replace = [&] {
        std::destroy_at(first);
        auto* const second = std::construct_at(reinterpret_cast<LoggedWindow*>(place.data()), log_);
        later = second->CallDefault();
        std::destroy_at(second);
    };
    first->on_timer = [&replace] { replace(); };
    log_.clear();
    ::SendMessageW(handle, WM_TIMER, 1, 0);
    EXPECT_EQ(later, 0);
    EXPECT_THAT(log_, ElementsAre("timer 1"));
}

// Faults.

TEST_F(FrameworkMessages, ExceptionOfAHandlerPassesThroughAndLeavesNoMessageBehind)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    window.on_timer = [] { throw std::runtime_error("handler"); };
    log_.clear();
    EXPECT_THROW(::SendMessageW(window.m_hWnd, WM_TIMER, 1, 0), std::runtime_error);
    EXPECT_EQ(window.CallDefault(), 0);
    EXPECT_THAT(log_, ElementsAre("timer 1"));
    window.on_timer = [&] { window.CallDefault(); };
    ::SendMessageW(window.m_hWnd, WM_TIMER, 2, 0);
    EXPECT_THAT(log_, ElementsAre("timer 1", "timer 2", "default 275 2 0"));
}

} // namespace
