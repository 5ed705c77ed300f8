// Pointer events of X as the mouse messages of Windows: the wheel's buttons become turns, and a drag belongs
// to the window that its press was over.
//
// X lets a window follow the pointer while a button is down, wherever it goes; Windows does not. The grab is
// ended by who reads the events. What remains is that a button may come down elsewhere, over a window that
// would have captured the mouse on Windows (a slider, a splitter), and move over here: such a drag is no
// business of this window, so its movements and its release are left out.
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
    /// The message of a press or release over the window; none for buttons that have none, and for the end of
    /// a drag begun elsewhere.
    std::optional<MouseEvent> OnButton(HWND window, const XButtonEvent& event);
    /// The message of a movement over the window; none while it is part of a drag begun elsewhere. Of the
    /// buttons that are down, those pressed over the window count.
    std::optional<MouseEvent> OnMotion(HWND window, const XMotionEvent& event);
    /// Takes in which buttons are down, where a release may have gone to another window.
    void OnState(unsigned state);
    /// Forgets presses over a window that goes.
    void OnGone(HWND window);

  private:
    static constexpr int kButtons = 3;

    [[nodiscard]] WPARAM Keys(HWND window, unsigned state) const;

    /// The window that each button was pressed over; null where it is up or was pressed elsewhere.
    std::array<HWND, kButtons> pressed_over_{};
};

} // namespace winsys::x11
