#include "viewer/output/progress_line.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>

namespace viewer
{
namespace
{

using std::chrono::milliseconds;

/// A clock that the test sets.
struct ScriptedClock {
    std::chrono::steady_clock::time_point now;

    [[nodiscard]] ProgressLine::Clock Function()
    {
        return [this] { return now; };
    }
};

TEST(ProgressLine, ShortTasksShowNothing)
{
    std::ostringstream out;
    ScriptedClock clock;
    {
        ProgressLine line(out, true, "load", clock.Function());
        clock.now += milliseconds(499);
        line.Report(0.5);
    }
    EXPECT_EQ(out.str(), "");
}

TEST(ProgressLine, LongTasksShowEachPercentOnceAndClearTheLineAtTheEnd)
{
    std::ostringstream out;
    ScriptedClock clock;
    {
        ProgressLine line(out, true, "load", clock.Function());
        clock.now += milliseconds(500);
        line.Report(0.5);
        line.Report(0.505);
        line.Report(1.5);
    }
    EXPECT_EQ(out.str(), "\rload: 50 %\rload: 100 %\r\x1b[K");
}

TEST(ProgressLine, WithoutATerminalNothingIsShown)
{
    std::ostringstream out;
    ScriptedClock clock;
    {
        ProgressLine line(out, false, "load", clock.Function());
        clock.now += milliseconds(5000);
        line.Report(0.5);
    }
    EXPECT_EQ(out.str(), "");
}

} // namespace
} // namespace viewer
