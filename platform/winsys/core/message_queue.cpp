#include "platform/winsys/core/message_queue.h"

#include <algorithm>

namespace winsys::core
{

HWND ThreadMessagesOnly()
{
    return reinterpret_cast<HWND>(static_cast<std::intptr_t>(-1));
}

void MessageQueue::Post(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    posted_.push_back(MakeMessage(window, message, wparam, lparam));
}

UINT_PTR MessageQueue::SetTimer(HWND window, UINT_PTR id, UINT period_ms, TIMERPROC callback)
{
    const std::chrono::milliseconds period(std::max<UINT>(period_ms, 1));
    const Clock::time_point due = Clock::now() + period;
    if (const auto running = FindTimer(window, id); running != timers_.end()) {
        *running = {window, id, period, callback, due};
    } else {
        id = window != nullptr ? id : ++last_thread_timer_;
        timers_.push_back({window, id, period, callback, due});
    }
    return id != 0 ? id : 1;
}

bool MessageQueue::KillTimer(HWND window, UINT_PTR id)
{
    const auto found = FindTimer(window, id);
    if (found == timers_.end())
        return false;
    timers_.erase(found);
    return true;
}

bool MessageQueue::HasTimer(HWND window, TIMERPROC callback) const
{
    return std::ranges::any_of(
        timers_, [&](const Timer& timer) { return timer.window == window && timer.callback == callback; });
}

std::optional<MSG> MessageQueue::Next(const MessageFilter& filter, bool remove)
{
    if (auto message = NextPosted(filter, remove))
        return message;
    if (auto message = NextQuit(remove))
        return message;
    if (auto message = NextPaint(filter))
        return message;
    return NextTimer(filter, remove);
}

bool MessageQueue::HasMessage() const
{
    return !posted_.empty() || quit_code_.has_value() || NextPaint({}).has_value();
}

std::optional<MessageQueue::Clock::time_point> MessageQueue::NextTimerDue(const MessageFilter& filter) const
{
    const auto timer = EarliestTimer(filter);
    return timer != timers_.end() ? std::optional(timer->due) : std::nullopt;
}

void MessageQueue::DropWindow(HWND window)
{
    std::erase_if(posted_, [&](const MSG& message) { return message.hwnd == window; });
    std::erase_if(timers_, [&](const Timer& timer) { return timer.window == window; });
}

bool MessageQueue::Accepts(const MessageFilter& filter, HWND window, UINT message) const
{
    const bool in_range =
        (filter.first == 0 && filter.last == 0) || (filter.first <= message && message <= filter.last);
    if (!in_range || filter.window == nullptr)
        return in_range;
    return filter.window != ThreadMessagesOnly() ? windows_.IsWithin(window, filter.window)
                                                 : window == nullptr;
}

MSG MessageQueue::MakeMessage(HWND window, UINT message, WPARAM wparam, LPARAM lparam) const
{
    const auto since_epoch = Clock::now().time_since_epoch();
    const auto ticks = std::chrono::duration_cast<std::chrono::milliseconds>(since_epoch).count();
    return {window, message, wparam, lparam, static_cast<DWORD>(ticks), pointer_};
}

std::optional<MSG> MessageQueue::NextPosted(const MessageFilter& filter, bool remove)
{
    const auto found = std::ranges::find_if(
        posted_, [&](const MSG& message) { return Accepts(filter, message.hwnd, message.message); });
    if (found == posted_.end())
        return std::nullopt;
    const MSG message = *found;
    if (remove)
        posted_.erase(found);
    return message;
}

std::optional<MSG> MessageQueue::NextQuit(bool remove)
{
    if (!quit_code_)
        return std::nullopt;
    // WM_QUIT passes every filter: otherwise a filtered loop would never end.
    const MSG message = MakeMessage(nullptr, WM_QUIT, static_cast<WPARAM>(*quit_code_), 0);
    if (remove)
        quit_code_.reset();
    return message;
}

std::optional<MSG> MessageQueue::NextPaint(const MessageFilter& filter) const
{
    const HWND window =
        windows_.FindWindowToPaint([&](HWND candidate) { return Accepts(filter, candidate, WM_PAINT); });
    return window != nullptr ? std::optional(MakeMessage(window, WM_PAINT, 0, 0)) : std::nullopt;
}

std::optional<MSG> MessageQueue::NextTimer(const MessageFilter& filter, bool remove)
{
    const auto earliest = EarliestTimer(filter);
    const Clock::time_point now = Clock::now();
    if (earliest == timers_.end() || earliest->due > now)
        return std::nullopt;
    const auto found = FindTimer(earliest->window, earliest->id);
    if (remove) {
        // The period restarts now, so at most one message of a timer is waiting however long its handling
        // takes.
        found->due = now + found->period;
    }
    return MakeMessage(found->window, WM_TIMER, found->id, reinterpret_cast<LPARAM>(found->callback));
}

std::vector<MessageQueue::Timer>::const_iterator
MessageQueue::EarliestTimer(const MessageFilter& filter) const
{
    auto earliest = timers_.end();
    for (auto timer = timers_.begin(); timer != timers_.end(); ++timer) {
        if (Accepts(filter, timer->window, WM_TIMER) &&
            (earliest == timers_.end() || timer->due < earliest->due)) {
            earliest = timer;
        }
    }
    return earliest;
}

std::vector<MessageQueue::Timer>::iterator MessageQueue::FindTimer(HWND window, UINT_PTR id)
{
    return std::ranges::find_if(timers_,
                                [&](const Timer& timer) { return timer.window == window && timer.id == id; });
}

} // namespace winsys::core
