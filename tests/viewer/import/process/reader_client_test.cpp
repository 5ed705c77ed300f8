// The client with readers that fail in every way, and with karv-reader.
#include "viewer/import/process/reader_client.h"

#include "tests/viewer/import/process/limits_fixture.h"
#include "tests/viewer/import/process/stream_fixture.h"
#include "tests/viewer/test_support.h"
#include "viewer/import/process/process_limits.h"
#include "viewer/import/process/reader_arguments.h"
#include "viewer/import/process/reader_environment.h"
#include "viewer/text/file_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace viewer
{
namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr std::size_t kMebibyte = 1U << 20U;
/// Messages state it as 1.5 s.
constexpr std::chrono::milliseconds kShort(1500);

ReaderLimits WithWall(std::chrono::milliseconds wall)
{
    ReaderLimits limits = GenerousLimits();
    limits.wall = wall;
    return limits;
}

/// Stops a call: `progress` and `meanwhile` may throw.
struct Enough {
};

/// The reason that the client gives for a reader with this fault. The error must be one line that begins with
/// the file.
std::string ReasonOf(const std::string& fault, const ReaderLimits& limits = GenerousLimits(),
                     const ProgressFunction& progress = {})
{
    try {
        static_cast<void>(ImportModel(fault, {}, progress, {KARV_FAKE_READER, limits}));
    } catch (const FileError& error) {
        const std::string text = error.what();
        EXPECT_EQ(text.find('\n'), std::string::npos);
        EXPECT_EQ(text.substr(0, fault.size() + 2), fault + ": ");
        return text.substr(fault.size() + 2);
    }
    return "a model";
}

/// Expects that this process has no child left, not even one that has ended.
void ExpectNoChild()
{
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(ReaderProcess, ModelOfTheReaderArrives)
{
    const Model model = ImportModel("model", {}, {}, {KARV_FAKE_READER, GenerousLimits()});
    EXPECT_EQ(model.title, "sample.step");
    EXPECT_THAT(model.pieces, SizeIs(2));
    ExpectNoChild();
}

TEST(ReaderProcess, CrashIsAReason)
{
    EXPECT_EQ(ReasonOf("crash"), "the reader crashed (Segmentation fault)");
    ExpectNoChild();
}

TEST(ReaderProcess, CrashAfterSomeProgressSaysWhere)
{
    EXPECT_EQ(ReasonOf("late crash"), "the reader crashed (Segmentation fault), at 42 %");
}

TEST(ReaderProcess, ModelOfAReaderThatCrashesAfterItCounts)
{
    EXPECT_EQ(ReasonOf("model, then crash"), "a model");
    ExpectNoChild();
}

TEST(ReaderProcess, ReaderThatCrashesIsStartedOnceMoreWithSafeOptions)
{
    std::vector<double> seen;
    EXPECT_EQ(ReasonOf("crash once", GenerousLimits(), [&](double fraction) { seen.push_back(fraction); }),
              "a model");
    EXPECT_THAT(seen, ElementsAre(0.42));
    EXPECT_EQ(ReasonOf("crash, then refusal"), "holds no faces");
    ExpectNoChild();
}

TEST(ReaderProcess, ReaderThatCrashesWithSafeOptionsIsNotStartedAgain)
{
    std::vector<double> seen;
    const auto count = [&](double fraction) { seen.push_back(fraction); };
    EXPECT_THROW(static_cast<void>(ImportModel("late crash", {.deflection = {}, .safe = true}, count,
                                               {KARV_FAKE_READER, GenerousLimits()})),
                 FileError);
    EXPECT_THAT(seen, SizeIs(1));
    EXPECT_EQ(ReasonOf("late crash", GenerousLimits(), count),
              "the reader crashed (Segmentation fault), at 42 %");
    EXPECT_THAT(seen, SizeIs(1 + 2));
}

TEST(ReaderProcess, ReaderThatExceedsALimitIsNotStartedAgain)
{
    ReaderLimits limits = GenerousLimits(256 * kMebibyte);
    limits.processor = std::chrono::seconds(1);
    EXPECT_EQ(ReasonOf("no memory once", limits), "needs more than 256 MiB of memory to be read");
    EXPECT_EQ(ReasonOf("spin once", limits), "takes more than 1 s of processor time to be read");
    EXPECT_EQ(ReasonOf("kill once"), "the reader crashed (Killed)");
}

TEST(ReaderProcess, BothAttemptsShareTheLimitOfTime)
{
    const ReaderLimits limits = WithWall(kShort);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ReasonOf("crash, then hang", limits), "takes longer than 1.5 s to be read, at 42 %");
    EXPECT_GE(std::chrono::steady_clock::now() - start, limits.wall);
    ExpectNoChild();
}

TEST(ReaderProcess, NextFileIsReadAfterACrash)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ReasonOf("crash"), "the reader crashed (Segmentation fault)");
        EXPECT_EQ(ReasonOf("model"), "a model");
    }
}

