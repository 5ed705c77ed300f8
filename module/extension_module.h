// The module's place in the host's window framework: attached once when the process begins to use the module,
// detached once when it ends. Nothing else of the module depends on it.
#pragma once

#include "platform/framework/extension_module.h"

#include <cstdint>

namespace karv
{

/// The record of the module's attachment. Its fields are zero until then.
struct ExtensionModule {
    std::int32_t attached = 0;
    HINSTANCE default_resources = nullptr; ///< the framework's default resources at the time of attachment
    HINSTANCE module_resources = nullptr;  ///< the module itself
    AFX_EXTENSION_MODULE state;

    constexpr ExtensionModule() = default;
    ExtensionModule(const ExtensionModule&) = delete;
    ExtensionModule& operator=(const ExtensionModule&) = delete;
    /// Detaches, unless that was done: not every end of a process notifies the module.
    ~ExtensionModule();

    /// Joins the framework's chain; does nothing when attached, and stays detached where the framework
    /// refuses.
    void Attach(HINSTANCE instance);
    /// Leaves the chain and clears the flag; does nothing when not attached.
    void Detach();
};

/// The one of this process, and the module's handle as the attach notification gave it.
extern ExtensionModule extension_module;
extern HINSTANCE module_instance;

} // namespace karv
