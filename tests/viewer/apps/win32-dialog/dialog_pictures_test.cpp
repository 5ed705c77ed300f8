// The effects of the program's buttons and switches on the picture in its viewport. Expected colours come
// from the models' materials, from the formula of blending, and from other pictures of the same run.
#include "tests/viewer/apps/win32-dialog/dialog_process.h"

#include "viewer/apps/win32-dialog/resource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace dialog_test;

namespace
{

// Values of `HueOf`.
constexpr int kBlue = 1;
constexpr int kGreen = 2;
constexpr int kCyan = 3;
constexpr int kRed = 4;
constexpr int kMagenta = 5;
constexpr int kYellow = 6;

std::string Material(const std::string& name, const std::string& color, const std::string& opacity = "1")
{
    return "newmtl " + name + "\nKd " + color + "\nd " + opacity + "\n";
}

/// A folder with a cube that has a different colour on each side.
struct CubeFolder : Folder {
    CubeFolder()
    {
        Write("cube.mtl", Material("front", "1 0 0") + Material("back", "1 1 0") + Material("left", "0 1 0") +
                              Material("right", "0 1 1") + Material("top", "0 0 1") +
                              Material("bottom", "1 0 1"));
        Write("cube.obj", "mtllib cube.mtl\n"
                          "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 1 0 1\nv 1 1 1\nv 0 1 1\n"
                          "usemtl front\nf 1 2 6 5\nusemtl back\nf 3 4 8 7\nusemtl left\nf 4 1 5 8\n"
                          "usemtl right\nf 2 3 7 6\nusemtl top\nf 5 6 7 8\nusemtl bottom\nf 4 3 2 1\n");
    }
};

/// A folder with two squares that face the front: red at x = 0 to 1 and y = 0, green at x = 2 to 3 and y = 3.
struct SquaresFolder : Folder {
    SquaresFolder()
    {
        Write("squares.mtl", Material("near", "1 0 0") + Material("far", "0 1 0"));
        Write("squares.obj", "mtllib squares.mtl\n"
                             "v 0 0 0\nv 1 0 0\nv 1 0 1\nv 0 0 1\nv 2 3 0\nv 3 3 0\nv 3 3 1\nv 2 3 1\n"
                             "usemtl near\nf 1 2 3 4\nusemtl far\nf 5 6 7 8\n");
    }
};

/// A cube folder with a red rectangle in a horizontal plane, too.
struct FlatFolder : CubeFolder {
    FlatFolder()
    {
        Write("flat.mtl", Material("sheet", "1 0 0"));
        Write("flat.obj", "mtllib flat.mtl\nv 0 0 5\nv 3 0 5\nv 3 1 5\nv 0 1 5\nusemtl sheet\nf 1 2 3 4\n");
    }
};

void Play(const Folder& folder, const std::string& script, const std::wstring& model)
{
    const Outcome outcome = RunScript(folder, script, model);
    ASSERT_EQ(outcome.status, 0U) << outcome.error;
    ASSERT_EQ(outcome.error, "");
}

/// The hues of the faces in a picture, without the greys of the background. Edges have the hue of their face,
/// which may be hidden itself: an edge covers fewer pixels than the smallest face.
std::set<int> HuesOf(const Picture& picture)
{
    constexpr int kGray = 7;
    constexpr int kMinFace = 1000;
    std::map<int, int> counts;
    for (const Color color : picture.pixels)
        ++counts[HueOf(color)];
    std::set<int> hues;
    for (const auto& [hue, count] : counts)
        if (count > kMinFace && hue != kGray)
            hues.insert(hue);
    return hues;
}

/// The number of pixels of a hue in the middle row.
int WidthOf(int hue, const Picture& picture)
{
    int width = 0;
    for (int x = 0; x < picture.width; ++x)
        width += HueOf(picture.At(x, picture.height / 2)) == hue ? 1 : 0;
    return width;
}

/// Expects the blend of `upper` over `lower`, with a tolerance for rounding in a few steps.
void ExpectBlend(Color seen, Color upper, Color lower, double opacity)
{
    constexpr double kRounding = 3.0;
    const auto blend = [&](int over, int under) { return opacity * over + (1.0 - opacity) * under; };
    EXPECT_NEAR(seen.red, blend(upper.red, lower.red), kRounding);
    EXPECT_NEAR(seen.green, blend(upper.green, lower.green), kRounding);
    EXPECT_NEAR(seen.blue, blend(upper.blue, lower.blue), kRounding);
}

bool TouchesItsBorder(const Picture& picture)
{
    const Color background = picture.At(0, 0);
    for (int x = 0; x < picture.width; ++x)
        if (picture.At(x, 0) != background || picture.At(x, picture.height - 1) != background)
            return true;
    for (int y = 0; y < picture.height; ++y)
        if (picture.At(0, y) != background || picture.At(picture.width - 1, y) != background)
            return true;
    return false;
}

} // namespace

