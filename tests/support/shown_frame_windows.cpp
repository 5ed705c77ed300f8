// Frames of the system's own windows.
#include "platform/winsys/frame_resolve.h"
#include "tests/support/shown_frame.h"

namespace karv_test
{

std::optional<ShownFrame> NextFrame(HWND window)
{
    for (int i = 0; i < kMessagesForAFrame; ++i) {
        const MSG message = DispatchNextMessage();
        if (message.hwnd != window || message.message != WM_TIMER)
            continue;
        RECT rect{};
        GetClientRect(window, &rect);
        const winsys::FrameResolve resolve(static_cast<int>(rect.right), static_cast<int>(rect.bottom));
        return ReadShownFrame(static_cast<int>(rect.right), static_cast<int>(rect.bottom));
    }
    return std::nullopt;
}

} // namespace karv_test
