// Access violations inside the module's operations, in a process that asks for them to be caught.
#include "platform/tools/processor_faults.h"

#include "control/KARVOpenGLControl.h"
#include "module/guard.h"
#include "platform/host/db/entities.h"
#include "platform/host/rx/entry_points.h"
#include "platform/modeler/primitives.h"
#include "tests/support/processor_state.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using karv_test::ForeignFaultHandler;
using karv_test::TraceRecording;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

extern "C" KARV_IMPORT host::Answer acrxEntryPoint(host::Message message, void* application);

namespace
{

constexpr auto kType = KARVGraphicalEntity::EntityType0;

const void* ModuleAddress()
{
    return reinterpret_cast<const void*>(&acrxEntryPoint);
}

/// A pointer whose value is hidden from the compiler.
template <typename Type>
Type* Pointer(std::uintptr_t address)
{
    volatile std::uintptr_t hidden = address;
    return reinterpret_cast<Type*>(hidden);
}

constexpr std::uintptr_t kNull = 0;
/// In the part of the address space that systems leave unmapped to catch null pointers.
constexpr std::uintptr_t kUnmapped = 0x5000;
/// Not a valid address: the upper bits are neither all set nor all clear.
constexpr std::uintptr_t kNonCanonical = 0x4141'4141'4141'4140;

/// Switches the catching of the module's faults on during its life.
class ProcessorFaults : public testing::Test
{
  protected:
    ProcessorFaults() { EXPECT_TRUE(CatchProcessorFaults(ModuleAddress())); }
    ~ProcessorFaults() override { StopCatchingProcessorFaults(); }
};

/// A host that catches the module's faults and has a handler of its own, installed earlier or later. Which of
/// the two is asked first depends on the system.
class PassedOnFaults : public testing::TestWithParam<bool>
{
  protected:
    PassedOnFaults()
    {
        if (GetParam())
            foreign_.emplace();
        EXPECT_TRUE(CatchProcessorFaults(ModuleAddress()));
        if (!GetParam())
            foreign_.emplace();
    }
    ~PassedOnFaults() override
    {
        // Handlers must be removed in reverse order where each keeps the one before it.
        if (!GetParam())
            foreign_.reset();
        StopCatchingProcessorFaults();
    }

    /// Whether a fault of `act` reaches the host's handler.
    bool Run(const std::function<void()>& act) { return foreign_->Run(act); }

  private:
    std::optional<ForeignFaultHandler> foreign_;
};

INSTANTIATE_TEST_SUITE_P(EarlierHandler, PassedOnFaults, testing::Values(true));
INSTANTIATE_TEST_SUITE_P(LaterHandler, PassedOnFaults, testing::Values(false));

/// How many calls are open at the end of the recording.
int OpenCalls(const TraceRecording& trace)
{
    int open = 0;
    for (const TraceRecord& record : trace.Records())
        open += record.kind == TraceRecord::Kind::Enter   ? 1
                : record.kind == TraceRecord::Kind::Leave ? -1
                                                          : 0;
    return open;
}

/// The last line before that of the fault.
std::string LineBeforeFault(const TraceRecording& trace)
{
    std::string last;
    for (const std::string& line : trace.Listing()) {
        if (line.starts_with('!'))
            return last;
        last = line;
    }
    return {};
}

/// A function of karv_platform that faults and has no guard.
void FaultInPlatform()
{
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    Pointer<AModeler::Body>(kNull)->getPhysicalEdgesAndVertices(true, true, edges, vertices);
}

/// Calls back into the host from an operation that asks for the object's class.
template <typename Entity>
class Calling : public Entity
{
  public:
    explicit Calling(std::function<void()> act) : act_(std::move(act)) {}
    [[nodiscard]] AcRxClass* isA() const override
    {
        act_();
        return Entity::desc();
    }

