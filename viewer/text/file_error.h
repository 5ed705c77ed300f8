// The error for a file that cannot be read or written.
#pragma once

#include <stdexcept>
#include <string>

namespace viewer
{

/// A file cannot be read or written. The text is "FILE: reason", in one line.
class FileError : public std::runtime_error
{
  public:
    FileError(const std::string& file, const std::string& reason) : std::runtime_error(file + ": " + reason)
    {
    }
};

} // namespace viewer
