// The control in a real dialog: made from a template, sized and destroyed with it, beside other controls.
#include "tests/control/windows_control_test.h"

#include <cstddef>
#include <cstring>

using testing::IsEmpty;

namespace karv_test
{
namespace
{

constexpr WORD kPlaceholder = 100;
constexpr WORD kButton = 101;

/// A dialog template in memory, as a resource compiler writes it: 16-bit words, each item aligned to four
/// bytes.
class DialogTemplate
{
  public:
    DialogTemplate()
    {
        DLGTEMPLATE dialog{};
        dialog.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_VISIBLE | DS_MODALFRAME;
        dialog.cdit = 2;
        dialog.x = 10;
        dialog.y = 10;
        dialog.cx = 200;
        dialog.cy = 150;
        Append(&dialog, sizeof dialog);
        AppendText({0}); // no menu
        AppendText({0}); // the default window class
        AppendText({'D', 'i', 'a', 'l', 'o', 'g', 0});
        constexpr WORD kStaticClass = 0x0082;
        constexpr WORD kButtonClass = 0x0080;
        AppendItem(kPlaceholder, kStaticClass, WS_CHILD | WS_VISIBLE, 5, 5, 150, 100);
        AppendItem(kButton, kButtonClass, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 5, 120, 40, 14);
    }

    [[nodiscard]] const DLGTEMPLATE* Get() const
    {
        return reinterpret_cast<const DLGTEMPLATE*>(words_.data());
    }

  private:
    void Append(const void* data, std::size_t size)
    {
        const std::size_t first = words_.size();
        words_.resize(first + size / sizeof(WORD));
        std::memcpy(&words_[first], data, size);
    }
    void AppendText(const std::vector<WORD>& words)
    {
        words_.insert(words_.end(), words.begin(), words.end());
    }
    void AppendItem(WORD id, WORD window_class, DWORD style, short x, short y, short width, short height)
    {
        if (words_.size() % 2 != 0)
            words_.push_back(0);
        DLGITEMTEMPLATE item{};
        item.style = style;
        item.x = x;
        item.y = y;
        item.cx = width;
        item.cy = height;
        item.id = id;
        Append(&item, sizeof item);
        AppendText({0xFFFF, window_class, 0, 0}); // the class by its number, no title, no creation data
    }

    std::vector<WORD> words_;
};

/// The state of the dialog's procedure.
struct ViewportDialog {
    KARVOpenGLControl control;
    int presses = 0;

    void Create(HWND dialog)
    {
        const HWND placeholder = GetDlgItem(dialog, kPlaceholder);
        RECT rect{};
        GetWindowRect(placeholder, &rect);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
        ::ShowWindow(placeholder, SW_HIDE);
        control.CreateCtrl(CRect(rect), CWnd::FromHandle(dialog), false);
    }
    void Resize(int width, int height)
    {
        if (control.m_hWnd != nullptr)
            control.MoveWindow(CRect(0, 0, width, height));
    }
};

INT_PTR CALLBACK DialogProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lparam);
        reinterpret_cast<ViewportDialog*>(lparam)->Create(window);
        return TRUE;
    }
    auto* const dialog = reinterpret_cast<ViewportDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (dialog == nullptr)
        return FALSE;
    if (message == WM_SIZE) {
        dialog->Resize(LOWORD(static_cast<DWORD_PTR>(lparam)), HIWORD(static_cast<DWORD_PTR>(lparam)));
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wparam) == kButton) {
        ++dialog->presses;
        return TRUE;
    }
    return FALSE;
}

} // namespace

class WindowsDialog : public WindowsControl
{
  protected:
    WindowsDialog()
    {
        const DialogTemplate layout;
        window_ = CreateDialogIndirectParamW(GetModuleHandleW(nullptr), layout.Get(), nullptr,
                                             &DialogProcedure, reinterpret_cast<LPARAM>(&dialog_));
    }
    ~WindowsDialog() override
    {
        if (IsWindow(window_))
            ::DestroyWindow(window_);
    }

    [[nodiscard]] bool RunDialogFrames(int frames)
    {
        const std::ptrdiff_t before = Calls("OnTimer");
        return RunUntil([&] { return Calls("OnTimer") >= before + frames; }, window_);
    }

    ViewportDialog dialog_;
    HWND window_ = nullptr;
};

TEST_F(WindowsDialog, ControlLiesAtTheTemplatesPlaceholder)
{
    ASSERT_NE(window_, nullptr);
    RECT placeholder{};
    RECT control{};
    GetWindowRect(GetDlgItem(window_, kPlaceholder), &placeholder);
    GetWindowRect(dialog_.control.m_hWnd, &control);
    EXPECT_TRUE(EqualRect(&placeholder, &control));
    EXPECT_EQ(::GetParent(dialog_.control.m_hWnd), window_);
}

TEST_F(WindowsDialog, FramesAreDrawnInTheDialogsLoop)
{
    ShowQuad(dialog_.control, kRedIndex);
    ASSERT_TRUE(RunDialogFrames(3));
    RECT rect{};
    dialog_.control.GetClientRect(&rect);
    const Picture picture = ReadLastFrame(dialog_.control.m_hWnd);
    EXPECT_TRUE(IsReddish(picture.At(static_cast<int>(rect.right) / 2, static_cast<int>(rect.bottom) / 2)));
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(WindowsDialog, ControlIsSizedWithTheDialog)
{
    ShowQuad(dialog_.control, kRedIndex);
    SetWindowPos(window_, nullptr, 0, 0, 600, 500, SWP_NOMOVE | SWP_NOZORDER);
    RECT dialog{};
    RECT control{};
    ::GetClientRect(window_, &dialog);
    dialog_.control.GetClientRect(&control);
    EXPECT_TRUE(EqualRect(&dialog, &control));
    EXPECT_EQ(dialog_.control.aspectRatio,
              static_cast<float>(control.right) / static_cast<float>(control.bottom));
    ASSERT_TRUE(RunDialogFrames(3));
    const Picture picture = ReadLastFrame(dialog_.control.m_hWnd);
    EXPECT_EQ(picture.At(static_cast<int>(control.right) - 1, static_cast<int>(control.bottom) - 1), kBlue)
        << "the frame reaches the new corner";
}

TEST_F(WindowsDialog, OtherControlsGoOnWorkingBesideIt)
{
    ASSERT_TRUE(RunDialogFrames(2));
    PostMessageW(GetDlgItem(window_, kButton), BM_CLICK, 0, 0);
    EXPECT_TRUE(RunUntil([&] { return dialog_.presses == 1; }, window_)) << "frames do not starve the button";
}

TEST_F(WindowsDialog, ControlEndsWithTheDialog)
{
    ASSERT_TRUE(RunDialogFrames(2));
    const HWND window = dialog_.control.m_hWnd;
    EXPECT_TRUE(::DestroyWindow(window_));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(dialog_.control.m_hWnd, nullptr);
    EXPECT_THAT(trace_.Faults(), IsEmpty());
}

TEST_F(WindowsDialog, ControlMayGoBeforeTheDialog)
{
    {
        KARVOpenGLControl second;
        second.CreateCtrl(CRect(0, 0, 50, 50), CWnd::FromHandle(window_), false);
        ASSERT_TRUE(RunDialogFrames(2));
    }
    EXPECT_TRUE(IsWindow(window_));
    EXPECT_TRUE(RunDialogFrames(2));
}

} // namespace karv_test
