// A program that has the module in its chain, in one of several ways, and ends. It writes a line for each
// step, including those after main.
//
//   process_end_program           ends at once
//   process_end_program load      loads the module first
//   process_end_program unload    loads and unloads the module first
//   process_end_program unload    loads and unloads the module first
#include "platform/host/rx/module_loader.h"
#include "tests/module/process_end_steps.h"

#include <exception>
#include <string>

using karv_test::WriteStep;

namespace
{

std::string ChainLengthText()
{
    return std::to_string(karv_test::ChainLength());
}

} // namespace

int main(int argc, char** argv)
{
    try {
        const std::string order = argc > 1 ? argv[1] : "";
        WriteStep("main begins with " + ChainLengthText());
        karv_test::WatchModule();
        if (!order.empty()) {
            void* const application = host::ProcessModuleLoader().Load(KARV_MODULE_FILE);
            karv_test::WatchModule();
            if (order == "unload")
                host::ProcessModuleLoader().Unload(application);
        }
        WriteStep("main ends with " + ChainLengthText());
        return 0;
    } catch (const std::exception& error) {
        WriteStep(error.what());
        return 1;
    }
}
