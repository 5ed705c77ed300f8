// The time that frames are measured with. For the thread that owns the windows.
#pragma once

#include "platform/winsys/export.h"

#include <ctime>
#include <functional>

namespace winsys
{

/// Wall time in ticks of 1 ms. On Windows this is `clock()`; elsewhere that counts processor time, which
/// would be wrong for a frame, because a software rasteriser draws on several threads.
[[nodiscard]] KARV_PLATFORM_API std::clock_t FrameClock();

/// Replaces the clock behind `FrameClock`; an empty function restores the real one.
KARV_PLATFORM_API void SetFrameClock(std::function<std::clock_t()> clock);

} // namespace winsys
