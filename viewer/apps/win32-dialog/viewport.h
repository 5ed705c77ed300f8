// The viewport control as a guest of a dialog: it leaves the keyboard focus where the user put it, and
// remembers how the user has moved the camera. It knows nothing of what it shows.
#pragma once

#include "control/KARVOpenGLControl.h"

#include <vector>

namespace win32_dialog
{

/// Puts the keyboard focus back to where it was: the control asks for it on every redraw, also when it is a
/// button that asked for the redraw.
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

/// A message of the mouse, with its parameters.
struct MouseMessage {
    UINT message;
    WPARAM wparam;
    LPARAM lparam;

    /// Whether it moves the camera, and not only the pointer.
    [[nodiscard]] bool Navigates() const;
};

/// The control in a dialog.
class Viewport : public KARVOpenGLControl
{
  public:
    LRESULT WindowProc(UINT message, WPARAM wparam, LPARAM lparam) override;

    /// What the user did with the mouse since `ForgetNavigation`. Sent to another control of the same scene
    /// and the same standard view, it turns and zooms that one as this one was, bit for bit.
    [[nodiscard]] const std::vector<MouseMessage>& Navigation() const { return navigation_; }
    [[nodiscard]] bool HasNavigated() const;
    /// Keeps no more than where the pointer is, from where the next drag goes on.
    void ForgetNavigation();

  private:
    void Remember(const MouseMessage& message);

    std::vector<MouseMessage> navigation_; ///< of moves between drags only the last
};

} // namespace win32_dialog
