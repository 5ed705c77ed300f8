// The notifications of the process to the module.
#include "module/extension_module.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH) {
        karv::module_instance = instance;
        karv::extension_module.Attach(instance);
    } else if (reason == DLL_PROCESS_DETACH) {
        karv::extension_module.Detach();
    }
    // Outside the framework's chain the module serves all the same, so that nothing here refuses the load.
    return TRUE;
}