TEST(ReaderProcess, EndWithoutAnAnswerIsAReason)
{
    EXPECT_EQ(ReasonOf("silent"), "the reader ended without an answer (status 3)");
    EXPECT_EQ(ReasonOf("half"), "the reader ended without an answer (status 0)");
}

TEST(ReaderProcess, AnswerThatIsNoStreamIsRefusedWithoutWaitingForItsEnd)
{
    EXPECT_EQ(ReasonOf("garbage"), "the reader's answer is damaged: it is none");
    EXPECT_EQ(ReasonOf("more"), "the reader's answer is damaged: it goes on after its end");
    ExpectNoChild();
}

TEST(ReaderProcess, RefusalIsOneLineWhateverItHolds)
{
    EXPECT_EQ(ReasonOf("refusal"), "line 7: [2Jno such layer");
    EXPECT_EQ(ReasonOf("long refusal"), std::string(500, 'x') + "...");
}

TEST(ReaderProcess, ReaderThatTakesTooLongIsEnded)
{
    EXPECT_EQ(ReasonOf("hang", WithWall(kShort)), "takes longer than 1.5 s to be read, at 42 %");
    ExpectNoChild();
}

TEST(ReaderProcess, ReaderThatComputesTooLongEndsItself)
{
    ReaderLimits limits = GenerousLimits();
    limits.processor = std::chrono::seconds(1);
    EXPECT_EQ(ReasonOf("spin", limits), "takes more than 1 s of processor time to be read");
}

TEST(ReaderProcess, ReaderThatGrowsTooLargeIsEnded)
{
    EXPECT_EQ(ReasonOf("grow", GenerousLimits(256 * kMebibyte)),
              "needs more than 256 MiB of memory to be read, at 42 %");
    ExpectNoChild();
}

TEST(ReaderProcess, StreamWithoutAnEndIsEnded)
{
    EXPECT_EQ(ReasonOf("flood", GenerousLimits(128 * kMebibyte)),
              "needs more than 128 MiB of memory to be read, at 42 %");
}

