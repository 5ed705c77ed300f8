// The part of the decision whether a fault is caught that is the same on all systems: the images whose
// faults are caught, and what the unwinder's tables say about each active function.
#pragma once

#include <cstdint>
#include <optional>

namespace fault_search
{

/// The addresses of an image (program or library), `end` excluded.
struct ImageRange {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;

    [[nodiscard]] bool Contains(std::uintptr_t address) const { return address >= begin && address < end; }
    bool operator==(const ImageRange&) const = default;
};

/// Whether the address lies in an image whose faults are caught. Takes no lock, so that handlers may call it.
[[nodiscard]] bool IsInCaughtImage(std::uintptr_t address) noexcept;

/// Calls `body` and returns true. The frame of this function on the stack marks its caller as a guard.
bool RunBody(void (*body)(void*), void* argument);

/// An active function, as the system's unwinder shows it.
struct Frame {
    std::uintptr_t function = 0;          ///< its first address
    std::uintptr_t call = 0;              ///< an address inside its active call instruction
    std::uintptr_t stack = 0;             ///< its stack pointer at that instruction
    const unsigned char* table = nullptr; ///< its table of exception handlers, null for none
};

/// Examines the active functions, from the caller of the faulting function outwards, until it is known
/// whether a guard catches the fault, and finds the call from which the exception can be thrown.
class Search
{
  public:
    enum class Step {
        Continue, ///< examine the next function outwards
        SkipCall, ///< the same, but the exception cannot be thrown from this function's call
        Stop,     ///< the result is known
    };

    /// Examines the next function outwards.
    [[nodiscard]] Step Examine(const Frame& frame) noexcept;
    [[nodiscard]] bool HasFoundGuard() const noexcept { return has_found_guard_; }

  private:
    bool is_throwing_call_next_ = true; ///< whether the exception is to be thrown from the next function
    bool is_guard_next_ = false;
    bool has_found_guard_ = false;
};

/// Throws an exception. A handler makes the thread continue here, as if this function had been called
/// instead of the faulting one.
[[noreturn]] void ThrowProcessorFault();

// Supplied by each system.

/// The image that contains the address; none where no image does.
[[nodiscard]] std::optional<ImageRange> ImageAt(const void* address) noexcept;
/// Installs the handler; false where the system refuses. Install and remove are called in turn, by one
/// thread at a time.
[[nodiscard]] bool InstallHandler() noexcept;
/// Removes the handler.
void RemoveHandler() noexcept;

} // namespace fault_search
