// Compiled into every module rather than into the host's libraries, so that a module tells the release that
// it was built for and not the one that it runs in.
#include "platform/export.h"
#include "platform/host/rx/entry_points.h"

extern "C" KARV_EXPORT int acrxGetApiVersion()
{
    return host::kApiVersion;
}