/// Runs the function in a child process, which has limits and a peak of resident memory of its own. Returns
/// its text.
std::string InAChild(const std::function<std::string()>& function)
{
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        const std::string text = function();
        const bool is_whole = write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        _exit(is_whole ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    close(ends[1]);
    std::string text;
    std::array<char, 1024> block{};
    for (ssize_t count = 0; (count = read(ends[0], block.data(), block.size())) > 0;)
        text.append(block.data(), static_cast<std::size_t>(count));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return text;
}

/// The largest resident memory that this process has had, in bytes.
std::size_t PeakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

class ReaderWithABulkyModel : public testing::TestWithParam<std::string>
{
};

TEST_P(ReaderWithABulkyModel, IsRefusedWithinTheLimitOfMemory)
{
    // The stream and the reader stay below the limit; the model in memory does not.
    constexpr std::size_t kLimit = 64 * kMebibyte;
    const std::string answer = InAChild([] {
        const std::size_t before = PeakMemory();
        const std::string reason = ReasonOf(GetParam(), GenerousLimits(kLimit));
        return std::to_string(PeakMemory() - before) + ' ' + reason;
    });
    const std::size_t blank = answer.find(' ');
    ASSERT_NE(blank, std::string::npos);
    EXPECT_EQ(answer.substr(blank + 1), "needs more than 64 MiB of memory to be read");
    // The allocator keeps blocks that a growing list has left, which come to less than the largest one, and a
    // sanitizer adds an eighth for its shadow. 8 MiB are for code and buffers that are used for the first
    // time.
    EXPECT_LE(std::stoull(answer), kLimit + kLimit / 2 + 8 * kMebibyte);
}

INSTANTIATE_TEST_SUITE_P(Faults, ReaderWithABulkyModel, testing::Values("empty names", "empty pieces"),
                         [](const auto& test) { return test.param == "empty names" ? "Names" : "Pieces"; });

/// Sets a variable of the environment while it lives.
class Variable
{
  public:
    Variable(const char* name, const char* value) : name_(name)
    {
        if (const char* before = std::getenv(name))
            before_ = before;
        setenv(name, value, 1);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable()
    {
        if (before_)
            setenv(name_, before_->c_str(), 1);
        else
            unsetenv(name_);
    }

  private:
    const char* name_;
    std::optional<std::string> before_;
};

TEST(ReaderProcess, InheritsNoDescriptorOfItsClient)
{
    const int file = open("/proc/self/status", O_RDONLY);
    const int high = fcntl(file, F_DUPFD, 200);
    // The standard input is a file, too.
    const int input = dup(STDIN_FILENO);
    dup2(file, STDIN_FILENO);
    EXPECT_EQ(ReasonOf("descriptors"), "0 1 2 from /dev/null");
    dup2(input, STDIN_FILENO);
    for (const int descriptor : {input, high, file})
        close(descriptor);
}

TEST(ReaderProcess, InheritsFewVariablesOfTheEnvironment)
{
    const Variable secret("KARV_TEST_TOKEN", "secret");
    const Variable path("LD_LIBRARY_PATH", "/none");
    const Variable locale("LC_ALL", "C");
#if defined(__SANITIZE_ADDRESS__)
    const Variable address("ASAN_OPTIONS", "");
    const Variable leaks("LSAN_OPTIONS", "");
    const Variable behavior("UBSAN_OPTIONS", "");
    EXPECT_EQ(ReasonOf("environment"), "ASAN_OPTIONS LD_LIBRARY_PATH LSAN_OPTIONS UBSAN_OPTIONS");
#else
    EXPECT_EQ(ReasonOf("environment"), "LD_LIBRARY_PATH");
#endif
}

TEST(ReaderEnvironmentOfAList, HoldsWholeNamesOnlyWithTheirValues)
{
    const std::array<const char*, 7> environment{"HOME=/root",
                                                 "LD_LIBRARY_PATH=/a=b:/c",
                                                 "LD_LIBRARY_PATH_2=/d",
                                                 "XLD_LIBRARY_PATH=/e",
                                                 "ld_library_path=/f",
                                                 "=LD_LIBRARY_PATH",
                                                 nullptr};
    EXPECT_THAT(ReaderEnvironment(environment.data()), ElementsAre("LD_LIBRARY_PATH=/a=b:/c"));
    EXPECT_THAT(ReaderEnvironment(environment.data() + 6), IsEmpty());
}

/// Whether the process has ended, or ends within ten seconds.
bool HasEnded(pid_t id)
{
    constexpr int kMilliseconds = 10'000;
    const int process = static_cast<int>(syscall(SYS_pidfd_open, id, 0));
    if (process < 0)
        return errno == ESRCH;
    pollfd wait{process, POLLIN, 0};
    const bool has_ended = poll(&wait, 1, kMilliseconds) == 1;
    close(process);
    return has_ended;
}

TEST(ReaderProcess, ProcessThatTheReaderLeavesIsEnded)
{
    // It holds the stream open for ten minutes.
    const std::string child = ReasonOf("orphan", WithWall(std::chrono::minutes(1)));
    ASSERT_EQ(child.find_first_not_of("0123456789"), std::string::npos) << child;
    EXPECT_TRUE(HasEnded(std::stoi(child)));
    ExpectNoChild();
}

TEST(ReaderProcess, ProcessOfAReaderThatIsEndedIsEndedToo)
{
    pid_t child = 0;
    const auto stop = [&](double fraction) {
        child = static_cast<pid_t>(std::lround(fraction * kMaxProcesses));
        throw Enough();
    };
    EXPECT_THROW(ReasonOf("hanging family", GenerousLimits(), stop), Enough);
    ASSERT_GT(child, 0);
    EXPECT_TRUE(HasEnded(child));
}

/// The reason of a reader without memory, if this process has a limit of address space.
std::string ReasonUnderAddressSpace(rlim_t soft, std::optional<rlim_t> hard, std::size_t memory)
{
    return InAChild([&] {
        rlimit limit{};
        getrlimit(RLIMIT_AS, &limit);
        limit = {soft, hard.value_or(limit.rlim_max)};
        setrlimit(RLIMIT_AS, &limit);
        return ReasonOf("no memory", GenerousLimits(memory));
    });
}

TEST(ReaderProcess, MessageNamesTheLimitOfAddressSpaceThatIsInForce)
{
    // Above what a sanitizer reserves, which is 20 TiB.
    constexpr std::size_t kTebibyte = std::size_t{1} << 40U;
    constexpr rlim_t kLimit = 32 * kTebibyte;
    const std::string of_32_tebibytes = "needs more than 33554432 MiB of memory to be read";
    EXPECT_EQ(ReasonUnderAddressSpace(kLimit, kLimit, 64 * kTebibyte), of_32_tebibytes);
    EXPECT_EQ(ReasonUnderAddressSpace(kLimit, std::nullopt, 64 * kTebibyte), of_32_tebibytes);
    EXPECT_EQ(ReasonUnderAddressSpace(kLimit, kLimit, std::size_t{1} << 30U),
              "needs more than 1024 MiB of memory to be read");
}

TEST(ReaderProcess, ProgressIsPassedOn)
{
    std::vector<double> seen;
    ReasonOf("hang", WithWall(kShort), [&](double fraction) { seen.push_back(fraction); });
    EXPECT_THAT(seen, ElementsAre(0.42));
}

TEST(ReaderProcess, WhatProgressThrowsPassesThroughAndEndsTheReader)
{
    EXPECT_THROW(ReasonOf("hang", GenerousLimits(), [](double) { throw Enough(); }), Enough);
    ExpectNoChild();
}

TEST(ReaderProcess, SignalsThatStopTheUserCancelTheReadingAlone)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // A test that runs in the background may have inherited signals that are ignored.
        const auto before = std::signal(signal, SIG_DFL);
        EXPECT_EQ(ReasonOf("hang", GenerousLimits(), [&](double) { std::raise(signal); }),
                  "reading was cancelled, at 42 %");
        std::signal(signal, before);
        ExpectNoChild();
    }
    EXPECT_EQ(ReasonOf("model"), "a model") << "the next one is not cancelled";
}

