#include "platform/tools/fault_search.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <link.h>
#include <sys/syscall.h>
#include <sys/ucontext.h>
#include <unistd.h>
#include <unwind.h>

namespace fault_search
{

namespace
{

/// The action of SIGSEGV before ours. Valid while `is_in_chain`: our action is then installed, or called by
/// another.
struct sigaction previous;
bool is_in_chain = false;

/// The stack in bytes, below its own frame, that the handler has to have for its search for a guard.
///
/// It needs 1952 bytes where all functions are bound, with gcc 12 and its unwinder. Measured on an alternate
/// stack that was filled with a pattern: a fault changes 5168 bytes of it, and the system's frame for AVX-512
/// has 3216 of these. The depth of the search does not matter. Other compilers and unwinders may need more.
constexpr std::size_t kSearchStack = 4096;

/// A register that a function preserves for its caller.
struct KeptRegister {
    int number; ///< in the unwinder's tables
    int index;  ///< in a saved context
};
constexpr std::array<KeptRegister, 6> kKeptRegisters{
    {{3, REG_RBX}, {6, REG_RBP}, {12, REG_R12}, {13, REG_R13}, {14, REG_R14}, {15, REG_R15}}};

std::uintptr_t Value(const ucontext_t& thread, int index)
{
    return static_cast<std::uintptr_t>(thread.uc_mcontext.gregs[index]);
}

void SetValue(ucontext_t& thread, int index, std::uintptr_t value)
{
    thread.uc_mcontext.gregs[index] = static_cast<greg_t>(value);
}

bool IsReadable(std::uintptr_t address)
{
    // The system reads the set before it refuses the unknown operation; where it cannot read, it reports
    // EFAULT.
    constexpr int kUnknownOperation = -1;
    const int before = errno;
    const bool is_readable = ::syscall(SYS_rt_sigprocmask, kUnknownOperation, address & ~std::uintptr_t{7},
                                       nullptr, sizeof(long)) != 0 &&
                             errno != EFAULT;
    errno = before;
    return is_readable;
}

bool IsOn(const stack_t& stack, std::uintptr_t address)
{
    const auto begin = reinterpret_cast<std::uintptr_t>(stack.ss_sp);
    return address >= begin && address < begin + stack.ss_size;
}

/// The bytes of the stack below the address, which is on it.
std::size_t BytesBelow(const stack_t& stack, std::uintptr_t address)
{
    return address - reinterpret_cast<std::uintptr_t>(stack.ss_sp);
}

/// Whether the stack has room for unwinding. It has none after a stack overflow.
bool HasRoom(std::uintptr_t stack, const stack_t& alternate)
{
    constexpr std::uintptr_t kRoom = std::uintptr_t{64} * 1024;
    constexpr std::uintptr_t kPage = 4096;
    // What lies below an alternate stack may be readable, but is not part of it.
    if (IsOn(alternate, stack))
        return BytesBelow(alternate, stack) >= kRoom;
    for (std::uintptr_t below = 0; below <= kRoom; below += kPage)
        if (!IsReadable(stack - below))
            return false;
    return true;
}

/// The registers of a calling function right after its call returned.
struct Caller {
    std::uintptr_t place = 0; ///< the instruction after the call
    std::uintptr_t stack = 0;
    std::array<std::uintptr_t, kKeptRegisters.size()> kept{};
};

Caller CallerAt(_Unwind_Context* function)
{
    Caller caller{.place = _Unwind_GetIP(function), .stack = _Unwind_GetCFA(function), .kept = {}};
    for (std::size_t i = 0; i < kKeptRegisters.size(); ++i)
        caller.kept[i] = _Unwind_GetGR(function, kKeptRegisters[i].number);
    return caller;
}

/// A fault, and the state of the search outwards from it.
struct Fault {
    std::uintptr_t place = 0;   ///< the faulting instruction
    std::uintptr_t address = 0; ///< the address that it could not access
    std::uintptr_t stack = 0;   ///< the stack pointer there
    bool has_function_been_seen = false;
    bool is_caller_next = true; ///< whether the exception would be thrown from the next function's call
    Caller caller;
    Search search;
};

/// Whether the address lies in the part of the stack that the faulting function uses, up to where its
/// caller's begins.
bool IsOnStack(const Fault& fault)
{
    constexpr std::uintptr_t kBelow = std::uintptr_t{64} * 1024;
    return fault.address + kBelow >= fault.stack && fault.address < fault.caller.stack;
}

_Unwind_Reason_Code Visit(_Unwind_Context* function, void* data)
{
    Fault& fault = *static_cast<Fault*>(data);
    int is_exact = 0;
    const std::uintptr_t place = _Unwind_GetIPInfo(function, &is_exact);
    if (!fault.has_function_been_seen) {
        // The frames of the signal handler come first.
        fault.has_function_been_seen = is_exact != 0 && place == fault.place;
        return _URC_NO_REASON;
    }
    if (fault.is_caller_next) {
        fault.caller = CallerAt(function);
        if (IsOnStack(fault))
            return _URC_END_OF_STACK;
    }
    const Frame frame{.function = _Unwind_GetRegionStart(function),
                      .call = place - 1,
                      .stack = _Unwind_GetCFA(function),
                      .table = static_cast<const unsigned char*>(_Unwind_GetLanguageSpecificData(function))};
    const Search::Step step = is_exact == 0 ? fault.search.Examine(frame) : Search::Step::Stop;
    fault.is_caller_next = step == Search::Step::SkipCall;
    return step == Search::Step::Stop ? _URC_END_OF_STACK : _URC_NO_REASON;
}

/// Changes the registers of the thread so that it continues towards a guard; false where the fault is not
/// caught. A function of its own, so that a handler that only passes a fault on does not use its stack.
[[gnu::noinline]] bool Catch(const siginfo_t& signal, ucontext_t& thread)
{
    // A signal that was sent by a process has no faulting instruction.
    if (signal.si_code <= 0 || !IsInCaughtImage(Value(thread, REG_RIP)))
        return false;
    Fault fault;
    fault.place = Value(thread, REG_RIP);
    fault.address = reinterpret_cast<std::uintptr_t>(signal.si_addr);
    fault.stack = Value(thread, REG_RSP);
    if (!HasRoom(fault.stack, thread.uc_stack))
        return false;
    _Unwind_Backtrace(&Visit, &fault);
    if (!fault.search.HasFoundGuard())
        return false;
    // The state right after the caller's call instruction.
    constexpr std::uintptr_t kDirectionFlag = 0x400;
    const std::uintptr_t stack = fault.caller.stack - sizeof(std::uintptr_t);
    *reinterpret_cast<std::uintptr_t*>(stack) = fault.caller.place;
    for (std::size_t i = 0; i < kKeptRegisters.size(); ++i)
        SetValue(thread, kKeptRegisters[i].index, fault.caller.kept[i]);
    SetValue(thread, REG_RSP, stack);
    SetValue(thread, REG_RIP, reinterpret_cast<std::uintptr_t>(&ThrowProcessorFault));
    SetValue(thread, REG_EFL, Value(thread, REG_EFL) & ~kDirectionFlag);
    return true;
}

/// Does what the action before ours would do.
void PassOn(int number, siginfo_t* signal, void* thread)
{
    if ((previous.sa_flags & SA_SIGINFO) != 0) {
        previous.sa_sigaction(number, signal, thread);
    } else if (previous.sa_handler != SIG_DFL && previous.sa_handler != SIG_IGN) {
        previous.sa_handler(number);
    } else if (signal->si_code > 0 || previous.sa_handler == SIG_DFL) {
        // A fault repeats after the return. A signal that was sent has to be sent again.
        struct sigaction none {
        };
        none.sa_handler = SIG_DFL;
        ::sigaction(SIGSEGV, &none, nullptr);
        if (signal->si_code <= 0)
            ::raise(SIGSEGV);
    }
}

/// Whether the handler can search for a guard without writing below the alternate stack. The host chooses
/// the size of that stack. `here` is the address of the handler's frame, which may be on another stack.
bool CanSearch(const stack_t& alternate, std::uintptr_t here)
{
    return !IsOn(alternate, here) || BytesBelow(alternate, here) >= kSearchStack;
}

void HandleFault(int number, siginfo_t* signal, void* context)
{
    ucontext_t& thread = *static_cast<ucontext_t*>(context);
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    if (!CanSearch(thread.uc_stack, here) || !Catch(*signal, thread))
        PassOn(number, signal, context);
}

/// Whether the calling thread's alternate stack, if it has one, has room for the system's frame of a signal
/// and for the search.
bool HasEnoughAlternateStack()
{
    stack_t alternate{};
    if (::sigaltstack(nullptr, &alternate) != 0 || (alternate.ss_flags & SS_DISABLE) != 0)
        return true;
    const long frame = ::sysconf(_SC_MINSIGSTKSZ);
    return alternate.ss_size >= static_cast<std::size_t>(frame) + kSearchStack;
}

_Unwind_Reason_Code VisitThree(_Unwind_Context* /*function*/, void* count)
{
    return ++*static_cast<int*>(count) < 3 ? _URC_NO_REASON : _URC_END_OF_STACK;
}

/// Uses the unwinder once, so that the functions that it calls are bound. Their binding in the handler would
/// need up to 3000 bytes more of an alternate stack. karv_platform's own calls are bound when it is loaded.
void PrepareUnwinder()
{
    int count = 0;
    _Unwind_Backtrace(&VisitThree, &count);
}

bool IsOurs(const struct sigaction& action)
{
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == &HandleFault;
}

struct ImageSearch {
    std::uintptr_t address = 0;
    std::optional<ImageRange> found;
};

int VisitImage(dl_phdr_info* image, std::size_t /*size*/, void* data)
{
    ImageSearch& search = *static_cast<ImageSearch*>(data);
    ImageRange whole{~std::uintptr_t{0}, 0};
    for (int i = 0; i < image->dlpi_phnum; ++i) {
        const ElfW(Phdr)& part = image->dlpi_phdr[i];
        if (part.p_type != PT_LOAD)
            continue;
        whole.begin = std::min(whole.begin, image->dlpi_addr + part.p_vaddr);
        whole.end = std::max(whole.end, image->dlpi_addr + part.p_vaddr + part.p_memsz);
    }
    if (search.address >= whole.begin && search.address < whole.end)
        search.found = whole;
    return search.found.has_value() ? 1 : 0;
}

} // namespace

std::optional<ImageRange> ImageAt(const void* address) noexcept
{
    ImageSearch search{.address = reinterpret_cast<std::uintptr_t>(address), .found = std::nullopt};
    ::dl_iterate_phdr(&VisitImage, &search);
    return search.found;
}

bool InstallHandler() noexcept
{
    if (!HasEnoughAlternateStack())
        return false;
    if (is_in_chain)
        return true;
    PrepareUnwinder();
    struct sigaction ours {
    };
    if (::sigaction(SIGSEGV, nullptr, &previous) != 0)
        return false;
    // The action before ours runs inside ours, so its mask and flags apply.
    ours.sa_sigaction = &HandleFault;
    ours.sa_mask = previous.sa_mask;
    ours.sa_flags = SA_SIGINFO | SA_ONSTACK | (previous.sa_flags & (SA_NODEFER | SA_RESTART));
    is_in_chain = ::sigaction(SIGSEGV, &ours, nullptr) == 0;
    return is_in_chain;
}

void RemoveHandler() noexcept
{
    struct sigaction current {
    };
    if (::sigaction(SIGSEGV, nullptr, &current) == 0 && IsOurs(current))
        is_in_chain = ::sigaction(SIGSEGV, &previous, nullptr) != 0;
}

} // namespace fault_search
