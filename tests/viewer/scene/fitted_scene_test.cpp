#include "viewer/scene/fitted_scene.h"

#include "platform/winsys/opengl.h"
#include "tests/viewer/test_support.h"
#include "viewer/scene/bundled_model.h"
#include "viewer/window/viewport_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

/// A square of side 1 in the plane z = 0, seen from +z.
ModelFace UnitSquareAt(double x)
{
    return MakeFace({{x, 0, 0}, {x + 1, 0, 0}, {x + 1, 1, 0}, {x, 1, 0}}).value();
}

class FittedSceneView : public testing::TestWithParam<PictureSize>
{
};

TEST_P(FittedSceneView, ShowsTheWholeBoxWithAMarginFromEveryStandardView)
{
    UseHeadless();
    const auto [width, height] = GetParam();
    const double aspect = static_cast<double>(width) / height;
    for (const Box& box : {BoxOf({0, 0, 0}, {1, 1, 1}), BoxOf({-700, 50, 1}, {700, 60, 2}),
                           BoxOf({1e-6, 0, 0}, {2e-6, 1e-4, 1e-6}), BoxOf({0, 0, 0}, {3, 2, 0})}) {
        ViewportWindow view(L"test", PictureSize{width, height}, false);
        FittedScene scene(view.Control(), BoxModel(box));
        const ScenePlacement placement(box);
        for (const Projection projection :
             {Projection::Perspective, Projection::Parallel, Projection::Perspective})
            for (const StandardView standard_view : kStandardViews) {
                scene.Show(standard_view, projection, aspect);
                for (const Point& corner : CornersOf(box)) {
                    const Point seen = ProjectToViewport(placement.ToScene(corner));
                    const std::string where(NameOf(standard_view));
                    EXPECT_LT(std::abs(seen.x), 0.98) << where;
                    EXPECT_LT(std::abs(seen.y), 0.98) << where;
                    EXPECT_GT(seen.z, 0.0) << where;
                    EXPECT_LT(seen.z, 1.0) << where;
                }
            }
    }
}

INSTANTIATE_TEST_SUITE_P(Aspects, FittedSceneView,
                         testing::Values(PictureSize{60, 300}, PictureSize{100, 200}, PictureSize{100, 101},
                                         PictureSize{100, 100}, PictureSize{160, 120}, PictureSize{146, 100},
                                         PictureSize{300, 60}),
                         [](const auto& test) {
                             return std::to_string(test.param.width) + "x" +
                                    std::to_string(test.param.height);
                         });

TEST(FittedScene, LooksFromTheSideThatTheViewIsNamedFor)
{
    UseHeadless();
    ViewportWindow view(L"test", PictureSize{100, 100}, false);
    const Box box = BoxOf({0, 0, 0}, {1, 1, 1});
    FittedScene scene(view.Control(), BoxModel(box));
    const ScenePlacement placement(box);
    struct Case {
        StandardView view;
        Point near_corner; ///< the middle of the side, or the corner, that is nearest to the eye
        Point far_corner;  ///< its opposite
    };
    for (const Case& c :
         {Case{StandardView::Front, {.5, 0, .5}, {.5, 1, .5}},
          Case{StandardView::Back, {.5, 1, .5}, {.5, 0, .5}},
          Case{StandardView::Left, {0, .5, .5}, {1, .5, .5}},
          Case{StandardView::Right, {1, .5, .5}, {0, .5, .5}},
          Case{StandardView::Top, {.5, .5, 1}, {.5, .5, 0}},
          Case{StandardView::Bottom, {.5, .5, 0}, {.5, .5, 1}}, Case{StandardView::SE, {1, 0, 1}, {0, 1, 0}},
          Case{StandardView::SW, {0, 0, 1}, {1, 1, 0}}, Case{StandardView::NE, {1, 1, 1}, {0, 0, 0}},
          Case{StandardView::NW, {0, 1, 1}, {1, 0, 0}}}) {
        scene.Show(c.view, Projection::Parallel, 1.0);
        const Point near_point = ProjectToViewport(placement.ToScene(c.near_corner));
        const Point far_point = ProjectToViewport(placement.ToScene(c.far_corner));
        EXPECT_LT(near_point.z, far_point.z) << NameOf(c.view);
        EXPECT_NEAR(near_point.x, 0.0, 1e-4) << NameOf(c.view);
        EXPECT_NEAR(near_point.y, 0.0, 1e-4) << NameOf(c.view);
    }
}

