// The client of karv-reader: has a model file parsed by a process of its own, under limits, and takes a whole
// model from it or none.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/process/reader_limits.h"
#include "viewer/import/process/reader_location.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

struct Reader {
    /// The program that parses.
    std::string program = ReaderBesideThisCode();
    ReaderLimits limits;
};

/// Reads a file of any kind (`ReadModelFile`) in a process of its own, which has ended when this returns or
/// throws. On Windows, where no importer is built, throws FileError with that reason.
///
/// Throws FileError, "FILE: reason" in one line, where `ReadModelFile` does, where the reader cannot be
/// started, crashes, exceeds a limit or sends a damaged stream, and where the user stops it (SIGINT, SIGTERM,
/// SIGHUP, which then do not end this process). The reason includes the progress that the reader reported.
/// Exceptions of `progress` pass through. One thread at a time.
[[nodiscard]] Model ImportModel(const std::string& path, const ImportOptions& options,
                                const ProgressFunction& progress = {}, const Reader& reader = {});

} // namespace viewer
