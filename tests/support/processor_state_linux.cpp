#include "tests/support/processor_state.h"

#include <array>
#include <csetjmp>
#include <csignal>

#include <malloc.h>
#include <unistd.h>

namespace karv_test
{

namespace
{

thread_local sigjmp_buf* way_out = nullptr;
struct sigaction before;

void Leave(int number, siginfo_t* signal, void* thread)
{
    if (way_out != nullptr)
        siglongjmp(*way_out, 1);
    if ((before.sa_flags & SA_SIGINFO) != 0)
        before.sa_sigaction(number, signal, thread);
    else
        ::_exit(1);
}

void EndProcess(int /*number*/)
{
    ::_exit(kEndedByHost);
}

} // namespace

ForeignFaultHandler::ForeignFaultHandler()
{
    struct sigaction action {
    };
    action.sa_sigaction = &Leave;
    action.sa_flags = SA_SIGINFO;
    ::sigaction(SIGSEGV, &action, &before);
}

ForeignFaultHandler::~ForeignFaultHandler()
{
    ::sigaction(SIGSEGV, &before, nullptr);
}

bool ForeignFaultHandler::Run(const std::function<void()>& act)
{
    sigjmp_buf here;
    if (sigsetjmp(here, 1) != 0) {
        way_out = nullptr;
        return true;
    }
    way_out = &here;
    act();
    way_out = nullptr;
    return false;
}

void EndAtUnhandledFaults()
{
    static std::array<char, 65536> stack;
    stack_t alternative{};
    alternative.ss_sp = stack.data();
    alternative.ss_size = stack.size();
    ::sigaltstack(&alternative, nullptr);
    struct sigaction action {
    };
    action.sa_handler = &EndProcess;
    action.sa_flags = SA_ONSTACK;
    ::sigaction(SIGSEGV, &action, nullptr);
}

std::size_t MemoryInUse()
{
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace karv_test
