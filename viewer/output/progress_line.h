// A line of progress on a terminal, for loads that take a while. Nothing is shown for short ones, nor into a
// file or a pipe.
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <string>

namespace viewer
{

/// Whether the standard error stream goes to a terminal.
[[nodiscard]] bool StandardErrorIsTerminal();

/// The progress line of one task; gone when the object is.
class ProgressLine
{
  public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// Writes "TASK: 42 %" to `out`, over itself, once the task has run for half a second by `clock`. With
    /// `on_terminal` false it never writes. `out` must outlive the object.
    ProgressLine(std::ostream& out, bool on_terminal, std::string task,
                 Clock clock = std::chrono::steady_clock::now);
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    /// Clears the line.
    ~ProgressLine();

    void Report(double fraction);

  private:
    std::ostream& out_;
    bool on_terminal_;
    std::string task_;
    Clock clock_;
    std::chrono::steady_clock::time_point start_;
    int shown_percent_ = -1;
};

} // namespace viewer
