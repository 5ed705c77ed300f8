// The viewport control in a dialog: it leaves the keyboard focus to the dialog's other controls and records
// the user's camera movements. It does not know what it shows.
#pragma once

#include "control/KARVOpenGLControl.h"

#include <vector>

namespace win32_dialog
{

/// Restores the keyboard focus at the end of its life. The viewport control takes the focus on every redraw,
/// even where a button of the dialog caused the redraw.
class FocusKeeper
{
  public:
    FocusKeeper() : window_(GetFocus()) {}
    FocusKeeper(const FocusKeeper&) = delete;
    FocusKeeper& operator=(const FocusKeeper&) = delete;
    ~FocusKeeper()
    {
        if (window_ != nullptr && GetFocus() != window_ && IsWindow(window_) != FALSE)
            SetFocus(window_);
    }

  private:
    HWND window_;
};

/// A mouse message with its parameters.
struct MouseMessage {
    UINT message;
    WPARAM wparam;
    LPARAM lparam;

    /// Whether it moves the camera; other messages only move the pointer.
    [[nodiscard]] bool Navigates() const;
};

class Viewport : public KARVOpenGLControl
{
  public:
    LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override;

    /// The user's mouse messages since `ForgetNavigation`. Sent to another control with the same scene and
    /// standard view, they turn and zoom its camera to exactly the same values.
    [[nodiscard]] const std::vector<MouseMessage>& Navigation() const { return navigation_; }
    [[nodiscard]] bool HasNavigated() const;
    /// Removes all messages but the last position of the pointer, where the next drag starts.
    void ForgetNavigation();

  private:
    void Remember(const MouseMessage& message);

    std::vector<MouseMessage> navigation_; ///< of the moves between two drags only the last one
};

} // namespace win32_dialog
