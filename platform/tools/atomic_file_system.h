// What each system supplies to AtomicFile.
#pragma once

#include <cstdio>
#include <filesystem>

namespace atomic_file
{

/// Creates a file for writing in binary. It must not exist, not even as a symbolic link; child processes do
/// not inherit it. Null on failure, with the reason in errno.
[[nodiscard]] std::FILE* CreateNewFile(const std::filesystem::path& path) noexcept;
/// Writes the buffered bytes of the stream to the disk. False on failure, with the reason in errno.
[[nodiscard]] bool FlushToDisk(std::FILE* stream) noexcept;

} // namespace atomic_file
