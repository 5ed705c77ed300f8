// Windows of the framework from creation to destruction, the objects of handles, focus, and window classes.
#include "tests/platform/framework_window.h"

#include <array>
#include <stdexcept>
#include <string>
#include <utility>

using namespace karv_test;
using testing::ElementsAre;

namespace
{

/// The window that got the last message of the foreign procedure.
HWND last_foreign = nullptr;

LRESULT CALLBACK ForeignProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    last_foreign = window;
    return ::DefWindowProcW(window, message, wparam, lparam);
}

constexpr LPCWSTR kForeignClass = L"framework_window_test foreign";

/// A window that is unknown to the framework; destroyed with the object.
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

/// Replaces a registered class by one with the foreign procedure, for the life of the object.
class ForeignClass
{
  public:
    explicit ForeignClass(std::wstring name) : name_(std::move(name))
    {
        EXPECT_TRUE(::UnregisterClassW(name_.c_str(), ::GetModuleHandleW(nullptr)));
        WNDCLASSW foreign{};
        foreign.lpfnWndProc = &ForeignProcedure;
        foreign.lpszClassName = name_.c_str();
        foreign.hInstance = ::GetModuleHandleW(nullptr);
        EXPECT_NE(::RegisterClassW(&foreign), 0);
    }
    ForeignClass(const ForeignClass&) = delete;
    ForeignClass& operator=(const ForeignClass&) = delete;
    ~ForeignClass() { EXPECT_TRUE(::UnregisterClassW(name_.c_str(), ::GetModuleHandleW(nullptr))); }

  private:
    std::wstring name_;
};

// Life of a window.

TEST_F(FrameworkWindow, NewObjectHasNoWindow)
{
    LoggedWindow window(log_);
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_EQ(window.GetSafeHwnd(), nullptr);
    EXPECT_FALSE(window.DestroyWindow());
    EXPECT_FALSE(window.ShowWindow(SW_SHOW));
    EXPECT_FALSE(window.MoveWindow(kPlace));
    EXPECT_EQ(window.GetParent(), nullptr);
    EXPECT_TRUE(log_.empty());
}

TEST_F(FrameworkWindow, CreationReachesTheHandlersInOrder)
{
    LoggedWindow window(log_);
    HWND during = nullptr;
    window.on_create = [&] { during = window.m_hWnd; };
    ASSERT_TRUE(window.Create());
    EXPECT_NE(window.m_hWnd, nullptr);
    EXPECT_EQ(during, window.m_hWnd);
    EXPECT_TRUE(::IsWindow(window.m_hWnd));
    ASSERT_GE(log_.size(), 2U);
    EXPECT_EQ(log_[0], "create 100 50");
    EXPECT_EQ(log_[1], "size 0 100 50");
}

TEST_F(FrameworkWindow, CreationPassesPlaceTitleAndParent)
{
    LoggedWindow parent(log_);
    ASSERT_TRUE(parent.Create());
    LoggedWindow child(log_);
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
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    const HWND first = window.m_hWnd;
    EXPECT_FALSE(window.Create());
    EXPECT_EQ(window.m_hWnd, first);
    EXPECT_TRUE(::IsWindow(first));
}

TEST_F(FrameworkWindow, UnknownClassIsRefused)
{
    LoggedWindow window(log_);
    EXPECT_FALSE(window.CreateEx(0, L"framework_window_test unknown", L"", WS_POPUP, kPlace, nullptr, 0));
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_TRUE(log_.empty());
    EXPECT_TRUE(window.Create()) << "a later creation succeeds";
}

TEST_F(FrameworkWindow, ChildWithoutAParentIsRefused)
{
    LoggedWindow window(log_);
    EXPECT_FALSE(window.CreateEx(0, AfxRegisterWndClass(0), L"", WS_CHILD, kPlace, nullptr, 0));
    EXPECT_EQ(window.m_hWnd, nullptr);
}

