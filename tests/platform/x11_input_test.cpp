// Pointer, wheel and key events that another client generates, and the messages of the layer's windows.
#include "platform/winsys/frame_clock.h"
#include "tests/support/x11_test.h"

#include <algorithm>

using testing::ElementsAre;

namespace karv_test
{

class X11Input : public X11Test
{
  protected:
    /// Waits for the next message of this kind and returns it.
    MSG Next(UINT message)
    {
        EXPECT_TRUE(PumpUntil([&] { return CountOf(message) > 0; })) << "message " << message;
        const std::vector<MSG> found = MessagesOf(message);
        TakeMessages();
        return found.empty() ? MSG{} : found.front();
    }

    /// Waits until the layer has read everything that the server has sent so far: a pointer movement over
    /// `window`, to this place on the screen, comes last.
    void Settle(HWND window, int x, int y)
    {
        client_.MovePointer(x, y);
        POINT at{x, y};
        ScreenToClient(window, &at);
        ASSERT_TRUE(PumpUntil([&] {
            return std::ranges::any_of(MessagesOf(WM_MOUSEMOVE), [&](const MSG& move) {
                return move.hwnd == window && move.lParam == MAKELPARAM(at.x, at.y);
            });
        }));
    }

    HWND window_ = MakeShown(L"a", {100, 50, 300, 200});
};

TEST_F(X11Input, MoveIsInClientCoordinates)
{
    client_.MovePointer(100 + 7, 50 + 9);
    const MSG move = Next(WM_MOUSEMOVE);
    EXPECT_EQ(move.hwnd, window_);
    EXPECT_EQ(move.lParam, MAKELPARAM(7, 9));
    EXPECT_EQ(move.wParam, 0U);
}

TEST_F(X11Input, ChildGetsItsMovesInItsOwnCoordinates)
{
    const HWND child = MakeChild(window_, {10, 20, 90, 80});
    MakeCurrentContext(child);
    client_.MovePointer(100 + 10 + 3, 50 + 20 + 4);
    const MSG move = Next(WM_MOUSEMOVE);
    EXPECT_EQ(move.hwnd, child);
    EXPECT_EQ(move.lParam, MAKELPARAM(3, 4));
}

TEST_F(X11Input, EveryButtonHasItsMessagesAndFlag)
{
    struct Expected {
        unsigned button;
        UINT down;
        UINT up;
        WPARAM flag;
    };
    for (const Expected& expected : {Expected{1, WM_LBUTTONDOWN, WM_LBUTTONUP, MK_LBUTTON},
                                     Expected{2, WM_MBUTTONDOWN, WM_MBUTTONUP, MK_MBUTTON},
                                     Expected{3, WM_RBUTTONDOWN, WM_RBUTTONUP, MK_RBUTTON}}) {
        client_.MovePointer(150, 100);
        client_.Press(expected.button);
        const MSG down = Next(expected.down);
        EXPECT_EQ(down.wParam, expected.flag);
        EXPECT_EQ(down.lParam, MAKELPARAM(50, 50));
        client_.MovePointer(150 + static_cast<int>(expected.button), 100);
        EXPECT_EQ(Next(WM_MOUSEMOVE).wParam, expected.flag);
        client_.Release(expected.button);
        EXPECT_EQ(Next(expected.up).wParam, 0U);
    }
}

TEST_F(X11Input, ModifiersAreTold)
{
    client_.PressKey("Shift_L");
    client_.MovePointer(150, 100);
    EXPECT_EQ(Next(WM_MOUSEMOVE).wParam, MK_SHIFT);
    client_.PressKey("Control_L");
    client_.MovePointer(151, 100);
    EXPECT_EQ(Next(WM_MOUSEMOVE).wParam, MK_SHIFT | MK_CONTROL);
    client_.ReleaseKey("Control_L");
    client_.ReleaseKey("Shift_L");
}

TEST_F(X11Input, WheelTurnsByANotchWithThePointOnTheScreen)
{
    client_.MovePointer(150, 100);
    client_.Click(4);
    const MSG up = Next(WM_MOUSEWHEEL);
    EXPECT_EQ(GET_WHEEL_DELTA_WPARAM(up.wParam), 120);
    EXPECT_EQ(up.lParam, MAKELPARAM(150, 100));
    client_.Click(5);
    EXPECT_EQ(GET_WHEEL_DELTA_WPARAM(Next(WM_MOUSEWHEEL).wParam), -120);
}

TEST_F(X11Input, WheelTellsTheButtonsThatAreDown)
{
    client_.MovePointer(150, 100);
    client_.Press(2);
    client_.Click(4);
    EXPECT_EQ(LOWORD(Next(WM_MOUSEWHEEL).wParam), MK_MBUTTON);
    client_.Release(2);
}

TEST_F(X11Input, SidewaysWheelAndFurtherButtonsAreLeftOut)
{
    client_.MovePointer(150, 100);
    for (const unsigned button : {6U, 7U, 8U, 9U})
        client_.Click(button);
    Settle(window_, 151, 100);
    EXPECT_EQ(CountOf(WM_MOUSEWHEEL), 0);
    EXPECT_EQ(CountOf(WM_LBUTTONDOWN) + CountOf(WM_MBUTTONDOWN) + CountOf(WM_RBUTTONDOWN), 0);
}

TEST_F(X11Input, DragIsFollowedAtEveryEvent)
{
    client_.MovePointer(110, 60);
    client_.Press(1);
    for (int i = 1; i <= 100; ++i)
        client_.MovePointer(110 + i, 60 + i / 2);
    client_.Release(1);
    ASSERT_TRUE(PumpUntil([&] { return CountOf(WM_LBUTTONUP) == 1; }));
    std::vector<LPARAM> seen;
    for (const MSG& move : MessagesOf(WM_MOUSEMOVE))
        if (move.wParam == MK_LBUTTON)
            seen.push_back(move.lParam);
    std::vector<LPARAM> expected;
    for (int i = 1; i <= 100; ++i)
        expected.push_back(MAKELPARAM(10 + i, 10 + i / 2));
    EXPECT_EQ(seen, expected);
}

TEST_F(X11Input, DragIsFollowedAlthoughATimerIsAlwaysDue)
{
    int frames = 0;
    SetTimer(window_, 1, 1, nullptr);
    client_.MovePointer(110, 60);
    client_.Press(1);
    for (int i = 1; i <= 50; ++i)
        client_.MovePointer(110 + i, 60);
    client_.Release(1);
    MSG message{};
    bool is_over = false;
    while (!is_over) {
        ASSERT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
        if (message.message == WM_TIMER) {
            // A frame that takes longer than the timer's period.
            const std::clock_t start = winsys::FrameClock();
            while (winsys::FrameClock() < start + 3) {
            }
            ++frames;
        }
        DispatchMessageW(&message);
        is_over = CountOf(WM_LBUTTONUP) > 0 || frames > 1000;
    }
    int moves = 0;
    for (const MSG& move : MessagesOf(WM_MOUSEMOVE))
        moves += move.wParam == MK_LBUTTON ? 1 : 0;
    EXPECT_EQ(moves, 50);
}

TEST_F(X11Input, MovementOutsideDuringADragIsDropped)
{
    client_.MovePointer(290, 100);
    client_.Press(1);
    Next(WM_LBUTTONDOWN);
    client_.MovePointer(400, 100);
    client_.MovePointer(500, 100);
    Settle(window_, 295, 100);
    for (const MSG& move : MessagesOf(WM_MOUSEMOVE)) {
        EXPECT_EQ(move.lParam, MAKELPARAM(195, 50));
        EXPECT_EQ(move.wParam, MK_LBUTTON) << "the drag began here and goes on";
    }
    client_.Release(1);
}

TEST_F(X11Input, GrabEndsWithThePressSoThatOtherWindowsGetTheMoves)
{
    const XClient::Id other = client_.MakeWindow(400, 50, 100, 100);
    client_.MovePointer(290, 100);
    client_.Press(1);
    Next(WM_LBUTTONDOWN);
    // The two programs have separate connections, so the server may handle the movement before the request
    // that ends the grab.
    int x = 410;
    EXPECT_TRUE(PumpUntil([&] {
        client_.MovePointer(++x, 100);
        return client_.HasSeen(6 /* MotionNotify */) || x == 490;
    }));
    EXPECT_LT(x, 490);
    client_.Release(1);
    EXPECT_TRUE(client_.HasSeen(5 /* ButtonRelease */));
    client_.DestroyWindow(other);
}

TEST_F(X11Input, ReleaseOutsideIsLearntOnReturn)
{
    client_.MovePointer(290, 100);
    client_.Press(1);
    Next(WM_LBUTTONDOWN);
    client_.MovePointer(500, 100);
    client_.Release(1);
    client_.MovePointer(250, 100);
    EXPECT_EQ(Next(WM_MOUSEMOVE).wParam, 0U);
}

TEST_F(X11Input, DragBegunInAnotherProgramDoesNotReachTheWindow)
{
    const XClient::Id other = client_.MakeWindow(400, 50, 100, 100);
    client_.MovePointer(450, 100);
    client_.Press(1);
    client_.MovePointer(200, 100);
    client_.MovePointer(210, 100);
    client_.Release(1);
    Settle(window_, 220, 100);
    ASSERT_EQ(CountOf(WM_MOUSEMOVE), 1);
    EXPECT_EQ(MessagesOf(WM_MOUSEMOVE).front().wParam, 0U);
    EXPECT_EQ(CountOf(WM_LBUTTONUP), 0);
    client_.DestroyWindow(other);
}

TEST_F(X11Input, DragBegunOnTheBareScreenDoesNotReachTheWindow)
{
    // There is no grab in that window, so movements arrive with the button down.
    client_.MovePointer(600, 400);
    client_.Press(1);
    client_.MovePointer(200, 100);
    client_.MovePointer(210, 100);
    client_.Release(1);
    Settle(window_, 220, 100);
    ASSERT_EQ(CountOf(WM_MOUSEMOVE), 1);
    EXPECT_EQ(CountOf(WM_LBUTTONUP), 0);
}

TEST_F(X11Input, DragFromOneWindowIsNoneOfItsNeighbour)
{
    const HWND left = MakeChild(window_, {0, 0, 100, 150});
    const HWND right = MakeChild(window_, {100, 0, 200, 150});
    client_.MovePointer(150, 100);
    client_.Press(1);
    EXPECT_EQ(Next(WM_LBUTTONDOWN).hwnd, left);
    client_.MovePointer(250, 100);
    client_.MovePointer(251, 100);
    client_.MovePointer(160, 100);
    client_.Release(1);
    Settle(right, 252, 100);
    for (const MSG& move : MessagesOf(WM_MOUSEMOVE))
        EXPECT_TRUE(move.hwnd == left || move.wParam == 0) << "a drag over the neighbour";
    EXPECT_EQ(CountOf(WM_LBUTTONUP), 1);
}

TEST_F(X11Input, SecondButtonOfAForeignDragCountsAlone)
{
    client_.MovePointer(600, 400);
    client_.Press(3);
    client_.MovePointer(200, 100);
    client_.Press(1);
    EXPECT_EQ(Next(WM_LBUTTONDOWN).wParam, MK_LBUTTON);
    client_.MovePointer(201, 100);
    EXPECT_EQ(Next(WM_MOUSEMOVE).wParam, MK_LBUTTON);
    client_.Release(1);
    client_.Release(3);
}

TEST_F(X11Input, KeysComeWithTheirCharacters)
{
    client_.MovePointer(150, 100);
    client_.PressKey("a");
    client_.ReleaseKey("a");
    ASSERT_TRUE(PumpUntil([&] { return CountOf(WM_KEYUP) > 0; }));
    std::vector<std::pair<UINT, WPARAM>> keys;
    for (const MSG& message : TakeMessages())
        if (message.message >= WM_KEYDOWN && message.message <= WM_CHAR)
            keys.emplace_back(message.message, message.wParam);
    EXPECT_THAT(keys,
                ElementsAre(std::pair<UINT, WPARAM>(WM_KEYDOWN, 'A'), std::pair<UINT, WPARAM>(WM_CHAR, 'a'),
                            std::pair<UINT, WPARAM>(WM_KEYUP, 'A')));
}

TEST_F(X11Input, ShiftedKeyKeepsItsCode)
{
    client_.MovePointer(150, 100);
    client_.PressKey("Shift_L");
    client_.PressKey("a");
    EXPECT_EQ(Next(WM_CHAR).wParam, static_cast<WPARAM>('A'));
    client_.ReleaseKey("a");
    client_.ReleaseKey("Shift_L");
}

TEST_F(X11Input, NamedKeysHaveTheCodesOfWindows)
{
    struct Expected {
        const char* symbol;
        WPARAM code;
    };
    client_.MovePointer(150, 100);
    for (const Expected& expected :
         {Expected{"Left", 0x25}, Expected{"Right", 0x27}, Expected{"Escape", 0x1B}, Expected{"F5", 0x74},
          Expected{"Home", 0x24}, Expected{"Delete", 0x2E}, Expected{"7", '7'}, Expected{"minus", 0xBD}}) {
        client_.PressKey(expected.symbol);
        EXPECT_EQ(Next(WM_KEYDOWN).wParam, expected.code) << expected.symbol;
        client_.ReleaseKey(expected.symbol);
    }
}

TEST_F(X11Input, KeysGoToTheWindowThatTheLayerGaveTheFocus)
{
    const HWND child = MakeChild(window_, {0, 0, 50, 50});
    client_.Focus(IdOf("a"));
    ASSERT_TRUE(PumpUntil([&] { return GetFocus() == window_; }));
    SetFocus(child);
    PumpArrived();
    EXPECT_EQ(client_.Focused(), IdOf("a")) << "the server's focus stays on the top-level window";
    client_.PressKey("a");
    EXPECT_EQ(Next(WM_KEYDOWN).hwnd, child);
    client_.ReleaseKey("a");
}

TEST_F(X11Input, FocusFollowsTheServer)
{
    const XClient::Id other = client_.MakeWindow(400, 50, 100, 100);
    client_.Focus(IdOf("a"));
    ASSERT_TRUE(PumpUntil([&] { return CountOf(WM_SETFOCUS) == 1; }));
    EXPECT_EQ(GetFocus(), window_);
    client_.Focus(other);
    ASSERT_TRUE(PumpUntil([&] { return CountOf(WM_KILLFOCUS) == 1; }));
    EXPECT_EQ(GetFocus(), nullptr);
    client_.DestroyWindow(other);
}

TEST_F(X11Input, FocusThatComesWithThePointerIsNone)
{
    const XClient::Id other = client_.MakeWindow(400, 50, 100, 100);
    client_.MovePointer(150, 100);
    client_.Focus(other);
    client_.FocusPointer();
    Settle(window_, 151, 100);
    EXPECT_EQ(GetFocus(), nullptr);
    client_.Focus(other);
    Settle(window_, 152, 100);
    EXPECT_EQ(CountOf(WM_KILLFOCUS), 0);
    client_.FocusPointer();
    client_.DestroyWindow(other);
}

TEST_F(X11Input, FocusOfABackgroundWindowIsOnlyRecorded)
{
    const XClient::Id other = client_.MakeWindow(400, 50, 100, 100);
    client_.Focus(other);
    PumpArrived();
    SetFocus(window_);
    EXPECT_EQ(GetFocus(), window_);
    PumpArrived();
    EXPECT_EQ(client_.Focused(), other);
    client_.DestroyWindow(other);
}

TEST_F(X11Input, FocusOfAHiddenWindowIsNoError)
{
    const HWND hidden = Make(L"hidden", WS_OVERLAPPED, nullptr);
    const XClient::Id before = client_.Focused();
    SetFocus(hidden);
    EXPECT_EQ(GetFocus(), hidden);
    PumpArrived();
    EXPECT_EQ(client_.Focused(), before);
}

} // namespace karv_test
