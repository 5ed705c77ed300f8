// Another program, run to its end.
#pragma once

#include <string>

namespace karv_test
{

/// What a run of the program with one argument, which may be empty, writes to its standard output, with
/// single line breaks; and after it its status where that is not 0. "cannot be started" where it cannot be.
[[nodiscard]] std::string OutputOf(const std::string& program, const std::string& argument);

} // namespace karv_test
