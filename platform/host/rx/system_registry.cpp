#include "platform/host/rx/system_registry.h"

#include "platform/host/rx/module_loader.h"

#include <memory>
#include <utility>

AcRxSystemRegistry::~AcRxSystemRegistry() = default;

AcRxObject* AcRxSystemRegistry::at(std::wstring_view name) const noexcept
{
    const auto found = objects_.find(name);
    return found != objects_.end() ? found->second : nullptr;
}

AcRxObject* AcRxSystemRegistry::put(std::wstring_view name, AcRxObject* object)
{
    const auto found = objects_.find(name);
    if (found == objects_.end()) {
        if (object != nullptr)
            objects_.emplace(name, object);
        return nullptr;
    }
    AcRxObject* const before = found->second;
    if (object != nullptr)
        found->second = object;
    else
        objects_.erase(found);
    return before;
}

AcRxSystemRegistry* acrxSysRegistry()
{
    // Never destroyed: modules that are unloaded at the end of the process may still look up a name.
    static AcRxSystemRegistry* const registry = [] {
        auto made = std::make_unique<AcRxSystemRegistry>();
        made->put(kDynamicLinkerKey, &host::ProcessModuleLoader());
        return made.release();
    }();
    return registry;
}
