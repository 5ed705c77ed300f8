#include "viewer/apps/win32-dialog/dialog.h"

#include "platform/tools/utf8.h"
#include "viewer/apps/win32-dialog/model_file.h"
#include "viewer/apps/win32-dialog/resource.h"
#include "viewer/text/file_error.h"

#include <commctrl.h>
#include <commdlg.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace win32_dialog
{

namespace
{

constexpr int kOpaque = 100;

constexpr UINT_PTR kCommonDialogTimer = 1;

/// The smallest client area that shows every button and a part of the viewport, in dialog units.
constexpr RECT kMinClientArea{0, 0, 250, 262};

/// The text with its ampersands escaped, so that a control shows them.
std::wstring WithoutMnemonics(const std::string& text)
{
    std::wstring shown;
    for (const wchar_t character : WideFromUtf8(text))
        shown.append(character == L'&' ? 2 : 1, character);
    return shown;
}

} // namespace

ViewerDialog::ViewerDialog(viewer::Model model, ErrorReport report) : report_(std::move(report))
{
    const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&classes);
    const HWND window = CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_VIEWER), nullptr,
                                           Procedure, reinterpret_cast<LPARAM>(this));
    if (window == nullptr)
        throw std::runtime_error("no dialog can be made");
    scene_ = std::make_unique<SceneView>(window, Item(IDC_VIEWPORT));
    ShowModel(std::move(model));
    ShowWindow(window, SW_SHOW);
}

ViewerDialog::~ViewerDialog()
{
    Close();
}

void ViewerDialog::Close()
{
    if (window_ != nullptr)
        DestroyWindow(window_);
}

MSG ViewerDialog::Dispatch()
{
    MSG message{};
    if (GetMessageW(&message, nullptr, 0, 0) <= 0) {
        Close();
        return message;
    }
    // The wheel acts on the window under the pointer. NOTE: Older systems send it to the window with the
    // focus.
    if (message.message == WM_MOUSEWHEEL && WindowFromPoint(message.pt) == ViewportWindow())
        message.hwnd = ViewportWindow();
    if (IsDialogMessageW(window_, &message) == FALSE) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    RethrowFailure();
    return message;
}

void ViewerDialog::SetCommonDialogUser(std::function<void(HWND common_dialog)> user)
{
    common_dialog_user_ = std::move(user);
    // NOTE: The system reports idle moments only when no message waits. Where frames take longer than their
    // timer's period, one always does.
    constexpr UINT kTenthOfASecond = 100;
    if (common_dialog_user_)
        SetTimer(window_, kCommonDialogTimer, kTenthOfASecond, nullptr);
    else
        KillTimer(window_, kCommonDialogTimer);
}

void ViewerDialog::RethrowFailure()
{
    if (failure_)
        std::rethrow_exception(std::exchange(failure_, nullptr));
}

INT_PTR CALLBACK ViewerDialog::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lparam);
        reinterpret_cast<ViewerDialog*>(lparam)->window_ = window;
    }
    auto* const self = reinterpret_cast<ViewerDialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (self == nullptr || self->window_ == nullptr)
        return FALSE;
    // No exception may pass through the code of the system that calls this.
    try {
        return self->Handle(message, wparam, lparam);
    } catch (const viewer::FileError& error) {
        if (self->report_)
            self->report_(window, error.what());
        else
            self->failure_ = std::current_exception();
    } catch (...) {
        self->failure_ = std::current_exception();
        self->Close();
    }
    return TRUE;
}

INT_PTR ViewerDialog::Handle(UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message) {
    case WM_INITDIALOG:
        OnInit();
        return TRUE;
    case WM_SIZE:
        OnSize(static_cast<UINT>(wparam));
        return TRUE;
    case WM_GETMINMAXINFO:
        OnMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lparam));
        return TRUE;
    case WM_HSCROLL:
        OnSlide(LOWORD(wparam));
        return TRUE;
    case WM_COMMAND:
        if (HIWORD(wparam) == BN_CLICKED)
            OnCommand(LOWORD(wparam));
        return TRUE;
    case WM_TIMER:
        OnTimer();
        return TRUE;
    case WM_DESTROY:
        // The window still exists here: the control's context belongs to it.
        scene_.reset();
        window_ = nullptr;
        return TRUE;
    default:
        return FALSE;
    }
}

void ViewerDialog::OnInit()
{
    SendMessageW(Item(IDC_OPACITY), TBM_SETRANGE, TRUE, MAKELPARAM(0, kOpaque));
    SendMessageW(Item(IDC_OPACITY), TBM_SETPAGESIZE, 0, 10);
    SendMessageW(Item(IDC_OPACITY), TBM_SETPOS, TRUE, opacity_);
    CheckRadioButton(window_, IDC_FACES, IDC_LINES, IDC_FACES);
    OnSize(SIZE_RESTORED);
}

void ViewerDialog::ShowModel(viewer::Model model)
{
    const FocusKeeper keeper;
    scene_->ShowModel(std::move(model));
    const bool is_parallel = scene_->Projection() == viewer::Projection::Parallel;
    CheckRadioButton(window_, IDC_PERSPECTIVE, IDC_PARALLEL, is_parallel ? IDC_PARALLEL : IDC_PERSPECTIVE);
    SetWindowTextW(window_, (WideFromUtf8(scene_->Model().title) + L" - Viewport").c_str());
    NameCategories();
}

