// How the program reads files: its lists, interruptions, and the end of the process that parses.
#include "tests/support/child_process.h"
#include "tests/viewer/import/brep/brep_fixture.h"
#include "tests/viewer/import/dxf/dxf_fixture.h"
#include "tests/viewer/test_support.h"

#include <BRepPrimAPI_MakeBox.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace viewer
{
namespace
{

using karv_test::ChildProcess;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class ProgramReading : public ViewerTest
{
};

TEST_F(ProgramReading, ListIsTheTreeOfTheFilesAndNothingIsDrawn)
{
    Write("cube.obj", kCubeObj);
    Write("l.dxf", Drawing("0 LINE 8 wires 62 1 10 0 20 0 30 0 11 1 21 2 31 3"));
    const ProgramRun run = View("--list cube.obj l.dxf");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("cube.obj: 1 piece, 6 faces, 12 edges, 0 lines, 1 solid\n"));
    EXPECT_THAT(run.out, HasSubstr("l.dxf: 1 piece, 0 faces, 0 edges, 1 line, 0 solids\n"));
    EXPECT_THAT(run.out, HasSubstr("  category 1 wires: 1 piece\n")) << "numbers go on from file to file";
    EXPECT_THAT(run.out, HasSubstr("wires: category 1, colour 1 (255,0,0), "));
    EXPECT_THAT(Names(), ElementsAre("cube.obj", "l.dxf"));
}

TEST_F(ProgramReading, ListOfABadFileAmongGoodOnesIsThatOfTheGoodOnes)
{
    Write("cube.obj", kCubeObj);
    const ProgramRun good = View("--list cube.obj cube.obj");
    ASSERT_EQ(good.status, 0);
    const ProgramRun run = View("--list cube.obj none.step cube.obj");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, good.out);
    EXPECT_EQ(run.err, "karv-view: none.step: no such file\n");
}

TEST_F(ProgramReading, ListThatCannotBePrintedIsAnError)
{
    const ProgramRun run = View("--list >/dev/full");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "karv-view: the standard output cannot be written\n");
}

TEST_F(ProgramReading, NumbersOfTheListHideWhatTheyName)
{
    Write("cube.obj", kCubeObj);
    Write("l.dxf", Drawing("0 LINE 8 wires 62 1 10 -5 20 0 30 0 11 -5 21 2 31 3"));
    const std::string common = " --size 64x64 --background 0,0,0 cube.obj l.dxf --picture ";
    WritePlainPng("none.png", 0);
    ASSERT_EQ(View("--hide 0" + common + "line.png").status, 0);
    ASSERT_EQ(View("--hide 1" + common + "cube.png").status, 0);
    EXPECT_NE(Read("none.png"), Read("line.png"));
    EXPECT_NE(Read("none.png"), Read("cube.png"));
    EXPECT_NE(Read("line.png"), Read("cube.png"));
}

TEST_F(ProgramReading, DeflectionSaysHowFinelyCurvesAreCut)
{
    // A chord over the angle a is r (1 - cos(a/2)) away from its arc. For a radius of 100, a deflection of
    // 0.5 allows 11.5 degrees (32 segments), and 0.005 allows 1.146 degrees (315 segments).
    Write("c.dxf", Drawing("0 CIRCLE 8 0 10 0 20 0 30 0 40 100"));
    EXPECT_THAT(View("--list --deflection 0.5 c.dxf").out, HasSubstr(" 32 lines"));
    EXPECT_THAT(View("--list --deflection 0.005 c.dxf").out, HasSubstr(" 315 lines"));
}

