#include "viewer/import/process/process_limits.h"

#include <algorithm>
#include <new>

#include <sys/resource.h>
#include <unistd.h>

namespace viewer
{

namespace
{

/// The value, or the limit that the process already has if that is lower.
rlim_t InForce(__rlimit_resource resource, rlim_t value)
{
    rlimit limit{};
    return getrlimit(resource, &limit) == 0 ? std::min({value, limit.rlim_cur, limit.rlim_max}) : value;
}

void SetLimit(__rlimit_resource resource, rlim_t value)
{
    value = InForce(resource, value);
    const rlimit limit{value, value};
    setrlimit(resource, &limit);
}

} // namespace

std::size_t AddressSpaceInForce(std::size_t address_space)
{
    return static_cast<std::size_t>(InForce(RLIMIT_AS, static_cast<rlim_t>(address_space)));
}

void LimitProcess(std::chrono::seconds processor, std::optional<std::size_t> address_space)
{
    // Some parsers continue after std::bad_alloc with an incomplete model, which is of no use.
    std::set_new_handler([] { _exit(kOutOfMemoryStatus); });
    SetLimit(RLIMIT_CORE, 0);
    // With a hard limit equal to the soft one the signal would be SIGKILL, which does not tell the cause.
    const rlimit time{static_cast<rlim_t>(processor.count()), static_cast<rlim_t>(processor.count() + 1)};
    setrlimit(RLIMIT_CPU, &time);
    if (address_space)
        SetLimit(RLIMIT_AS, static_cast<rlim_t>(*address_space));
}

} // namespace viewer
