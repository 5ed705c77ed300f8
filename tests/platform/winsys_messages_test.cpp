// The message queue: order, filters, timers, and the descriptor for foreign loops.
#include "platform/winsys/frame_clock.h"
#include "tests/platform/winsys_contract.h"

#include <algorithm>

using testing::ElementsAre;

namespace karv_test
{
namespace
{

int callback_count = 0;
UINT_PTR callback_id = 0;

void CALLBACK CountCallback(HWND, UINT, UINT_PTR id, DWORD)
{
    ++callback_count;
    callback_id = id;
}

} // namespace

using WinsysMessages = WinsysContract;

INSTANTIATE_TEST_SUITE_P(Backends, WinsysMessages, EveryBackend(), BackendTestName);

constexpr UINT kFirst = WM_USER + 1;
constexpr UINT kSecond = WM_USER + 2;

TEST_P(WinsysMessages, EmptyQueueHasNothing)
{
    MSG message{};
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_FALSE(PeekMessageW(nullptr, nullptr, 0, 0, PM_REMOVE));
}

TEST_P(WinsysMessages, PostedOnesKeepTheirOrderAndParameters)
{
    const HWND window = MakeShown(L"a");
    PostMessageW(window, kFirst, 1, 2);
    PostMessageW(window, kSecond, 3, -4);
    const MSG first = Take();
    EXPECT_EQ(first.hwnd, window);
    EXPECT_EQ(first.message, kFirst);
    EXPECT_EQ(first.wParam, 1U);
    EXPECT_EQ(first.lParam, 2);
    const MSG second = Take();
    EXPECT_EQ(second.message, kSecond);
    EXPECT_EQ(second.lParam, -4);
}

TEST_P(WinsysMessages, MouseMovesAreNotMerged)
{
    const HWND window = MakeShown(L"a");
    for (int x = 0; x < 3; ++x)
        PostMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(x, 0));
    EXPECT_EQ(Pump(), 3);
}

TEST_P(WinsysMessages, PeekWithoutRemovalLeavesTheMessage)
{
    const HWND window = MakeShown(L"a");
    PostMessageW(window, kFirst, 0, 0);
    MSG message{};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_P(WinsysMessages, PostedThenQuitThenPaintThenTimer)
{
    const HWND window = MakeShown(L"a");
    SetTimer(window, 1, 1, nullptr);
    ASSERT_TRUE(WaitForMessage()) << "the timer is due";
    InvalidateRect(window, nullptr, FALSE);
    PostQuitMessage(5);
    PostMessageW(window, kFirst, 0, 0);

    MSG message{};
    EXPECT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(MessageName(message.message), MessageName(kFirst));
    EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(MessageName(message.message), "WM_QUIT");
    EXPECT_EQ(message.wParam, 5U);
    EXPECT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(MessageName(message.message), "WM_PAINT");
    ValidateRect(window, nullptr);
    EXPECT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(MessageName(message.message), "WM_TIMER");
}

TEST_P(WinsysMessages, QuitComesOnceAndPassesEveryFilter)
{
    const HWND window = MakeShown(L"a");
    PostQuitMessage(0);
    EXPECT_EQ(Take(window, kFirst, kFirst).message, WM_QUIT);
    EXPECT_EQ(Take().message, WM_NULL);
}

TEST_P(WinsysMessages, FilterTakesOneWindowAndItsChildren)
{
    const HWND a = MakeShown(L"a");
    const HWND child = Make(L"child", WS_CHILD, a);
    const HWND b = MakeShown(L"b");
    PostMessageW(b, kFirst, 0, 0);
    PostMessageW(child, kSecond, 0, 0);
    EXPECT_EQ(Take(a).hwnd, child);
    EXPECT_EQ(Take(a).message, WM_NULL);
    EXPECT_EQ(Take(b).hwnd, b);
}

TEST_P(WinsysMessages, FilterTakesARangeOfMessages)
{
    const HWND window = MakeShown(L"a");
    PostMessageW(window, kFirst, 0, 0);
    PostMessageW(window, kSecond, 0, 0);
    EXPECT_EQ(Take(nullptr, kSecond, kSecond).message, kSecond);
    EXPECT_EQ(Take(nullptr, kSecond, kSecond).message, WM_NULL);
    EXPECT_EQ(Take().message, kFirst);
}

TEST_P(WinsysMessages, FilterHoldsForPaintsAndTimers)
{
    const HWND a = MakeShown(L"a");
    const HWND b = MakeShown(L"b");
    InvalidateRect(a, nullptr, FALSE);
    EXPECT_EQ(Take(b).message, WM_NULL);
    EXPECT_EQ(Take(nullptr, kFirst, kSecond).message, WM_NULL);
    SetTimer(b, 1, 1, nullptr);
    MSG message{};
    ASSERT_TRUE(GetMessageW(&message, b, 0, 0)) << "the invalid window a does not keep it from sleeping";
    EXPECT_EQ(message.message, WM_TIMER);
    EXPECT_EQ(Take(a).message, WM_PAINT);
}

TEST_P(WinsysMessages, MessagesOfNoWindowBelongToTheThread)
{
    const HWND window = MakeShown(L"a");
    EXPECT_TRUE(PostMessageW(nullptr, kFirst, 0, 0));
    EXPECT_EQ(Take(window).message, WM_NULL);
    PostMessageW(window, kSecond, 0, 0);
    const auto thread_only = reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1));
    EXPECT_EQ(Take(thread_only).message, kFirst);
    EXPECT_EQ(Take(thread_only).message, WM_NULL);
}