TEST(DialogViews, BundledSceneIsShownWithoutAModel)
{
    const Folder folder;
    const Outcome outcome = RunDialog(folder, L"--picture a.bmp");
    ASSERT_EQ(outcome.status, 0U) << outcome.error;
    const Picture picture = folder.Read("a.bmp");
    EXPECT_GT(HuesOf(picture).size(), 1U);
    EXPECT_FALSE(TouchesItsBorder(picture));
}

TEST(DialogViews, SixSidesShowTheirFaces)
{
    const CubeFolder folder;
    const std::map<std::string, int> sides = {{"Front", kRed},  {"Back", kYellow}, {"Left", kGreen},
                                              {"Right", kCyan}, {"Top", kBlue},    {"Bottom", kMagenta}};
    std::string script;
    for (const auto& [side, hue] : sides)
        script += "press " + side + "\npicture " + side + ".bmp\n";
    Play(folder, script, L"cube.obj");
    for (const auto& [side, hue] : sides)
        EXPECT_EQ(HuesOf(folder.Read(side + ".bmp")), (std::set<int>{hue})) << side;
}

TEST(DialogViews, FourCornersShowThreeFacesEach)
{
    const CubeFolder folder;
    const std::map<std::string, std::set<int>> corners = {{"SE", {kRed, kCyan, kBlue}},
                                                          {"SW", {kRed, kGreen, kBlue}},
                                                          {"NE", {kYellow, kCyan, kBlue}},
                                                          {"NW", {kYellow, kGreen, kBlue}}};
    std::string script = "picture start.bmp\n";
    for (const auto& [corner, hues] : corners)
        script += "press " + corner + "\npicture " + corner + ".bmp\n";
    Play(folder, script, L"cube.obj");
    for (const auto& [corner, hues] : corners) {
        const Picture picture = folder.Read(corner + ".bmp");
        EXPECT_EQ(HuesOf(picture), hues) << corner;
        EXPECT_FALSE(TouchesItsBorder(picture)) << corner;
    }
    EXPECT_TRUE(folder.Read("start.bmp") == folder.Read("SE.bmp"));
}

TEST(DialogViews, FlatDrawingOpensFromTheTopInParallelProjection)
{
    const FlatFolder folder;
    Play(folder,
         "picture start.bmp\npress Top\npress Parallel\npicture top.bmp\npress SE\npicture corner.bmp\n",
         L"flat.obj");
    const Picture start = folder.Read("start.bmp");
    EXPECT_EQ(HueOf(start.Center()), kRed);
    EXPECT_TRUE(folder.Read("top.bmp") == start);
    EXPECT_FALSE(folder.Read("corner.bmp") == start);
}

TEST(DialogViews, ProjectionButtonsShowThatOfAFlatDrawing)
{
    const FlatFolder folder;
    const DialogProcess process(L"flat.obj", folder.Path());
    const HWND dialog = process.Dialog();
    EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_PARALLEL), BST_CHECKED);
    EXPECT_EQ(IsDlgButtonChecked(dialog, IDC_PERSPECTIVE), BST_UNCHECKED);
}

