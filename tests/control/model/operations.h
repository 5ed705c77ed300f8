// Random operations, each in two forms: one for the control and one for the model. An operation holds all its
// arguments, so that a sequence can be replayed, printed and shortened. It compares nothing.
#pragma once

#include "control/KARVOpenGLControl.h"
#include "tests/control/model/model_control.h"

#include <cstdint>
#include <ctime>
#include <deque>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace karv_model
{

/// The state that the control's form of an operation works on.
struct Bench {
    KARVOpenGLControl& control;
    CWnd* host = nullptr;
    /// The values that the frame clock returns, call by call.
    std::deque<std::clock_t> ticks = {};
};

/// The results of an operation, widened to double.
using Results = std::vector<double>;

struct Operation {
    std::string text;
    std::function<Results(Bench&)> on_control;
    std::function<Results(ModelControl&)> on_model;
    /// Whether it draws a frame. Then the matrices before it decide what is culled.
    bool draws_frame = false;
    /// Whether it creates the window. Then fields and GL calls are compared, but not window-system calls.
    bool creates_window = false;
};

/// The source of the arguments: mostly values of a scene's size, and extreme ones in the share that the
/// sequence asks for.
class Random
{
  public:
    /// `edge_percent` is the share of arguments that are NaN, infinite, huge, tiny or otherwise extreme.
    Random(std::uint64_t seed, int edge_percent) : engine_(seed), edge_percent_(edge_percent) {}

    [[nodiscard]] int Below(int limit)
    {
        return static_cast<int>(engine_() % static_cast<std::uint64_t>(limit));
    }
    [[nodiscard]] int Between(int low, int high) { return low + Below(high - low + 1); }
    [[nodiscard]] bool Chance(int percent) { return Below(100) < percent; }
    /// In [low, high].
    [[nodiscard]] double Uniform(double low, double high);

    template <typename Value, std::size_t Count>
    [[nodiscard]] Value Of(const Value (&values)[Count])
    {
        return values[Below(static_cast<int>(Count))];
    }

    [[nodiscard]] double Number();
    [[nodiscard]] float Single() { return static_cast<float>(Number()); }
    [[nodiscard]] WideTriple Point() { return {Number(), Number(), Number()}; }
    /// Any 32-bit value; extreme values and neighbours of zero are frequent.
    [[nodiscard]] int Integer();
    /// Mostly one of the known categories.
    [[nodiscard]] std::int32_t Category();
    /// Pixels of mouse steps: small ones, and those that hit bounds exactly.
    [[nodiscard]] int Pixel();

  private:
    std::mt19937_64 engine_;
    int edge_percent_;
};

struct Sequence {
    /// Whether the sequence creates its control's window itself, at some step, which costs a GL context. The
    /// other sequences share one window.
    bool creates_window = false;
    std::vector<Operation> operations;
};

/// A sequence that depends on the seed alone.
[[nodiscard]] Sequence DrawSequence(std::uint64_t seed);

/// A kind of operation, drawn with a probability in proportion to `weight`.
struct Kind {
    int weight;
    Operation (*draw)(Random&);
};
[[nodiscard]] const std::vector<Kind>& CameraKinds();
[[nodiscard]] const std::vector<Kind>& CommandKinds();
[[nodiscard]] const std::vector<Kind>& MessageKinds();
[[nodiscard]] const std::vector<Kind>& GeometryKinds();

/// "name(1, 2.5)", with numbers printed exactly.
[[nodiscard]] std::string CallText(const std::string& name, std::initializer_list<double> arguments = {});

/// Makes an operation of two functions; one that returns nothing has no results.
template <typename OnControl, typename OnModel>
[[nodiscard]] Operation MakeOperation(std::string text, OnControl on_control, OnModel on_model)
{
    const auto wrapped = [](auto action) {
        return [action](auto& subject) -> Results {
            if constexpr (std::is_void_v<decltype(action(subject))>) {
                action(subject);
                return {};
            } else {
                return action(subject);
            }
        };
    };
    return {std::move(text), wrapped(on_control), wrapped(on_model)};
}

[[nodiscard]] inline AcGePoint3d ToPoint(const WideTriple& value)
{
    return {value.x, value.y, value.z};
}

[[nodiscard]] inline AcGeVector3d ToVector(const WideTriple& value)
{
    return {value.x, value.y, value.z};
}

} // namespace karv_model
