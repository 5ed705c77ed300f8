// Reads model files one after the other while the program does other work.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/scene/model.h"

#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace viewer
{

/// The result of reading a file: a model or an error.
struct LoadedFile {
    std::size_t index = 0; ///< of the file, in the order of the paths
    std::optional<Model> model;
    std::exception_ptr error; ///< as `ImportModel` throws it
};

/// A thread that waits for the process of each file (`ImportModel`) and hands its model over as a whole.
/// While an object exists, nothing else may call `ImportModel`.
class FileLoader
{
  public:
    struct Progress {
        std::size_t index = 0; ///< of the file that is being read
        int percent = 0;       ///< that its reader has reported
    };

    /// Starts with the first file. Throws std::system_error where no thread can be started.
    FileLoader(std::vector<std::string> paths, const ImportOptions& options);
    FileLoader(const FileLoader&) = delete;
    FileLoader& operator=(const FileLoader&) = delete;
    /// Cancels the reading, ends the process that reads, and waits for its end.
    ~FileLoader();

    /// Cancels the reading of a file that is no longer needed. `Take` may still return the file if it was
    /// finished before.
    void Skip(std::size_t index);
    /// The next finished file, in the order of the paths; no value if there is none. A signal to the process
    /// ends the reading: the file then has the error ReadingCancelled, and is the last one.
    [[nodiscard]] std::optional<LoadedFile> Take();
    /// Whether `Take` will return no further file.
    [[nodiscard]] bool IsDone();
    [[nodiscard]] Progress CurrentProgress();

  private:
    void ReadAll();
    /// Reads a file. Returns false if no further file must be read.
    bool ReadFile(std::size_t index);
    void Note(const Progress& progress);

    const std::vector<std::string> paths_;
    const ImportOptions options_;
    std::vector<std::stop_source> stops_; ///< for each file
    std::mutex mutex_;                    ///< guards the members below, except for the thread
    std::deque<LoadedFile> finished_;
    Progress progress_;
    bool is_reading_ = true;
    std::jthread thread_; ///< the last member: it uses the others
};

} // namespace viewer
