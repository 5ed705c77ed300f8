// A library that tells a release of the host and has no entry point.
#include "platform/host/rx/entry_points.h"
#include "platform/winsys/export.h"

// One that nobody outside can see does not count.
extern "C" __attribute__((visibility("hidden"))) host::Answer acrxEntryPoint(host::Message /*message*/,
                                                                             void* /*application*/)
{
    return host::Answer::Ok;
}
