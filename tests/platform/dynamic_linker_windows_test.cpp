// The dynamic linker and damaged or foreign library files of Windows.
#include "tests/platform/dynamic_linker_fixture.h"
#include "tests/platform/temporary_folder.h"

#include "platform/winsys/winsys.h"

#include <cctype>
#include <cstring>
#include <vector>

using namespace karv_test;
using testing::StartsWith;

namespace
{

using DynamicLinkerFiles = DynamicLinker;

/// The offset of the headers that name the machine and the kind of an image.
std::size_t HeadersIn(const std::string& content)
{
    DWORD place = 0;
    std::memcpy(&place, &content.at(offsetof(IMAGE_DOS_HEADER, e_lfanew)), sizeof place);
    return place;
}

constexpr std::size_t kMachine = offsetof(IMAGE_NT_HEADERS64, FileHeader.Machine);
constexpr std::size_t kCharacteristics = offsetof(IMAGE_NT_HEADERS64, FileHeader.Characteristics);

void Replace(std::string& content, const std::string& before, const std::string& after)
{
    ASSERT_EQ(before.size(), after.size());
    const std::size_t place = content.find(before);
    ASSERT_NE(place, std::string::npos) << before;
    content.replace(place, before.size(), after);
}

TEST_F(DynamicLinker, FileInOtherLettersIsTheSameModule)
{
    void* const application = LoadGoodPuppet();
    std::string name = NameOf(kPuppet);
    for (char& letter : name)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    EXPECT_EQ(loader_.Load(std::filesystem::path(KARV_TEST_MODULES) / name), application);
    EXPECT_EQ(loader_.Modules().at(0).loads, 2);
}

TEST_F(DynamicLinkerFiles, ModuleForAnotherMachineIsRefused)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("other_machine.dll");
    for (const WORD machine : {WORD{IMAGE_FILE_MACHINE_I386}, WORD{IMAGE_FILE_MACHINE_ARM64}}) {
        std::string content = Content(FileOf(kPuppet));
        std::memcpy(&content.at(HeadersIn(content) + kMachine), &machine, sizeof machine);
        Write(file, content);
        EXPECT_EQ(ErrorOf(file), file + ": cannot be loaded: it is for another kind of machine");
    }
}

TEST_F(DynamicLinkerFiles, ProgramIsNoModule)
{
    std::string program(MAX_PATH, '\0');
    program.resize(GetModuleFileNameA(nullptr, program.data(), MAX_PATH));
    EXPECT_EQ(ErrorOf(program), program + ": is not a module");
}

TEST_F(DynamicLinkerFiles, LibraryWithoutCodeForThisSystemIsRefused)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("driver.dll");
    std::string content = Content(FileOf(kPuppet));
    constexpr std::size_t kMagic = offsetof(IMAGE_NT_HEADERS64, OptionalHeader.Magic);
    content.at(HeadersIn(content) + kMagic) = 0;
    Write(file, content);
    EXPECT_THAT(ErrorOf(file), StartsWith(file + ": cannot be loaded: "));
}

TEST_F(DynamicLinkerFiles, EveryTruncationIsRefusedWithAReason)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("short.dll");
    const std::string content = Content(FileOf("test_module_plain"));
    ASSERT_GT(content.size(), 4096U);
    // Without these headers a file cannot be identified.
    const std::size_t telling = HeadersIn(content) + kCharacteristics + sizeof(WORD);
    std::vector<std::size_t> lengths = {content.size() - 1};
    for (std::size_t length = 0; length < 2 * telling; ++length)
        lengths.push_back(length);
    for (std::size_t length = 2 * telling; length < content.size(); length += content.size() / 64)
        lengths.push_back(length);
    for (const std::size_t length : lengths) {
        Write(file, std::string_view(content).substr(0, length));
        const std::string error = ErrorOf(file);
        EXPECT_EQ(error, file + (length < telling ? ": is not a module" : ": is cut short")) << length;
    }
    Write(file, content);
    EXPECT_EQ(ErrorOf(file), file + ": exports no acrxEntryPoint") << "whole again";
}

TEST_F(DynamicLinkerFiles, LibraryThatNeedsAMissingOneIsRefused)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("needy.dll");
    std::string content = Content(FileOf(kPuppet));
    Replace(content, NameOf("karv_platform"), NameOf("not_there_now"));
    Write(file, content);
    EXPECT_EQ(ErrorOf(file), file + ": cannot be loaded: a library that it needs is missing");
}

TEST_F(DynamicLinkerFiles, WhatALibraryNeedsMayLieBesideIt)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("needy.dll");
    std::string content = Content(FileOf("test_module_borrower"));
    Replace(content, NameOf("KARV3DViewport10"), NameOf("BesideViewport10"));
    Write(file, content);
    EXPECT_EQ(ErrorOf(file), file + ": cannot be loaded: a library that it needs is missing");
    std::filesystem::copy_file(FileOf("KARV3DViewport10"), folder.File(NameOf("BesideViewport10")));
    EXPECT_EQ(ErrorOf(file), file + ": exports no acrxEntryPoint") << "it is loaded, and no module";
}

TEST_F(DynamicLinkerFiles, NamesBeyondTheCodePageAreLoaded)
{
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / L"\u65e5\u672c.dll";
    std::filesystem::copy_file(FileOf(kPuppet), file);
    void* const application = loader_.Load(file);
    EXPECT_EQ(loader_.Modules().at(0).file, std::filesystem::absolute(file).lexically_normal());
    loader_.allowUnload(application);
    loader_.Unload(application);
}

} // namespace
