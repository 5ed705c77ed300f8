#include "platform/winsys/core/wait_descriptor.h"

#include <cstdint>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace winsys::core
{
namespace
{

/// A time of zero would disarm the timer, so zero and earlier become the first nanosecond.
itimerspec ToTimerSpec(std::optional<std::chrono::steady_clock::time_point> due)
{
    itimerspec spec{};
    if (due) {
        const auto nanoseconds =
            std::chrono::duration_cast<std::chrono::nanoseconds>(due->time_since_epoch()).count();
        spec.it_value.tv_sec = nanoseconds / 1'000'000'000;
        spec.it_value.tv_nsec = nanoseconds % 1'000'000'000;
        if (nanoseconds <= 0)
            spec.it_value = {0, 1};
    }
    return spec;
}

} // namespace

UniqueDescriptor::~UniqueDescriptor()
{
    if (descriptor_ >= 0)
        close(descriptor_);
}

WaitDescriptor::WaitDescriptor()
    : set_(epoll_create1(EPOLL_CLOEXEC)), event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK))
{
    Watch(event_.Get());
    Watch(timer_.Get());
}

void WaitDescriptor::Update(bool message_waits, std::optional<std::chrono::steady_clock::time_point> due,
                            int backend_descriptor)
{
    // A timer set to a past time fires a moment later, not at once.
    message_waits = message_waits || (due && *due <= std::chrono::steady_clock::now());
    if (message_waits != signalled_) {
        std::uint64_t count = 1;
        const ssize_t moved = message_waits ? write(event_.Get(), &count, sizeof count)
                                            : read(event_.Get(), &count, sizeof count);
        signalled_ = moved == sizeof count ? message_waits : signalled_;
    }
    if (due != due_) {
        // Setting the time also clears the readiness of a timer that has fired.
        const itimerspec spec = ToTimerSpec(due);
        timerfd_settime(timer_.Get(), TFD_TIMER_ABSTIME, &spec, nullptr);
        due_ = due;
    }
    if (backend_descriptor != backend_descriptor_) {
        epoll_ctl(set_.Get(), EPOLL_CTL_DEL, backend_descriptor_, nullptr);
        backend_descriptor_ = backend_descriptor;
        Watch(backend_descriptor_);
    }
}

void WaitDescriptor::Watch(int descriptor) const
{
    if (descriptor >= 0) {
        epoll_event event{};
        event.events = EPOLLIN;
        epoll_ctl(set_.Get(), EPOLL_CTL_ADD, descriptor, &event);
    }
}

} // namespace winsys::core
