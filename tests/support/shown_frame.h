// The next frame that a viewport draws by its timer, read back: where the layer provides the windows, before
// its swap; where the system does, right after its timer message. It knows windows and OpenGL, and no test
// framework.
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

/// Dispatches messages until the window has drawn a frame, and returns it; nothing where it has not after
/// very many. The window's context must be current.
[[nodiscard]] std::optional<ShownFrame> NextFrame(HWND window);

/// What the current context's read buffer holds, from its lower left corner on.
[[nodiscard]] ShownFrame ReadShownFrame(int width, int height);

/// Dispatches the next message and returns it. Waits for one, which a running timer makes sure of.
MSG DispatchNextMessage();

/// How many messages may come without a frame.
inline constexpr int kMessagesForAFrame = 10000;

} // namespace karv_test
