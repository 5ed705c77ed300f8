// Measures the time and memory of an append. The bare program builds the same face vector, compiles the same
// lists with the same GLU calls, and keeps both.
#include "bench/append_bench.h"

#include "bench/allocation_meter.h"
#include "bench/bare_tessellation.h"
#include "bench/bare_viewport.h"
#include "bench/bench_window.h"
#include "bench/scenes.h"

#include <string>
#include <utility>

namespace karv_bench
{

namespace
{

constexpr int kSide = 64;

struct AppendCase {
    std::string name;
    Faces (*make)(std::size_t) = nullptr;
    std::size_t count = 0;
    int rounds = 0;
    enum class Kind {
        /// GLU compiles a list for each face. Time and memory have limits.
        Lists,
        /// No GLU work, so the bare program does almost nothing. Only the memory has a limit.
        NoLists,
        /// No context is current, so there are no lists and the driver takes no time. Only the memory has a
        /// limit.
        NoContext,
        /// The client keeps its face vector and passes a copy. There is no limit.
        ClientKeepsFaces,
    } kind = Kind::Lists;

    [[nodiscard]] double Limit(Unit unit) const
    {
        constexpr double kLimit = 1.2;
        const bool judged = unit == Unit::Seconds ? kind == Kind::Lists : kind != Kind::ClientKeepsFaces;
        return judged ? kLimit : 0.0;
    }
};

/// Measures an append: runs the work and returns a figure. The work's results live until the meter returns.
using Meter = double (*)(const std::function<void()>& work);

double PeakBytes(const std::function<void()>& work)
{
    const AllocationMeter meter;
    work();
    return static_cast<double>(meter.PeakBytes());
}

double HeldBytes(const std::function<void()>& work)
{
    const double before = HeapBytes();
    work();
    return HeapBytes() - before;
}

/// Makes a new control for each measurement, because display lists live as long as their context.
double MeasureControl(HostWindow& host, const AppendCase& test, Meter meter)
{
    MeasuredControl measured(host, kSide);
    KARVOpenGLControl& control = measured.Control();
    if (test.kind == AppendCase::Kind::NoContext)
        wglMakeCurrent(nullptr, nullptr);
    Faces kept;
    return meter([&] {
        Faces faces = test.make(test.count);
        if (test.kind == AppendCase::Kind::ClientKeepsFaces) {
            kept = std::move(faces);
            control.AppendGeometry(kept, KARVGraphicalEntity::EntityType0, kColorIndex, 1.0F);
        } else {
            control.AppendGeometry(std::move(faces), KARVGraphicalEntity::EntityType0, kColorIndex, 1.0F);
        }
    });
}

double MeasureBare(HostWindow& host, const AppendCase& test, int pixel_format, Meter meter)
{
    const BareViewport viewport(host.m_hWnd, kSide, pixel_format);
    if (test.kind == AppendCase::Kind::NoContext)
        wglMakeCurrent(nullptr, nullptr);
    BareTessellation tessellation;
    Faces faces;
    return meter([&] {
        faces = test.make(test.count);
        for (KARVGLFace& face : faces)
            if (face.vertices.size() >= 4)
                face.displayList = tessellation.Compile(face.vertices);
    });
}

void MeasureAppend(benchmark::State& state, const AppendCase& test, Unit unit, Meter meter)
{
    try {
        HostWindow host;
        const int pixel_format = MeasuredControl(host, kSide).PixelFormat();
        const Row row{.unit = unit,
                      .limit = test.Limit(unit),
                      .per = static_cast<double>(test.count),
                      .per_what = "face"};
        RunPairs(
            state, row, [&] { return MeasureControl(host, test, meter); },
            [&] { return MeasureBare(host, test, pixel_format, meter); });
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

std::vector<AppendCase> AllCases()
{
    using Kind = AppendCase::Kind;
    return {
        {"10 000 quads", MakeQuads, 10'000, 15},
        {"100 000 quads", MakeQuads, 100'000, 3},
        {"10 000 L-shaped faces", MakeLShapes, 10'000, 15},
        {"100 000 triangles", MakeTriangles, 100'000, 15, Kind::NoLists},
        {"1 000 000 triangles", MakeTriangles, 1'000'000, 5, Kind::NoLists},
        {"10 000 quads, no context", MakeQuads, 10'000, 15, Kind::NoContext},
        {"100 000 quads, no context", MakeQuads, 100'000, 15, Kind::NoContext},
        {"1 000 000 quads, no context", MakeQuads, 1'000'000, 5, Kind::NoContext},
        {"10 000 quads that the client keeps", MakeQuads, 10'000, 5, Kind::ClientKeepsFaces},
    };
}

void Register(const std::string& name, const AppendCase& test, int rounds, Unit unit, Meter meter)
{
    benchmark::RegisterBenchmark(
        name.c_str(),
        [test, unit, meter](benchmark::State& state) { MeasureAppend(state, test, unit, meter); })
        ->UseManualTime()
        ->Iterations(rounds);
}

} // namespace

void RegisterAppends(const Effort& effort)
{
    for (const AppendCase& test : AllCases())
        Register("append, " + test.name, test, effort.Rounds(test.rounds), Unit::Seconds, &SecondsOf);
    for (const AppendCase& test : AllCases())
        Register("memory at peak, " + test.name, test, 1, Unit::Bytes, &PeakBytes);
    for (const AppendCase& test : AllCases())
        Register("memory held, " + test.name, test, 1, Unit::Bytes, &HeldBytes);
}

} // namespace karv_bench
