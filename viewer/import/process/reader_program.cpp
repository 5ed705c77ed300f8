#include "viewer/import/process/reader_program.h"

#include "viewer/import/library_message.h"
#include "viewer/import/model_file.h"
#include "viewer/import/process/model_stream.h"
#include "viewer/import/process/process_limits.h"
#include "viewer/import/process/reader_arguments.h"
#include "viewer/text/file_error.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <span>
#include <string>

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace viewer
{

namespace
{

constexpr int kUsageStatus = 2;
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kHasAddressSanitizer = true;
#else
constexpr bool kHasAddressSanitizer = false;
#endif

void EndWithParent(int parent)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before prctl.
    if (getppid() != parent)
        _exit(kUsageStatus);
}

/// Redirects the standard streams to /dev/null, so that output of libraries is dropped. Returns a descriptor
/// of the previous standard output, for the stream.
int TakeOutput()
{
    const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
#if defined(__SANITIZE_ADDRESS__)
    // A crash ends the process by its signal, as it does without the sanitizer.
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        std::signal(signal, SIG_DFL);
    // Other reports of the sanitizer still go to the standard error stream.
    // NOTE: The sanitizer takes the descriptor as a pointer.
    const int reports = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<std::intptr_t>(reports)));
#endif
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (output < 0 || nowhere < 0 || dup2(nowhere, descriptor) < 0)
            _exit(kUsageStatus);
    return output;
}

void WriteAll(int descriptor, std::span<const char> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        // The client has closed its end of the pipe.
        if (count < 0)
            _exit(kUsageStatus);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void ReadAndWrite(const std::string& path, const ImportOptions& options, int output)
{
    const ModelStreamWriter::Sink sink = [&](std::span<const char> bytes) { WriteAll(output, bytes); };
    ModelStreamWriter writer(sink);
    double written = 0.0;
    const auto report = [&](double fraction) {
        // Some libraries report progress for every entity.
        constexpr double kStep = 0.005;
        if (fraction < written + kStep)
            return;
        written = fraction;
        writer.WriteProgress(fraction);
    };
    Model model;
    try {
        model = ReadModelFile(path, options, report);
    } catch (const FileError& error) {
        return writer.WriteFailure(error.Reason());
    } catch (const std::bad_alloc&) {
        _exit(kOutOfMemoryStatus);
    } catch (const std::exception& error) {
        return writer.WriteFailure(ReasonFromLibrary(error.what()));
    } catch (...) {
        return writer.WriteFailure(ReasonFromLibrary({}));
    }
    writer.WriteModel(model);
}

} // namespace

int RunReader(int argc, const char* const* argv)
{
    const std::optional<ReaderArguments> arguments = ParseReaderArguments(argc, argv);
    if (!arguments) {
        std::fputs("karv-reader: is started by other programs, to read a model file for them\n", stderr);
        return kUsageStatus;
    }
    EndWithParent(arguments->parent);
    const int output = TakeOutput();
    LimitProcess(arguments->processor,
                 kHasAddressSanitizer ? std::nullopt : std::optional(arguments->memory));
    ReadAndWrite(arguments->path, arguments->options, output);
    // Destructors of the libraries take time and are not needed.
    _exit(0);
}

} // namespace viewer
