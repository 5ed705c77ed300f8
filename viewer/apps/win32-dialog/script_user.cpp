#include "viewer/apps/win32-dialog/script_user.h"

#include "platform/tools/utf8.h"
#include "viewer/apps/win32-dialog/bitmap.h"
#include "viewer/apps/win32-dialog/model_file.h"

#include <colordlg.h>
#include <commctrl.h>
#include <dlgs.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace win32_dialog
{

namespace
{

std::wstring TextOf(HWND window)
{
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

/// The caption as the user reads it: a single ampersand only marks the key of the button.
std::wstring CaptionOf(HWND window)
{
    const std::wstring text = TextOf(window);
    std::wstring caption;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'&' && ++i == text.size())
            break;
        caption += text[i];
    }
    return caption;
}

bool IsButton(HWND window)
{
    std::array<wchar_t, 16> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    const bool is_group = (GetWindowLongW(window, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
    return std::wstring_view(name.data()) == L"Button" && !is_group;
}

struct MouseButton {
    std::wstring_view name;
    UINT down;
    UINT up;
    WPARAM flag;
};

constexpr std::array kMouseButtons = {
    MouseButton{L"left", WM_LBUTTONDOWN, WM_LBUTTONUP, MK_LBUTTON},
    MouseButton{L"middle", WM_MBUTTONDOWN, WM_MBUTTONUP, MK_MBUTTON},
    MouseButton{L"right", WM_RBUTTONDOWN, WM_RBUTTONUP, MK_RBUTTON},
};

} // namespace

void ScriptUser::Do(const ScriptCommand& command)
{
    if (!dialog_.IsOpen())
        throw std::runtime_error("the dialog is closed");
    const std::span<const int> numbers(command.numbers);
    if (command.verb == "press")
        Press(command.text);
    else if (command.verb == "opacity")
        SetOpacity(numbers[0]);
    else if (command.verb == "background")
        SetBackground(numbers);
    else if (command.verb == "open")
        Open(command.text);
    else if (command.verb == "drag")
        Drag(command.text, numbers);
    else if (command.verb == "wheel")
        TurnWheel(numbers[0]);
    else if (command.verb == "resize")
        Resize(numbers[0], numbers[1]);
    else if (command.verb == "picture")
        TakePicture(dialog_, command.text);
    dialog_.RethrowFailure();
}

HWND ScriptUser::FindButton(const std::wstring& caption) const
{
    HWND found = nullptr;
    for (HWND child = GetWindow(dialog_.Window(), GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        if (!IsButton(child) || IsWindowVisible(child) == FALSE || CaptionOf(child) != caption)
            continue;
        if (found != nullptr)
            throw std::runtime_error("there are several buttons \"" + Utf8FromWide(caption) + "\"");
        found = child;
    }
    if (found == nullptr)
        throw std::runtime_error("there is no button \"" + Utf8FromWide(caption) + "\"");
    return found;
}

void ScriptUser::Press(const std::wstring& caption)
{
    const HWND button = FindButton(caption);
    // NOTE: Buttons of an inactive dialog may ignore the click.
    SetActiveWindow(dialog_.Window());
    SendMessageW(button, BM_CLICK, 0, 0);
}

void ScriptUser::Answer(const std::wstring& caption, const std::function<void(HWND)>& fill_in)
{
    bool was_answered = false;
    // A common dialog can lose an answer that comes while it still fills its lists, so each call answers again.
    dialog_.SetCommonDialogUser([&](HWND common_dialog) {
        was_answered = true;
        fill_in(common_dialog);
        PostMessageW(GetDlgItem(common_dialog, IDOK), BM_CLICK, 0, 0);
    });
    Press(caption);
    dialog_.SetCommonDialogUser(nullptr);
    if (!was_answered)
        throw std::runtime_error("\"" + Utf8FromWide(caption) + "\" brings up no dialog");
}

void ScriptUser::SetOpacity(int percent)
{
    const HWND slider = FindWindowExW(dialog_.Window(), nullptr, TRACKBAR_CLASSW, nullptr);
    const auto steps = percent - static_cast<int>(SendMessageW(slider, TBM_GETPOS, 0, 0));
    SetFocus(slider);
    const WPARAM key = steps < 0 ? VK_LEFT : VK_RIGHT;
    // A key that is held down and then released.
    for (int step = 0; step < std::abs(steps); ++step)
        SendMessageW(slider, WM_KEYDOWN, key, 0);
    SendMessageW(slider, WM_KEYUP, key, 0);
}

void ScriptUser::SetBackground(std::span<const int> channels)
{
    Answer(L"Background...", [&](HWND common_dialog) {
        for (const int channel : {0, 1, 2})
            SetDlgItemInt(common_dialog, COLOR_RED + channel,
                          static_cast<UINT>(channels[static_cast<std::size_t>(channel)]), FALSE);
    });
}

void ScriptUser::Open(const std::wstring& file)
{
    // The common dialog asks again for a file that does not exist, and the script would wait forever.
    CheckModelFile(file);
    const std::wstring path = std::filesystem::absolute(file).wstring();
    Answer(L"Open...", [&](HWND common_dialog) {
        // NOTE: Depending on its style, the common dialog has a combo box or an edit box for the name.
        const int name = GetDlgItem(common_dialog, cmb13) != nullptr ? cmb13 : edt1;
        SetDlgItemTextW(common_dialog, name, path.c_str());
    });
}

void ScriptUser::Drag(const std::wstring& button, std::span<const int> points)
{
    const auto* const entry =
        std::find_if(kMouseButtons.begin(), kMouseButtons.end(),
                     [&](const MouseButton& candidate) { return candidate.name == button; });
    if (entry == kMouseButtons.end())
        throw std::runtime_error("the mouse has no button \"" + Utf8FromWide(button) + "\"");
    const HWND viewport = dialog_.ViewportWindow();
    const LPARAM from = MAKELPARAM(points[0], points[1]);
    const LPARAM to = MAKELPARAM(points[2], points[3]);
    SendMessageW(viewport, WM_MOUSEMOVE, 0, from);
    SendMessageW(viewport, entry->down, entry->flag, from);
    SendMessageW(viewport, WM_MOUSEMOVE, entry->flag, to);
    SendMessageW(viewport, entry->up, 0, to);
}

void ScriptUser::TurnWheel(int notches)
{
    const HWND viewport = dialog_.ViewportWindow();
    POINT point{};
    ClientToScreen(viewport, &point);
    SendMessageW(viewport, WM_MOUSEWHEEL, MAKEWPARAM(0, notches * WHEEL_DELTA), MAKELPARAM(point.x, point.y));
}

void ScriptUser::Resize(int width, int height)
{
    CRect window;
    CRect client;
    GetWindowRect(dialog_.Window(), &window);
    GetClientRect(dialog_.Window(), &client);
    SetWindowPos(dialog_.Window(), nullptr, 0, 0, width + window.Width() - client.Width(),
                 height + window.Height() - client.Height(), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    GetClientRect(dialog_.Window(), &client);
    if (client.Width() != width || client.Height() != height)
        throw std::runtime_error("the dialog stays at " + std::to_string(client.Width()) + "x" +
                                 std::to_string(client.Height()));
}

void TakePicture(ViewerDialog& dialog, const std::filesystem::path& file)
{
    // Many more than the frames that are incomplete after the window has a new size.
    int frames_left = 100;
    while (dialog.IsOpen() && frames_left > 0) {
        const MSG message = dialog.Dispatch();
        if (message.message != WM_TIMER || message.hwnd != dialog.ViewportWindow())
            continue;
        CRect client;
        GetClientRect(message.hwnd, &client);
        if (const auto bitmap = ReadFrame(client.Width(), client.Height())) {
            WriteBitmap(file, *bitmap);
            return;
        }
        --frames_left;
    }
    throw std::runtime_error(dialog.IsOpen() ? "no whole frame comes" : "the dialog is closed");
}

} // namespace win32_dialog
