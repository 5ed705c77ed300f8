// The host's dynamic linker, as application modules see it: the object that they tell what the host may do
// with them. How modules are loaded is the host's own business (module_loader.h).
#pragma once

#include "platform/host/rx/object.h"

/// The dynamic linker. Modules find it in the system registry under kDynamicLinkerKey.
class KARV_PLATFORM_API AcRxDynamicLinker : public AcRxObject
{
  public:
    [[nodiscard]] static AcRxClass* desc();
    /// The object as a dynamic linker; null where it is null or of another class.
    [[nodiscard]] static AcRxDynamicLinker* cast(AcRxObject* object);
    [[nodiscard]] AcRxClass* isA() const override;

    /// Tells that the host may unload the application; without it, it stays until the process ends. False
    /// where no such application is loaded.
    virtual bool allowUnload(void* application) = 0;
    /// Tells that the application serves a host with any number of documents open. False where no such
    /// application is loaded.
    virtual bool allowManyDocuments(void* application) = 0;
};

inline constexpr const wchar_t* kDynamicLinkerKey = L"DynamicLinker";
