#include "platform/tools/chrome_trace_sink.h"
#include "tests/platform/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace
{

using karv_test::TemporaryFolder;
using nlohmann::json;

/// A sink that writes "trace.json" in a temporary folder.
class ChromeTrace : public testing::Test
{
  protected:
    /// The events of the finished file. Throws where the file is not one JSON object of the format.
    [[nodiscard]] std::vector<json> Events()
    {
        sink_.Close();
        std::ifstream stream(path_);
        return json::parse(stream).at("traceEvents").get<std::vector<json>>();
    }

    TemporaryFolder folder_;
    std::string path_ = folder_.File("trace.json");
    ChromeTraceSink sink_{path_};
};

/// The error of opening `path`; "opened" where there is none.
std::string RefusalOf(const std::string& path)
{
    try {
        const ChromeTraceSink sink(path);
        return "opened";
    } catch (const std::runtime_error& refusal) {
        return refusal.what();
    }
}

std::string ReasonText(int error)
{
    return std::generic_category().message(error);
}

std::vector<std::string> Phases(const std::vector<json>& events)
{
    std::vector<std::string> phases;
    for (const json& event : events)
        phases.push_back(event.at("ph").get<std::string>() + " " + event.at("name").get<std::string>());
    return phases;
}

TEST_F(ChromeTrace, TraceWithoutEventsIsAnEmptyList)
{
    EXPECT_TRUE(Events().empty());
}

TEST_F(ChromeTrace, CallBeginsAndEndsWithItsName)
{
    sink_.EnterCall(L"outer");
    sink_.EnterCall(L"inner");
    sink_.LeaveCall(L"inner");
    sink_.LeaveCall(L"outer");
    EXPECT_THAT(Phases(Events()), testing::ElementsAre("B outer", "B inner", "E inner", "E outer"));
}

TEST_F(ChromeTrace, EventCarriesProcessThreadAndTime)
{
    sink_.EnterCall(L"call");
    sink_.LeaveCall(L"call");
    const std::vector<json> events = Events();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_TRUE(events[0].at("pid").is_number_integer());
    EXPECT_GT(events[0].at("pid").get<int>(), 0);
    EXPECT_EQ(events[0].at("pid"), events[1].at("pid"));
    EXPECT_TRUE(events[0].at("tid").is_number_integer());
    EXPECT_EQ(events[0].at("tid"), events[1].at("tid"));
    EXPECT_TRUE(events[0].at("ts").is_number());
    EXPECT_GE(events[0].at("ts").get<double>(), 0.0);
    EXPECT_LE(events[0].at("ts").get<double>(), events[1].at("ts").get<double>());
}

// By the test's own clock, the call lasts at least as long as the wait inside it and at most as long as the
// code around it.
TEST_F(ChromeTrace, TimesAreMicroseconds)
{
    using Clock = std::chrono::steady_clock;
    using Microseconds = std::chrono::duration<double, std::micro>;
    constexpr double kRounding = 1e-3;
    const Clock::time_point before = Clock::now();
    sink_.EnterCall(L"call");
    const Clock::time_point begun = Clock::now();
    Clock::time_point ending = Clock::now();
    while (ending - begun < std::chrono::milliseconds(1))
        ending = Clock::now();
    sink_.LeaveCall(L"call");
    const Clock::time_point after = Clock::now();
    const std::vector<json> events = Events();
    ASSERT_EQ(events.size(), 2U);
    const double lasted = events[1].at("ts").get<double>() - events[0].at("ts").get<double>();
    EXPECT_GE(lasted, Microseconds(ending - begun).count() - kRounding);
    EXPECT_LE(lasted, Microseconds(after - before).count() + kRounding);
}

TEST_F(ChromeTrace, FaultIsAnInstantOfItsThreadThatNamesFileAndLine)
{
    sink_.ReportFault(L".\\KARVGLCamera", 42);
    const std::vector<json> events = Events();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].at("ph"), "i");
    EXPECT_EQ(events[0].at("s"), "t");
    EXPECT_EQ(events[0].at("args").at("file"), ".\\KARVGLCamera");
    EXPECT_EQ(events[0].at("args").at("line"), 42);
}

