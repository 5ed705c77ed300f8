// AtomicFile where the tests can stage what the other system has not: symbolic links, pipes, permissions, a
// limit on the size of files, a full disk.
#include "platform/tools/atomic_file_system.h"
#include "tests/platform/atomic_file.h"
#include "tests/platform/file_size_limit.h"
#include "tests/platform/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using karv_test::ContentOf;
using karv_test::ErrorOf;
using karv_test::FileSizeLimit;
using karv_test::RefusalOfTarget;
using karv_test::TemporaryFolder;
using karv_test::TextOf;
using karv_test::WriteWhole;

constexpr rlim_t kBlock = 512; ///< what `ulimit -f 1` allows

/// Sets the process's mask of permissions while it lives.
class Umask
{
  public:
    explicit Umask(mode_t mask) : before_(::umask(mask)) {}
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;
    ~Umask() { ::umask(before_); }

  private:
    mode_t before_;
};

mode_t PermissionsOf(const std::string& path)
{
    struct stat status {
    };
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

TEST(AtomicFileLimit, FullDiskAtTheCommitIsToldAndLeavesNoPart)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    std::ofstream(path) << "old";
    std::optional<AtomicFileError> error;
    {
        const FileSizeLimit limit(kBlock);
        AtomicFile file(path);
        file.Write(std::string(kBlock + 1, 'x'));
        error = ErrorOf([&] { file.Commit(); });
    }
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->what(), TextOf(std::errc::file_too_large));
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(folder.Count(), 1);
}

TEST(AtomicFileLimit, FullDiskAtAWriteIsToldThereAndAtTheCommit)
{
    const TemporaryFolder folder;
    std::optional<AtomicFileError> at_write;
    std::optional<AtomicFileError> at_commit;
    std::ptrdiff_t left = -1;
    {
        const FileSizeLimit limit(kBlock);
        AtomicFile file(folder.File("file"));
        at_write = ErrorOf([&] { file.Write(std::string(1'000'000, 'x')); });
        left = folder.Count();
        at_commit = ErrorOf([&] { file.Commit(); });
    }
    ASSERT_TRUE(at_write.has_value());
    EXPECT_EQ(at_write->Code(), std::errc::file_too_large);
    EXPECT_EQ(left, 0) << "removed by the failed write";
    ASSERT_TRUE(at_commit.has_value());
    EXPECT_EQ(at_commit->Code(), std::errc::file_too_large);
    EXPECT_EQ(folder.Count(), 0);
}

TEST(AtomicFileLimit, FileOfTheLimitIsWritten)
{
    const TemporaryFolder folder;
    {
        const FileSizeLimit limit(kBlock);
        WriteWhole(folder.File("file"), std::string(kBlock, 'x'));
    }
    EXPECT_EQ(ContentOf(folder.File("file")).size(), kBlock);
}

