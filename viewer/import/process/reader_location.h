// Where karv-reader is.
#pragma once

#include <string>

namespace viewer
{

/// The path of karv-reader in the folder of the library or program that this code is linked into, so that a
/// client in any language finds the reader that was installed with the library. Whether the file exists is not
/// checked.
[[nodiscard]] std::string ReaderBesideThisCode();

} // namespace viewer
