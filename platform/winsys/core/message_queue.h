// Messages that wait and the timers that make them, and which of them comes next: posted ones in their order,
// then the end of the queue (WM_QUIT), then paints, then timers. It delivers nothing and asks no backend.
#pragma once

#include "platform/winsys/core/window_tree.h"

#include <chrono>
#include <deque>
#include <optional>
#include <vector>

namespace winsys::core
{

/// The window that means messages of no window, in a filter.
[[nodiscard]] HWND ThreadMessagesOnly();

/// Which messages a caller wants: of a window and its children (of any where null), and of a range of numbers
/// (of any where both ends are 0).
struct MessageFilter {
    HWND window = nullptr;
    UINT first = 0;
    UINT last = 0;
};

class MessageQueue
{
  public:
    using Clock = std::chrono::steady_clock;

    explicit MessageQueue(const WindowTree& windows) : windows_(windows) {}

    /// Adds a message with the time of now; `screen_point` is kept as the pointer's place for later messages.
    void Post(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    void PostQuit(int exit_code) { quit_code_ = exit_code; }
    void SetPointer(POINT screen_point) { pointer_ = screen_point; }

    /// Starts a timer, or starts it anew with these values; its id, which the queue chooses where there is no
    /// window.
    UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT period_ms, TIMERPROC callback);
    bool KillTimer(HWND window, UINT_PTR id);
    /// A timer of the window would call this function.
    [[nodiscard]] bool HasTimer(HWND window, TIMERPROC callback) const;

    /// The next message that passes the filter. Taking it removes a posted one or WM_QUIT, and starts the
    /// period of a timer again; a paint stays until the window is validated.
    std::optional<MSG> Next(const MessageFilter& filter, bool remove);
    /// A message is there that no clock has to bring.
    [[nodiscard]] bool HasMessage() const;
    /// When the next timer that passes the filter is due; none where no timer runs.
    [[nodiscard]] std::optional<Clock::time_point> NextDue(const MessageFilter& filter) const;

    /// Drops messages and timers of a window that goes.
    void DropWindow(HWND window);

  private:
    struct Timer {
        HWND window;
        UINT_PTR id;
        std::chrono::milliseconds period;
        TIMERPROC callback;
        Clock::time_point due;
    };

    [[nodiscard]] bool Accepts(const MessageFilter& filter, HWND window, UINT message) const;
    [[nodiscard]] MSG Stamp(HWND window, UINT message, WPARAM wparam, LPARAM lparam) const;
    std::optional<MSG> NextPosted(const MessageFilter& filter, bool remove);
    std::optional<MSG> NextQuit(bool remove);
    std::optional<MSG> NextPaint(const MessageFilter& filter) const;
    std::optional<MSG> NextTimer(const MessageFilter& filter, bool remove);
    [[nodiscard]] std::vector<Timer>::const_iterator EarliestTimer(const MessageFilter& filter) const;
    [[nodiscard]] std::vector<Timer>::iterator FindTimer(HWND window, UINT_PTR id);

    const WindowTree& windows_;
    std::deque<MSG> posted_;
    std::optional<int> quit_code_;
    std::vector<Timer> timers_;
    UINT_PTR last_thread_timer_ = 0x7FFF;
    POINT pointer_{};
};

} // namespace winsys::core