TEST(DialogViews, SolidAfterAFlatDrawingIsSeenInTheProjectionThatWasChosen)
{
    const FlatFolder folder;
    Play(folder,
         "picture chosen.bmp\nopen flat.obj\nopen cube.obj\npicture opened.bmp\n"
         "press Parallel\npicture parallel.bmp\n",
         L"cube.obj");
    EXPECT_TRUE(folder.Read("opened.bmp") == folder.Read("chosen.bmp"));
    EXPECT_FALSE(folder.Read("parallel.bmp") == folder.Read("chosen.bmp"));
}

TEST(DialogViews, SlantedEdgesAreSmooth)
{
    // Without smoothing: the background, and for each of the six sides the colours of its face and its edges.
    constexpr std::size_t kUnblended = 13;
    const CubeFolder folder;
    Play(folder, "press SE\npicture corner.bmp\n", L"cube.obj");
    std::set<std::array<int, 3>> colors;
    for (const Color color : folder.Read("corner.bmp").pixels)
        colors.insert({color.red, color.green, color.blue});
    EXPECT_GT(colors.size(), kUnblended);
}

TEST(DialogSwitches, ParallelProjectionShowsFarAndNearAtOneScale)
{
    const SquaresFolder folder;
    Play(folder,
         "press Front\npicture perspective.bmp\npress Parallel\npicture parallel.bmp\n"
         "press Perspective\npicture again.bmp\n",
         L"squares.obj");
    const Picture parallel = folder.Read("parallel.bmp");
    EXPECT_NEAR(WidthOf(kRed, parallel), WidthOf(kGreen, parallel), 1.0);
    // The box of 3 x 3 x 1 has a diagonal of 4.359, which is 0.65 of the scene size: that is 6.70, the
    // distance of the eye from the middle: 6.70 - 1.5 from the near square and 6.70 + 1.5 from the far one.
    const Picture perspective = folder.Read("perspective.bmp");
    EXPECT_NEAR(static_cast<double>(WidthOf(kRed, perspective)) / WidthOf(kGreen, perspective), 8.20 / 5.20,
                0.05);
    EXPECT_TRUE(folder.Read("again.bmp") == perspective);
}

TEST(DialogSwitches, LinesShowEdgesAndNoFaces)
{
    const CubeFolder folder;
    Play(folder,
         "press Front\npicture faces.bmp\npress Lines\npicture lines.bmp\npress Faces\npicture again.bmp\n",
         L"cube.obj");
    const Picture faces = folder.Read("faces.bmp");
    const Picture lines = folder.Read("lines.bmp");
    const Color background = faces.At(0, 0);
    const auto is_drawn = [&](Color color) { return color != background; };
    EXPECT_EQ(HueOf(faces.Center()), kRed);
    EXPECT_EQ(lines.Center(), background);
    EXPECT_GT(lines.Count(is_drawn), 4 * WidthOf(kRed, faces) / 2);
    EXPECT_LT(lines.Count(is_drawn), faces.Count(is_drawn) / 4);
    EXPECT_TRUE(folder.Read("again.bmp") == faces);
}

TEST(DialogCategories, HidingOneTakesItsPixelsAndNoOthers)
{
    const SquaresFolder folder;
    Play(folder,
         "press Front\npicture all.bmp\npress near\npicture hidden.bmp\npress near\npicture again.bmp\n",
         L"squares.obj");
    const Picture all = folder.Read("all.bmp");
    const Picture hidden = folder.Read("hidden.bmp");
    const Color background = all.At(0, 0);
    EXPECT_GT(all.Count([](Color color) { return HueOf(color) == kRed; }), 1000);
    EXPECT_EQ(hidden.Count([](Color color) { return HueOf(color) == kRed; }), 0);
    int others_changed = 0;
    for (std::size_t i = 0; i < all.pixels.size(); ++i) {
        const bool is_other = all.pixels[i] == background || HueOf(all.pixels[i]) == kGreen;
        others_changed += is_other && hidden.pixels[i] != all.pixels[i] ? 1 : 0;
    }
    EXPECT_EQ(others_changed, 0);
    EXPECT_TRUE(folder.Read("again.bmp") == all);
}

