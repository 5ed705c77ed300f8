// Limits that a process sets for itself before it parses a file of unknown origin.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

namespace viewer
{

/// The exit status of a process whose `operator new` found no memory.
inline constexpr int kOutOfMemoryStatus = 71;

/// Limits the calling process. SIGXCPU ends it when it has used `processor` of processor time. It exits with
/// `kOutOfMemoryStatus` when `operator new` finds no memory. It leaves no core file. `address_space` is in
/// bytes; no value means no limit, which AddressSanitizer needs, because its shadow exceeds any memory.
void LimitProcess(std::chrono::seconds processor, std::optional<std::size_t> address_space);

} // namespace viewer
