#include "viewer/import/companion_files.h"

#include "tests/viewer/test_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace viewer
{
namespace
{

namespace fs = std::filesystem;

/// Files beside and outside of the folder "model", which has the model file.
class CompanionFiles : public ViewerTest
{
  protected:
    CompanionFiles() { fs::create_directories(PathOf("model/textures")); }

    /// The path of the found file, relative to "model"; empty if none is found.
    std::string Find(const std::string& name) const
    {
        const auto found = FindCompanion(PathOf("model/a.obj"), name);
        return found ? fs::path(*found).lexically_relative(PathOf("model")).string() : "";
    }
};

TEST_F(CompanionFiles, PathsAreRelativeToTheModel)
{
    Write("model/textures/a.png", "a");
    Write("model/a.png", "a");
    EXPECT_EQ(Find("textures/a.png"), "textures/a.png");
    EXPECT_EQ(Find("textures\\a.png"), "textures/a.png");
    EXPECT_EQ(Find("file://textures/a.png"), "textures/a.png");
    EXPECT_EQ(Find("a.png"), "a.png");
    EXPECT_EQ(Find("none.png"), "");
    EXPECT_EQ(Find(""), "");
}

TEST_F(CompanionFiles, FileElsewhereIsFoundByItsLastPart)
{
    Write("model/a.png", "a");
    Write("model/textures/b.png", "b");
    EXPECT_EQ(Find("/pictures/a.png"), "a.png");
    EXPECT_EQ(Find("C:\\pictures\\b.png"), "textures/b.png");
    EXPECT_EQ(Find("pictures/b.png"), "textures/b.png");
}

TEST_F(CompanionFiles, CaseOfLettersOnlyDecidesBetweenTwoFiles)
{
    Write("model/a.png", "a");
    EXPECT_EQ(Find("A.PNG"), "a.png");
    Write("model/A.PNG", "b");
    EXPECT_EQ(Find("A.PNG"), "A.PNG");
    EXPECT_EQ(Find("a.png"), "a.png");
}

TEST_F(CompanionFiles, NamesDoNotLeadOutOfTheFolder)
{
    Write("a.png", "a");
    for (const std::string& name :
         {std::string("../a.png"), std::string("textures/../../a.png"), std::string("..\\a.png"),
          PathOf("a.png"), "file://" + PathOf("a.png"), std::string(".."), std::string("/")})
        EXPECT_EQ(Find(name), "") << name;
    Write("model/a.png", "a");
    EXPECT_EQ(Find("../a.png"), "a.png");
}

TEST_F(CompanionFiles, LinksOutOfTheFolderAreNotFollowed)
{
    fs::create_directory(PathOf("other"));
    Write("other/a.png", "a");
    Write("model/b.png", "b");
    fs::create_symlink(PathOf("other/a.png"), PathOf("model/file.png"));
    fs::create_directory_symlink(PathOf("other"), PathOf("model/folder"));
    fs::create_symlink(PathOf("model/b.png"), PathOf("model/inside.png"));
    EXPECT_EQ(Find("file.png"), "");
    EXPECT_EQ(Find("folder/a.png"), "");
    EXPECT_EQ(Find("inside.png"), "inside.png");
}

TEST_F(CompanionFiles, FoldersAreNotFound)
{
    fs::create_directory(PathOf("model/a.png"));
    EXPECT_EQ(Find("a.png"), "");
}

TEST(CompanionName, LosesAPathThatMayLeadOutOfTheFolder)
{
    EXPECT_EQ(CompanionName("parts/a.stp"), "parts/a.stp");
    EXPECT_EQ(CompanionName("a..b/c.stp"), "a..b/c.stp");
    EXPECT_EQ(CompanionName("../a.stp"), "a.stp");
    EXPECT_EQ(CompanionName("/parts/a.stp"), "a.stp");
    EXPECT_EQ(CompanionName("parts\\a.stp"), "a.stp");
    EXPECT_EQ(CompanionName("C:a.stp"), "a.stp");
    EXPECT_EQ(CompanionName("parts/.."), "");
    EXPECT_EQ(CompanionName("/parts/"), "");
    EXPECT_EQ(CompanionName(""), "");
}

TEST(CompanionFolder, IsComparedByWholeNames)
{
    EXPECT_TRUE(IsBelow("/parts", "/parts/a.stp"));
    EXPECT_TRUE(IsBelow("/parts", "/parts/left/a.stp"));
    EXPECT_TRUE(IsBelow("/", "/a.stp"));
    EXPECT_FALSE(IsBelow("/parts", "/parts2/a.stp"));
    EXPECT_FALSE(IsBelow("/parts/left", "/parts/a.stp"));
}

} // namespace
} // namespace viewer