TEST(DialogCategories, LastCheckBoxSwitchesAllRemainingCategories)
{
    // Ten categories: the eighth box switches numbers 7, 8 and 9.
    const Folder folder;
    std::ostringstream materials;
    std::ostringstream model;
    model << "mtllib m.mtl\n";
    for (int i = 0; i < 10; ++i) {
        materials << "newmtl m" << i << "\nKd " << (i < 7 ? "1 0 0" : "0 1 0") << '\n';
        const int x = 2 * i;
        for (const char* const corner : {" 0 0\n", " 0 1\n"})
            model << "v " << x << corner << "v " << x + 1 << corner;
        model << "usemtl m" << i << "\nf -4 -3 -1 -2\n";
    }
    folder.Write("m.mtl", materials.str());
    folder.Write("m.obj", model.str());
    Play(folder, "press Front\npicture all.bmp\npress others\npicture hidden.bmp\n", L"m.obj");
    EXPECT_EQ(HuesOf(folder.Read("all.bmp")), (std::set<int>{kRed, kGreen}));
    EXPECT_EQ(HuesOf(folder.Read("hidden.bmp")), (std::set<int>{kRed}));
}

TEST(DialogCategories, AmpersandInANameIsShownAndIsNoKey)
{
    const Folder folder;
    folder.Write("m.mtl", Material("a&b", "1 0 0"));
    folder.Write("m.obj", "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 1 0 1\nusemtl a&b\nf 1 2 3\n");
    Play(folder, "press Front\npress a&b\npicture hidden.bmp\n", L"m.obj");
    EXPECT_TRUE(HuesOf(folder.Read("hidden.bmp")).empty());
}

TEST(DialogBackground, ChosenColorIsBehindTheModel)
{
    const SquaresFolder folder;
    Play(folder, "press Front\nbackground 200 10 30\npicture a.bmp\n", L"squares.obj");
    EXPECT_EQ(folder.Read("a.bmp").At(0, 0), (Color{200, 10, 30}));
}

TEST(DialogOpacity, SliderBlendsFacesWithTheBackground)
{
    const SquaresFolder folder;
    Play(folder,
         "press Front\nbackground 20 40 200\npicture opaque.bmp\nopacity 40\npicture faded.bmp\nopacity 0\n"
         "picture none.bmp\n",
         L"squares.obj");
    const Picture opaque = folder.Read("opaque.bmp");
    const Picture faded = folder.Read("faded.bmp");
    const Color background{20, 40, 200};
    // A column through the middle of the near square, at the left.
    int x = 0;
    while (HueOf(opaque.At(x, opaque.height / 2)) != kRed)
        ++x;
    x += WidthOf(kRed, opaque) / 2;
    const int y = opaque.height / 2;
    ExpectBlend(faded.At(x, y), opaque.At(x, y), background, 0.4);
    EXPECT_EQ(faded.At(0, 0), background);
    EXPECT_EQ(folder.Read("none.bmp").Count([&](Color color) { return color != background; }), 0);
}

TEST(DialogOpacity, MaterialsOwnOpacityIsSeenFromTheStart)
{
    const Folder folder;
    const std::string square = "v 0 0 0\nv 1 0 0\nv 1 0 1\nv 0 0 1\nusemtl a\nf 1 2 3 4\n";
    folder.Write("opaque.mtl", Material("a", "1 0 0"));
    folder.Write("faint.mtl", Material("a", "1 0 0", "0.25"));
    folder.Write("opaque.obj", "mtllib opaque.mtl\n" + square);
    folder.Write("faint.obj", "mtllib faint.mtl\n" + square);
    Play(folder, "press Front\npicture opaque.bmp\nopen faint.obj\npress Front\npicture faint.bmp\n",
         L"opaque.obj");
    const Picture opaque = folder.Read("opaque.bmp");
    ExpectBlend(folder.Read("faint.bmp").Center(), opaque.Center(), opaque.At(0, 0), 0.25);
}

