// Replaces karv-reader. The name of the model file selects its fault.
#include "tests/viewer/import/process/stream_fixture.h"
#include "viewer/import/process/process_limits.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace
{

void Send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (count <= 0)
            _exit(EXIT_FAILURE);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::string HalfDone()
{
    viewer::StreamBytes stream;
    stream.Writer().WriteProgress(0.42);
    return stream.Bytes();
}

std::string Failure(const std::string& reason)
{
    viewer::StreamBytes stream;
    stream.Writer().WriteFailure(reason);
    return stream.Bytes();
}

void Crash()
{
    // Without a sanitizer's handler.
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

/// Takes resident memory until the client ends the process.
void Grow()
{
    constexpr std::size_t kStep = 1U << 20U;
    constexpr std::size_t kMax = 8192;
    std::vector<std::unique_ptr<std::string>> all;
    while (all.size() < kMax)
        all.push_back(std::make_unique<std::string>(kStep, 'x'));
}

void Spin(const char* seconds)
{
    viewer::LimitProcess(std::chrono::seconds(std::atoi(seconds)), 1U << 30U);
    volatile unsigned turns = 0;
    for (;;)
        turns = turns + 1;
}

void Flood()
{
    const std::string progress =
        HalfDone().substr(viewer::kStreamMagic.size() + sizeof viewer::kStreamVersion);
    Send(HalfDone());
    std::string block;
    while (block.size() < 100'000)
        block += progress;
    for (;;)
        Send(block);
}

/// The bytes of a stream from its start to the title of its model.
constexpr std::size_t kBytesToTitle = viewer::kStreamMagic.size() + sizeof viewer::kStreamVersion + 1;
/// An empty title.
constexpr std::size_t kBytesToPieces = kBytesToTitle + sizeof(std::uint32_t);
/// No pieces.
constexpr std::size_t kBytesToNames = kBytesToPieces + sizeof(std::uint64_t);

/// Sends the stream of a model without anything in it, with many items instead of those of one list, whose
/// count is at `place`. The reader itself needs little memory for it.
void SendMany(std::size_t place, std::uint64_t count, const std::string& item)
{
    constexpr std::uint64_t kItemsInBlock = 1024;
    const std::string whole = viewer::StreamOf(viewer::Model{});
    std::string block;
    for (std::uint64_t i = 0; i < kItemsInBlock; ++i)
        block += item;
    Send(whole.substr(0, place) + viewer::BytesOf(count));
    for (std::uint64_t i = 0; i < count; i += kItemsInBlock)
        Send(block);
    Send(whole.substr(place + sizeof count));
}

/// 192 MiB of empty names in 24 MiB of the stream.
void SendEmptyNames()
{
    SendMany(kBytesToNames, 6U << 20U, viewer::BytesOf(std::uint32_t{0}));
}

/// 160 MiB of empty pieces in 47 MiB of the stream.
void SendEmptyPieces()
{
    viewer::Model model;
    model.pieces.resize(1);
    const std::size_t size = viewer::StreamOf(model).size() - viewer::StreamOf(viewer::Model{}).size();
    SendMany(kBytesToPieces, 1U << 20U, viewer::StreamOf(model).substr(kBytesToNames, size));
}

/// The numbers of the open descriptors, and what the standard input is.
std::string Descriptors()
{
    namespace fs = std::filesystem;
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        // The descriptor of the iteration itself is that of a folder of this process.
        if (!fs::read_symlink(entry.path(), error).string().ends_with("/fd"))
            names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    std::string text;
    for (const std::string& name : names)
        text += name + ' ';
    return text + "from " + fs::read_symlink("/proc/self/fd/0").string();
}

/// The names of the variables in the environment.
std::string Environment()
{
    std::vector<std::string> names;
    for (char** variable = environ; *variable != nullptr; ++variable)
        names.push_back(std::string(*variable).substr(0, std::string_view(*variable).find('=')));
    std::ranges::sort(names);
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : " ") + name;
    return text;
}

/// Starts a process that waits for ten minutes, with this one's descriptors. Returns its id.
pid_t StartChild()
{
    constexpr unsigned kSeconds = 600;
    const pid_t child = fork();
    if (child == 0) {
        sleep(kSeconds);
        _exit(EXIT_SUCCESS);
    }
    return child;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view fault = argc > 1 ? argv[argc - 1] : "";
    const std::string model = viewer::StreamOf(viewer::SampleModel());
    if (fault == "model")
        Send(model);
    if (fault == "crash" || fault == "late crash") {
        Send(fault == "crash" ? std::string() : HalfDone());
        Crash();
    }
    // The argument before the file.
    const bool is_safe = argc > 2 && std::string_view(argv[argc - 2]) == "safe";
    if (fault == "model, then crash") {
        Send(model);
        Crash();
    }
    if (fault.ends_with(" once") && is_safe)
        Send(model);
    else if (fault == "crash once") {
        Send(HalfDone());
        Crash();
    } else if (fault == "no memory once")
        return viewer::kOutOfMemoryStatus;
    else if (fault == "kill once")
        std::raise(SIGKILL);
    else if (fault == "spin once")
        Spin(argv[2]);
    if (fault == "crash, then hang") {
        if (!is_safe)
            Crash();
        Send(HalfDone());
        pause();
    }
    if (fault == "crash, then refusal") {
        if (!is_safe)
            Crash();
        Send(Failure("holds no faces"));
    }
    if (fault == "hang") {
        Send(HalfDone());
        pause();
    }
    if (fault == "garbage") {
        Send("Segmentation fault is what this is not.");
        pause();
    }
    if (fault == "half")
        Send(model.substr(0, model.size() / 2));
    if (fault == "more") {
        Send(model + "more");
        pause();
    }
    if (fault == "refusal")
        Send(Failure("line 7:\n\x1b[2Jno such\tlayer"));
    if (fault == "long refusal")
        Send(Failure(std::string(2000, 'x')));
    if (fault == "grow") {
        Send(HalfDone());
        Grow();
    }
    if (fault == "spin")
        Spin(argv[2]);
    if (fault == "flood")
        Flood();
    if (fault == "empty names")
        SendEmptyNames();
    if (fault == "empty pieces")
        SendEmptyPieces();
    if (fault == "descriptors")
        Send(Failure(Descriptors()));
    if (fault == "environment")
        Send(Failure(Environment()));
    if (fault == "orphan")
        Send(Failure(std::to_string(StartChild())));
    if (fault == "hanging family") {
        viewer::StreamBytes stream;
        stream.Writer().WriteProgress(viewer::FractionOf(StartChild()));
        Send(stream.Bytes());
        pause();
    }
    if (fault == "no memory")
        return viewer::kOutOfMemoryStatus;
    return fault == "silent" ? 3 : 0;
}
