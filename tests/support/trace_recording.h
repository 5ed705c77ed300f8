// Records what the module traces while an object lives, as short listings.
#pragma once

#include "platform/tools/memory_trace_sink.h"

#include <string>
#include <string_view>
#include <vector>

namespace karv_test
{

/// Installs a sink of its own for its life and puts the one before it back. No call may be under way when it
/// goes.
class TraceRecording
{
  public:
    TraceRecording();
    TraceRecording(const TraceRecording&) = delete;
    TraceRecording& operator=(const TraceRecording&) = delete;
    ~TraceRecording();

    /// "> name" where a call begins, "< name" where it ends, "! file" where a fault was reported.
    [[nodiscard]] std::vector<std::string> Listing() const;
    /// The faults alone, as "file:line".
    [[nodiscard]] std::vector<std::string> Faults() const;
    /// The names of the calls begun, in order.
    [[nodiscard]] std::vector<std::string> Calls() const;
    /// The calls begun while no other was under way, in order.
    [[nodiscard]] std::vector<std::string> OutermostCalls() const;
    [[nodiscard]] std::vector<TraceRecord> Records() const { return sink_.Records(); }
    void Clear() { sink_.Clear(); }

  private:
    MemoryTraceSink sink_;
    TraceSink* previous_;
};

} // namespace karv_test
