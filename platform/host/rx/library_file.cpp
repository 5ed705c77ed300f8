#include "platform/host/rx/library_file.h"

#include <stdexcept>
#include <system_error>

namespace host
{

LibraryFile::LibraryFile(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        throw std::runtime_error("there is no such file");
    // Checked before the file is opened, because opening a pipe waits for its writer.
    if (!std::filesystem::is_regular_file(status))
        throw std::runtime_error("is not a file");
    stream_.open(path, std::ios::binary);
    size_ = std::filesystem::file_size(path, error);
    if (!stream_ || error)
        throw std::runtime_error("cannot be read");
}

} // namespace host