TEST_F(ProgramReading, BadDeflectionGivesOneLineAndAStatus)
{
    const ProgramRun run = View("--deflection -1 --picture p.png");
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, StartsWith("karv-view: --deflection: '-1' is not a number above 0"));
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(ProgramReading, DrawingAThousandKilometersAwayLooksAsItDoesAtTheOrigin)
{
    // 2^30 mm, and coordinates in multiples of 1/4, which are exact.
    const auto drawing = [](double away) {
        const auto at = [&](double value) { return std::to_string(away + value); };
        return Drawing("0 LINE 8 0 62 1 10 " + at(0) + " 20 " + at(0.25) + " 30 0 11 " + at(1.75) + " 21 " +
                       at(2) + " 31 0 0 3DFACE 8 1 62 3 10 " + at(0) + " 20 " + at(0) + " 30 0 11 " + at(1) +
                       " 21 " + at(0) + " 31 0 12 " + at(1) + " 22 " + at(0.5) + " 32 0 13 " + at(0) +
                       " 23 " + at(0.5) + " 33 0");
    };
    Write("near.dxf", drawing(0));
    Write("far.dxf", drawing(1073741824.0));
    for (const std::string mode : {"faces", "lines"}) {
        const std::string common =
            " --size 96x96 --background 0,0,0 --view top --mode " + mode + " --picture ";
        ASSERT_EQ(View("near.dxf" + common + "near.png").status, 0);
        ASSERT_EQ(View("far.dxf" + common + "far.png").status, 0);
        WritePlainPng("none.png", 0, 96);
        EXPECT_EQ(Read("near.png"), Read("far.png")) << mode;
        EXPECT_NE(Read("near.png"), Read("none.png")) << mode;
    }
}

TEST_F(ProgramReading, DrawingsOfDifferentUnitsAreShownTogetherInThatOfTheFirst)
{
    const auto drawing = [](const std::string& unit, const std::string& length) {
        return Lines("0 SECTION 2 HEADER 9 $ACADVER 1 AC1015 9 $INSUNITS 70 " + unit + " 0 ENDSEC") +
               Drawing("0 LINE 8 0 10 0 20 0 30 0 11 " + length + " 21 0 31 0");
    };
    Write("inches.dxf", drawing("1", "10"));
    Write("millimeters.dxf", drawing("4", "127"));
    Write("unitless.dxf", drawing("0", "7"));
    const auto longest = [&](const std::string& files) {
        const ProgramRun run = View("--stats --picture p.png --size 32x32 " + files);
        EXPECT_EQ(run.status, 0) << run.err;
        return nlohmann::json::parse(run.out).at("extents").at("max").at(0).get<double>();
    };
    // 10 inches are 254 mm, 127 mm are 5 inches.
    EXPECT_NEAR(longest("millimeters.dxf inches.dxf"), 254.0, 1e-9);
    EXPECT_NEAR(longest("inches.dxf millimeters.dxf"), 10.0, 1e-9);
    EXPECT_NEAR(longest("unitless.dxf inches.dxf"), 10.0, 1e-9);
    EXPECT_THAT(View("--list inches.dxf").out, HasSubstr("  unit: 0.0254 m\n"));
    EXPECT_EQ(View("--list unitless.dxf").out.find("unit:"), std::string::npos);
}

/// Tests with files that the B-rep library writes.
class ProgramReadingUnits : public BrepTest
{
};

TEST_F(ProgramReadingUnits, FilesAreShownTogetherInTheUnitOfTheFirst)
{
    // The STEP file is 400 mm long, the glTF file 1 m.
    static_cast<void>(WriteStep(BRepPrimAPI_MakeBox(400.0, 300.0, 200.0).Shape(), "box.step"));
    Write("t.gltf", Gltf("", R"([{"mesh":0}])"));
    const auto highest = [&](const std::string& files) {
        const ProgramRun run = View("--stats --picture p.png --size 32x32 " + files);
        EXPECT_EQ(run.status, 0) << run.err;
        return nlohmann::json::parse(run.out).at("extents").at("max").get<std::vector<double>>();
    };
    const std::vector<double> millimeters = highest("box.step t.gltf");
    EXPECT_NEAR(millimeters.at(0), 1000.0, 1e-6);
    EXPECT_NEAR(millimeters.at(1), 300.0, 1e-6);
    const std::vector<double> meters = highest("t.gltf box.step");
    EXPECT_NEAR(meters.at(0), 1.0, 1e-9);
    EXPECT_NEAR(meters.at(1), 0.3, 1e-9);
}

/// The state of a process in /proc, while it runs.
struct ProcessState {
    pid_t parent = 0;
    char state = 'X';
};

ProcessState StateOf(pid_t id)
{
    std::ifstream file("/proc/" + std::to_string(id) + "/stat");
    std::string line;
    std::getline(file, line);
    ProcessState state;
    const std::size_t name_end = line.rfind(')');
    if (name_end != std::string::npos)
        std::istringstream(line.substr(name_end + 1)) >> state.state >> state.parent;
    return state;
}

