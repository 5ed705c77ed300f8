// Calls a module's DllMain where the system's loader does not: compiled into each module, it tells when the
// process begins to use the module and when it ends, whether the process was linked to the module or loads it
// at run time. It knows nothing of what the module does then.
//
// Has to be the last source of its module: static objects of the sources before it are built before the
// attach notification and destroyed after the detach one. The loader cannot be told that an attachment was
// refused, and nobody tells of threads. The reserved argument is null.
#include "platform/winsys/winsys.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

/// NOTE: the linker defines it, as the place where it is loaded, in every library and program for itself.
extern "C" __attribute__((visibility("hidden"))) const char __ehdr_start;

namespace
{

/// A static object, because its destructor runs both when the module is unloaded and when the process ends.
class ProcessNotifications
{
  public:
    ProcessNotifications() { DllMain(ThisModule(), DLL_PROCESS_ATTACH, nullptr); }
    ProcessNotifications(const ProcessNotifications&) = delete;
    ProcessNotifications& operator=(const ProcessNotifications&) = delete;
    ~ProcessNotifications() { DllMain(ThisModule(), DLL_PROCESS_DETACH, nullptr); }

  private:
    /// A module's handle is the address that it is loaded at.
    static HINSTANCE ThisModule() { return reinterpret_cast<HINSTANCE>(const_cast<char*>(&__ehdr_start)); }
};

const ProcessNotifications notifications;

} // namespace
