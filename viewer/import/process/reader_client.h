// The side of the viewer: it has a file parsed by a process of its own, under limits, and takes from it a
// whole model or none.
#pragma once

#include "viewer/import/process/import_options.h"
#include "viewer/output/progress_line.h"
#include "viewer/scene/model.h"

#include <chrono>
#include <cstddef>
#include <string>

namespace viewer
{

/// Half of the machine's memory, but at least a GiB, in bytes.
[[nodiscard]] std::size_t DefaultReaderMemory();

/// What reading one file may cost.
struct ReaderLimits {
    std::chrono::milliseconds wall = std::chrono::minutes(10);
    std::chrono::seconds processor = std::chrono::minutes(10);
    /// In bytes: of address space, and of memory that is really there, which is looked at now and then; also
    /// the longest stream.
    std::size_t memory = DefaultReaderMemory();
};

struct Reader {
    /// The program that parses: one whose main function calls `RunAsReader` first. By default this one, even
    /// where its file has been replaced since.
    std::string program = "/proc/self/exe";
    ReaderLimits limits;
};

/// Reads a file of any kind (`ReadModelFile`) in a process of its own, which has ended when this returns or
/// throws.
///
/// Throws FileError, "FILE: reason" in one line, where `ReadModelFile` does, where the reader cannot be
/// started, crashes, exceeds a limit or sends what is no model, and where the user stops it (SIGINT, SIGTERM,
/// SIGHUP, which then do not end this process); with how far it came, if it had said so. What `progress`
/// throws passes through. One thread at a time.
[[nodiscard]] Model ImportModel(const std::string& path, const ImportOptions& options,
                                const ProgressFunction& progress = {}, const Reader& reader = {});

} // namespace viewer
