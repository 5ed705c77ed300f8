// The standard streams that the program was started with.
#pragma once

namespace viewer
{

/// Occupies the file descriptors of standard streams that were closed, so that no file or connection of the
/// program gets one of them and receives its messages. Reading from them or writing to them still fails, as
/// it does with a closed stream. Called first, by the only thread.
void OccupyClosedStreams();

} // namespace viewer
