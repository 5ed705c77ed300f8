// Controls that a handler deletes while they handle a message or run an operation. The address sanitizer sees
// an access to a deleted one.
#include "tests/support/control_test.h"

#include "platform/winsys/opengl.h"

#include <functional>

using namespace karv_test;
using testing::IsEmpty;

namespace
{

/// A window that calls a function at each message of one kind.
class ListeningWindow : public CWnd
{
  public:
    UINT message = 0;
    std::function<void()> action;

    LRESULT WindowProc(UINT arrived, WPARAM wparam, LPARAM lparam) override
    {
        if (arrived == message && action)
            action();
        return CWnd::WindowProc(arrived, wparam, lparam);
    }
};

/// A control that deletes itself, as hosts' derived classes may, before or after a message is handled.
class SelfDeletingControl : public KARVOpenGLControl
{
  public:
    UINT message = 0;
    bool deletes_before = false;

    LRESULT WindowProc(UINT arrived, WPARAM wparam, LPARAM lparam) override
    {
        if (arrived != message)
            return KARVOpenGLControl::WindowProc(arrived, wparam, lparam);
        const LRESULT result = deletes_before ? 0 : KARVOpenGLControl::WindowProc(arrived, wparam, lparam);
        const std::unique_ptr<SelfDeletingControl> self(this);
        return result;
    }
};

/// A control and, beside it, a window with the focus that deletes the control when it loses the focus: each
/// redraw of the control asks for it.
class ControlDeletion : public ControlTest
{
  protected:
    ControlDeletion()
    {
        focused_.CreateEx(0, AfxRegisterWndClass(0), L"focused", WS_CHILD | WS_VISIBLE, CRect(0, 0, 8, 8),
                          &host_, 0);
    }
    void TearDown() override
    {
        focused_.action = {};
        control_.reset();
        focused_.DestroyWindow();
        ControlTest::TearDown();
    }

    /// From now on a redraw deletes the control.
    void Arm()
    {
        focused_.SetFocus();
        focused_.message = WM_KILLFOCUS;
        focused_.action = [this] { Delete(); };
    }
    void Delete()
    {
        if (control_ == nullptr)
            return;
        control_.reset();
        ++deletions_;
    }
    /// A control that already has drawn, armed.
    KARVOpenGLControl& ArmedControl()
    {
        control_ = NewControl();
        PumpPending();
        Arm();
        return *control_;
    }
    LRESULT Send(UINT message, WPARAM wparam, LPARAM lparam)
    {
        return ::SendMessageW(control_->GetSafeHwnd(), message, wparam, lparam);
    }

    ListeningWindow focused_;
    std::unique_ptr<KARVOpenGLControl> control_;
    int deletions_ = 0;
    TraceRecording trace_;
};

TEST_F(ControlDeletion, OnDrawEndsAfterTheFocusHandlerDeletedTheControl)
{
    ArmedControl().OnDraw(nullptr);
    EXPECT_EQ(deletions_, 1);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, SizeMessageEndsAfterItsRedraw)
{
    ArmedControl();
    Send(WM_SIZE, SIZE_RESTORED, MAKELPARAM(40, 20));
    EXPECT_EQ(deletions_, 1);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, MoveWindowEndsAfterTheRedrawThatItCauses)
{
    ArmedControl().MoveWindow(CRect(0, 0, 33, 22));
    EXPECT_EQ(deletions_, 1);
}

TEST_F(ControlDeletion, MouseMoveEndsAfterItsRedraw)
{
    ArmedControl();
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(3, 4));
    EXPECT_EQ(deletions_, 1);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, MouseWheelEndsAfterItsRedrawWithZero)
{
    ArmedControl();
    EXPECT_EQ(Send(WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0), 0);
    EXPECT_EQ(deletions_, 1);
}

