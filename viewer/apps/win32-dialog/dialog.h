// The dialog: it makes the window from the template, hands every control's message to the scene, and lets the
// viewport grow with it. Its messages are dispatched one at a time, so that a program may do something in
// between.
#pragma once

#include "viewer/apps/win32-dialog/scene_view.h"
#include "viewer/scene/model.h"

#include <array>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>

namespace win32_dialog
{

/// A modeless dialog with a viewport in it. Where no window or no OpenGL can be had, the constructor and
/// `Dispatch` throw std::runtime_error and the dialog is closed.
class ViewerDialog
{
  public:
    /// Tells the user, in one line of text, that a file was refused.
    using ErrorReport = std::function<void(HWND dialog, const std::string& error)>;

    /// Opens the dialog, visible, with a model in it. Without a report, refused files end up as other
    /// failures do.
    ViewerDialog(viewer::Model model, ErrorReport report);
    ViewerDialog(const ViewerDialog&) = delete;
    ViewerDialog& operator=(const ViewerDialog&) = delete;
    ~ViewerDialog();

    [[nodiscard]] bool IsOpen() const { return window_ != nullptr; }
    void Close();
    /// Waits for the next message and dispatches it, keys as dialogs take them. Returns what it was.
    MSG Dispatch();

    [[nodiscard]] HWND Window() const { return window_; }
    [[nodiscard]] HWND ViewportWindow() const { return scene_ ? scene_->Window() : nullptr; }

    /// Sees common dialogs that the buttons bring up, each time that one waits for its user; null for nobody.
    void SetCommonDialogUser(std::function<void(HWND common_dialog)> user)
    {
        common_dialog_user_ = std::move(user);
    }
    /// Throws what was thrown while a message was handled, and forgets it.
    void RethrowFailure();

  private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    INT_PTR Handle(UINT message, WPARAM wparam, LPARAM lparam);
    void OnInit();
    void OnSize(UINT type);
    void OnMinMaxInfo(MINMAXINFO& info) const;
    void OnSlide(UINT code);
    void OnCommand(UINT id);
    void OnCategory(UINT id);
    void OpenFile();
    void ChooseBackground();

    void ShowModel(viewer::Model model);
    void NameCategories();
    void NameOpacity() const;
    [[nodiscard]] HWND Item(UINT id) const { return GetDlgItem(window_, static_cast<int>(id)); }
    [[nodiscard]] bool IsChecked(UINT id) const;

    ErrorReport report_;
    HWND window_ = nullptr;
    std::unique_ptr<SceneView> scene_;
    int opacity_ = 100; ///< per cent, of what is shown
    std::array<COLORREF, 16> custom_colors_{};
    std::function<void(HWND)> common_dialog_user_;
    std::exception_ptr failure_;
};

} // namespace win32_dialog
