#include "platform/tools/chrome_trace_sink.h"

#include "platform/tools/atomic_file.h"
#include "platform/tools/utf8.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
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

/// A number for the calling thread, from 1 in the order of first use.
/// NOTE: systems use a thread's own identifier again after its end, so that two threads would share a row.
int ThreadNumber()
{
    static std::atomic<int> last{0};
    thread_local const int number = ++last;
    return number;
}

[[noreturn]] void Refuse(const std::string& path, std::errc error)
{
    throw std::runtime_error("cannot write " + path + ": " + std::make_error_code(error).message());
}

} // namespace

/// The events so far and the file that they go to. All members need `mutex` held.
struct ChromeTraceSink::File {
    std::mutex mutex;
    std::string path;
    std::unique_ptr<AtomicFile> output; ///< none once the sink is closed
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::map<int, std::vector<const wchar_t*>> open_calls; ///< by thread, innermost last
    std::optional<std::errc> error;                        ///< the first failure; nothing is written after it
    bool is_empty = true;

    [[nodiscard]] Json NewEvent(const std::string& name, const char* phase, int thread) const
    {
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
        return Json{
            {"name", name}, {"ph", phase}, {"pid", ProcessId()}, {"tid", thread}, {"ts", time.count()}};
    }

    void WriteEvent(const Json& event)
    {
        output->Write((is_empty ? "\n" : ",\n") + event.dump());
        is_empty = false;
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

    /// Runs `step` while the file is open and sound. A step that runs out of memory spoils the file too,
    /// because an event is missing from it.
    template <typename Step>
    void Run(Step step) noexcept
    {
        if (output == nullptr || error.has_value())
            return;
        try {
            step();
        } catch (const AtomicFileError& failure) {
            error = failure.Code();
        } catch (const std::exception&) {
            error = std::errc::not_enough_memory;
        }
    }
};

ChromeTraceSink::ChromeTraceSink(const std::string& path) : file_(std::make_unique<File>())
{
    file_->path = path;
    try {
        file_->output = std::make_unique<AtomicFile>(path);
    } catch (const AtomicFileError& failure) {
        Refuse(path, failure.Code());
    }
    file_->Run([&] { file_->output->Write("{\"traceEvents\":["); });
}

ChromeTraceSink::~ChromeTraceSink()
{
    try {
        Close();
    } catch (const std::exception&) {
        return; // the unfinished file is removed; who needs the reason calls Close
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
    if (file_->output == nullptr)
        return;
    file_->Run([&] {
        file_->EndAll();
        file_->output->Write("\n]}\n");
        file_->output->Commit();
    });
    file_->output.reset();
    if (const std::optional<std::errc> error = file_->error)
        Refuse(file_->path, *error);
}