TEST_F(ControlDeletion, ForceRenderStartEndsAfterItsRedraw)
{
    ArmedControl().ForceRenderStart();
    EXPECT_EQ(deletions_, 1);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, CreationEndsAfterItsRedraw)
{
    for (const bool transparent : {false, true}) {
        control_ = std::make_unique<KARVOpenGLControl>();
        Arm();
        const GlRecording recording;
        control_->CreateCtrl(CRect(0, 0, 16, 16), &host_, transparent);
        EXPECT_EQ(control_, nullptr);
        EXPECT_EQ(recording.Count("glBlendFunc"), 0) << "the control's context is gone";
        focused_.action = {};
    }
    EXPECT_EQ(deletions_, 2);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, CreationEndsAfterTheParentsHandlerDeletedTheControl)
{
    ListeningWindow parent;
    parent.CreateEx(0, AfxRegisterWndClass(0), L"parent", WS_CHILD | WS_VISIBLE, CRect(0, 0, 64, 64), &host_,
                    0);
    parent.SetFocus();
    parent.message = WM_KILLFOCUS;
    parent.action = [this] { Delete(); };
    control_ = std::make_unique<KARVOpenGLControl>();
    control_->CreateCtrl(CRect(0, 0, 16, 16), &parent, false);
    EXPECT_EQ(deletions_, 1);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, PaintEndsAfterAHandlerOfItsEraseDeletedTheControl)
{
    class Erasing : public KARVOpenGLControl
    {
      public:
        LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override
        {
            if (message == WM_ERASEBKGND) {
                const std::unique_ptr<Erasing> self(this);
                return TRUE;
            }
            return KARVOpenGLControl::WindowProc(message, wparam, lparam);
        }
    };
    auto* const control = std::make_unique<Erasing>().release();
    control->CreateCtrl(CRect(0, 0, 16, 16), &host_, false);
    const HWND window = control->GetSafeHwnd();
    ::InvalidateRect(window, nullptr, TRUE);
    ::SendMessageW(window, WM_PAINT, 0, 0);
    EXPECT_FALSE(::IsWindow(window));
}

TEST_F(ControlDeletion, DerivedControlDeletesItselfBeforeOrAfterAnyMessageOfItsOwn)
{
    for (const UINT message : {UINT{WM_SIZE}, UINT{WM_TIMER}, UINT{WM_MOUSEMOVE}, UINT{WM_MOUSEWHEEL},
                               UINT{WM_PAINT}, UINT{WM_KILLFOCUS}, UINT{WM_SETFOCUS}})
        for (const bool before : {true, false}) {
            auto* const control = std::make_unique<SelfDeletingControl>().release();
            control->CreateCtrl(CRect(0, 0, 16, 16), &host_, false);
            control->message = message;
            control->deletes_before = before;
            const HWND window = control->GetSafeHwnd();
            ::SendMessageW(window, message, 0, MAKELPARAM(5, 5));
            EXPECT_FALSE(::IsWindow(window)) << message << (before ? " before" : " after");
        }
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, CreationEndsAfterTheControlDeletedItselfInOneOfItsMessages)
{
    for (const UINT message : {UINT{WM_CREATE}, UINT{WM_SIZE}, UINT{WM_SETFOCUS}, UINT{WM_SHOWWINDOW}})
        for (const bool before : {true, false}) {
            auto* const control = std::make_unique<SelfDeletingControl>().release();
            control->message = message;
            control->deletes_before = before;
            control->CreateCtrl(CRect(0, 0, 16, 16), &host_, true);
        }
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, NestedMessageLoopInTheFocusHandlerMayDeleteTheControl)
{
    ArmedControl();
    constexpr UINT kDeleteNow = 0x8001; // one of the numbers for programs
    ListeningWindow deleter;
    deleter.CreateEx(0, AfxRegisterWndClass(0), L"deleter", WS_CHILD, CRect(0, 0, 8, 8), &host_, 0);
    deleter.message = kDeleteNow;
    deleter.action = [this] { Delete(); };
    ::PostMessageW(deleter.GetSafeHwnd(), kDeleteNow, 0, 0);
    focused_.action = [] {
        MSG message{};
        while (::PeekMessageW(&message, nullptr, kDeleteNow, kDeleteNow, PM_REMOVE))
            ::DispatchMessageW(&message);
    };
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(3, 4));
    EXPECT_EQ(deletions_, 1);
}

TEST_F(ControlDeletion, NestedMessagesOfOneControlAllEnd)
{
    // The redraw of a size message moves the control once more before the handler deletes it: two operations run.
    ArmedControl();
    int calls = 0;
    focused_.action = [&] {
        if (++calls == 1) {
            focused_.SetFocus();
            control_->MoveWindow(CRect(0, 0, 20, 20));
        } else {
            Delete();
        }
    };
    Send(WM_SIZE, SIZE_RESTORED, MAKELPARAM(40, 20));
    EXPECT_EQ(deletions_, 1);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(ControlDeletion, OtherControlsGoOn)
{
    const auto other = NewControl();
    ArmedControl().OnDraw(nullptr);
    EXPECT_EQ(deletions_, 1);
    focused_.action = {};
    other->MoveWindow(CRect(0, 0, 16, 16));
    EXPECT_EQ(other->panScale, 4.0F) << "64 pixels at creation, 16 now";
}

} // namespace
