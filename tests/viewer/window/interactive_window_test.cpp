// The window that a user sees: keys, resizing and closing, by the messages of a window system, without a
// display.
#include "viewer/window/interactive_window.h"

#include "platform/winsys/opengl.h"
#include "tests/viewer/test_support.h"
#include "viewer/scene/fit_view.h"
#include "viewer/window/message_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <vector>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

struct Headless {
    Headless() { UseHeadless(); }
};

constexpr PictureSize kSmall{120, 90};

ViewOptions OnBlack()
{
    ViewOptions options;
    options.background = std::array{0, 0, 0};
    return options;
}

std::wstring TitleOf(const CWnd& window)
{
    std::array<wchar_t, 200> title{};
    GetWindowTextW(window.GetSafeHwnd(), title.data(), static_cast<int>(title.size()));
    return title.data();
}

/// A window with a box of 1 by 2 by 3. The current folder is the folder of the test.
class InteractiveWindowTest : public ViewerTest
{
  protected:
    InteractiveWindowTest() : before_(std::filesystem::current_path())
    {
        std::filesystem::current_path(PathOf(""));
    }
    ~InteractiveWindowTest() override { std::filesystem::current_path(before_); }

    /// Posts a message to the control, which has the focus, and pumps until another frame is drawn.
    bool Post(UINT message, WPARAM wparam, LPARAM lparam = 0)
    {
        PostMessageW(GetFocus(), message, wparam, lparam);
        const unsigned long frames = window_.FrameCount();
        return PumpMessages([&] { return window_.FrameCount() > frames; },
                            [&] { return window_.FrameCount(); });
    }
    bool Press(char key) { return Post(WM_CHAR, static_cast<WPARAM>(key)); }
    /// Presses and releases a key.
    void Strike(char key)
    {
        Press(key);
        Post(WM_KEYUP, static_cast<WPARAM>(key));
    }
    /// Drags with these buttons from the middle, 10 pixels to the right and down.
    void Drag(WPARAM buttons)
    {
        Post(WM_MOUSEMOVE, 0, MAKELPARAM(60, 45));
        Post(WM_MOUSEMOVE, buttons, MAKELPARAM(70, 55));
    }

    struct Camera {
        AcGePoint3d position;
        AcGePoint3d target;
        AcGeVector3d up;
    };
    Camera CameraNow()
    {
        Camera camera;
        window_.Control().GetCameraData(camera.position, camera.target, camera.up);
        return camera;
    }
    /// What the box covers of the viewport's width or height, whichever is larger.
    double SeenShare()
    {
        window_.Control().MakeCurrent();
        const ScenePlacement placement(model_.Extents());
        Box seen;
        for (const Point& corner : CornersOf(model_.Extents()))
            seen.Add(ProjectToViewport(placement.ToScene(corner)));
        return std::max(seen.max.x - seen.min.x, seen.max.y - seen.min.y) / 2.0;
    }
    [[nodiscard]] static bool IsParallel()
    {
        std::array<double, 16> projection{};
        glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
        return projection[15] == 1.0;
    }
    std::uint32_t Middle()
    {
        const Picture picture = window_.TakePicture();
        return PixelAt(picture, picture.width / 2, picture.height / 2);
    }
    std::uint32_t Corner() { return PixelAt(window_.TakePicture(), 0, 0); }

    std::ostringstream notices_;
    std::ostringstream errors_;
    Model model_ = BoxModel(BoxOf({0, 0, 0}, {1, 2, 3}));
    Headless headless_;
    InteractiveWindow window_{kSmall, OnBlack(), model_, notices_, errors_};

  private:
    std::filesystem::path before_;
};

