#include "platform/winsys/frame_clock.h"

#include <chrono>
#include <memory>
#include <utility>

namespace winsys
{
namespace
{

std::function<std::clock_t()>& ReplacedClock()
{
    // Never destroyed: the last frame may come after this library's statics are gone.
    static auto* const clock = std::make_unique<std::function<std::clock_t()>>().release();
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
    if (const auto clock = ReplacedClock())
        return clock();
    return RealClock();
}

void SetFrameClock(std::function<std::clock_t()> clock)
{
    ReplacedClock() = std::move(clock);
}

} // namespace winsys
