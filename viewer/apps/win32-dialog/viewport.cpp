#include "viewer/apps/win32-dialog/viewport.h"

#include "viewer/window/camera_messages.h"

#include <algorithm>
#include <optional>

namespace win32_dialog
{

bool MouseMessage::Navigates() const
{
    return viewer::MovesCamera(message, wparam);
}

LRESULT Viewport::WindowProc(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message != WM_MOUSEMOVE && message != WM_MOUSEWHEEL)
        return KARVOpenGLControl::WindowProc(message, wparam, lparam);
    const MouseMessage mouse{message, wparam, lparam};
    Remember(mouse);
    // A drag takes the focus, as a click in any control does. The wheel, and a pointer that only passes over
    // the viewport, must not.
    std::optional<FocusKeeper> keeper;
    if (message == WM_MOUSEWHEEL || !mouse.Navigates())
        keeper.emplace();
    return KARVOpenGLControl::WindowProc(message, wparam, lparam);
}

bool Viewport::HasNavigated() const
{
    return std::any_of(navigation_.begin(), navigation_.end(),
                       [](const MouseMessage& message) { return message.Navigates(); });
}

void Viewport::ForgetNavigation()
{
    const auto is_move = [](const MouseMessage& message) { return message.message == WM_MOUSEMOVE; };
    const auto last = std::find_if(navigation_.rbegin(), navigation_.rend(), is_move);
    if (last == navigation_.rend())
        navigation_.clear();
    else
        navigation_ = {MouseMessage{WM_MOUSEMOVE, 0, last->lparam}};
}

void Viewport::Remember(const MouseMessage& message)
{
    if (!message.Navigates() && !navigation_.empty() && !navigation_.back().Navigates())
        navigation_.back() = message;
    else
        navigation_.push_back(message);
}

} // namespace win32_dialog
