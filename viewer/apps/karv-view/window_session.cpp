#include "viewer/apps/karv-view/window_session.h"

#include "viewer/apps/karv-view/model_options.h"
#include "viewer/import/process/reader_client.h"
#include "viewer/scene/bundled_model.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"
#include "viewer/window/message_loop.h"

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

/// A window is fed again at most this often, because all of its files are fed each time.
constexpr std::chrono::seconds kBetweenFeeds{1};

std::string FileName(const std::string& path)
{
    return OneLine(std::filesystem::path(path).filename().string());
}

} // namespace

WindowSession::WindowSession(const Options& options, const ImportOptions& import, RunReport& report,
                             std::ostream& notices, std::ostream& err)
    : options_(options), report_(report), notices_(notices), err_(err), loader_(options.models, import)
{
}

void WindowSession::Run()
{
    OpenWindows();
    notices_ << "karv-view: the key ? prints the keys" << std::endl;
    PumpMessages([&] { return Step(); }, [&] { return FrameCount(); });
    for (const Shown& shown : shown_)
        report_.Count(shown.model);
    if (first_feed_)
        report_.Figures().fps =
            static_cast<double>(FrameCount() - frames_before_first_feed_) / SecondsSince(*first_feed_);
}

void WindowSession::OpenWindows()
{
    const std::size_t count = options_.windows ? std::max<std::size_t>(options_.models.size(), 1) : 1;
    for (std::size_t i = 0; i < count; ++i)
        shown_.emplace_back().window = std::make_unique<InteractiveWindow>(
            options_.size.value_or(PictureSize{}), options_.drawing, notices_, err_);
    report_.Figures().renderer = shown_.front().window->RendererName();
    if (options_.models.empty()) {
        shown_.front().model = MakeBundledModel();
        ApplyColors(options_, shown_.front().model);
        shown_.front().has_news = true;
    }
}

bool WindowSession::Step()
{
    CloseHidden();
    TakeFiles();
    FeedWindows();
    NoteFirstFrame();
    if (is_loading_ && loader_.IsDone())
        FinishLoading();
    if (is_loading_)
        ShowProgress();
    return std::ranges::all_of(shown_, [](const Shown& shown) { return shown.window == nullptr; });
}

void WindowSession::CloseHidden()
{
    for (std::size_t i = 0; i < shown_.size(); ++i)
        if (shown_[i].window != nullptr && !shown_[i].window->IsOpen()) {
            Close(i);
            was_closed_early_ = was_closed_early_ || is_loading_;
            for (std::size_t file = 0; file < options_.models.size(); ++file)
                if (&WindowOf(file) == &shown_[i])
                    loader_.Skip(file);
        }
}

void WindowSession::Close(std::size_t index)
{
    frames_of_closed_ += shown_[index].window->FrameCount();
    shown_[index].window.reset();
}

void WindowSession::TakeFiles()
{
    for (;;) {
        std::optional<LoadedFile> file = loader_.Take();
        if (!file)
            return;
        Take(std::move(*file));
    }
}

void WindowSession::Take(LoadedFile file)
{
    Shown& shown = WindowOf(file.index);
    report_.Figures().load_s = SecondsSince(load_start_);
    if (shown.window == nullptr)
        return;
    if (file.model) {
        report_.NoteFile(options_.models.at(file.index), *file.model);
        shown.model.Append(std::move(*file.model));
        ApplyColors(options_, shown.model);
        shown.has_news = true;
        return;
    }
    try {
        std::rethrow_exception(file.error);
    } catch (const ReadingCancelled&) {
        throw;
    } catch (const FileError& error) {
        report_.NoteFailure(error);
        if (options_.windows)
            Close(file.index);
    }
}

void WindowSession::FeedWindows()
{
    for (Shown& shown : shown_) {
        // The first file appears at once, and so does the second.
        const bool is_due = shown.feeds < 2 || Clock::now() - shown.last_feed >= kBetweenFeeds;
        if (shown.window != nullptr && shown.has_news && is_due)
            Feed(shown);
    }
}

void WindowSession::Feed(Shown& shown)
{
    if (!first_feed_) {
        first_feed_ = Clock::now();
        frames_before_first_feed_ = FrameCount();
    }
    if (shown.feeds == 0)
        shown.frames_before = shown.window->FrameCount();
    shown.window->Update(shown.model);
    shown.has_news = false;
    ++shown.feeds;
    shown.last_feed = Clock::now();
}

void WindowSession::ShowProgress()
{
    const FileLoader::Progress progress = loader_.CurrentProgress();
    for (std::size_t i = 0; i < shown_.size(); ++i)
        if (shown_[i].window != nullptr)
            shown_[i].window->ShowStatus(ProgressOf(i, progress));
}

std::string WindowSession::ProgressOf(std::size_t index, const FileLoader::Progress& progress) const
{
    const std::size_t count = options_.models.size();
    if (count == 0)
        return {};
    const std::string percent = ": " + std::to_string(progress.percent) + " %";
    if (!options_.windows)
        return "loading " + FileName(options_.models[progress.index]) +
               (count == 1
                    ? ""
                    : " (" + std::to_string(progress.index + 1) + " of " + std::to_string(count) + ")") +
               percent;
    if (index < progress.index)
        return {};
    const std::string name = FileName(options_.models[index]);
    return index == progress.index ? "loading " + name + percent : name + " waits to be loaded";
}

void WindowSession::FinishLoading()
{
    is_loading_ = false;
    std::vector<const Model*> models;
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        Shown& shown = shown_[i];
        if (shown.window != nullptr && shown.model.pieces.empty())
            Close(i);
        if (shown.window != nullptr)
            shown.window->ShowStatus({});
        if (!shown.model.pieces.empty())
            models.push_back(&shown.model);
    }
    // The files that were not read may have any categories.
    if (!models.empty() && !was_closed_early_)
        CheckHidden(options_.drawing.hidden, models);
}

unsigned long WindowSession::FrameCount() const
{
    unsigned long frames = frames_of_closed_;
    for (const Shown& shown : shown_)
        frames += shown.window != nullptr ? shown.window->FrameCount() : 0;
    return frames;
}

void WindowSession::NoteFirstFrame()
{
    if (std::ranges::any_of(shown_, [](const Shown& shown) {
            return shown.window != nullptr && shown.feeds > 0 &&
                   shown.window->FrameCount() > shown.frames_before;
        }))
        report_.NoteFirstFrame();
}

} // namespace viewer
