// The client of karv-reader, which parses a model file in a process of its own, under limits. The client gets
// a complete model or an error.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/process/reader_limits.h"
#include "viewer/import/process/reader_location.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <functional>
#include <string>

namespace viewer
{

/// How karv-reader is run.
struct ReaderSettings {
    /// The path of the program.
    std::string program = ReaderBesideThisCode();
    ReaderLimits limits;
    /// Called once the reader works on the file, for work that can be done meanwhile; the time of it counts
    /// for the limits. Its exceptions pass through.
    std::function<void()> meanwhile = {};
};

/// Reads a file of any kind that `ReadModelFile` reads, in a process of its own. That process has ended when
/// this returns or throws, and so have those that it started, unless they left its process group. Blocks
/// until then; `progress` is called by the calling thread. The process inherits no open file but the standard
/// error stream, and few variables of the environment (`ReaderEnvironment`).
///
/// A reader that crashes before its whole model has arrived is started once more, with `ImportOptions::safe`.
/// Progress then starts over; the limit of elapsed time holds for both attempts together. A crash after the
/// whole model has arrived has no effect.
///
/// Throws FileError, "FILE: reason" in one line, if `ReadModelFile` does, and if the reader cannot be
/// started, crashes twice, exceeds a limit, sends a damaged stream, or is stopped by SIGINT, SIGTERM or SIGHUP to
/// the calling process, which then do not end that process. The reason states the last progress that the
/// reader reported. If the reader cannot be started, the reason names its path. Exceptions of `progress` pass
/// through.
///
/// On Windows no importer is built, and every call throws FileError with that reason. Not thread-safe: one
/// call at a time in a process.
[[nodiscard]] Model ImportModel(const std::string& path, const ImportOptions& options,
                                const ProgressFunction& progress = {}, const ReaderSettings& reader = {});

} // namespace viewer
