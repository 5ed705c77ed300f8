// Long random sequences of operations and window messages, compared with an independent model of the rules.
// After every step the fields of control and camera, the GL calls with their arguments, the window-system
// calls, the results and the number of reported faults must match, bit for bit.
#include "tests/control/model/comparison.h"
#include "tests/support/control_test.h"

#include "platform/host/gs/manager.h"
#include "platform/winsys/backends.h"
#include "platform/winsys/frame_clock.h"
#include "platform/winsys/opengl.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using namespace karv_test;
using namespace karv_model;

namespace
{

constexpr std::uint64_t kSequencesPerShard = 750;
constexpr int kShards = 8;
constexpr int kSharedWidth = 64;
constexpr int kSharedHeight = 32;
constexpr GLsizei kMaxLists = 1000; ///< created by one sequence

/// Every rule that the model counts; each shard must meet them all.
constexpr const char* kRules[] = {"back to perspective",
                                  "box grown down",
                                  "box grown up",
                                  "category hidden",
                                  "category met for the first time",
                                  "corner without projection",
                                  "dolly",
                                  "dolly refused",
                                  "entity culled",
                                  "exactly a full turn",
                                  "extents seeded",
                                  "face sent corner by corner",
                                  "first size",
                                  "later size",
                                  "lines drawn",
                                  "list called",
                                  "edge of a solid",
                                  "mouse move after the end of navigation",
                                  "mouse pan",
                                  "mouse zoom",
                                  "no display list to be had",
                                  "one corner left of and below the viewport",
                                  "orbit",
                                  "orbit beyond a full turn",
                                  "paint after the start",
                                  "pan",
                                  "pan of nothing",
                                  "parallel projection asked for twice",
                                  "perspective asked for twice",
                                  "polygon compiled",
                                  "size in parallel projection",
                                  "size without effect",
                                  "target kept",
                                  "throttle between",
                                  "throttle down",
                                  "throttle frozen",
                                  "throttle up",
                                  "tilt allowed",
                                  "tilt beyond a full turn",
                                  "tilt of exactly 90 degrees",
                                  "tilt refused above",
                                  "tilt refused below",
                                  "turn of nothing",
                                  "turn too small",
                                  "view along the vertical",
                                  "zoom exactly at the high limit",
                                  "zoom exactly at the low limit",
                                  "zoom limited above",
                                  "zoom limited below"};

struct Failure {
    std::size_t step;
    std::string difference;
};

/// Resets a control to the state after its constructor, except for its window and context. Resets the
/// context's matrices and lists too.
void BringToConstruction(KARVOpenGLControl& control)
{
    ::KillTimer(control.m_hWnd, 1);
    control.MoveWindow(CRect(0, 0, kSharedWidth, kSharedHeight), FALSE);
    const KARVOpenGLControl fresh;
    control.faceCount = fresh.faceCount;
    control.lastMousePoint = fresh.lastMousePoint;
    control.pendingPanX = fresh.pendingPanX;
    control.pendingPanZ = fresh.pendingPanZ;
    control.fieldOfView = fresh.fieldOfView;
    control.zoomFactor = fresh.zoomFactor;
    control.pendingRotateX = fresh.pendingRotateX;
    control.pendingRotateZ = fresh.pendingRotateZ;
    control.panScale = fresh.panScale;
    control.camera = fresh.camera;
    control.extentsSeeded = fresh.extentsSeeded;
    control.extentsMax = fresh.extentsMax;
    control.extentsMin = fresh.extentsMin;
    control.centroid = fresh.centroid;
    control.sceneSize = fresh.sceneSize;
    control.cameraSetByCaller = fresh.cameraSetByCaller;
    control.mouseRotates = fresh.mouseRotates;
    control.mousePans = fresh.mousePans;
    control.mouseZooms = fresh.mouseZooms;
    control.metricsFactor = fresh.metricsFactor;
    control.computeExtentsOnAppend = fresh.computeExtentsOnAppend;
    control.debugCubeAngle = fresh.debugCubeAngle;
    control.createRect = fresh.createRect;
    control.initialRect = fresh.initialRect;
    control.renderStarted = fresh.renderStarted;
    std::copy(std::begin(fresh.backgroundColor), std::end(fresh.backgroundColor), control.backgroundColor);
    control.framesPerSecond = fresh.framesPerSecond;
    control.invertPanX = fresh.invertPanX;
    control.aspectRatio = fresh.aspectRatio;
    control.renderMode = fresh.renderMode;
    control.userControlEnabled = fresh.userControlEnabled;
    control.multisampleOn = fresh.multisampleOn;
    control.timerId = fresh.timerId;
    control.entities = fresh.entities;
    control.disabledTypes = fresh.disabledTypes;
}

void BringMatricesToStart()
{
    glMatrixMode(GL_PROJECTION);
    GLint depth = 1;
    glGetIntegerv(GL_PROJECTION_STACK_DEPTH, &depth);
    for (; depth > 1; --depth)
        glPopMatrix();
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glViewport(0, 0, kSharedWidth, kSharedHeight);
    glDeleteLists(1, kMaxLists);
}

/// Takes a control and its model through the same steps.
class Replay
{
  public:
    Replay(KARVOpenGLControl& control, CWnd& host, WindowCalls& window_calls)
        : window_calls_(window_calls), bench_{control, &host},
          model_(kDefaultHostBackground.red, kDefaultHostBackground.green, kDefaultHostBackground.blue)
    {
        winsys::SetFrameClock([this] { return Tick(); });
        if (control.m_hWnd != nullptr)
            model_.has_window = true;
        LookOutside({});
        model_.device_context = model_.outside.device_context;
        model_.rendering_context = model_.outside.rendering_context;
        model_.pixel_format = model_.outside.pixel_format;
    }
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;
    ~Replay() { winsys::SetFrameClock({}); }

