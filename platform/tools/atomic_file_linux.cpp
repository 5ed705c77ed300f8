#include "platform/tools/atomic_file_system.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace atomic_file
{

std::FILE* CreateNewFile(const std::filesystem::path& path) noexcept
{
    constexpr mode_t kReadWriteForAll = 0666; // less what the umask takes away
    const int file =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kReadWriteForAll);
    if (file < 0)
        return nullptr;
    std::FILE* const stream = ::fdopen(file, "wb");
    if (stream == nullptr) {
        const int error = errno;
        ::close(file);
        ::unlink(path.c_str());
        errno = error;
    }
    return stream;
}

bool FlushToDisk(std::FILE* stream) noexcept
{
    return std::fflush(stream) == 0 && ::fsync(::fileno(stream)) == 0;
}

} // namespace atomic_file
