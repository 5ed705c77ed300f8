#include "tests/support/processor_state.h"

#include <windows.h>

#include <array>

namespace karv_test
{

namespace
{

PVOID handler = nullptr;

/// The registers to resume with, and whether the thread was resumed there.
struct WayOut {
    CONTEXT registers{};
    volatile bool is_taken = false;
};
thread_local WayOut* way_out = nullptr;

LONG CALLBACK Leave(EXCEPTION_POINTERS* fault)
{
    if (fault->ExceptionRecord->ExceptionCode != EXCEPTION_ACCESS_VIOLATION || way_out == nullptr)
        return EXCEPTION_CONTINUE_SEARCH;
    way_out->is_taken = true;
    *fault->ContextRecord = way_out->registers;
    return EXCEPTION_CONTINUE_EXECUTION;
}

LONG CALLBACK EndProcess(EXCEPTION_POINTERS* /*fault*/)
{
    ::TerminateProcess(::GetCurrentProcess(), kEndedByHost);
    return EXCEPTION_EXECUTE_HANDLER;
}

std::size_t MemoryInUse(HANDLE heap)
{
    std::size_t total = 0;
    PROCESS_HEAP_ENTRY entry{};
    ::HeapLock(heap);
    while (::HeapWalk(heap, &entry) != FALSE)
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
            total += entry.cbData;
    ::HeapUnlock(heap);
    return total;
}

} // namespace

ForeignFaultHandler::ForeignFaultHandler()
{
    handler = ::AddVectoredExceptionHandler(0, &Leave);
}

ForeignFaultHandler::~ForeignFaultHandler()
{
    ::RemoveVectoredExceptionHandler(handler);
}

bool ForeignFaultHandler::Run(const std::function<void()>& act)
{
    WayOut here;
    way_out = &here;
    ::RtlCaptureContext(&here.registers);
    if (!here.is_taken)
        act();
    way_out = nullptr;
    return here.is_taken;
}

void EndAtUnhandledFaults()
{
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS);
    ::SetUnhandledExceptionFilter(&EndProcess);
}

std::size_t MemoryInUse()
{
    std::array<HANDLE, 64> heaps{};
    const DWORD count = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    std::size_t total = 0;
    for (DWORD i = 0; i < count && i < heaps.size(); ++i)
        total += MemoryInUse(heaps.at(i));
    return total;
}

} // namespace karv_test
