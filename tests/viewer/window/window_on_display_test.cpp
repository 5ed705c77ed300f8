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
#include <functional>
#include <optional>

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
    /// The command that runs the program in the folder, on the display; its streams go to the files out and
    /// err there.
    static std::vector<std::string> Command(const std::string& display, const std::string& folder,
                                            const std::string& arguments)
    {
        return {"sh", "-c",
                "cd '" + folder + "' && { DISPLAY=" + display + " '" KARV_VIEW "' " + arguments +
                    " >out 2>err; echo $? >/dev/fd/$0; }",
                "%fd"};
    }
    void Start(const std::string& arguments, const std::string& display = SharedXServer().Display())
    {
        program_.emplace(Command(display, PathOf(""), arguments));
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

TEST_F(WindowOnDisplay, HeadlessKeepsOffTheDisplay)
{
    Start("--headless");
    EXPECT_EQ(Status(), "0");
    EXPECT_EQ(Read("out"), "karv-view: the pictures are in karv-view-sheet.png\n");
}

TEST_F(WindowOnDisplay, DisplayThatDoesNotAnswerGivesALineAndASheet)
{
    Start("", ":12345");
    EXPECT_EQ(Status(), "0");
    EXPECT_EQ(Read("out"), "karv-view: no display answers, so the views are drawn on a sheet\n"
                           "karv-view: the pictures are in karv-view-sheet.png\n");
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
