// Top-level windows under a window manager, which frames, moves and focuses them asynchronously.
#include "tests/support/x11_test.h"

namespace karv_test
{

class X11WindowManager : public X11ManagedTest
{
  protected:
    [[nodiscard]] static Size OriginOf(HWND window)
    {
        POINT origin{};
        ClientToScreen(window, &origin);
        return {origin.x, origin.y};
    }
};

TEST_F(X11WindowManager, FramesTheWindowAroundItsClientArea)
{
    const HWND window = MakeManaged();
    const XClient::Id id = managed_id_;
    EXPECT_NE(client_.ParentOf(id), client_.Root());
    EXPECT_TRUE(PumpUntil([&] { return OriginOf(window) == client_.PositionOnScreen(id); }));
    EXPECT_EQ(OriginOf(window), Size(200, 150)) << "the client area is where the program put it";
    EXPECT_EQ(ClientSizeOf(window), Size(300, 200));
}

TEST_F(X11WindowManager, PlaceLeftToTheSystemHasTheTitleBarOnTheScreen)
{
    MakeManaged();
    const HWND window = Make(L"free", WS_OVERLAPPEDWINDOW | WS_VISIBLE, nullptr,
                             {CW_USEDEFAULT, 0, CW_USEDEFAULT + 200, 100});
    ASSERT_TRUE(PumpUntil([&] {
        const auto found = client_.FindByName("free");
        return found.size() == 1 && client_.IsSeen(found.front()) &&
               OriginOf(window) == client_.PositionOnScreen(found.front());
    }));
    EXPECT_EQ(ClientSizeOf(window), Size(200, 100));
    EXPECT_GT(OriginOf(window).second, 5) << "room for the frame";
}

TEST_F(X11WindowManager, ProgramsOwnMoveIsExact)
{
    const HWND window = MakeManaged();
    const XClient::Id id = managed_id_;
    for (const LONG x : {300, 310, 320}) {
        MoveWindow(window, x, 200, 250, 150, TRUE);
        EXPECT_TRUE(PumpUntil([&] {
            return client_.PositionOnScreen(id) == Size(x, 200) && client_.SizeOf(id) == Size(250, 150);
        }));
        PumpArrived();
        EXPECT_EQ(OriginOf(window), Size(x, 200));
        EXPECT_EQ(ClientSizeOf(window), Size(250, 150));
    }
}

TEST_F(X11WindowManager, MoveAndResizeByTheManagerAreFollowed)
{
    const HWND window = MakeManaged();
    const XClient::Id id = managed_id_;
    client_.MoveResize(id, 330, 220, 280, 170);
    EXPECT_TRUE(PumpUntil([&] { return ClientSizeOf(window) == Size(280, 170); }));
    EXPECT_TRUE(PumpUntil([&] { return OriginOf(window) == client_.PositionOnScreen(id); }));
}

TEST_F(X11WindowManager, MouseAndWheelHaveTheirPlacesInsideTheFrame)
{
    const HWND window = MakeManaged();
    const auto [left, top] = client_.PositionOnScreen(managed_id_);
    TakeMessages();
    client_.MovePointer(left + 30, top + 40);
    client_.Click(4);
    ASSERT_TRUE(PumpUntil([&] { return CountOf(WM_MOUSEWHEEL) == 1; }));
    EXPECT_EQ(MessagesOf(WM_MOUSEMOVE).back().lParam, MAKELPARAM(30, 40));
    EXPECT_EQ(MessagesOf(WM_MOUSEWHEEL).front().lParam, MAKELPARAM(left + 30, top + 40));
    EXPECT_EQ(MessagesOf(WM_MOUSEWHEEL).front().hwnd, window);
}

TEST_F(X11WindowManager, FocusOfABackgroundWindowIsNotTaken)
{
    const HWND back = MakeManaged();
    const HWND child = MakeChild(back, {0, 0, 50, 50});
    const HWND front = Make(L"front", WS_OVERLAPPEDWINDOW | WS_VISIBLE, nullptr, {50, 50, 150, 100});
    ASSERT_TRUE(PumpUntil([&] {
        return GetFocus() == front && client_.FindByName("front") == std::vector{client_.Focused()};
    }));
    SetFocus(child);
    PumpArrived();
    EXPECT_EQ(GetFocus(), child);
    EXPECT_EQ(client_.Focused(), IdOf("front"));
}

TEST_F(X11WindowManager, HiddenAndShownAgainItComesBack)
{
    const HWND window = MakeManaged();
    const XClient::Id id = managed_id_;
    ShowWindow(window, SW_HIDE);
    EXPECT_TRUE(PumpUntil([&] { return !client_.IsSeen(id); }));
    ShowWindow(window, SW_SHOW);
    EXPECT_TRUE(PumpUntil([&] { return client_.IsSeen(id); }));
    EXPECT_TRUE(IsWindowVisible(window));
}

TEST_F(X11WindowManager, WindowShownLateIsPaintedWhenItAppears)
{
    const HWND window = MakeManaged();
    MakeCurrentContext(window);
    ShowWindow(window, SW_HIDE);
    ASSERT_TRUE(PumpUntil([&] { return !client_.IsSeen(managed_id_); }));
    // The program draws at once; the window is not shown yet.
    window_manager_.Pause();
    ShowWindow(window, SW_SHOW);
    PumpArrived();
    EXPECT_FALSE(client_.IsSeen(managed_id_));
    TakeMessages();
    window_manager_.Resume();
    EXPECT_TRUE(PumpUntil([&] { return CountOf(WM_PAINT) > 0; }));
    EXPECT_TRUE(client_.IsSeen(managed_id_));
}

} // namespace karv_test