TEST_F(FrameworkWindow, RefusedCreationDoesNotClaimALaterWindow)
{
    LoggedWindow window(log_);
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
    LoggedWindow window(log_);
    EXPECT_FALSE(window.CreateEx(0, kForeignClass, L"", WS_POPUP, kPlace, nullptr, 0));
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_TRUE(log_.empty());
    EXPECT_NE(last_foreign, registered.handle) << "there was a window";
    EXPECT_FALSE(::IsWindow(last_foreign));
}

TEST_F(FrameworkWindow, CreationRefusedByAHandlerLeavesNoWindow)
{
    LoggedWindow window(log_);
    HWND during = nullptr;
    window.on_create = [&] { during = window.m_hWnd; };
    window.create_result = -1;
    EXPECT_FALSE(window.Create());
    EXPECT_EQ(window.m_hWnd, nullptr);
    ASSERT_NE(during, nullptr);
    EXPECT_FALSE(::IsWindow(during));
    EXPECT_EQ(CWnd::FromHandlePermanent(during), nullptr);
    EXPECT_THAT(log_, ElementsAre("create 100 50", "gone"));
    window.create_result = 0;
    EXPECT_TRUE(window.Create()) << "a later creation succeeds";
}

TEST_F(FrameworkWindow, DestroyedWindowLeavesTheObject)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    const HWND handle = window.m_hWnd;
    log_.clear();
    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_EQ(CWnd::FromHandlePermanent(handle), nullptr);
    EXPECT_THAT(log_, ElementsAre("gone"));
    EXPECT_FALSE(window.DestroyWindow());
    EXPECT_TRUE(window.Create());
}

TEST_F(FrameworkWindow, DestroyedObjectTakesItsWindowAlongWithoutCallingHandlers)
{
    HWND handle = nullptr;
    {
        LoggedWindow window(log_);
        ASSERT_TRUE(window.Create());
        handle = window.m_hWnd;
        log_.clear();
    }
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_EQ(CWnd::FromHandlePermanent(handle), nullptr);
    EXPECT_TRUE(log_.empty());
}

TEST_F(FrameworkWindow, ParentDestroyedFirstLeavesTheChildWithoutAWindow)
{
    LoggedWindow child(log_);
    {
        LoggedWindow parent(log_);
        ASSERT_TRUE(parent.Create());
        ASSERT_TRUE(child.Create(&parent));
        log_.clear();
    }
    EXPECT_EQ(child.m_hWnd, nullptr);
    EXPECT_THAT(log_, ElementsAre("gone"));
}

TEST_F(FrameworkWindow, ForeignParentDestroyedFirstLeavesTheChildWithoutAWindow)
{
    LoggedWindow child(log_);
    {
        const ForeignWindow parent;
        ASSERT_TRUE(child.Create(CWnd::FromHandle(parent.handle)));
        EXPECT_NE(child.m_hWnd, nullptr);
    }
    EXPECT_EQ(child.m_hWnd, nullptr);
    EXPECT_EQ(log_.back(), "gone");
}

TEST_F(FrameworkWindow, HundredInARowLeaveNothing)
{
    for (int round = 0; round < 100; ++round) {
        LoggedWindow window(log_);
        ASSERT_TRUE(window.Create());
        EXPECT_EQ(CWnd::FromHandlePermanent(window.m_hWnd), &window);
    }
    EXPECT_EQ(Pump(), 0);
}

TEST_F(FrameworkWindow, TwoAtOnceGetTheirOwnMessages)
{
    Log other_log;
    LoggedWindow window(log_);
    LoggedWindow other(other_log);
    ASSERT_TRUE(window.Create());
    ASSERT_TRUE(other.Create());
    log_.clear();
    other_log.clear();
    ::SendMessageW(window.m_hWnd, WM_TIMER, 1, 0);
    ::SendMessageW(other.m_hWnd, WM_TIMER, 2, 0);
    EXPECT_THAT(log_, ElementsAre("timer 1"));
    EXPECT_THAT(other_log, ElementsAre("timer 2"));
}

// Windows created during another window's creation.

