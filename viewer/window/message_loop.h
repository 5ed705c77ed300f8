// The message loop of the program, for windows that are seen and for hidden ones.
#pragma once

#include <functional>

namespace viewer
{

/// Dispatches messages, and so draws frames, until the condition holds, which is asked before each; windows
/// see their messages before they are dispatched. Returns false where the program was told to quit first.
/// Throws std::runtime_error where messages bring no more frames, by what `frame_count` says, because nothing
/// can be drawn any more: the display is gone, for example.
bool PumpMessages(const std::function<bool()>& condition, const std::function<unsigned long()>& frame_count);

} // namespace viewer
