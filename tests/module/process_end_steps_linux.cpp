// The program's definitions of the framework's functions pre-empt the platform's.
#include "tests/module/process_end_steps.h"

#include <dlfcn.h>
#include <unistd.h>

namespace
{

template <typename Function>
Function InPlatform(const char* mangled_name)
{
    void* const found = dlsym(RTLD_NEXT, mangled_name);
    if (found == nullptr)
        _exit(4);
    return reinterpret_cast<Function>(found);
}

} // namespace

namespace karv_test
{

void WriteStep(const std::string& line)
{
    const std::string text = line + "\n";
    if (write(STDOUT_FILENO, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        _exit(3);
}

void WatchModule() {}

} // namespace karv_test

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HINSTANCE instance) noexcept
{
    karv_test::WriteStep("init");
    return InPlatform<decltype(&AfxInitExtensionModule)>(
        "_Z22AfxInitExtensionModuleR20AFX_EXTENSION_MODULEP11HINSTANCE__")(state, instance);
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all)
{
    InPlatform<decltype(&AfxTermExtensionModule)>("_Z22AfxTermExtensionModuleR20AFX_EXTENSION_MODULEi")(state,
                                                                                                        all);
    karv_test::WriteStep(karv_test::DetachedStep(all != FALSE));
}
