// Traces whose file cannot be written to the end, staged by a limit on the size of files.
#include "platform/tools/chrome_trace_sink.h"
#include "tests/platform/file_size_limit.h"
#include "tests/platform/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace
{

using karv_test::FileSizeLimit;
using karv_test::TemporaryFolder;

/// The error of closing a trace of that many faults under a limit; "closed" where there is none.
std::string CloseUnderLimit(const std::string& path, int faults, rlim_t bytes)
{
    const FileSizeLimit limit(bytes);
    ChromeTraceSink sink(path);
    for (int fault = 0; fault < faults; ++fault)
        sink.ReportFault(L"file", fault);
    try {
        sink.Close();
        return "closed";
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
}

TEST(ChromeTraceLimit, TraceWithinTheLimitCloses)
{
    const TemporaryFolder folder;
    EXPECT_EQ(CloseUnderLimit(folder.File("trace.json"), 1, 4096), "closed");
    EXPECT_EQ(folder.Count(), 1);
}

TEST(ChromeTraceLimit, FailureWhileRecordingIsToldAtTheEndAndLeavesNoFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("trace.json");
    const std::string failure = CloseUnderLimit(path, 10000, 65536);
    EXPECT_THAT(failure, testing::HasSubstr(path));
    EXPECT_THAT(failure, testing::HasSubstr(std::generic_category().message(EFBIG)));
    EXPECT_EQ(folder.Count(), 0);
}

TEST(ChromeTraceLimit, FailureOfTheLastBytesIsToldAndLeavesNoFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("trace.json");
    const std::string failure = CloseUnderLimit(path, 1, 8);
    EXPECT_THAT(failure, testing::HasSubstr(path));
    EXPECT_THAT(failure, testing::HasSubstr(std::generic_category().message(EFBIG)));
    EXPECT_EQ(folder.Count(), 0);
}

} // namespace