TEST_F(InteractiveWindowTest, IsShownWithTheModelInItAndHasTheFocus)
{
    EXPECT_TRUE(IsWindowVisible(window_.GetSafeHwnd()));
    EXPECT_TRUE(IsWindowVisible(window_.Control().GetSafeHwnd()));
    EXPECT_EQ(GetFocus(), window_.Control().GetSafeHwnd());
    EXPECT_TRUE(window_.IsOpen());
    EXPECT_NE(Middle(), 0U);
    EXPECT_EQ(Corner(), 0U);
}

TEST_F(InteractiveWindowTest, TitleNamesTheModelAndTheProgram)
{
    Model named;
    named.Append(model_);
    named.title = "Welle \xC3\xB8 20.stl";
    const InteractiveWindow window(kSmall, OnBlack(), named, notices_, errors_);
    EXPECT_EQ(TitleOf(window), L"Welle \u00F8 20.stl - karv-view");
}

/// A box as a surface that is visible from both sides, which has lines for its edges, beside or behind other
/// boxes.
Model SurfaceAt(double x, unsigned char color)
{
    Model model = BoxModel(BoxOf({x, 0, 0}, {x + 1, 1, 1}));
    model.title = "at " + std::to_string(static_cast<int>(x));
    model.pieces.front().two_sided = true;
    model.pieces.front().color = color;
    return model;
}

/// Both boxes, each in a category of its own.
Model TwoSurfaces()
{
    Model model = SurfaceAt(0, 1);
    model.Append(SurfaceAt(9, 3));
    return model;
}

/// The frames of a window in both modes, from a view.
std::vector<std::vector<std::uint32_t>> FramesOf(InteractiveWindow& window, wchar_t view)
{
    std::vector<std::vector<std::uint32_t>> frames;
    for (const wchar_t key : {view, L'm', L'm'}) {
        window.RunKeyCommand(key);
        frames.push_back(window.TakePicture().pixels);
    }
    return frames;
}

TEST_F(InteractiveWindowTest, IsThereWithoutAModelAndTakesTheKeysThatItIsThenShownBy)
{
    InteractiveWindow window(kSmall, OnBlack(), notices_, errors_);
    EXPECT_TRUE(IsWindowVisible(window.GetSafeHwnd()));
    EXPECT_EQ(TitleOf(window), L"karv-view");
    const auto is_black = [](const Picture& picture) {
        return std::ranges::all_of(picture.pixels, [](std::uint32_t pixel) { return pixel == 0; });
    };
    EXPECT_TRUE(is_black(window.TakePicture()));
    for (const wchar_t key : std::wstring(L"1234567890hrtz?mmp5"))
        EXPECT_TRUE(window.RunKeyCommand(key));
    window.MoveWindow(CRect(0, 0, 90, 60));
    EXPECT_TRUE(is_black(window.TakePicture()));
    window.Update(model_);
    InteractiveWindow other(PictureSize{90, 60}, OnBlack(), model_, notices_, errors_);
    for (const wchar_t key : std::wstring(L"p5"))
        other.RunKeyCommand(key);
    EXPECT_EQ(window.TakePicture().pixels, other.TakePicture().pixels);
    EXPECT_FALSE(is_black(window.TakePicture()));
}

TEST_F(InteractiveWindowTest, ModelThatGrowsIsShownAsIfItWereTheOnlyOne)
{
    const Model first = SurfaceAt(0, 1);
    const Model both = TwoSurfaces();
    InteractiveWindow window(kSmall, OnBlack(), first, notices_, errors_);
    EXPECT_EQ(TitleOf(window), L"at 0 - karv-view");
    window.Update(both);
    EXPECT_EQ(TitleOf(window), L"at 0, at 9 - karv-view");
    InteractiveWindow other(kSmall, OnBlack(), both, notices_, errors_);
    EXPECT_EQ(window.TakePicture().pixels, other.TakePicture().pixels);
    EXPECT_EQ(FramesOf(window, L'1'), FramesOf(other, L'1'));
}

