// The tools library: trace entries and fault reports, and the sink that a host process may install to
// receive them. Without a sink nothing is recorded and an entry costs one relaxed atomic load.
//
// Any thread. A sink must accept calls from all threads.
#pragma once

#include "platform/export.h"

#include <atomic>
#include <cstdint>

/// Receives the trace of the process. Implementations must not throw, and must not make trace entries
/// themselves.
class KARV_PLATFORM_API TraceSink
{
  public:
    TraceSink() = default;
    TraceSink(const TraceSink&) = delete;
    TraceSink& operator=(const TraceSink&) = delete;
    virtual ~TraceSink();

    /// A call begins. `name` stays valid until the process ends.
    virtual void EnterCall(const wchar_t* name) noexcept = 0;
    /// The innermost open call of this thread ends.
    virtual void LeaveCall(const wchar_t* name) noexcept = 0;
    /// A fault was caught at this place in the sources.
    virtual void ReportFault(const wchar_t* file, int line) noexcept = 0;
};

/// Installs the process's sink, null for none, and returns the one before it. The caller keeps ownership. A
/// sink must live until it is replaced and every call that began with it has ended: an entry reports its
/// end to the sink that got its beginning.
KARV_PLATFORM_API TraceSink* InstallTraceSink(TraceSink* sink) noexcept;

namespace trace_detail
{
/// The receiver of entries: the process's sink; without one, a sink that does nothing while every call is
/// watched, else null.
KARV_PLATFORM_API extern std::atomic<TraceSink*> installed_sink;
/// Switches whether calls are watched (`CTqLogEntry::IsWatched`) without a sink too.
void WatchEveryCall(bool is_on) noexcept;
} // namespace trace_detail

/// A traced call, from construction to destruction.
class KARV_PLATFORM_API CTqLogEntry
{
  public:
    /// `name` must stay valid until the process ends, as a literal does: sinks keep the pointer.
    explicit CTqLogEntry(const wchar_t* name)
        : name_(name), sink_(trace_detail::installed_sink.load(std::memory_order_relaxed))
    {
        if (sink_ != nullptr)
            Enter();
    }
    CTqLogEntry(const CTqLogEntry&) = delete;
    CTqLogEntry& operator=(const CTqLogEntry&) = delete;
    virtual ~CTqLogEntry()
    {
        if (sink_ != nullptr)
            Leave();
    }

    /// Whether a sink is installed or processor faults are caught: then the body must run through
    /// `RunWatched`.
    [[nodiscard]] bool IsWatched() const noexcept { return sink_ != nullptr; }

    /// Calls `body` through a function that the handler of processor faults recognizes on the stack. The
    /// caller must be a guard: it must catch every exception of `body`.
    static void RunWatched(void (*body)(void*), void* argument);

  private:
    void Enter() const noexcept;
    void Leave() const noexcept;

    const wchar_t* name_;
    TraceSink* sink_;
};

/// A report of a caught fault, sent to the sink at construction.
class KARV_PLATFORM_API CTqCrashHandler
{
  public:
    /// `file` need not outlive the call.
    CTqCrashHandler(const wchar_t* file, int line);
    CTqCrashHandler(const CTqCrashHandler&) = delete;
    CTqCrashHandler& operator=(const CTqCrashHandler&) = delete;
    virtual ~CTqCrashHandler();

    /// The result of an operation that faulted: 0.
    static std::int64_t mov_rax_0() noexcept { return 0; }
};
