#include "platform/tools/memory_trace_sink.h"
#include "platform/tools/trace.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

using Kind = TraceRecord::Kind;
using Records = std::vector<TraceRecord>;

/// Installs a memory sink for the duration of a test.
class Trace : public testing::Test
{
  public:
    Trace() { InstallTraceSink(&sink_); }
    ~Trace() override { InstallTraceSink(nullptr); }

  protected:
    MemoryTraceSink sink_;
};

TEST_F(Trace, EntryIsRecordedAtItsBeginningAndItsEnd)
{
    {
        const CTqLogEntry entry(L"Class::Operation");
        EXPECT_EQ(sink_.Records(), (Records{{Kind::Enter, L"Class::Operation", 0}}));
    }
    EXPECT_EQ(sink_.Records(),
              (Records{{Kind::Enter, L"Class::Operation", 0}, {Kind::Leave, L"Class::Operation", 0}}));
}

TEST_F(Trace, NestedEntriesEndInnermostFirst)
{
    {
        const CTqLogEntry outer(L"outer");
        const CTqLogEntry inner(L"inner");
    }
    EXPECT_EQ(sink_.Records(), (Records{{Kind::Enter, L"outer", 0},
                                        {Kind::Enter, L"inner", 0},
                                        {Kind::Leave, L"inner", 0},
                                        {Kind::Leave, L"outer", 0}}));
}

TEST_F(Trace, EntryEndsWhenAnExceptionUnwindsIt)
{
    try {
        const CTqLogEntry entry(L"faulty");
        throw 1;
    } catch (int) {
        const CTqCrashHandler report(L".\\Source", 12);
    }
    EXPECT_EQ(
        sink_.Records(),
        (Records{{Kind::Enter, L"faulty", 0}, {Kind::Leave, L"faulty", 0}, {Kind::Fault, L".\\Source", 12}}));
}

TEST_F(Trace, FaultIsReportedOnceAndAtItsConstruction)
{
    {
        const CTqCrashHandler report(L"file", 7);
        EXPECT_EQ(sink_.Records(), (Records{{Kind::Fault, L"file", 7}}));
    }
    EXPECT_EQ(sink_.Records().size(), 1U);
}

TEST_F(Trace, ClearedSinkIsEmpty)
{
    const CTqCrashHandler report(L"file", 7);
    sink_.Clear();
    EXPECT_TRUE(sink_.Records().empty());
}

TEST_F(Trace, MissingNameIsRecordedAsEmpty)
{
    const CTqCrashHandler report(nullptr, 3);
    EXPECT_EQ(sink_.Records(), (Records{{Kind::Fault, L"", 3}}));
}

TEST_F(Trace, InstallingAnswersTheSinkBefore)
{
    MemoryTraceSink other;
    EXPECT_EQ(InstallTraceSink(&other), &sink_);
    EXPECT_EQ(InstallTraceSink(nullptr), &other);
    EXPECT_EQ(InstallTraceSink(nullptr), nullptr);
}

TEST_F(Trace, WithoutASinkNothingIsRecorded)
{
    InstallTraceSink(nullptr);
    {
        const CTqLogEntry entry(L"call");
        const CTqCrashHandler report(L"file", 1);
    }
    EXPECT_TRUE(sink_.Records().empty());
}

TEST_F(Trace, EntryEndsAtTheSinkThatSawItsBeginning)
{
    MemoryTraceSink other;
    {
        const CTqLogEntry before(L"before");
        InstallTraceSink(&other);
        const CTqLogEntry after(L"after");
        InstallTraceSink(nullptr);
    }
    EXPECT_EQ(sink_.Records(), (Records{{Kind::Enter, L"before", 0}, {Kind::Leave, L"before", 0}}));
    EXPECT_EQ(other.Records(), (Records{{Kind::Enter, L"after", 0}, {Kind::Leave, L"after", 0}}));
}

TEST_F(Trace, EntryBegunWithoutASinkStaysUnrecorded)
{
    InstallTraceSink(nullptr);
    {
        const CTqLogEntry entry(L"call");
        InstallTraceSink(&sink_);
    }
    EXPECT_TRUE(sink_.Records().empty());
}

TEST_F(Trace, ThreadsLoseNoRecord)
{
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kCalls = 250;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([] {
            for (std::size_t call = 0; call < kCalls; ++call)
                const CTqLogEntry entry(L"call");
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(sink_.Records().size(), kThreads * kCalls * 2);
}

TEST(TraceContract, FaultResultIsAZeroOf64Bits)
{
    EXPECT_EQ(CTqCrashHandler::mov_rax_0(), 0);
    EXPECT_TRUE((std::is_same_v<decltype(CTqCrashHandler::mov_rax_0()), std::int64_t>));
}

TEST(TraceContract, DestructorsAreVirtual)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<CTqLogEntry>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CTqCrashHandler>);
}

} // namespace