TEST_F(InteractiveWindowTest, HiddenCategoriesStayHiddenWhenTheModelGrows)
{
    const Model first = SurfaceAt(0, 1);
    const Model both = TwoSurfaces();
    ViewOptions options = OnBlack();
    options.hidden = {0};
    InteractiveWindow window(kSmall, options, first, notices_, errors_);
    window.Update(both);
    InteractiveWindow other(kSmall, options, both, notices_, errors_);
    const auto frames = FramesOf(window, L'1');
    EXPECT_EQ(frames, FramesOf(other, L'1'));
    EXPECT_TRUE(std::ranges::any_of(frames.front(), [](std::uint32_t pixel) { return pixel != 0; }));
}

TEST_F(InteractiveWindowTest, CameraThatTheUserMovedStaysWhenTheModelGrowsUntilAViewIsChosen)
{
    const Model first = SurfaceAt(0, 1);
    // From the front the second box lies behind the first one, from the left beside it.
    Model both = first;
    both.Append(BoxModel(BoxOf({0.4, 9, 0.4}, {0.6, 9.2, 0.6})));
    InteractiveWindow window(kSmall, OnBlack(), first, notices_, errors_);
    window.RunKeyCommand(L'1');
    window.RunKeyCommand(L'p');
    SendMessageW(window.Control().GetSafeHwnd(), WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0);
    window.RunKeyCommand(L'?');
    const std::vector<std::uint32_t> before = window.TakePicture().pixels;
    window.Update(both);
    EXPECT_EQ(window.TakePicture().pixels, before);
    InteractiveWindow other(kSmall, OnBlack(), both, notices_, errors_);
    other.RunKeyCommand(L'p');
    EXPECT_EQ(FramesOf(window, L'3'), FramesOf(other, L'3'));
}

TEST_F(InteractiveWindowTest, StatusStandsInFrontOfTheTitle)
{
    const Model named = SurfaceAt(0, 1);
    InteractiveWindow window(kSmall, OnBlack(), notices_, errors_);
    window.ShowStatus("loading a.obj: 7 %");
    EXPECT_EQ(TitleOf(window), L"loading a.obj: 7 % - karv-view");
    window.Update(named);
    EXPECT_EQ(TitleOf(window), L"loading a.obj: 7 % - at 0 - karv-view");
    window.ShowStatus({});
    EXPECT_EQ(TitleOf(window), L"at 0 - karv-view");
}

TEST_F(InteractiveWindowTest, NumberKeysChooseTheTenViews)
{
    struct Case {
        char key;
        double x; ///< signs of the direction from the target to the eye
        double y;
        double z;
    };
    // The front view looks along +y, so its eye is on the side of -y; the east is +x.
    for (const Case& c : {Case{'1', 0, -1, 0}, Case{'2', 0, 1, 0}, Case{'3', -1, 0, 0}, Case{'4', 1, 0, 0},
                          Case{'5', 0, 0, 1}, Case{'6', 0, 0, -1}, Case{'7', 1, -1, 1}, Case{'8', -1, -1, 1},
                          Case{'9', 1, 1, 1}, Case{'0', -1, 1, 1}}) {
        ASSERT_TRUE(Press(c.key));
        const Camera camera = CameraNow();
        const AcGeVector3d eye = camera.position - camera.target;
        const auto sign = [&](double value) {
            return value > 0.1 * eye.length() ? 1.0 : value < -0.1 * eye.length() ? -1.0 : 0.0;
        };
        EXPECT_EQ(sign(eye.x), c.x) << c.key;
        EXPECT_EQ(sign(eye.y), c.y) << c.key;
        EXPECT_EQ(sign(eye.z), c.z) << c.key;
        EXPECT_NE(Middle(), 0U) << c.key;
        EXPECT_EQ(Corner(), 0U) << c.key;
    }
}

