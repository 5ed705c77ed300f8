// The file of a library, read before the system loads it. Its format is checked by shared_library_linux.cpp
// and shared_library_windows.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>

namespace host
{

/// A file that is open for reading at any place.
class LibraryFile
{
  public:
    /// Opens the file. Throws std::runtime_error with the reason, one line without the file's name, where
    /// it does not exist, is not a regular file, such as a folder or a pipe, or cannot be read.
    explicit LibraryFile(const std::filesystem::path& path);

    /// Whether the file is long enough for `length` bytes from `start`.
    [[nodiscard]] bool Holds(std::uintmax_t start, std::uintmax_t length) const
    {
        return start <= size_ && length <= size_ - start;
    }

    /// Reads `count` records from `start`. False where the file ends earlier; later calls then fail too.
    template <typename Record>
    [[nodiscard]] bool ReadAt(std::uintmax_t start, Record* records, std::size_t count)
    {
        stream_.seekg(static_cast<std::streamoff>(start));
        stream_.read(reinterpret_cast<char*>(records), static_cast<std::streamsize>(count * sizeof(Record)));
        return stream_.good();
    }

  private:
    std::ifstream stream_;
    std::uintmax_t size_ = 0;
};

} // namespace host
