// A line of progress on a terminal for long tasks. Short tasks show nothing, and nothing goes into a file or
// a pipe.
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <string>

namespace viewer
{

/// Whether the standard error stream goes to a terminal.
[[nodiscard]] bool StandardErrorIsTerminal();

/// The progress line of one task; the destructor clears it.
class ProgressLine
{
  public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// Starts the task. Nothing is ever written where `on_terminal` is false. `out` must outlive this object.
    ProgressLine(std::ostream& out, bool on_terminal, std::string task,
                 Clock clock = std::chrono::steady_clock::now);
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine();

    /// Writes "TASK: 42 %" over the last line, once the task has run for half a second by the clock.
    /// `fraction` is from 0 to 1; values outside are clamped.
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