TEST_F(InteractiveWindowTest, ViewKeyFitsTheModelAgain)
{
    Press('1');
    const Picture first = window_.TakePicture();
    Drag(MK_RBUTTON);
    Drag(MK_MBUTTON);
    Drag(MK_LBUTTON);
    EXPECT_NE(window_.TakePicture().pixels, first.pixels);
    Press('1');
    EXPECT_EQ(window_.TakePicture().pixels, first.pixels);
}

TEST_F(InteractiveWindowTest, PSwitchesTheProjectionWhereTheCameraStands)
{
    Drag(MK_LBUTTON);
    const Camera before = CameraNow();
    EXPECT_FALSE(IsParallel());
    Press('p');
    EXPECT_TRUE(IsParallel());
    Press('p');
    EXPECT_FALSE(IsParallel());
    const Camera after = CameraNow();
    EXPECT_EQ(after.position.x, before.position.x);
    EXPECT_EQ(after.position.y, before.position.y);
    EXPECT_EQ(after.position.z, before.position.z);
    EXPECT_NE(Middle(), 0U);
}

TEST_F(InteractiveWindowTest, ViewKeyKeepsTheProjection)
{
    Press('p');
    Press('1');
    EXPECT_TRUE(IsParallel());
}

TEST_F(InteractiveWindowTest, MSwitchesBetweenFacesAndLines)
{
    Press('m');
    EXPECT_EQ(window_.Control().renderMode, KARVGLRenderModeLines);
    Press('m');
    EXPECT_EQ(window_.Control().renderMode, KARVGLRenderModeFaces);
    EXPECT_NE(Middle(), 0U);
}

TEST_F(InteractiveWindowTest, MStartsFromTheModeThatWasAskedFor)
{
    ViewOptions options = OnBlack();
    options.lines = true;
    InteractiveWindow window(kSmall, options, model_, notices_, errors_);
    ASSERT_TRUE(window.RunKeyCommand(L'm'));
    EXPECT_EQ(window.Control().renderMode, KARVGLRenderModeFaces);
}

TEST_F(InteractiveWindowTest, RTAndZChooseWhatTheLeftButtonDoes)
{
    const auto is = [&](bool rotates, bool pans, bool zooms) {
        const KARVOpenGLControl& control = window_.Control();
        return control.mouseRotates == rotates && control.mousePans == pans && control.mouseZooms == zooms;
    };
    Press('t');
    EXPECT_TRUE(is(false, true, false));
    Press('z');
    EXPECT_TRUE(is(false, false, true));
    Press('r');
    EXPECT_TRUE(is(true, false, false));
}

TEST_F(InteractiveWindowTest, SecondKInARowEndsNavigationWithTheButtons)
{
    Strike('k');
    EXPECT_TRUE(window_.Control().userControlEnabled);
    EXPECT_EQ(notices_.str(),
              "karv-view: k ends navigation with the buttons for good; press it again to do so\n");
    Strike('k');
    const Camera before = CameraNow();
    Drag(MK_LBUTTON);
    EXPECT_EQ(CameraNow().position.x, before.position.x);
    EXPECT_FALSE(window_.Control().userControlEnabled);
}

TEST_F(InteractiveWindowTest, KThatIsHeldDownOrFollowedByAnotherKeyEndsNothing)
{
    for (int i = 0; i < 5; ++i)
        Press('k');
    EXPECT_TRUE(window_.Control().userControlEnabled) << "a held key repeats itself";
    Strike('m');
    Strike('k');
    EXPECT_TRUE(window_.Control().userControlEnabled);
    Drag(MK_LBUTTON);
    EXPECT_TRUE(window_.Control().WasMovedByUser());
}

TEST_F(InteractiveWindowTest, HResetsTheZoomAndLeavesTheCamera)
{
    const Picture first = window_.TakePicture();
    PostMessageW(GetFocus(), WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0);
    Press('?');
    EXPECT_NE(window_.TakePicture().pixels, first.pixels);
    Press('h');
    EXPECT_EQ(window_.TakePicture().pixels, first.pixels);
}

