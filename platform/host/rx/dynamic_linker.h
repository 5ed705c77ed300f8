// The host's dynamic linker as application modules see it: they tell it what the host may do with them.
// Loading is private to the host (module_loader.h). For the host's user-interface thread.
#pragma once

#include "platform/host/rx/object.h"

/// The dynamic linker. Modules find it in the system registry under kDynamicLinkerKey.
class KARV_PLATFORM_API AcRxDynamicLinker : public AcRxObject
{
  public:
    [[nodiscard]] static AcRxClass* desc();
    /// The object as a dynamic linker; null where the object is null or of another class.
    [[nodiscard]] static AcRxDynamicLinker* cast(AcRxObject* object);
    [[nodiscard]] AcRxClass* isA() const override;

    /// Allows the host to unload the application; otherwise it stays loaded until the process ends. False
    /// where no such application is loaded.
    virtual bool allowUnload(void* application) = 0;
    /// Declares that the application works in a host with any number of open documents. False where no such
    /// application is loaded.
    virtual bool allowManyDocuments(void* application) = 0;
};

/// The name of the dynamic linker in the system registry.
inline constexpr const wchar_t* kDynamicLinkerKey = L"DynamicLinker";
