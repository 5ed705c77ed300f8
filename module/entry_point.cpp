// The host's entry point. The module registers no commands and holds nothing that an unload would release.
#include "platform/host/rx/dynamic_linker.h"
#include "platform/host/rx/entry_points.h"
#include "platform/host/rx/system_registry.h"

namespace
{

/// The host always has one; what is no dynamic linker is null.
AcRxDynamicLinker* FindDynamicLinker()
{
    return AcRxDynamicLinker::cast(acrxSysRegistry()->at(kDynamicLinkerKey));
}

} // namespace

extern "C" KARV_EXPORT host::Answer acrxEntryPoint(host::Message message, void* application)
{
    if (message == host::Message::Initialise) {
        FindDynamicLinker()->allowUnload(application);
        // The first registration may have changed who is registered.
        FindDynamicLinker()->allowManyDocuments(application);
    }
    return host::Answer::Ok;
}
