#include "viewer/message_loop.h"

#include "platform/framework/window.h"

#include <stdexcept>

namespace viewer
{

bool PumpMessages(const std::function<bool()>& condition, const std::function<unsigned long()>& frame_count)
{
    // The timer brings a frame every few messages; far more without one mean that swaps fail.
    constexpr int kMostMessagesPerFrame = 10'000;
    unsigned long frames = frame_count();
    for (int messages = 0; !condition(); ++messages) {
        if (messages >= kMostMessagesPerFrame)
            throw std::runtime_error("no frame can be drawn");
        MSG message{};
        if (GetMessageW(&message, nullptr, 0, 0) <= 0)
            return false;
        if (CWnd::WalkPreTranslateTree(nullptr, &message) == FALSE) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        if (const unsigned long now = frame_count(); now != frames) {
            messages = 0;
            frames = now;
        }
    }
    return true;
}

} // namespace viewer
