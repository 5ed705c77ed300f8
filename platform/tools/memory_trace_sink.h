// A trace sink that keeps every record in memory, in the order of arrival.
#pragma once

#include "platform/tools/trace.h"

#include <mutex>
#include <string>
#include <vector>

/// One record of a `MemoryTraceSink`.
struct TraceRecord {
    enum class Kind { Enter, Leave, Fault };

    Kind kind = Kind::Enter;
    std::wstring name; ///< the call's trace name, or the file of a fault
    int line = 0;      ///< the line of a fault, else 0

    bool operator==(const TraceRecord&) const = default;
};

/// Keeps the records until `Clear`. A record for which there is no memory is dropped. Any thread.
class KARV_PLATFORM_API MemoryTraceSink final : public TraceSink
{
  public:
    void EnterCall(const wchar_t* name) noexcept override;
    void LeaveCall(const wchar_t* name) noexcept override;
    void ReportFault(const wchar_t* file, int line) noexcept override;

    /// A copy of the records so far.
    [[nodiscard]] std::vector<TraceRecord> Records() const;
    /// Removes all records.
    void Clear() noexcept;

  private:
    void Keep(TraceRecord::Kind kind, const wchar_t* name, int line) noexcept;

    mutable std::mutex mutex_;
    std::vector<TraceRecord> records_;
};
