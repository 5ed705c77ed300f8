// The host's system registry: a dictionary of the host's services, which modules look up by name.
#pragma once

#include "platform/host/rx/object.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

/// Objects by name. Comparison of names is case-sensitive. The registry does not own the objects: who puts
/// one in must take it out before destroying it.
class KARV_PLATFORM_API AcRxSystemRegistry
{
  public:
    AcRxSystemRegistry() = default;
    AcRxSystemRegistry(const AcRxSystemRegistry&) = delete;
    AcRxSystemRegistry& operator=(const AcRxSystemRegistry&) = delete;
    ~AcRxSystemRegistry();

    /// The object with that name; null where there is none.
    [[nodiscard]] AcRxObject* at(std::wstring_view name) const noexcept;
    /// Sets the object of a name and returns the one before it, null for none. A null object removes the
    /// name.
    AcRxObject* put(std::wstring_view name, AcRxObject* object);
    /// The number of names.
    [[nodiscard]] std::size_t size() const noexcept { return objects_.size(); }

  private:
    std::map<std::wstring, AcRxObject*, std::less<>> objects_;
};

/// The process's registry, never null. From the first call on it holds the process's dynamic linker. It is
/// never destroyed. For the host's user-interface thread.
[[nodiscard]] KARV_PLATFORM_API AcRxSystemRegistry* acrxSysRegistry();