TEST(DialogOpacity, OpaquePartsOfATranslucentModelHideWhatIsBehindThem)
{
    // The far square comes later; without a depth test it would be drawn over the near one.
    const Folder folder;
    folder.Write("m.mtl",
                 Material("near", "1 0 0") + Material("far", "0 1 0") + Material("glass", "0 0 1", "0.5"));
    folder.Write("m.obj", "mtllib m.mtl\n"
                          "v 0 0 0\nv 1 0 0\nv 1 0 1\nv 0 0 1\nv 0 1 0\nv 1 1 0\nv 1 1 1\nv 0 1 1\n"
                          "v 0 2 0\nv 1 2 0\nv 1 2 1\nv 0 2 1\n"
                          "usemtl near\nf 1 2 3 4\nusemtl far\nf 5 6 7 8\nusemtl glass\nf 9 10 11 12\n");
    Play(folder,
         "press Front\npress glass\npicture all.bmp\npress near\npicture far.bmp\npress near\nopacity 40\n"
         "picture faded.bmp\n",
         L"m.obj");
    const Picture all = folder.Read("all.bmp");
    const Picture far_one = folder.Read("far.bmp");
    EXPECT_EQ(HueOf(all.Center()), kRed);
    EXPECT_EQ(HueOf(far_one.Center()), kGreen);
    // With the slider at 40, faces are blended in the order of the file: the near square first, then the far
    // one.
    const auto blend = [](int over, int under) {
        return static_cast<std::uint8_t>(std::lround(0.4 * over + 0.6 * under));
    };
    const Color background = all.At(0, 0);
    const Color near_one = all.Center();
    const Color below{blend(near_one.red, background.red), blend(near_one.green, background.green),
                      blend(near_one.blue, background.blue)};
    ExpectBlend(folder.Read("faded.bmp").Center(), far_one.Center(), below, 0.4);
}

TEST(DialogOpacity, NewViewportKeepsCameraAndSwitches)
{
    for (const std::string projection : {"Perspective", "Parallel"}) {
        const CubeFolder folder;
        Play(folder,
             "picture fresh.bmp\npress SW\npress " + projection +
                 "\nbackground 10 120 60\npress left\n"
                 "drag left 100 100 163 71\nwheel 3\ndrag middle 100 100 120 140\ndrag right 50 50 50 31\n"
                 "drag left 20 20 30 45\n"
                 "picture before.bmp\nopacity 30\npicture faded.bmp\nopacity 100\npicture after.bmp\n",
             L"cube.obj");
        const Picture before = folder.Read("before.bmp");
        EXPECT_FALSE(before == folder.Read("fresh.bmp"));
        EXPECT_FALSE(before == folder.Read("faded.bmp"));
        EXPECT_TRUE(before == folder.Read("after.bmp")) << projection;
    }
}

TEST(DialogOpacity, NewViewportKeepsLines)
{
    const CubeFolder folder;
    Play(folder, "press Lines\npicture before.bmp\nopacity 30\nopacity 100\npicture after.bmp\n",
         L"cube.obj");
    EXPECT_TRUE(folder.Read("before.bmp") == folder.Read("after.bmp"));
}

TEST(DialogOpacity, NewViewportKeepsACameraThatWasMovedAtAnotherSize)
{
    // The distance that a pixel pans depends on the earlier sizes of the window; the camera must not.
    const CubeFolder folder;
    Play(folder,
         "drag middle 100 100 150 130\nresize 900 700\ndrag middle 100 100 120 90\ndrag left 10 10 50 30\n"
         "picture before.bmp\nopacity 30\nopacity 100\npicture after.bmp\n",
         L"cube.obj");
    EXPECT_TRUE(folder.Read("before.bmp") == folder.Read("after.bmp"));
}

TEST(DialogOpacity, StandardViewsOfTheNewViewportAreCenteredAsBefore)
{
    const CubeFolder folder;
    Play(folder,
         "press Top\npicture fresh.bmp\ndrag middle 100 100 180 150\ndrag left 10 10 20 30\nopacity "
         "30\nopacity 100\n"
         "picture moved.bmp\npress Top\npicture centered.bmp\n",
         L"cube.obj");
    EXPECT_FALSE(folder.Read("fresh.bmp") == folder.Read("moved.bmp"));
    EXPECT_TRUE(folder.Read("fresh.bmp") == folder.Read("centered.bmp"));
}

