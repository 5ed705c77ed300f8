#include "viewer/output/progress_line.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <utility>

#include <unistd.h>

namespace viewer
{

bool StandardErrorIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

ProgressLine::ProgressLine(std::ostream& out, bool on_terminal, std::string task, Clock clock)
    : out_(out), on_terminal_(on_terminal), task_(std::move(task)), clock_(std::move(clock)), start_(clock_())
{
}

ProgressLine::~ProgressLine()
{
    constexpr const char* kClearLine = "\r\x1b[K";
    if (shown_percent_ >= 0)
        out_ << kClearLine << std::flush;
}

void ProgressLine::Report(double fraction)
{
    constexpr std::chrono::milliseconds kDelay{500};
    if (!on_terminal_ || clock_() - start_ < kDelay)
        return;
    const int percent = static_cast<int>(std::floor(std::clamp(fraction, 0.0, 1.0) * 100.0));
    if (percent == shown_percent_)
        return;
    shown_percent_ = percent;
    out_ << '\r' << task_ << ": " << percent << " %" << std::flush;
}

} // namespace viewer
