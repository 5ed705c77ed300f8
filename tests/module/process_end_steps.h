// How a program writes the module's steps until the process ends. The implementations differ by system.
#pragma once

#include "tests/support/extension_chain.h"

#include <string>

namespace karv_test
{

/// Writes a line, unbuffered, because streams may be gone before the module is. Ends the program if it cannot
/// be written.
void WriteStep(const std::string& line);

/// Makes sure that the module's detachment will be written, on systems where the loaded module must be
/// patched for that.
void WatchModule();

/// The line written at the detachment.
[[nodiscard]] inline std::string DetachedStep(bool all)
{
    return "term leaves " + std::to_string(ChainLength()) + (all ? " (all)" : "");
}

} // namespace karv_test
