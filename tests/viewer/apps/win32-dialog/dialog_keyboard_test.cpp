// The program used by the keyboard alone: the order of the Tab key, the keys of the captions, and the focus.
#include "tests/viewer/apps/win32-dialog/dialog_process.h"

#include "viewer/apps/win32-dialog/resource.h"

#include <gtest/gtest.h>

#include <array>
#include <ranges>
#include <string>
#include <vector>

#include <commctrl.h>

using namespace dialog_test;

namespace
{

constexpr int kFirstCategory = IDC_CATEGORY_FIRST;

/// The dialog with the bundled scene, in the foreground.
class DialogKeyboard : public testing::Test
{
  protected:
    DialogKeyboard() : process_(L"", folder_.Path()), dialog_(process_.Dialog())
    {
        SetForegroundWindow(dialog_);
        const bool is_ready = process_.WaitUntil([&] { return FocusedId() == IDC_OPEN; });
        EXPECT_TRUE(is_ready) << "the focus is at " << FocusedId();
    }

    [[nodiscard]] int FocusedId() const { return GetDlgCtrlID(process_.Focus()); }
    [[nodiscard]] HWND Item(int id) const { return GetDlgItem(dialog_, id); }
    [[nodiscard]] bool IsChecked(int id) const
    {
        return SendMessageW(Item(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
    }

    [[nodiscard]] std::wstring TextOf(int id) const
    {
        std::array<wchar_t, 64> text{};
        SendMessageW(Item(id), WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
        return text.data();
    }

    /// Presses the keys one after the other and releases them in reverse order.
    static void Press(const std::vector<WORD>& keys)
    {
        std::vector<INPUT> inputs;
        const auto add = [&](WORD key, DWORD flags) {
            INPUT input{};
            input.type = INPUT_KEYBOARD;
            input.ki.wVk = key;
            input.ki.dwFlags = flags;
            inputs.push_back(input);
        };
        for (const WORD key : keys)
            add(key, 0);
        for (const WORD key : std::views::reverse(keys))
            add(key, KEYEVENTF_KEYUP);
        SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
    }

    /// Presses keys and waits until this control has the focus; until then it may be anywhere.
    [[nodiscard]] testing::AssertionResult LeadTo(int id, const std::vector<WORD>& keys)
    {
        Press(keys);
        if (process_.WaitUntil([&] { return FocusedId() == id; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "the focus is at " << FocusedId() << ", not at " << id;
    }

    Folder folder_;
    DialogProcess process_;
    HWND dialog_;
};

/// The controls in the order of the Tab key, with the four categories of the bundled scene.
const std::vector<int> kTabStops = {
    IDC_OPEN,           IDC_BACKGROUND,     IDC_VIEW_FRONT,     IDC_VIEW_LEFT, IDC_VIEW_TOP,
    IDC_VIEW_BACK,      IDC_VIEW_RIGHT,     IDC_VIEW_BOTTOM,    IDC_VIEW_NW,   IDC_VIEW_NE,
    IDC_VIEW_SW,        IDC_VIEW_SE,        IDC_PERSPECTIVE,    IDC_FACES,     kFirstCategory,
    kFirstCategory + 1, kFirstCategory + 2, kFirstCategory + 3, IDC_OPACITY,   IDCANCEL};

} // namespace

TEST_F(DialogKeyboard, TabGoesThroughThePanelAndRound)
{
    for (std::size_t i = 1; i < kTabStops.size(); ++i)
        ASSERT_TRUE(LeadTo(kTabStops[i], {VK_TAB}));
    ASSERT_TRUE(LeadTo(IDC_OPEN, {VK_TAB}));
}

TEST_F(DialogKeyboard, ShiftTabGoesBack)
{
    ASSERT_TRUE(LeadTo(IDCANCEL, {VK_SHIFT, VK_TAB}));
    ASSERT_TRUE(LeadTo(IDC_OPACITY, {VK_SHIFT, VK_TAB}));
}

TEST_F(DialogKeyboard, EscapeClosesTheDialog)
{
    Press({VK_ESCAPE});
    const Outcome outcome = process_.Wait();
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(outcome.error, "");
}

TEST_F(DialogKeyboard, EnterPressesTheDefaultButton)
{
    // The focus is on a check box, which ignores the key.
    SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(kFirstCategory)), TRUE);
    Press({VK_RETURN});
    EXPECT_TRUE(process_.WaitUntil([&] { return GetLastActivePopup(dialog_) != dialog_; }))
        << "no file dialog";
    Press({VK_ESCAPE});
    EXPECT_TRUE(process_.WaitUntil([&] { return IsWindowEnabled(dialog_) != FALSE; }));
    EXPECT_TRUE(process_.WaitUntil([&] { return FocusedId() == kFirstCategory; }));
}

TEST_F(DialogKeyboard, ButtonThatIsPressedKeepsTheFocus)
{
    // The viewport takes the focus whenever its camera moves.
    ASSERT_TRUE(LeadTo(IDC_BACKGROUND, {VK_TAB}));
    ASSERT_TRUE(LeadTo(IDC_VIEW_FRONT, {VK_TAB}));
    Press({VK_SPACE});
    ASSERT_TRUE(LeadTo(IDC_VIEW_LEFT, {VK_TAB}));
}

TEST_F(DialogKeyboard, KeyOfACaptionReachesItsButton)
{
    ASSERT_TRUE(LeadTo(IDC_VIEW_NW, {VK_MENU, 'W'}));
    ASSERT_TRUE(LeadTo(IDC_OPACITY, {VK_MENU, 'Y'}));
}

TEST_F(DialogKeyboard, ArrowsMoveWithinAGroup)
{
    ASSERT_TRUE(LeadTo(IDC_PERSPECTIVE, {VK_MENU, 'P'}));
    ASSERT_TRUE(LeadTo(IDC_PARALLEL, {VK_DOWN}));
    EXPECT_TRUE(process_.WaitUntil([&] { return IsChecked(IDC_PARALLEL) && !IsChecked(IDC_PERSPECTIVE); }));
    ASSERT_TRUE(LeadTo(IDC_PERSPECTIVE, {VK_DOWN}));
    // The other group is unchanged.
    EXPECT_TRUE(IsChecked(IDC_FACES));
}

TEST_F(DialogKeyboard, SpaceTogglesACategory)
{
    SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(kFirstCategory)), TRUE);
    ASSERT_EQ(FocusedId(), kFirstCategory);
    Press({VK_SPACE});
    EXPECT_TRUE(process_.WaitUntil([&] { return !IsChecked(kFirstCategory); }));
    EXPECT_EQ(FocusedId(), kFirstCategory);
}

TEST_F(DialogKeyboard, ArrowsMoveTheSliderAndLeaveTheFocusThere)
{
    ASSERT_TRUE(LeadTo(IDC_OPACITY, {VK_MENU, 'Y'}));
    Press({VK_LEFT});
    EXPECT_TRUE(process_.WaitUntil([&] { return TextOf(IDC_OPACITY_TEXT) == L"Opacit&y: 99 %"; }));
    // The slider handles its next message after the viewport was rebuilt.
    EXPECT_EQ(SendMessageW(Item(IDC_OPACITY), TBM_GETPOS, 0, 0), 99);
    EXPECT_EQ(FocusedId(), IDC_OPACITY);
}

TEST_F(DialogKeyboard, PointerOverTheViewportLeavesTheFocusAndADragTakesIt)
{
    const HWND viewport = FindWindowExW(dialog_, nullptr, nullptr, L"3DView");
    ASSERT_NE(viewport, nullptr);
    SendMessageW(viewport, WM_MOUSEMOVE, 0, MAKELPARAM(20, 20));
    EXPECT_EQ(FocusedId(), IDC_OPEN);
    SendMessageW(viewport, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), MAKELPARAM(20, 20));
    EXPECT_EQ(FocusedId(), IDC_OPEN);
    SendMessageW(viewport, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(30, 20));
    EXPECT_EQ(process_.Focus(), viewport);
    // From the viewport, the Tab key continues with the first control.
    Press({VK_TAB});
    EXPECT_TRUE(process_.WaitUntil([&] { return FocusedId() == IDC_OPEN; }));
}
