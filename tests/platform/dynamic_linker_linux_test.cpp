// The dynamic linker and damaged or foreign library files of Linux.
#include "tests/platform/dynamic_linker_fixture.h"
#include "tests/platform/temporary_folder.h"

#include <vector>

#include <sys/stat.h>

using namespace karv_test;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

using DynamicLinkerFiles = DynamicLinker;

TEST_F(DynamicLinker, FileByAnotherNameIsTheSameModule)
{
    const TemporaryFolder folder;
    const std::string other_name = folder.File("other.so");
    std::filesystem::create_symlink(FileOf(kPuppet), other_name);
    void* const application = LoadGoodPuppet();
    EXPECT_EQ(loader_.Load(other_name), application);
    EXPECT_EQ(loader_.Modules().at(0).loads, 2);
}

TEST_F(DynamicLinkerFiles, PipeIsNoFileAndIsNotWaitedFor)
{
    const TemporaryFolder folder;
    const std::string pipe = folder.File("pipe.so");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(ErrorOf(pipe), pipe + ": is not a file");
}

TEST_F(DynamicLinkerFiles, ModuleForAnotherMachineIsRefused)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("other_machine.so");
    std::string content = Content(FileOf(kPuppet));
    // The field e_machine of the header: 8 is MIPS.
    content.at(18) = 8;
    content.at(19) = 0;
    Write(file, content);
    EXPECT_THAT(ErrorOf(file), StartsWith(file + ": cannot be loaded: "));
}

TEST_F(DynamicLinkerFiles, EveryTruncationIsRefusedWithAReason)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("short.so");
    const std::string content = Content(FileOf("test_module_plain"));
    ASSERT_GT(content.size(), 4096U);
    std::vector<std::size_t> lengths = {content.size() - 1};
    for (std::size_t length = 0; length < 256; ++length)
        lengths.push_back(length);
    for (std::size_t length = 256; length < content.size(); length += content.size() / 64)
        lengths.push_back(length);
    for (const std::size_t length : lengths) {
        Write(file, std::string_view(content).substr(0, length));
        const std::string error = ErrorOf(file);
        // The header has 64 bytes. A shorter file cannot be identified.
        EXPECT_EQ(error, file + (length < 64 ? ": is not a module" : ": is cut short")) << length;
    }
    Write(file, content);
    EXPECT_EQ(ErrorOf(file), file + ": exports no acrxEntryPoint") << "whole again";
}

TEST_F(DynamicLinkerFiles, LibraryThatNeedsAMissingOneIsRefused)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("needy.so");
    std::string content = Content(FileOf(kPuppet));
    const std::string needed = "libkarv_platform.so";
    const std::size_t place = content.find(needed);
    ASSERT_NE(place, std::string::npos);
    content.replace(place, needed.size(), "libnot_there_now.so");
    Write(file, content);
    const std::string error = ErrorOf(file);
    EXPECT_THAT(error, StartsWith(file + ": cannot be loaded: "));
    EXPECT_THAT(error, HasSubstr("libnot_there_now.so"));
}

} // namespace
