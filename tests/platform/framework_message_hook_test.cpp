// Messages before they are dispatched, positions chosen by the system, and the request to close.
#include "platform/framework/window.h"
#include "tests/support/gl_test_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class HookedWindow : public CWnd
{
  public:
    HookedWindow(std::string name, std::vector<std::string>& log) : name_(std::move(name)), log_(log) {}

    BOOL takes = FALSE;
    bool destroys = false;

    BOOL PreTranslateMessage(MSG* message) override
    {
        log_.push_back(name_ + " " + std::to_string(message->message));
        if (destroys)
            DestroyWindow();
        return takes;
    }

  protected:
    [[nodiscard]] const AFX_MSGMAP* GetMessageMap() const override
    {
        static const std::array<AFX_MSGMAP_ENTRY, 1> entries{OnWmClose<&HookedWindow::OnClose>()};
        static const AFX_MSGMAP map{CWnd::GetThisMessageMap(), entries};
        return &map;
    }
    void OnClose() { log_.push_back(name_ + " close"); }

  private:
    std::string name_;
    std::vector<std::string>& log_;
};

class MessageHook : public testing::Test
{
  protected:
    MessageHook()
    {
        karv_test::UseTestWindows();
        constexpr RECT kPlace{0, 0, 50, 50};
        const LPCWSTR window_class = AfxRegisterWndClass(0);
        top_.CreateEx(0, window_class, L"", WS_POPUP, kPlace, nullptr, 0);
        middle_ = CreateWindowExW(0, window_class, L"", WS_CHILD, 0, 0, 50, 50, top_.m_hWnd, nullptr, nullptr,
                                  nullptr);
        inner_.CreateEx(0, window_class, L"", WS_CHILD, 0, 0, 50, 50, middle_, nullptr);
    }

    [[nodiscard]] static MSG To(HWND window)
    {
        MSG message{};
        message.hwnd = window;
        message.message = WM_CHAR;
        return message;
    }

    std::vector<std::string> log_;
    HookedWindow top_{"top", log_};
    HWND middle_ = nullptr; ///< has no object
    HookedWindow inner_{"inner", log_};
};

TEST_F(MessageHook, MessageIsShownFromTheInnermostWindowOutwards)
{
    MSG message = To(inner_.m_hWnd);
    EXPECT_EQ(CWnd::WalkPreTranslateTree(nullptr, &message), FALSE);
    EXPECT_THAT(log_, ElementsAre("inner 258", "top 258"));
}

TEST_F(MessageHook, FirstToTakeItIsTheLastToSeeIt)
{
    inner_.takes = TRUE;
    MSG message = To(inner_.m_hWnd);
    EXPECT_EQ(CWnd::WalkPreTranslateTree(nullptr, &message), TRUE);
    EXPECT_THAT(log_, ElementsAre("inner 258"));
}

TEST_F(MessageHook, OuterWindowMayTakeIt)
{
    top_.takes = TRUE;
    MSG message = To(middle_);
    EXPECT_EQ(CWnd::WalkPreTranslateTree(nullptr, &message), TRUE);
    EXPECT_THAT(log_, ElementsAre("top 258"));
}

TEST_F(MessageHook, WalkEndsWithTheWindowThatStopsIt)
{
    MSG message = To(inner_.m_hWnd);
    EXPECT_EQ(CWnd::WalkPreTranslateTree(inner_.m_hWnd, &message), FALSE);
    EXPECT_THAT(log_, ElementsAre("inner 258"));
    EXPECT_EQ(CWnd::WalkPreTranslateTree(middle_, &message), FALSE);
    EXPECT_THAT(log_, ElementsAre("inner 258", "inner 258"));
}

TEST_F(MessageHook, MessageOfNoWindowIsShownToNobody)
{
    MSG message = To(nullptr);
    EXPECT_EQ(CWnd::WalkPreTranslateTree(nullptr, &message), FALSE);
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(MessageHook, WindowMayBeDestroyedByItsLook)
{
    inner_.destroys = true;
    MSG message = To(inner_.m_hWnd);
    EXPECT_EQ(CWnd::WalkPreTranslateTree(nullptr, &message), FALSE);
    EXPECT_THAT(log_, ElementsAre("inner 258"));
    EXPECT_EQ(inner_.m_hWnd, nullptr);
}

TEST_F(MessageHook, PlainWindowTakesNothing)
{
    CWnd window;
    MSG message = To(nullptr);
    EXPECT_EQ(window.PreTranslateMessage(&message), FALSE);
}

TEST_F(MessageHook, CloseIsHandledInPlaceOfDestruction)
{
    SendMessageW(top_.m_hWnd, WM_CLOSE, 0, 0);
    EXPECT_THAT(log_, ElementsAre("top close"));
    EXPECT_NE(top_.m_hWnd, nullptr);
}

TEST_F(MessageHook, PlaceAndSizeMayBeGivenApart)
{
    CWnd window;
    ASSERT_TRUE(window.CreateEx(0, AfxRegisterWndClass(0), L"", WS_CHILD, 3, 4, 20, 10, top_.m_hWnd,
                                reinterpret_cast<HMENU>(UINT_PTR{7})));
    RECT rect{};
    GetWindowRect(window.m_hWnd, &rect);
    EXPECT_EQ(rect.right - rect.left, 20);
    EXPECT_EQ(rect.bottom - rect.top, 10);
    EXPECT_EQ(GetParent(window.m_hWnd), top_.m_hWnd);
}

} // namespace
