// A program that has the module in its chain, in one of several ways, and ends. It writes a line for each
// step; the framework's functions stand here before the platform's, so that the steps of the very end are
// written too.
//
//   process_end_program           ends as it is
//   process_end_program load      loads the module first
//   process_end_program unload    loads and unloads the module first
#include "platform/framework/extension_module.h"
#include "platform/host/rx/module_loader.h"
#include "tests/support/extension_chain.h"

#include <dlfcn.h>
#include <unistd.h>

#include <exception>
#include <string>

namespace
{

/// Unbuffered: streams may have ended before the module does.
void Write(const std::string& line)
{
    const std::string text = line + "\n";
    if (write(STDOUT_FILENO, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        _exit(3);
}

std::string ChainLengthText()
{
    return std::to_string(karv_test::ChainLength());
}

template <typename Function>
Function InPlatform(const char* mangled_name)
{
    void* const found = dlsym(RTLD_NEXT, mangled_name);
    if (found == nullptr)
        _exit(4);
    return reinterpret_cast<Function>(found);
}

} // namespace

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HINSTANCE instance) noexcept
{
    Write("init");
    return InPlatform<decltype(&AfxInitExtensionModule)>(
        "_Z22AfxInitExtensionModuleR20AFX_EXTENSION_MODULEP11HINSTANCE__")(state, instance);
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all)
{
    InPlatform<decltype(&AfxTermExtensionModule)>("_Z22AfxTermExtensionModuleR20AFX_EXTENSION_MODULEi")(state,
                                                                                                        all);
    Write("term leaves " + ChainLengthText() + (all != FALSE ? " (all)" : ""));
}

int main(int argc, char** argv)
{
    try {
        const std::string order = argc > 1 ? argv[1] : "";
        if (!order.empty()) {
            void* const application = host::ProcessModuleLoader().Load(KARV_MODULE_FILE);
            if (order == "unload")
                host::ProcessModuleLoader().Unload(application);
        }
        Write("main ends with " + ChainLengthText());
        return 0;
    } catch (const std::exception& error) {
        Write(error.what());
        return 1;
    }
}
