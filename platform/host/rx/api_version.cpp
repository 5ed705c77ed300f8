// Compiled into every module and not into the host's libraries, so that a module reports the release that
// it was built for and not the release that it runs in.
#include "platform/export.h"
#include "platform/host/rx/entry_points.h"

extern "C" KARV_EXPORT int acrxGetApiVersion()
{
    return host::kApiVersion;
}
