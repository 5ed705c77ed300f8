#include "viewer/import/process/reader_arguments.h"

#include <array>
#include <charconv>
#include <string_view>
#include <system_error>

namespace viewer
{

namespace
{

/// The program's name, parent, processor time, memory, deflection, pixels, mode and path.
constexpr int kArgumentCount = 8;
constexpr std::string_view kNoDeflection = "-";
constexpr std::string_view kSafe = "safe";
constexpr std::string_view kNormal = "normal";

template <typename Number>
std::string ToText(Number number)
{
    std::array<char, 40> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

/// Whether the whole text is a number.
template <typename Number>
bool FromText(std::string_view text, Number& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size();
}

} // namespace

std::vector<std::string> WriteReaderArguments(const ReaderArguments& arguments)
{
    const std::optional<double> deflection = arguments.options.deflection;
    return {ToText(arguments.parent),
            ToText(arguments.processor.count()),
            ToText(arguments.memory),
            deflection ? ToText(*deflection) : std::string(kNoDeflection),
            ToText(arguments.options.pixels),
            std::string(arguments.options.safe ? kSafe : kNormal),
            arguments.path};
}

std::optional<ReaderArguments> ParseReaderArguments(int argc, const char* const* argv)
{
    if (argc != kArgumentCount)
        return std::nullopt;
    ReaderArguments arguments;
    std::chrono::seconds::rep processor = 0;
    double deflection = 0.0;
    const bool has_deflection = argv[4] != kNoDeflection;
    if (!FromText(argv[1], arguments.parent) || !FromText(argv[2], processor) ||
        !FromText(argv[3], arguments.memory) || (has_deflection && !FromText(argv[4], deflection)) ||
        !FromText(argv[5], arguments.options.pixels) || arguments.options.pixels < 1 ||
        (argv[6] != kSafe && argv[6] != kNormal))
        return std::nullopt;
    arguments.processor = std::chrono::seconds(processor);
    if (has_deflection)
        arguments.options.deflection = deflection;
    arguments.options.safe = argv[6] == kSafe;
    arguments.path = argv[7];
    return arguments;
}

} // namespace viewer
