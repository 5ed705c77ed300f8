// Handles the process notifications of the module.
#include "module/extension_module.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH) {
        karv::module_instance = instance;
        karv::extension_module.Attach(instance);
    } else if (reason == DLL_PROCESS_DETACH) {
        karv::extension_module.Detach();
    }
    // The module also works outside the framework's chain, so a failed attachment does not refuse the load.
    return TRUE;
}