TEST(DialogMouse, EachButtonAndTheWheelMoveTheCamera)
{
    const CubeFolder folder;
    Play(folder,
         "picture start.bmp\ndrag left 100 100 140 100\npicture left.bmp\npress SE\n"
         "drag middle 100 100 140 100\npicture middle.bmp\npress SE\ndrag right 100 100 100 140\npicture "
         "right.bmp\n"
         "press SE\nwheel 3\npicture wheel.bmp\npress SE\npicture end.bmp\n",
         L"cube.obj");
    const Picture start = folder.Read("start.bmp");
    for (const char* const name : {"left.bmp", "middle.bmp", "right.bmp", "wheel.bmp"})
        EXPECT_FALSE(folder.Read(name) == start) << name;
    EXPECT_TRUE(folder.Read("end.bmp") == start);
    const auto is_blue = [](Color color) { return HueOf(color) == kBlue; };
    EXPECT_GT(folder.Read("wheel.bmp").Count(is_blue), start.Count(is_blue));
    EXPECT_LT(folder.Read("right.bmp").Count(is_blue), start.Count(is_blue));
}

TEST(DialogSize, ViewportGrowsWithTheDialogAndShowsTheWholeModel)
{
    const CubeFolder folder;
    Play(folder,
         "resize 600 500\npicture small.bmp\nresize 900 620\npicture large.bmp\npress Parallel\nresize 1200 "
         "500\n"
         "picture wide.bmp\nresize 600 500\npress Perspective\npicture again.bmp\n",
         L"cube.obj");
    const Picture small_one = folder.Read("small.bmp");
    const Picture large = folder.Read("large.bmp");
    const Picture wide = folder.Read("wide.bmp");
    EXPECT_EQ(large.width, small_one.width + 300);
    EXPECT_EQ(large.height, small_one.height + 120);
    EXPECT_EQ(wide.width, small_one.width + 600);
    EXPECT_EQ(wide.height, small_one.height);
    for (const Picture& picture : {small_one, large, wide}) {
        EXPECT_FALSE(TouchesItsBorder(picture));
        EXPECT_EQ(HuesOf(picture), (std::set<int>{kRed, kCyan, kBlue}));
    }
    EXPECT_TRUE(folder.Read("again.bmp") == small_one);
}

TEST(DialogSize, CameraThatTheUserMovedStays)
{
    const CubeFolder folder;
    Play(folder,
         "resize 900 700\npicture whole.bmp\nresize 600 500\nwheel 4\nresize 900 700\npicture moved.bmp\n",
         L"cube.obj");
    const auto is_blue = [](Color color) { return HueOf(color) == kBlue; };
    EXPECT_GT(folder.Read("moved.bmp").Count(is_blue), folder.Read("whole.bmp").Count(is_blue) * 11 / 10);
}

TEST(DialogOpen, ChosenModelReplacesThePreviousOne)
{
    const CubeFolder folder;
    Play(folder, "press frame\nopen cube.obj\npicture opened.bmp\npress top\npicture hidden.bmp\n", L"");
    EXPECT_EQ(HuesOf(folder.Read("opened.bmp")), (std::set<int>{kRed, kCyan, kBlue}));
    // The sides of different materials are open surfaces: through the top, the insides of two others are
    // seen.
    EXPECT_EQ(HuesOf(folder.Read("hidden.bmp")), (std::set<int>{kRed, kCyan, kYellow, kGreen}));
}

TEST(DialogOpen, ModelThatIsRefusedEndsTheScriptWithItsReason)
{
    const Folder folder;
    folder.Write("bad.obj", "v 0 0 0\nf 1 2 3\n");
    const Outcome outcome = RunScript(folder, "open bad.obj\n");
    EXPECT_EQ(outcome.status, 1U);
    EXPECT_TRUE(outcome.error.starts_with("win32_dialog: script.txt:1: ")) << outcome.error;
    EXPECT_TRUE(outcome.error.ends_with("bad.obj: names a vertex that it does not have; it has 1\n"))
        << outcome.error;
}
