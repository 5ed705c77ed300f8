// The user's wish to stop, while something takes its time: Ctrl-C, or a request to end the program.
#pragma once

namespace viewer
{

/// While it lives, SIGINT, SIGTERM and SIGHUP do not end the process but are noted; those that the process
/// ignores stay ignored. Afterwards they do what they did before. Only one may live at a time.
class InterruptWatch
{
  public:
    /// Throws std::system_error where the process has no descriptors left.
    InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
    ~InterruptWatch();

    /// For poll: can be read from once a signal has come. Nobody needs to read.
    [[nodiscard]] int Descriptor() const;
};

} // namespace viewer
