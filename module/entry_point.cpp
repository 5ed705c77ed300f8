// The host's entry point. The module registers no commands and holds nothing that an unload would release.
#include "platform/export.h"
#include "platform/host/rx/dynamic_linker.h"
#include "platform/host/rx/entry_points.h"
#include "platform/host/rx/system_registry.h"

namespace
{

/// Returns the host's dynamic linker, which always exists. An object of another class gives null.
AcRxDynamicLinker* FindDynamicLinker()
{
    return AcRxDynamicLinker::cast(acrxSysRegistry()->at(kDynamicLinkerKey));
}

} // namespace

extern "C" KARV_EXPORT host::Answer acrxEntryPoint(host::Message message, void* application)
{
    if (message == host::Message::Initialise) {
        FindDynamicLinker()->allowUnload(application);
        // The lookup is repeated because the first call may have changed the registered linker.
        FindDynamicLinker()->allowManyDocuments(application);
    }
    return host::Answer::Ok;
}
