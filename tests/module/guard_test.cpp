#include "module/guard.h"

#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

using karv::Guarded;
using karv_test::TraceRecording;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

struct NoException {
    int payload = 0;
};

struct Record {
    float x = 0.0F;
    float y = 0.0F;
};

enum class Kind { None = 0, Some = 7 };

/// As short, as long and as alike as names may be.
constexpr std::array<std::wstring_view, 6> kNames = {
    L"A::B",         L"A::C",
    L"Thing::Do",    L"Thing::~Thing",
    L"Thing::Thing", L"AClassWithAVeryLongName::AndOneOfItsOperationsThatHasAnEvenLongerOne"};

/// How a fault is listed that the operation `name` reports from this line of its source.
std::string Place(const std::string& file, std::wstring_view name, int line)
{
    return file + ":" + std::to_string(karv::FirstFaultLine(name) + line);
}

} // namespace

TEST(Guard, NormalCompletionOpensAndClosesOneEntry)
{
    const TraceRecording trace;
    bool ran = false;
    Guarded<L"Thing::Do">([&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Do", "< Thing::Do"));
}

TEST(Guard, EntryIsOpenWhileTheBodyRuns)
{
    const TraceRecording trace;
    std::vector<std::string> seen;
    Guarded<L"Thing::Do">([&] { seen = trace.Listing(); });
    EXPECT_THAT(seen, ElementsAre("> Thing::Do"));
}

TEST(Guard, FaultClosesTheEntryBeforeItIsReported)
{
    const TraceRecording trace;
    Guarded<L"Thing::Do">([] { throw std::runtime_error("fault"); });
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Do", "< Thing::Do", R"(! .\Thing.cpp)"));
}

TEST(Guard, FaultNamesTheFileOfTheClassAndTheLineOfTheCall)
{
    const TraceRecording trace;
    const int before = __LINE__;
    Guarded<L"Thing::Do">([] { throw std::runtime_error("fault"); });
    EXPECT_THAT(trace.Faults(), ElementsAre(Place(".\\Thing.cpp", L"Thing::Do", before + 1)));
}

TEST(Guard, FaultOfACallOfSeveralLinesNamesItsFirst)
{
    const TraceRecording trace;
    int runs = 0;
    const int before = __LINE__;
    Guarded<L"Thing::~Thing">([&] {
        ++runs;
        throw 1;
    });
    EXPECT_THAT(trace.Faults(), ElementsAre(Place(".\\Thing.cpp", L"Thing::~Thing", before + 1)));
}

TEST(Guard, GivenLineIsReported)
{
    const TraceRecording trace;
    Guarded<L"Thing::Do">([] { throw 1; }, 4711);
    EXPECT_THAT(trace.Faults(), ElementsAre(Place(".\\Thing.cpp", L"Thing::Do", 4711)));
}

TEST(Guard, LastFourDigitsOfAFaultsLineAreThoseOfTheSource)
{
    for (const std::wstring_view name : kNames) {
        const int first = karv::FirstFaultLine(name);
        EXPECT_GE(first, 0);
        EXPECT_LE(first, std::numeric_limits<int>::max() - 9999);
        EXPECT_EQ(first % 10'000, 0);
    }
}

TEST(Guard, OperationsOnTheSameLineOfTwoSourcesReportDifferentLines)
{
    std::set<int> lines;
    for (const std::wstring_view name : kNames)
        lines.insert(karv::FirstFaultLine(name) + 47);
    EXPECT_EQ(lines.size(), kNames.size());
}

TEST(Guard, LocalsOfTheBodyAreUnwoundBeforeTheEntryCloses)
{
    struct Witness {
        const TraceRecording& trace;
        std::vector<std::string>& seen;
        ~Witness() { seen = trace.Listing(); }
    };
    const TraceRecording trace;
    std::vector<std::string> seen;
    Guarded<L"Thing::Do">([&] {
        const Witness witness{trace, seen};
        throw 1;
    });
    EXPECT_THAT(seen, ElementsAre("> Thing::Do"));
}

TEST(Guard, ThrownIntIsCaught)
{
    const TraceRecording trace;
    EXPECT_NO_THROW(Guarded<L"Thing::Do">([] { throw 42; }));
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Do", "< Thing::Do", R"(! .\Thing.cpp)"));
}

TEST(Guard, ThrownTypeWithoutExceptionBaseIsCaught)
{
    const TraceRecording trace;
    EXPECT_NO_THROW(Guarded<L"Thing::Do">([] { throw NoException{.payload = 1}; }));
    EXPECT_THAT(trace.Faults(), testing::SizeIs(1));
}

TEST(Guard, ThrownPointerIsCaught)
{
    const TraceRecording trace;
    // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): a pointer is what must be caught
    EXPECT_NO_THROW(Guarded<L"Thing::Do">([] { throw static_cast<const char*>("fault"); }));
    EXPECT_THAT(trace.Faults(), testing::SizeIs(1));
}

TEST(Guard, InnerFaultIsReportedOnceAndTheOuterRunsToItsEnd)
{
    const TraceRecording trace;
    bool finished = false;
    const int before = __LINE__;
    Guarded<L"Thing::Outer">([&] {
        Guarded<L"Other::Inner">([] { throw 1; });
        finished = true;
    });
    EXPECT_TRUE(finished);
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Outer", "> Other::Inner", "< Other::Inner",
                                             R"(! .\Other.cpp)", "< Thing::Outer"));
    EXPECT_THAT(trace.Faults(), ElementsAre(Place(".\\Other.cpp", L"Other::Inner", before + 2)));
}

TEST(Guard, OuterSeesTheZeroOfAnInnerFault)
{
    int seen = 99;
    Guarded<L"Thing::Outer">([&] { seen = Guarded<L"Thing::Inner">([]() -> int { throw 1; }); });
    EXPECT_EQ(seen, 0);
}

TEST(Guard, FaultAfterAnInnerFaultIsReportedToo)
{
    const TraceRecording trace;
    Guarded<L"Thing::Outer">([] {
        Guarded<L"Thing::Inner">([] { throw 1; });
        throw 2;
    });
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Outer", "> Thing::Inner", "< Thing::Inner",
                                             R"(! .\Thing.cpp)", "< Thing::Outer", R"(! .\Thing.cpp)"));
}