TEST_F(FrameworkWindow, PlainWindowMadeWhileCreatingHasNoObject)
{
    LoggedWindow window(log_);
    HWND plain = nullptr;
    window.on_create = [&] {
        plain = ::CreateWindowExW(0, AfxRegisterWndClass(CS_OWNDC), L"plain", WS_OVERLAPPED, 0, 0, 10, 10,
                                  nullptr, nullptr, ::GetModuleHandleW(nullptr), nullptr);
    };
    ASSERT_TRUE(window.Create());
    ASSERT_NE(plain, nullptr);
    EXPECT_NE(plain, window.m_hWnd);
    EXPECT_EQ(CWnd::FromHandlePermanent(plain), nullptr);
    log_.clear();
    ::SendMessageW(plain, WM_TIMER, 1, 0);
    EXPECT_TRUE(log_.empty());
    EXPECT_TRUE(::DestroyWindow(plain));
    EXPECT_TRUE(::IsWindow(window.m_hWnd));
}

TEST_F(FrameworkWindow, ObjectsCreatedInsideOneAnotherGetTheirOwnWindows)
{
    LoggedWindow parent(log_);
    LoggedWindow child(log_);
    parent.on_create = [&] { EXPECT_TRUE(child.Create(&parent)); };
    ASSERT_TRUE(parent.Create());
    EXPECT_EQ(CWnd::FromHandlePermanent(parent.m_hWnd), &parent);
    EXPECT_EQ(CWnd::FromHandlePermanent(child.m_hWnd), &child);
    EXPECT_EQ(child.GetParent(), &parent);
}

TEST_F(FrameworkWindow, ExceptionDuringCreationLeavesNoWindow)
{
    LoggedWindow window(log_);
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
    LoggedWindow window(log_);
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
    LoggedWindow window(log_);
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
    LoggedWindow parent(log_);
    ASSERT_TRUE(parent.Create());
    LoggedWindow one(log_);
    LoggedWindow other(log_);
    ASSERT_TRUE(one.Create(&parent));
    ASSERT_TRUE(other.Create(&parent));
    one.SetFocus();
    EXPECT_EQ(::GetFocus(), one.m_hWnd);
    EXPECT_EQ(other.SetFocus(), &one);
    EXPECT_EQ(::GetFocus(), other.m_hWnd);
}

TEST_F(FrameworkWindow, FocusOfAnObjectWithoutAWindowTakesItFromNobody)
{
    LoggedWindow window(log_);
    ASSERT_TRUE(window.Create());
    window.SetFocus();
    LoggedWindow none(log_);
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

TEST_F(FrameworkWindow, ClassOfAnotherProcedureIsNotUsed)
{
    constexpr UINT kStyle = CS_OWNDC | CS_VREDRAW;
    const std::wstring taken = AfxRegisterWndClass(kStyle);
    const ForeignClass foreign(taken);
    const LPCWSTR name = AfxRegisterWndClass(kStyle);
    ASSERT_NE(name, nullptr);
    EXPECT_NE(name, taken);
    EXPECT_EQ(AfxRegisterWndClass(kStyle), name);
    CWnd window;
    EXPECT_TRUE(window.CreateEx(0, name, L"", WS_POPUP, kPlace, nullptr, 0));
    EXPECT_EQ(CWnd::FromHandlePermanent(window.m_hWnd), &window);
}

TEST_F(FrameworkWindow, ClassFindsANameWhereSeveralAreTaken)
{
    constexpr UINT kStyle = CS_HREDRAW | CS_VREDRAW;
    const std::wstring first = AfxRegisterWndClass(kStyle);
    const ForeignClass foreign(first);
    const std::wstring second = AfxRegisterWndClass(kStyle);
    const ForeignClass other_foreign(second);
    const LPCWSTR third = AfxRegisterWndClass(kStyle);
    WNDCLASSW registered{};
    ASSERT_TRUE(::GetClassInfoW(::GetModuleHandleW(nullptr), third, &registered));
    EXPECT_EQ(registered.lpfnWndProc, &AfxWndProc);
    EXPECT_EQ(registered.style, kStyle);
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
