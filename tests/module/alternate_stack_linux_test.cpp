// The handler of processor faults on alternate signal stacks of all sizes.
#include "platform/tools/processor_faults.h"

#include "module/guard.h"
#include "tests/support/processor_state.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <thread>

#include <sys/mman.h>
#include <unistd.h>

using karv_test::ForeignFaultHandler;

namespace
{

constexpr std::size_t kPage = 4096;

/// What the system needs for a signal, at most.
std::size_t FrameSize()
{
    return static_cast<std::size_t>(::sysconf(_SC_MINSIGSTKSZ));
}
/// What is enough for the handler.
std::size_t SufficientSize()
{
    return FrameSize() + 4096;
}

/// An alternate stack of the thread, for the object's life. Below it lies memory that is not part of it.
class AlternateStack
{
  public:
    enum class Below {
        Guarded,  ///< any access ends the process
        Readable, ///< as any other memory
    };

    explicit AlternateStack(std::size_t size, Below below = Below::Guarded)
        : mapped_(kBelow + size), memory_(static_cast<char*>(::mmap(nullptr, mapped_, PROT_READ | PROT_WRITE,
                                                                    MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        const int protection = below == Below::Guarded ? PROT_NONE : PROT_READ | PROT_WRITE;
        EXPECT_EQ(::mprotect(memory_, kBelow, protection), 0);
        stack_t stack{};
        stack.ss_sp = memory_ + kBelow;
        stack.ss_size = size;
        EXPECT_EQ(::sigaltstack(&stack, &before_), 0);
    }
    AlternateStack(const AlternateStack&) = delete;
    AlternateStack& operator=(const AlternateStack&) = delete;
    ~AlternateStack()
    {
        EXPECT_EQ(::sigaltstack(&before_, nullptr), 0);
        EXPECT_EQ(::munmap(memory_, mapped_), 0);
    }

  private:
    static constexpr std::size_t kBelow = 32 * kPage;

    std::size_t mapped_;
    char* memory_;
    stack_t before_{};
};

[[gnu::noinline]] void WriteTo(std::uintptr_t address)
{
    volatile int* const place = reinterpret_cast<volatile int*>(address);
    *place = 1;
    if (*place == 2)
        throw 1;
}

void FaultInAGuard()
{
    constexpr std::uintptr_t kUnmapped = 0x5000;
    karv::Guarded<L"Thing::Do">([] { WriteTo(kUnmapped); });
}

const void* ThisImage()
{
    return reinterpret_cast<const void*>(&FaultInAGuard);
}

/// A host with a handler of its own, which gets the faults that are passed on.
class AlternateStackFaults : public testing::Test
{
  protected:
    AlternateStackFaults() { EXPECT_TRUE(CatchProcessorFaults(ThisImage())); }
    ~AlternateStackFaults() override { StopCatchingProcessorFaults(); }

    /// Whether a fault in a guard is caught, not passed on to the host.
    bool IsCaught()
    {
        return !host_.Run([] { FaultInAGuard(); });
    }

  private:
    ForeignFaultHandler host_;
};

TEST_F(AlternateStackFaults, AreCaughtWithoutAnAlternateStack)
{
    EXPECT_TRUE(IsCaught());
}

TEST_F(AlternateStackFaults, StackOf8192BytesIsNotOverwritten)
{
    const AlternateStack stack(8192);
    const bool is_caught = IsCaught();
    EXPECT_TRUE(is_caught || SufficientSize() > 8192);
}

TEST_F(AlternateStackFaults, AreCaughtOnAStackOfSufficientSize)
{
    const AlternateStack stack(SufficientSize());
    EXPECT_TRUE(IsCaught());
}

TEST_F(AlternateStackFaults, ArePassedOnWhereTheStackIsTooSmall)
{
    const AlternateStack stack(FrameSize() + 1024);
    EXPECT_FALSE(IsCaught());
}

TEST_F(AlternateStackFaults, NoSizeIsOverwritten)
{
    bool was_caught = false;
    for (std::size_t size = FrameSize() + 1024; size <= FrameSize() + 8192; size += 16) {
        const AlternateStack stack(size);
        const bool is_caught = IsCaught();
        EXPECT_TRUE(is_caught || !was_caught) << size;
        was_caught = is_caught;
    }
    EXPECT_TRUE(was_caught);
}

TEST_F(AlternateStackFaults, OtherThreadsHaveStacksOfTheirOwn)
{
    bool is_caught = true;
    std::thread other([&] {
        const AlternateStack stack(FrameSize() + 1024);
        is_caught = IsCaught();
    });
    other.join();
    EXPECT_FALSE(is_caught);
    EXPECT_TRUE(IsCaught());
}

TEST(AlternateStackRequest, IsRefusedWhereTheStackIsTooSmall)
{
    {
        const AlternateStack stack(SufficientSize() - 1);
        EXPECT_FALSE(CatchProcessorFaults(ThisImage()));
        EXPECT_FALSE(CTqLogEntry(L"Thing::Do").IsWatched());
    }
    const AlternateStack stack(SufficientSize());
    EXPECT_TRUE(CatchProcessorFaults(ThisImage()));
    StopCatchingProcessorFaults();
}

/// Code that runs on the alternate stack, as a host's handler of another signal does.
class FaultOnTheAlternateStack : public AlternateStackFaults
{
  protected:
    FaultOnTheAlternateStack()
    {
        run_ = [this] { is_caught_ = IsCaught(); };
        struct sigaction action {
        };
        action.sa_handler = [](int) { run_(); };
        action.sa_flags = SA_ONSTACK;
        ::sigaction(SIGUSR1, &action, nullptr);
    }

    /// Whether the fault is caught.
    static bool RunOn(std::size_t size)
    {
        const AlternateStack stack(size, AlternateStack::Below::Readable);
        is_caught_ = false;
        ::raise(SIGUSR1);
        return is_caught_;
    }

  private:
    static inline std::function<void()> run_;
    static inline bool is_caught_ = false;
};

TEST_F(FaultOnTheAlternateStack, IsCaughtOnlyWithRoomForUnwinding)
{
    EXPECT_FALSE(RunOn(std::size_t{48} * 1024));
    EXPECT_TRUE(RunOn(std::size_t{128} * 1024));
}

} // namespace
