// The whole program in real windows: on an X server of the test's own, under a window manager, with the
// pointer and the keyboard driven by another client.
#include "tests/support/child_process.h"
#include "tests/support/x_client.h"
#include "tests/support/x_server.h"
#include "tests/viewer/test_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

namespace viewer
{
namespace
{

using karv_test::ChildProcess;
using karv_test::SharedXServer;
using karv_test::XClient;
using karv_test::XServer;
using testing::HasSubstr;

class WindowOnDisplay : public ViewerTest
{
  protected:
    /// Runs the program in the folder, on the display; its streams go to the files out and err there.
    void StartProgram(const std::string& program, const std::string& arguments, const std::string& display)
    {
        const std::string folder = PathOf("");
        program_.emplace(std::vector<std::string>{"sh", "-c",
                                                  "cd '" + folder + "' && { DISPLAY=" + display + " '" +
                                                      program + "' " + arguments +
                                                      " >out 2>err; echo $? >/dev/fd/$0; }",
                                                  "%fd"});
    }
    void Start(const std::string& arguments, const std::string& display = SharedXServer().Display())
    {
        StartProgram(KARV_VIEW, arguments, display);
    }
    /// Waits for the end of the program and returns its exit status.
    std::string Status() { return program_->ReadLine(); }

    static bool Eventually(const std::function<bool()>& condition)
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition() && std::chrono::steady_clock::now() < limit) {
        }
        return condition();
    }
    /// Waits until the window with this title is on the screen.
    XClient::Id WindowOf(const std::string& title)
    {
        XClient::Id id = 0;
        EXPECT_TRUE(Eventually([&] {
            const std::vector<XClient::Id> found = client_.FindByName(title);
            id = found.size() == 1 ? found.front() : 0;
            return id != 0 && client_.IsSeen(id) && client_.ParentOf(id) != client_.Root();
        })) << title;
        return id;
    }
    /// The colour in the middle of the window.
    unsigned Middle(XClient::Id id)
    {
        const auto [x, y] = client_.PositionOnScreen(id);
        const auto [width, height] = client_.SizeOf(id);
        return client_.ScreenPixel(x + width / 2, y + height / 2);
    }
    /// The colour in the upper left corner of the window.
    unsigned Corner(XClient::Id id)
    {
        const auto [x, y] = client_.PositionOnScreen(id);
        return client_.ScreenPixel(x + 1, y + 1);
    }
    void Press(const char* key)
    {
        client_.PressKey(key);
        client_.ReleaseKey(key);
    }
    bool HasFocus(XClient::Id id)
    {
        return Eventually([&] { return client_.Focused() == id; });
    }

    XClient client_{SharedXServer().Display()};
    ChildProcess window_manager_{{"env", "DISPLAY=" + SharedXServer().Display(), "openbox", "--sm-disable"}};
    std::optional<ChildProcess> program_;
};

TEST_F(WindowOnDisplay, ModelIsShownTurnedSavedAndLeft)
{
    Write("box.obj", kCubeObj);
    Start("box.obj --size 400x300 --background 0,0,0 --stats");
    const XClient::Id id = WindowOf("box.obj - karv-view");
    EXPECT_EQ(client_.SizeOf(id), std::pair(400, 300));
    const auto [left, top] = client_.PositionOnScreen(id);
    EXPECT_GT(top, 5) << "the title bar is on the screen";
    EXPECT_GE(left, 0);
    ASSERT_TRUE(Eventually([&] { return Middle(id) != 0 && Corner(id) == 0; }));
    ASSERT_TRUE(HasFocus(id));

    Press("b");
    EXPECT_TRUE(Eventually([&] { return Corner(id) == 0xFFFFFFU; }));
    const std::vector<unsigned> before = client_.Screen(left, top, 400, 300);
    client_.MovePointer(left + 200, top + 150);
    client_.Press(1);
    client_.MovePointer(left + 260, top + 160);
    client_.Release(1);
    EXPECT_TRUE(Eventually([&] { return client_.Screen(left, top, 400, 300) != before; }));
    Press("s");
    EXPECT_TRUE(Eventually([&] { return SizeOfPng(PathOf("karv-view-1.png")).has_value(); }));
    client_.MoveResize(id, left, top, 200, 160);
    EXPECT_TRUE(
        Eventually([&] { return client_.SizeOf(id) == std::pair(200, 160) && Corner(id) == 0xFFFFFFU; }));
    Press("q");
    EXPECT_EQ(Status(), "0");
    EXPECT_FALSE(client_.Exists(id));

    const auto stats = nlohmann::json::parse(Read("out"));
    EXPECT_EQ(stats.at("faces"), 6);
    EXPECT_GT(stats.at("first_frame_s"), stats.at("load_s"));
    EXPECT_GT(stats.at("fps"), 0.0);
    EXPECT_NE(stats.at("renderer"), "");
    EXPECT_EQ(Read("err"), "karv-view: the key ? prints the keys\n"
                           "karv-view: the picture is in karv-view-1.png\n");
}

