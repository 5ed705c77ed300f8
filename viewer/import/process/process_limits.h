// Limits that a process sets for itself before it parses a file of unknown origin.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

namespace viewer
{

/// The exit status of a process whose `operator new` found no memory.
inline constexpr int kOutOfMemoryStatus = 71;

/// The limit of address space in bytes that `LimitProcess` would set in this process, or in one that inherits
/// its limits: the argument, or the limit that the process already has if that is lower.
[[nodiscard]] std::size_t AddressSpaceInForce(std::size_t address_space);

/// Limits the calling process. SIGXCPU ends it when it has used `processor` of processor time. It exits with
/// `kOutOfMemoryStatus` when `operator new` finds no memory. It leaves no core file. `address_space` is in
/// bytes; no value means no limit, which AddressSanitizer needs, because its shadow exceeds any memory. A
/// lower limit of address space that the process already has stays.
void LimitProcess(std::chrono::seconds processor, std::optional<std::size_t> address_space);

} // namespace viewer
