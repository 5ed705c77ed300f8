// Frames of the windows that the layer provides.
#include "platform/winsys/backends.h"
#include "tests/support/shown_frame.h"

namespace karv_test
{

std::optional<ShownFrame> NextFrame(HWND window)
{
    std::optional<ShownFrame> frame;
    const unsigned long swaps_before = winsys::GetSwapCount(window);
    winsys::SetFrameObserver([&](HWND drawn, int width, int height) {
        if (drawn == window)
            frame = ReadShownFrame(width, height);
    });
    for (int i = 0; i < kMessagesForAFrame && winsys::GetSwapCount(window) == swaps_before; ++i)
        DispatchNextMessage();
    winsys::SetFrameObserver({});
    return frame;
}

} // namespace karv_test
