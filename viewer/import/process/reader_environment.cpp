#include "viewer/import/process/reader_environment.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace viewer
{

namespace
{

/// The names of the variables. The importers and their libraries need none: they neither set a locale nor
/// start programs nor write files.
constexpr std::array kNames = {
    // The dynamic linker finds libraries in other folders by it.
    std::string_view("LD_LIBRARY_PATH"),
#if defined(__SANITIZE_ADDRESS__)
    // Options of the sanitizers.
    std::string_view("ASAN_OPTIONS"),
    std::string_view("LSAN_OPTIONS"),
    std::string_view("UBSAN_OPTIONS"),
#endif
};

} // namespace

std::vector<std::string> ReaderEnvironment(const char* const* environment)
{
    std::vector<std::string> passed;
    for (; *environment != nullptr; ++environment) {
        const std::string_view variable = *environment;
        const std::string_view name = variable.substr(0, variable.find('='));
        if (std::ranges::find(kNames, name) != kNames.end())
            passed.emplace_back(variable);
    }
    return passed;
}

} // namespace viewer