TEST_F(InteractiveWindowTest, BGoesThroughTheBackgrounds)
{
    Press('b');
    EXPECT_EQ(Corner(), 0xFFFFFFU);
    Press('b');
    EXPECT_EQ(Corner(), 0x5A5A5AU);
    Press('b');
    EXPECT_EQ(Corner(), 0U);
    Press('b');
    EXPECT_EQ(Corner(), 0xFFFFFFU);
}

TEST_F(InteractiveWindowTest, BComesBackToTheFirstBackground)
{
    struct Case {
        std::optional<std::array<int, 3>> first;
        std::size_t count; ///< of different backgrounds
    };
    const std::array<int, 3> blue{10, 20, 30};
    const std::array<int, 3> gray{90, 90, 90};
    for (const Case& c : {Case{std::nullopt, 4}, Case{blue, 4}, Case{gray, 3}}) {
        ViewOptions options;
        options.background = c.first;
        InteractiveWindow window(kSmall, options, model_, notices_, errors_);
        std::vector<std::uint32_t> seen;
        for (std::size_t i = 0; i <= c.count; ++i) {
            seen.push_back(PixelAt(window.TakePicture(), 0, 0));
            window.RunKeyCommand(L'b');
        }
        EXPECT_EQ(seen.back(), seen.front());
        EXPECT_EQ(std::set<std::uint32_t>(seen.begin(), seen.end()).size(), c.count);
        EXPECT_THAT(seen, testing::IsSupersetOf({0xFFFFFFU, 0x5A5A5AU, 0U}));
    }
}

TEST_F(InteractiveWindowTest, LinesStayReadableOnEveryBackground)
{
    Model drawing;
    drawing.pieces.emplace_back().lines = {{{0, 0, 0}, {1, 0, 0}}, {{0, 0, 0}, {0, 1, 0}}};
    InteractiveWindow window(kSmall, OnBlack(), drawing, notices_, errors_);
    for (int i = 0; i < 4; ++i) {
        const Picture picture = window.TakePicture();
        const int ground = static_cast<int>(picture.pixels[0] & 0xFFU);
        const auto differs = [&](std::uint32_t pixel) {
            return std::abs(static_cast<int>(pixel & 0xFFU) - ground) > 60;
        };
        EXPECT_GT(std::ranges::count_if(picture.pixels, differs), 20) << ground;
        window.RunKeyCommand(L'b');
    }
}

TEST_F(InteractiveWindowTest, ETakesEdgesAwayAndBringsThemBack)
{
    const Picture with_edges = window_.TakePicture();
    Press('e');
    const Picture without = window_.TakePicture();
    EXPECT_NE(without.pixels, with_edges.pixels);
    Press('e');
    EXPECT_EQ(window_.TakePicture().pixels, with_edges.pixels);
    ViewOptions options = OnBlack();
    options.edges = false;
    InteractiveWindow window(kSmall, options, model_, notices_, errors_);
    EXPECT_EQ(window.TakePicture().pixels, without.pixels);
    window.RunKeyCommand(L'e');
    EXPECT_EQ(window.TakePicture().pixels, with_edges.pixels);
}

TEST_F(InteractiveWindowTest, LGoesThroughTheLights)
{
    std::vector<std::vector<std::uint32_t>> seen;
    for (const Light light : {Light::Shoulder, Light::Eye, Light::None}) {
        seen.push_back(window_.TakePicture().pixels);
        ViewOptions options = OnBlack();
        options.light = light;
        InteractiveWindow window(kSmall, options, model_, notices_, errors_);
        EXPECT_EQ(window.TakePicture().pixels, seen.back());
        window_.RunKeyCommand(L'l'); // the other window has the focus
    }
    EXPECT_NE(seen[0], seen[1]);
    EXPECT_NE(seen[1], seen[2]);
    EXPECT_NE(seen[2], seen[0]);
    EXPECT_EQ(window_.TakePicture().pixels, seen[0]);
}