TEST(FittedScene, FramesShowTheModelInsideAnUntouchedBorder)
{
    UseHeadless();
    constexpr int kWidth = 160;
    constexpr int kHeight = 120;
    constexpr std::uint32_t kBackground = 0x102030;
    ViewportWindow view(L"test", PictureSize{kWidth, kHeight}, false);
    view.Control().SetBgColor(0x10, 0x20, 0x30);
    FittedScene scene(view.Control(), MakeBundledModel());
    for (const StandardView standard_view : kStandardViews) {
        scene.Show(standard_view, Projection::Perspective, 4.0 / 3.0);
        const Picture picture = view.TakePicture();
        ASSERT_EQ(picture.width, kWidth);
        ASSERT_EQ(picture.height, kHeight);
        int drawn = 0;
        for (int row = 0; row < kHeight; ++row)
            for (int column = 0; column < kWidth; ++column) {
                const bool border = row == 0 || column == 0 || row == kHeight - 1 || column == kWidth - 1;
                const bool background = PixelAt(picture, column, row) == kBackground;
                EXPECT_TRUE(background || !border) << NameOf(standard_view) << ' ' << column << ' ' << row;
                drawn += background ? 0 : 1;
            }
        EXPECT_GT(drawn, kWidth * kHeight / 20) << NameOf(standard_view);
    }
}

TEST(FittedScene, SlantedEdgesAreSmooth)
{
    UseHeadless();
    ViewportWindow view(L"test", PictureSize{100, 100}, false);
    view.Control().SetBgColor(0, 0, 0);
    GLint sample_buffers = 0;
    constexpr GLenum kSampleBuffers = 0x80A8; // GL_SAMPLE_BUFFERS, of OpenGL 1.3
    glGetIntegerv(kSampleBuffers, &sample_buffers);
    ASSERT_EQ(sample_buffers, 1) << "the window layer offers multisampling without a display";
    // One flat triangle, seen head-on. Without smoothing all pixels have its colours or the background's;
    // with smoothing some have mixtures.
    Model model;
    model.pieces.push_back(
        MakePiece("triangle", {MakeFace({{0, 0, 0}, {3, 1, 0}, {1, 3, 0}}).value()}, 0, 1));
    FittedScene scene(view.Control(), model);
    scene.Show(StandardView::Top, Projection::Parallel, 1.0);
    const Picture picture = view.TakePicture();
    const std::uint32_t full = PixelAt(picture, 50, 50) >> 16U;
    int mixed = 0;
    for (const std::uint32_t pixel : picture.pixels)
        mixed += pixel >> 16U > full / 8 && pixel >> 16U < full - full / 8 ? 1 : 0;
    EXPECT_GT(mixed, 30);
}

TEST(FittedScene, FacesShowTheirOutsideAndItIsLit)
{
    UseHeadless();
    ViewportWindow view(L"test", PictureSize{100, 100}, false);
    view.Control().SetBgColor(0, 0, 0);
    Model model = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
    model.pieces[0].color = 1; // red
    FittedScene scene(view.Control(), model);
    for (const StandardView standard_view : {StandardView::Front, StandardView::Back, StandardView::Left,
                                             StandardView::Right, StandardView::Top, StandardView::Bottom}) {
        scene.Show(standard_view, Projection::Parallel, 1.0);
        const std::uint32_t middle = PixelAt(view.TakePicture(), 50, 50);
        // The light shines from the viewer, so a face seen head-on has its full colour, and a highlight at
        // most.
        EXPECT_GE(middle >> 16U, 250U) << NameOf(standard_view);
        EXPECT_LT(middle & 0xFFU, 250U) << NameOf(standard_view);
    }
}

/// The middle pixel of a square that is seen from the side that its corners show and from its back, with a
/// light grey background, so that each blending darkens it.
std::array<std::uint32_t, 2> SidesOfASquare(bool two_sided, bool transparent, float alpha)
{
    UseHeadless();
    ViewportWindow view(L"test", PictureSize{100, 100}, transparent);
    view.Control().SetBgColor(200, 200, 200);
    Model model;
    model.pieces.push_back(MakePiece("square", {UnitSquareAt(0)}, 0, 250, alpha));
    model.pieces[0].two_sided = two_sided;
    FittedScene scene(view.Control(), model);
    std::array<std::uint32_t, 2> pixels{};
    scene.Show(StandardView::Top, Projection::Parallel, 1.0);
    pixels[0] = PixelAt(view.TakePicture(), 50, 50);
    scene.Show(StandardView::Bottom, Projection::Parallel, 1.0);
    pixels[1] = PixelAt(view.TakePicture(), 50, 50);
    return pixels;
}

constexpr std::uint32_t kLightGray = 0xC8C8C8;

