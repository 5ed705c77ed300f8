// The error lines and exit statuses of the program for wrong input.
#include "tests/viewer/apps/win32-dialog/dialog_process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using namespace dialog_test;

namespace
{

const std::string kTriangle = "v 0 0 0\nv 1 0 0\nv 0 0 1\nf 1 2 3\n";

/// Checks that a run ended with this status and this line on its standard error.
void ExpectError(const Outcome& outcome, unsigned long status, const std::string& line)
{
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.error, "win32_dialog: " + line + "\n");
}

void ExpectScriptError(const std::string& script, const std::string& line)
{
    const Folder folder;
    ExpectError(RunScript(folder, script, L"--picture end.bmp"), 1, line);
    EXPECT_EQ(folder.FileNames(), (std::vector<std::string>{"script.txt"}));
}

void ExpectModelError(const std::string& obj, const std::string& reason)
{
    const Folder folder;
    folder.Write("model.obj", obj);
    ExpectError(RunDialog(folder, L"model.obj --picture end.bmp"), 1, "model.obj: " + reason);
    EXPECT_EQ(folder.FileNames(), (std::vector<std::string>{"model.obj"}));
}

} // namespace

TEST(DialogOptions, UnknownOptionIsAUsageError)
{
    ExpectError(RunDialog(Folder(), L"--pictures x.bmp"), 2, "there is no option --pictures");
}

TEST(DialogOptions, OptionWithoutItsFileIsAUsageError)
{
    ExpectError(RunDialog(Folder(), L"--script"), 2, "--script needs a file");
    ExpectError(RunDialog(Folder(), L"--picture"), 2, "--picture needs a file");
}

TEST(DialogOptions, OptionThatStandsTwiceIsAUsageError)
{
    ExpectError(RunDialog(Folder(), L"--picture a.bmp --picture b.bmp"), 2, "--picture stands twice");
}

TEST(DialogOptions, SecondModelIsAUsageError)
{
    ExpectError(RunDialog(Folder(), L"a.obj b.obj --picture a.bmp"), 2, "there is room for one model only");
}

TEST(DialogModel, MissingFileIsRefusedWhateverItsExtension)
{
    for (const char* const name : {"none.obj", "none.step", "none.STL", "none"}) {
        const Folder folder;
        const std::wstring arguments = std::filesystem::path(name).wstring() + L" --picture a.bmp";
        ExpectError(RunDialog(folder, arguments), 1, std::string(name) + ": no such file");
        EXPECT_TRUE(folder.FileNames().empty());
    }
}

TEST(DialogModel, FolderIsRefused)
{
    const Folder folder;
    std::filesystem::create_directory(folder.Path() / "model.obj");
    ExpectError(RunDialog(folder, L"model.obj --picture a.bmp"), 1, "model.obj: is a directory");
    EXPECT_EQ(folder.FileNames(), (std::vector<std::string>{"model.obj"}));
}

TEST(DialogModel, FileOfAKindWithoutAnImporterIsRefused)
{
    const std::string reason = " cannot be read on Windows, where no importer is built";
    for (const auto& [name, kind] :
         {std::pair{"part.step", ".step files"}, std::pair{"part.STL", ".stl files"},
          std::pair{"part", "files without an extension"}}) {
        const Folder folder;
        folder.Write(name, kTriangle);
        const std::wstring arguments = std::filesystem::path(name).wstring() + L" --picture x.bmp";
        ExpectError(RunDialog(folder, arguments), 1, std::string(name) + ": " + kind + reason);
        EXPECT_EQ(folder.FileNames(), (std::vector<std::string>{name}));
    }
}

TEST(DialogModel, ExtensionMayBeInCapitals)
{
    const Folder folder;
    folder.Write("MODEL.OBJ", kTriangle);
    const Outcome outcome = RunDialog(folder, L"MODEL.OBJ --picture x.bmp");
    EXPECT_EQ(outcome.status, 0U) << outcome.error;
    EXPECT_EQ(folder.FileNames(), (std::vector<std::string>{"MODEL.OBJ", "x.bmp"}));
}

TEST(DialogModel, FileWithoutAnythingToShowIsRefused)
{
    ExpectModelError("", "has no faces and no lines");
    ExpectModelError("v 0 0 0\nv 1 0 0\nv 2 0 0\n", "has no faces and no lines");
    ExpectModelError("some other text\n", "has no faces and no lines");
}

TEST(DialogModel, FaceWithoutAreaShowsNothing)
{
    ExpectModelError("v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n", "has no faces and no lines");
}

TEST(DialogModel, VertexThatIsNotThereIsRefused)
{
    ExpectModelError(kTriangle + "f 1 2 4\n", "names a vertex that it does not have; it has 3");
    ExpectModelError(kTriangle + "f 1 2 -4\n", "names a vertex that it does not have; it has 3");
    ExpectModelError(kTriangle + "l 1 9\n", "names a vertex that it does not have; it has 3");
}

TEST(DialogModel, VertexNumberZeroIsRefused)
{
    ExpectModelError(kTriangle + "f 0 1 2\n",
                     "Failed parse `f' line(e.g. zero value for face index. line 5.)");
}

