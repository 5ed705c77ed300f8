// The error for a file that cannot be read or written.
#pragma once

#include "viewer/text/text.h"

#include <cstddef>
#include <stdexcept>
#include <string>

namespace viewer
{

/// A file cannot be read or written. The text is "FILE: reason", in one line: both are cleaned by `OneLine`.
class FileError : public std::runtime_error
{
  public:
    FileError(const std::string& file, const std::string& reason)
        : std::runtime_error(OneLine(file) + kSeparator + OneLine(reason)),
          reason_(OneLine(file).size() + kSeparator.size())
    {
    }

    /// The text without the file. Valid as long as the object.
    [[nodiscard]] const char* Reason() const noexcept { return what() + reason_; }

  private:
    inline static const std::string kSeparator = ": ";

    std::size_t reason_; ///< where the reason begins in the text
};

} // namespace viewer