void ViewerDialog::NameCategories()
{
    constexpr int kBoxes = IDC_CATEGORY_LAST - IDC_CATEGORY_FIRST + 1;
    const viewer::Model& model = scene_->Model();
    const int count = model.CategoryCount();
    for (int category = 0; category < kBoxes; ++category) {
        const HWND box = Item(static_cast<UINT>(IDC_CATEGORY_FIRST + category));
        const auto number = static_cast<std::size_t>(category);
        const bool is_for_rest = category == kBoxes - 1 && count > kBoxes;
        std::string name =
            number < model.category_names.size() ? model.category_names[number] : std::to_string(category);
        SetWindowTextW(box, WithoutMnemonics(is_for_rest ? "others" : name).c_str());
        SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);
        ShowWindow(box, category < count ? SW_SHOW : SW_HIDE);
    }
}

void ViewerDialog::OnSize(UINT type)
{
    if (type == SIZE_MINIMIZED)
        return;
    const FocusKeeper keeper;
    CRect client;
    GetClientRect(window_, &client);
    CRect place;
    GetWindowRect(Item(IDC_VIEWPORT), &place);
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(static_cast<RECT*>(&place)), 2);
    // The margins below and to the right equal the one above.
    const int margin = place.top;
    const int width = client.right - margin - place.left;
    const int height = client.bottom - margin - place.top;
    MoveWindow(Item(IDC_VIEWPORT), place.left, place.top, std::max(1, width), std::max(1, height), FALSE);
    if (scene_)
        scene_->FollowPlace();
}

void ViewerDialog::OnMinMaxInfo(MINMAXINFO& info) const
{
    CRect window;
    CRect client;
    GetWindowRect(window_, &window);
    GetClientRect(window_, &client);
    RECT smallest = kMinClientArea;
    MapDialogRect(window_, &smallest);
    if (IsIconic(window_) == FALSE)
        info.ptMinTrackSize = {smallest.right + window.Width() - client.Width(),
                               smallest.bottom + window.Height() - client.Height()};
}

void ViewerDialog::OnSlide(UINT code)
{
    NameOpacity();
    // The viewport is rebuilt for each new opacity, which is too slow for every step of the slider.
    if (code != TB_ENDTRACK && code != TB_THUMBPOSITION)
        return;
    const int opacity = static_cast<int>(SendMessageW(Item(IDC_OPACITY), TBM_GETPOS, 0, 0));
    if (opacity == opacity_)
        return;
    opacity_ = opacity;
    const FocusKeeper keeper;
    scene_->SetOpacity(static_cast<float>(opacity) / static_cast<float>(kOpaque));
}

void ViewerDialog::NameOpacity() const
{
    const auto opacity = SendMessageW(Item(IDC_OPACITY), TBM_GETPOS, 0, 0);
    SetWindowTextW(Item(IDC_OPACITY_TEXT), (L"Opacit&y: " + std::to_wstring(opacity) + L" %").c_str());
}

void ViewerDialog::OnCommand(UINT id)
{
    const FocusKeeper keeper;
    if (id >= IDC_VIEW_FRONT && id <= IDC_VIEW_NW)
        scene_->ShowStandardView(static_cast<viewer::StandardView>(id - IDC_VIEW_FRONT));
    else if (id == IDC_PERSPECTIVE || id == IDC_PARALLEL)
        scene_->SetProjection(IsChecked(IDC_PARALLEL) ? viewer::Projection::Parallel
                                                      : viewer::Projection::Perspective);
    else if (id == IDC_FACES || id == IDC_LINES)
        scene_->DrawLines(IsChecked(IDC_LINES));
    else if (id >= IDC_CATEGORY_FIRST && id <= IDC_CATEGORY_LAST)
        OnCategory(id);
    else if (id == IDC_OPEN)
        OpenFile();
    else if (id == IDC_BACKGROUND)
        ChooseBackground();
    else if (id == IDCANCEL)
        Close();
}

bool ViewerDialog::IsChecked(UINT id) const
{
    return IsDlgButtonChecked(window_, static_cast<int>(id)) == BST_CHECKED;
}

void ViewerDialog::OnCategory(UINT id)
{
    const auto first = static_cast<int>(id - IDC_CATEGORY_FIRST);
    const int last = id == IDC_CATEGORY_LAST ? scene_->Model().CategoryCount() - 1 : first;
    for (int category = first; category <= last; ++category)
        scene_->ShowCategory(category, IsChecked(id));
}

void ViewerDialog::OnTimer() const
{
    const HWND popup = GetLastActivePopup(window_);
    if (common_dialog_user_ && popup != window_ && IsWindowVisible(popup) != FALSE)
        common_dialog_user_(popup);
}

void ViewerDialog::OpenFile()
{
    constexpr std::size_t kMaxPath = 32768;
    std::vector<wchar_t> name(kMaxPath);
    OPENFILENAMEW choice{};
    choice.lStructSize = sizeof(choice);
    choice.hwndOwner = window_;
    choice.lpstrFilter = L"OBJ models (*.obj)\0*.obj\0All files (*.*)\0*.*\0";
    choice.lpstrFile = name.data();
    choice.nMaxFile = static_cast<DWORD>(name.size());
    choice.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (GetOpenFileNameW(&choice) != FALSE)
        ShowModel(ReadModelFile(name.data()));
}

void ViewerDialog::ChooseBackground()
{
    CHOOSECOLORW choice{};
    choice.lStructSize = sizeof(choice);
    choice.hwndOwner = window_;
    choice.rgbResult = scene_->Background();
    choice.lpCustColors = custom_colors_.data();
    choice.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ANYCOLOR;
    if (ChooseColorW(&choice) != FALSE)
        scene_->SetBackground(choice.rgbResult);
}

} // namespace win32_dialog
