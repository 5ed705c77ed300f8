// The command line of karv-reader, which its clients write and it reads. It has no form that is meant for people.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/process/reader_limits.h"

#include <optional>
#include <string>
#include <vector>

namespace viewer
{

struct ReaderArguments {
    int parent = 0; ///< the id of the process that starts the reader
    std::chrono::seconds processor{};
    std::size_t memory = 0; ///< in bytes
    ImportOptions options;
    std::string path;
};

/// The arguments after the program's name.
[[nodiscard]] std::vector<std::string> WriteReaderArguments(const ReaderArguments& arguments);
/// What `WriteReaderArguments` wrote; nothing for any other command line. `argv` begins with the program's name.
[[nodiscard]] std::optional<ReaderArguments> ParseReaderArguments(int argc, const char* const* argv);

} // namespace viewer