TEST_P(WinsysMessages, DestroyedWindowTakesItsMessagesAlong)
{
    const HWND window = MakeShown(L"a");
    const HWND other = MakeShown(L"b");
    PostMessageW(window, kFirst, 0, 0);
    PostMessageW(other, kSecond, 0, 0);
    SetTimer(window, 1, 1, nullptr);
    InvalidateRect(window, nullptr, FALSE);
    DestroyWindow(window);
    EXPECT_EQ(Take().message, kSecond);
    EXPECT_EQ(Take().message, WM_NULL);
    EXPECT_FALSE(KillTimer(window, 1));
}

TEST_P(WinsysMessages, HandlerMayDestroyTheWindowThatIsHandled)
{
    const HWND window = MakeShown(L"a");
    handler_ = [](HWND self, UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (message == kFirst) {
            DestroyWindow(self);
            return 7;
        }
        return std::nullopt;
    };
    PostMessageW(window, kFirst, 0, 0);
    const MSG message = Take();
    EXPECT_EQ(DispatchMessageW(&message), 7);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(DispatchMessageW(&message), 0) << "the window is gone";
}

TEST_P(WinsysMessages, SentMessageIsHandledAtOnce)
{
    const HWND window = MakeShown(L"a");
    handler_ = [](HWND, UINT, WPARAM wparam, LPARAM lparam) -> std::optional<LRESULT> {
        return static_cast<LRESULT>(wparam) + lparam;
    };
    PostMessageW(window, kFirst, 0, 0);
    EXPECT_EQ(SendMessageW(window, kSecond, 30, 12), 42);
    EXPECT_THAT(TakeMessages(), ElementsAre("a " + MessageName(kSecond)));
}

TEST_P(WinsysMessages, MillisecondTimerDeliversManyMessages)
{
    const HWND window = MakeShown(L"a");
    int count = 0;
    handler_ = [&](HWND, UINT message, WPARAM id, LPARAM) {
        count += message == WM_TIMER && id == 7 ? 1 : 0;
        return std::nullopt;
    };
    EXPECT_EQ(SetTimer(window, 7, 1, nullptr), 7U);
    EXPECT_TRUE(PumpUntil([&] { return count >= 50; }));
}

TEST_P(WinsysMessages, TimerOfPeriodZeroIsATimer)
{
    const HWND window = MakeShown(L"a");
    SetTimer(window, 1, 0, nullptr);
    MSG message{};
    EXPECT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(message.message, WM_TIMER);
}

TEST_P(WinsysMessages, TimerOfIdZeroHasAReturnValue)
{
    const HWND window = MakeShown(L"a");
    EXPECT_NE(SetTimer(window, 0, 1, nullptr), 0U);
    MSG message{};
    EXPECT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(message.wParam, 0U);
    EXPECT_TRUE(KillTimer(window, 0));
}

TEST_P(WinsysMessages, TimerSetTwiceIsOneTimer)
{
    const HWND window = MakeShown(L"a");
    SetTimer(window, 1, 1, nullptr);
    SetTimer(window, 1, 1'000'000, nullptr);
    SetTimer(window, 2, 1, nullptr);
    for (int i = 0; i < 5; ++i) {
        MSG message{};
        ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0));
        EXPECT_EQ(message.wParam, 2U) << "the long period has replaced the short one";
    }
    EXPECT_TRUE(KillTimer(window, 1));
    EXPECT_FALSE(KillTimer(window, 1));
}