TEST_F(ChromeTrace, SpecialCharactersOfNamesSurvive)
{
    sink_.EnterCall(L"quote\" back\\slash \n\t\x01 \u00E4\u20AC\U0001F600");
    sink_.ReportFault(L"</file>\"", -1);
    const std::vector<json> events = Events();
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(events[0].at("name"), "quote\" back\\slash \n\t\x01 \xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(events[1].at("args").at("file"), "</file>\"");
    EXPECT_EQ(events[1].at("args").at("line"), -1);
}

TEST_F(ChromeTrace, NameThatIsNoTextIsReplacedAndDoesNotBreakTheFile)
{
    static const wchar_t lone_surrogate[] = {static_cast<wchar_t>(0xD800), 0};
    sink_.EnterCall(lone_surrogate);
    sink_.EnterCall(nullptr);
    const std::vector<json> events = Events();
    ASSERT_EQ(events.size(), 4U);
    EXPECT_EQ(events[0].at("name"), "\xEF\xBF\xBD");
    EXPECT_EQ(events[1].at("name"), "");
}

TEST_F(ChromeTrace, CallsThatNeverEndAreEndedInnermostFirst)
{
    sink_.EnterCall(L"outer");
    sink_.EnterCall(L"inner");
    EXPECT_THAT(Phases(Events()), testing::ElementsAre("B outer", "B inner", "E inner", "E outer"));
}

TEST_F(ChromeTrace, EndWithoutBeginningIsDropped)
{
    sink_.LeaveCall(L"never begun");
    sink_.EnterCall(L"call");
    sink_.LeaveCall(L"call");
    sink_.LeaveCall(L"call");
    EXPECT_THAT(Phases(Events()), testing::ElementsAre("B call", "E call"));
}

TEST_F(ChromeTrace, ThreadsAreToldApartAndBalanced)
{
    constexpr std::size_t kThreads = 4;
    constexpr int kCalls = 100;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([this] {
            sink_.EnterCall(L"never ends");
            for (int call = 0; call < kCalls; ++call) {
                sink_.EnterCall(L"outer");
                sink_.EnterCall(L"inner");
                sink_.LeaveCall(L"inner");
                sink_.LeaveCall(L"outer");
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    std::map<int, std::vector<std::string>> open;
    std::map<int, int> begun;
    double last = 0.0;
    for (const json& event : Events()) {
        const int thread = event.at("tid").get<int>();
        EXPECT_LE(last, event.at("ts").get<double>());
        last = event.at("ts").get<double>();
        if (event.at("ph") == "B") {
            open[thread].push_back(event.at("name"));
            ++begun[thread];
        } else {
            ASSERT_FALSE(open[thread].empty());
            EXPECT_EQ(open[thread].back(), event.at("name").get<std::string>());
            open[thread].pop_back();
        }
    }
    EXPECT_EQ(begun.size(), kThreads);
    for (const auto& [thread, count] : begun)
        EXPECT_EQ(count, 1 + 2 * kCalls) << "thread " << thread;
    for (const auto& [thread, names] : open)
        EXPECT_TRUE(names.empty()) << "thread " << thread;
}

// NOTE: many systems give the identifier of an ended thread to the next one.
TEST_F(ChromeTrace, ThreadsOneAfterAnotherAreToldApart)
{
    for (int thread = 0; thread < 10; ++thread)
        std::thread([this] { sink_.ReportFault(L"file", 1); }).join();
    std::set<int> numbers;
    for (const json& event : Events())
        numbers.insert(event.at("tid").get<int>());
    EXPECT_EQ(numbers.size(), 10U);
}

TEST_F(ChromeTrace, RecordsAfterClosingAreDropped)
{
    sink_.EnterCall(L"before");
    sink_.Close();
    sink_.LeaveCall(L"before");
    sink_.EnterCall(L"after");
    sink_.ReportFault(L"after", 1);
    EXPECT_THAT(Phases(Events()), testing::ElementsAre("B before", "E before"));
}

TEST_F(ChromeTrace, ClosingTwiceKeepsTheFile)
{
    sink_.Close();
    sink_.Close();
    EXPECT_TRUE(std::filesystem::exists(path_));
    EXPECT_EQ(folder_.Count(), 1);
}

TEST_F(ChromeTrace, FileAppearsOnlyWhenItIsComplete)
{
    sink_.EnterCall(L"call");
    EXPECT_FALSE(std::filesystem::exists(path_));
    EXPECT_EQ(folder_.Count(), 1) << "the temporary file lies beside its target";
    sink_.Close();
    EXPECT_TRUE(std::filesystem::exists(path_));
    EXPECT_EQ(folder_.Count(), 1) << "and is gone afterwards";
}

TEST(ChromeTraceFile, DestructionCompletesTheFile)
{
    const TemporaryFolder folder;
    {
        ChromeTraceSink sink(folder.File("trace.json"));
        sink.EnterCall(L"call");
    }
    std::ifstream stream(folder.File("trace.json"));
    EXPECT_EQ(json::parse(stream).at("traceEvents").size(), 2U);
    EXPECT_EQ(folder.Count(), 1);
}

TEST(ChromeTraceFile, OlderFileStaysUntilTheNewOneIsComplete)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("trace.json");
    std::ofstream(path) << "old";
    ChromeTraceSink sink(path);
    std::string content;
    std::ifstream(path) >> content;
    EXPECT_EQ(content, "old");
    sink.Close();
    std::ifstream stream(path);
    EXPECT_TRUE(json::parse(stream).at("traceEvents").empty());
}

TEST(ChromeTraceFile, TwoSinksOfOneNameDoNotMixTheirEvents)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("trace.json");
    ChromeTraceSink first(path);
    ChromeTraceSink second(path);
    first.ReportFault(L"first", 1);
    second.ReportFault(L"second", 2);
    first.Close();
    second.Close();
    std::ifstream stream(path);
    const json events = json::parse(stream).at("traceEvents");
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].at("args").at("file"), "second");
    EXPECT_EQ(folder.Count(), 1);
}