/// Runs the function in a child process and returns its text; empty if a signal ended the child.
std::string InAChild(const std::function<std::string()>& function)
{
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string text = function();
        const bool is_whole = ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        ::_exit(is_whole ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    ::close(ends[1]);
    std::array<char, 1024> text{};
    const ssize_t count = ::read(ends[0], text.data(), text.size());
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    return {text.data(), static_cast<std::size_t>(count > 0 ? count : 0)};
}

TEST(AtomicFileLimit, SignalIsLeftToTheProgram)
{
    const TemporaryFolder folder;
    const auto write_beyond = [&] {
        const rlimit limit{kBlock, kBlock};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const auto error = ErrorOf([&] { WriteWhole(folder.File("file"), std::string(1'000'000, 'x')); });
        return error.has_value() ? std::string(error->what()) : "written";
    };
    EXPECT_EQ(InAChild([&] {
                  std::signal(SIGXFSZ, SIG_IGN);
                  return write_beyond();
              }),
              TextOf(std::errc::file_too_large));
    EXPECT_EQ(folder.Count(), 0);
    EXPECT_EQ(InAChild([&] {
                  std::signal(SIGXFSZ, SIG_DFL);
                  return write_beyond();
              }),
              "")
        << "the header tells programs to ignore the signal";
    EXPECT_EQ(folder.Count(), 1) << "the part";
}

/// Makes a file system of 64 KiB of the folder, for the calling process alone. Returns why it cannot; empty
/// if it does.
std::string MountTinyDisk(const fs::path& folder)
{
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("", "/", "", MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") != 0)
        return std::strerror(errno);
    return {};
}

TEST(AtomicFileDisk, FullOneIsToldAndLeavesTheOldFileAndNoPart)
{
    const TemporaryFolder folder;
    constexpr const char* kCannot = "cannot: ";
    const std::string answer = InAChild([&]() -> std::string {
        const std::string refusal = MountTinyDisk(folder.Path());
        if (!refusal.empty())
            return kCannot + refusal;
        const std::string path = folder.File("file");
        WriteWhole(path, "old");
        const auto error = ErrorOf([&] { WriteWhole(path, std::string(1'000'000, 'x')); });
        return (error.has_value() ? error->what() : "written") + (", " + ContentOf(path)) + ", " +
               std::to_string(folder.Count());
    });
    if (answer.starts_with(kCannot))
        GTEST_SKIP() << "a small file system cannot be mounted here: " << answer;
    EXPECT_EQ(answer, TextOf(std::errc::no_space_on_device) + ", old, 1");
}

TEST(AtomicFileLinks, TemporaryFileIsNeverCreatedThroughALinkOrOverAFile)
{
    const TemporaryFolder folder;
    std::ofstream(folder.File("victim")) << "old";
    fs::create_symlink("victim", folder.File("link"));
    fs::create_symlink("missing", folder.File("dangling"));
    fs::create_directory(folder.File("sub"));
    for (const char* name : {"victim", "link", "dangling", "sub"}) {
        errno = 0;
        EXPECT_EQ(atomic_file::CreateNewFile(folder.File(name)), nullptr) << name;
        EXPECT_EQ(errno, EEXIST) << name;
    }
    EXPECT_EQ(ContentOf(folder.File("victim")), "old");
    EXPECT_FALSE(fs::exists(folder.File("missing")));
}

TEST(AtomicFileLinks, LinkToAPipeWithoutANameIsRefused)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    EXPECT_EQ(RefusalOfTarget("/proc/self/fd/" + std::to_string(ends[1])), "is not a regular file");
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(AtomicFileLinks, FileBehindALinkIsReplacedAndTheLinkStays)
{
    const TemporaryFolder folder;
    fs::create_directory(folder.File("sub"));
    std::ofstream(folder.File("sub/real")) << "old";
    fs::create_symlink("sub/real", folder.File("link"));
    fs::create_symlink(folder.File("link"), folder.File("link_to_link"));
    WriteWhole(folder.File("link_to_link"), "new");
    EXPECT_EQ(fs::read_symlink(folder.File("link")), "sub/real");
    EXPECT_EQ(fs::read_symlink(folder.File("link_to_link")), folder.File("link"));
    EXPECT_FALSE(fs::is_symlink(folder.File("sub/real")));
    EXPECT_EQ(ContentOf(folder.File("sub/real")), "new");
    EXPECT_EQ(folder.Count(), 3);
}

TEST(AtomicFileLinks, MissingFileBehindALinkIsCreated)
{
    const TemporaryFolder folder;
    fs::create_symlink("real", folder.File("link"));
    WriteWhole(folder.File("link"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.File("link")));
    EXPECT_EQ(ContentOf(folder.File("real")), "new");
}

TEST(AtomicFileLinks, LinkToAFolderIsRefused)
{
    const TemporaryFolder folder;
    fs::create_directory(folder.File("sub"));
    fs::create_symlink("sub", folder.File("link"));
    EXPECT_EQ(RefusalOfTarget(folder.File("link")), "is not a regular file");
    EXPECT_EQ(folder.Count(), 2);
}

TEST(AtomicFileLinks, LinksInACircleAreRefused)
{
    const TemporaryFolder folder;
    fs::create_symlink("b", folder.File("a"));
    fs::create_symlink("a", folder.File("b"));
    EXPECT_EQ(RefusalOfTarget(folder.File("a")), TextOf(std::errc::too_many_symbolic_link_levels));
    EXPECT_EQ(folder.Count(), 2);
}

TEST(AtomicFile, PipeAndDeviceAreRefused)
{
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo(folder.File("pipe").c_str(), 0600), 0);
    EXPECT_EQ(RefusalOfTarget(folder.File("pipe")), "is not a regular file");
    EXPECT_EQ(RefusalOfTarget("/dev/null"), "is not a regular file");
    EXPECT_TRUE(fs::is_fifo(folder.File("pipe")));
}

TEST(AtomicFile, PermissionsAreThoseOfANewFileUnderTheUmask)
{
    const TemporaryFolder folder;
    {
        const Umask mask(027);
        WriteWhole(folder.File("group"), "");
    }
    {
        const Umask mask(0);
        WriteWhole(folder.File("all"), "");
    }
    EXPECT_EQ(PermissionsOf(folder.File("group")), 0640U);
    EXPECT_EQ(PermissionsOf(folder.File("all")), 0666U);
}

TEST(AtomicFile, ChildProcessesDoNotInheritIt)
{
    const TemporaryFolder folder;
    // The system gives the lowest free descriptor.
    const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(next, 0);
    ::close(next);
    const AtomicFile file(folder.File("file"));
    const int flags = ::fcntl(next, F_GETFD);
    ASSERT_NE(flags, -1);
    EXPECT_NE(flags & FD_CLOEXEC, 0);
}

TEST(AtomicFile, NoDescriptorIsLeft)
{
    const TemporaryFolder folder;
    const auto count = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = count();
    WriteWhole(folder.File("file"), "content");
    {
        const AtomicFile dropped(folder.File("file"));
    }
    const std::string refusal = RefusalOfTarget(folder.File("none/file"));
    EXPECT_EQ(count(), before) << refusal;
}

} // namespace
