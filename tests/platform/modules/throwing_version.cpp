// A module that throws when it is asked for its release.
#include "platform/export.h"
#include "platform/host/rx/entry_points.h"

#include <vector>

namespace
{

struct OwnFault {
    std::vector<int> places = {1, 2, 3};
};

} // namespace

extern "C" KARV_EXPORT host::Answer acrxEntryPoint(host::Message /*message*/, void* /*application*/)
{
    return host::Answer::Ok;
}

extern "C" KARV_EXPORT int acrxGetApiVersion()
{
    throw OwnFault();
}
