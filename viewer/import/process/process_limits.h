// Limits that a process puts on itself before it parses what a stranger wrote.
#pragma once

#include <chrono>
#include <cstddef>

namespace viewer
{

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kHasAddressSanitizer = true;
#else
inline constexpr bool kHasAddressSanitizer = false;
#endif

/// The exit status of a process for which `operator new` has found no more memory.
inline constexpr int kOutOfMemoryStatus = 71;

/// From now on: the process is ended by SIGXCPU once it has used this much processor time, ends with
/// `kOutOfMemoryStatus` where it asks for more than `memory` bytes of address space, and leaves no core file.
/// Under AddressSanitizer, whose shadow alone is larger than any memory, there is no limit of address space.
void LimitProcess(std::chrono::seconds processor, std::size_t memory);

} // namespace viewer
