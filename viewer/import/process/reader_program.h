// The program karv-reader, without its main function. If a parser crashes, this process ends and not its
// client.
#pragma once

namespace viewer
{

/// Reads the file that the arguments name (`ReaderArguments`) and writes the stream of its model to the
/// standard output, then ends the process. Output that libraries print is dropped. The process is also ended
/// when its parent ends. With other arguments it writes one line to the standard error stream and returns the
/// exit status 2. Must be called first in the main function.
int RunReader(int argc, const char* const* argv);

} // namespace viewer
