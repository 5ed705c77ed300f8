// A trace sink that writes the trace-event JSON format, which browsers' tracing pages and other viewers
// read: calls as begin and end events, faults as instant events.
#pragma once

#include "platform/tools/trace.h"

#include <memory>
#include <string>

/// Writes one JSON file over its lifetime: {"traceEvents": [...]}, times in microseconds since the sink was
/// made, threads numbered from 1 in the order of their first record. Events are written as they come, to a
/// temporary file: the target is written whole or not at all, by an AtomicFile. Any thread.
class KARV_PLATFORM_API ChromeTraceSink final : public TraceSink
{
  public:
    /// Opens the temporary file. Throws std::runtime_error, "cannot write FILE: reason", where AtomicFile
    /// refuses the target or cannot create the temporary file.
    explicit ChromeTraceSink(const std::string& path);
    /// Closes as `Close` does and ignores failures.
    ~ChromeTraceSink() override;

    void EnterCall(const wchar_t* name) noexcept override;
    void LeaveCall(const wchar_t* name) noexcept override;
    void ReportFault(const wchar_t* file, int line) noexcept override;

    /// Ends the calls that are still open and completes the file. Later records are dropped. Throws
    /// std::runtime_error, "cannot write FILE: reason", where any part could not be written; an older file
    /// then stays, and the temporary one is removed. A second call does nothing.
    void Close();

  private:
    struct File;
    std::unique_ptr<File> file_;
};
