// A module that tells no release of the host.
#include "platform/export.h"
#include "platform/host/rx/entry_points.h"

extern "C" KARV_EXPORT host::Answer acrxEntryPoint(host::Message /*message*/, void* /*application*/)
{
    return host::Answer::Ok;
}
