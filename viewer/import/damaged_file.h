// Errors of files with incomplete or invalid content.
#pragma once

#include "viewer/text/file_error.h"

#include <string>

namespace viewer
{

/// Throws FileError for a file that ends early. `what` names the missing part.
[[noreturn]] inline void ThrowTruncated(const std::string& path, const std::string& what)
{
    throw FileError(path, "truncated: " + what);
}

/// Throws FileError for a file with invalid content. `what` names the fault.
[[noreturn]] inline void ThrowDamaged(const std::string& path, const std::string& what)
{
    throw FileError(path, "damaged: " + what);
}

} // namespace viewer
