// Messages of libraries that parse model files.
#pragma once

#include "viewer/text/text.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace viewer
{

/// The reason for a file that a library refused: "cannot be read", with the library's message in one line
/// after it, cut at 200 bytes.
[[nodiscard]] inline std::string ReasonFromLibrary(std::string_view message)
{
    constexpr std::size_t kMaxBytes = 200;
    const std::string line = OneLine(message, kMaxBytes);
    return line.empty() ? "cannot be read" : "cannot be read: " + line;
}

} // namespace viewer