TEST_F(WindowOnDisplay, WindowNamesItsProgramAndHasAnIcon)
{
    Start("--size 200x150");
    const XClient::Id id = WindowOf("pillow block - karv-view");
    EXPECT_EQ(client_.ClassOf(id), std::pair(std::string("karv-view"), std::string("Karv-view")));
    const std::vector<unsigned long> icon = client_.NumbersOf(id, "_NET_WM_ICON");
    ASSERT_EQ(icon.size(), 2U + 64U * 64U);
    EXPECT_EQ(icon.at(0), 64U);
    EXPECT_EQ(icon.at(1), 64U);
    EXPECT_EQ(icon.at(2) >> 24U, 0U) << "the corner is transparent";
    EXPECT_EQ(icon.at(2 + 64 * 16 + 32) >> 24U, 0xFFU) << "the top of the cube is not";
    client_.AskToClose(id);
    EXPECT_EQ(Status(), "0");
}

TEST_F(WindowOnDisplay, CloseButtonEndsTheProgram)
{
    Start("");
    const XClient::Id id = WindowOf("pillow block - karv-view");
    client_.AskToClose(id);
    EXPECT_EQ(Status(), "0");
    EXPECT_EQ(Read("err"), "");
}

TEST_F(WindowOnDisplay, TwoModelsHaveTwoWindowsAndTheLastOneClosedEndsTheProgram)
{
    Write("red.obj", std::string("mtllib c.mtl\nusemtl red\n") + kCubeObj);
    Write("green.obj", std::string("mtllib c.mtl\nusemtl green\n") + kCubeObj);
    Write("c.mtl", "newmtl red\nKd 1 0 0\nnewmtl green\nKd 0 1 0\n");
    Start("red.obj green.obj --windows --size 200x150 --background 0,0,0");
    const XClient::Id red = WindowOf("red.obj - karv-view");
    const XClient::Id green = WindowOf("green.obj - karv-view");
    client_.MoveResize(red, 100, 100, 200, 150);
    client_.MoveResize(green, 400, 100, 200, 150);
    const auto is_red = [&] { return Middle(red) > 0x100000U && (Middle(red) & 0x00FF00U) < 0x8000U; };
    const auto is_green = [&] { return Middle(green) < 0x800000U && (Middle(green) & 0x00FF00U) > 0x1000U; };
    EXPECT_TRUE(Eventually([&] { return is_red() && is_green() && Corner(red) == 0 && Corner(green) == 0; }));
    client_.Focus(green);
    ASSERT_TRUE(HasFocus(green));
    Press("b");
    EXPECT_TRUE(Eventually([&] { return Corner(green) == 0xFFFFFFU; }));
    EXPECT_EQ(Corner(red), 0U);
    client_.AskToClose(red);
    EXPECT_TRUE(Eventually([&] { return !client_.Exists(red); }));
    EXPECT_TRUE(is_green());
    client_.Focus(green);
    ASSERT_TRUE(HasFocus(green));
    Press("b");
    EXPECT_TRUE(Eventually([&] { return Corner(green) == 0x5A5A5AU; })) << "it goes on alone";
    client_.AskToClose(green);
    EXPECT_EQ(Status(), "0");
}

