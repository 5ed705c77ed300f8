// Tests that the leak checks notice leaks.
#include "tests/support/process_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

using namespace karv_test;

namespace
{

TEST(ProcessFiles, OpenFileIsCountedUntilItIsClosed)
{
    const std::ptrdiff_t before = OpenDescriptors();
    std::ofstream file(testing::TempDir() + "karv_process_files");
    ASSERT_TRUE(file);
    EXPECT_EQ(OpenDescriptors(), before + 1);
    file.close();
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(ProcessFiles, HeldMemoryIsCountedUntilItIsGivenBack)
{
    constexpr std::size_t kBlocks = 1000;
    constexpr std::size_t kBytes = 100;
    const std::size_t before = HeapInUse();
    {
        const std::vector<std::vector<char>> held(kBlocks, std::vector<char>(kBytes));
        EXPECT_GE(HeapInUse(), before + kBlocks * kBytes);
    }
    EXPECT_LT(HeapInUse(), before + kBlocks * kBytes / 2);
}

TEST(ProcessFiles, FileThatIsNotLoadedHasNoAddress)
{
    EXPECT_FALSE(IsMapped("/no_such_library"));
}

} // namespace
