// Writing that fails half-way: the system's limit on the size of a file plays the full disk.
#include "platform/tools/chrome_trace_sink.h"
#include "tests/platform/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <string>
#include <system_error>

namespace
{

using karv_test::TemporaryFolder;

/// Lets files of this process grow to `bytes`, and no further, while it lives.
class FileSizeLimit
{
  public:
    explicit FileSizeLimit(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }

  private:
    void (*signal_)(int);
    rlimit before_{};
};

/// What closing a trace of so many faults says under a limit.
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
