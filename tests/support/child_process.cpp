#include "tests/support/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace karv_test
{
namespace
{

/// Does not return. Allocates nothing: everything it needs is made before the fork.
[[noreturn]] void RunChild(char* const* arguments, int announcements)
{
    // A test that is killed cannot end its children.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    fcntl(announcements, F_SETFD, 0);
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    execvp(arguments[0], arguments);
    _exit(127);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe to " + command.front());
    std::vector<std::string> words = command;
    std::ranges::replace(words, std::string("%fd"), std::to_string(ends[1]));
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    id_ = fork();
    if (id_ == 0)
        RunChild(arguments.data(), ends[1]);
    close(ends[1]);
    announcements_ = ends[0];
    if (id_ < 0) {
        close(announcements_);
        throw std::runtime_error("cannot start " + command.front());
    }
}

ChildProcess::~ChildProcess()
{
    End(SIGTERM);
    close(announcements_);
}

std::string ChildProcess::ReadLine() const
{
    std::string line;
    char next = '\0';
    while (true) {
        const ssize_t got = read(announcements_, &next, 1);
        if (got == 1 && next != '\n')
            line += next;
        else if (got >= 0 || errno != EINTR)
            return line;
    }
}

void ChildProcess::Pause() const
{
    kill(id_, SIGSTOP);
    // Returns only when the process has stopped.
    waitpid(id_, nullptr, WUNTRACED);
}

void ChildProcess::Resume() const
{
    kill(id_, SIGCONT);
}

void ChildProcess::Kill()
{
    End(SIGKILL);
}

void ChildProcess::End(int signal)
{
    if (id_ > 0) {
        kill(id_, signal);
        // A stopped process does not handle the signal.
        kill(id_, SIGCONT);
        waitpid(id_, nullptr, 0);
        id_ = 0;
    }
}

} // namespace karv_test
