// The windows of a run: they are on the screen while the files load, and show each file once it has been
// read.
#pragma once

#include "viewer/apps/karv-view/file_loader.h"
#include "viewer/apps/karv-view/options.h"
#include "viewer/apps/karv-view/run_report.h"
#include "viewer/window/interactive_window.h"

#include <chrono>
#include <deque>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

namespace viewer
{

class WindowSession
{
  public:
    /// All arguments must outlive the object. `notices` gets messages to the user, `err` errors of the
    /// windows.
    WindowSession(const Options& options, const ImportOptions& import, RunReport& report,
                  std::ostream& notices, std::ostream& err);

    /// Shows the windows until the user has closed the last one or quits; files that are not read yet are
    /// cancelled then. A file that cannot be read is reported, and with --windows its window is closed.
    /// Returns early if no file can be read. Throws ReadingCancelled, and std::runtime_error as `CheckHidden`
    /// and windows do.
    void Run();

  private:
    using Clock = std::chrono::steady_clock;

    /// A window and the model in it.
    struct Shown {
        std::unique_ptr<InteractiveWindow> window; ///< null once it is closed
        Model model;                               ///< of all files of the window that have been read
        bool has_news = false;                     ///< the window does not show the whole model yet
        int feeds = 0;                             ///< how often the window was fed
        Clock::time_point last_feed;
        unsigned long frames_before = 0; ///< frames of the window before the first feed
    };

    void OpenWindows();
    /// One step of the session, between two messages. Returns whether no window is open any more.
    bool Step();
    void CloseHidden();
    void Close(std::size_t index);
    void TakeFiles();
    void Take(LoadedFile file);
    void FeedWindows();
    void Feed(Shown& shown);
    void ShowProgress();
    [[nodiscard]] std::string ProgressOf(std::size_t index, const FileLoader::Progress& progress) const;
    /// Clears the progress, closes windows without a model, and checks the hidden categories.
    void FinishLoading();
    /// The window of a file.
    [[nodiscard]] Shown& WindowOf(std::size_t file) { return shown_.at(options_.windows ? file : 0); }
    [[nodiscard]] unsigned long FrameCount() const;
    void NoteFirstFrame();

    const Options& options_;
    RunReport& report_;
    std::ostream& notices_;
    std::ostream& err_;
    Clock::time_point load_start_ = Clock::now();
    FileLoader loader_;
    std::deque<Shown> shown_; ///< one, or with --windows one for each file
    bool is_loading_ = true;
    bool was_closed_early_ = false; ///< a window was closed before all files were read
    unsigned long frames_of_closed_ = 0;
    std::optional<Clock::time_point> first_feed_;
    unsigned long frames_before_first_feed_ = 0;
};

} // namespace viewer
