// The side of the process that parses: it is the program itself, started once more with arguments that only
// it knows, so that a file that crashes a parser does not crash the viewer.
#pragma once

#include "viewer/import/process/import_options.h"
#include "viewer/import/process/reader_client.h"

#include <optional>
#include <string>
#include <vector>

namespace viewer
{

/// The arguments, after the program's name, that make a program a reader; `RunAsReader` understands them.
/// `parent` is the id of the process that starts it.
[[nodiscard]] std::vector<std::string> ReaderArguments(const std::string& path, const ImportOptions& options,
                                                       const ReaderLimits& limits, int parent);

/// Where the arguments are a reader's: reads the file in this process, writes the stream of its model to the
/// standard output and ends the process. Nothing that a library prints gets anywhere. The process ends with
/// its parent, too. Where they are not: returns. To be called first in the main function of every program
/// that is to be a reader.
void RunAsReader(int argc, const char* const* argv);

} // namespace viewer
