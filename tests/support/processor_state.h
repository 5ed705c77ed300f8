// System functions for the tests of processor faults: another handler of faults in the same process, and the
// memory that the process holds.
#pragma once

#include <cstddef>
#include <functional>

namespace karv_test
{

/// A handler of access violations as a host may have one, installed for its life. It handles only faults
/// inside its own `Run` on the thread that runs it, and passes others to the handler that was installed
/// before it.
class ForeignFaultHandler
{
  public:
    ForeignFaultHandler();
    ForeignFaultHandler(const ForeignFaultHandler&) = delete;
    ForeignFaultHandler& operator=(const ForeignFaultHandler&) = delete;
    ~ForeignFaultHandler();

    /// Runs `act` and returns whether it faulted and the fault reached this handler, which then left `act`.
    /// Objects on the way are not destroyed.
    bool Run(const std::function<void()>& act);
};

constexpr int kEndedByHost = 42;

/// From now on the process ends with status `kEndedByHost` at an unhandled fault, stack overflow included.
void EndAtUnhandledFaults();

/// The bytes that the process has allocated and not freed.
std::size_t MemoryInUse();

} // namespace karv_test
