// The clock that frames are measured with. For the thread that owns the windows.
#pragma once

#include "platform/export.h"

#include <ctime>
#include <functional>

namespace winsys
{

/// Wall time in ticks of 1 ms. On Windows this is `clock()`. Elsewhere `clock()` counts processor time, which
/// is wrong for a frame: a software rasteriser draws on several threads.
[[nodiscard]] KARV_PLATFORM_API std::clock_t FrameClock();

/// Replaces the clock behind `FrameClock`; an empty function restores the real one.
KARV_PLATFORM_API void SetFrameClock(std::function<std::clock_t()> clock);

} // namespace winsys
