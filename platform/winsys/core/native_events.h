// Brings what happened to native windows into the window layer.
#pragma once

namespace winsys::core
{

/// Handles every event that has reached the installed backend, without waiting. Message handlers run within
/// this call. Does nothing if no backend is installed.
void PumpNativeEvents();

} // namespace winsys::core
