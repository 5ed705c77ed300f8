#include "platform/tools/fault_search.h"

#include <windows.h>

#include <cstdint>
#include <optional>

namespace fault_search
{

namespace
{

PVOID handler = nullptr;

/// The reserved addresses of this thread's stack.
ImageRange Stack()
{
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    ::GetCurrentThreadStackLimits(&low, &high);
    return {low, high};
}

/// Whether the fault is an access to data that is not on the stack, by an instruction of a caught image,
/// with a valid stack pointer and room on the stack for unwinding.
bool IsOurs(const EXCEPTION_RECORD& record, const CONTEXT& registers)
{
    constexpr DWORD kRead = 0;
    constexpr DWORD kWrite = 1;
    constexpr std::uintptr_t kRoom = std::uintptr_t{64} * 1024;
    if (record.ExceptionCode != EXCEPTION_ACCESS_VIOLATION || record.NumberParameters < 2 ||
        (record.ExceptionFlags & EXCEPTION_NONCONTINUABLE) != 0)
        return false;
    if (record.ExceptionInformation[0] != kRead && record.ExceptionInformation[0] != kWrite)
        return false;
    if (reinterpret_cast<std::uintptr_t>(record.ExceptionAddress) != registers.Rip ||
        !IsInCaughtImage(registers.Rip))
        return false;
    const ImageRange stack = Stack();
    const std::uintptr_t address = record.ExceptionInformation[1];
    if (address >= stack.begin && address < stack.end)
        return false;
    return registers.Rsp >= stack.begin + kRoom && registers.Rsp < stack.end;
}

bool IsOnStack(const CONTEXT& registers)
{
    const ImageRange stack = Stack();
    return registers.Rsp >= stack.begin && registers.Rsp + sizeof(DWORD64) <= stack.end;
}

/// Unwinds the registers from the active function to its caller, and returns the frame of the function.
Frame Unwind(CONTEXT& registers)
{
    Frame frame{.function = 0, .call = registers.Rip - 1, .stack = registers.Rsp, .table = nullptr};
    DWORD64 base = 0;
    RUNTIME_FUNCTION* const entry = ::RtlLookupFunctionEntry(registers.Rip, &base, nullptr);
    if (entry == nullptr) {
        // A leaf function has no entry, and only its return address is on the stack.
        registers.Rip = *reinterpret_cast<const DWORD64*>(registers.Rsp);
        registers.Rsp += sizeof(DWORD64);
        return frame;
    }
    PVOID table = nullptr;
    DWORD64 establisher = 0;
    if (::RtlVirtualUnwind(UNW_FLAG_EHANDLER | UNW_FLAG_UHANDLER, base, registers.Rip, entry, &registers,
                           &table, &establisher, nullptr) != nullptr)
        frame.table = static_cast<const unsigned char*>(table);
    frame.function = base + entry->BeginAddress;
    return frame;
}

/// The registers right after the call from which the exception can be thrown; none where no guard catches
/// the fault.
std::optional<CONTEXT> CallToThrowFrom(CONTEXT registers)
{
    static_cast<void>(Unwind(registers));
    CONTEXT call = registers;
    Search search;
    for (Search::Step step = Search::Step::Continue; step != Search::Step::Stop && IsOnStack(registers);) {
        const DWORD64 stack = registers.Rsp;
        step = search.Examine(Unwind(registers));
        if (step == Search::Step::SkipCall)
            call = registers;
        // Callers lie at higher addresses, or the stack is damaged.
        if (registers.Rsp <= stack)
            break;
    }
    if (!search.HasFoundGuard())
        return std::nullopt;
    return call;
}

LONG CALLBACK HandleFault(EXCEPTION_POINTERS* fault)
{
    if (!IsOurs(*fault->ExceptionRecord, *fault->ContextRecord))
        return EXCEPTION_CONTINUE_SEARCH;
    std::optional<CONTEXT> thread = CallToThrowFrom(*fault->ContextRecord);
    if (!thread.has_value())
        return EXCEPTION_CONTINUE_SEARCH;
    // The state right after the call instruction.
    constexpr DWORD kDirectionFlag = 0x400;
    thread->Rsp -= sizeof(DWORD64);
    *reinterpret_cast<DWORD64*>(thread->Rsp) = thread->Rip;
    thread->Rip = reinterpret_cast<DWORD64>(&ThrowProcessorFault);
    thread->EFlags &= ~kDirectionFlag;
    *fault->ContextRecord = *thread;
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

std::optional<ImageRange> ImageAt(const void* address) noexcept
{
    HMODULE module = nullptr;
    if (::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                 GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                             static_cast<LPCWSTR>(address), &module) == FALSE)
        return std::nullopt;
    const auto base = reinterpret_cast<std::uintptr_t>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers =
        reinterpret_cast<const IMAGE_NT_HEADERS*>(base + static_cast<std::uintptr_t>(dos->e_lfanew));
    return ImageRange{base, base + headers->OptionalHeader.SizeOfImage};
}

bool InstallHandler() noexcept
{
    // Behind the existing handlers: they may cause and handle faults at our instructions on purpose.
    handler = ::AddVectoredExceptionHandler(0, &HandleFault);
    return handler != nullptr;
}

void RemoveHandler() noexcept
{
    ::RemoveVectoredExceptionHandler(handler);
    handler = nullptr;
}

} // namespace fault_search
