// The fixture of the framework's tests: windows that log their messages, and a message pump.
#pragma once

#include "platform/framework/window.h"
#include "tests/support/gl_test_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace karv_test
{

using Log = std::vector<std::string>;

inline constexpr RECT kPlace{10, 20, 110, 70};

/// A window that logs the calls of its handlers and its default procedure. The log outlives it.
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

class FrameworkWindow : public testing::Test
{
  public:
    ~FrameworkWindow() override { CWnd::DeleteTempMap(); }

  protected:
    static void SetUpTestSuite() { UseTestWindows(); }

    /// Dispatches messages until none is waiting, at most `limit` of them; returns their number.
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

    Log log_;
};

} // namespace karv_test