/// The program with a reader that waits before a file F while a file F.hold exists. It writes the id of its
/// process to F.reader and that of the program to F.program.
class WindowWhileLoading : public WindowOnDisplay
{
  protected:
    WindowWhileLoading()
    {
        namespace fs = std::filesystem;
        const fs::path program = KARV_VIEW;
        fs::create_directory(PathOf("bin"));
        fs::copy_file(program, PathOf("bin/karv-view"));
        // The program finds its libraries beside itself.
        for (const auto& file : fs::directory_iterator(program.parent_path()))
            if (file.path().extension() == ".so")
                fs::create_symlink(file.path(), PathOf("bin") / file.path().filename());
        Write("bin/karv-reader", "#!/bin/sh\n"
                                 "for file; do :; done\n"
                                 "echo $$ >\"$file.reader\"\n"
                                 "echo $PPID >\"$file.program\"\n"
                                 "while [ -e \"$file.hold\" ]; do sleep 0.02; done\n"
                                 "exec '" +
                                     (program.parent_path() / "karv-reader").string() + "' \"$@\"\n");
        fs::permissions(PathOf("bin/karv-reader"), fs::perms::owner_all);
        Write("a.obj", BoxObj(0));
        Write("b.obj", BoxObj(9));
        Write("c.obj", BoxObj(18));
    }

    /// A closed cube from (x, 0, 0) to (x + 1, 1, 1).
    static std::string BoxObj(int x)
    {
        const std::string x0 = "v " + std::to_string(x);
        const std::string x1 = "v " + std::to_string(x + 1);
        return x0 + " 0 0\n" + x1 + " 0 0\n" + x1 + " 1 0\n" + x0 + " 1 0\n" + x0 + " 0 1\n" + x1 + " 0 1\n" +
               x1 + " 1 1\n" + x0 +
               " 1 1\nf 1 4 3 2\nf 5 6 7 8\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n";
    }
    void Hold(const std::string& name) const { Write(name + ".hold", ""); }
    void Release(const std::string& name) const { std::filesystem::remove(PathOf(name + ".hold")); }
    void StartHeld(const std::string& arguments)
    {
        StartProgram(PathOf("bin/karv-view"), "--size 300x200 --background 0,0,0 " + arguments,
                     SharedXServer().Display());
    }
    /// Whether the process whose id is in the file runs.
    bool Runs(const std::string& file) const
    {
        const std::string id = Read(file);
        return !id.empty() && kill(static_cast<pid_t>(std::stol(id)), 0) == 0;
    }
};

TEST_F(WindowWhileLoading, WindowIsThereAtOnceAndClosingItEndsTheReader)
{
    Hold("a.obj");
    StartHeld("a.obj b.obj");
    const XClient::Id id = WindowOf("loading a.obj (1 of 2): 0 % - karv-view");
    EXPECT_TRUE(Eventually([&] { return Runs("a.obj.reader"); }));
    EXPECT_TRUE(Eventually([&] { return Middle(id) == 0; }));
    client_.AskToClose(id);
    EXPECT_EQ(Status(), "0");
    EXPECT_EQ(Read("err"), "");
    EXPECT_FALSE(Runs("a.obj.reader"));
    EXPECT_FALSE(std::filesystem::exists(PathOf("b.obj.reader"))) << "no further file is read";
}

TEST_F(WindowWhileLoading, FilesAppearAsTheyAreFinished)
{
    Hold("b.obj");
    StartHeld("--view front --stats a.obj b.obj");
    const XClient::Id id = WindowOf("loading b.obj (2 of 2): 0 % - a.obj - karv-view");
    EXPECT_TRUE(Eventually([&] { return Middle(id) != 0; })) << "the first one fills the middle";
    Release("b.obj");
    EXPECT_EQ(WindowOf("a.obj, b.obj - karv-view"), id);
    EXPECT_TRUE(Eventually([&] { return Middle(id) == 0; })) << "the middle is between the two";
    client_.AskToClose(id);
    EXPECT_EQ(Status(), "0");
    const auto stats = nlohmann::json::parse(Read("out"));
    EXPECT_EQ(stats.at("files"), 2);
    EXPECT_EQ(stats.at("faces"), 12);
    EXPECT_EQ(stats.at("extents").at("max"), (std::vector<double>{10, 1, 1}));
    EXPECT_GT(stats.at("load_s"), stats.at("first_frame_s"))
        << "the first frame with a file came before the rest";
    EXPECT_GT(stats.at("fps"), 0.0);
}

