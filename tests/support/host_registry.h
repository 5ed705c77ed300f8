// Puts the host's registry into a known state for a test.
#pragma once

#include "platform/host/rx/dynamic_linker.h"
#include "platform/host/rx/system_registry.h"

namespace karv_test
{

/// Replaces the process's dynamic linker in the registry during its life; null removes it.
class ScopedDynamicLinker
{
  public:
    explicit ScopedDynamicLinker(AcRxObject* object)
        : before_(acrxSysRegistry()->put(kDynamicLinkerKey, object))
    {
    }
    ScopedDynamicLinker(const ScopedDynamicLinker&) = delete;
    ScopedDynamicLinker& operator=(const ScopedDynamicLinker&) = delete;
    ~ScopedDynamicLinker() { acrxSysRegistry()->put(kDynamicLinkerKey, before_); }

  private:
    AcRxObject* before_;
};

} // namespace karv_test
