// Carries out script commands on the dialog's controls and on the common dialogs that they open.
#pragma once

#include "viewer/apps/win32-dialog/dialog.h"
#include "viewer/apps/win32-dialog/script_command.h"

#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace win32_dialog
{

class ScriptUser
{
  public:
    explicit ScriptUser(ViewerDialog& dialog) : dialog_(dialog) {}

    /// Carries out one command. Throws std::runtime_error with the reason, in one line, where it cannot be
    /// done.
    void Do(const ScriptCommand& command);

  private:
    void Press(const std::wstring& caption);
    /// Presses a button and lets `fill_in` complete the common dialog that it opens, then confirms that
    /// dialog.
    void Answer(const std::wstring& caption, const std::function<void(HWND common_dialog)>& fill_in);
    void SetOpacity(int percent);
    void SetBackground(std::span<const int> channels);
    void Open(const std::wstring& file);
    void Drag(const std::wstring& button, std::span<const int> points);
    void TurnWheel(int notches);
    void Resize(int width, int height);
    [[nodiscard]] HWND FindButton(const std::wstring& caption) const;

    ViewerDialog& dialog_;
};

/// Waits for the dialog's next complete frame and writes it as a bitmap. Throws viewer::FileError where the
/// file cannot be written, and std::runtime_error where the dialog is closed before or no complete frame
/// comes.
void TakePicture(ViewerDialog& dialog, const std::filesystem::path& file);

} // namespace win32_dialog