TEST(FittedScene, TwoSidedFaceIsSeenAndLitFromBothSides)
{
    const auto single = SidesOfASquare(false, false, 1.0F);
    EXPECT_NE(single[0], kLightGray);
    EXPECT_EQ(single[1], kLightGray) << "the back of a closed body is never seen";
    const auto both = SidesOfASquare(true, false, 1.0F);
    EXPECT_EQ(both[0], single[0]);
    EXPECT_EQ(both[1], single[0]) << "lit as the other side is";
}

TEST(FittedScene, NoSideBlendsTwiceWhereItIsTransparent)
{
    const auto single = SidesOfASquare(false, true, 0.5F);
    const auto both = SidesOfASquare(true, true, 0.5F);
    EXPECT_NE(single[0], kLightGray);
    EXPECT_EQ(both[0], single[0]);
    EXPECT_EQ(both[1], single[0]);
    EXPECT_EQ(single[1], kLightGray) << "back faces are culled";
}

TEST(FittedScene, FacesOfManyCornersAreFedAsTriangles)
{
    UseHeadless();
    ViewportWindow view(L"test", PictureSize{100, 100}, false);
    Model model;
    model.pieces.push_back(MakePiece("square", {UnitSquareAt(0)}));
    const FittedScene scene(view.Control(), model);
    ASSERT_EQ(view.Control().entities.at(0).faces.size(), 2U);
    for (const KARVGLFace& face : view.Control().entities[0].faces)
        EXPECT_EQ(face.displayList, 0U);
}

/// The number of pixels that are not black.
int DrawnPixels(const Picture& picture)
{
    return static_cast<int>(
        std::ranges::count_if(picture.pixels, [](std::uint32_t pixel) { return pixel != 0; }));
}

constexpr std::uint32_t kRed = 0xFF0000;
constexpr std::uint32_t kGreen = 0x00FF00;

/// Whether a pixel has a part of the colour.
bool HasColor(const Picture& picture, std::uint32_t color)
{
    return std::ranges::any_of(picture.pixels, [&](std::uint32_t pixel) { return (pixel & color) != 0; });
}

/// Tests with a black window.
class FittedSceneLines : public testing::Test
{
  protected:
    static void SetUpTestSuite() { UseHeadless(); }
    FittedSceneLines() { view_.Control().SetBgColor(0, 0, 0); }

    ViewportWindow view_{L"test", PictureSize{100, 100}, false};
};

TEST_F(FittedSceneLines, SolidShowsItsEdgesInLineMode)
{
    FittedScene scene(view_.Control(), BoxModel(BoxOf({0, 0, 0}, {1, 1, 1})));
    scene.Show(StandardView::Front, Projection::Parallel, 1.0);
    const Picture faces = view_.TakePicture();
    EXPECT_NE(PixelAt(faces, 50, 50), 0U);
    scene.DrawLines(true);
    const Picture lines = view_.TakePicture();
    EXPECT_EQ(PixelAt(lines, 50, 50), 0U) << "nothing within the outline";
    EXPECT_GT(DrawnPixels(lines), 100);
    scene.DrawLines(false);
    EXPECT_EQ(view_.TakePicture().pixels, faces.pixels);
}

TEST_F(FittedSceneLines, SurfaceShowsItsBorderInLineMode)
{
    // Two squares side by side, one of them in another category.
    Model model;
    model.pieces.push_back(MakePiece("a", {UnitSquareAt(0)}, 0, 1));
    model.pieces.push_back(MakePiece("b", {UnitSquareAt(2)}, 1, 3));
    FittedScene scene(view_.Control(), model);
    scene.DrawEdges(false);
    scene.Show(StandardView::Top, Projection::Parallel, 1.0);
    const Picture faces = view_.TakePicture();
    view_.Control().DisableObject(static_cast<KARVGraphicalEntity::EntityType>(0));
    view_.Control().DisableObject(static_cast<KARVGraphicalEntity::EntityType>(1));
    EXPECT_EQ(DrawnPixels(view_.TakePicture()), 0) << "no lines among faces";
    scene.DrawLines(true);
    const Picture lines = view_.TakePicture();
    EXPECT_GT(DrawnPixels(lines), 40);
    EXPECT_LT(DrawnPixels(lines), DrawnPixels(faces));
    EXPECT_TRUE(HasColor(lines, kRed)) << "in the colour of the piece";
    EXPECT_TRUE(HasColor(lines, kGreen));
}

