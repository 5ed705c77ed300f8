// The command line of karv-reader, which clients write and karv-reader parses. It is not meant for users.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/process/reader_limits.h"

#include <optional>
#include <string>
#include <vector>

namespace viewer
{

struct ReaderArguments {
    int parent = 0;                   ///< the id of the client's process, which starts the reader
    std::chrono::seconds processor{}; ///< limit of processor time
    std::size_t memory = 0;           ///< limit of address space in bytes
    ImportOptions options;
    std::string path; ///< of the model file
};

/// The command line without the program's name.
[[nodiscard]] std::vector<std::string> WriteReaderArguments(const ReaderArguments& arguments);
/// Parses a command line that `WriteReaderArguments` wrote; no value for any other. `argv` begins with the
/// program's name.
[[nodiscard]] std::optional<ReaderArguments> ParseReaderArguments(int argc, const char* const* argv);

} // namespace viewer
