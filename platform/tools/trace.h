// The tools library: trace entries and fault reports, and the sink that a host process may install to
// receive them. With no sink installed nothing is written and an entry costs one relaxed atomic load.
//
// Entries and reports may be made on any thread; a sink must accept calls from all of them.
#pragma once

#include "platform/export.h"

#include <atomic>
#include <cstdint>

/// Receives what the process traces. Implementations must not throw and must not trace in turn.
class KARV_PLATFORM_API TraceSink
{
  public:
    TraceSink() = default;
    TraceSink(const TraceSink&) = delete;
    TraceSink& operator=(const TraceSink&) = delete;
    virtual ~TraceSink();

    /// A call begins; `name` is a literal that outlives the process.
    virtual void EnterCall(const wchar_t* name) noexcept = 0;
    /// The call that `EnterCall` announced last on this thread, and that has not ended yet, ends.
    virtual void LeaveCall(const wchar_t* name) noexcept = 0;
    /// A fault was caught at this place.
    virtual void ReportFault(const wchar_t* file, int line) noexcept = 0;
};

/// Installs the process's sink and returns the one before it (null for none). The caller keeps ownership and
/// must keep a sink alive until it is replaced and every call begun with it has ended: an entry reports its
/// end to the sink that saw its beginning.
KARV_PLATFORM_API TraceSink* InstallTraceSink(TraceSink* sink) noexcept;

namespace trace_detail
{
/// What entries are told to: the process's sink, a silent one where there is none and every call is watched,
/// or null.
KARV_PLATFORM_API extern std::atomic<TraceSink*> installed_sink;
/// Whether entries are to be watched without a sink too.
void WatchEveryCall(bool is_on) noexcept;
} // namespace trace_detail

/// A traced call: begins at construction and ends with the scope.
class KARV_PLATFORM_API CTqLogEntry
{
  public:
    /// `name` must be a literal (or outlive the process): sinks keep the pointer.
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

    /// Whether anybody wants to know of this call: a sink, or the catching of processor faults.
    [[nodiscard]] bool IsWatched() const noexcept { return sink_ != nullptr; }

    /// Calls `body`, so that processor faults in it can be told to lie inside a call with a guard. The caller
    /// must be that guard: whatever `body` throws, it catches.
    static void RunWatched(void (*body)(void*), void* argument);

  private:
    void Enter() const noexcept;
    void Leave() const noexcept;

    const wchar_t* name_;
    TraceSink* sink_;
};

/// A report of a caught fault: recorded at construction, ended with the scope.
class KARV_PLATFORM_API CTqCrashHandler
{
  public:
    CTqCrashHandler(const wchar_t* file, int line);
    CTqCrashHandler(const CTqCrashHandler&) = delete;
    CTqCrashHandler& operator=(const CTqCrashHandler&) = delete;
    virtual ~CTqCrashHandler();

    /// Returns 0: the result of an operation that faulted.
    static std::int64_t mov_rax_0() noexcept { return 0; }
};
