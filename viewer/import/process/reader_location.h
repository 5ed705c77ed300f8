// Finds karv-reader.
#pragma once

#include <string>

namespace viewer
{

/// The absolute path of karv-reader in the folder of the library or program that this code is linked into, so
/// that a client in any language finds the reader that is installed with the library. The working folder, the
/// way in which the program was called, and symbolic links do not matter. Whether the file exists is not
/// checked. Empty on Windows, where no reader runs, and if the system does not tell which file the code is
/// in.
[[nodiscard]] std::string ReaderBesideThisCode();

} // namespace viewer
