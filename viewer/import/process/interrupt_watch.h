// Notes a signal that asks the process to stop, such as Ctrl-C, during a long operation.
#pragma once

namespace viewer
{

/// While it exists, SIGINT, SIGTERM and SIGHUP are noted instead of ending the process. Signals that the
/// process ignores stay ignored. Its destructor restores the previous handlers. Only one may exist at a time.
class InterruptWatch
{
  public:
    /// Throws std::system_error if the process has no descriptors left.
    InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
    ~InterruptWatch();

    /// A descriptor for poll, readable once a signal has arrived. Reading is not needed. The object owns it.
    [[nodiscard]] int Descriptor() const;
};

} // namespace viewer
