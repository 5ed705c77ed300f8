#include "module/extension_module.h"

namespace karv
{

// Initialized at compile time, because the attach notification arrives while static objects are constructed.
constinit ExtensionModule extension_module;
constinit HINSTANCE module_instance = nullptr;

ExtensionModule::~ExtensionModule()
{
    Detach();
}

void ExtensionModule::Attach(HINSTANCE instance)
{
    if (attached != 0 || AfxInitExtensionModule(state, instance) == FALSE)
        return;
    default_resources = AfxGetResourceHandle();
    module_resources = instance;
    attached = 1;
    try {
        // Owned by the framework, which frees it when the module leaves the chain.
        new CDynLinkLibrary(state, FALSE);
    } catch (...) {
        // Memory is short. The module works outside the chain; an exception out of the attach notification would
        // end the process.
    }
}

void ExtensionModule::Detach()
{
    if (attached == 0)
        return;
    AfxTermExtensionModule(state, FALSE);
    attached = 0;
}

} // namespace karv
