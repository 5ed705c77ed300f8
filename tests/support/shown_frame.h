// Reads back the next frame that a viewport draws by its timer: before the buffer swap where the layer
// provides the windows, right after the timer message where the system does. It knows windows and OpenGL, and
// no test framework.
//
// For the thread that owns the windows.
#pragma once

#include "platform/winsys/winsys.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace karv_test
{

/// The pixels of a frame: three bytes each, the lowest row first.
struct ShownFrame {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;
};

/// Dispatches messages until the window has drawn a frame, and returns it; nothing if there is none within
/// `kMessagesForAFrame` messages. The window's context must be current.
[[nodiscard]] std::optional<ShownFrame> NextFrame(HWND window);

/// The lower left `width` x `height` pixels of the current context's read buffer.
[[nodiscard]] ShownFrame ReadShownFrame(int width, int height);

/// Dispatches the next message and returns it. Waits for one, so a timer must be running.
MSG DispatchNextMessage();

/// The number of messages that may come without a frame.
inline constexpr int kMessagesForAFrame = 10000;

} // namespace karv_test
