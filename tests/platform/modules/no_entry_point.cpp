// A library that tells a release of the host and has no entry point.
#include "platform/export.h"
#include "platform/host/rx/entry_points.h"

// One that is not exported does not count: what is not marked for it stays inside.
extern "C" host::Answer acrxEntryPoint(host::Message /*message*/, void* /*application*/)
{
    return host::Answer::Ok;
}
