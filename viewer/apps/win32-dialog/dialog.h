// The dialog: creates its window from the template, passes the commands of its controls to the scene and
// resizes the viewport. The caller dispatches its messages one at a time, so that it can act in between.
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

/// A modeless dialog with a viewport in it. Where a window or OpenGL is not available, the constructor and
/// `Dispatch` throw std::runtime_error and the dialog is closed. All calls come from the thread that created
/// it.
class ViewerDialog
{
  public:
    /// Tells the user, in one line of text, why a file was refused.
    using ErrorReport = std::function<void(HWND dialog, const std::string& error)>;

    /// Opens the dialog, visible, with a model in it. With an empty `report`, `Dispatch` throws the
    /// viewer::FileError of a refused file, and the dialog stays open.
    ViewerDialog(viewer::Model model, ErrorReport report);
    ViewerDialog(const ViewerDialog&) = delete;
    ViewerDialog& operator=(const ViewerDialog&) = delete;
    ~ViewerDialog();

    [[nodiscard]] bool IsOpen() const { return window_ != nullptr; }
    void Close();
    /// Waits for the next message, dispatches it, with the keyboard handling of dialogs, and returns it.
    /// Closes the dialog where the thread is told to quit.
    MSG Dispatch();

    /// Null once the dialog is closed.
    [[nodiscard]] HWND Window() const { return window_; }
    /// Null once the dialog is closed.
    [[nodiscard]] HWND ViewportWindow() const { return scene_ ? scene_->Window() : nullptr; }

    /// Sets a function that is called every tenth of a second while a common dialog of a button (Open,
    /// Background) is visible; an empty function ends that.
    void SetCommonDialogUser(std::function<void(HWND common_dialog)> user);
    /// Throws the exception that the handling of a message left behind, once. For messages that were sent
    /// directly; `Dispatch` does this itself.
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
    void OnTimer() const;
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
    int opacity_ = 100; ///< of the model shown, in per cent
    std::array<COLORREF, 16> custom_colors_{};
    std::function<void(HWND)> common_dialog_user_;
    std::exception_ptr failure_;
};

} // namespace win32_dialog
