#include "platform/tools/trace.h"

#include "platform/tools/fault_search.h"

#include <cstddef>
#include <mutex>
#include <new>

std::atomic<TraceSink*> trace_detail::installed_sink{nullptr};

TraceSink::~TraceSink() = default;

namespace
{

/// The receiver of entries while calls are watched without a sink.
class SilentSink final : public TraceSink
{
  public:
    void EnterCall(const wchar_t* /*name*/) noexcept override {}
    void LeaveCall(const wchar_t* /*name*/) noexcept override {}
    void ReportFault(const wchar_t* /*file*/, int /*line*/) noexcept override {}
};

/// Never destroyed: calls may still be running when the process ends.
TraceSink* Silent()
{
    alignas(SilentSink) static std::byte place[sizeof(SilentSink)];
    static TraceSink* const sink = ::new (place) SilentSink;
    return sink;
}

std::mutex installing;
bool is_every_call_watched = false;

} // namespace

TraceSink* InstallTraceSink(TraceSink* sink) noexcept
{
    const std::lock_guard lock(installing);
    if (sink == nullptr && is_every_call_watched)
        sink = Silent();
    TraceSink* const previous = trace_detail::installed_sink.exchange(sink, std::memory_order_acq_rel);
    return previous != Silent() ? previous : nullptr;
}

void trace_detail::WatchEveryCall(bool is_on) noexcept
{
    const std::lock_guard lock(installing);
    is_every_call_watched = is_on;
    TraceSink* expected = is_on ? nullptr : Silent();
    installed_sink.compare_exchange_strong(expected, is_on ? Silent() : nullptr);
}

// The fence pairs with the exchange in InstallTraceSink: what the installing thread wrote into the sink is
// visible here, and an entry without a sink costs only the relaxed load.

void CTqLogEntry::Enter() const noexcept
{
    std::atomic_thread_fence(std::memory_order_acquire);
    sink_->EnterCall(name_);
}

void CTqLogEntry::Leave() const noexcept
{
    sink_->LeaveCall(name_);
}

void CTqLogEntry::RunWatched(void (*body)(void*), void* argument)
{
    static_cast<void>(fault_search::RunBody(body, argument));
}

CTqCrashHandler::CTqCrashHandler(const wchar_t* file, int line)
{
    TraceSink* const sink = trace_detail::installed_sink.load(std::memory_order_acquire);
    if (sink != nullptr)
        sink->ReportFault(file, line);
}

CTqCrashHandler::~CTqCrashHandler() = default;
