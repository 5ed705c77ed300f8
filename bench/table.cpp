#include "bench/table.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>

namespace karv_bench
{

namespace
{

/// The widths of the columns. A negative width aligns to the left.
constexpr std::array<int, 7> kWidths = {-46, 13, 13, 7, 16, 6, 5};

using Run = benchmark::BenchmarkReporter::Run;

std::string Formatted(const char* format, double value)
{
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), format, value));
    return text.data();
}

void PrintRow(std::ostream& out, const std::vector<std::string>& cells)
{
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const auto width = static_cast<std::size_t>(std::abs(kWidths.at(i)));
        const std::string padding(width > cells[i].size() ? width - cells[i].size() : 0, ' ');
        line += kWidths.at(i) < 0 ? cells[i] + padding : " " + padding + cells[i];
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << std::endl; // flushed, because the next row may take long
}

/// Formats a value with three digits and a suitable unit.
std::string Quantity(double value, bool bytes)
{
    struct Step {
        double size;
        const char* format;
    };
    constexpr std::array<Step, 4> kTimes{
        {{1.0, "%.3g s"}, {1e-3, "%.3g ms"}, {1e-6, "%.3g us"}, {1e-9, "%.3g ns"}}};
    constexpr std::array<Step, 3> kSizes{{{1e6, "%.3g MB"}, {1e3, "%.3g kB"}, {1.0, "%.3g B"}}};
    const auto pick = [value](const auto& steps) {
        const auto* step =
            std::ranges::find_if(steps, [value](const Step& each) { return value >= each.size; });
        if (step == steps.end())
            --step;
        return Formatted(step->format, value / step->size);
    };
    return bytes ? pick(kSizes) : pick(kTimes);
}

double Counter(const Run& run, const char* name)
{
    const auto found = run.counters.find(name);
    return found == run.counters.end() ? 0.0 : found->second.value;
}

std::vector<std::string> RowOf(const Run& run)
{
    const std::string name = run.run_name.function_name;
    if (run.error_occurred)
        return {name, "not measured: " + run.error_message};
    const bool bytes = Counter(run, "bytes") != 0.0;
    const std::string per = run.report_label.empty() ? "" : "/" + run.report_label;
    const double ratio = Counter(run, "ratio");
    const double limit = Counter(run, "limit");
    return {name,
            Quantity(Counter(run, "component"), bytes) + per,
            Quantity(Counter(run, "bare"), bytes) + per,
            Formatted("%.3f", ratio),
            Formatted("%.3f", Counter(run, "quartile1")) + " to " +
                Formatted("%.3f", Counter(run, "quartile3")),
            limit > 0.0 ? Formatted("%.2f", limit) : "",
            limit > 0.0 ? (ratio <= limit ? "ok" : "over") : ""};
}

} // namespace

bool TableReporter::ReportContext(const Context& /*context*/)
{
    PrintRow(GetOutputStream(), {"what", "component", "bare", "ratio", "middle half", "limit", ""});
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.run_type == Run::RT_Aggregate)
            continue;
        has_errors_ = has_errors_ || run.error_occurred;
        PrintRow(GetOutputStream(), RowOf(run));
    }
}

} // namespace karv_bench
