// What tests of processor faults need of the system: another handler of faults in the same process, and how
// much memory the process holds.
#pragma once

#include <cstddef>
#include <functional>

namespace karv_test
{

/// A handler of access violations as a host may have one, for its life. It takes only faults inside its own
/// `Run` on the thread that runs it, and leaves others to whoever stood before it.
class ForeignFaultHandler
{
  public:
    ForeignFaultHandler();
    ForeignFaultHandler(const ForeignFaultHandler&) = delete;
    ForeignFaultHandler& operator=(const ForeignFaultHandler&) = delete;
    ~ForeignFaultHandler();

    /// Runs `act` and returns whether it faulted and the fault came to this handler, which ended it there.
    /// Nothing on the way is destroyed.
    bool Run(const std::function<void()>& act);
};

constexpr int kEndedByHost = 42;

/// From now on the process ends with status `kEndedByHost` at a fault that nobody handles, stack overflow
/// included.
void EndAtUnhandledFaults();

/// Bytes that the process has from the system's memory managers and has not given back.
std::size_t MemoryInUse();

} // namespace karv_test
