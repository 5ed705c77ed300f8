#include "platform/winsys/x11/pointer.h"

namespace winsys::x11
{
namespace
{

constexpr int kWheelNotch = 120;

/// The X buttons 1, 2 and 3, in that order.
struct Button {
    unsigned state_mask;
    WPARAM key;
    UINT down;
    UINT up;
};

constexpr std::array<Button, 3> kMouseButtons{{
    {Button1Mask, MK_LBUTTON, WM_LBUTTONDOWN, WM_LBUTTONUP},
    {Button2Mask, MK_MBUTTON, WM_MBUTTONDOWN, WM_MBUTTONUP},
    {Button3Mask, MK_RBUTTON, WM_RBUTTONDOWN, WM_RBUTTONUP},
}};

constexpr unsigned kAnyButton = Button1Mask | Button2Mask | Button3Mask;

WPARAM Modifiers(unsigned state)
{
    return ((state & ShiftMask) != 0 ? MK_SHIFT : 0) | ((state & ControlMask) != 0 ? MK_CONTROL : 0);
}

} // namespace

std::optional<MouseEvent> Pointer::OnButton(HWND window, const XButtonEvent& event)
{
    // The event holds the state just before it.
    UpdateButtons(event.state);
    const bool is_press = event.type == ButtonPress;
    const POINT at{event.x, event.y};
    if (event.button == Button4 || event.button == Button5) {
        const int delta = event.button == Button4 ? kWheelNotch : -kWheelNotch;
        return is_press ? std::optional(MouseEvent{WM_MOUSEWHEEL, Keys(window, event.state), at, delta})
                        : std::nullopt;
    }
    if (event.button < Button1 || event.button > Button3)
        return std::nullopt;
    const std::size_t index = event.button - Button1;
    const Button& button = kMouseButtons.at(index);
    const bool was_pressed_here = pressed_over_.at(index) == window;
    pressed_over_.at(index) = is_press ? window : nullptr;
    if (!is_press && !was_pressed_here)
        return std::nullopt;
    const unsigned state = is_press ? event.state | button.state_mask : event.state & ~button.state_mask;
    return MouseEvent{is_press ? button.down : button.up, Keys(window, state), at, 0};
}

std::optional<MouseEvent> Pointer::OnMotion(HWND window, const XMotionEvent& event)
{
    UpdateButtons(event.state);
    const WPARAM keys = Keys(window, event.state);
    const bool dragged_here = (keys & (MK_LBUTTON | MK_MBUTTON | MK_RBUTTON)) != 0;
    if ((event.state & kAnyButton) != 0 && !dragged_here)
        return std::nullopt;
    return MouseEvent{WM_MOUSEMOVE, keys, {event.x, event.y}, 0};
}

void Pointer::UpdateButtons(unsigned state)
{
    for (std::size_t i = 0; i < kMouseButtons.size(); ++i)
        if ((state & kMouseButtons.at(i).state_mask) == 0)
            pressed_over_.at(i) = nullptr;
}

void Pointer::ForgetWindow(HWND window)
{
    for (HWND& pressed : pressed_over_)
        pressed = pressed == window ? nullptr : pressed;
}

WPARAM Pointer::Keys(HWND window, unsigned state) const
{
    WPARAM keys = Modifiers(state);
    for (std::size_t i = 0; i < kMouseButtons.size(); ++i) {
        const bool is_down = (state & kMouseButtons.at(i).state_mask) != 0;
        keys |= is_down && pressed_over_.at(i) == window ? kMouseButtons.at(i).key : 0;
    }
    return keys;
}

} // namespace winsys::x11
