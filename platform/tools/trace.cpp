#include "platform/tools/trace.h"

std::atomic<TraceSink*> trace_detail::installed_sink{nullptr};

TraceSink::~TraceSink() = default;

TraceSink* InstallTraceSink(TraceSink* sink) noexcept
{
    return trace_detail::installed_sink.exchange(sink, std::memory_order_acq_rel);
}

// The fences pair with the exchange of the installation: what its thread wrote into the sink is seen here,
// while an entry with no sink pays for a relaxed load alone.

void CTqLogEntry::Enter() const noexcept
{
    std::atomic_thread_fence(std::memory_order_acquire);
    sink_->EnterCall(name_);
}

void CTqLogEntry::Leave() const noexcept
{
    sink_->LeaveCall(name_);
}

CTqCrashHandler::CTqCrashHandler(const wchar_t* file, int line)
{
    TraceSink* const sink = trace_detail::installed_sink.load(std::memory_order_acquire);
    if (sink != nullptr)
        sink->ReportFault(file, line);
}

CTqCrashHandler::~CTqCrashHandler() = default;
