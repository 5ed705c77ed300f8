// Translates pointer events of X into the mouse messages of Windows: the wheel's buttons become wheel turns,
// and a drag belongs to the window where its button was pressed.
//
// X sends all events to the window of the press while a button is down; Windows does not. The backend ends
// that grab when it reads the press. Even then a button may be pressed over a window that would capture the
// mouse on Windows (a slider, a splitter) and the pointer moved over this window: movements and the release
// of such a drag are not reported.
#pragma once

#include "platform/winsys/backend.h"

#include <array>
#include <optional>

#include <X11/Xlib.h>

namespace winsys::x11
{

class Pointer
{
  public:
    /// The message of a press or release over the window. None for buttons without a message, and for the end
    /// of a drag that began elsewhere.
    std::optional<MouseEvent> OnButton(HWND window, const XButtonEvent& event);
    /// The message of a movement over the window. None during a drag that began elsewhere. Only buttons that
    /// were pressed over the window are reported as down.
    std::optional<MouseEvent> OnMotion(HWND window, const XMotionEvent& event);
    /// Updates which buttons are down: a release may have gone to another window.
    void UpdateButtons(unsigned state);
    /// Forgets the presses over a window that is destroyed.
    void ForgetWindow(HWND window);

  private:
    static constexpr int kButtons = 3;

    [[nodiscard]] WPARAM Keys(HWND window, unsigned state) const;

    /// The window that each button was pressed over; null if the button is up or was pressed elsewhere.
    std::array<HWND, kButtons> pressed_over_{};
};

} // namespace winsys::x11
