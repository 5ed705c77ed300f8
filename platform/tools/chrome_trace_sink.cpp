#include "platform/tools/chrome_trace_sink.h"

#include "platform/tools/utf8.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace
{

using Json = nlohmann::ordered_json;

int ProcessId()
{
#ifdef _WIN32
    return ::_getpid();
#else
    return ::getpid();
#endif
}

/// A number for the calling thread, from 1 in the order of asking. The system's own identifiers return
/// after a thread has ended, and two threads would share one row.
int ThreadNumber()
{
    static std::atomic<int> last{0};
    thread_local const int number = ++last;
    return number;
}

/// A name beside `path` that no other sink uses, in this process or another one that is alive.
std::string TemporaryName(const std::string& path)
{
    static std::atomic<int> last{0};
    return path + "." + std::to_string(ProcessId()) + "-" + std::to_string(++last) + ".part";
}

[[noreturn]] void Refuse(const std::string& path, int error)
{
    throw std::runtime_error("cannot write " + path + ": " + std::generic_category().message(error));
}

/// Why `path` cannot become the file, as an error number; 0 where nothing speaks against it.
/// A device or a pipe is refused because the finished file would replace it.
int ReasonAgainst(const std::string& path)
{
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (path.empty())
        return ENOENT;
    if (std::filesystem::is_directory(status))
        return EISDIR;
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) ? EINVAL : 0;
}

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

} // namespace

/// The file as it grows, under a temporary name until it is complete. All members need `mutex` held.
struct ChromeTraceSink::File {
    std::mutex mutex;
    std::string path;
    std::string temporary;
    Stream stream{nullptr, &std::fclose};
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::map<int, std::vector<const wchar_t*>> open_calls; ///< by thread, innermost last
    int error = 0;                                         ///< the first failure; nothing is written after it
    bool empty = true;

    void Write(const std::string& text) noexcept
    {
        if (error == 0 && std::fwrite(text.data(), 1, text.size(), stream.get()) != text.size())
            error = errno != 0 ? errno : EIO;
    }

    [[nodiscard]] Json NewEvent(const std::string& name, const char* phase, int thread) const
    {
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
        return Json{
            {"name", name}, {"ph", phase}, {"pid", ProcessId()}, {"tid", thread}, {"ts", time.count()}};
    }

    void WriteEvent(const Json& event)
    {
        Write((empty ? "\n" : ",\n") + event.dump());
        empty = false;
    }

    void Begin(const wchar_t* name)
    {
        const int thread = ThreadNumber();
        const Json event = NewEvent(Utf8FromWide(name), "B", thread);
        open_calls[thread].push_back(name);
        WriteEvent(event);
    }

    void End(int thread)
    {
        std::vector<const wchar_t*>& calls = open_calls[thread];
        if (calls.empty())
            return;
        WriteEvent(NewEvent(Utf8FromWide(calls.back()), "E", thread));
        calls.pop_back();
    }

    void EndAll()
    {
        for (auto& [thread, calls] : open_calls)
            while (!calls.empty())
                End(thread);
    }

    void Fault(const wchar_t* file, int line)
    {
        Json event = NewEvent("fault", "i", ThreadNumber());
        event["s"] = "t";
        event["args"] = Json{{"file", Utf8FromWide(file)}, {"line", line}};
        WriteEvent(event);
    }

    /// Runs `step` on an open file; a step that memory cannot be had for spoils the file, since it would no
    /// longer tell the truth.
    template <typename Step>
    void Run(Step step) noexcept
    {
        if (stream == nullptr || error != 0)
            return;
        try {
            step();
        } catch (const std::exception&) {
            error = ENOMEM;
        }
    }

    /// Closes the stream and gives the file its name, or removes it. Returns the error, 0 for none.
    [[nodiscard]] int Finish() noexcept
    {
        if (std::fclose(stream.release()) != 0 && error == 0)
            error = errno;
        if (error == 0) {
            std::error_code failure;
            std::filesystem::rename(temporary, path, failure);
            error = failure.value();
        }
        if (error != 0)
            std::remove(temporary.c_str());
        return error;
    }
};

ChromeTraceSink::ChromeTraceSink(const std::string& path) : file_(std::make_unique<File>())
{
    if (const int reason = ReasonAgainst(path); reason != 0)
        Refuse(path, reason);
    file_->path = path;
    file_->temporary = TemporaryName(path);
    file_->stream.reset(std::fopen(file_->temporary.c_str(), "wb"));
    if (file_->stream == nullptr)
        Refuse(path, errno);
    file_->Write("{\"traceEvents\":[");
}

ChromeTraceSink::~ChromeTraceSink()
{
    try {
        Close();
    } catch (const std::exception&) {
        // Whoever wants to know calls Close; the unfinished file is removed either way.
        return;
    }
}

void ChromeTraceSink::EnterCall(const wchar_t* name) noexcept
{
    const std::lock_guard lock(file_->mutex);
    file_->Run([&] { file_->Begin(name != nullptr ? name : L""); });
}

void ChromeTraceSink::LeaveCall(const wchar_t* /*name*/) noexcept
{
    const std::lock_guard lock(file_->mutex);
    file_->Run([&] { file_->End(ThreadNumber()); });
}

void ChromeTraceSink::ReportFault(const wchar_t* file, int line) noexcept
{
    const std::lock_guard lock(file_->mutex);
    file_->Run([&] { file_->Fault(file != nullptr ? file : L"", line); });
}

void ChromeTraceSink::Close()
{
    const std::lock_guard lock(file_->mutex);
    if (file_->stream == nullptr)
        return;
    file_->Run([&] {
        file_->EndAll();
        file_->Write("\n]}\n");
    });
    if (const int error = file_->Finish(); error != 0)
        Refuse(file_->path, error);
}
