// The client of karv-reader, which parses a model file in a process of its own, under limits. The client gets
// a complete model or an error.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/process/reader_limits.h"
#include "viewer/import/process/reader_location.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"
#include "viewer/text/file_error.h"

#include <functional>
#include <stop_token>
#include <string>

namespace viewer
{

/// Settings for a run of karv-reader.
struct ReaderSettings {
    /// The path of the program.
    std::string program = ReaderBesideThisCode();
    ReaderLimits limits;
    /// Called each time after the reader was started, for work that can be done in parallel. Its time counts
    /// towards the limits. Its exceptions pass through.
    std::function<void()> meanwhile = {};
    /// Cancels the reading, from any thread. It takes effect within about 20 ms.
    std::stop_token stop = {};
};

/// The reading of a file was cancelled. The file may be valid.
class ReadingCancelled : public FileError
{
  public:
    using FileError::FileError;
};

/// Reads a file of any kind that `ReadModelFile` reads, in a separate process. The call blocks until that
/// process has ended, also if it throws. Processes that the reader started have ended then, too, unless they
/// left its process group. `progress` is called by the calling thread. The reader inherits no open file
/// except for the standard error stream, and few variables of the environment (`ReaderEnvironment`).
///
/// A reader that crashes before its whole model has arrived is started once more, with `ImportOptions::safe`.
/// Progress then starts over; the limit of elapsed time applies to both attempts together. A crash after the
/// whole model has arrived has no effect.
///
/// Throws FileError, "FILE: reason" in one line, if `ReadModelFile` does, and if the reader cannot be
/// started, crashes twice, exceeds a limit, or sends a damaged stream. Throws ReadingCancelled when
/// `ReaderSettings::stop` is requested, and at SIGINT, SIGTERM or SIGHUP to the calling process; these
/// signals do not end the calling process then. The reason states the last progress that the reader reported.
/// If the reader cannot be started, the reason names its path. Exceptions of `progress` pass through.
///
/// On Windows no importer is built, and every call throws FileError with that reason. Not thread-safe: one
/// call at a time in a process, on any thread, which lives at least as long as the call.
[[nodiscard]] Model ImportModel(const std::string& path, const ImportOptions& options,
                                const ProgressFunction& progress = {}, const ReaderSettings& reader = {});

} // namespace viewer