TEST_F(WindowWhileLoading, WindowIsFedAgainAtMostOnceASecond)
{
    Write("d.obj", BoxObj(27));
    StartHeld("--trace t.json a.obj b.obj c.obj d.obj");
    const XClient::Id id = WindowOf("a.obj, b.obj, c.obj, d.obj - karv-view");
    client_.AskToClose(id);
    EXPECT_EQ(Status(), "0");
    std::vector<double> feeds;
    const auto trace = nlohmann::json::parse(Read("t.json"));
    for (const auto& event : trace.at("traceEvents"))
        if (event.value("name", "") == "KARVOpenGLControl::ClearGeometry" && event.value("ph", "") != "E")
            feeds.push_back(event.at("ts").get<double>() * 1e-6);
    ASSERT_GE(feeds.size(), 2U);
    // The first file appears at once, and the second one may.
    for (std::size_t i = 2; i < feeds.size(); ++i)
        EXPECT_GE(feeds[i] - feeds[i - 1], 1.0);
}

TEST_F(WindowWhileLoading, CameraThatTheUserMovedStaysWhenAnotherFileAppears)
{
    Write("b.obj", "v 0.4 0.4 0.4\nv 0.6 0.4 0.4\nv 0.4 0.6 0.4\nf 1 2 3\n");
    Hold("b.obj");
    StartHeld("a.obj b.obj");
    const XClient::Id id = WindowOf("loading b.obj (2 of 2): 0 % - a.obj - karv-view");
    const auto [left, top] = client_.PositionOnScreen(id);
    const auto screen = [&, x = left, y = top] { return client_.Screen(x, y, 300, 200); };
    ASSERT_TRUE(Eventually([&] { return Middle(id) != 0; }));
    const std::vector<unsigned> fitted = screen();
    client_.MovePointer(left + 150, top + 100);
    client_.Press(1);
    client_.MovePointer(left + 190, top + 110);
    client_.Release(1);
    ASSERT_TRUE(Eventually([&] { return screen() != fitted; }));
    std::vector<unsigned> moved = screen();
    // Motion is applied frame by frame: two equal looks in a row are the last of it.
    ASSERT_TRUE(Eventually([&] {
        const std::vector<unsigned> before = std::exchange(moved, screen());
        return before == moved;
    }));
    Release("b.obj");
    EXPECT_EQ(WindowOf("a.obj, b.obj - karv-view"), id);
    EXPECT_EQ(screen(), moved) << "the second file lies within the first";
    client_.AskToClose(id);
    EXPECT_EQ(Status(), "0");
}

TEST_F(WindowWhileLoading, BadFilesCostTheirLinesAtOnceAndTheStatus)
{
    Hold("a.obj");
    StartHeld("none.obj a.obj");
    const XClient::Id id = WindowOf("loading a.obj (2 of 2): 0 % - karv-view");
    EXPECT_TRUE(Eventually([&] { return Read("err") == "karv-view: none.obj: no such file\n"; }));
    Release("a.obj");
    EXPECT_EQ(WindowOf("a.obj - karv-view"), id);
    EXPECT_TRUE(Eventually([&] { return Middle(id) != 0; }));
    client_.AskToClose(id);
    EXPECT_EQ(Status(), "1");
    EXPECT_EQ(Read("err"), "karv-view: none.obj: no such file\n");
}

TEST_F(WindowWhileLoading, WindowOfABadFileIsClosedAndTheOthersStay)
{
    Hold("b.obj");
    StartHeld("--windows a.obj none.obj b.obj");
    const XClient::Id first = WindowOf("a.obj - karv-view");
    const XClient::Id last = WindowOf("loading b.obj: 0 % - karv-view");
    EXPECT_TRUE(Eventually([&] { return Middle(first) != 0; }));
    EXPECT_TRUE(client_.FindByName("none.obj waits to be loaded - karv-view").empty());
    Release("b.obj");
    EXPECT_EQ(WindowOf("b.obj - karv-view"), last);
    client_.AskToClose(first);
    client_.AskToClose(last);
    EXPECT_EQ(Status(), "1");
    EXPECT_EQ(Read("err"), "karv-view: none.obj: no such file\n");
}

