#include "viewer/application.h"

#include "platform/tools/chrome_trace_sink.h"
#include "platform/winsys/backend.h"
#include "platform/winsys/provider.h"
#include "viewer/bundled_model.h"
#include "viewer/canvas.h"
#include "viewer/fit.h"
#include "viewer/mesh_import.h"
#include "viewer/offscreen_view.h"
#include "viewer/progress.h"
#include "viewer/sheet.h"
#include "viewer/stats.h"

#include <exception>
#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>

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

/// Writes the trace of everything that is called while it lives.
class TraceFile
{
  public:
    explicit TraceFile(const std::string& path) : sink_(path), previous_(InstallTraceSink(&sink_)) {}
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;
    ~TraceFile() { InstallTraceSink(previous_); }

    /// Completes the file; throws where it could not be written.
    void Close() { sink_.Close(); }

  private:
    ChromeTraceSink sink_;
    TraceSink* previous_;
};

/// One run; its members are what the steps hand on to each other.
class Application
{
  public:
    Application(const Options& options, SteadyTime start, std::ostream& out, std::ostream& err)
        : options_(options), start_(start), out_(out), err_(err)
    {
    }

    void Run()
    {
        Load();
        GiveHints();
        winsys::UseBackend(winsys::MakeHeadlessBackend());
        if (options_.picture)
            DrawPicture(*options_.picture);
        if (options_.sheet)
            DrawSheet(*options_.sheet);
        if (!options_.picture && !options_.sheet) {
            DrawSheet(kDefaultSheet);
            (options_.stats ? err_ : out_) << "karv-view: the pictures are in " << kDefaultSheet << '\n';
        }
        if (options_.stats)
            out_ << ToJson(stats_) << '\n';
    }

  private:
    void Load()
    {
        const SteadyTime before = std::chrono::steady_clock::now();
        for (const std::string& path : options_.models) {
            ProgressLine progress(err_, StandardErrorIsTerminal(), "karv-view: " + path);
            model_.Append(ImportMesh(path, [&](double fraction) { progress.Report(fraction); }));
        }
        if (options_.models.empty())
            model_ = MakeBundledModel();
        stats_.load_s = SecondsSince(before);
        for (Piece& piece : model_.pieces) {
            piece.color = static_cast<unsigned char>(options_.color.value_or(piece.color));
            piece.alpha = options_.alpha.value_or(piece.alpha);
        }
        model_.PutTranslucentLast();
        stats_.files = options_.models.size();
        stats_.entities = model_.pieces.size();
        stats_.faces = model_.FaceCount();
        stats_.extents = model_.Extents();
    }

    void GiveHints()
    {
        if (options_.alpha && !options_.transparent)
            err_ << "karv-view: hint: --alpha shows only together with --transparent\n";
        if (options_.lines)
            err_ << "karv-view: hint: --mode lines shows lines and the edges of bodies, and these models "
                    "have faces only\n";
    }

    /// The control with the whole model in it, as the options want it drawn.
    struct Stage {
        OffscreenView view;
        double aspect;
        std::unique_ptr<FittedScene> scene;

        Stage(PictureSize size, const Options& options, const Model& model)
            : view(size.width, size.height, options.transparent),
              aspect(static_cast<double>(size.width) / static_cast<double>(size.height))
        {
            KARVOpenGLControl& control = view.Control();
            if (const auto& background = options.background)
                control.SetBgColor(background->at(0), background->at(1), background->at(2));
            control.SetRenderMode(options.lines ? KARVGLRenderModeLines : KARVGLRenderModeFaces);
            for (const int category : options.hidden)
                control.DisableObject(static_cast<KARVGraphicalEntity::EntityType>(category));
            scene = std::make_unique<FittedScene>(control, model);
        }
    };

    Picture Draw(Stage& stage, StandardView view)
    {
        stage.scene->Show(view, options_.projection, stage.aspect);
        Picture picture = stage.view.TakePicture();
        if (stats_.first_frame_s == 0.0)
            stats_.first_frame_s = SecondsSince(start_);
        return picture;
    }

    void DrawPicture(const std::string& path)
    {
        Stage stage(options_.size.value_or(PictureSize{}), options_, model_);
        const Picture picture = Draw(stage, options_.view);
        Measure(stage.view);
        WritePng(picture, path);
    }

    void DrawSheet(const std::string& path)
    {
        const SheetLayout layout = LayOutSheet(options_.size);
        Stage stage(layout.cell, options_, model_);
        WriteSheet(path, model_.title, layout, [&](StandardView view) { return Draw(stage, view); });
        Measure(stage.view);
    }

    /// Draws a short burst of frames and notes their rate.
    void Measure(OffscreenView& view)
    {
        if (!options_.stats || stats_.fps != 0.0)
            return;
        constexpr unsigned long kFrames = 30;
        constexpr double kSeconds = 1.0;
        const unsigned long first = view.FrameCount();
        const SteadyTime before = std::chrono::steady_clock::now();
        view.PumpUntil([&] {
            const unsigned long drawn = view.FrameCount() - first;
            return drawn >= kFrames || (drawn > 0 && SecondsSince(before) >= kSeconds);
        });
        stats_.fps = static_cast<double>(view.FrameCount() - first) / SecondsSince(before);
        stats_.renderer = view.RendererName();
    }

    const Options& options_;
    SteadyTime start_;
    std::ostream& out_;
    std::ostream& err_;
    Model model_;
    Stats stats_;
};

void RunTraced(const Options& options, SteadyTime start, std::ostream& out, std::ostream& err)
{
    std::unique_ptr<TraceFile> trace;
    if (options.trace)
        trace = std::make_unique<TraceFile>(*options.trace);
    Application(options, start, out, err).Run();
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
        err << "karv-view: " << error.what() << '\n';
    }
    return 1;
}

} // namespace viewer
