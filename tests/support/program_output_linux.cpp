#include "tests/support/program_output.h"

#include <array>
#include <cstdio>

namespace karv_test
{

std::string OutputOf(const std::string& program, const std::string& argument)
{
    const std::string command = "'" + program + "' " + argument;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return "cannot be started";
    std::string text;
    std::array<char, 4096> part{};
    while (fgets(part.data(), part.size(), pipe) != nullptr)
        text += part.data();
    const int status = pclose(pipe);
    return status == 0 ? text : text + "status " + std::to_string(status);
}

} // namespace karv_test
