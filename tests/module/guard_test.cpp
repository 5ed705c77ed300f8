#include "module/guard.h"

#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using karv::Guarded;
using karv_test::TraceRecording;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr const wchar_t* kFile = L".\\Source.cpp";

struct NoException {
    int payload = 0;
};

struct Record {
    float x = 0.0F;
    float y = 0.0F;
};

enum class Kind { None = 0, Some = 7 };

} // namespace

TEST(Guard, NormalCompletionOpensAndClosesOneEntry)
{
    const TraceRecording trace;
    bool ran = false;
    Guarded(L"Thing::Do", kFile, [&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Do", "< Thing::Do"));
}

TEST(Guard, EntryIsOpenWhileTheBodyRuns)
{
    const TraceRecording trace;
    std::vector<std::string> seen;
    Guarded(L"Thing::Do", kFile, [&] { seen = trace.Listing(); });
    EXPECT_THAT(seen, ElementsAre("> Thing::Do"));
}

TEST(Guard, FaultClosesTheEntryBeforeItIsReported)
{
    const TraceRecording trace;
    Guarded(L"Thing::Do", kFile, [] { throw std::runtime_error("fault"); });
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Do", "< Thing::Do", R"(! .\Source.cpp)"));
}

TEST(Guard, FaultCarriesTheLineOfTheGuardedCall)
{
    const TraceRecording trace;
    const int before = __LINE__;
    Guarded(L"Thing::Do", kFile, [] { throw std::runtime_error("fault"); });
    EXPECT_THAT(trace.Faults(), ElementsAre(R"(.\Source.cpp:)" + std::to_string(before + 1)));
}

TEST(Guard, GivenLineIsReported)
{
    const TraceRecording trace;
    Guarded(
        L"Thing::Do", kFile, [] { throw 1; }, 4711);
    EXPECT_THAT(trace.Faults(), ElementsAre(R"(.\Source.cpp:4711)"));
}

TEST(Guard, LinesAreAddedToThePlacesFirstLine)
{
    const TraceRecording trace;
    Guarded(
        L"Thing::Do", karv::FaultPlace(kFile, 2000), [] { throw 1; }, 47);
    EXPECT_THAT(trace.Faults(), ElementsAre(R"(.\Source.cpp:2047)"));
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
    Guarded(L"Thing::Do", kFile, [&] {
        const Witness witness{trace, seen};
        throw 1;
    });
    EXPECT_THAT(seen, ElementsAre("> Thing::Do"));
}

TEST(Guard, ThrownIntIsCaught)
{
    const TraceRecording trace;
    EXPECT_NO_THROW(Guarded(L"Thing::Do", kFile, [] { throw 42; }));
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Do", "< Thing::Do", R"(! .\Source.cpp)"));
}

TEST(Guard, ThrownTypeWithoutExceptionBaseIsCaught)
{
    const TraceRecording trace;
    EXPECT_NO_THROW(Guarded(L"Thing::Do", kFile, [] { throw NoException{.payload = 1}; }));
    EXPECT_THAT(trace.Faults(), testing::SizeIs(1));
}

TEST(Guard, ThrownPointerIsCaught)
{
    const TraceRecording trace;
    // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): the test is about a pointer
    EXPECT_NO_THROW(Guarded(L"Thing::Do", kFile, [] { throw static_cast<const char*>("fault"); }));
    EXPECT_THAT(trace.Faults(), testing::SizeIs(1));
}

TEST(Guard, InnerFaultIsReportedOnceAndTheOuterRunsToItsEnd)
{
    const TraceRecording trace;
    bool finished = false;
    const int before = __LINE__;
    Guarded(L"Thing::Outer", kFile, [&] {
        Guarded(L"Other::Inner", L".\\Other.cpp", [] { throw 1; });
        finished = true;
    });
    EXPECT_TRUE(finished);
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Outer", "> Other::Inner", "< Other::Inner",
                                             R"(! .\Other.cpp)", "< Thing::Outer"));
    EXPECT_THAT(trace.Faults(), ElementsAre(R"(.\Other.cpp:)" + std::to_string(before + 2)));
}