TEST(ReaderProcess, SignalsDoAfterwardsWhatTheyDidBefore)
{
    static volatile std::sig_atomic_t heard = 0;
    const auto before = std::signal(SIGTERM, [](int) { heard = heard + 1; });
    EXPECT_EQ(ReasonOf("hang", GenerousLimits(), [&](double) { std::raise(SIGTERM); }),
              "reading was cancelled, at 42 %");
    EXPECT_EQ(heard, 0);
    std::raise(SIGTERM);
    EXPECT_EQ(heard, 1);
    std::signal(SIGTERM, before);
}

TEST(ReaderProcess, IgnoredSignalsStayIgnored)
{
    const auto before = std::signal(SIGHUP, SIG_IGN);
    EXPECT_EQ(ReasonOf("hang", WithWall(kShort), [&](double) { std::raise(SIGHUP); }),
              "takes longer than 1.5 s to be read, at 42 %");
    std::signal(SIGHUP, before);
}

TEST(ReaderProcess, ProgramThatIsNotThereIsAReason)
{
    try {
        static_cast<void>(ImportModel("a.stl", {}, {}, {"/none/karv-reader", GenerousLimits()}));
        FAIL() << "nothing can have been read";
    } catch (const FileError& error) {
        EXPECT_STREQ(error.what(),
                     "a.stl: its reader /none/karv-reader cannot be started: No such file or directory");
    }
    ExpectNoChild();
}

