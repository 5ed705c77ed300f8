#include "tests/viewer/apps/win32-dialog/dialog_process.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace dialog_test
{

namespace
{

/// Long enough for a slow machine; only a failing test waits that long.
constexpr DWORD kMaxWaitMs = 60000;

std::filesystem::path Program()
{
    std::array<wchar_t, MAX_PATH> own{};
    GetModuleFileNameW(nullptr, own.data(), static_cast<DWORD>(own.size()));
    return std::filesystem::path(own.data()).replace_filename(L"win32_dialog.exe");
}

struct WindowSearch {
    DWORD process;
    HWND found;
};

BOOL CALLBACK FindDialog(HWND window, LPARAM lparam)
{
    constexpr std::wstring_view kDialogClass = L"#32770";
    auto& search = *reinterpret_cast<WindowSearch*>(lparam);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    std::array<wchar_t, 16> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    if (process == search.process && name.data() == kDialogClass && IsWindowVisible(window) != FALSE)
        search.found = window;
    return search.found == nullptr ? TRUE : FALSE;
}

} // namespace

Folder::Folder()
{
    static std::atomic<int> count = 0;
    path_ = std::filesystem::temp_directory_path() /
            ("dialog_test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++count));
    std::filesystem::create_directories(path_);
}

Folder::~Folder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path Folder::Write(const std::string& name, const std::string& text) const
{
    std::ofstream(path_ / name, std::ios::binary) << text;
    return path_ / name;
}

std::vector<std::string> Folder::FileNames() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

DialogProcess::DialogProcess(const std::wstring& arguments, const std::filesystem::path& folder)
{
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    if (CreatePipe(&error_, &start.hStdError, &inherited, 0) == FALSE)
        throw std::runtime_error("no pipe can be made");
    SetHandleInformation(error_, HANDLE_FLAG_INHERIT, 0);
    std::wstring command = L"\"" + Program().wstring() + L"\" " + arguments;
    const auto create = [&] {
        return CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(),
                              &start, &process_);
    };
    // NOTE: Beside other tests, the system may be short of something for a moment.
    constexpr int kMaxTries = 20;
    constexpr DWORD kPauseMs = 250;
    BOOL started = create();
    for (int tries = 1; started == FALSE && tries < kMaxTries; ++tries) {
        Sleep(kPauseMs);
        started = create();
    }
    const DWORD error = GetLastError();
    CloseHandle(start.hStdError);
    if (started == FALSE) {
        CloseHandle(error_);
        throw std::runtime_error("the program cannot be started: error " + std::to_string(error));
    }
}

DialogProcess::~DialogProcess()
{
    if (WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT)
        TerminateProcess(process_.hProcess, 3);
    CloseHandle(process_.hProcess);
    CloseHandle(process_.hThread);
    CloseHandle(error_);
}

Outcome DialogProcess::Wait()
{
    // The pipe's buffer is larger than all that the program writes, so the program never waits for a reader.
    if (WaitForSingleObject(process_.hProcess, kMaxWaitMs) != WAIT_OBJECT_0)
        throw std::runtime_error("the program does not end");
    Outcome outcome;
    GetExitCodeProcess(process_.hProcess, &outcome.status);
    // Only what has arrived is read. A service that the system started together with the program may keep the
    // other end of the pipe open for longer.
    DWORD count = 0;
    if (PeekNamedPipe(error_, nullptr, 0, nullptr, &count, nullptr) != FALSE && count > 0) {
        outcome.error.resize(count);
        ReadFile(error_, outcome.error.data(), count, &count, nullptr);
    }
    std::erase(outcome.error, '\r');
    return outcome;
}

bool DialogProcess::WaitUntil(const std::function<bool()>& holds) const
{
    const ULONGLONG begin = GetTickCount64();
    constexpr DWORD kPollMs = 10;
    while (!holds())
        if (WaitForSingleObject(process_.hProcess, kPollMs) != WAIT_TIMEOUT ||
            GetTickCount64() - begin > kMaxWaitMs)
            return holds();
    return true;
}

HWND DialogProcess::Dialog() const
{
    WindowSearch search{process_.dwProcessId, nullptr};
    static_cast<void>(WaitUntil([&] {
        EnumWindows(FindDialog, reinterpret_cast<LPARAM>(&search));
        return search.found != nullptr;
    }));
    return search.found;
}

HWND DialogProcess::Focus() const
{
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    GetGUIThreadInfo(process_.dwThreadId, &info);
    return info.hwndFocus;
}

Outcome RunDialog(const Folder& folder, const std::wstring& arguments)
{
    return DialogProcess(arguments, folder.Path()).Wait();
}

Outcome RunScript(const Folder& folder, const std::string& script, const std::wstring& arguments)
{
    folder.Write("script.txt", script);
    return RunDialog(folder, arguments + L" --script script.txt");
}

} // namespace dialog_test
