// Runs of the whole program, started as a user starts it.
#include "tests/viewer/test_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string>

namespace viewer
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Program : public ViewerTest
{
  protected:
    /// Expects a run to fail with one line that begins like this, and to write no picture.
    void ExpectRefused(const std::string& arguments, const std::string& line_start) const
    {
        const std::vector<std::string> before = Names();
        const ProgramRun run = View("--picture p.png --sheet s.png " + arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, StartsWith(line_start));
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(Names(), before);
    }
};

TEST_F(Program, PictureHasTheDefaultSize)
{
    const ProgramRun run = View("--picture p.png");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out + run.err, "");
    EXPECT_EQ(SizeOfPng(PathOf("p.png")), (PictureSize{1024, 768}));
    EXPECT_THAT(Names(), ElementsAre("p.png"));
}

TEST_F(Program, PictureHasTheAskedSize)
{
    Write("t.obj", kTetrahedronObj);
    EXPECT_EQ(View("t.obj --picture p.png --size 123x45 --view top --projection parallel").status, 0);
    EXPECT_EQ(SizeOfPng(PathOf("p.png")), (PictureSize{123, 45}));
}

TEST_F(Program, SheetHasTheAskedSize)
{
    EXPECT_EQ(View("--sheet s.png --size 800x600").status, 0);
    EXPECT_EQ(SizeOfPng(PathOf("s.png")), (PictureSize{800, 600}));
}

TEST_F(Program, WithoutAnyPictureAskedItDrawsTheSheetAndSaysWhere)
{
    const ProgramRun run = View("");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("karv-view-sheet.png"));
    EXPECT_TRUE(SizeOfPng(PathOf("karv-view-sheet.png")));
}

TEST_F(Program, StatsAreThoseOfTheFile)
{
    Write("t.obj", kTetrahedronObj);
    const ProgramRun run = View("--stats --headless --picture p.png --size 64x64 t.obj");
    ASSERT_EQ(run.status, 0) << run.err;
    const auto stats = nlohmann::json::parse(run.out);
    EXPECT_EQ(stats.at("files"), 1);
    EXPECT_EQ(stats.at("entities"), 1);
    EXPECT_EQ(stats.at("faces"), 4);
    EXPECT_EQ(stats.at("extents").at("min"), (std::vector<double>{0, 0, 0}));
    EXPECT_EQ(stats.at("extents").at("max"), (std::vector<double>{10, 20, 30}));
    EXPECT_GT(stats.at("load_s"), 0.0);
    EXPECT_GT(stats.at("first_frame_s"), stats.at("load_s"));
    EXPECT_GT(stats.at("fps"), 0.0);
    EXPECT_NE(stats.at("renderer"), "");
    EXPECT_EQ(stats.at("left_out"), nlohmann::json::object());
    EXPECT_EQ(stats.size(), 9U);
    EXPECT_EQ(run.err, "");
}

/// An OBJ file with a triangle and a face that crosses itself too often to be filled.
std::string ObjWithAStar()
{
    constexpr int kCorners = 101;
    constexpr double kStep = 2.0 * 3.14159265358979 * 50.0 / kCorners;
    std::string obj;
    std::string face = "f";
    for (int i = 1; i <= kCorners; ++i) {
        obj +=
            "v " + std::to_string(std::cos(kStep * i)) + ' ' + std::to_string(std::sin(kStep * i)) + " 0\n";
        face += ' ' + std::to_string(i);
    }
    return obj + "f 1 2 3\n" + face + '\n';
}

TEST_F(Program, PartsThatAreLeftOutAreNamedInOneLineInTheListAndInTheStats)
{
    Write("star.obj", ObjWithAStar());
    Write("t.obj", kTetrahedronObj);
    const std::string line = "karv-view: star.obj: left out: 1 face that crosses itself\n";
    const ProgramRun stats = View("--stats --picture p.png --size 64x64 star.obj t.obj star.obj");
    ASSERT_EQ(stats.status, 0) << stats.err;
    EXPECT_EQ(stats.err, line + line);
    EXPECT_EQ(nlohmann::json::parse(stats.out).at("left_out"),
              (nlohmann::json{{"face that crosses itself", 2}}));
    const ProgramRun list = View("--list star.obj");
    EXPECT_EQ(list.err, line);
    EXPECT_THAT(list.out, HasSubstr("\n  left out: 1 face that crosses itself\n"));
}

TEST_F(Program, FileThatShowsNothingSaysWhatItHolds)
{
    std::string obj = ObjWithAStar();
    obj.erase(obj.find("f 1 2 3\n"), 8);
    Write("star.obj", obj);
    const ProgramRun run = View("--list star.obj");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "karv-view: star.obj: holds nothing to show, only 1 face that crosses itself\n");
}