/// Lines in the plane z = 0 in red, of category 0, and a square beside it in green, of category 1.
Model LineAndSquare(const Point& at, double size)
{
    Model model;
    Piece& lines = model.pieces.emplace_back();
    lines.lines = {{at, at + Point{2 * size, 0, 0}}, {at + Point{0, size, 0}, at + Point{size, 2 * size, 0}}};
    lines.color = 1;
    const Point x{size, 0, 0};
    const Point y{0, size, 0};
    const Point corner = at + x + y;
    model.pieces.push_back(
        MakePiece("square", {MakeFace({corner, corner + x, corner + x + y, corner + y}).value()}, 1, 3));
    return model;
}

TEST_F(FittedSceneLines, LinesOfThePieceAreSeenInBothModesAndHiddenWithTheirCategory)
{
    FittedScene scene(view_.Control(), LineAndSquare({0, 0, 0}, 1));
    scene.Show(StandardView::Top, Projection::Parallel, 1.0);
    EXPECT_TRUE(HasColor(view_.TakePicture(), kRed)) << "among faces";
    scene.DrawLines(true);
    EXPECT_TRUE(HasColor(view_.TakePicture(), kRed)) << "among lines";
    view_.Control().DisableObject(static_cast<KARVGraphicalEntity::EntityType>(0));
    const Picture without = view_.TakePicture();
    EXPECT_FALSE(HasColor(without, kRed));
    EXPECT_GT(DrawnPixels(without), 20) << "the square's border is left";
}

TEST_F(FittedSceneLines, HiddenCategoriesHideTheBordersOfTheirSurfacesToo)
{
    FittedScene scene(view_.Control(), LineAndSquare({0, 0, 0}, 1), {1});
    scene.Show(StandardView::Top, Projection::Parallel, 1.0);
    for (const bool lines : {false, true, false, true}) {
        scene.DrawLines(lines);
        const Picture picture = view_.TakePicture();
        EXPECT_FALSE(HasColor(picture, kGreen)) << lines;
        EXPECT_TRUE(HasColor(picture, kRed)) << lines;
    }
}

TEST_F(FittedSceneLines, ModelOfLinesAloneFillsThePicture)
{
    Model model;
    model.pieces.emplace_back().lines = {{{0, 0, 0}, {1, 0, 0}}, {{1, 0, 0}, {1, 1, 0}}};
    FittedScene scene(view_.Control(), model);
    scene.Show(StandardView::Top, Projection::Parallel, 1.0);
    const Picture picture = view_.TakePicture();
    // The lines are 91.5 of 100 pixels long.
    EXPECT_GE(DrawnPixels(picture), 80);
    EXPECT_LE(DrawnPixels(picture), 600) << "thin lines, smoothed";
    int lowest = 100;
    int highest = -1;
    for (int column = 0; column < 100; ++column)
        for (int row = 0; row < 100; ++row)
            if (PixelAt(picture, column, row) != 0) {
                lowest = std::min(lowest, column);
                highest = std::max(highest, column);
            }
    EXPECT_NEAR(highest - lowest, 91, 2);
}

TEST_F(FittedSceneLines, LineOfNoLengthCanBeDrawn)
{
    Model model;
    model.pieces.emplace_back().lines = {{{5, 5, 5}, {5, 5, 5}}};
    FittedScene scene(view_.Control(), model);
    scene.Show(StandardView::SE, Projection::Perspective, 1.0);
    EXPECT_EQ(view_.TakePicture().pixels.size(), 10'000U);
}

// A thousand kilometres are about 2^30 mm. There, doubles are 2^-22 apart and floats 128. The same part at
// the origin, where no digit is lost, must give the same picture.
TEST(FittedScene, ModelAThousandKilometersAwayShowsAsItDoesAtTheOrigin)
{
    UseHeadless();
    constexpr double kAway = 1073741824.0;
    std::vector<Picture> pictures;
    for (const Point& at : {Point{0, 0, 0}, Point{kAway, -kAway, kAway}}) {
        ViewportWindow view(L"test", PictureSize{100, 100}, false);
        view.Control().SetBgColor(0, 0, 0);
        // All coordinates are multiples of 1/64, which are exact in both places.
        Model model = LineAndSquare(at, 0.25);
        model.Append(BoxModel(BoxOf(at + Point{0.5, 0, 0}, at + Point{0.75, 0.125, 0.25})));
        FittedScene scene(view.Control(), model);
        for (const bool lines : {false, true}) {
            scene.DrawLines(lines);
            scene.Show(StandardView::SE, Projection::Perspective, 1.0);
            pictures.push_back(view.TakePicture());
            EXPECT_GT(DrawnPixels(pictures.back()), 60);
        }
    }
    EXPECT_EQ(pictures.at(0).pixels, pictures.at(2).pixels) << "faces";
    EXPECT_EQ(pictures.at(1).pixels, pictures.at(3).pixels) << "lines";
}

} // namespace
} // namespace viewer