TEST_F(WindowWhileLoading, OnlyBadFilesEndTheProgramWithALineEach)
{
    Write("e.stl", "");
    for (const std::string option : {"", "--windows "}) {
        StartHeld(option + "none.obj e.stl");
        EXPECT_EQ(Status(), "1");
        EXPECT_EQ(Read("err"), "karv-view: none.obj: no such file\nkarv-view: e.stl: is empty\n");
    }
}

TEST_F(WindowWhileLoading, HidingAnUnknownCategoryEndsTheProgramWithALine)
{
    StartHeld("--hide 1 a.obj");
    EXPECT_EQ(Status(), "1");
    EXPECT_EQ(Read("err"), "karv-view: --hide: there is no category 1, only 0 to 0 (--list prints them)\n");
}

TEST_F(WindowWhileLoading, RequestToEndCancelsTheReadingWithALine)
{
    Hold("a.obj");
    StartHeld("a.obj b.obj");
    WindowOf("loading a.obj (1 of 2): 0 % - karv-view");
    ASSERT_TRUE(Eventually([&] { return Runs("a.obj.program"); }));
    kill(static_cast<pid_t>(std::stol(Read("a.obj.program"))), SIGTERM);
    EXPECT_EQ(Status(), "1");
    EXPECT_EQ(Read("err"), "karv-view: a.obj: reading was cancelled\n");
    EXPECT_FALSE(Runs("a.obj.reader"));
    EXPECT_FALSE(std::filesystem::exists(PathOf("b.obj.reader")));
}

TEST_F(WindowOnDisplay, HeadlessKeepsOffTheDisplay)
{
    Start("--headless");
    EXPECT_EQ(Status(), "0");
    EXPECT_EQ(Read("out"), "karv-view: the pictures are in karv-view-sheet.png\n");
}

TEST_F(WindowOnDisplay, DisplayThatDoesNotAnswerGivesALineASheetAndAStatus)
{
    Start("", ":12345");
    EXPECT_EQ(Status(), "1");
    EXPECT_EQ(Read("err"),
              "karv-view: no X server answers on display ':12345', so the views are drawn on a sheet\n");
    EXPECT_EQ(Read("out"), "karv-view: the pictures are in karv-view-sheet.png\n");
    EXPECT_TRUE(SizeOfPng(PathOf("karv-view-sheet.png")));
}

TEST_F(WindowOnDisplay, DisplayThatDoesNotAnswerReplacesNoFileBySheet)
{
    Write("karv-view-sheet.png", "mine");
    Start("", ":12345");
    EXPECT_EQ(Status(), "1");
    EXPECT_EQ(Read("err"), "karv-view: no X server answers on display ':12345', and karv-view-sheet.png, "
                           "which exists, is replaced only where --sheet names it\n");
    EXPECT_EQ(Read("out"), "");
    EXPECT_EQ(Read("karv-view-sheet.png"), "mine");
    Start("--sheet karv-view-sheet.png", ":12345");
    EXPECT_EQ(Status(), "0");
    EXPECT_EQ(Read("err"), "");
    EXPECT_TRUE(SizeOfPng(PathOf("karv-view-sheet.png")));
}

TEST_F(WindowOnDisplay, LostDisplayEndsTheProgramWithOneLine)
{
    XServer server;
    Start("--size 200x150 --background 0,0,0", server.Display());
    {
        XClient client(server.Display());
        const auto is_drawn = [&] {
            const std::vector<XClient::Id> found = client.FindByName("pillow block - karv-view");
            return found.size() == 1 && client.IsSeen(found.front()) && client.ScreenPixel(100, 75) != 0;
        };
        ASSERT_TRUE(Eventually(is_drawn));
    }
    server.Kill();
    EXPECT_EQ(Status(), "1");
    EXPECT_THAT(Read("err"), HasSubstr("karv-view: no frame can be drawn\n"));
}

} // namespace
} // namespace viewer
