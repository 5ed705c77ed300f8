// Messages and timers under their Win32 names.
#include "platform/winsys/core/native_events.h"
#include "platform/winsys/core/process_state.h"
#include "platform/winsys/core/window_lifecycle.h"

#include <algorithm>

#include <poll.h>

using namespace winsys::core;

namespace
{

bool IsTarget(HWND window)
{
    return window == nullptr || GetProcessState().windows.Find(window) != nullptr;
}

bool IsFilterWindow(HWND window)
{
    return window == ThreadMessagesOnly() || IsTarget(window);
}

std::optional<MSG> Fetch(const MessageFilter& filter, bool remove)
{
    const DescriptorUpdate update;
    PumpNativeEvents();
    return GetProcessState().queue.Next(filter, remove);
}

/// Sleeps until a timer that passes the filter is due or the backend has something to report. No message can
/// be posted meanwhile: only this thread posts.
void Wait(const MessageFilter& filter)
{
    const ProcessState& state = GetProcessState();
    pollfd events{state.backend != nullptr ? state.backend->EventDescriptor() : -1, POLLIN, 0};
    timespec limit{};
    const auto due = state.queue.NextTimerDue(filter);
    if (due) {
        using std::chrono::nanoseconds;
        const auto left = std::chrono::duration_cast<nanoseconds>(*due - MessageQueue::Clock::now()).count();
        limit.tv_sec = std::max<nanoseconds::rep>(left, 0) / 1'000'000'000;
        limit.tv_nsec = std::max<nanoseconds::rep>(left, 0) % 1'000'000'000;
    }
    ppoll(&events, 1, due ? &limit : nullptr, nullptr);
}

/// Wheel messages go up through the parents until one handles them.
LRESULT PassToParent(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    const Window* record = GetProcessState().windows.Find(window);
    return record != nullptr && record->IsChild() ? Send(record->parent, message, wparam, lparam) : 0;
}

LRESULT DefaultPaint(HWND window)
{
    PAINTSTRUCT paint;
    BeginPaint(window, &paint);
    EndPaint(window, &paint);
    return 0;
}

LRESULT DefaultErase(HWND window)
{
    const Window* record = GetProcessState().windows.Find(window);
    return record != nullptr && record->window_class->record.hbrBackground != nullptr ? 1 : 0;
}

} // namespace

LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    const DescriptorUpdate update;
    return Send(window, message, wparam, lparam);
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    const DescriptorUpdate update;
    if (!IsTarget(window))
        return FALSE;
    GetProcessState().queue.Post(window, message, wparam, lparam);
    return TRUE;
}

void PostQuitMessage(int exit_code)
{
    const DescriptorUpdate update;
    GetProcessState().queue.PostQuit(exit_code);
}

BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT flags)
{
    if (message == nullptr || !IsFilterWindow(window))
        return FALSE;
    const std::optional<MSG> next = Fetch({window, first, last}, (flags & PM_REMOVE) != 0);
    if (next)
        *message = *next;
    return next ? TRUE : FALSE;
}

BOOL GetMessageW(MSG* message, HWND window, UINT first, UINT last)
{
    constexpr BOOL kError = -1;
    if (message == nullptr)
        return kError;
    const MessageFilter filter{window, first, last};
    while (IsFilterWindow(window)) {
        if (const std::optional<MSG> next = Fetch(filter, true)) {
            *message = *next;
            return next->message != WM_QUIT ? TRUE : FALSE;
        }
        Wait(filter);
    }
    return kError;
}

BOOL TranslateMessage(const MSG* message)
{
    // Nothing to post here: the backend, which knows the keyboard layout, reports characters.
    return message != nullptr && (message->message == WM_KEYDOWN || message->message == WM_KEYUP) ? TRUE
                                                                                                  : FALSE;
}

LRESULT DispatchMessageW(const MSG* message)
{
    if (message == nullptr)
        return 0;
    const DescriptorUpdate update;
    if (message->message == WM_TIMER && message->lParam != 0) {
        // A timer that was killed meanwhile is no longer called back.
        const auto callback = reinterpret_cast<TIMERPROC>(message->lParam);
        if (GetProcessState().queue.HasTimer(message->hwnd, callback))
            callback(message->hwnd, WM_TIMER, message->wParam, message->time);
        return 0;
    }
    return Send(message->hwnd, message->message, message->wParam, message->lParam);
}

LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message) {
    case WM_NCCREATE:
        return IsWindow(window);
    case WM_PAINT:
        return DefaultPaint(window);
    case WM_ERASEBKGND:
        return DefaultErase(window);
    case WM_CLOSE:
        DestroyWindow(window);
        return 0;
    case WM_MOUSEWHEEL:
        return PassToParent(window, message, wparam, lparam);
    default:
        return 0;
    }
}

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT period_ms, TIMERPROC callback)
{
    const DescriptorUpdate update;
    return IsTarget(window) ? GetProcessState().queue.SetTimer(window, id, period_ms, callback) : 0;
}

BOOL KillTimer(HWND window, UINT_PTR id)
{
    const DescriptorUpdate update;
    return GetProcessState().queue.KillTimer(window, id) ? TRUE : FALSE;
}
