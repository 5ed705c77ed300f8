#include "tests/platform/atomic_file.h"
#include "tests/platform/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace
{

using karv_test::ContentOf;
using karv_test::ErrorOf;
using karv_test::RefusalOfTarget;
using karv_test::TemporaryFolder;
using karv_test::TextOf;
using karv_test::WriteWhole;

/// The name of the folder's only entry.
std::string OnlyName(const TemporaryFolder& folder)
{
    EXPECT_EQ(folder.Count(), 1);
    return std::filesystem::directory_iterator(folder.Path())->path().filename().string();
}

TEST(AtomicFile, CommittedFileHoldsAllBytesInOrder)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    const std::string bytes("\0\r\n\x1A\xFF", 5);
    AtomicFile file(path);
    file.Write("one ");
    file.Write("");
    file.Write(bytes);
    file.Commit();
    EXPECT_EQ(ContentOf(path), "one " + bytes);
    EXPECT_EQ(folder.Count(), 1);
}

TEST(AtomicFile, NothingWrittenIsAnEmptyFile)
{
    const TemporaryFolder folder;
    WriteWhole(folder.File("file"), "");
    ASSERT_TRUE(std::filesystem::exists(folder.File("file")));
    EXPECT_EQ(ContentOf(folder.File("file")), "");
}

TEST(AtomicFile, MoreThanAnyBufferIsWritten)
{
    const TemporaryFolder folder;
    const std::string bytes(3'000'000, 'x');
    WriteWhole(folder.File("file"), bytes + "y");
    EXPECT_TRUE(ContentOf(folder.File("file")) == bytes + "y");
}

TEST(AtomicFile, TargetAppearsWithTheCommit)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    AtomicFile file(path);
    file.Write("new");
    EXPECT_FALSE(std::filesystem::exists(path));
    file.Commit();
    EXPECT_EQ(ContentOf(path), "new");
}

TEST(AtomicFile, OlderFileStaysUntilTheCommit)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    std::ofstream(path) << "older and longer";
    AtomicFile file(path);
    file.Write("new");
    EXPECT_EQ(ContentOf(path), "older and longer");
    file.Commit();
    EXPECT_EQ(ContentOf(path), "new");
    EXPECT_EQ(folder.Count(), 1);
}

TEST(AtomicFile, WithoutACommitNothingIsLeftAndTheOlderFileStays)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    std::ofstream(path) << "old";
    {
        AtomicFile file(path);
        file.Write("new");
        EXPECT_EQ(folder.Count(), 2);
    }
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(folder.Count(), 1);
}

TEST(AtomicFile, TemporaryNameIsTheTargetsWithSixteenRandomDigits)
{
    const TemporaryFolder folder;
    std::set<std::string> names;
    for (int i = 0; i < 10; ++i) {
        const AtomicFile file(folder.File("file.txt"));
        const std::string name = OnlyName(folder);
        EXPECT_THAT(name, testing::StartsWith("file.txt.part-"));
        EXPECT_EQ(name.find_last_not_of("0123456789abcdef"), std::string("file.txt.part-").size() - 1);
        EXPECT_EQ(name.size(), std::string("file.txt.part-").size() + 16);
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 10U);
}

TEST(AtomicFile, LongestNameIsWritten)
{
    const TemporaryFolder folder;
    const std::string path = folder.File(std::string(200, 'n'));
    WriteWhole(path, "content");
    EXPECT_EQ(ContentOf(path), "content");
}

TEST(AtomicFile, RelativeNameLiesInTheCurrentFolder)
{
    const TemporaryFolder folder;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    const auto error = ErrorOf([] { WriteWhole("file", "content"); });
    std::filesystem::current_path(before);
    EXPECT_FALSE(error.has_value());
    EXPECT_EQ(ContentOf(folder.File("file")), "content");
}

TEST(AtomicFile, LastOfTwoToCommitWins)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    AtomicFile first(path);
    AtomicFile second(path);
    first.Write("first");
    second.Write("second");
    second.Commit();
    first.Commit();
    EXPECT_EQ(ContentOf(path), "first");
    EXPECT_EQ(folder.Count(), 1);
}

TEST(AtomicFile, FolderIsRefused)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.File("sub"));
    const auto error = ErrorOf([&] { const AtomicFile file(folder.File("sub")); });
    ASSERT_TRUE(error.has_value());
    EXPECT_STREQ(error->what(), "is not a regular file");
    EXPECT_EQ(error->Code(), std::errc::is_a_directory);
    EXPECT_EQ(folder.Count(), 1);
}

TEST(AtomicFile, MissingFolderIsRefusedWithTheSystemsReason)
{
    const TemporaryFolder folder;
    EXPECT_EQ(RefusalOfTarget(folder.File("none/file")), TextOf(std::errc::no_such_file_or_directory));
    EXPECT_EQ(folder.Count(), 0);
}

TEST(AtomicFile, EmptyNameIsRefused)
{
    EXPECT_EQ(RefusalOfTarget(""), TextOf(std::errc::no_such_file_or_directory));
}

TEST(AtomicFile, TargetThatBecameAFolderFailsTheCommitAndLeavesNoPart)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    AtomicFile file(path);
    file.Write("new");
    std::filesystem::create_directories(path + "/occupied");
    const auto first = ErrorOf([&] { file.Commit(); });
    ASSERT_TRUE(first.has_value());
    EXPECT_EQ(folder.Count(), 1) << "the folder in the way alone";
    const auto second = ErrorOf([&] { file.Commit(); });
    ASSERT_TRUE(second.has_value());
    EXPECT_EQ(second->Code(), first->Code());
}

TEST(AtomicFile, WritingAfterTheCommitIsRefusedAndChangesNothing)
{
    const TemporaryFolder folder;
    AtomicFile file(folder.File("file"));
    file.Write("content");
    file.Commit();
    EXPECT_TRUE(ErrorOf([&] { file.Write("more"); }).has_value());
    EXPECT_TRUE(ErrorOf([&] { file.Commit(); }).has_value());
    EXPECT_EQ(ContentOf(folder.File("file")), "content");
}

} // namespace
