// Measures the time of a frame: the control's timer message, and a bare frame with the same OpenGL calls.
#include "bench/frame_bench.h"

#include "bench/bare_viewport.h"
#include "bench/bench_window.h"
#include "bench/scenes.h"
#include "platform/winsys/backends.h"
#include "platform/winsys/frame_clock.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace karv_bench
{

namespace
{

/// A scene, how its frames are measured, and the limit of their ratio.
struct FrameCase {
    std::string name;
    std::function<std::vector<Piece>()> make;
    int side = 64; ///< of the square window, in pixels
    int frames_per_turn = 1;
    /// Each setup makes both viewports again, so that neither keeps a favourable place in memory.
    int setups = 1;
    int rounds_per_setup = 1;
    double limit = 1.05;
    /// Whether the measured time includes the wait until the frame is rasterised. Otherwise the wait follows
    /// it.
    bool until_drawn = false;
};

std::vector<Piece> OnePiece(Faces faces)
{
    std::vector<Piece> pieces(1);
    pieces.front().faces = std::move(faces);
    return pieces;
}

/// The control and the bare viewport, each in a window of its own, with the same scene.
class Contest
{
  public:
    Contest(const FrameCase& test, bool bare_is_fed_first)
        : test_(test), control_(host_, test.side), bare_(host_.m_hWnd, test.side, control_.PixelFormat())
    {
        // The clock is stopped, so that slow frames do not turn multisampling off.
        winsys::SetFrameClock([] { return std::clock_t{0}; });
        const std::vector<Piece> pieces = test.make();
        if (bare_is_fed_first)
            FeedBare(pieces);
        control_.MakeCurrent();
        FeedControl(pieces);
        control_.ShowScene();
        const ViewMatrices matrices = ViewMatrices::Current();
        if (!bare_is_fed_first)
            FeedBare(pieces);
        bare_.MakeCurrent();
        bare_.LoadMatrices(matrices);
        ComparePictures();
    }
    Contest(const Contest&) = delete;
    Contest& operator=(const Contest&) = delete;
    ~Contest()
    {
        winsys::SetFrameClock({});
        winsys::SetFrameObserver({});
    }

    double MeasureControl()
    {
        control_.MakeCurrent();
        return Measure([this] { control_.DrawFrame(); });
    }

    double MeasureBare()
    {
        bare_.MakeCurrent();
        return Measure([this] { bare_.DrawFrame(); });
    }

  private:
    void FeedControl(const std::vector<Piece>& pieces)
    {
        KARVOpenGLControl& control = control_.Control();
        control.AllocateMemory(static_cast<int>(pieces.size()));
        for (const Piece& piece : pieces) {
            if (!piece.faces.empty()) {
                control.AppendGeometry(piece.faces, KARVGraphicalEntity::EntityType0, kColorIndex, 1.0F);
                continue;
            }
            KARVGraphicalEntity lines;
            lines.color = PaletteColor();
            lines.lineVertices = piece.line_vertices;
            lines.minExtent = piece.line_vertices.front();
            lines.maxExtent = lines.minExtent;
            for (const KARVGLVertex& vertex : piece.line_vertices)
                KARVGraphicalEntity::DoesPointContainExtent(vertex, lines.minExtent, lines.maxExtent);
            control.AppendGeometry(std::move(lines));
        }
    }

    void FeedBare(const std::vector<Piece>& pieces)
    {
        bare_.MakeCurrent();
        for (const Piece& piece : pieces)
            bare_.Add(piece, PaletteColor());
    }

    /// Throws if the two draw different pictures or an empty one: their times would not be comparable.
    void ComparePictures()
    {
        std::vector<unsigned char> pixels;
        winsys::SetFrameObserver([&](HWND, int width, int height) {
            pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
            glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        });
        MeasureControl();
        const std::vector<unsigned char> of_control = pixels;
        MeasureBare();
        winsys::SetFrameObserver({});
        if (of_control.empty() || of_control != pixels)
            throw std::runtime_error("the two programs draw different pictures");
        // The background is black and opaque, so each of its pixels has three zeros.
        if (std::ranges::count(pixels, 0) * 4 >= std::ssize(pixels) * 3)
            throw std::runtime_error("the picture is empty");
    }

    /// The seconds of the fastest frame of a turn. Other load on the machine only adds time, so the fastest
    /// frame is the least disturbed.
    template <typename Draw>
    double Measure(Draw draw) const
    {
        draw(); // not measured: it updates the context's state and warms the caches
        double fastest = std::numeric_limits<double>::infinity();
        for (int i = 0; i < test_.frames_per_turn; ++i) {
            glFinish();
            const double seconds = SecondsOf([&] {
                draw();
                if (test_.until_drawn)
                    glFinish();
            });
            fastest = std::min(fastest, seconds);
        }
        glFinish();
        return fastest;
    }

    const FrameCase& test_;
    HostWindow host_;
    MeasuredControl control_;
    BareViewport bare_;
};

std::vector<FrameCase> AllCases()
{
    const auto boxes = [](std::size_t count) { return [count] { return MakeBoxes(count); }; };
    const auto triangles = [](std::size_t count) {
        return [count] { return OnePiece(MakeTriangles(count)); };
    };
    const auto l_shapes = [] { return OnePiece(MakeLShapes(10'000)); };
    const auto segments = [] { return MakeSegments(100'000); };
    const auto lines = [] { return std::vector<Piece>{JoinLines(MakeSegments(100'000))}; };
    constexpr int kSmall = 64;
    constexpr int kLarge = 512;
    return {
        {"frame, 100 entities of 6 quads", boxes(100), kSmall, 20, 10, 6, 0.0},
        {"frame, 1 000 entities of 6 quads", boxes(1'000), kSmall, 10, 10, 6},
        {"frame, 10 000 entities of 6 quads", boxes(10'000), kSmall, 3, 4, 6},
        {"frame, 10 000 L-shaped faces", l_shapes, kSmall, 5, 10, 6},
        {"frame, 100 000 triangles", triangles(100'000), kSmall, 5, 6, 6},
        {"frame, 500 000 triangles", triangles(500'000), kSmall, 3, 4, 6},
        {"frame, 100 000 line segments", lines, kSmall, 5, 6, 6},
        {"frame, 100 000 entities of a segment", segments, kSmall, 2, 2, 6},
        {"512x512 until drawn, 1 000 entities", boxes(1'000), kLarge, 3, 6, 6, 1.05, true},
        {"512x512 until drawn, 10 000 L-shapes", l_shapes, kLarge, 3, 6, 6, 1.05, true},
        {"512x512 until drawn, 500 000 triangles", triangles(500'000), kLarge, 2, 2, 6, 1.05, true},
    };
}

void MeasureFrames(benchmark::State& state, const FrameCase& test, int rounds_per_setup)
{
    std::optional<Contest> contest;
    const auto prepare = [&](int round) {
        if (round % rounds_per_setup != 0)
            return;
        const bool bare_is_fed_first = round / rounds_per_setup % 2 != 0;
        contest.reset();
        contest.emplace(test, bare_is_fed_first);
    };
    RunPairs(
        state, {.limit = test.limit}, [&] { return contest->MeasureControl(); },
        [&] { return contest->MeasureBare(); }, prepare);
}

} // namespace

void RegisterFrames(const Effort& effort)
{
    for (const FrameCase& test : AllCases()) {
        const int setups = effort.Setups(test.setups);
        const int rounds = effort.Rounds(test.rounds_per_setup);
        benchmark::RegisterBenchmark(
            test.name.c_str(),
            [test, rounds](benchmark::State& state) { MeasureFrames(state, test, rounds); })
            ->UseManualTime()
            ->Iterations(benchmark::IterationCount{setups} * rounds);
    }
}

} // namespace karv_bench