TEST(ReaderProcess, StopThatAnotherThreadRequestsEndsTheReader)
{
    std::stop_source stop;
    std::atomic<bool> has_begun = false;
    const std::jthread user([&] {
        has_begun.wait(false);
        stop.request_stop();
    });
    ReaderSettings settings{KARV_FAKE_READER, GenerousLimits()};
    settings.stop = stop.get_token();
    const auto report = [&](double) {
        has_begun = true;
        has_begun.notify_one();
    };
    // This reader reports 42 % and never answers.
    EXPECT_THROW(static_cast<void>(ImportModel("hang", {}, report, settings)), ReadingCancelled);
    ExpectNoChild();
}

TEST(ReaderProcess, WorkMeanwhileIsDoneWhileTheReaderRuns)
{
    bool runs = false;
    ReaderSettings settings{KARV_FAKE_READER, GenerousLimits()};
    settings.meanwhile = [&] {
        siginfo_t state{};
        runs = waitid(P_ALL, 0, &state, WEXITED | WNOHANG | WNOWAIT) == 0;
        throw Enough();
    };
    // This reader never answers.
    EXPECT_THROW(static_cast<void>(ImportModel("hang", {}, {}, settings)), Enough);
    EXPECT_TRUE(runs);
    ExpectNoChild();
}

TEST(ReaderProcess, HundredReadersLeaveNoDescriptorBehind)
{
    const auto open_descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    ReasonOf("silent");
    const auto before = open_descriptors();
    for (int i = 0; i < 100; ++i)
        ReasonOf(i % 2 == 0 ? "silent" : "model");
    EXPECT_EQ(open_descriptors(), before);
}

