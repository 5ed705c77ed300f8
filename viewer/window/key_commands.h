// The keys of a window with a model in it: one table, which carries them out and explains them.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace viewer
{

class InteractiveWindow;

struct KeyCommand {
    wchar_t key;
    std::string_view meaning; ///< half a sentence
    void (*run)(InteractiveWindow& window);
};

/// Every key, in the order in which they are explained.
[[nodiscard]] std::span<const KeyCommand> KeyCommands();
/// Does what the character means, in capitals too; false where it means nothing.
bool RunKeyCommand(wchar_t character, InteractiveWindow& window);
/// One line a key.
[[nodiscard]] std::string KeyHelp();

} // namespace viewer