TEST(Guard, OuterSeesTheZeroOfAnInnerFault)
{
    int seen = 99;
    Guarded(L"Thing::Outer", kFile,
            [&] { seen = Guarded(L"Thing::Inner", kFile, []() -> int { throw 1; }); });
    EXPECT_EQ(seen, 0);
}

TEST(Guard, FaultAfterAnInnerFaultIsReportedToo)
{
    const TraceRecording trace;
    Guarded(L"Thing::Outer", kFile, [] {
        Guarded(L"Thing::Inner", kFile, [] { throw 1; });
        throw 2;
    });
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Outer", "> Thing::Inner", "< Thing::Inner",
                                             R"(! .\Source.cpp)", "< Thing::Outer", R"(! .\Source.cpp)"));
}

TEST(Guard, StateWrittenBeforeTheFaultStays)
{
    int first = 0;
    int second = 0;
    Guarded(L"Thing::Do", kFile, [&] {
        first = 1;
        throw 1;
        second = 1;
    });
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
}

TEST(Guard, ResultOfTheBodyIsReturned)
{
    EXPECT_EQ(Guarded(L"Thing::Get", kFile, [] { return 7; }), 7);
    EXPECT_TRUE(Guarded(L"Thing::Get", kFile, [] { return true; }));
    EXPECT_EQ(Guarded(L"Thing::Get", kFile, [] { return Kind::Some; }), Kind::Some);
    EXPECT_EQ(Guarded(L"Thing::Get", kFile, [] { return Record{2.0F, 3.0F}; }).y, 3.0F);
}

TEST(Guard, FaultingIntIsZero)
{
    EXPECT_EQ(Guarded(L"Thing::Get", kFile, []() -> int { throw 1; }), 0);
}

TEST(Guard, FaultingBoolIsFalse)
{
    EXPECT_FALSE(Guarded(L"Thing::Get", kFile, []() -> bool { throw 1; }));
}

TEST(Guard, FaultingFloatIsZero)
{
    EXPECT_EQ(Guarded(L"Thing::Get", kFile, []() -> float { throw 1; }), 0.0F);
}

TEST(Guard, FaultingPointerIsNull)
{
    EXPECT_EQ(Guarded(L"Thing::Get", kFile, []() -> int* { throw 1; }), nullptr);
}

TEST(Guard, FaultingEnumIsItsZero)
{
    EXPECT_EQ(Guarded(L"Thing::Get", kFile, []() -> Kind { throw 1; }), Kind::None);
}

TEST(Guard, FaultingRecordIsZero)
{
    const Record record = Guarded(L"Thing::Get", kFile, []() -> Record { throw 1; });
    EXPECT_EQ(record.x, 0.0F);
    EXPECT_EQ(record.y, 0.0F);
}

TEST(Guard, WithoutASinkNothingIsRecordedAndFaultsAreStillSwallowed)
{
    const TraceRecording trace;
    TraceSink* sink = InstallTraceSink(nullptr);
    EXPECT_NO_THROW(Guarded(L"Thing::Do", kFile, [] { throw 1; }));
    EXPECT_EQ(Guarded(L"Thing::Get", kFile, []() -> int { throw 1; }), 0);
    InstallTraceSink(sink);
    EXPECT_THAT(trace.Listing(), IsEmpty());
}

TEST(Guard, HundredFaultsInARowAreHundredReports)
{
    const TraceRecording trace;
    for (int i = 0; i < 100; ++i)
        Guarded(L"Thing::Do", kFile, [i] { throw int{i}; });
    EXPECT_THAT(trace.Faults(), testing::SizeIs(100));
    EXPECT_THAT(trace.Calls(), testing::SizeIs(100));
}

TEST(Guard, ZeroOfTheToolsLibraryIsZero)
{
    static_assert(std::is_same_v<decltype(CTqCrashHandler::mov_rax_0()), std::int64_t>);
    EXPECT_EQ(CTqCrashHandler::mov_rax_0(), 0);
}