TEST_F(Program, SeveralFilesAreShownTogether)
{
    Write("t.obj", kTetrahedronObj);
    Write("a.stl", BinaryStl(1, BinaryFacet()));
    const ProgramRun run = View("--stats --picture p.png --size 64x64 a.stl t.obj t.obj");
    ASSERT_EQ(run.status, 0) << run.err;
    const auto stats = nlohmann::json::parse(run.out);
    EXPECT_EQ(stats.at("files"), 3);
    EXPECT_EQ(stats.at("entities"), 3);
    EXPECT_EQ(stats.at("faces"), 9);
    EXPECT_EQ(stats.at("extents").at("max"), (std::vector<double>{10, 20, 30}));
}

TEST_F(Program, StatsWithoutAPictureAskedKeepTheOutputToTheObject)
{
    const ProgramRun run = View("--stats");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(nlohmann::json::parse(run.out).at("files"), 0);
    EXPECT_THAT(run.err, HasSubstr("karv-view-sheet.png"));
}

TEST_F(Program, HidingACategoryChangesThePicture)
{
    const std::string common = " --size 64x64 --background 1,2,3";
    ASSERT_EQ(View("--picture all.png" + common).status, 0);
    ASSERT_EQ(View("--picture some.png --hide 1,3" + common).status, 0);
    WritePlainPng("none.png", 0x010203);
    EXPECT_NE(Read("all.png"), Read("some.png"));
    EXPECT_NE(Read("some.png"), Read("none.png"));
    EXPECT_NE(Read("all.png"), Read("none.png"));
}

TEST_F(Program, HidingACategoryThatNoFileHasIsRefused)
{
    // The bundled model has the categories 0 to 5.
    ExpectRefused("--hide 2,6", "karv-view: --hide: there is no category 6, only 0 to 5 (");
    Write("t.obj", kTetrahedronObj);
    ExpectRefused("--hide 2 t.obj t.obj", "karv-view: --hide: there is no category 2, only 0 to 1 (");
    ExpectRefused("--windows --hide 2 t.obj t.obj",
                  "karv-view: --hide: there is no category 2, only 0 to 1 (");
}

TEST_F(Program, HidingEverythingIsRefused)
{
    ExpectRefused("--hide 0,1,2,3,4,5", "karv-view: --hide: nothing stays visible (");
    Write("t.obj", kTetrahedronObj);
    ExpectRefused("--hide 0 t.obj", "karv-view: --hide: nothing stays visible (");
}

TEST_F(Program, NameOfAPictureThatIsNoPngIsRefusedBeforeAFileIsRead)
{
    const std::string rest =
        " does not end in .png: pictures are written as PNG files only (--help lists the "
        "options)\n";
    for (const std::string option : {"--picture", "--sheet"}) {
        const ProgramRun run = View(option + " p.jpg none.obj");
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "karv-view: " + option + ": 'p.jpg'" + rest);
        EXPECT_THAT(Names(), IsEmpty());
    }
}

TEST_F(Program, ColorViewProjectionAndTransparencyChangeThePicture)
{
    const std::string common = "--size 64x64 --picture ";
    ASSERT_EQ(View(common + "plain.png").status, 0);
    for (const std::string option : {"--color 1", "--view top", "--projection parallel",
                                     "--alpha 0.5 --transparent", "--background 255,0,0"}) {
        ASSERT_EQ(View(common + "other.png " + option).status, 0);
        EXPECT_NE(Read("plain.png"), Read("other.png")) << option;
    }
}

TEST_F(Program, AlphaWithoutTransparentGivesAHintAndAPicture)
{
    const ProgramRun run = View("--alpha 0.5 --picture p.png --size 64x64");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("--transparent"));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
    EXPECT_THAT(Names(), ElementsAre("p.png"));
    EXPECT_EQ(View("--alpha 0.5 --transparent --picture p.png --size 64x64").err, "");
}

TEST_F(Program, LineModeShowsTheEdgesOfSolidsAndOfSurfaces)
{
    Write("cube.obj", kCubeObj);
    Write("triangle.obj", kTriangleObj);
    const std::string common = " --size 64x64 --background 1,2,3 --picture ";
    for (const std::string model : {"cube.obj", "triangle.obj"}) {
        const ProgramRun run = View("--mode lines " + model + common + "lines.png");
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
        ASSERT_EQ(View(model + common + "faces.png").status, 0);
        WritePlainPng("none.png", 0x010203);
        EXPECT_NE(Read("lines.png"), Read("none.png")) << model;
        EXPECT_NE(Read("lines.png"), Read("faces.png")) << model;
    }
}

TEST_F(Program, TraceHoldsTheCallsOfTheWholeRun)
{
    const ProgramRun run = View("--trace t.json --picture p.png --size 64x64");
    ASSERT_EQ(run.status, 0) << run.err;
    std::vector<std::string> names;
    const auto trace = nlohmann::json::parse(Read("t.json"));
    for (const auto& event : trace.at("traceEvents"))
        if (event.contains("name"))
            names.push_back(event.at("name"));
    for (const char* name : {"KARVOpenGLControl::KARVOpenGLControl", "KARVOpenGLControl::CreateCtrl",
                             "KARVOpenGLControl::AppendGeometry", "KARVOpenGLControl::CameraViewSE",
                             "KARVOpenGLControl::GLDrawFrame", "KARVOpenGLControl::~KARVOpenGLControl"})
        EXPECT_THAT(names, Contains(name));
}