    /// Runs the sequence and returns the first difference from the model; nothing if there is none. The
    /// control must be in its initial state.
    std::optional<Failure> Run(const std::vector<Operation>& sequence)
    {
        if (auto difference = StateDifference(bench_.control, model_))
            return Failure{0, "a new control: " + *difference};
        for (std::size_t step = 0; step < sequence.size(); ++step)
            if (auto difference = Step(sequence[step]))
                return Failure{step, *difference};
        return std::nullopt;
    }

  private:
    std::optional<std::string> Step(const Operation& operation)
    {
        Prepare(operation);
        GlRecording gl;
        gl_ = &gl;
        const Results results = operation.on_control(bench_);
        const std::vector<GlCall> calls = gl.Calls();
        gl_ = nullptr;
        LookOutside(calls);
        const Results expected = operation.on_model(model_);
        if (auto difference = StateDifference(bench_.control, model_))
            return difference;
        if (auto difference = GlDifference(calls, model_.gl))
            return difference;
        if (!operation.creates_window) {
            if (auto difference = WindowDifference(window_calls_, model_))
                return difference;
        }
        if (auto difference = ResultDifference(results, expected))
            return "result: " + *difference;
        const auto faults = static_cast<double>(trace_.Faults().size());
        return ResultDifference({faults, static_cast<double>(bench_.ticks.size())},
                                {static_cast<double>(model_.faults), 0.0});
    }

    void Prepare(const Operation& operation)
    {
        model_.outside = Outside();
        model_.gl.clear();
        model_.window_calls.clear();
        model_.defaulted_messages.clear();
        model_.faults = 0;
        trace_.Clear();
        window_calls_.Clear();
        bench_.ticks.clear();
        if (bench_.control.m_hWnd == nullptr)
            return;
        RECT client{};
        ::GetClientRect(bench_.control.m_hWnd, &client);
        model_.outside.client_width = client.right;
        model_.outside.client_height = client.bottom;
        if (operation.draws_frame) {
            glGetDoublev(GL_MODELVIEW_MATRIX, model_.outside.model_view);
            glGetDoublev(GL_PROJECTION_MATRIX, model_.outside.projection);
            glGetIntegerv(GL_VIEWPORT, model_.outside.viewport);
        }
    }

    /// Passes the model the values of the last step that it cannot compute: list names and handles.
    void LookOutside(const std::vector<GlCall>& calls)
    {
        for (const GlCall& call : calls)
            if (call.name == "glNewList")
                model_.outside.lists.push_back(static_cast<std::uint32_t>(call.values.at(0)));
        model_.outside.device_context =
            static_cast<double>(reinterpret_cast<std::uintptr_t>(bench_.control.hDC));
        model_.outside.rendering_context =
            static_cast<double>(reinterpret_cast<std::uintptr_t>(bench_.control.hRC));
        model_.outside.pixel_format = bench_.control.pixelFormat;
    }

