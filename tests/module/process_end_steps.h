// How a program writes what happens to the module in it, to the very end. What differs between the systems.
#pragma once

#include "tests/support/extension_chain.h"

#include <string>

namespace karv_test
{

/// Writes a line, unbuffered: streams may have ended before the module does. Ends the program where it
/// cannot.
void WriteStep(const std::string& line);

/// Makes sure that the module's detachment will be written, where that takes the loaded module.
void WatchModule();

/// The line of the detachment.
[[nodiscard]] inline std::string DetachedStep(bool all)
{
    return "term leaves " + std::to_string(ChainLength()) + (all ? " (all)" : "");
}

} // namespace karv_test