TEST_F(InteractiveWindowTest, SSavesPicturesUnderNamesThatAreFree)
{
    Write("karv-view-2.png", "mine");
    Press('s');
    Press('s');
    EXPECT_THAT(Names(), ElementsAre("karv-view-1.png", "karv-view-2.png", "karv-view-3.png"));
    EXPECT_EQ(Read("karv-view-2.png"), "mine");
    EXPECT_EQ(SizeOfPng(PathOf("karv-view-3.png")), (PictureSize{120, 90}));
    EXPECT_EQ(notices_.str(), "karv-view: the picture is in karv-view-1.png\n"
                              "karv-view: the picture is in karv-view-3.png\n");
}

TEST_F(InteractiveWindowTest, PictureThatCannotBeSavedIsReportedAndTheWindowStays)
{
    std::filesystem::create_directory(PathOf("gone"));
    std::filesystem::current_path(PathOf("gone"));
    std::filesystem::remove(PathOf("gone"));
    Press('s');
    EXPECT_THAT(errors_.str(), StartsWith("karv-view: karv-view-1.png: "));
    EXPECT_EQ(notices_.str(), "");
    EXPECT_TRUE(window_.IsOpen());
    EXPECT_NE(Middle(), 0U);
}

TEST_F(InteractiveWindowTest, QuestionMarkPrintsEveryKey)
{
    Press('?');
    // A line for each key: the key, two blanks and a text.
    std::istringstream lines(notices_.str());
    std::string keys;
    for (std::string line; std::getline(lines, line);) {
        EXPECT_THAT(line, MatchesRegex("  .  [a-z].*"));
        keys += line.at(2);
    }
    EXPECT_EQ(keys, "1234567890fpmertzkhbls?q");
    EXPECT_THAT(notices_.str(), HasSubstr("  p  perspective or parallel projection\n"));
}

TEST_F(InteractiveWindowTest, QEndsTheLoop)
{
    PostMessageW(GetFocus(), WM_CHAR, 'q', 0);
    EXPECT_FALSE(PumpMessages([] { return false; }, [&] { return window_.FrameCount(); }));
}

TEST_F(InteractiveWindowTest, CapitalMeansTheSame)
{
    Press('P');
    EXPECT_TRUE(IsParallel());
}

TEST_F(InteractiveWindowTest, OtherKeysAreLeftAlone)
{
    MSG message{};
    message.hwnd = GetFocus();
    message.message = WM_CHAR;
    message.wParam = 'x';
    EXPECT_EQ(CWnd::WalkPreTranslateTree(nullptr, &message), FALSE);
    message.message = WM_KEYDOWN;
    message.wParam = 'Q';
    EXPECT_EQ(CWnd::WalkPreTranslateTree(nullptr, &message), FALSE);
    EXPECT_TRUE(window_.IsOpen());
}

TEST_F(InteractiveWindowTest, ControlFollowsTheSizeAndTheModelStaysFitted)
{
    for (const PictureSize size : {PictureSize{300, 75}, PictureSize{75, 300}, PictureSize{120, 90}}) {
        window_.MoveWindow(CRect(0, 0, size.width, size.height));
        const Picture picture = window_.TakePicture();
        ASSERT_EQ(picture.width, size.width);
        ASSERT_EQ(picture.height, size.height);
        EXPECT_NEAR(SeenShare(), kFittedShare, 0.01) << size.width;
    }
}

TEST_F(InteractiveWindowTest, CameraThatTheUserMovedStaysWhenTheSizeChanges)
{
    Drag(MK_LBUTTON);
    const Camera before = CameraNow();
    window_.MoveWindow(CRect(0, 0, 60, 200));
    EXPECT_EQ(CameraNow().position.x, before.position.x);
    EXPECT_EQ(CameraNow().position.y, before.position.y);
    EXPECT_GT(std::abs(SeenShare() - kFittedShare), 0.05);
    Press('7');
    window_.MoveWindow(CRect(0, 0, 200, 90));
    EXPECT_NEAR(SeenShare(), kFittedShare, 0.01) << "fitted again";
}

