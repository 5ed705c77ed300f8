// The module at the end of a process, seen in programs that end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

namespace
{

/// What a run of the program writes, and its status where that is not 0.
std::string Run(const std::string& command)
{
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return "cannot be started";
    std::array<char, 4096> part{};
    while (fgets(part.data(), part.size(), pipe) != nullptr)
        text += part.data();
    const int status = pclose(pipe);
    return status == 0 ? text : text + "status " + std::to_string(status);
}

std::string RunLinked(const std::string& order)
{
    return Run("'" KARV_LINKED_PROGRAM "' " + order);
}

std::string RunUnlinked(const std::string& order)
{
    return Run("'" KARV_UNLINKED_PROGRAM "' " + order);
}

TEST(ProcessEnd, ProgramThatIsLinkedToTheModuleAttachesItBeforeMainAndDetachesItOnce)
{
    EXPECT_EQ(RunLinked(""), "init\nmain ends with 1\nterm leaves 0\n");
}

TEST(ProcessEnd, ProgramThatIsLinkedToTheModuleAndLoadsItAttachesItOnce)
{
    EXPECT_EQ(RunLinked("load"), "init\nmain ends with 1\nterm leaves 0\n");
}

TEST(ProcessEnd, UnloadDoesNotDetachAModuleThatTheProgramIsLinkedTo)
{
    EXPECT_EQ(RunLinked("unload"), "init\nmain ends with 1\nterm leaves 0\n");
}

TEST(ProcessEnd, ProgramWithoutTheModuleHasNothingInTheChain)
{
    EXPECT_EQ(RunUnlinked(""), "main ends with 0\n");
}

TEST(ProcessEnd, ModuleThatIsStillLoadedIsDetachedOnce)
{
    EXPECT_EQ(RunUnlinked("load"), "init\nmain ends with 1\nterm leaves 0\n");
}

TEST(ProcessEnd, ModuleThatWasUnloadedIsNotDetachedAgain)
{
    EXPECT_EQ(RunUnlinked("unload"), "init\nterm leaves 0\nmain ends with 0\n");
}

} // namespace
