// A sink that writes the trace-event JSON format that browsers' tracing pages and other viewers read:
// calls as begin and end events, faults as instant events.
#pragma once

#include "platform/tools/trace.h"

#include <memory>
#include <string>

/// Writes one JSON file over its lifetime: {"traceEvents": [...]}, times in microseconds since it was opened,
/// threads numbered from 1 in the order of their first record. Events are written as they come; the file has
/// a temporary name beside its own until it is complete, so that it is there whole or not at all, and an
/// older file of that name stays until then. Any thread.
class KARV_PLATFORM_API ChromeTraceSink final : public TraceSink
{
  public:
    /// Opens the file. Throws std::runtime_error naming it and the reason; a directory, a device or a pipe of
    /// that name is refused.
    explicit ChromeTraceSink(const std::string& path);
    /// Closes as `Close` does, but says nothing of a failure.
    ~ChromeTraceSink() override;

    void EnterCall(const wchar_t* name) noexcept override;
    void LeaveCall(const wchar_t* name) noexcept override;
    void ReportFault(const wchar_t* file, int line) noexcept override;

    /// Ends the calls that are still open and completes the file; records that come later are dropped.
    /// Throws std::runtime_error naming the file and the reason where any of it could not be written; no file
    /// is left then. A second call does nothing.
    void Close();

  private:
    struct File;
    std::unique_ptr<File> file_;
};