TEST_F(InteractiveWindowTest, FFitsTheModelAsItIsTurned)
{
    Drag(MK_LBUTTON);
    Drag(MK_RBUTTON);
    Drag(MK_MBUTTON);
    const Camera before = CameraNow();
    EXPECT_GT(std::abs(SeenShare() - kFittedShare), 0.05);
    Press('f');
    EXPECT_NEAR(SeenShare(), kFittedShare, 0.01);
    const Camera after = CameraNow();
    EXPECT_LT(((after.target - after.position) - (before.target - before.position)).length(), 1e-9);
    // Until the user moves the camera, the fit follows the size in this orientation.
    window_.MoveWindow(CRect(0, 0, 75, 300));
    EXPECT_NEAR(SeenShare(), kFittedShare, 0.01);
    const Camera resized = CameraNow();
    EXPECT_LT(((resized.target - resized.position) - (before.target - before.position)).length(), 1e-9);
    Post(WM_MOUSEWHEEL, MAKEWPARAM(0, 240));
    const double zoomed = SeenShare();
    window_.MoveWindow(CRect(0, 0, 150, 600));
    EXPECT_NEAR(SeenShare(), zoomed, 1e-4);
}

TEST_F(InteractiveWindowTest, ModelFillsATallWindowInBothProjections)
{
    window_.MoveWindow(CRect(0, 0, 75, 300));
    for (const char key : {'p', 'p', 'p'}) {
        Press(key);
        EXPECT_NEAR(SeenShare(), kFittedShare, 0.01) << (IsParallel() ? "parallel" : "perspective");
    }
}

TEST_F(InteractiveWindowTest, FlatDrawingOpensFromTheTopInParallelProjection)
{
    const Model drawing = BoxModel(BoxOf({0, 0, 5}, {3, 2, 5}));
    const auto opening = [&](const ViewOptions& options) {
        InteractiveWindow window(kSmall, options, drawing, notices_, errors_);
        Camera camera;
        window.Control().GetCameraData(camera.position, camera.target, camera.up);
        const AcGeVector3d sight = (camera.target - camera.position) * (1.0 / kSceneSize);
        const std::string view = sight.z < -0.999 ? "top" : sight.y > 0.999 ? "front" : "tilted";
        return view + (IsParallel() ? " parallel" : " perspective");
    };
    ViewOptions options = OnBlack();
    EXPECT_EQ(opening(options), "top parallel");
    options.projection = Projection::Perspective;
    EXPECT_EQ(opening(options), "top perspective");
    options.view = StandardView::Front;
    EXPECT_EQ(opening(options), "front perspective");
    options.projection.reset();
    EXPECT_EQ(opening(options), "front parallel");
    // The model of the other window is not flat.
    window_.Control().MakeCurrent();
    EXPECT_FALSE(IsParallel());
}

TEST_F(InteractiveWindowTest, SizeOfNothingIsSurvived)
{
    window_.MoveWindow(CRect(0, 0, 0, 0));
    Press('1');
    window_.MoveWindow(CRect(0, 0, 120, 90));
    EXPECT_NE(Middle(), 0U);
}

TEST_F(InteractiveWindowTest, CloseHidesIt)
{
    PostMessageW(window_.GetSafeHwnd(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(PumpMessages([&] { return !window_.IsOpen(); }, [&] { return window_.FrameCount(); }));
    EXPECT_FALSE(IsWindowVisible(window_.GetSafeHwnd()));
}

TEST_F(InteractiveWindowTest, LoopThatBringsNoFramesEnds)
{
    // A count that does not grow means that no frame is drawn.
    EXPECT_THROW(PumpMessages([] { return false; }, [] { return 7UL; }), std::runtime_error);
}

} // namespace
} // namespace viewer
