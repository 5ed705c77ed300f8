#include "platform/tools/atomic_file.h"

#include "platform/tools/atomic_file_system.h"

#include <cerrno>
#include <cstdint>
#include <iomanip>
#include <ios>
#include <random>
#include <sstream>

namespace
{

namespace fs = std::filesystem;

/// The failure that errno tells of.
std::errc LastError()
{
    return errno != 0 ? static_cast<std::errc>(errno) : std::errc::io_error;
}

std::errc CodeOf(const std::error_code& error)
{
    const std::error_condition condition = error.default_error_condition();
    return condition.category() == std::generic_category() ? static_cast<std::errc>(condition.value())
                                                           : std::errc::io_error;
}

/// Where the bytes of `path` lie: the end of its chain of symbolic links, which need not exist.
fs::path FollowLinks(fs::path path)
{
    constexpr int kMaxLinks = 40; // as many as the system follows
    std::error_code error;
    for (int i = 0; fs::is_symlink(fs::symlink_status(path, error)); ++i) {
        if (i == kMaxLinks)
            throw AtomicFileError(std::errc::too_many_symbolic_link_levels);
        const fs::path next = fs::read_symlink(path, error);
        if (error)
            throw AtomicFileError(CodeOf(error));
        path = path.parent_path() / next; // an absolute one replaces the folder
    }
    return path;
}

void CheckCanBeReplaced(const fs::path& target)
{
    std::error_code ignored;
    const fs::file_status status = fs::status(target, ignored);
    if (!fs::exists(status) || fs::is_regular_file(status))
        return;
    throw AtomicFileError(fs::is_directory(status) ? std::errc::is_a_directory : std::errc::invalid_argument,
                          "is not a regular file");
}

std::string RandomSuffix()
{
    std::random_device random;
    const std::uint64_t number = std::uint64_t{random()} << 32U | random();
    std::ostringstream suffix;
    suffix << ".part-" << std::hex << std::setw(16) << std::setfill('0') << number;
    return suffix.str();
}

/// A random name in the target's folder. A long name is cut, so that the suffix does not make it too long.
fs::path TemporaryName(const fs::path& target)
{
    constexpr std::size_t kMaxNameLength = 128;
    fs::path name = target.filename().native().substr(0, kMaxNameLength);
    name += RandomSuffix();
    return target.parent_path() / name;
}

} // namespace

AtomicFileError::AtomicFileError(std::errc code) : AtomicFileError(code, std::make_error_code(code).message())
{
}

AtomicFileError::AtomicFileError(std::errc code, const std::string& reason)
    : std::runtime_error(reason), code_(code)
{
}

AtomicFileError::~AtomicFileError() = default;

AtomicFile::AtomicFile(const fs::path& target) : stream_(nullptr, &std::fclose)
{
    if (target.empty())
        throw AtomicFileError(std::errc::no_such_file_or_directory);
    // The system follows links that name no file too, such as /dev/stdout on a pipe.
    CheckCanBeReplaced(target);
    target_ = FollowLinks(target);
    do {
        temporary_ = TemporaryName(target_);
        errno = 0;
        stream_.reset(atomic_file::CreateNewFile(temporary_));
    } while (stream_ == nullptr && errno == EEXIST);
    if (stream_ == nullptr)
        throw AtomicFileError(LastError());
}

AtomicFile::~AtomicFile()
{
    if (stream_ == nullptr)
        return;
    stream_.reset();
    std::error_code ignored;
    fs::remove(temporary_, ignored);
}

void AtomicFile::Write(std::string_view bytes)
{
    CheckIsOpen();
    errno = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream_.get()) != bytes.size())
        Fail(LastError());
}

void AtomicFile::Commit()
{
    CheckIsOpen();
    errno = 0;
    if (!atomic_file::FlushToDisk(stream_.get()))
        Fail(LastError());
    if (std::fclose(stream_.release()) != 0)
        Fail(LastError());
    std::error_code error;
    fs::rename(temporary_, target_, error);
    if (error)
        Fail(CodeOf(error));
}

void AtomicFile::CheckIsOpen() const
{
    if (stream_ == nullptr)
        throw AtomicFileError(failure_);
}

void AtomicFile::Fail(std::errc code)
{
    stream_.reset();
    std::error_code ignored;
    fs::remove(temporary_, ignored);
    failure_ = code;
    throw AtomicFileError(code);
}