  private:
    std::function<void()> act_;
};
using CallingEntity = Calling<AcDbEntity>;
using CallingLine = Calling<AcDbLine>;

[[gnu::noinline]] void WriteTo(int* place)
{
    *static_cast<volatile int*>(place) = 1;
    if (*static_cast<volatile int*>(place) == 2)
        throw 1;
}

/// Ends the process if an exception leaves it.
// NOLINTNEXTLINE(bugprone-exception-escape): tests that no exception leaves it
[[gnu::noinline]] void WriteWithoutThrowing(int* place) noexcept
{
    WriteTo(place);
    *static_cast<volatile int*>(place) = 3;
}

void GuardedWrite(int* place)
{
    karv::Guarded<L"Thing::Write">([&] { WriteTo(place); });
}

} // namespace

TEST_F(ProcessorFaults, NullBodyIsOneReportOfTheInnermostOperation)
{
    KARVOpenGLControl control;
    const TraceRecording trace;
    control.AppendGeometry(Pointer<AModeler::Body>(kNull), kType, 1, 1.0F);
    EXPECT_THAT(trace.Faults(), ElementsAre(HasSubstr("KARVGraphicalEntity")));
    EXPECT_EQ(LineBeforeFault(trace), "< KARVGraphicalEntity::CreateGLCache");
    EXPECT_EQ(OpenCalls(trace), 0);
}

TEST_F(ProcessorFaults, OuterOperationRunsToItsEnd)
{
    KARVOpenGLControl control;
    control.AppendGeometry(Pointer<AModeler::Body>(kNull), kType, 1, 1.0F);
    EXPECT_THAT(control.entities, SizeIs(1)) << "the entity without its body";
}

TEST_F(ProcessorFaults, WildBodyIsOneReport)
{
    for (const std::uintptr_t address : {kUnmapped, kNonCanonical}) {
        KARVOpenGLControl control;
        const TraceRecording trace;
        control.AppendGeometry(Pointer<AModeler::Body>(address), kType, 1, 1.0F);
        EXPECT_THAT(trace.Faults(), SizeIs(1));
        EXPECT_EQ(OpenCalls(trace), 0);
    }
}

TEST_F(ProcessorFaults, WildPointerInsideABodyIsOneReport)
{
    AModeler::Body box = AModeler::MakeBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    box.edges_.at(5).vertex_ = Pointer<AModeler::Vertex>(kUnmapped);
    const TraceRecording trace;
    const KARVGraphicalEntity entity(&box, kType, 1);
    EXPECT_THAT(trace.Faults(), SizeIs(1));
}

TEST_F(ProcessorFaults, FaultInPlatformCodeIsCaughtByTheModulesGuard)
{
    AModeler::Body box = AModeler::MakeBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    KARVGraphicalEntity entity;
    const TraceRecording trace;
    box.faces_.clear();
    box.edges_.at(5).next_ = Pointer<AModeler::Edge>(kUnmapped);
    entity.CreateGLCache(&box);
    EXPECT_THAT(trace.Listing(),
                ElementsAre("> KARVGraphicalEntity::CreateGLCache", "< KARVGraphicalEntity::CreateGLCache",
                            R"(! .\KARVGraphicalEntity.cpp)"));
}

TEST_F(ProcessorFaults, WildEntityIsOneReport)
{
    KARVOpenGLControl control;
    const TraceRecording trace;
    control.AppendGeometry(Pointer<AcDbEntity>(kUnmapped), kType);
    EXPECT_THAT(trace.Faults(), SizeIs(1));
    EXPECT_EQ(OpenCalls(trace), 0);
}

TEST_F(ProcessorFaults, NullEntityInTheCacheIsOneReport)
{
    KARVGraphicalEntity entity;
    const TraceRecording trace;
    entity.CreateGLCache(Pointer<AcDbEntity>(kNull));
    EXPECT_THAT(trace.Faults(), SizeIs(1));
}

TEST_F(ProcessorFaults, FaultingGetterIsZero)
{
    const TraceRecording trace;
    EXPECT_EQ(Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(), 0);
    EXPECT_EQ(Pointer<KARVGraphicalEntity>(kNonCanonical)->GetFaceNumber(), 0);
    EXPECT_THAT(trace.Faults(), SizeIs(2));
}

TEST_F(ProcessorFaults, WriteIsCaughtToo)
{
    const TraceRecording trace;
    Pointer<KARVGraphicalEntity>(kUnmapped)->SetAlpha(0.5F);
    EXPECT_THAT(trace.Faults(), SizeIs(1));
}

