#include "viewer/import/process/reader_client.h"

#include "viewer/import/process/interrupt_watch.h"
#include "viewer/import/process/model_stream.h"
#include "viewer/import/process/process_limits.h"
#include "viewer/import/process/reader_arguments.h"
#include "viewer/import/process/reader_environment.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <fstream>
#include <optional>
#include <span>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace viewer
{

namespace
{

constexpr std::size_t kMebibyte = 1U << 20U;
/// A reason can quote the file's content.
constexpr std::size_t kMaxReasonBytes = 500;

/// Both ends of a pipe.
class Pipe
{
  public:
    /// Throws std::system_error.
    Pipe()
    {
        if (pipe2(ends_.data(), O_CLOEXEC) != 0)
            throw std::system_error(errno, std::generic_category());
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe()
    {
        close(ends_[0]);
        CloseWriting();
    }

    [[nodiscard]] int Reading() const { return ends_[0]; }
    [[nodiscard]] int Writing() const { return ends_[1]; }
    void CloseWriting()
    {
        if (ends_[1] >= 0)
            close(ends_[1]);
        ends_[1] = -1;
    }

  private:
    std::array<int, 2> ends_{-1, -1};
};

/// The texts as the C interface takes them: pointers and a null at the end. Valid as long as the texts.
std::vector<char*> PointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Attributes of a process that is started: its descriptors, its environment, its process group and its
/// signals.
class SpawnSettings
{
  public:
    /// `output` becomes the standard output of the process. The standard error stream stays, for reports of
    /// the dynamic linker and of sanitizers. No other descriptor of this process is passed on.
    explicit SpawnSettings(int output)
    {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        // NOTE: glibc has it since version 2.34.
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        posix_spawnattr_init(&attributes_);
        // In a process group of its own the reader does not get Ctrl-C. The client does, and ends the reader.
        posix_spawnattr_setpgroup(&attributes_, 0);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXCPU})
            sigaddset(&signals, signal);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        posix_spawnattr_setflags(&attributes_,
                                 POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }

    /// Starts the program and returns the id of its process. Throws std::system_error.
    [[nodiscard]] pid_t Start(const std::string& program, std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), "karv-reader");
        std::vector<std::string> environment = ReaderEnvironment(environ);
        pid_t id = 0;
        const int error = posix_spawn(&id, program.c_str(), &actions_, &attributes_,
                                      PointersTo(arguments).data(), PointersTo(environment).data());
        if (error != 0)
            throw std::system_error(error, std::generic_category());
        return id;
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

/// A reader's process, those that it has started, and the reading end of its stream. All end with the object.
class ReaderProcess
{
  public:
    explicit ReaderProcess(const std::string& program, std::vector<std::string> arguments)
    {
        id_ = SpawnSettings(stream_.Writing()).Start(program, std::move(arguments));
        // Otherwise the stream would not end when the reader's process closes it.
        stream_.CloseWriting();
    }
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;
    ~ReaderProcess() { End(); }

    [[nodiscard]] int Stream() const { return stream_.Reading(); }

    /// Ends the processes that the reader has left if it has ended itself: they may hold the stream open.
    void EndOrphans() const
    {
        siginfo_t state{};
        // WNOWAIT leaves the ended process in place, so that the id of its group cannot be used again.
        if (waitid(P_PID, static_cast<id_t>(id_), &state, WEXITED | WNOHANG | WNOWAIT) == 0 &&
            state.si_pid == id_)
            EndGroup();
    }

    /// Ends the process unless it has ended, and those that it has started. Returns its status in the form of
    /// waitpid.
    int End()
    {
        if (id_ == 0)
            return status_;
        EndGroup();
        while (waitpid(id_, &status_, 0) < 0 && errno == EINTR) {
        }
        id_ = 0;
        return status_;
    }

    /// The resident memory of the process in bytes; 0 if it is unknown.
    [[nodiscard]] std::size_t ResidentMemory() const
    {
        std::ifstream file("/proc/" + std::to_string(id_) + "/statm");
        std::size_t all = 0;
        std::size_t resident = 0;
        file >> all >> resident;
        return file ? resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) : 0;
    }

  private:
    void EndGroup() const
    {
        // A process that is ending already keeps its own status.
        kill(-id_, SIGKILL);
    }

    Pipe stream_;
    pid_t id_ = 0;
    int status_ = 0;
};

/// The limits, with the limit of address space that this process already has, which the reader inherits.
ReaderLimits InForce(ReaderLimits limits)
{
    limits.memory = AddressSpaceInForce(limits.memory);
    return limits;
}

std::string SecondsText(std::chrono::milliseconds time)
{
    constexpr double kMilliseconds = 1000.0;
    std::string text = std::to_string(static_cast<double>(time.count()) / kMilliseconds);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text + " s";
}

/// A signal that no limit sends has ended the reader before its whole model had arrived.
class ReaderCrash : public FileError
{
  public:
    using FileError::FileError;
};

/// One run of karv-reader, from its start to its model or its failure.
class ReaderSession
{
  public:
    using Clock = std::chrono::steady_clock;

    /// `end` is when the time for the file is over.
    ReaderSession(const std::string& path, const ImportOptions& options, const ProgressFunction& progress,
                  const ReaderSettings& reader, Clock::time_point end)
        : path_(path), progress_(progress), limits_(InForce(reader.limits)), stop_(reader.stop),
          process_(reader.program, WriteReaderArguments({.parent = getpid(),
                                                         .processor = limits_.processor,
                                                         .memory = limits_.memory,
                                                         .options = options,
                                                         .path = path})),
          end_(end)
    {
    }

    Model Run()
    {
        try {
            return ReadModelStream([&](std::span<char> buffer) { return Read(buffer); },
                                   [&](double fraction) { Report(fraction); }, limits_.memory);
        } catch (const ModelTooLarge&) {
            FailForMemory();
        } catch (const ReportedFailure& failure) {
            throw FileError(path_, OneLine(failure.what(), kMaxReasonBytes));
        } catch (const StreamError& error) {
            if (!has_ended_)
                FailWithProgress(std::string("the reader's answer is damaged: ") + error.what());
            FailByStatus(process_.End());
        }
    }

  private:
    void Report(double fraction)
    {
        fraction_ = fraction;
        if (progress_)
            progress_(fraction);
    }

    [[nodiscard]] std::string WithProgress(std::string reason) const
    {
        if (fraction_ > 0.0)
            reason += ", at " + std::to_string(static_cast<int>(std::floor(fraction_ * 100.0))) + " %";
        return reason;
    }

    [[noreturn]] void FailWithProgress(std::string reason) const
    {
        throw FileError(path_, WithProgress(std::move(reason)));
    }

    [[noreturn]] void FailForMemory() const
    {
        FailWithProgress("needs more than " + std::to_string(limits_.memory / kMebibyte) +
                         " MiB of memory to be read");
    }

    /// Throws the reason why the reader ended without an answer.
    [[noreturn]] void FailByStatus(int status) const
    {
        if (WIFEXITED(status) && WEXITSTATUS(status) == kOutOfMemoryStatus)
            FailForMemory();
        if (WIFEXITED(status))
            FailWithProgress("the reader ended without an answer (status " +
                             std::to_string(WEXITSTATUS(status)) + ")");
        if (WTERMSIG(status) == SIGXCPU)
            FailWithProgress("takes more than " + SecondsText(limits_.processor) +
                             " of processor time to be read");
        const std::string reason = "the reader crashed (" + std::string(strsignal(WTERMSIG(status))) + ")";
        // The system sends it where memory is short; a second attempt would need as much.
        if (WTERMSIG(status) == SIGKILL)
            FailWithProgress(reason);
        throw ReaderCrash(path_, WithProgress(reason));
    }

    void CheckLimits()
    {
        if (Clock::now() >= end_)
            FailWithProgress("takes longer than " + SecondsText(limits_.wall) + " to be read");
        if (received_ > limits_.memory || process_.ResidentMemory() > limits_.memory)
            FailForMemory();
    }

    /// Waits for bytes of the stream, a signal or a limit. Returns the number of bytes read; 0 at the end.
    std::size_t Read(std::span<char> buffer)
    {
        constexpr int kMillisecondsBetweenLooks = 20;
        constexpr short kAnything = POLLIN | POLLHUP | POLLERR;
        for (;;) {
            std::array<pollfd, 2> waits{pollfd{process_.Stream(), POLLIN, 0},
                                        pollfd{interrupts_.Descriptor(), POLLIN, 0}};
            poll(waits.data(), waits.size(), kMillisecondsBetweenLooks);
            if ((waits[1].revents & POLLIN) != 0 || stop_.stop_requested())
                throw ReadingCancelled(path_, WithProgress("reading was cancelled"));
            CheckLimits();
            process_.EndOrphans();
            if ((waits[0].revents & kAnything) == 0)
                continue;
            const ssize_t count = read(process_.Stream(), buffer.data(), buffer.size());
            if (count < 0 && (errno == EINTR || errno == EAGAIN))
                continue;
            has_ended_ = count <= 0;
            received_ += has_ended_ ? 0 : static_cast<std::size_t>(count);
            return has_ended_ ? 0 : static_cast<std::size_t>(count);
        }
    }

    const std::string& path_;
    const ProgressFunction& progress_;
    const ReaderLimits limits_;
    const std::stop_token stop_;
    InterruptWatch interrupts_;
    ReaderProcess process_;
    Clock::time_point end_;
    double fraction_ = 0.0;
    std::size_t received_ = 0;
    bool has_ended_ = false;
};

Model RunReader(const std::string& path, const ImportOptions& options, const ProgressFunction& progress,
                const ReaderSettings& reader, ReaderSession::Clock::time_point end)
{
    std::optional<ReaderSession> session;
    try {
        session.emplace(path, options, progress, reader, end);
    } catch (const std::system_error& error) {
        throw FileError(path,
                        "its reader " + reader.program + " cannot be started: " + error.code().message());
    }
    if (reader.meanwhile)
        reader.meanwhile();
    return session->Run();
}

} // namespace

Model ImportModel(const std::string& path, const ImportOptions& options, const ProgressFunction& progress,
                  const ReaderSettings& reader)
{
    const auto end = ReaderSession::Clock::now() + reader.limits.wall;
    try {
        return RunReader(path, options, progress, reader, end);
    } catch (const ReaderCrash&) {
        if (options.safe)
            throw;
    }
    ImportOptions safe = options;
    safe.safe = true;
    return RunReader(path, safe, progress, reader, end);
}

} // namespace viewer
