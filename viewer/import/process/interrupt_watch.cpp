#include "viewer/import/process/interrupt_watch.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <system_error>

#include <sys/eventfd.h>
#include <unistd.h>

namespace viewer
{

namespace
{

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// Globals, because signal handlers can reach nothing else. They belong to the one watch that exists.
volatile std::sig_atomic_t descriptor = -1;
std::array<struct sigaction, kSignals.size()> before;

extern "C" void NoteSignal(int /*signal*/)
{
    const int saved = errno;
    const std::uint64_t one = 1;
    // Writing fails only if the counter is at its maximum; the descriptor is readable then too.
    static_cast<void>(!write(descriptor, &one, sizeof one));
    errno = saved;
}

} // namespace

InterruptWatch::InterruptWatch()
{
    const int event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (event < 0)
        throw std::system_error(errno, std::generic_category(), "no descriptor for signals");
    descriptor = event;
    struct sigaction action = {};
    action.sa_handler = &NoteSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals.at(i), nullptr, &before.at(i));
        if (before.at(i).sa_handler != SIG_IGN)
            sigaction(kSignals.at(i), &action, nullptr);
    }
}

InterruptWatch::~InterruptWatch()
{
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        sigaction(kSignals.at(i), &before.at(i), nullptr);
    close(descriptor);
    descriptor = -1;
}

int InterruptWatch::Descriptor() const
{
    return descriptor;
}

} // namespace viewer
