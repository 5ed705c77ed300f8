// Attaches the module to the host's window framework when the process begins to use the module, and detaches
// it when that ends. Nothing else in the module depends on it.
#pragma once

#include "platform/framework/extension_module.h"

#include <cstdint>

namespace karv
{

/// The module's attachment to the framework. All fields are zero until it is attached.
struct ExtensionModule {
    std::int32_t attached = 0;
    HINSTANCE default_resources = nullptr; ///< the framework's default resources when it was attached
    HINSTANCE module_resources = nullptr;  ///< the module itself
    AFX_EXTENSION_MODULE state;

    constexpr ExtensionModule() = default;
    ExtensionModule(const ExtensionModule&) = delete;
    ExtensionModule& operator=(const ExtensionModule&) = delete;
    /// Detaches if still attached: a process may end without notifying the module.
    ~ExtensionModule();

    /// Joins the framework's chain. Does nothing if attached; stays detached if the framework refuses. Without
    /// memory for an entry it is attached outside the chain.
    void Attach(HINSTANCE instance);
    /// Leaves the chain and clears the flag. Does nothing if not attached.
    void Detach();
};

/// The attachment of this process.
extern ExtensionModule extension_module;
/// The module's handle from the attach notification.
extern HINSTANCE module_instance;

} // namespace karv
