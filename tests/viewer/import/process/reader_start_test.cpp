// How a client finds karv-reader, and what the program does when it is started by hand.
#include "tests/viewer/import/process/import_client.h"
#include "tests/viewer/test_support.h"
#include "viewer/import/process/reader_arguments.h"
#include "viewer/import/process/reader_location.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace viewer
{
namespace
{

namespace fs = std::filesystem;

/// Commands in a folder of their own, which holds a cube.
class ReaderStart : public ViewerTest
{
  protected:
    ReaderStart() { Write("cube.obj", kCubeObj); }

    /// Runs a shell command in the folder.
    [[nodiscard]] ProgramRun Run(const std::string& command) const
    {
        const int result = std::system(("cd '" + PathOf("") + "' && " + command + " >out 2>err").c_str());
        return {WIFEXITED(result) ? WEXITSTATUS(result) : -1, Read("out"), Read("err")};
    }
    /// What the client prints. `client` is the shell's word for it.
    [[nodiscard]] std::string OutputOf(const std::string& client,
                                       const std::string& arguments = "cube.obj") const
    {
        const ProgramRun run = Run(client + " " + arguments);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
        return run.out;
    }
    /// Puts a copy of the file into a new folder of this name and returns the copy's path.
    [[nodiscard]] fs::path CopyInto(const std::string& folder, const fs::path& file) const
    {
        const fs::path target = fs::canonical(PathOf("")) / folder;
        fs::create_directories(target);
        fs::copy_file(file, target / file.filename());
        return target / file.filename();
    }
};

TEST_F(ReaderStart, ByHandGivesOneLineAndStatusTwo)
{
    for (const std::string arguments :
         {"", "cube.obj", "--help", "--list cube.obj", "$$ 60 many - cube.obj", "$$ 1s 1000000 - cube.obj",
          "me 60 1000000 - cube.obj", "$$ 60 1000000 fine cube.obj", "$$ 60 1000000 -",
          "$$ 60 1000000 - cube.obj cube.obj"}) {
        const ProgramRun run = Run("'" KARV_READER "' " + arguments);
        EXPECT_EQ(run.status, 2) << arguments;
        EXPECT_EQ(run.out, "") << arguments;
        EXPECT_EQ(run.err, "karv-reader: is started by other programs, to read a model file for them\n")
            << arguments;
    }
}

TEST(ReaderCommandLine, IsParsedAsItWasWritten)
{
    const ReaderArguments written{.parent = 4711,
                                  .processor = std::chrono::seconds(90),
                                  .memory = std::size_t{5} << 30U,
                                  .options = {.deflection = 0.1, .pixels = 240, .safe = true},
                                  .path = "-a b.step"};
    const std::vector<std::string> texts = WriteReaderArguments(written);
    std::vector<const char*> argv{"karv-reader"};
    for (const std::string& text : texts)
        argv.push_back(text.c_str());
    const auto read = ParseReaderArguments(static_cast<int>(argv.size()), argv.data());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->parent, 4711);
    EXPECT_EQ(read->processor, std::chrono::seconds(90));
    EXPECT_EQ(read->memory, std::size_t{5} << 30U);
    EXPECT_EQ(read->options.deflection, 0.1);
    EXPECT_TRUE(read->options.safe);
    EXPECT_EQ(read->options.pixels, 240);
    EXPECT_EQ(read->path, "-a b.step");
}

/// A program that is a client finds the reader in its own folder.
using ReaderBesideAProgram = ReaderStart;

TEST_F(ReaderBesideAProgram, IsFoundFromAnyWorkingFolder)
{
    EXPECT_EQ(OutputOf("'" KARV_IMPORT_CLIENT "'"), "cube.obj\n");
}

TEST_F(ReaderBesideAProgram, IsFoundAfterACallByARelativePathAndAChangeOfFolder)
{
    const fs::path relative = fs::relative(KARV_IMPORT_CLIENT, PathOf(""));
    ASSERT_TRUE(relative.is_relative());
    EXPECT_EQ(OutputOf("'" + relative.string() + "'", "'" + PathOf("cube.obj") + "' /"), "cube.obj\n");
}

TEST_F(ReaderBesideAProgram, IsFoundThroughASymbolicLink)
{
    fs::create_symlink(KARV_IMPORT_CLIENT, PathOf("link"));
    EXPECT_EQ(OutputOf("./link"), "cube.obj\n");
}

TEST_F(ReaderBesideAProgram, IsFoundByAProgramThatPathFinds)
{
    const fs::path client = KARV_IMPORT_CLIENT;
    EXPECT_EQ(
        OutputOf("PATH='" + client.parent_path().string() + "':\"$PATH\" " + client.filename().string()),
        "cube.obj\n");
}

TEST_F(ReaderBesideAProgram, MissingGivesOneLineWithTheFileTheReaderAndTheReason)
{
    const fs::path client = KARV_IMPORT_CLIENT;
    const fs::path copy = CopyInto("no reader", client);
    // The copy's libraries stay where they are.
    const std::string command =
        "LD_LIBRARY_PATH='" + client.parent_path().string() + "' '" + copy.string() + "'";
    const std::string reader = (copy.parent_path() / "karv-reader").string();
    EXPECT_EQ(OutputOf(command),
              "cube.obj: its reader " + reader + " cannot be started: No such file or directory\n");
    Write("no reader/karv-reader", "");
    EXPECT_EQ(OutputOf(command),
              "cube.obj: its reader " + reader + " cannot be started: Permission denied\n");
}

/// A shared library that is a client, loaded from a folder of its own.
class ReaderBesideALibrary : public ReaderStart
{
  protected:
    ~ReaderBesideALibrary() override
    {
        if (handle_ != nullptr)
            dlclose(handle_);
    }

    /// The client's function in the library with this path.
    [[nodiscard]] decltype(&ImportedTitle) Load(const std::string& path)
    {
        handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle_ == nullptr)
            throw std::runtime_error(dlerror());
        return reinterpret_cast<decltype(&ImportedTitle)>(dlsym(handle_, "ImportedTitle"));
    }
    /// Puts a reader that answers to the name "model" beside the library.
    static void PutReaderBeside(const fs::path& library)
    {
        fs::create_symlink(KARV_FAKE_READER, library.parent_path() / "karv-reader");
    }

  private:
    void* handle_ = nullptr;
};

