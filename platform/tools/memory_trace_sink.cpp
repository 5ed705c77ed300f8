#include "platform/tools/memory_trace_sink.h"

#include <exception>
#include <utility>

void MemoryTraceSink::EnterCall(const wchar_t* name) noexcept
{
    Keep(TraceRecord::Kind::Enter, name, 0);
}

void MemoryTraceSink::LeaveCall(const wchar_t* name) noexcept
{
    Keep(TraceRecord::Kind::Leave, name, 0);
}

void MemoryTraceSink::ReportFault(const wchar_t* file, int line) noexcept
{
    Keep(TraceRecord::Kind::Fault, file, line);
}

std::vector<TraceRecord> MemoryTraceSink::Records() const
{
    const std::lock_guard lock(mutex_);
    return records_;
}

void MemoryTraceSink::Clear() noexcept
{
    const std::lock_guard lock(mutex_);
    records_.clear();
}

void MemoryTraceSink::Keep(TraceRecord::Kind kind, const wchar_t* name, int line) noexcept
{
    try {
        TraceRecord record{kind, name != nullptr ? name : L"", line};
        const std::lock_guard lock(mutex_);
        records_.push_back(std::move(record));
    } catch (const std::exception&) {
        // No memory, or a broken lock: tracing must not end the process.
        return;
    }
}
