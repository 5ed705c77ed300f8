// Calls a module's DllMain on systems whose loader does not. Compiled into each module: it reports when the
// process starts to use the module and when it stops, whether the process was linked to the module or loads
// it at run time.
//
// It has to be the last source of its module: static objects of the sources before it are constructed before
// the attach notification and destroyed after the detach notification. The loader cannot be told that an
// attachment was refused, and there are no notifications for threads. The reserved argument is null.
#include "platform/winsys/winsys.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

/// NOTE: defined by the linker in every library and program, at its load address.
extern "C" __attribute__((visibility("hidden"))) const char __ehdr_start;

namespace
{

/// A static object: its destructor runs both when the module is unloaded and when the process ends.
class ProcessNotifications
{
  public:
    ProcessNotifications() { DllMain(ThisModule(), DLL_PROCESS_ATTACH, nullptr); }
    ProcessNotifications(const ProcessNotifications&) = delete;
    ProcessNotifications& operator=(const ProcessNotifications&) = delete;
    ~ProcessNotifications() { DllMain(ThisModule(), DLL_PROCESS_DETACH, nullptr); }

  private:
    /// A module's handle is its load address.
    static HINSTANCE ThisModule() { return reinterpret_cast<HINSTANCE>(const_cast<char*>(&__ehdr_start)); }
};

const ProcessNotifications notifications;

} // namespace
