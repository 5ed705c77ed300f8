// A command of a script, as its line says it.
#pragma once

#include <string>
#include <vector>

namespace win32_dialog
{

/// A line of a script.
struct ScriptCommand {
    int line = 0; ///< from 1
    std::string verb;
    std::wstring text;        ///< the caption, file or mouse button
    std::vector<int> numbers; ///< within the limits of the command
};

} // namespace win32_dialog
