#include "tests/support/program_output.h"

#include "platform/winsys/winsys.h"

#include <array>

namespace karv_test
{
namespace
{

/// Reads until every writer has closed the pipe.
std::string ReadAll(HANDLE pipe)
{
    std::string text;
    std::array<char, 4096> part{};
    DWORD count = 0;
    while (ReadFile(pipe, part.data(), static_cast<DWORD>(part.size()), &count, nullptr) != FALSE &&
           count > 0)
        text.append(part.data(), count);
    std::erase(text, '\r');
    return text;
}

} // namespace

std::string OutputOf(const std::string& program, const std::string& argument)
{
    SECURITY_ATTRIBUTES inherited{};
    inherited.nLength = sizeof inherited;
    inherited.bInheritHandle = TRUE;
    HANDLE read_end = nullptr;
    HANDLE write_end = nullptr;
    if (CreatePipe(&read_end, &write_end, &inherited, 0) == FALSE)
        return "cannot be started";
    SetHandleInformation(read_end, HANDLE_FLAG_INHERIT, 0);

    STARTUPINFOA start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = write_end;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::string command = '"' + program + "\" " + argument;
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                        &start, &process);
    CloseHandle(write_end);
    std::string text = started != FALSE ? ReadAll(read_end) : "cannot be started";
    CloseHandle(read_end);
    if (started != FALSE) {
        WaitForSingleObject(process.hProcess, INFINITE);
        DWORD status = 0;
        GetExitCodeProcess(process.hProcess, &status);
        if (status != 0)
            text += "status " + std::to_string(status);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    return text;
}

} // namespace karv_test
