// The message loop of the program, for visible and hidden windows.
#pragma once

#include <functional>

namespace viewer
{

/// Dispatches messages, and so draws frames, until the condition holds; it is checked before each message.
/// Windows see their messages before they are dispatched (PreTranslateMessage). Returns false where the
/// program was told to quit first. Throws std::runtime_error where `frame_count` no longer grows although
/// many timer messages come: no frame can be drawn then, because the display is gone, for example.
bool PumpMessages(const std::function<bool()>& condition, const std::function<unsigned long()>& frame_count);

} // namespace viewer
