// The whole of karv-reader after its main function: a crash of a parser ends this process and not its client.
#pragma once

namespace viewer
{

/// Reads the file that the arguments (`ReaderArguments`) name and writes the stream of its model to the
/// standard output. Output that a library prints is dropped. The process also ends when its parent does.
/// Ends the process where the arguments are valid; otherwise writes one line to the standard error stream and
/// returns the exit status 2. To be called first in the main function.
int RunReader(int argc, const char* const* argv);

} // namespace viewer