TEST_P(WinsysMessages, TwoTimersTakeTurns)
{
    const HWND window = MakeShown(L"a");
    int count[3]{};
    handler_ = [&](HWND, UINT message, WPARAM id, LPARAM) {
        if (message == WM_TIMER)
            ++count[id];
        return std::nullopt;
    };
    SetTimer(window, 1, 1, nullptr);
    SetTimer(window, 2, 1, nullptr);
    EXPECT_TRUE(PumpUntil([&] { return count[1] >= 10 && count[2] >= 10; }, 1000));
}

TEST_P(WinsysMessages, FastTimerDoesNotStarvePostedMessages)
{
    const HWND window = MakeShown(L"a");
    int timers = 0;
    int posted = 0;
    handler_ = [&](HWND self, UINT message, WPARAM, LPARAM) {
        if (message == WM_TIMER) {
            // A frame that takes longer than the timer's period: the timer is due again when this handler
            // ends.
            const std::clock_t start = winsys::FrameClock();
            while (winsys::FrameClock() < start + 3) {
            }
            ++timers;
            PostMessageW(self, WM_MOUSEMOVE, 0, 0);
            PostMessageW(self, WM_MOUSEMOVE, 0, 0);
        }
        posted += message == WM_MOUSEMOVE ? 1 : 0;
        EXPECT_LE(timers * 2 - posted, 2) << "a timer came before the messages that were posted earlier";
        return std::nullopt;
    };
    SetTimer(window, 1, 1, nullptr);
    EXPECT_TRUE(PumpUntil([&] { return timers == 5 && posted == 10; }, 15));
}

TEST_P(WinsysMessages, OneMessageOfATimerWaitsAtMost)
{
    constexpr std::clock_t kPeriod = 2;
    const HWND unread = MakeShown(L"a");
    const HWND other = MakeShown(L"b");
    SetTimer(unread, 1, kPeriod, nullptr);
    SetTimer(other, 1, 100, nullptr);
    MSG message{};
    ASSERT_TRUE(GetMessageW(&message, other, 0, 0)); // 50 periods of the unread timer go by
    const std::clock_t start = winsys::FrameClock();
    int waiting = 0;
    while (waiting < 50 && Take(unread).message == WM_TIMER)
        ++waiting;
    // The waiting one, and those that became due while messages were removed; one more for the rounding of
    // the clock.
    const std::clock_t taking = winsys::FrameClock() - start;
    EXPECT_GE(waiting, 1);
    EXPECT_LE(waiting, 2 + taking / kPeriod);
}

TEST_P(WinsysMessages, DispatchCallsTheTimersFunction)
{
    const HWND window = MakeShown(L"a");
    callback_count = 0;
    SetTimer(window, 9, 1, &CountCallback);
    EXPECT_TRUE(PumpUntil([] { return callback_count == 1; }, 1));
    EXPECT_EQ(callback_id, 9U);
    EXPECT_THAT(TakeMessages(), testing::IsEmpty()) << "the window's procedure is passed over";
}

TEST_P(WinsysMessages, TimerWithoutAWindowChoosesItsId)
{
    callback_count = 0;
    const UINT_PTR first = SetTimer(nullptr, 5, 1, &CountCallback);
    const UINT_PTR second = SetTimer(nullptr, 5, 1, &CountCallback);
    EXPECT_NE(first, 0U);
    EXPECT_NE(first, second);
    EXPECT_TRUE(PumpUntil([] { return callback_count >= 4; }));
    EXPECT_TRUE(KillTimer(nullptr, first));
    EXPECT_TRUE(KillTimer(nullptr, second));
}

TEST_P(WinsysMessages, FrameClockRunsInMilliseconds)
{
    const std::clock_t start = winsys::FrameClock();
    const HWND window = MakeShown(L"a");
    SetTimer(window, 1, 20, nullptr);
    MSG message{};
    ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    // A period of 20 ms lies between; rounding of each reading may lose one tick.
    EXPECT_GE(winsys::FrameClock() - start, 19);
}

TEST_P(WinsysMessages, ScriptedFrameClockReplacesTheRealOne)
{
    winsys::SetFrameClock([] { return std::clock_t{1234}; });
    EXPECT_EQ(winsys::FrameClock(), 1234);
    winsys::SetFrameClock(nullptr);
    EXPECT_LE(winsys::FrameClock(), winsys::FrameClock());
}

} // namespace karv_test