TEST_F(ProcessorFaults, IsCaughtWithoutASinkToo)
{
    EXPECT_EQ(Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(), 0);
    EXPECT_EQ(InstallTraceSink(nullptr), nullptr);
}

TEST_F(ProcessorFaults, IsCaughtAfterASinkCameAndWent)
{
    {
        const TraceRecording trace;
    }
    EXPECT_EQ(Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(), 0);
}

TEST_F(ProcessorFaults, GuardOfAnotherRegisteredImageCatchesToo)
{
    const TraceRecording trace;
    ASSERT_TRUE(CatchProcessorFaults(reinterpret_cast<const void*>(&GuardedWrite)));
    GuardedWrite(Pointer<int>(kUnmapped));
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Write", "< Thing::Write", R"(! .\Thing.cpp)"));
}

TEST_F(ProcessorFaults, ObjectsOfCallersAreDestroyed)
{
    struct Witness {
        bool& is_gone;
        ~Witness() { is_gone = true; }
    };
    ASSERT_TRUE(CatchProcessorFaults(reinterpret_cast<const void*>(&GuardedWrite)));
    bool is_gone = false;
    karv::Guarded<L"Thing::Do">([&] {
        const Witness witness{is_gone};
        WriteTo(Pointer<int>(kUnmapped));
    });
    EXPECT_TRUE(is_gone);
}

TEST_F(ProcessorFaults, NoexceptFunctionsAreLeftToo)
{
    ASSERT_TRUE(CatchProcessorFaults(reinterpret_cast<const void*>(&GuardedWrite)));
    const TraceRecording trace;
    karv::Guarded<L"Thing::Do">([] { WriteWithoutThrowing(Pointer<int>(kUnmapped)); });
    EXPECT_THAT(trace.Listing(), ElementsAre("> Thing::Do", "< Thing::Do", R"(! .\Thing.cpp)"));
}

TEST_F(ProcessorFaults, ControlWorksAfterwards)
{
    AModeler::Body box = AModeler::MakeBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    KARVOpenGLControl control;
    control.AppendGeometry(Pointer<AModeler::Body>(kNull), kType, 1, 1.0F);
    const TraceRecording trace;
    control.AppendGeometry(&box, kType, 1, 1.0F);
    EXPECT_EQ(control.GetFaceNumber(), 6);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ProcessorFaults, ExceptionsAreStillCaught)
{
    KARVOpenGLControl control;
    const TraceRecording trace;
    control.AllocateMemory(-1);
    EXPECT_THAT(trace.Faults(), SizeIs(1));
}

TEST_F(ProcessorFaults, ThousandInARowLeaveNothingBehind)
{
    const auto fault = [] { const KARVGraphicalEntity entity(Pointer<AModeler::Body>(kNull), kType, 1); };
    for (int i = 0; i < 100; ++i)
        fault();
    const std::size_t before = karv_test::MemoryInUse();
    for (int i = 0; i < 1000; ++i)
        fault();
    EXPECT_EQ(karv_test::MemoryInUse(), before);
}

TEST_F(ProcessorFaults, SecondThreadHasItsOwnGuards)
{
    const TraceRecording trace;
    std::thread second([] { const KARVGraphicalEntity entity(Pointer<AModeler::Body>(kNull), kType, 1); });
    second.join();
    EXPECT_THAT(trace.Faults(), SizeIs(1));
    EXPECT_EQ(OpenCalls(trace), 0);
}

TEST_F(ProcessorFaults, FourThreadsAtOnceAreCaughtByTheirOwnGuards)
{
    constexpr int kEach = 250;
    const TraceRecording trace;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int k = 0; k < kEach; ++k)
                const KARVGraphicalEntity entity(Pointer<AModeler::Body>(kNull), kType, 1);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(trace.Faults(), SizeIs(4 * kEach));
    EXPECT_EQ(OpenCalls(trace), 0);
}

TEST_P(PassedOnFaults, OutsideAnyGuard)
{
    EXPECT_TRUE(Run([] { FaultInPlatform(); }));
}