TEST(ChromeTraceFile, MissingFolderIsRefusedWithNameAndReason)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("missing/trace.json");
    const std::string refusal = RefusalOf(path);
    EXPECT_THAT(refusal, testing::HasSubstr(path));
    EXPECT_THAT(refusal, testing::HasSubstr(ReasonText(ENOENT)));
    EXPECT_EQ(folder.Count(), 0);
}

TEST(ChromeTraceFile, FolderOfThatNameIsRefusedWithNameAndReason)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("trace.json");
    std::filesystem::create_directory(path);
    const std::string refusal = RefusalOf(path);
    EXPECT_THAT(refusal, testing::HasSubstr(path));
    EXPECT_THAT(refusal, testing::HasSubstr(ReasonText(EISDIR)));
    EXPECT_EQ(folder.Count(), 1);
}

TEST(ChromeTraceFile, EmptyNameIsRefused)
{
    EXPECT_THAT(RefusalOf(""), testing::HasSubstr(ReasonText(ENOENT)));
}

TEST(ChromeTraceFile, TargetThatCannotBeReplacedFailsTheClosingAndLeavesNoFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("trace.json");
    ChromeTraceSink sink(path);
    std::filesystem::create_directories(path + "/occupied");
    try {
        sink.Close();
        FAIL() << "closed";
    } catch (const std::runtime_error& failure) {
        EXPECT_THAT(failure.what(), testing::HasSubstr(path));
    }
    EXPECT_EQ(folder.Count(), 1) << "only the folder in the way is left";
    EXPECT_NO_THROW(sink.Close()) << "a second call does nothing";
}

TEST(ChromeTraceFile, DestructionAfterAFailureIsSilentAndLeavesNoFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("trace.json");
    {
        const ChromeTraceSink sink(path);
        std::filesystem::create_directories(path + "/occupied");
    }
    EXPECT_EQ(folder.Count(), 1);
}

} // namespace
