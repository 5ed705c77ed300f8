// A program that a test starts beside itself. It ends with the object, by its own id, and with the test
// program however that ends.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace karv_test
{

class ChildProcess
{
  public:
    /// Starts the program, found by PATH, with these arguments. It is asked to announce itself on the
    /// descriptor whose number replaces "%fd" in the arguments, if any has it. Throws std::runtime_error
    /// where it cannot be started.
    explicit ChildProcess(const std::vector<std::string>& command);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Asks the process to end and waits until it has.
    ~ChildProcess();

    /// The first line that it announces; empty where it ends without one.
    [[nodiscard]] std::string ReadLine() const;
    /// Stops it from doing anything until it is resumed.
    void Pause() const;
    void Resume() const;
    /// Ends it at once, without its doing anything more.
    void Kill();

  private:
    void End(int signal);

    pid_t id_ = 0;
    int announcements_ = -1;
};

} // namespace karv_test