TEST_P(PassedOnFaults, OutsideAnyGuardOfThisThread)
{
    std::promise<void> is_inside;
    std::promise<void> may_leave;
    std::thread other([&] {
        CallingEntity entity([&] {
            is_inside.set_value();
            may_leave.get_future().wait();
        });
        const KARVGraphicalEntity built(&entity, kType);
    });
    is_inside.get_future().wait();
    EXPECT_TRUE(Run([] { FaultInPlatform(); }));
    may_leave.set_value();
    other.join();
}

TEST_P(PassedOnFaults, InACallbackOfTheHost)
{
    CallingEntity entity([] { WriteTo(Pointer<int>(kUnmapped)); });
    const TraceRecording trace;
    EXPECT_TRUE(Run([&] { const KARVGraphicalEntity built(&entity, kType); }));
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_P(PassedOnFaults, InAFunctionOfTheHostThatIsCalledByOurs)
{
    class FaultingEntity : public AcDbEntity
    {
      public:
        [[nodiscard]] AcRxClass* isA() const override { return *Pointer<AcRxClass*>(kUnmapped); }
    };
    FaultingEntity entity;
    const TraceRecording trace;
    EXPECT_TRUE(Run([&] { const KARVGraphicalEntity built(&entity, kType); }));
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_P(PassedOnFaults, InFunctionsOfCaughtImagesWithoutAGuard)
{
    ASSERT_TRUE(CatchProcessorFaults(reinterpret_cast<const void*>(&FaultInPlatform)));
    EXPECT_TRUE(Run([] { FaultInPlatform(); }));
}

TEST_P(PassedOnFaults, BelowAGuardOfAnUnregisteredImage)
{
    EXPECT_TRUE(Run([] { GuardedWrite(Pointer<int>(kUnmapped)); }));
}

TEST_P(PassedOnFaults, BelowAFunctionOfTheHost)
{
    CallingEntity entity([] { FaultInPlatform(); });
    const TraceRecording trace;
    EXPECT_TRUE(Run([&] { const KARVGraphicalEntity built(&entity, kType); }));
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_P(PassedOnFaults, BelowANoexceptFunction)
{
    // The next entry of the operation goes to an invalid sink; the function that notifies the sink is
    // noexcept.
    CallingLine line([] { InstallTraceSink(Pointer<TraceSink>(kUnmapped)); });
    EXPECT_TRUE(Run([&] { const KARVGraphicalEntity built(&line, kType); }));
    InstallTraceSink(nullptr);
}

TEST_F(ProcessorFaults, OperationBelowAFunctionOfTheHostIsAGuard)
{
    ForeignFaultHandler foreign;
    bool has_returned = false;
    CallingEntity entity([&] {
        const KARVGraphicalEntity inner(Pointer<AModeler::Body>(kNull), kType, 1);
        has_returned = true;
    });
    const TraceRecording trace;
    const KARVGraphicalEntity built(&entity, kType);
    EXPECT_TRUE(has_returned);
    EXPECT_THAT(trace.Faults(), SizeIs(1));
}

TEST_F(ProcessorFaults, AreStillCaughtBesideALaterHandler)
{
    const ForeignFaultHandler foreign;
    const TraceRecording trace;
    const KARVGraphicalEntity entity(Pointer<AModeler::Body>(kNull), kType, 1);
    EXPECT_THAT(trace.Faults(), SizeIs(1));
}

TEST_F(ProcessorFaults, SecondRequestForTheSameImageChangesNothing)
{
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(CatchProcessorFaults(ModuleAddress()));
    EXPECT_EQ(Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(), 0);
}

TEST(ProcessorFaultsSwitch, EarlierHandlerGetsOtherFaults)
{
    ForeignFaultHandler foreign;
    ASSERT_TRUE(CatchProcessorFaults(ModuleAddress()));
    {
        const TraceRecording trace;
        const KARVGraphicalEntity entity(Pointer<AModeler::Body>(kNull), kType, 1);
        EXPECT_THAT(trace.Faults(), SizeIs(1));
    }
    EXPECT_TRUE(foreign.Run([] { FaultInPlatform(); }));
    EXPECT_TRUE(foreign.Run([] { WriteTo(Pointer<int>(kUnmapped)); }));
    StopCatchingProcessorFaults();
    EXPECT_TRUE(foreign.Run([] { WriteTo(Pointer<int>(kUnmapped)); }));
}

TEST(ProcessorFaultsSwitch, NothingIsCaughtBeforeItIsAskedFor)
{
    ForeignFaultHandler foreign;
    EXPECT_TRUE(foreign.Run([] { Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(); }));
}

TEST(ProcessorFaultsSwitch, NothingIsCaughtAfterItWasSwitchedOff)
{
    ForeignFaultHandler foreign;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(CatchProcessorFaults(ModuleAddress()));
        EXPECT_EQ(Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(), 0);
        StopCatchingProcessorFaults();
        StopCatchingProcessorFaults();
        EXPECT_TRUE(foreign.Run([] { Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(); }));
    }
}

TEST(ProcessorFaultsSwitch, SwitchingOffBelowALaterHandlerPassesEverythingOn)
{
    ASSERT_TRUE(CatchProcessorFaults(ModuleAddress()));
    {
        ForeignFaultHandler foreign;
        StopCatchingProcessorFaults();
        EXPECT_TRUE(foreign.Run([] { Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(); }));
        ASSERT_TRUE(CatchProcessorFaults(ModuleAddress()));
        EXPECT_EQ(Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(), 0);
    }
    EXPECT_EQ(Pointer<KARVOpenGLControl>(kNull)->GetFaceNumber(), 0);
    StopCatchingProcessorFaults();
}

TEST(ProcessorFaultsSwitch, SinkOfTheProcessStaysWhatItIs)
{
    const TraceRecording trace;
    TraceSink* const sink = InstallTraceSink(nullptr);
    InstallTraceSink(sink);
    ASSERT_TRUE(CatchProcessorFaults(ModuleAddress()));
    EXPECT_EQ(InstallTraceSink(sink), sink);
    EXPECT_EQ(InstallTraceSink(nullptr), sink);
    EXPECT_EQ(InstallTraceSink(sink), nullptr);
    StopCatchingProcessorFaults();
    EXPECT_EQ(InstallTraceSink(sink), sink);
}

TEST(ProcessorFaultsSwitch, EntriesAreFreeAgainAfterwards)
{
    ASSERT_TRUE(CatchProcessorFaults(ModuleAddress()));
    EXPECT_TRUE(CTqLogEntry(L"Thing::Do").IsWatched());
    StopCatchingProcessorFaults();
    EXPECT_FALSE(CTqLogEntry(L"Thing::Do").IsWatched());
}

TEST(ProcessorFaultsSwitch, AddressOfNoImageIsRefused)
{
    const int local = 0;
    EXPECT_FALSE(CatchProcessorFaults(&local));
    EXPECT_FALSE(CatchProcessorFaults(nullptr));
    EXPECT_FALSE(CTqLogEntry(L"Thing::Do").IsWatched());
}

TEST(ProcessorFaultsDeathTest, StackOverflowInAnOperationEndsTheProcess)
{
    constexpr int kWentOn = 43;
    constexpr std::size_t kStep = 64;
    const auto overflow = [](std::size_t distance) {
        karv_test::EndAtUnhandledFaults();
        CatchProcessorFaults(ModuleAddress());
        static_cast<volatile char*>(__builtin_alloca(distance + 1))[0] = 0;
        CallingEntity* again = nullptr;
        CallingEntity entity([&again] { const KARVGraphicalEntity built(again, kType); });
        again = &entity;
        {
            const KARVGraphicalEntity built(&entity, kType);
        }
        std::_Exit(kWentOn);
    };
    // Each starts at another depth, so that the stack ends in each of the functions of the recursion. Not
    // every system leaves the host's handler a stack to run on.
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EXIT(
            overflow(i * kStep), [](int status) { return !testing::ExitedWithCode(kWentOn)(status); }, "");
    }
}

TEST(ProcessorFaultsDeathTest, UncaughtFaultReachesTheHostsLastHandler)
{
    const auto fault = [] {
        karv_test::EndAtUnhandledFaults();
        CatchProcessorFaults(ModuleAddress());
        const KARVGraphicalEntity caught(Pointer<AModeler::Body>(kNull), kType, 1);
        FaultInPlatform();
    };
    EXPECT_EXIT(fault(), testing::ExitedWithCode(karv_test::kEndedByHost), "");
}
