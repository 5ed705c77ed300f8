#include "viewer/import/process/process_limits.h"

#include <new>

#include <sys/resource.h>
#include <unistd.h>

namespace viewer
{

namespace
{

void SetLimit(__rlimit_resource resource, rlim_t value)
{
    rlimit limit{};
    // What is lower already stays.
    if (getrlimit(resource, &limit) == 0 && limit.rlim_max < value)
        value = limit.rlim_max;
    limit.rlim_cur = value;
    limit.rlim_max = value;
    setrlimit(resource, &limit);
}

} // namespace

void LimitProcess(std::chrono::seconds processor, std::optional<std::size_t> address_space)
{
    // Parsers that run out of memory are known to go on with what they have; nothing of it would be of use.
    std::set_new_handler([] { _exit(kOutOfMemoryStatus); });
    SetLimit(RLIMIT_CORE, 0);
    // A hard limit equal to the soft one would be a SIGKILL, which says nothing of its cause.
    const rlimit time{static_cast<rlim_t>(processor.count()), static_cast<rlim_t>(processor.count() + 1)};
    setrlimit(RLIMIT_CPU, &time);
    if (address_space)
        SetLimit(RLIMIT_AS, static_cast<rlim_t>(*address_space));
}

} // namespace viewer
