// Limits that a process sets for itself before it parses a file of unknown origin.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

namespace viewer
{

/// The exit status of a process for which `operator new` has found no more memory.
inline constexpr int kOutOfMemoryStatus = 71;

/// From now on the process is ended by SIGXCPU once it has used this much processor time, ends with
/// `kOutOfMemoryStatus` where `operator new` finds no memory, and leaves no core file. `address_space` is in
/// bytes; none for no limit, which a process under AddressSanitizer needs: its shadow is larger than any memory.
void LimitProcess(std::chrono::seconds processor, std::optional<std::size_t> address_space);

} // namespace viewer
