// A module that tells no release of the host.
#include "platform/host/rx/entry_points.h"
#include "platform/winsys/export.h"

extern "C" KARV_EXPORT host::Answer acrxEntryPoint(host::Message /*message*/, void* /*application*/)
{
    return host::Answer::Ok;
}
