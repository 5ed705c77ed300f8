#include "viewer/apps/karv-view/application.h"

#include "platform/host/rx/module_loader.h"
#include "platform/tools/chrome_trace_sink.h"
#include "platform/winsys/backend.h"
#include "platform/winsys/backends.h"
#include "viewer/apps/karv-view/model_options.h"
#include "viewer/apps/karv-view/run_report.h"
#include "viewer/apps/karv-view/window_session.h"
#include "viewer/import/process/reader_client.h"
#include "viewer/output/model_tree.h"
#include "viewer/output/png_image.h"
#include "viewer/output/progress_line.h"
#include "viewer/output/sheet.h"
#include "viewer/output/stats.h"
#include "viewer/scene/bundled_model.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"
#include "viewer/window/message_loop.h"
#include "viewer/window/model_window.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace viewer
{

namespace
{

using SteadyTime = std::chrono::steady_clock::time_point;

constexpr const char* kDefaultSheet = "karv-view-sheet.png";

/// Traces all calls during its lifetime into a file.
class TraceFile
{
  public:
    explicit TraceFile(const std::string& path) : sink_(path), previous_(InstallTraceSink(&sink_)) {}
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;
    ~TraceFile() { InstallTraceSink(previous_); }

    /// Completes the file. Throws where it cannot be written.
    void Close() { sink_.Close(); }

  private:
    ChromeTraceSink sink_;
    TraceSink* previous_;
};

/// One run of the program.
class Application
{
  public:
    Application(const Options& options, SteadyTime start, std::ostream& out, std::ostream& err)
        : options_(options), out_(out), err_(err), report_(start, err)
    {
    }

    /// Returns the exit status.
    [[nodiscard]] int Run()
    {
        if (options_.list)
            List();
        else
            Show();
        return report_.HasFailed() ? 1 : 0;
    }

  private:
    void Show()
    {
        const bool in_windows = ChooseWindows();
        GiveHints();
        if (in_windows)
            WindowSession(options_, HowToImport(PictureSizeOrDefault()), report_, Notices(), err_).Run();
        else
            DrawPictures();
        const bool has_figures = options_.models.empty() || report_.Figures().files > 0;
        if (options_.stats && has_figures)
            out_ << ToJson(report_.Figures()) << '\n';
    }

    /// Chooses the backend of the window layer. Returns whether windows are shown to a user.
    bool ChooseWindows()
    {
        const bool never = options_.picture || options_.sheet || options_.headless;
        try {
            if (!never) {
                winsys::UseBackend(winsys::MakeX11Backend());
                return true;
            }
        } catch (const std::runtime_error& error) {
            ReplaceWindowsBySheet(OneLine(error.what()));
        }
        winsys::UseBackend(winsys::MakeHeadlessBackend());
        return false;
    }

    /// Without a display the views are drawn on a sheet. If DISPLAY names a display, the user expects a
    /// window: the sheet then replaces no file, and the run counts as failed. `reason` says why there is no
    /// window.
    void ReplaceWindowsBySheet(const std::string& reason)
    {
        const char* const display = std::getenv("DISPLAY");
        if (display == nullptr || *display == '\0') {
            Notices() << "karv-view: there is no display, so the views are drawn on a sheet\n";
            return;
        }
        if (std::filesystem::exists(std::filesystem::symlink_status(kDefaultSheet)))
            throw std::runtime_error(reason + ", and " + kDefaultSheet +
                                     ", which exists, is replaced only where --sheet names it");
        report_.NoteFailure(std::runtime_error(reason + ", so the views are drawn on a sheet"));
    }

    /// The stream for messages to the user. With --stats, the standard output is left to the figures.
    std::ostream& Notices() { return options_.stats ? err_ : out_; }

    /// `picture` is the largest picture of the models.
    [[nodiscard]] ImportOptions HowToImport(PictureSize picture) const
    {
        return {.deflection = options_.deflection, .pixels = std::min(picture.width, picture.height)};
    }

    Model Read(const std::string& path)
    {
        ProgressLine progress(err_, StandardErrorIsTerminal(), "karv-view: " + OneLine(path));
        ReaderSettings reader;
        reader.meanwhile = [&] { PrepareWindow(); };
        return ImportModel(
            path, HowToImport(LargestPicture()), [&](double fraction) { progress.Report(fraction); }, reader);
    }

    /// Passes the model of each file to `take`, in order; without files, the bundled model. Files that cannot
    /// be read are reported. Throws ReadingCancelled.
    void ForEachModel(const std::function<void(Model)>& take)
    {
        for (const std::string& path : options_.models) {
            try {
                Model model = Read(path);
                report_.NoteFile(path, model);
                take(std::move(model));
            } catch (const ReadingCancelled&) {
                throw;
            } catch (const FileError& error) {
                report_.NoteFailure(error);
            }
        }
        if (options_.models.empty())
            take(MakeBundledModel());
    }

    /// Makes the window of the first picture, while the first model is read: its context takes time.
    void PrepareWindow()
    {
        if (!options_.list && !window_ && report_.Figures().files == 0)
            window_ = std::make_unique<ModelWindow>(options_.picture ? PictureSizeOrDefault()
                                                                     : LayOutSheet(options_.size).cell,
                                                    options_.drawing);
    }

    /// The window that is prepared, or else a new one, with the model in it.
    std::unique_ptr<ModelWindow> TakeWindow(PictureSize size, const Model& model)
    {
        std::unique_ptr<ModelWindow> window = std::move(window_);
        if (!window)
            window = std::make_unique<ModelWindow>(size, options_.drawing);
        window->Feed(model);
        return window;
    }

    PictureSize PictureSizeOrDefault() const { return options_.size.value_or(PictureSize{}); }

    /// The picture with the longest shorter side. A list has the figures of a picture of the usual size.
    PictureSize LargestPicture() const
    {
        const auto shorter = [](const PictureSize& size) { return std::min(size.width, size.height); };
        const bool is_sheet = options_.sheet || (!options_.picture && !options_.list);
        if (!is_sheet)
            return PictureSizeOrDefault();
        const PictureSize cell = LayOutSheet(options_.size).cell;
        const bool is_picture = options_.picture && shorter(PictureSizeOrDefault()) > shorter(cell);
        return is_picture ? PictureSizeOrDefault() : cell;
    }

    void List()
    {
        // Printed at the end, so that nothing is printed where reading is cancelled.
        std::ostringstream text;
        int first_category = 0;
        ForEachModel([&](const Model& model) {
            PrintModelTree(text, model, first_category);
            first_category += options_.windows ? 0 : model.CategoryCount();
        });
        out_ << text.str();
    }

    /// All models as one; no value if no file can be read.
    std::optional<Model> Load()
    {
        const SteadyTime before = std::chrono::steady_clock::now();
        std::optional<Model> whole;
        ForEachModel([&](Model model) {
            if (!whole)
                whole.emplace();
            whole->Append(std::move(model));
        });
        report_.Figures().load_s = SecondsSince(before);
        if (whole) {
            ApplyColors(options_, *whole);
            report_.Count(*whole);
            CheckHidden(options_.drawing.hidden, std::array<const Model*, 1>{&*whole});
        }
        return whole;
    }

    void GiveHints()
    {
        if (options_.alpha && !options_.drawing.transparent)
            err_ << "karv-view: hint: --alpha shows only together with --transparent\n";
    }

    void DrawPictures()
    {
        const std::optional<Model> model = Load();
        if (!model)
            return;
        if (options_.picture)
            DrawPicture(*options_.picture, *model);
        if (options_.sheet)
            DrawSheet(*options_.sheet, *model);
        if (!options_.picture && !options_.sheet) {
            DrawSheet(kDefaultSheet, *model);
            Notices() << "karv-view: the pictures are in " << kDefaultSheet << '\n';
        }
    }

    Picture Draw(ModelWindow& window, StandardView view)
    {
        window.Show(view, window.OpeningProjection());
        Picture picture = window.TakePicture();
        report_.NoteFirstFrame();
        return picture;
    }

    void DrawPicture(const std::string& path, const Model& model)
    {
        const auto window = TakeWindow(PictureSizeOrDefault(), model);
        const Picture picture = Draw(*window, window->OpeningView());
        Measure(*window);
        WritePng(picture, path);
    }

    void DrawSheet(const std::string& path, const Model& model)
    {
        const SheetLayout layout = LayOutSheet(options_.size);
        const auto window = TakeWindow(layout.cell, model);
        WriteSheet(path, model.title, layout, [&](StandardView view) { return Draw(*window, view); });
        Measure(*window);
    }

    /// Draws frames for a short time and records their rate.
    void Measure(const ModelWindow& window)
    {
        Stats& figures = report_.Figures();
        if (!options_.stats || figures.fps != 0.0)
            return;
        constexpr unsigned long kFrames = 30;
        constexpr double kSeconds = 1.0;
        const unsigned long first = window.FrameCount();
        const SteadyTime before = std::chrono::steady_clock::now();
        const auto is_enough = [&] {
            const unsigned long drawn = window.FrameCount() - first;
            return drawn >= kFrames || (drawn > 0 && SecondsSince(before) >= kSeconds);
        };
        PumpMessages(is_enough, [&] { return window.FrameCount(); });
        figures.fps = static_cast<double>(window.FrameCount() - first) / SecondsSince(before);
        figures.renderer = window.RendererName();
    }

    const Options& options_;
    std::ostream& out_;
    std::ostream& err_;
    RunReport report_;
    std::unique_ptr<ModelWindow> window_; ///< prepared for the first picture, before it has a model
};

[[nodiscard]] int RunTraced(const Options& options, SteadyTime start, std::ostream& out, std::ostream& err)
{
    std::unique_ptr<TraceFile> trace;
    if (options.trace)
        trace = std::make_unique<TraceFile>(*options.trace);
    // The program is linked to the module; the host has to load it like any application module.
    host::ModuleLoader& loader = host::ProcessModuleLoader();
    void* const module = loader.Load(host::LoadedModuleFile("KARV3DViewport10"));
    const int status = Application(options, start, out, err).Run();
    loader.Unload(module);
    if (trace)
        trace->Close();
    if (!out.flush())
        throw std::runtime_error("the standard output cannot be written");
    return status;
}

} // namespace

int Run(const Options& options, SteadyTime start, std::ostream& out, std::ostream& err)
{
    try {
        return RunTraced(options, start, out, err);
    } catch (const std::bad_alloc&) {
        err << "karv-view: needs more memory than there is\n";
    } catch (const std::exception& error) {
        err << "karv-view: " << OneLine(error.what()) << '\n';
    }
    return 1;
}

} // namespace viewer