bool HasEnded(pid_t id)
{
    const char state = StateOf(id).state;
    return state == 'X' || state == 'Z';
}

bool Eventually(const std::function<bool()>& condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition() && std::chrono::steady_clock::now() < limit) {
    }
    return condition();
}

/// The child of a process, or 0.
pid_t ChildOf(pid_t parent)
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const auto id = static_cast<pid_t>(std::stol(name));
        if (StateOf(id).parent == parent && !HasEnded(id))
            return id;
    }
    return 0;
}

/// The program while it reads a file; the process that parses is stopped meanwhile.
class ProgramInterrupted : public ProgramReading
{
  protected:
    ProgramInterrupted()
    {
        std::string grid;
        constexpr int kTriangles = 200'000;
        for (int i = 0; i < kTriangles; ++i)
            grid += "v " + std::to_string(i) + " 0 0\nv " + std::to_string(i) + " 1 0\nv " +
                    std::to_string(i) + " 0 1\nf -3 -2 -1\n";
        Write("large.obj", grid);
        shell_.emplace(std::vector<std::string>{"sh", "-c",
                                                "cd '" + PathOf("") +
                                                    "' && { env --ignore-signal=CHLD '" KARV_VIEW
                                                    "' --list large.obj none.obj "
                                                    ">out 2>err; echo $? >/dev/fd/$0; }",
                                                "%fd"});
        EXPECT_TRUE(Eventually([&] { return (viewer_ = ChildOf(shell_->id_)) != 0; }));
        EXPECT_TRUE(Eventually([&] { return (reader_ = ChildOf(viewer_)) != 0; }));
        // The reader asks to be ended with its parent before it redirects its standard error.
        const std::string errors = "/proc/" + std::to_string(reader_) + "/fd/2";
        EXPECT_TRUE(Eventually([&] {
            std::error_code error;
            return std::filesystem::read_symlink(errors, error) == "/dev/null";
        }));
        kill(reader_, SIGSTOP);
        EXPECT_TRUE(Eventually([&] { return StateOf(reader_).state == 'T'; })) << "it was still at work";
    }
    ~ProgramInterrupted() override
    {
        if (reader_ != 0 && !HasEnded(reader_))
            kill(reader_, SIGKILL);
    }

    std::optional<ChildProcess> shell_;
    pid_t viewer_ = 0;
    pid_t reader_ = 0;
};

TEST_F(ProgramInterrupted, RequestToEndCancelsTheReadingWithALine)
{
    EXPECT_EQ(getpgid(reader_), reader_) << "Ctrl-C reaches the viewer alone, which decides";
    kill(viewer_, SIGTERM);
    EXPECT_EQ(shell_->ReadLine(), "1");
    EXPECT_THAT(Read("err"), StartsWith("karv-view: large.obj: reading was cancelled"));
    EXPECT_THAT(Read("err"), EndsWith("\n"));
    EXPECT_THAT(Read("err"), Not(HasSubstr("none.obj"))) << "no further file is read";
    EXPECT_EQ(Read("out"), "");
    EXPECT_TRUE(HasEnded(reader_));
}

TEST_F(ProgramInterrupted, ReaderEndsWithTheViewerHoweverThatEnds)
{
    // Orphans become children of this process, which can then read the signal that ended them. A stopped
    // process without a parent would end sooner or later, but by another signal.
    ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    kill(viewer_, SIGKILL);
    ASSERT_TRUE(Eventually([&] { return StateOf(reader_).parent == getpid(); }));
    int status = 0;
    bool is_over = false;
    EXPECT_TRUE(Eventually([&] {
        is_over = is_over || waitpid(reader_, &status, WNOHANG) == reader_;
        return is_over;
    }));
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    prctl(PR_SET_CHILD_SUBREAPER, 0);
}

TEST_F(ProgramInterrupted, ReaderThatIsKilledIsAReason)
{
    kill(reader_, SIGKILL);
    EXPECT_EQ(shell_->ReadLine(), "1");
    EXPECT_THAT(Read("err"), StartsWith("karv-view: large.obj: the reader crashed (Killed)"));
    EXPECT_EQ(Read("out"), "");
}

} // namespace
} // namespace viewer
