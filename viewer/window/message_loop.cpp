#include "viewer/window/message_loop.h"

#include "platform/framework/window.h"

#include <stdexcept>

namespace viewer
{

bool PumpMessages(const std::function<bool()>& condition, const std::function<unsigned long()>& frame_count)
{
    // Each timer message draws a frame. Many of them without a new frame mean that swaps fail.
    constexpr int kMaxTimersPerFrame = 1000;
    unsigned long frames = frame_count();
    for (int timers = 0; !condition();) {
        MSG message{};
        if (GetMessageW(&message, nullptr, 0, 0) <= 0)
            return false;
        if (CWnd::WalkPreTranslateTree(nullptr, &message) == FALSE) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        timers += message.message == WM_TIMER ? 1 : 0;
        if (const unsigned long now = frame_count(); now != frames) {
            timers = 0;
            frames = now;
        }
        if (timers >= kMaxTimersPerFrame)
            throw std::runtime_error("no frame can be drawn");
    }
    return true;
}

} // namespace viewer