TEST(Guard, StateWrittenBeforeTheFaultStays)
{
    int first = 0;
    int second = 0;
    Guarded<L"Thing::Do">([&] {
        first = 1;
        throw 1;
        second = 1;
    });
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
}

TEST(Guard, ResultOfTheBodyIsReturned)
{
    EXPECT_EQ(Guarded<L"Thing::Get">([] { return 7; }), 7);
    EXPECT_TRUE(Guarded<L"Thing::Get">([] { return true; }));
    EXPECT_EQ(Guarded<L"Thing::Get">([] { return Kind::Some; }), Kind::Some);
    EXPECT_EQ(Guarded<L"Thing::Get">([] { return Record{2.0F, 3.0F}; }).y, 3.0F);
}

TEST(Guard, FaultingIntIsZero)
{
    EXPECT_EQ(Guarded<L"Thing::Get">([]() -> int { throw 1; }), 0);
}

TEST(Guard, FaultingBoolIsFalse)
{
    EXPECT_FALSE(Guarded<L"Thing::Get">([]() -> bool { throw 1; }));
}

TEST(Guard, FaultingFloatIsZero)
{
    EXPECT_EQ(Guarded<L"Thing::Get">([]() -> float { throw 1; }), 0.0F);
}

TEST(Guard, FaultingPointerIsNull)
{
    EXPECT_EQ(Guarded<L"Thing::Get">([]() -> int* { throw 1; }), nullptr);
}

TEST(Guard, FaultingEnumIsItsZero)
{
    EXPECT_EQ(Guarded<L"Thing::Get">([]() -> Kind { throw 1; }), Kind::None);
}

TEST(Guard, FaultingRecordIsZero)
{
    const Record record = Guarded<L"Thing::Get">([]() -> Record { throw 1; });
    EXPECT_EQ(record.x, 0.0F);
    EXPECT_EQ(record.y, 0.0F);
}

TEST(Guard, WithoutASinkNothingIsRecordedAndFaultsAreStillSwallowed)
{
    const TraceRecording trace;
    TraceSink* sink = InstallTraceSink(nullptr);
    EXPECT_NO_THROW(Guarded<L"Thing::Do">([] { throw 1; }));
    EXPECT_EQ(Guarded<L"Thing::Get">([]() -> int { throw 1; }), 0);
    InstallTraceSink(sink);
    EXPECT_THAT(trace.Listing(), IsEmpty());
}

TEST(Guard, HundredFaultsInARowAreHundredReports)
{
    const TraceRecording trace;
    for (int i = 0; i < 100; ++i)
        Guarded<L"Thing::Do">([i] { throw int{i}; });
    EXPECT_THAT(trace.Faults(), testing::SizeIs(100));
    EXPECT_THAT(trace.Calls(), testing::SizeIs(100));
}

TEST(Guard, ZeroOfTheToolsLibraryIsZero)
{
    static_assert(std::is_same_v<decltype(CTqCrashHandler::mov_rax_0()), std::int64_t>);
    EXPECT_EQ(CTqCrashHandler::mov_rax_0(), 0);
}
