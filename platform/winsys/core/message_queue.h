// The queue of waiting messages and the timers that produce them. Order: posted messages in the order of
// posting, then the end of the queue (WM_QUIT), then paints, then timers. It calls no window procedure and no
// backend.
#pragma once

#include "platform/winsys/core/window_tree.h"

#include <chrono>
#include <deque>
#include <optional>
#include <vector>

namespace winsys::core
{

/// The value of `MessageFilter::window` that selects messages without a window.
[[nodiscard]] HWND ThreadMessagesOnly();

/// Selects messages of a window and its children (of any window if null) in a range of numbers (any number if
/// both ends are 0).
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

    /// Adds a message with the current time and pointer position.
    void Post(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    /// Makes WM_QUIT wait with this exit code, in place of an earlier one.
    void PostQuit(int exit_code) { quit_code_ = exit_code; }
    /// Sets the pointer position, on the screen, that later messages carry.
    void SetPointer(POINT screen_point) { pointer_ = screen_point; }

    /// Starts a timer, or restarts a running one with these values; the period is at least 1 ms. Returns the
    /// id; for a null window the queue chooses it.
    UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT period_ms, TIMERPROC callback);
    /// False if there is no such timer.
    bool KillTimer(HWND window, UINT_PTR id);
    /// Whether a timer of the window calls this function.
    [[nodiscard]] bool HasTimer(HWND window, TIMERPROC callback) const;

    /// Returns the next message that passes the filter, none if there is none. `remove` takes out a posted
    /// message or WM_QUIT and restarts the period of a timer; a paint message is repeated until the window is
    /// validated.
    std::optional<MSG> Next(const MessageFilter& filter, bool remove);
    /// Whether a message other than a timer message is waiting.
    [[nodiscard]] bool HasMessage() const;
    /// When the next timer that passes the filter is due; none if there is none.
    [[nodiscard]] std::optional<Clock::time_point> NextTimerDue(const MessageFilter& filter) const;

    /// Drops messages and timers of a window that is destroyed.
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
    [[nodiscard]] MSG MakeMessage(HWND window, UINT message, WPARAM wparam, LPARAM lparam) const;
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