TEST_F(ReaderBesideALibrary, IsTheOneThatTheLibraryStarts)
{
    const fs::path library = CopyInto("library", KARV_IMPORT_CLIENT_MODULE);
    PutReaderBeside(library);
    EXPECT_STREQ(Load(library.string())("model"), "sample.step");
}

TEST_F(ReaderBesideALibrary, IsFoundAfterALoadByARelativePathAndAChangeOfFolder)
{
    const fs::path library = CopyInto("library", KARV_IMPORT_CLIENT_MODULE);
    PutReaderBeside(library);
    const fs::path before = fs::current_path();
    fs::current_path(PathOf(""));
    const auto imported_title = Load("library/" + library.filename().string());
    fs::current_path("/");
    EXPECT_STREQ(imported_title("model"), "sample.step");
    fs::current_path(before);
}

TEST_F(ReaderBesideALibrary, MissingGivesOneLineWithTheFileTheReaderAndTheReason)
{
    const fs::path library = CopyInto("library", KARV_IMPORT_CLIENT_MODULE);
    const std::string reader = (library.parent_path() / "karv-reader").string();
    EXPECT_EQ(Load(library.string())("part.step"),
              "part.step: its reader " + reader + " cannot be started: No such file or directory");
}

TEST(ReaderLocation, IsTheFolderOfThisProgram)
{
    EXPECT_EQ(ReaderBesideThisCode(), fs::canonical("/proc/self/exe").parent_path() / "karv-reader");
}

} // namespace
} // namespace viewer
