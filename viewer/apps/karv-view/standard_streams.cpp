#include "viewer/apps/karv-view/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace viewer
{

void OccupyClosedStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        // A new file gets the lowest free descriptor. Opened for the other direction, it refuses every use.
        if (fcntl(stream, F_GETFD) == -1)
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

} // namespace viewer
