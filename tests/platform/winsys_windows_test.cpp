// Windows and their classes, the messages of their creation, change and destruction, focus and painting.
#include "tests/platform/winsys_contract.h"

#include <array>

using testing::ElementsAre;
using testing::IsEmpty;

namespace karv_test
{

using WinsysWindows = WinsysContract;

INSTANTIATE_TEST_SUITE_P(Backends, WinsysWindows, EveryBackend(), BackendTestName);

constexpr DWORD kVisibleChild = WS_CHILD | WS_VISIBLE;

TEST_P(WinsysWindows, ClassNameTakenTwiceIsRefused)
{
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = DefWindowProcW;
    window_class.lpszClassName = L"Recorded";
    EXPECT_EQ(RegisterClassW(&window_class), 0);
    window_class.lpszClassName = L"Another";
    EXPECT_NE(RegisterClassW(&window_class), 0);
    EXPECT_TRUE(UnregisterClassW(L"Another", nullptr));
    EXPECT_FALSE(UnregisterClassW(L"Another", nullptr));
}

TEST_P(WinsysWindows, ClassInUseCannotBeUnregistered)
{
    ASSERT_NE(Make(L"a"), nullptr);
    EXPECT_FALSE(UnregisterClassW(L"Recorded", nullptr));
}

TEST_P(WinsysWindows, ClassInfoIsWhatWasRegistered)
{
    WNDCLASSW found{};
    ASSERT_TRUE(GetClassInfoW(GetModuleHandleW(nullptr), L"Recorded", &found));
    EXPECT_EQ(found.style, CS_OWNDC);
    EXPECT_FALSE(GetClassInfoW(GetModuleHandleW(nullptr), L"Missing", &found));
}

TEST_P(WinsysWindows, UnknownClassMakesNoWindow)
{
    EXPECT_EQ(CreateWindowExW(0, L"Missing", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(CreateWindowExW(0, nullptr, L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr), nullptr);
}

TEST_P(WinsysWindows, ChildNeedsALivingParent)
{
    EXPECT_EQ(Make(L"a", WS_CHILD, nullptr), nullptr);
    const HWND dead = Make(L"b");
    DestroyWindow(dead);
    EXPECT_EQ(Make(L"c", WS_CHILD, dead), nullptr);
}

TEST_P(WinsysWindows, VisibleChildGetsItsMessagesBeforeCreationReturns)
{
    const HWND parent = MakeShown(L"parent");
    ASSERT_NE(Make(L"child", kVisibleChild, parent), nullptr);
    EXPECT_THAT(TakeMessages(), ElementsAre("child WM_NCCREATE", "child WM_CREATE", "child WM_SIZE",
                                            "child WM_MOVE", "child WM_SHOWWINDOW"));
    EXPECT_EQ(Take().message, WM_PAINT);
}

TEST_P(WinsysWindows, HiddenChildIsNotShownByItsCreation)
{
    const HWND parent = MakeShown(L"parent");
    ASSERT_NE(Make(L"child", WS_CHILD, parent), nullptr);
    EXPECT_THAT(TakeMessages(),
                ElementsAre("child WM_NCCREATE", "child WM_CREATE", "child WM_SIZE", "child WM_MOVE"));
}

TEST_P(WinsysWindows, PopupLearnsItsSizeAtItsCreation)
{
    ASSERT_NE(Make(L"a", WS_POPUP), nullptr);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_NCCREATE", "a WM_CREATE", "a WM_SIZE", "a WM_MOVE"));
}

TEST_P(WinsysWindows, OverlappedWindowLearnsItsSizeAtItsFirstShow)
{
    const HWND window = Make(L"a", WS_OVERLAPPED, nullptr, 300, 200);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_NCCREATE", "a WM_CREATE"));
    EXPECT_FALSE(ShowWindow(window, SW_SHOW));
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_SHOWWINDOW", "a WM_SIZE", "a WM_MOVE"));
    EXPECT_TRUE(ShowWindow(window, SW_HIDE));
    EXPECT_FALSE(ShowWindow(window, SW_SHOW));
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_SHOWWINDOW", "a WM_SHOWWINDOW"));
}

TEST_P(WinsysWindows, ShowingWhatIsShownSendsNothing)
{
    const HWND window = MakeShown(L"a");
    EXPECT_TRUE(ShowWindow(window, SW_SHOW));
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

TEST_P(WinsysWindows, CreationMessageCarriesTheArguments)
{
    const HWND parent = MakeShown(L"parent");
    CREATESTRUCTW seen{};
    int parameter = 0;
    handler_ = [&](HWND, UINT message, WPARAM, LPARAM lparam) -> std::optional<LRESULT> {
        if (message == WM_CREATE)
            seen = *reinterpret_cast<CREATESTRUCTW*>(lparam);
        return std::nullopt;
    };
    const HWND window = CreateWindowExW(WS_EX_NOPARENTNOTIFY, L"Recorded", L"child", kVisibleChild, 1, 2, 3,
                                        4, parent, nullptr, GetModuleHandleW(nullptr), &parameter);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(seen.lpCreateParams, &parameter);
    EXPECT_EQ(seen.hInstance, GetModuleHandleW(nullptr));
    EXPECT_EQ(seen.hwndParent, parent);
    EXPECT_EQ(seen.x, 1);
    EXPECT_EQ(seen.y, 2);
    EXPECT_EQ(seen.cx, 3);
    EXPECT_EQ(seen.cy, 4);
    EXPECT_EQ(static_cast<DWORD>(seen.style), kVisibleChild);
    EXPECT_EQ(seen.dwExStyle, WS_EX_NOPARENTNOTIFY);
}

TEST_P(WinsysWindows, PlaceLeftToTheSystemIsResolvedBeforeTheCreationMessage)
{
    CREATESTRUCTW seen{};
    handler_ = [&](HWND, UINT message, WPARAM, LPARAM lparam) -> std::optional<LRESULT> {
        if (message == WM_CREATE)
            seen = *reinterpret_cast<CREATESTRUCTW*>(lparam);
        return std::nullopt;
    };
    const HWND known = Make(L"known");
    std::array<wchar_t, 64> name{};
    GetClassNameW(known, name.data(), static_cast<int>(name.size()));
    const HWND window = CreateWindowExW(0, name.data(), L"", WS_OVERLAPPED, CW_USEDEFAULT, 123, 400, 300,
                                        nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    EXPECT_NE(seen.x, CW_USEDEFAULT);
    RECT rect{};
    EXPECT_TRUE(GetWindowRect(window, &rect));
    EXPECT_EQ(rect.right - rect.left, 400);
    EXPECT_EQ(rect.bottom - rect.top, 300);
    DestroyWindow(window);
}

TEST_P(WinsysWindows, RefusedNcCreateMakesNoWindow)
{
    handler_ = [](HWND, UINT message, WPARAM, LPARAM) {
        return message == WM_NCCREATE ? std::optional<LRESULT>(0) : std::nullopt;
    };
    EXPECT_EQ(Make(L"a"), nullptr);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_NCCREATE", "a WM_NCDESTROY"));
}

TEST_P(WinsysWindows, RefusedCreateDestroysTheWindow)
{
    HWND made = nullptr;
    handler_ = [&](HWND window, UINT message, WPARAM, LPARAM) {
        made = window;
        return message == WM_CREATE ? std::optional<LRESULT>(-1) : std::nullopt;
    };
    EXPECT_EQ(Make(L"a"), nullptr);
    // Some implementations of Windows do not send WM_DESTROY here.
    const std::vector<std::string> messages = TakeMessages();
    EXPECT_THAT(messages, testing::AnyOf(
                              ElementsAre("a WM_NCCREATE", "a WM_CREATE", "a WM_NCDESTROY"),
                              ElementsAre("a WM_NCCREATE", "a WM_CREATE", "a WM_DESTROY", "a WM_NCDESTROY")));
    EXPECT_FALSE(IsWindow(made));
}

TEST_P(WinsysWindows, WindowDestroyedWhileItIsMadeIsNotReturned)
{
    for (const UINT last : {WM_NCCREATE, WM_CREATE, WM_SIZE, WM_MOVE}) {
        const HWND parent = MakeShown(L"parent");
        handler_ = [&](HWND window, UINT message, WPARAM, LPARAM) {
            if (message == last)
                DestroyWindow(window);
            return std::nullopt;
        };
        EXPECT_EQ(Make(L"child", kVisibleChild, parent), nullptr) << MessageName(last);
        EXPECT_EQ(TakeMessages().back(), "child WM_NCDESTROY") << MessageName(last);
        handler_ = nullptr;
    }
}

TEST_P(WinsysWindows, WindowMadeAndDestroyedInsideACreation)
{
    HWND probe = nullptr;
    handler_ = [&](HWND, UINT message, WPARAM, LPARAM) {
        if (message == WM_CREATE && probe == nullptr) {
            probe = reinterpret_cast<HWND>(-1);
            probe = Make(L"probe", WS_OVERLAPPED, nullptr, 10, 10);
            ShowWindow(probe, SW_HIDE);
            DestroyWindow(probe);
        }
        return std::nullopt;
    };
    const HWND parent = Make(L"a", WS_OVERLAPPED);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_NCCREATE", "a WM_CREATE", "probe WM_NCCREATE",
                                            "probe WM_CREATE", "probe WM_DESTROY", "probe WM_NCDESTROY"));
    EXPECT_TRUE(IsWindow(parent));
    EXPECT_FALSE(IsWindow(probe));
}

TEST_P(WinsysWindows, DestructionGoesDownThenUpTheTree)
{
    const HWND top = Make(L"top");
    const HWND child = Make(L"child", WS_CHILD, top);
    const HWND grandchild = Make(L"grandchild", WS_CHILD, child);
    TakeMessages();
    EXPECT_TRUE(DestroyWindow(top));
    EXPECT_THAT(TakeMessages(),
                ElementsAre("top WM_DESTROY", "child WM_DESTROY", "grandchild WM_DESTROY",
                            "grandchild WM_NCDESTROY", "child WM_NCDESTROY", "top WM_NCDESTROY"));
    EXPECT_FALSE(IsWindow(top));
    EXPECT_FALSE(IsWindow(child));
    EXPECT_FALSE(IsWindow(grandchild));
}

TEST_P(WinsysWindows, OwnedWindowGoesBeforeItsOwner)
{
    const HWND owner = Make(L"owner");
    const HWND owned = Make(L"owned", WS_POPUP, owner);
    EXPECT_EQ(GetParent(owned), owner);
    TakeMessages();
    DestroyWindow(owner);
    EXPECT_THAT(TakeMessages(), ElementsAre("owned WM_DESTROY", "owned WM_NCDESTROY", "owner WM_DESTROY",
                                            "owner WM_NCDESTROY"));
}

TEST_P(WinsysWindows, StaleAndNullHandlesAreRefused)
{
    const HWND stale = Make(L"a");
    DestroyWindow(stale);
    TakeMessages();
    for (const HWND window : {stale, HWND{}}) {
        RECT rect{};
        POINT point{};
        wchar_t text[8];
        EXPECT_FALSE(IsWindow(window));
        EXPECT_FALSE(DestroyWindow(window));
        EXPECT_FALSE(IsWindowVisible(window));
        EXPECT_FALSE(ShowWindow(window, SW_SHOW));
        EXPECT_FALSE(MoveWindow(window, 0, 0, 1, 1, TRUE));
        EXPECT_FALSE(GetClientRect(window, &rect));
        EXPECT_FALSE(GetWindowRect(window, &rect));
        EXPECT_FALSE(ClientToScreen(window, &point));
        EXPECT_FALSE(ScreenToClient(window, &point));
        EXPECT_EQ(GetParent(window), nullptr);
        EXPECT_FALSE(SetWindowTextW(window, L"x"));
        EXPECT_EQ(GetWindowTextW(window, text, 8), 0);
        EXPECT_EQ(GetClassNameW(window, text, 8), 0);
        EXPECT_EQ(SetWindowLongPtrW(window, GWLP_USERDATA, 1), 0);
        EXPECT_EQ(GetWindowLongPtrW(window, GWLP_USERDATA), 0);
        PAINTSTRUCT paint{};
        EXPECT_EQ(BeginPaint(window, &paint), nullptr);
        EXPECT_EQ(SendMessageW(window, WM_USER, 0, 0), 0);
    }
    EXPECT_FALSE(InvalidateRect(stale, nullptr, FALSE));
    EXPECT_FALSE(ValidateRect(stale, nullptr));
    EXPECT_FALSE(PostMessageW(stale, WM_USER, 0, 0));
    EXPECT_EQ(SetTimer(stale, 1, 1, nullptr), 0U);
    EXPECT_EQ(GetDC(stale), nullptr);
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

TEST_P(WinsysWindows, HundredWindowsInARowHaveHundredHandles)
{
    std::vector<HWND> seen;
    for (int i = 0; i < 100; ++i) {
        const HWND window = Make(L"a");
        ASSERT_NE(window, nullptr);
        EXPECT_THAT(seen, testing::Not(testing::Contains(window)));
        seen.push_back(window);
        EXPECT_TRUE(DestroyWindow(window));
    }
}

TEST_P(WinsysWindows, HundredWindowsAtOnceGoWithTheirParent)
{
    const HWND parent = Make(L"parent");
    std::vector<HWND> children;
    for (int i = 0; i < 100; ++i)
        children.push_back(Make(L"child", kVisibleChild, parent));
    DestroyWindow(parent);
    for (const HWND child : children)
        EXPECT_FALSE(IsWindow(child));
}

TEST_P(WinsysWindows, MoveSendsOnlyWhatChanged)
{
    const HWND window = MakeShown(L"a");
    MoveWindow(window, 10, 20, 64, 64, TRUE);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    MoveWindow(window, 11, 20, 64, 64, TRUE);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_MOVE"));
    MoveWindow(window, 11, 20, 65, 64, TRUE);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_SIZE"));
    MoveWindow(window, 0, 0, 1, 1, TRUE);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_MOVE", "a WM_SIZE"));
}

TEST_P(WinsysWindows, SizeMessageCarriesTheClientSize)
{
    const HWND window = MakeShown(L"a");
    LPARAM size = 0;
    handler_ = [&](HWND, UINT message, WPARAM, LPARAM lparam) {
        size = message == WM_SIZE ? lparam : size;
        return std::nullopt;
    };
    MoveWindow(window, 0, 0, 123, 45, TRUE);
    EXPECT_EQ(size, MAKELPARAM(123, 45));
}

TEST_P(WinsysWindows, NegativeSizeIsEmpty)
{
    const HWND window = MakeShown(L"a");
    EXPECT_TRUE(MoveWindow(window, 0, 0, -5, -7, TRUE));
    RECT rect{1, 1, 1, 1};
    EXPECT_TRUE(GetClientRect(window, &rect));
    EXPECT_EQ(rect.right, 0);
    EXPECT_EQ(rect.bottom, 0);
}

TEST_P(WinsysWindows, ChildCoordinatesAddUpToTheScreen)
{
    const HWND parent = MakeShown(L"parent");
    const HWND child = Make(L"child", kVisibleChild, parent);
    MoveWindow(child, 3, 4, 30, 40, TRUE);
    RECT parent_rect{};
    RECT child_rect{};
    ASSERT_TRUE(GetWindowRect(parent, &parent_rect));
    ASSERT_TRUE(GetWindowRect(child, &child_rect));
    EXPECT_EQ(child_rect.left - parent_rect.left, 3);
    EXPECT_EQ(child_rect.top - parent_rect.top, 4);
    EXPECT_EQ(child_rect.right - child_rect.left, 30);
    EXPECT_EQ(child_rect.bottom - child_rect.top, 40);
    POINT point{5, 6};
    ClientToScreen(child, &point);
    EXPECT_EQ(point.x, child_rect.left + 5);
    EXPECT_EQ(point.y, child_rect.top + 6);
    ScreenToClient(child, &point);
    EXPECT_EQ(point.x, 5);
    EXPECT_EQ(point.y, 6);
    EXPECT_EQ(GetParent(child), parent);
    EXPECT_EQ(GetParent(parent), nullptr);
}

TEST_P(WinsysWindows, TextIsCutToTheBuffer)
{
    const HWND window = Make(L"first");
    SetWindowTextW(window, L"title");
    wchar_t text[8]{};
    EXPECT_EQ(GetWindowTextW(window, text, 8), 5);
    EXPECT_STREQ(text, L"title");
    EXPECT_EQ(GetWindowTextW(window, text, 3), 2);
    EXPECT_STREQ(text, L"ti");
    EXPECT_EQ(GetWindowTextW(window, text, 0), 0);
    wchar_t name[16]{};
    EXPECT_EQ(GetClassNameW(window, name, 16), 8);
    EXPECT_STREQ(name, L"Recorded");
}

TEST_P(WinsysWindows, UserDataAndStyleAreKept)
{
    const HWND window = Make(L"a", WS_CLIPCHILDREN);
    EXPECT_EQ(SetWindowLongPtrW(window, GWLP_USERDATA, 42), 0);
    EXPECT_EQ(SetWindowLongPtrW(window, GWLP_USERDATA, 43), 42);
    EXPECT_EQ(GetWindowLongPtrW(window, GWLP_USERDATA), 43);
    EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)) & WS_CLIPCHILDREN, WS_CLIPCHILDREN);
}

TEST_P(WinsysWindows, FocusGoesFromOneToTheOther)
{
    const HWND parent = MakeShown(L"parent");
    const HWND a = Make(L"a", kVisibleChild, parent);
    const HWND b = Make(L"b", kVisibleChild, parent);
    SetFocus(a);
    EXPECT_EQ(GetFocus(), a);
    TakeFocusMessages();
    EXPECT_EQ(SetFocus(b), a);
    EXPECT_THAT(TakeFocusMessages(), ElementsAre("a WM_KILLFOCUS", "b WM_SETFOCUS"));
    EXPECT_EQ(SetFocus(b), b);
    EXPECT_THAT(TakeFocusMessages(), IsEmpty());
}

TEST_P(WinsysWindows, FocusOnAStaleWindowIsRefused)
{
    const HWND a = MakeShown(L"a");
    const HWND stale = Make(L"b");
    DestroyWindow(stale);
    SetFocus(a);
    EXPECT_EQ(SetFocus(stale), nullptr);
    EXPECT_EQ(GetFocus(), a);
}

TEST_P(WinsysWindows, HiddenWindowCanHaveTheFocus)
{
    const HWND window = Make(L"a");
    SetFocus(window);
    EXPECT_EQ(GetFocus(), window);
}

TEST_P(WinsysWindows, FocusLeavesADestroyedChildForItsParent)
{
    const HWND parent = MakeShown(L"parent");
    const HWND child = Make(L"child", kVisibleChild, parent);
    SetFocus(child);
    TakeFocusMessages();
    DestroyWindow(child);
    EXPECT_THAT(TakeFocusMessages(), ElementsAre("child WM_KILLFOCUS", "parent WM_SETFOCUS"));
    EXPECT_EQ(GetFocus(), parent);
}

TEST_P(WinsysWindows, FocusInsideADestroyedTreeIsNowhere)
{
    const HWND parent = MakeShown(L"parent");
    const HWND child = Make(L"child", kVisibleChild, parent);
    SetFocus(child);
    TakeFocusMessages();
    DestroyWindow(parent);
    EXPECT_EQ(TakeFocusMessages().front(), "child WM_KILLFOCUS");
    EXPECT_EQ(GetFocus(), nullptr);
}

TEST_P(WinsysWindows, HandlerThatGivesTheFocusBackWins)
{
    const HWND a = MakeShown(L"a");
    const HWND b = MakeShown(L"b");
    SetFocus(a);
    handler_ = [&](HWND window, UINT message, WPARAM, LPARAM) {
        if (window == a && message == WM_KILLFOCUS)
            SetFocus(a);
        return std::nullopt;
    };
    SetFocus(b);
    EXPECT_EQ(GetFocus(), a);
}

TEST_P(WinsysWindows, VisibleMeansAllParentsToo)
{
    const HWND parent = Make(L"parent");
    const HWND child = Make(L"child", kVisibleChild, parent);
    EXPECT_FALSE(IsWindowVisible(child));
    ShowWindow(parent, SW_SHOW);
    EXPECT_TRUE(IsWindowVisible(child));
    ShowWindow(parent, SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(child));
}

TEST_P(WinsysWindows, PaintComesOnlyOnceParentsAreVisible)
{
    const HWND parent = Make(L"parent", WS_POPUP | WS_CLIPCHILDREN);
    const HWND child = Make(L"child", kVisibleChild, parent);
    EXPECT_EQ(Take().message, WM_NULL);
    ShowWindow(parent, SW_SHOW);
    ValidateRect(parent, nullptr);
    const MSG paint = Take();
    EXPECT_EQ(paint.message, WM_PAINT);
    EXPECT_EQ(paint.hwnd, child);
}

TEST_P(WinsysWindows, PaintKeepsComingUntilTheWindowIsValid)
{
    const HWND window = MakeShown(L"a");
    InvalidateRect(window, nullptr, FALSE);
    InvalidateRect(window, nullptr, FALSE);
    EXPECT_EQ(Take().message, WM_PAINT);
    EXPECT_EQ(Take().message, WM_PAINT);
    ValidateRect(window, nullptr);
    EXPECT_EQ(Take().message, WM_NULL);
}

TEST_P(WinsysWindows, InvalidTwiceIsPaintedOnce)
{
    const HWND window = MakeShown(L"a");
    InvalidateRect(window, nullptr, FALSE);
    InvalidateRect(window, nullptr, FALSE);
    Pump();
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_PAINT"));
}

TEST_P(WinsysWindows, InvalidOutsideTheClientAreaIsNotPainted)
{
    const HWND window = MakeShown(L"a");
    const RECT outside{64, 0, 70, 64};
    EXPECT_TRUE(InvalidateRect(window, &outside, FALSE));
    EXPECT_EQ(Take().message, WM_NULL);
    const RECT corner{63, 63, 70, 70};
    EXPECT_TRUE(InvalidateRect(window, &corner, FALSE));
    EXPECT_EQ(Take().message, WM_PAINT);
}

TEST_P(WinsysWindows, EmptyWindowIsNotPainted)
{
    const HWND window = MakeShown(L"a");
    MoveWindow(window, 0, 0, 0, 0, TRUE);
    InvalidateRect(window, nullptr, FALSE);
    EXPECT_EQ(Take().message, WM_NULL);
    MoveWindow(window, 0, 0, 1, 1, TRUE);
    EXPECT_EQ(Take().message, WM_PAINT);
}

TEST_P(WinsysWindows, SizeChangeIsPaintedUnlessTheCallerRepaints)
{
    const HWND window = MakeShown(L"a");
    MoveWindow(window, 0, 0, 30, 30, FALSE);
    EXPECT_EQ(Take().message, WM_NULL);
    MoveWindow(window, 0, 0, 31, 31, TRUE);
    EXPECT_EQ(Take().message, WM_PAINT);
}

TEST_P(WinsysWindows, BeginPaintValidatesAndErasesOnRequest)
{
    const HWND window = MakeShown(L"a");
    TakeErasures();
    InvalidateRect(window, nullptr, TRUE);
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(window, &paint);
    EXPECT_EQ(dc, GetDC(window));
    EXPECT_EQ(paint.hdc, dc);
    EXPECT_EQ(paint.rcPaint.right, 64);
    EXPECT_TRUE(paint.fErase) << "the class has no brush, so that nobody has erased";
    EXPECT_TRUE(EndPaint(window, &paint));
    EXPECT_THAT(TakeErasures(), ElementsAre("a WM_ERASEBKGND"));
    EXPECT_EQ(Take().message, WM_NULL);
}

TEST_P(WinsysWindows, UpdatePaintsAtOnceWhatIsInvalid)
{
    const HWND window = MakeShown(L"a");
    EXPECT_TRUE(UpdateWindow(window));
    EXPECT_THAT(TakeMessages(), IsEmpty());
    InvalidateRect(window, nullptr, FALSE);
    EXPECT_TRUE(UpdateWindow(window));
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_PAINT"));
    EXPECT_EQ(Take().message, WM_NULL);
}

TEST_P(WinsysWindows, CloseDestroysByDefault)
{
    const HWND window = MakeShown(L"a");
    SendMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_THAT(TakeMessages(), ElementsAre("a WM_CLOSE", "a WM_DESTROY", "a WM_NCDESTROY"));
}

TEST_P(WinsysWindows, WheelGoesUpToTheParentByDefault)
{
    const HWND parent = MakeShown(L"parent");
    const HWND child = Make(L"child", kVisibleChild, parent);
    TakeMessages();
    SendMessageW(child, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0);
    EXPECT_THAT(TakeMessages(), ElementsAre("child WM_MOUSEWHEEL", "parent WM_MOUSEWHEEL"));
}

TEST_P(WinsysWindows, ProgramAndStockBrushHaveHandles)
{
    EXPECT_NE(GetModuleHandleW(nullptr), nullptr);
    EXPECT_EQ(GetModuleHandleW(nullptr), GetModuleHandleW(nullptr));
    EXPECT_NE(GetStockObject(BLACK_BRUSH), nullptr);
}

} // namespace karv_test
