// The one way in which a file is refused.
#pragma once

#include <stdexcept>
#include <string>

namespace viewer
{

/// A file could not be read or written; the text is "FILE: reason", in one line.
class FileError : public std::runtime_error
{
  public:
    FileError(const std::string& file, const std::string& reason) : std::runtime_error(file + ": " + reason)
    {
    }
};

} // namespace viewer
