// Writes a file whole or not at all: readers find the old file or the complete new one, never a part.
//
// The bytes go to a temporary file in the target's folder, which replaces the target when it is complete.
// This part knows nothing of what is written, and does not name the file in its errors: the caller does.
//
// NOTE: a process that a signal ends by its default action, or that is killed, cannot clean up. It leaves
// the temporary file, "NAME.part-" and 16 hexadecimal digits, beside the target. On Linux that includes
// SIGXFSZ, which a limit on the size of files (`ulimit -f`) raises. A library must not set the program's
// signals, so the program must ignore SIGXFSZ before it writes: then the write fails with EFBIG, like any
// other.
#pragma once

#include "platform/export.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

/// Why a file could not be written. `what()` is the reason alone, one line without the file's name.
class KARV_PLATFORM_API AtomicFileError : public std::runtime_error
{
  public:
    /// The reason is the system's text for the error.
    explicit AtomicFileError(std::errc code);
    AtomicFileError(std::errc code, const std::string& reason);
    ~AtomicFileError() override;

    /// The error as a POSIX error number, on Windows too.
    [[nodiscard]] std::errc Code() const noexcept { return code_; }

  private:
    std::errc code_;
};

/// A file that is being written. Any thread, one at a time for each object; several objects, in one process
/// or in many, may write to one target: the last one to commit wins.
///
/// Every failure removes the temporary file and leaves the target as it was. After a failure `Write` and
/// `Commit` throw the same error again.
class KARV_PLATFORM_API AtomicFile
{
  public:
    /// Creates the temporary file. Its name is random, it must not exist before, child processes do not
    /// inherit it, and it has the permissions of any new file, whatever those of an older target are.
    ///
    /// Where `target` is a symbolic link, the file that it points to is replaced and the link stays. Throws
    /// AtomicFileError where the target exists and is not a regular file, such as a folder, a device or a
    /// pipe ("is not a regular file"; the code is `is_a_directory` or `invalid_argument`), and where the
    /// temporary file cannot be created.
    explicit AtomicFile(const std::filesystem::path& target);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    /// Removes the temporary file unless `Commit` has succeeded.
    ~AtomicFile();

    /// Appends bytes. They are buffered: an error may show at a later call. Throws AtomicFileError.
    void Write(std::string_view bytes);
    /// Writes the buffered bytes to the disk, closes the file and replaces the target by it. Throws
    /// AtomicFileError. To be called once, and last.
    void Commit();

  private:
    using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

    void CheckIsOpen() const;
    [[noreturn]] void Fail(std::errc code);

    std::filesystem::path target_;
    std::filesystem::path temporary_;
    Stream stream_; ///< null after a failure and after `Commit`
    std::errc failure_ = std::errc::bad_file_descriptor;
};