/// Runs a program with these arguments and returns its exit status, or minus the signal that ended it.
int StatusOf(const std::string& program, std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), program);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    pid_t id = 0;
    if (posix_spawn(&id, program.c_str(), nullptr, nullptr, pointers.data(), environ) != 0)
        return -1000;
    int status = 0;
    waitpid(id, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(ProcessLimits, ProcessThatNeedsMoreMemoryThanAllowedEndsWithItsStatus)
{
    EXPECT_EQ(StatusOf(KARV_LIMITED_PROCESS, {"128"}), kOutOfMemoryStatus);
    EXPECT_EQ(StatusOf(KARV_LIMITED_PROCESS, {"4096"}), 0);
}

TEST(ProcessLimits, LowerLimitOfAddressSpaceStays)
{
    // The shell sets it in KiB, as a soft limit, which the process could raise.
    EXPECT_EQ(StatusOf("/bin/sh", {"-c", "ulimit -Sv 131072 && exec '" KARV_LIMITED_PROCESS "' 4096"}),
              kOutOfMemoryStatus);
}

std::vector<std::string> ArgumentsFor(const std::string& path, int parent)
{
    const ReaderLimits limits = GenerousLimits();
    return WriteReaderArguments({.parent = parent,
                                 .processor = limits.processor,
                                 .memory = limits.memory,
                                 .options = {},
                                 .path = path});
}

TEST(ReaderProgram, ReaderWhoseParentHasEndedEndsAtOnce)
{
    // The test is the parent, so that any other id is wrong.
    const int nobody = getpid() + 1;
    EXPECT_EQ(StatusOf(KARV_READER, ArgumentsFor("none.obj", nobody)), 2);
}

/// Files read by karv-reader, which is in the folder of this program.
class ReaderBesideThisProgram : public ViewerTest
{
  protected:
    static Model Import(const std::string& path, const ImportOptions& options = {})
    {
        return ImportModel(path, options, {}, {.limits = GenerousLimits()});
    }
    static std::string ErrorOf(const std::string& path)
    {
        try {
            static_cast<void>(Import(path));
        } catch (const FileError& error) {
            return error.what();
        }
        return "a model";
    }
};

TEST_F(ReaderBesideThisProgram, ModelIsThatOfTheFile)
{
    Write("concave.mtl", kConcaveMtl);
    const Model model = Import(Write("concave.obj", kConcaveObj));
    ASSERT_THAT(model.pieces, SizeIs(1));
    EXPECT_EQ(model.title, "concave.obj");
    EXPECT_THAT(model.category_names, ElementsAre("glass"));
    EXPECT_EQ(model.pieces[0].alpha, 0.5F);
    EXPECT_TRUE(model.pieces[0].two_sided);
    EXPECT_EQ(model.FaceCount(), 1U);
    ASSERT_THAT(model.pieces[0].faces, SizeIs(4));
    for (const ModelFace& face : model.pieces[0].faces) {
        EXPECT_THAT(face.corners, SizeIs(3));
        EXPECT_EQ(face.normal, (Point{0, 0, 1}));
    }
    EXPECT_EQ(model.Extents().max, (Point{2, 2, 0}));
}

TEST_F(ReaderBesideThisProgram, ReasonIsThatOfTheImporter)
{
    EXPECT_EQ(ErrorOf(PathOf("none.obj")), PathOf("none.obj") + ": no such file");
    EXPECT_EQ(ErrorOf(Write("nothing.obj", "# nothing\n")),
              PathOf("nothing.obj") + ": holds no faces, lines or points");
}

TEST_F(ReaderBesideThisProgram, ProgressOfTheImporterArrivesInOrder)
{
    std::string grid;
    constexpr int kTriangles = 20'000;
    for (int i = 0; i < kTriangles; ++i)
        grid += "v " + std::to_string(i) + " 0 0\nv " + std::to_string(i) + " 1 0\nv " + std::to_string(i) +
                " 0 1\nf -3 -2 -1\n";
    std::vector<double> seen;
    const Model model =
        ImportModel(Write("many.obj", grid), {}, [&](double fraction) { seen.push_back(fraction); },
                    {.limits = GenerousLimits()});
    EXPECT_EQ(model.FaceCount(), 20'000U);
    ASSERT_FALSE(seen.empty());
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_GT(seen.front(), 0.0);
    EXPECT_GT(seen.back(), 0.9);
    EXPECT_LE(seen.back(), 1.0);
}

TEST_F(ReaderBesideThisProgram, NamesWithBlanksQuotesAndDashesAreJustNames)
{
    for (const std::string name : {"a b.obj", "-it's.obj", "--list.obj", "a\"b$c.obj"})
        EXPECT_THAT(Import(Write(name, kCubeObj)).pieces, SizeIs(1)) << name;
}

TEST_F(ReaderBesideThisProgram, CoordinatesTooFarApartForTheirDistanceAreRefused)
{
    const std::string path =
        Write("far.dxf", "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n-1e308\n20\n0\n30\n0\n"
                         "11\n1e308\n21\n0\n31\n0\n0\nENDSEC\n0\nEOF\n");
    EXPECT_THAT(ErrorOf(path), AllOf(StartsWith(path + ": "), HasSubstr("coordinates")));
}

} // namespace
} // namespace viewer
