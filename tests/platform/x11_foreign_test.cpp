// Windows of another toolkit as parents; plain X windows of another client are used as such.
#include "platform/framework/window.h"
#include "platform/winsys/backend.h"
#include "platform/winsys/opengl.h"
#include "tests/support/trace_recording.h"
#include "tests/support/x11_test.h"

using testing::ElementsAre;

namespace karv_test
{

class X11Foreign : public X11Test
{
  protected:
    XClient::Id host_id_ = client_.MakeWindow(200, 100, 300, 250);
    HWND host_ = Adopt(host_id_);
};

constexpr unsigned kServerRed = 0xFF0000;

TEST_F(X11Foreign, WindowIsKnownByItsPlaceAndSize)
{
    ASSERT_NE(host_, nullptr);
    EXPECT_TRUE(IsWindow(host_));
    EXPECT_TRUE(IsWindowVisible(host_));
    EXPECT_EQ(ClientSizeOf(host_), Size(300, 250));
    RECT place{};
    ASSERT_TRUE(GetWindowRect(host_, &place));
    EXPECT_EQ(place.left, 200);
    EXPECT_EQ(place.top, 100);
    EXPECT_EQ(GetParent(host_), nullptr);
}

TEST_F(X11Foreign, SameWindowHasOneHandle)
{
    EXPECT_EQ(winsys::AdoptForeignWindow(host_id_), host_);
    const XClient::Id other = client_.MakeWindow(0, 0, 10, 10);
    const HWND adopted = Adopt(other);
    EXPECT_NE(adopted, host_);
    EXPECT_TRUE(DestroyWindow(adopted));
    client_.DestroyWindow(other);
}

TEST_F(X11Foreign, NoWindowIsNotAdopted)
{
    EXPECT_EQ(winsys::AdoptForeignWindow(0), nullptr);
    client_.DestroyWindow(host_id_);
    ASSERT_TRUE(PumpUntil([&] { return IsWindow(host_) == FALSE; }));
    TraceRecording trace;
    EXPECT_EQ(winsys::AdoptForeignWindow(host_id_), nullptr);
    EXPECT_EQ(trace.Faults().size(), 0U) << "to ask about a window is no mistake";
}

TEST_F(X11Foreign, ChildIsAnXWindowInTheForeignOne)
{
    const HWND child = MakeChild(host_);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(GetParent(child), host_);
    const XClient::Id id = OnlyChildOf(host_id_);
    EXPECT_TRUE(client_.IsSeen(id));
    EXPECT_EQ(client_.PositionOnScreen(id), Size(210, 120));
    MakeCurrentContext(child);
    ASSERT_TRUE(Show(child, 1, 0, 0));
    EXPECT_TRUE(ShowsPixel(210, 120, kServerRed));
    EXPECT_TRUE(ShowsPixel(209, 120, 0x00FFFFU)) << "the other toolkit's own background";
}

TEST_F(X11Foreign, FrameworkWindowTakesItAsItsParent)
{
    CWnd window;
    ASSERT_TRUE(window.CreateEx(0, AfxRegisterWndClass(CS_OWNDC), L"view", WS_CHILD | WS_VISIBLE,
                                RECT{0, 0, 50, 40}, CWnd::FromHandle(host_), 0));
    EXPECT_EQ(client_.SizeOf(OnlyChildOf(host_id_)), Size(50, 40));
    window.DestroyWindow();
    CWnd::DeleteTempMap();
}

TEST_F(X11Foreign, ItsResizeAndMoveAreFollowed)
{
    client_.MoveResize(host_id_, 20, 30, 400, 150);
    ASSERT_TRUE(PumpUntil([&] { return ClientSizeOf(host_) == Size(400, 150); }));
    RECT place{};
    ASSERT_TRUE(GetWindowRect(host_, &place));
    EXPECT_EQ(place.left, 20);
    EXPECT_EQ(place.top, 30);
}

TEST_F(X11Foreign, MoveWithAWindowFurtherOutIsLearntFromThePointer)
{
    const XClient::Id outer = client_.MakeWindow(0, 0, 400, 400);
    const XClient::Id inner = client_.MakeWindow(10, 10, 300, 300, outer);
    const HWND adopted = Adopt(inner);
    const HWND child = MakeChild(adopted, {5, 5, 105, 105});
    client_.MoveResize(outer, 300, 200, 400, 400);
    client_.MovePointer(340, 240);
    ASSERT_TRUE(PumpUntil([&] { return CountOf(WM_MOUSEMOVE) > 0; }));
    EXPECT_EQ(MessagesOf(WM_MOUSEMOVE).back().lParam, MAKELPARAM(340 - 315, 240 - 215));
    RECT place{};
    GetWindowRect(child, &place);
    EXPECT_EQ(place.left, 300 + 10 + 5);
    EXPECT_EQ(place.top, 200 + 10 + 5);
    DestroyWindow(adopted);
    client_.DestroyWindow(outer);
}

TEST_F(X11Foreign, ItsOwnerAloneShowsMovesAndNamesIt)
{
    EXPECT_FALSE(MoveWindow(host_, 0, 0, 10, 10, TRUE));
    EXPECT_FALSE(SetWindowTextW(host_, L"mine"));
    EXPECT_TRUE(ShowWindow(host_, SW_HIDE)) << "it was visible, and still is";
    EXPECT_TRUE(IsWindowVisible(host_));
    PumpArrived();
    EXPECT_TRUE(client_.IsSeen(host_id_));
    EXPECT_EQ(client_.SizeOf(host_id_), Size(300, 250));
}

TEST_F(X11Foreign, LettingItGoDestroysTheChildrenAlone)
{
    const HWND child = MakeChild(host_);
    EXPECT_TRUE(DestroyWindow(host_));
    EXPECT_FALSE(IsWindow(child));
    EXPECT_FALSE(IsWindow(host_));
    EXPECT_TRUE(client_.IsSeen(host_id_));
    EXPECT_THAT(client_.ChildrenOf(host_id_), testing::IsEmpty());
}

TEST_F(X11Foreign, ItCanBeAdoptedAgain)
{
    const HWND before = host_;
    DestroyWindow(host_);
    host_ = Adopt(host_id_);
    EXPECT_NE(host_, nullptr);
    EXPECT_NE(host_, before);
    EXPECT_NE(MakeChild(host_), nullptr);
}

TEST_F(X11Foreign, ItsEndDestroysTheChildren)
{
    const HWND child = MakeChild(host_);
    const HWND grandchild = MakeChild(child, {0, 0, 20, 20});
    MakeCurrentContext(grandchild);
    PumpArrived();
    TakeMessages();
    client_.DestroyWindow(host_id_);
    ASSERT_TRUE(PumpUntil([&] { return IsWindow(host_) == FALSE; }));
    EXPECT_FALSE(IsWindow(child));
    EXPECT_FALSE(IsWindow(grandchild));
    std::vector<std::pair<HWND, UINT>> last;
    for (const MSG& message : TakeMessages())
        if (message.message == WM_DESTROY || message.message == WM_NCDESTROY)
            last.emplace_back(message.hwnd, message.message);
    EXPECT_THAT(last, ElementsAre(std::pair(child, WM_DESTROY), std::pair(grandchild, WM_DESTROY),
                                  std::pair(grandchild, WM_NCDESTROY), std::pair(child, WM_NCDESTROY)));
    glClear(GL_COLOR_BUFFER_BIT);
    glFinish();
}

TEST_F(X11Foreign, CallsBetweenItsEndAndTheNewsOfItDoNoHarm)
{
    const HWND child = MakeChild(host_);
    MakeCurrentContext(child);
    client_.DestroyWindow(host_id_);
    MoveWindow(child, 0, 0, 120, 130, TRUE);
    Show(child, 1, 0, 0);
    SetFocus(child);
    ShowWindow(child, SW_HIDE);
    EXPECT_EQ(MakeChild(host_), nullptr) << "the server refuses a child of a window that is gone";
    EXPECT_TRUE(PumpUntil([&] { return IsWindow(child) == FALSE; }));
}

TEST_F(X11Foreign, ItsOwnerStillGetsItsEvents)
{
    MakeChild(host_, {0, 0, 100, 100});
    client_.MovePointer(200 + 200, 100 + 200);
    client_.Click(1);
    EXPECT_TRUE(client_.HasSeen(4 /* ButtonPress */));
    PumpArrived();
    EXPECT_EQ(CountOf(WM_LBUTTONDOWN), 0);
    client_.MovePointer(200 + 50, 100 + 50);
    client_.Click(1);
    EXPECT_FALSE(client_.HasSeen(4 /* ButtonPress */)) << "it was over the child";
    EXPECT_TRUE(PumpUntil([&] { return CountOf(WM_LBUTTONDOWN) == 1; }));
}

TEST_F(X11Foreign, FocusIsNotTakenFromAnotherProgram)
{
    const HWND child = MakeChild(host_);
    const XClient::Id other = client_.MakeWindow(600, 300, 50, 50);
    client_.Focus(other);
    SetFocus(child);
    EXPECT_EQ(GetFocus(), child) << "recorded";
    PumpArrived();
    EXPECT_EQ(client_.Focused(), other);
    client_.DestroyWindow(other);
}

TEST_F(X11Foreign, FocusIsTakenFromTheForeignAncestor)
{
    const XClient::Id outer = client_.MakeWindow(0, 0, 400, 400);
    const XClient::Id inner = client_.MakeWindow(10, 10, 300, 300, outer);
    const HWND adopted = Adopt(inner);
    const HWND child = MakeChild(adopted);
    client_.Focus(outer);
    SetFocus(child);
    EXPECT_EQ(client_.Focused(), OnlyChildOf(inner));
    EXPECT_EQ(GetFocus(), child);
    client_.PressKey("a");
    client_.ReleaseKey("a");
    ASSERT_TRUE(PumpUntil([&] { return CountOf(WM_KEYUP) > 0; }));
    EXPECT_EQ(MessagesOf(WM_KEYDOWN).front().hwnd, child);
    DestroyWindow(adopted);
    client_.DestroyWindow(outer);
}

TEST_F(X11Foreign, HiddenChildDoesNotTakeTheFocus)
{
    const HWND child = Make(L"child", WS_CHILD, host_, {0, 0, 50, 50});
    client_.Focus(host_id_);
    TraceRecording trace;
    SetFocus(child);
    EXPECT_EQ(GetFocus(), child);
    PumpArrived();
    EXPECT_EQ(client_.Focused(), host_id_);
    EXPECT_EQ(trace.Faults().size(), 0U);
}

TEST_F(X11Foreign, FocusTakenBackIsLostByTheChild)
{
    const HWND child = MakeChild(host_);
    client_.Focus(host_id_);
    SetFocus(child);
    PumpArrived();
    TakeMessages();
    client_.Focus(host_id_);
    ASSERT_TRUE(PumpUntil([&] { return GetFocus() == nullptr; }));
    EXPECT_EQ(CountOf(WM_KILLFOCUS), 1);
}

TEST_F(X11Foreign, KeysOverTheChildAreTheOwnersWhileItHasTheFocus)
{
    MakeChild(host_, {0, 0, 100, 100});
    client_.Focus(host_id_);
    client_.MovePointer(250, 150);
    client_.PressKey("a");
    client_.ReleaseKey("a");
    EXPECT_TRUE(client_.HasSeen(2 /* KeyPress */));
    PumpArrived();
    EXPECT_EQ(CountOf(WM_KEYDOWN), 0);
}

TEST(HeadlessForeign, IsRefused)
{
    winsys::UseBackend(winsys::MakeHeadlessBackend());
    EXPECT_EQ(winsys::AdoptForeignWindow(1), nullptr);
}

} // namespace karv_test
