#include "platform/winsys/frame_clock.h"

#include <chrono>
#include <cstddef>
#include <new>
#include <utility>

namespace winsys
{
namespace
{

using Clock = std::function<std::clock_t()>;

/// Never destroyed: the last frame may come after the end of this library's static objects. Not on the heap
/// either: no frame may allocate memory, including the first.
Clock& ReplacedClock()
{
    alignas(Clock) static std::byte place[sizeof(Clock)];
    static Clock* const clock = ::new (place) Clock;
    return *clock;
}

#ifdef _WIN32

static_assert(CLOCKS_PER_SEC == 1000);

std::clock_t RealClock()
{
    return std::clock();
}

#else

std::clock_t RealClock()
{
    using std::chrono::steady_clock;
    static const steady_clock::time_point start = steady_clock::now();
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
    return static_cast<std::clock_t>(elapsed.count());
}

#endif

} // namespace

std::clock_t FrameClock()
{
    const Clock& replaced = ReplacedClock();
    return replaced ? replaced() : RealClock();
}

void SetFrameClock(std::function<std::clock_t()> clock)
{
    ReplacedClock() = std::move(clock);
}

} // namespace winsys
