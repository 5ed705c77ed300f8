// Runs another program to its end.
#pragma once

#include <string>

namespace karv_test
{

/// The standard output of the program, run with one argument, which may be empty. Line breaks are single
/// characters. A status other than 0 is appended. "cannot be started" if the program cannot be started.
[[nodiscard]] std::string OutputOf(const std::string& program, const std::string& argument);

} // namespace karv_test
