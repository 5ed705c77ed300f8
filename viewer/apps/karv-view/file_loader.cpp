#include "viewer/apps/karv-view/file_loader.h"

#include "viewer/import/process/reader_client.h"

#include <utility>

namespace viewer
{

FileLoader::FileLoader(std::vector<std::string> paths, const ImportOptions& options)
    : paths_(std::move(paths)), options_(options), stops_(paths_.size()), thread_([this] { ReadAll(); })
{
}

FileLoader::~FileLoader()
{
    for (const std::stop_source& stop : stops_)
        stop.request_stop();
}

void FileLoader::Skip(std::size_t index)
{
    stops_.at(index).request_stop();
}

std::optional<LoadedFile> FileLoader::Take()
{
    const std::scoped_lock lock(mutex_);
    if (finished_.empty())
        return std::nullopt;
    std::optional<LoadedFile> file = std::move(finished_.front());
    finished_.pop_front();
    return file;
}

bool FileLoader::IsDone()
{
    const std::scoped_lock lock(mutex_);
    return !is_reading_ && finished_.empty();
}

FileLoader::Progress FileLoader::CurrentProgress()
{
    const std::scoped_lock lock(mutex_);
    return progress_;
}

void FileLoader::ReadAll()
{
    for (std::size_t i = 0; i < paths_.size() && ReadFile(i); ++i) {
    }
    const std::scoped_lock lock(mutex_);
    is_reading_ = false;
}

bool FileLoader::ReadFile(std::size_t index)
{
    const std::stop_token stop = stops_[index].get_token();
    if (stop.stop_requested())
        return true;
    Note({.index = index});
    LoadedFile file;
    file.index = index;
    ReaderSettings reader;
    reader.stop = stop;
    bool goes_on = true;
    try {
        const auto report = [&](double fraction) {
            Note({.index = index, .percent = static_cast<int>(100.0 * fraction)});
        };
        file.model = ImportModel(paths_[index], options_, report, reader);
    } catch (const ReadingCancelled&) {
        goes_on = stop.stop_requested();
        file.error = std::current_exception();
    } catch (...) {
        file.error = std::current_exception();
    }
    if (!stop.stop_requested()) {
        const std::scoped_lock lock(mutex_);
        finished_.push_back(std::move(file));
    }
    return goes_on;
}

void FileLoader::Note(const Progress& progress)
{
    const std::scoped_lock lock(mutex_);
    progress_ = progress;
}

} // namespace viewer
