// What the tests of AtomicFile share.
#pragma once

#include "platform/tools/atomic_file.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>

namespace karv_test
{

/// All bytes of a file; empty where it cannot be read.
[[nodiscard]] inline std::string ContentOf(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void WriteWhole(const std::filesystem::path& path, const std::string& content)
{
    AtomicFile file(path);
    file.Write(content);
    file.Commit();
}

/// The error of a call that must throw AtomicFileError; none where it throws nothing.
template <typename Call>
[[nodiscard]] std::optional<AtomicFileError> ErrorOf(const Call& call)
{
    try {
        call();
        return std::nullopt;
    } catch (const AtomicFileError& error) {
        return error;
    }
}

/// The reason why `path` is refused as a target; empty where it is not.
[[nodiscard]] inline std::string RefusalOfTarget(const std::filesystem::path& path)
{
    const auto error = ErrorOf([&] { const AtomicFile file(path); });
    return error.has_value() ? error->what() : "";
}

[[nodiscard]] inline std::string TextOf(std::errc code)
{
    return std::make_error_code(code).message();
}

} // namespace karv_test
