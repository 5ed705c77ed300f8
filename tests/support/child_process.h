// A program that a test starts and that runs in parallel. It is ended with the object, by its process id, and
// with the test program in whatever way that ends.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace karv_test
{

class ChildProcess
{
  public:
    /// Starts the program, found by PATH, with these arguments. "%fd" in an argument is replaced by the
    /// number of a descriptor on which the program is to announce itself. Throws std::runtime_error if the
    /// program cannot be started.
    explicit ChildProcess(const std::vector<std::string>& command);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Terminates the process and waits for its end.
    ~ChildProcess();

    /// The first line that the program announces; empty if it ends without one.
    [[nodiscard]] std::string ReadLine() const;
    /// Stops the process until it is resumed.
    void Pause() const;
    void Resume() const;
    /// Kills the process at once.
    void Kill();

  private:
    void End(int signal);

    pid_t id_ = 0;
    int announcements_ = -1;
};

} // namespace karv_test
