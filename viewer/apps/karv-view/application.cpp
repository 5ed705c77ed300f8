#include "viewer/apps/karv-view/application.h"

#include "platform/host/rx/module_loader.h"
#include "platform/tools/chrome_trace_sink.h"
#include "platform/winsys/backend.h"
#include "platform/winsys/backends.h"
#include "viewer/import/process/reader_client.h"
#include "viewer/output/model_tree.h"
#include "viewer/output/png_image.h"
#include "viewer/output/progress_line.h"
#include "viewer/output/sheet.h"
#include "viewer/output/stats.h"
#include "viewer/scene/bundled_model.h"
#include "viewer/text/text.h"
#include "viewer/window/interactive_window.h"
#include "viewer/window/message_loop.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

using SteadyTime = std::chrono::steady_clock::time_point;

constexpr const char* kDefaultSheet = "karv-view-sheet.png";

double SecondsSince(SteadyTime start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

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
        : options_(options), start_(start), out_(out), err_(err)
    {
    }

    void Run()
    {
        if (options_.list)
            return List();
        in_windows_ = ChooseWindows();
        Load();
        GiveHints();
        if (in_windows_)
            ShowWindows();
        else
            DrawPictures(TakeWhole());
        if (options_.stats)
            out_ << ToJson(stats_) << '\n';
    }

  private:
    /// Chooses the backend of the window layer. Returns whether windows are shown to a user.
    bool ChooseWindows()
    {
        const bool never = options_.picture || options_.sheet || options_.headless;
        winsys::UseBackend(never ? winsys::MakeHeadlessBackend() : winsys::MakeDefaultBackend());
        const bool has_display = winsys::BackendName() != "headless";
        if (!never && !has_display)
            Notices() << "karv-view: no display answers, so the views are drawn on a sheet\n";
        return !never && has_display;
    }

    /// The stream for messages to the user. With --stats, the standard output is left to the figures.
    std::ostream& Notices() { return options_.stats ? err_ : out_; }

    Model Read(const std::string& path)
    {
        ProgressLine progress(err_, StandardErrorIsTerminal(), "karv-view: " + OneLine(path));
        ReaderSettings reader;
        reader.meanwhile = [&] { PrepareWindow(); };
        return ImportModel(
            path, {.deflection = options_.deflection, .pixels = Pixels()},
            [&](double fraction) { progress.Report(fraction); }, reader);
    }

    /// Passes the model of each file to `take`, in order; without files, the bundled model.
    void ForEachModel(const std::function<void(Model)>& take)
    {
        for (const std::string& path : options_.models) {
            Model model = Read(path);
            if (!model.left_out.empty())
                err_ << "karv-view: " << OneLine(path) << ": left out: " << ListOf(model.left_out) << '\n';
            take(std::move(model));
        }
        if (options_.models.empty())
            take(MakeBundledModel());
    }

    /// Makes the window of the first picture, while the first model is read: its context takes time.
    void PrepareWindow()
    {
        if (!options_.list && !in_windows_ && !window_ && models_.empty())
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

    /// The shorter side of the largest picture.
    int Pixels() const
    {
        const auto shorter = [](const PictureSize& size) { return std::min(size.width, size.height); };
        const bool is_sheet = options_.sheet || (!options_.picture && !in_windows_ && !options_.list);
        int pixels = is_sheet ? shorter(LayOutSheet(options_.size).cell) : 1;
        if (options_.picture || !is_sheet)
            pixels = std::max(pixels, shorter(PictureSizeOrDefault()));
        return pixels;
    }

    void List()
    {
        // Printed at the end, so that nothing is printed where one of the files is bad.
        std::ostringstream text;
        int first_category = 0;
        ForEachModel([&](const Model& model) {
            PrintModelTree(text, model, first_category);
            first_category += options_.windows ? 0 : model.CategoryCount();
        });
        out_ << text.str();
    }

    void Load()
    {
        const SteadyTime before = std::chrono::steady_clock::now();
        ForEachModel([&](Model model) { Add(std::move(model)); });
        stats_.load_s = SecondsSince(before);
        stats_.files = options_.models.size();
        Model all;
        for (Model& model : models_) {
            Prepare(model);
            for (const LeftOut& parts : model.left_out)
                all.LeaveOut(parts.kind, parts.count);
            stats_.entities += model.pieces.size();
            stats_.faces += model.FaceCount();
            stats_.extents.Unite(model.Extents());
        }
        stats_.left_out = std::move(all.left_out);
    }

    void Add(Model model)
    {
        if (models_.empty() || options_.windows)
            models_.emplace_back();
        models_.back().Append(std::move(model));
    }

    void Prepare(Model& model) const
    {
        for (Piece& piece : model.pieces) {
            piece.color = static_cast<unsigned char>(options_.color.value_or(piece.color));
            piece.alpha = options_.alpha.value_or(piece.alpha);
        }
        model.PutTranslucentLast();
    }

    /// Joins all models into one.
    Model TakeWhole()
    {
        Model whole;
        for (Model& model : models_)
            whole.Append(std::move(model));
        whole.PutTranslucentLast();
        return whole;
    }

    void GiveHints()
    {
        if (options_.alpha && !options_.drawing.transparent)
            err_ << "karv-view: hint: --alpha shows only together with --transparent\n";
    }

    void DrawPictures(const Model& model)
    {
        if (options_.picture)
            DrawPicture(*options_.picture, model);
        if (options_.sheet)
            DrawSheet(*options_.sheet, model);
        if (!options_.picture && !options_.sheet) {
            DrawSheet(kDefaultSheet, model);
            Notices() << "karv-view: the pictures are in " << kDefaultSheet << '\n';
        }
    }

    Picture Draw(ModelWindow& window, StandardView view)
    {
        window.Show(view, window.OpeningProjection());
        Picture picture = window.TakePicture();
        NoteFirstFrame();
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

    void ShowWindows()
    {
        std::vector<std::unique_ptr<InteractiveWindow>> windows;
        windows.reserve(models_.size());
        for (const Model& model : models_)
            windows.push_back(std::make_unique<InteractiveWindow>(PictureSizeOrDefault(), options_.drawing,
                                                                  model, Notices(), err_));
        stats_.renderer = windows.front()->RendererName();
        Notices() << "karv-view: the key ? prints the keys" << std::endl;
        const auto begin = std::chrono::steady_clock::now();
        unsigned long frames_of_closed = 0;
        const auto frame_count = [&] {
            unsigned long frames = frames_of_closed;
            for (const auto& window : windows)
                frames += window->FrameCount();
            return frames;
        };
        const auto none_is_open = [&] {
            if (frame_count() > 0)
                NoteFirstFrame();
            std::erase_if(windows, [&](const auto& window) {
                if (!window->IsOpen())
                    frames_of_closed += window->FrameCount();
                return !window->IsOpen();
            });
            return windows.empty();
        };
        PumpMessages(none_is_open, frame_count);
        stats_.fps = static_cast<double>(frame_count()) / SecondsSince(begin);
    }

    void NoteFirstFrame()
    {
        if (stats_.first_frame_s == 0.0)
            stats_.first_frame_s = SecondsSince(start_);
    }

    /// Draws frames for a short time and records their rate.
    void Measure(const ModelWindow& window)
    {
        if (!options_.stats || stats_.fps != 0.0)
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
        stats_.fps = static_cast<double>(window.FrameCount() - first) / SecondsSince(before);
        stats_.renderer = window.RendererName();
    }

    const Options& options_;
    SteadyTime start_;
    std::ostream& out_;
    std::ostream& err_;
    bool in_windows_ = false;
    std::unique_ptr<ModelWindow> window_; ///< prepared for the first picture, before it has a model
    std::vector<Model> models_;           ///< one per window
    Stats stats_;
};

void RunTraced(const Options& options, SteadyTime start, std::ostream& out, std::ostream& err)
{
    std::unique_ptr<TraceFile> trace;
    if (options.trace)
        trace = std::make_unique<TraceFile>(*options.trace);
    // The program is linked to the module; the host has to load it like any application module.
    host::ModuleLoader& loader = host::ProcessModuleLoader();
    void* const module = loader.Load(host::LoadedModuleFile("KARV3DViewport10"));
    Application(options, start, out, err).Run();
    loader.Unload(module);
    if (trace)
        trace->Close();
    if (!out.flush())
        throw std::runtime_error("the standard output cannot be written");
}

} // namespace

int Run(const Options& options, SteadyTime start, std::ostream& out, std::ostream& err)
{
    try {
        RunTraced(options, start, out, err);
        return 0;
    } catch (const std::bad_alloc&) {
        err << "karv-view: needs more memory than there is\n";
    } catch (const std::exception& error) {
        err << "karv-view: " << OneLine(error.what()) << '\n';
    }
    return 1;
}

} // namespace viewer
