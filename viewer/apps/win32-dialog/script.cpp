#include "viewer/apps/win32-dialog/script.h"

#include "platform/tools/utf8.h"
#include "viewer/apps/win32-dialog/script_user.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace win32_dialog
{

namespace
{

enum class Text { None, Word, Rest };

/// The arguments of a verb: a text, then a number of integers within limits.
struct Grammar {
    std::string_view verb;
    Text text;
    std::size_t numbers;
    int min;
    int max;
};

constexpr int kMaxSide = 8192;
constexpr std::array kGrammar = {
    Grammar{"press", Text::Rest, 0, 0, 0},         Grammar{"opacity", Text::None, 1, 0, 100},
    Grammar{"background", Text::None, 3, 0, 255},  Grammar{"open", Text::Rest, 0, 0, 0},
    Grammar{"drag", Text::Word, 4, 0, kMaxSide},   Grammar{"wheel", Text::None, 1, -100, 100},
    Grammar{"resize", Text::None, 2, 1, kMaxSide}, Grammar{"picture", Text::Rest, 0, 0, 0},
};

constexpr std::string_view kBlanks = " \t\r";

/// Removes the next word from the line and returns it.
std::string_view TakeWord(std::string_view& line)
{
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(kBlanks));
    line.remove_prefix(word.size());
    return word;
}

int ToNumber(std::string_view word, const Grammar& grammar)
{
    int number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (word.empty() || error != std::errc() || end != word.data() + word.size() || number < grammar.min ||
        number > grammar.max)
        throw std::runtime_error("\"" + std::string(word) + "\" is no number from " +
                                 std::to_string(grammar.min) + " to " + std::to_string(grammar.max));
    return number;
}

ScriptCommand ParseCommand(std::string_view line)
{
    const std::string_view verb = TakeWord(line);
    const auto grammar = std::find_if(kGrammar.begin(), kGrammar.end(),
                                      [&](const Grammar& entry) { return entry.verb == verb; });
    if (grammar == kGrammar.end())
        throw std::runtime_error("\"" + std::string(verb) + "\" is no command");
    ScriptCommand command;
    command.verb = verb;
    if (grammar->text == Text::Word)
        command.text = WideFromUtf8(TakeWord(line));
    if (grammar->text == Text::Rest)
        command.text = WideFromUtf8(viewer::Trimmed(std::exchange(line, {})));
    if (grammar->text != Text::None && command.text.empty())
        throw std::runtime_error("\"" + command.verb + "\" needs more than that");
    for (std::size_t i = 0; i < grammar->numbers; ++i)
        command.numbers.push_back(ToNumber(TakeWord(line), *grammar));
    if (!viewer::Trimmed(line).empty())
        throw std::runtime_error("\"" + std::string(viewer::Trimmed(line)) + "\" is too much");
    return command;
}

std::runtime_error AtLine(const std::filesystem::path& file, int line, const std::string& reason)
{
    return std::runtime_error(Utf8FromWide(file.wstring()) + ":" + std::to_string(line) + ": " + reason);
}

} // namespace

std::vector<ScriptCommand> ReadScript(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw viewer::FileError(Utf8FromWide(file.wstring()), "cannot be opened");
    std::vector<ScriptCommand> commands;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const std::string_view text = viewer::Trimmed(line);
        if (text.empty() || text.front() == '#')
            continue;
        try {
            commands.push_back(ParseCommand(text));
        } catch (const std::runtime_error& error) {
            throw AtLine(file, number, error.what());
        }
        commands.back().line = number;
    }
    if (in.bad())
        throw viewer::FileError(Utf8FromWide(file.wstring()), "cannot be read");
    return commands;
}

void PlayScript(const std::filesystem::path& file, const std::vector<ScriptCommand>& commands,
                ViewerDialog& dialog)
{
    for (const ScriptCommand& command : commands)
        try {
            ScriptUser(dialog).Do(command);
        } catch (const std::runtime_error& error) {
            throw AtLine(file, command.line, error.what());
        }
}

} // namespace win32_dialog
