// The module at the end of a process, observed in programs that end.
#include "tests/support/program_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using karv_test::OutputOf;

namespace
{

/// The attachment is written only where a program's own functions pre-empt a library's; elsewhere only the
/// chain shows it.
const std::string kAttached = KARV_ATTACHED_STEP[0] == '\0' ? "" : KARV_ATTACHED_STEP "\n";

std::string RunLinked(const std::string& order)
{
    return OutputOf(KARV_LINKED_PROGRAM, order);
}

std::string RunUnlinked(const std::string& order)
{
    return OutputOf(KARV_UNLINKED_PROGRAM, order);
}

TEST(ProcessEnd, ProgramThatIsLinkedToTheModuleAttachesItBeforeMainAndDetachesItOnce)
{
    EXPECT_EQ(RunLinked(""), kAttached + "main begins with 1\nmain ends with 1\nterm leaves 0\n");
}

TEST(ProcessEnd, ProgramThatIsLinkedToTheModuleAndLoadsItAttachesItOnce)
{
    EXPECT_EQ(RunLinked("load"), kAttached + "main begins with 1\nmain ends with 1\nterm leaves 0\n");
}

TEST(ProcessEnd, UnloadDoesNotDetachAModuleThatTheProgramIsLinkedTo)
{
    EXPECT_EQ(RunLinked("unload"), kAttached + "main begins with 1\nmain ends with 1\nterm leaves 0\n");
}

TEST(ProcessEnd, ProgramWithoutTheModuleHasNothingInTheChain)
{
    EXPECT_EQ(RunUnlinked(""), "main begins with 0\nmain ends with 0\n");
}

TEST(ProcessEnd, ModuleThatIsStillLoadedIsDetachedOnce)
{
    EXPECT_EQ(RunUnlinked("load"), "main begins with 0\n" + kAttached + "main ends with 1\nterm leaves 0\n");
}

TEST(ProcessEnd, ModuleThatWasUnloadedIsNotDetachedAgain)
{
    EXPECT_EQ(RunUnlinked("unload"),
              "main begins with 0\n" + kAttached + "term leaves 0\nmain ends with 0\n");
}

} // namespace
