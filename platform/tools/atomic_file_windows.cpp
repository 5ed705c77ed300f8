#include "platform/tools/atomic_file_system.h"

#include <cerrno>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

namespace atomic_file
{

std::FILE* CreateNewFile(const std::filesystem::path& path) noexcept
{
    int file = -1;
    // Creating and excluding together are the system's CREATE_NEW.
    constexpr int kFlags = _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT;
    if (::_wsopen_s(&file, path.c_str(), kFlags, _SH_DENYNO, _S_IREAD | _S_IWRITE) != 0)
        return nullptr;
    std::FILE* const stream = ::_fdopen(file, "wb");
    if (stream == nullptr) {
        const int error = errno;
        ::_close(file);
        ::_wunlink(path.c_str());
        errno = error;
    }
    return stream;
}

bool FlushToDisk(std::FILE* stream) noexcept
{
    return std::fflush(stream) == 0 && ::_commit(::_fileno(stream)) == 0;
}

} // namespace atomic_file