TEST(DialogModel, CoordinateOutOfRangeIsRefused)
{
    ExpectModelError(kTriangle + "v 1e999 0 0\nf 1 2 4\n", "vertex 4 is no point");
}

TEST(DialogModel, PolygonOfMoreCornersThanTheLoaderCountsIsRefused)
{
    // In a byte, 256 becomes 0 and 300 becomes 44.
    for (const int corners : {256, 300}) {
        std::ostringstream obj;
        std::ostringstream face;
        for (int i = 0; i < corners; ++i) {
            obj << "v " << i << " 0 " << i * i << '\n';
            face << ' ' << i + 1;
        }
        obj << 'f' << face.str() << '\n';
        ExpectModelError(obj.str(), "has a polygon of more than 255 corners");
    }
}

TEST(DialogPicture, UnwritableFileIsRefusedAndLeavesNothing)
{
    const Folder folder;
    ExpectError(RunDialog(folder, L"--picture none/a.bmp"), 1, "none/a.bmp: cannot be written");
    EXPECT_TRUE(folder.FileNames().empty());
}

TEST(DialogPicture, FolderInItsPlaceStaysAndNothingElseIsLeft)
{
    const Folder folder;
    std::filesystem::create_directory(folder.Path() / "a.bmp");
    folder.Write("a.bmp/inside", "x");
    ExpectError(RunDialog(folder, L"--picture a.bmp"), 1, "a.bmp: cannot be written");
    EXPECT_EQ(folder.FileNames(), (std::vector<std::string>{"a.bmp"}));
}

TEST(DialogScript, MissingFileIsRefused)
{
    ExpectError(RunDialog(Folder(), L"--script none.txt"), 1, "none.txt: cannot be opened");
}

TEST(DialogScript, UnknownCommandIsRefusedBeforeAnythingIsDone)
{
    ExpectScriptError("picture a.bmp\n\n# a comment\n  fly away\n", "script.txt:4: \"fly\" is no command");
}

TEST(DialogScript, NumbersOutOfRangeAreRefused)
{
    ExpectScriptError("opacity 101\n", "script.txt:1: \"101\" is no number from 0 to 100");
    ExpectScriptError("opacity -1\n", "script.txt:1: \"-1\" is no number from 0 to 100");
    ExpectScriptError("background 0 256 0\n", "script.txt:1: \"256\" is no number from 0 to 255");
    ExpectScriptError("wheel 1e2\n", "script.txt:1: \"1e2\" is no number from -100 to 100");
    ExpectScriptError("wheel 99999999999\n", "script.txt:1: \"99999999999\" is no number from -100 to 100");
}

TEST(DialogScript, MissingArgumentsAreRefused)
{
    ExpectScriptError("background 1 2\n", "script.txt:1: \"\" is no number from 0 to 255");
    ExpectScriptError("press\n", "script.txt:1: \"press\" needs more than that");
    ExpectScriptError("picture   \r\n", "script.txt:1: \"picture\" needs more than that");
}

TEST(DialogScript, ArgumentsTooManyAreRefused)
{
    ExpectScriptError("opacity 50 50\n", "script.txt:1: \"50\" is too much");
}

TEST(DialogScript, ButtonThatIsNotThereIsRefused)
{
    ExpectScriptError("press Front\npress front\n", "script.txt:2: there is no button \"front\"");
}

TEST(DialogScript, GroupBoxAndHiddenCheckBoxAreNoButtons)
{
    ExpectScriptError("press Mode\n", "script.txt:1: there is no button \"Mode\"");
    ExpectScriptError("press 5\n", "script.txt:1: there is no button \"5\"");
}

TEST(DialogScript, MouseButtonThatIsNotThereIsRefused)
{
    ExpectScriptError("drag up 1 1 2 2\n", "script.txt:1: the mouse has no button \"up\"");
}

TEST(DialogScript, FileToOpenThatIsNotThereIsRefused)
{
    ExpectScriptError("open none.obj\n", "script.txt:1: none.obj: no such file");
}

TEST(DialogScript, FileToOpenOfAKindWithoutAnImporterIsRefused)
{
    const Folder folder;
    folder.Write("part.step", kTriangle);
    const Outcome outcome = RunScript(folder, "open part.step\n", L"--picture x.bmp");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_TRUE(outcome.error.starts_with("win32_dialog: script.txt:1: ")) << outcome.error;
    EXPECT_TRUE(outcome.error.ends_with(
        "part.step: .step files cannot be read on Windows, where no importer is built\n"))
        << outcome.error;
    EXPECT_EQ(folder.FileNames(), (std::vector<std::string>{"part.step", "script.txt"}));
}

TEST(DialogScript, CommandAfterTheDialogIsClosedIsRefused)
{
    ExpectScriptError("press Close\npress Front\n", "script.txt:2: the dialog is closed");
}

TEST(DialogScript, PictureAfterTheDialogIsClosedIsRefused)
{
    ExpectScriptError("press Close\n", "the dialog is closed");
}

TEST(DialogScript, EmptyScriptEndsWell)
{
    const Folder folder;
    const Outcome outcome = RunScript(folder, "");
    EXPECT_EQ(outcome.status, 0U);
    EXPECT_EQ(outcome.error, "");
}
