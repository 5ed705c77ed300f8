#include "viewer/output/progress_line.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

using std::chrono::milliseconds;

/// The text that a line writes if these fractions are reported after this time.
std::string TextOf(bool is_terminal, milliseconds elapsed, const std::vector<double>& fractions)
{
    std::ostringstream out;
    std::chrono::steady_clock::time_point now;
    {
        ProgressLine line(out, is_terminal, "load", [&] { return now; });
        now += elapsed;
        for (const double fraction : fractions)
            line.Report(fraction);
    }
    return out.str();
}

TEST(ProgressLine, ShortTasksShowNothing)
{
    EXPECT_EQ(TextOf(true, milliseconds(499), {0.5}), "");
}

TEST(ProgressLine, LongTasksShowEachPercentOnceAndClearTheLineAtTheEnd)
{
    EXPECT_EQ(TextOf(true, milliseconds(500), {0.5, 0.505, 1.5}), "\rload: 50 %\rload: 100 %\r\x1b[K");
}

TEST(ProgressLine, WithoutATerminalNothingIsShown)
{
    EXPECT_EQ(TextOf(false, milliseconds(5000), {0.5}), "");
}

} // namespace
} // namespace viewer
