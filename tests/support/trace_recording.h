// Records the module's trace while an object lives, as short listings.
#pragma once

#include "platform/tools/memory_trace_sink.h"

#include <string>
#include <string_view>
#include <vector>

namespace karv_test
{

/// Installs a sink for its life and restores the previous one. No call may be open when it is destroyed.
class TraceRecording
{
  public:
    TraceRecording();
    TraceRecording(const TraceRecording&) = delete;
    TraceRecording& operator=(const TraceRecording&) = delete;
    ~TraceRecording();

    /// "> name" where a call begins, "< name" where it ends, "! file" where a fault is reported.
    [[nodiscard]] std::vector<std::string> Listing() const;
    /// Only the faults, as "file:line".
    [[nodiscard]] std::vector<std::string> Faults() const;
    /// The names of the calls begun, in order.
    [[nodiscard]] std::vector<std::string> Calls() const;
    /// The calls begun while no other was open, in order.
    [[nodiscard]] std::vector<std::string> OutermostCalls() const;
    [[nodiscard]] std::vector<TraceRecord> Records() const { return sink_.Records(); }
    void Clear() { sink_.Clear(); }

  private:
    MemoryTraceSink sink_;
    TraceSink* previous_;
};

} // namespace karv_test
