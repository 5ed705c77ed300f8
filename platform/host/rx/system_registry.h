// The host's system registry: a dictionary in which the host keeps its services for modules to find by name.
// It knows nothing of what the services do.
#pragma once

#include "platform/host/rx/object.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

/// Objects by name. Names are compared as they are, capitals too. Objects belong to whoever put them in, who
/// must take them out before they end.
class KARV_PLATFORM_API AcRxSystemRegistry
{
  public:
    AcRxSystemRegistry() = default;
    AcRxSystemRegistry(const AcRxSystemRegistry&) = delete;
    AcRxSystemRegistry& operator=(const AcRxSystemRegistry&) = delete;
    ~AcRxSystemRegistry();

    /// The object of that name; null where there is none.
    [[nodiscard]] AcRxObject* at(std::wstring_view name) const noexcept;
    /// Puts an object in place of the one that had the name, which is returned (null for none). A null object
    /// takes the name out.
    AcRxObject* put(std::wstring_view name, AcRxObject* object);
    /// The number of names.
    [[nodiscard]] std::size_t size() const noexcept { return objects_.size(); }

  private:
    std::map<std::wstring, AcRxObject*, std::less<>> objects_;
};

/// The process's registry; never null. It holds the process's dynamic linker from the first call on and ends
/// with the process. For the host's user-interface thread.
[[nodiscard]] KARV_PLATFORM_API AcRxSystemRegistry* acrxSysRegistry();
