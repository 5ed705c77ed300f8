// The environment of karv-reader.
#pragma once

#include <string>
#include <vector>

namespace viewer
{

/// The variables of `environment` that karv-reader needs, as "NAME=value". The others are not passed to a
/// process that parses files of unknown origin: they can hold secrets of the user. `environment` ends with a
/// null.
[[nodiscard]] std::vector<std::string> ReaderEnvironment(const char* const* environment);

} // namespace viewer