TEST_F(Program, TraceThatCannotBeWrittenIsAnError)
{
    ExpectRefused("--trace none/t.json", "karv-view: cannot write none/t.json: ");
}

TEST_F(Program, FiguresThatCannotBePrintedAreAnError)
{
    const ProgramRun run = View("--stats --picture p.png --size 64x64 >/dev/full");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "karv-view: the standard output cannot be written\n");
}

TEST_F(Program, ClosedStreamsBecomeNoFilesOfTheProgram)
{
    Write("t.obj", kTetrahedronObj);
    for (const std::string closed : {"<&-", ">&-", "2>&-", "<&- >&- 2>&-"}) {
        // Without --transparent, the opacity gives a hint on the standard error.
        EXPECT_EQ(View("--alpha 0.5 --trace t.json --picture p.png --size 64x64 t.obj " + closed).status, 0)
            << closed;
        EXPECT_TRUE(nlohmann::json::accept(Read("t.json"))) << closed;
        EXPECT_EQ(SizeOfPng(PathOf("p.png")), (PictureSize{64, 64})) << closed;
    }
}

TEST_F(Program, ListToAClosedStreamIsAnError)
{
    Write("t.obj", kTetrahedronObj);
    const ProgramRun run = View("--list --trace t.json t.obj >&-");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "karv-view: the standard output cannot be written\n");
}

TEST_F(Program, MissingFileIsRefused)
{
    ExpectRefused("none.obj", "karv-view: none.obj: no such file");
}

TEST_F(Program, BadFilesAmongGoodOnesCostTheirLinesAndTheStatusOnly)
{
    Write("t.obj", kTetrahedronObj);
    Write("e.stl", "");
    ASSERT_EQ(View("--size 64x64 --picture good.png t.obj").status, 0);
    const std::string lines = "karv-view: none.obj: no such file\nkarv-view: e.stl: is empty\n";
    for (const std::string files : {"none.obj t.obj e.stl", "none.obj e.stl t.obj"}) {
        const ProgramRun run = View("--size 64x64 --picture p.png --stats " + files);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, lines);
        EXPECT_EQ(Read("p.png"), Read("good.png"));
        const auto stats = nlohmann::json::parse(run.out);
        EXPECT_EQ(stats.at("files"), 1);
        EXPECT_EQ(stats.at("faces"), 4);
    }
    ASSERT_EQ(View("--sheet good.png t.obj").status, 0);
    const ProgramRun sheet = View("--sheet s.png none.obj t.obj e.stl");
    EXPECT_EQ(sheet.status, 1);
    EXPECT_EQ(sheet.err, lines);
    EXPECT_EQ(Read("s.png"), Read("good.png"));
}

TEST_F(Program, OnlyBadFilesAreRefusedWithALineEach)
{
    Write("e.stl", "");
    const ProgramRun run = View("--picture p.png --sheet s.png --stats none.obj e.stl");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "karv-view: none.obj: no such file\nkarv-view: e.stl: is empty\n");
    EXPECT_THAT(Names(), ElementsAre("e.stl"));
}

TEST_F(Program, EmptyFileIsRefused)
{
    Write("e.stl", "");
    ExpectRefused("e.stl", "karv-view: e.stl: is empty");
}

TEST_F(Program, TruncatedFileIsRefused)
{
    Write("t.stl", BinaryStl(3, BinaryFacet()));
    ExpectRefused("t.stl", "karv-view: t.stl: truncated");
}

TEST_F(Program, UnknownKindIsRefused)
{
    Write("notes.txt", "Buy milk.\n");
    ExpectRefused("notes.txt", "karv-view: notes.txt: unknown kind of file");
}

TEST_F(Program, FileWithoutFacesIsRefused)
{
    Write("nothing.obj", "# nothing\n");
    ExpectRefused("nothing.obj", "karv-view: nothing.obj: holds no faces, lines or points");
}

TEST_F(Program, FolderIsRefused)
{
    ExpectRefused(".", "karv-view: .: is a directory");
}

TEST_F(Program, RefusedFileLeavesAnOlderPictureAsItWas)
{
    Write("p.png", "old");
    EXPECT_EQ(View("--picture p.png none.obj").status, 1);
    EXPECT_EQ(Read("p.png"), "old");
}

TEST_F(Program, PictureThatCannotBeWrittenIsAnErrorWithItsName)
{
    const ProgramRun run = View("--picture none/p.png --size 64x64");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, StartsWith("karv-view: none/p.png: "));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(Program, BadOptionGivesOneLineAndAStatus)
{
    const ProgramRun run = View("--view above --picture p.png");
    EXPECT_NE(run.status, 0);
    EXPECT_THAT(run.err, StartsWith("karv-view: "));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(Program, HelpSucceeds)
{
    const ProgramRun run = View("--help");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("--picture FILE.png"));
    EXPECT_EQ(run.err, "");
}

} // namespace
} // namespace viewer
