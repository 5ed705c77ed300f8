// Measures the time from the start of a process to its first frame, for a program that embeds the control and
// for a bare one.
#include "bench/first_frame_bench.h"

#include <chrono>
#include <stdexcept>
#include <string>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace karv_bench
{

namespace
{

/// A pipe that closes both ends when it is destroyed.
class Pipe
{
  public:
    Pipe()
    {
        if (pipe(ends_) != 0)
            throw std::runtime_error("no pipe can be made");
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe()
    {
        CloseWriteEnd();
        close(ends_[0]);
    }

    [[nodiscard]] int ReadEnd() const { return ends_[0]; }
    [[nodiscard]] int WriteEnd() const { return ends_[1]; }
    void CloseWriteEnd()
    {
        if (ends_[1] >= 0)
            close(ends_[1]);
        ends_[1] = -1;
    }

  private:
    int ends_[2] = {-1, -1};
};

pid_t Start(const std::string& program, Pipe& output)
{
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output.WriteEnd(), STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, output.ReadEnd());
    std::string name = program;
    char* arguments[] = {name.data(), nullptr};
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error(program + " cannot be started");
    output.CloseWriteEnd();
    return process;
}

/// The seconds until the program writes a byte to its output, which it does after its first frame.
double SecondsToFirstFrame(const std::string& program)
{
    Pipe output;
    const auto begin = std::chrono::steady_clock::now();
    const pid_t process = Start(program, output);
    char byte = 0;
    const bool frame_came = read(output.ReadEnd(), &byte, 1) == 1;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    int status = 0;
    waitpid(process, &status, 0);
    if (!frame_came || status != 0)
        throw std::runtime_error(program + " shows no frame");
    return taken.count();
}

} // namespace

void RegisterFirstFrames(const Effort& effort, const std::string& folder)
{
    constexpr int kRounds = 21;
    constexpr double kLimit = 1.3;
    benchmark::RegisterBenchmark("process start to first frame",
                                 [folder](benchmark::State& state) {
                                     RunPairs(
                                         state, {.limit = kLimit},
                                         [&] { return SecondsToFirstFrame(folder + "/first_frame_control"); },
                                         [&] { return SecondsToFirstFrame(folder + "/first_frame_bare"); });
                                 })
        ->UseManualTime()
        ->Iterations(effort.Rounds(kRounds));
}

} // namespace karv_bench