    std::clock_t Tick()
    {
        if (gl_ != nullptr)
            gl_->Note({.name = "clock", .text = "clock", .values = {}});
        window_calls_.Mark("clock");
        if (bench_.ticks.empty())
            return 0;
        const std::clock_t tick = bench_.ticks.front();
        bench_.ticks.pop_front();
        return tick;
    }

    WindowCalls& window_calls_;
    TraceRecording trace_;
    Bench bench_;
    ModelControl model_;
    GlRecording* gl_ = nullptr;
};

class ControlModel : public ControlTest, public testing::WithParamInterface<int>
{
  protected:
    std::optional<Failure> Run(const Sequence& sequence)
    {
        if (sequence.creates_window) {
            // The control must find no context until it has a window.
            ::wglMakeCurrent(nullptr, nullptr);
            KARVOpenGLControl control;
            return Replay(control, host_, window_calls_).Run(sequence.operations);
        }
        KARVOpenGLControl& control = SharedControl();
        BringToConstruction(control);
        // Other controls were destroyed meanwhile, which leaves no context current.
        ::wglMakeCurrent(control.hDC, control.hRC);
        BringMatricesToStart();
        return Replay(control, host_, window_calls_).Run(sequence.operations);
    }

    /// The sequence without the steps that the failure does not need.
    Sequence Shortened(Sequence sequence)
    {
        for (std::size_t chunk = sequence.operations.size() / 2; chunk > 0; chunk /= 2) {
            for (std::size_t start = 0; start + chunk <= sequence.operations.size();) {
                Sequence shorter = sequence;
                const auto first = shorter.operations.begin() + static_cast<std::ptrdiff_t>(start);
                shorter.operations.erase(first, first + static_cast<std::ptrdiff_t>(chunk));
                if (Run(shorter))
                    sequence = shorter;
                else
                    start += chunk;
            }
        }
        return sequence;
    }

    std::string Report(std::uint64_t seed, const Failure& failure, const Sequence& sequence)
    {
        const Sequence shorter = Shortened(sequence);
        const std::optional<Failure> left = Run(shorter);
        return "seed " + std::to_string(seed) + ", step " + std::to_string(failure.step) + ": " +
               failure.difference + "\nsequence:" + Listing(sequence) + "\nshortened:" + Listing(shorter) +
               "\nwhich fails with: " + (left ? left->difference : "nothing");
    }

  private:
    /// The control that most sequences share, because creating a context is slow. The caller makes its
    /// context current.
    KARVOpenGLControl& SharedControl()
    {
        if (!shared_)
            shared_ = NewControl(false, kSharedWidth, kSharedHeight);
        return *shared_;
    }

    static std::string Listing(const Sequence& sequence)
    {
        std::string text;
        for (const Operation& operation : sequence.operations)
            text += "\n  " + operation.text;
        return text;
    }

    std::unique_ptr<KARVOpenGLControl> shared_;
};

} // namespace

TEST_P(ControlModel, FieldsAndCallsMatchTheModelAfterEveryStep)
{
    RulesMet().clear();
    std::size_t steps = 0;
    for (std::uint64_t i = 0; i < kSequencesPerShard; ++i) {
        const auto seed = static_cast<std::uint64_t>(GetParam()) * kSequencesPerShard + i;
        Sequence sequence = DrawSequence(seed);
        steps += sequence.operations.size();
        const std::optional<Failure> failure = Run(sequence);
        if (failure) {
            sequence.operations.resize(std::min(sequence.operations.size(), failure->step + 1));
            FAIL() << Report(seed, *failure, sequence);
        }
    }
    RecordProperty("steps", static_cast<int>(steps));
    for (const char* const rule : kRules)
        EXPECT_TRUE(RulesMet().contains(rule)) << rule << ": no sequence of this shard met it";
    EXPECT_EQ(RulesMet().size(), std::size(kRules)) << "a rule is missing from the list";
}

INSTANTIATE_TEST_SUITE_P(Shards, ControlModel, testing::Range(0, kShards));
