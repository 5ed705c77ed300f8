// What the handlers of the systems share in deciding whether a fault is caught: the images whose faults are,
// and what the unwinder's tables say about a function on the way.
#pragma once

#include <cstdint>
#include <optional>

namespace fault_search
{

/// The addresses of an image, the end excluded.
struct ImageRange {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;

    [[nodiscard]] bool Contains(std::uintptr_t address) const { return address >= begin && address < end; }
    bool operator==(const ImageRange&) const = default;
};

/// Whether an image whose faults are caught contains the address. Takes no lock: for handlers.
[[nodiscard]] bool IsInCaughtImage(std::uintptr_t address) noexcept;

/// Calls `body`. The frame of this function marks the guard that called it.
bool RunBody(void (*body)(void*), void* argument);

/// A function under way, as the system's unwinder shows it.
struct Frame {
    std::uintptr_t function = 0;          ///< where it begins
    std::uintptr_t call = 0;              ///< inside the instruction by which it called the one before it
    std::uintptr_t stack = 0;             ///< its stack pointer at that instruction
    const unsigned char* table = nullptr; ///< of its handlers, null where it has none
};

/// Goes from the caller of the function that faulted outwards until it knows whether a guard catches the
/// fault, and finds the call from which it can be thrown on.
class Search
{
  public:
    enum class Step {
        GoOn,     ///< show the next function outwards
        LeaveToo, ///< the same, but nothing can be thrown from this function's call: the next one's may do
        Stop,     ///< it is known
    };

    [[nodiscard]] Step After(const Frame& frame) noexcept;
    [[nodiscard]] bool HasFoundGuard() const noexcept { return has_found_guard_; }

  private:
    bool is_to_throw_ = true; ///< whether the next function would be the first to be thrown through
    bool is_guard_next_ = false;
    bool has_found_guard_ = false;
};

/// Throws. A handler lets the thread go on here, as if the function that called the faulting one had called
/// this one instead.
[[noreturn]] void ThrowProcessorFault();

// What each system supplies.

/// The image that contains the address; none where no image does.
[[nodiscard]] std::optional<ImageRange> ImageAt(const void* address) noexcept;
/// Both are called for one thread at a time, in turn, installation first.
[[nodiscard]] bool InstallHandler() noexcept;
void RemoveHandler() noexcept;

} // namespace fault_search
