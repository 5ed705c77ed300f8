#include "tests/control/model/operations.h"

#include <cstdio>
#include <iterator>
#include <limits>

namespace karv_model
{
namespace
{

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kEdges[] = {0.0,
                             -0.0,
                             std::numeric_limits<double>::quiet_NaN(),
                             kInfinity,
                             -kInfinity,
                             std::numeric_limits<double>::max(),
                             -std::numeric_limits<double>::max(),
                             std::numeric_limits<double>::min(),
                             std::numeric_limits<double>::denorm_min(),
                             static_cast<double>(std::numeric_limits<float>::max()),
                             -static_cast<double>(std::numeric_limits<float>::max()),
                             static_cast<double>(std::numeric_limits<float>::min()),
                             static_cast<double>(std::numeric_limits<float>::denorm_min()),
                             1e-20,
                             -1e-20,
                             1.1e-20,
                             1e-10,
                             1.01e-10,
                             1e20,
                             -1e20,
                             1e150,
                             16777217.0,
                             2147483648.0};
constexpr double kPlainValues[] = {0.0, 1.0, -1.0, 0.5, 2.0, -2.0, 10.0, 100.0, 0.2, 0.01};

const Kind& DrawKind(Random& random, const std::vector<Kind>& kinds)
{
    int total = 0;
    for (const Kind& kind : kinds)
        total += kind.weight;
    int left = random.Below(total);
    std::size_t index = 0;
    while (left >= kinds[index].weight)
        left -= kinds[index++].weight;
    return kinds[index];
}

Operation DrawCreation(Random& random)
{
    const int width = random.Chance(5) ? 0 : random.Between(1, 120);
    const int height = random.Chance(5) ? 0 : random.Between(1, 80);
    const Rect rect{random.Between(-20, 40), random.Between(-20, 40), 0, 0};
    const Rect whole{rect.left, rect.top, rect.left + width, rect.top + height};
    const bool transparent = random.Chance(25);
    Operation operation = MakeOperation(
        CallText("CreateCtrl", {static_cast<double>(whole.left), static_cast<double>(whole.top),
                                static_cast<double>(whole.right), static_cast<double>(whole.bottom),
                                transparent ? 1.0 : 0.0}),
        [=](Bench& bench) {
            bench.control.CreateCtrl(CRect(whole.left, whole.top, whole.right, whole.bottom), bench.host,
                                     transparent);
        },
        [=](ModelControl& model) { model.CreateCtrl(whole, transparent); });
    operation.creates_window = true;
    return operation;
}

/// Sets the rectangle of the creation, whose width panning reads, for a control that already has its window.
Operation DrawWidth(Random& random)
{
    const Rect rect{random.Between(-20, 40), 0, random.Between(41, 200), 50};
    return MakeOperation(
        CallText("created with", {static_cast<double>(rect.left), static_cast<double>(rect.right)}),
        [=](Bench& bench) {
            bench.control.createRect = CRect(rect.left, rect.top, rect.right, rect.bottom);
            bench.control.initialRect = bench.control.createRect;
        },
        [=](ModelControl& model) {
            model.create_rect = rect;
            model.initial_rect = rect;
        });
}

const std::vector<Kind>& DrawSubject(Random& random)
{
    const int subject = random.Below(100);
    if (subject < 22)
        return CameraKinds();
    if (subject < 48)
        return CommandKinds();
    return subject < 80 ? MessageKinds() : GeometryKinds();
}

} // namespace

double Random::Uniform(double low, double high)
{
    constexpr double kSteps = 9007199254740992.0; // 2^53
    return low + (high - low) * (static_cast<double>(engine_() >> 11U) / kSteps);
}

double Random::Number()
{
    if (Chance(edge_percent_))
        return Of(kEdges);
    switch (Below(6)) {
    case 0:
        return Of(kPlainValues);
    case 1:
        return Between(-5, 5);
    case 2:
        return Uniform(-0.01, 0.01);
    case 3:
        return Uniform(-1000.0, 1000.0);
    default:
        return Uniform(-10.0, 10.0);
    }
}

int Random::Integer()
{
    constexpr int kIntegers[] = {
        0,        1,      -1,    2,     -2,      9,    10,   11,   -9,    -10,        -100,
        100,      127,    128,   255,   256,     -255, -256, 720,  721,   -720,       -721,
        32767,    -32768, 65535, 65536, 1000000, 719,  -719, -101, 12345, 2147483647, -2147483647 - 1,
        16777217, -99999};
    return Chance(50) ? Of(kIntegers) : Between(-200, 200);
}

std::int32_t Random::Category()
{
    constexpr std::int32_t kOthers[] = {11, 12, -1, 2147483647, -2147483647 - 1, 1000};
    return Chance(15) ? Of(kOthers) : Between(0, 10);
}

int Random::Pixel()
{
    constexpr int kPixels[] = {0,     1,      -1,   100, 720, 721, -720, -721,
                               32767, -32768, 1440, 360, 178, 179, 180,  181};
    return Chance(20) ? Of(kPixels) : Between(-60, 120);
}

std::string CallText(const std::string& name, std::initializer_list<double> arguments)
{
    std::string text = name + "(";
    for (const double argument : arguments) {
        char number[40];
        std::snprintf(number, sizeof number, "%s%.17g", text.back() == '(' ? "" : ", ", argument);
        text += number;
    }
    return text + ")";
}

Sequence DrawSequence(std::uint64_t seed)
{
    constexpr int kEdgePercents[] = {0, 0, 0, 2, 10, 30};
    constexpr std::uint64_t kCreationEvery = 25;
    constexpr int kMaxLength = 60;
    Random random(seed, kEdgePercents[seed % std::size(kEdgePercents)]);
    const int length = random.Between(5, kMaxLength);
    Sequence sequence{seed % kCreationEvery == 0, {}};
    // Some controls are used before they have a window.
    const int creation = sequence.creates_window && random.Chance(70) ? random.Below(length) : 0;
    for (int i = 0; i < length; ++i) {
        if (i == creation)
            sequence.operations.push_back(sequence.creates_window ? DrawCreation(random) : DrawWidth(random));
        // Without a context only appends take a different path.
        const std::vector<Kind>& kinds =
            i < creation && random.Chance(50) ? GeometryKinds() : DrawSubject(random);
        sequence.operations.push_back(DrawKind(random, kinds).draw(random));
    }
    return sequence;
}

} // namespace karv_model
