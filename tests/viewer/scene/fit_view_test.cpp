// Fits of the view: how much of the viewport they fill, by the projected points and by the pixels of frames.
#include "viewer/scene/fit_view.h"

#include "platform/winsys/opengl.h"
#include "tests/viewer/test_support.h"
#include "viewer/scene/fitted_scene.h"
#include "viewer/window/viewport_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

constexpr double kLowShare = 0.88;
constexpr double kHighShare = 0.95;

/// What the points cover of the viewport of the current context.
struct Shares {
    double width = 0.0;
    double height = 0.0;
    double off_center = 0.0; ///< the larger distance of the middle of the points from that of the viewport
    double nearest = 1.0;    ///< depths
    double farthest = 0.0;

    [[nodiscard]] double Larger() const { return std::max(width, height); }
};

Shares SharesOf(const std::vector<Point>& points)
{
    Box seen;
    for (const Point& point : points)
        seen.Add(ProjectToViewport(point));
    return {(seen.max.x - seen.min.x) / 2, (seen.max.y - seen.min.y) / 2,
            std::max(std::abs(seen.max.x + seen.min.x), std::abs(seen.max.y + seen.min.y)) / 2, seen.min.z,
            seen.max.z};
}

struct Shape {
    const char* name;
    std::vector<Point> points; ///< with a diagonal of their box of at most 0.13
};

std::vector<Point> Corners(const Box& box)
{
    const auto corners = CornersOf(box);
    return {corners.begin(), corners.end()};
}

/// The corners of a box whose first edge runs along a direction that no axis has.
std::vector<Point> SlantedBox(double length, double width, double height)
{
    const Point along{2.0 / 3.0, 2.0 / 3.0, 1.0 / 3.0};
    const Point across{1.0 / 3.0, -2.0 / 3.0, 2.0 / 3.0};
    const Point third{-2.0 / 3.0, 1.0 / 3.0, 2.0 / 3.0};
    std::vector<Point> corners;
    for (const Point& p : CornersOf(BoxOf({0, 0, 0}, {length, width, height})))
        corners.push_back(along * p.x + across * p.y + third * p.z + Point{0.1, 0.1, 0.1});
    return corners;
}

std::vector<Shape> Shapes()
{
    const double cube = 0.13 / std::sqrt(3.0);
    return {{"cube", Corners(BoxOf({0, 0, 0}, {cube, cube, cube}))},
            {"box", Corners(BoxOf({0, 0, 0}, {.02, .05, .11}))},
            {"slanted box", SlantedBox(.08, .05, .02)},
            {"rod along x", Corners(BoxOf({0, 0, 0}, {.12, .00012, .00012}))},
            {"rod along y", Corners(BoxOf({0, 0, 0}, {.00012, .12, .00012}))},
            {"rod along z", Corners(BoxOf({0, 0, 0}, {.00012, .00012, .12}))},
            {"slanted rod", SlantedBox(.12, .00012, .00012)},
            {"sheet across z", Corners(BoxOf({0, 0, 0}, {.1, .07, 0}))},
            {"sheet across y", Corners(BoxOf({0, 0, 0}, {.03, 0, .1}))},
            {"slanted sheet", SlantedBox(.1, .06, 0)},
            {"tetrahedron", {{0, 0, 0}, {.1, 0, 0}, {0, .05, 0}, {0, 0, .06}}},
            {"small and far off", Corners(BoxOf({.08, .09, .01}, {.081, .091, .013}))}};
}

/// Sends the messages of a drag by the left button, which orbits and tilts by half a degree per pixel.
void Drag(KARVOpenGLControl& control, int dx, int dy)
{
    SendMessageW(control.GetSafeHwnd(), WM_MOUSEMOVE, 0, MAKELPARAM(500, 500));
    SendMessageW(control.GetSafeHwnd(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(500 + dx, 500 + dy));
}

constexpr std::array kDrags = {std::array{37, -11}, std::array{-113, 61}, std::array{301, 7},
                               std::array{64, -140}, std::array{-200, 33}};

class FitViewShares : public testing::TestWithParam<PictureSize>
{
};

TEST_P(FitViewShares, AreThoseOfEveryViewProjectionOrbitAndShape)
{
    UseHeadless();
    const auto [width, height] = GetParam();
    ViewportWindow window(L"test", PictureSize{width, height}, false);
    KARVOpenGLControl& control = window.Control();
    double least = 1.0;
    double most = 0.0;
    for (const Shape& shape : Shapes())
        for (const Projection projection : {Projection::Perspective, Projection::Parallel}) {
            const auto check = [&](const std::string& what) {
                const Shares shares = SharesOf(shape.points);
                const std::string where =
                    std::string(shape.name) + ", " + what +
                    (projection == Projection::Parallel ? ", parallel" : ", perspective");
                least = std::min(least, shares.Larger());
                most = std::max(most, shares.Larger());
                EXPECT_GE(shares.Larger(), kLowShare) << where;
                EXPECT_LE(shares.Larger(), kHighShare) << where;
                EXPECT_LT(shares.off_center, 0.005) << where;
                EXPECT_GT(shares.nearest, 0.0) << where;
                EXPECT_LT(shares.farthest, 1.0) << where;
            };
            for (const StandardView view : kStandardViews) {
                ASSERT_TRUE(FitView(control, shape.points, {.view = view, .projection = projection}));
                check(std::string(NameOf(view)));
            }
            for (const auto& [dx, dy] : kDrags) {
                Drag(control, dx, dy);
                ASSERT_TRUE(FitView(control, shape.points));
                check("drag by " + std::to_string(dx));
            }
        }
    RecordProperty("least_share", std::to_string(least));
    RecordProperty("most_share", std::to_string(most));
}

INSTANTIATE_TEST_SUITE_P(Aspects, FitViewShares,
                         testing::Values(PictureSize{60, 600}, PictureSize{100, 400}, PictureSize{100, 200},
                                         PictureSize{100, 100}, PictureSize{160, 120}, PictureSize{192, 108},
                                         PictureSize{200, 100}, PictureSize{400, 100}, PictureSize{600, 60}),
                         [](const auto& test) {
                             return std::to_string(test.param.width) + "x" +
                                    std::to_string(test.param.height);
                         });

/// The share of the picture's width and height, whichever is larger, between the outermost pixels that are
/// not black.
double DrawnShare(const Picture& picture)
{
    Box drawn;
    for (int row = 0; row < picture.height; ++row)
        for (int column = 0; column < picture.width; ++column)
            if (PixelAt(picture, column, row) != 0)
                drawn.Add({static_cast<double>(column), static_cast<double>(row), 0.0});
    return drawn.IsEmpty() ? 0.0
                           : std::max((drawn.max.x - drawn.min.x + 1) / picture.width,
                                      (drawn.max.y - drawn.min.y + 1) / picture.height);
}

class FitViewPixels : public testing::TestWithParam<PictureSize>
{
};

TEST_P(FitViewPixels, FillTheFrameInEveryViewAndProjection)
{
    UseHeadless();
    const auto [width, height] = GetParam();
    const double aspect = static_cast<double>(width) / height;
    double least = 1.0;
    double most = 0.0;
    for (const Box& box : {BoxOf({0, 0, 0}, {1, 1, 1}), BoxOf({0, 0, 0}, {1000, 1, 1}),
                           BoxOf({0, 0, 0}, {1, 1, 1000}), BoxOf({0, 0, 0}, {3, 2, 0})}) {
        ViewportWindow window(L"test", PictureSize{width, height}, false);
        window.Control().SetBgColor(0, 0, 0);
        FittedScene scene(window.Control(), BoxModel(box));
        // Lines are a pixel wide also where a rod or a sheet is thinner.
        for (const bool lines : {true, false}) {
            scene.DrawLines(lines);
            const auto check = [&](const std::string& what) {
                const double share = DrawnShare(window.TakePicture());
                least = std::min(least, share);
                most = std::max(most, share);
                const std::string where =
                    what + ' ' + std::to_string(box.max.x) + ' ' + std::to_string(box.max.z);
                EXPECT_GE(share, kLowShare) << where;
                EXPECT_LE(share, kHighShare) << where;
            };
            for (const Projection projection : {Projection::Perspective, Projection::Parallel}) {
                for (const StandardView view : kStandardViews) {
                    scene.Show(view, projection, aspect);
                    check(std::string(NameOf(view)));
                }
                Drag(window.Control(), 70, -25);
                scene.Fit(projection, aspect);
                check("drag");
            }
            if (box.max.x != box.max.z)
                break; // faces may cover no sample of any pixel
        }
    }
    RecordProperty("least_share", std::to_string(least));
    RecordProperty("most_share", std::to_string(most));
}

INSTANTIATE_TEST_SUITE_P(Aspects, FitViewPixels,
                         testing::Values(PictureSize{100, 400}, PictureSize{160, 120}, PictureSize{400, 100}),
                         [](const auto& test) {
                             return std::to_string(test.param.width) + "x" +
                                    std::to_string(test.param.height);
                         });

/// A window of 160 by 120 pixels with a control, without geometry.
class FitViewTest : public testing::Test
{
  protected:
    FitViewTest()
    {
        UseHeadless();
        window_ = std::make_unique<ViewportWindow>(L"test", PictureSize{160, 120}, false);
    }

    KARVOpenGLControl& Control() { return window_->Control(); }

    std::vector<Point> box_ = Corners(BoxOf({0, 0, 0}, {.02, .05, .11}));
    std::unique_ptr<ViewportWindow> window_;
};

TEST(FirstFitOfAControl, KeepsZUprightAndLooksLikeTheNextOne)
{
    UseHeadless();
    const std::vector<Point> corners = Corners(BoxOf({0, 0, 0}, {.02, .03, .05}));
    const Point foot{.01, .015, 0};
    const Point top{.01, .015, .05};
    for (const StandardView view : kStandardViews) {
        const std::string where(NameOf(view));
        ViewportWindow window(L"test", PictureSize{100, 100}, false);
        ASSERT_TRUE(FitView(window.Control(), corners, {.view = view})) << where;
        std::vector<Point> first;
        for (const Point& corner : corners)
            first.push_back(ProjectToViewport(corner));
        if (view != StandardView::Top && view != StandardView::Bottom) {
            // A roll of one degree is 0.03. Perspective leans the line a little, which is beside the middle.
            EXPECT_NEAR(ProjectToViewport(top).x, ProjectToViewport(foot).x, 0.01) << where;
            EXPECT_GT(ProjectToViewport(top).y, ProjectToViewport(foot).y + 0.5) << where;
        }
        ASSERT_TRUE(FitView(window.Control(), corners, {.view = view})) << where;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const Point next = ProjectToViewport(corners[i]);
            EXPECT_NEAR(first[i].x, next.x, 1e-3) << where;
            EXPECT_NEAR(first[i].y, next.y, 1e-3) << where;
        }
    }
}

TEST_F(FitViewTest, KeepsTheOrientationUnlessAViewIsNamed)
{
    FitView(Control(), box_, {.view = StandardView::NE});
    Drag(Control(), 77, -31);
    AcGeVector3d right;
    AcGeVector3d forward;
    AcGeVector3d up;
    Control().GetCameraAxes(right, forward, up);
    FitView(Control(), box_);
    AcGePoint3d eye;
    AcGePoint3d target;
    AcGeVector3d up_vector;
    Control().GetCameraData(eye, target, up_vector);
    EXPECT_LT(((target - eye) * (1.0 / kSceneSize) - forward).length(), 1e-9);
    AcGeVector3d right_after;
    AcGeVector3d up_after;
    Control().GetCameraAxes(right_after, forward, up_after);
    EXPECT_EQ((right_after - right).length(), 0.0);
    EXPECT_EQ((up_after - up).length(), 0.0);
}

TEST_F(FitViewTest, KeepsTheDirectionThatAHostGaveWithAnotherBox)
{
    // The axes of the control do not follow a camera that a host places; its direction is that of the camera.
    Control().OverrideExtents(AcGePoint3d(5, 5, 5), AcGePoint3d(6, 6, 6));
    Control().SetCameraData(AcGePoint3d(1, 1, 1), AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis);
    FitView(Control(), box_);
    AcGePoint3d eye;
    AcGePoint3d target;
    AcGeVector3d up;
    Control().GetCameraData(eye, target, up);
    const double part = kSceneSize / std::sqrt(3.0);
    EXPECT_LT((eye - target - AcGeVector3d(part, part, part)).length(), 1e-9);
    EXPECT_NEAR(SharesOf(box_).Larger(), kFittedShare, 0.01);
}

TEST_F(FitViewTest, KeepsTheProjectionUnlessOneIsNamed)
{
    const auto is_parallel = [] {
        std::array<double, 16> projection{};
        glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
        return projection[15] == 1.0;
    };
    FitView(Control(), box_);
    EXPECT_FALSE(is_parallel());
    FitView(Control(), box_, {.projection = Projection::Parallel});
    FitView(Control(), box_);
    EXPECT_TRUE(is_parallel());
    FitView(Control(), box_, {.projection = Projection::Perspective});
    FitView(Control(), box_, {.projection = Projection::Perspective});
    EXPECT_FALSE(is_parallel());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "no matrix is popped twice";
}

TEST_F(FitViewTest, PutsTheSceneSizeBackThatAThinRodHadReduced)
{
    const std::vector<Point> rod = Corners(BoxOf({0, 0, 0}, {.12, .00012, .00012}));
    const auto reduced =
        FitView(Control(), rod, {.view = StandardView::Left, .projection = Projection::Parallel});
    ASSERT_TRUE(reduced);
    EXPECT_LT(Control().sceneSize, kSceneSize / 20);
    EXPECT_NEAR(Control().zoomFactor, *reduced, 1e-5);
    FitView(Control(), rod, {.view = StandardView::Front});
    EXPECT_NEAR(Control().sceneSize, kSceneSize, 1e-7);
    EXPECT_NEAR(SharesOf(rod).Larger(), kFittedShare, 0.01);
}

TEST_F(FitViewTest, NoOrbitBringsThePointsNearerThanTheNearDistance)
{
    for (const Shape& shape : Shapes())
        for (const Projection projection : {Projection::Perspective, Projection::Parallel}) {
            FitView(Control(), shape.points, {.view = StandardView::SE, .projection = projection});
            for (int step = 0; step < 60; ++step) {
                Drag(Control(), 13, step % 20 < 10 ? 27 : -27);
                const Shares shares = SharesOf(shape.points);
                ASSERT_GT(shares.nearest, 0.0) << shape.name;
                ASSERT_LT(shares.farthest, 1.0) << shape.name;
            }
        }
}

TEST_F(FitViewTest, SceneOfAnotherScaleIsFittedToo)
{
    for (const double scale : {0.001, 50.0, 10'000.0}) {
        std::vector<Point> points;
        for (const Point& point : box_)
            points.push_back(point * scale);
        for (const Projection projection : {Projection::Perspective, Projection::Parallel}) {
            ASSERT_TRUE(FitView(Control(), points, {.view = StandardView::SW, .projection = projection}));
            const Shares shares = SharesOf(points);
            EXPECT_NEAR(shares.Larger(), kFittedShare, 0.01) << scale;
            EXPECT_GT(shares.nearest, 0.0) << scale;
        }
    }
}

TEST_F(FitViewTest, NothingChangesWithoutAFinitePoint)
{
    FitView(Control(), box_, {.view = StandardView::SE});
    const Shares before = SharesOf(box_);
    EXPECT_FALSE(FitView(Control(), {}, {.view = StandardView::Top}));
    EXPECT_FALSE(FitView(Control(), std::vector<Point>{{std::nan(""), 0, 0}}, {.view = StandardView::Top}));
    const Shares after = SharesOf(box_);
    EXPECT_EQ(after.width, before.width);
    EXPECT_EQ(after.height, before.height);
}

TEST_F(FitViewTest, PointsThatAreNotFiniteAreIgnored)
{
    std::vector<Point> points = box_;
    points.push_back({std::numeric_limits<double>::infinity(), 0, 0});
    points.push_back({0, std::nan(""), 0});
    EXPECT_TRUE(FitView(Control(), points, {.view = StandardView::SE}));
    EXPECT_NEAR(SharesOf(box_).Larger(), kFittedShare, 0.01);
}

TEST_F(FitViewTest, PointsThatCoincideAreShownInTheMiddleWithoutZoom)
{
    for (const Projection projection : {Projection::Perspective, Projection::Parallel}) {
        const auto fit = FitView(Control(), std::vector<Point>{{.1, .1, .1}, {.1, .1, .1}},
                                 {.view = StandardView::SE, .projection = projection});
        ASSERT_TRUE(fit);
        EXPECT_EQ(*fit, 1.0);
        EXPECT_LT(SharesOf({{.1, .1, .1}}).off_center, 1e-6);
    }
}

TEST_F(FitViewTest, ZoomIsMultipliedWithinATenthOfAPercent)
{
    for (const double factor : {1.0, 0.9173, 0.5, 0.0201, 0.0199, 0.00037, 1.0003, 2.71828, 29.9}) {
        Control().ResetCameraZoom();
        Control().fieldOfView = 4.0F; // so that no limit is reached
        MultiplyZoom(Control(), factor);
        EXPECT_NEAR(Control().zoomFactor / factor, 1.0, 0.001) << factor;
    }
}

TEST_F(FitViewTest, AspectOfTheWindowHoldsUnlessOneIsGiven)
{
    const std::vector<Point> sheet = Corners(BoxOf({0, 0, 0}, {.1, .1, 0}));
    FitView(Control(), sheet, {.view = StandardView::Top, .projection = Projection::Parallel});
    EXPECT_NEAR(SharesOf(sheet).height, kFittedShare, 0.001);
    // For a viewport that is to become a square, the width is what counts: 4 / 3 as high as it fits now.
    FitView(Control(), sheet, {.view = StandardView::Top, .projection = Projection::Parallel, .aspect = 1.0});
    EXPECT_NEAR(SharesOf(sheet).width, kFittedShare, 0.001);
}

/// Feeds a part to a new control and shows the whole of it from the south-east.
void ShowWholePart(KARVOpenGLControl& control, const std::vector<KARVGLFace>& part)
{
    constexpr unsigned short kCyan = 4;
    control.ComputeExtents(false);
    control.AppendGeometry(part, KARVGraphicalEntity::EntityType0, kCyan, 1.0F);
    std::vector<viewer::Point> corners;
    for (const KARVGLFace& face : part)
        for (const KARVGLVertex& corner : face.vertices)
            corners.push_back({corner.x, corner.y, corner.z});
    viewer::FitView(control, corners, {.view = viewer::StandardView::SE});
}

TEST_F(FitViewTest, HostFillsTheFrameByOneCall)
{
    Control().SetBgColor(0, 0, 0);
    KARVGLFace triangle;
    triangle.normal = {0.0, 0.0, 1.0};
    triangle.vertices = {{0.0, 0.0, 0.0}, {0.0, 0.1, 0.0}, {0.1, 0.0, 0.0}};
    ShowWholePart(Control(), {triangle});
    const double share = DrawnShare(window_->TakePicture());
    EXPECT_GE(share, kLowShare);
    EXPECT_LE(share, kHighShare);
}

TEST(FittedSceneFit, HiddenCategoriesDoNotCount)
{
    UseHeadless();
    ViewportWindow window(L"test", PictureSize{100, 100}, false);
    window.Control().SetBgColor(0, 0, 0);
    Model model = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
    Model other = BoxModel(BoxOf({30, 0, 0}, {31, 1, 1}));
    other.pieces[0].category = 1;
    model.pieces.push_back(other.pieces[0]);
    {
        FittedScene scene(window.Control(), model, {1});
        scene.Show(StandardView::SE, Projection::Perspective, 1.0);
        EXPECT_NEAR(DrawnShare(window.TakePicture()), kFittedShare, 0.03);
    }
    // Where everything is hidden, everything counts, so that what is switched on is seen.
    ViewportWindow hidden(L"test", PictureSize{100, 100}, false);
    hidden.Control().SetBgColor(0, 0, 0);
    FittedScene scene(hidden.Control(), model, {0, 1});
    scene.Show(StandardView::Front, Projection::Parallel, 1.0);
    EXPECT_EQ(DrawnShare(hidden.TakePicture()), 0.0);
    hidden.Control().EnableObject(KARVGraphicalEntity::EntityType0);
    hidden.Control().EnableObject(static_cast<KARVGraphicalEntity::EntityType>(1));
    EXPECT_NEAR(DrawnShare(hidden.TakePicture()), kFittedShare, 0.03);
}

TEST(FittedSceneFit, SwitchOfTheProjectionKeepsTheCameraAndTheZoom)
{
    UseHeadless();
    ViewportWindow window(L"test", PictureSize{100, 100}, false);
    FittedScene scene(window.Control(), BoxModel(BoxOf({0, 0, 0}, {1, 2, 3})));
    scene.Show(StandardView::SE, Projection::Perspective, 1.0);
    const Picture perspective = window.TakePicture();
    AcGePoint3d eye;
    AcGePoint3d target;
    AcGeVector3d up;
    window.Control().GetCameraData(eye, target, up);
    const float zoom = window.Control().zoomFactor;
    scene.SwitchProjection();
    EXPECT_EQ(scene.CurrentProjection(), Projection::Parallel);
    EXPECT_NE(window.TakePicture().pixels, perspective.pixels);
    AcGePoint3d eye_after;
    window.Control().GetCameraData(eye_after, target, up);
    EXPECT_EQ((eye_after - eye).length(), 0.0);
    EXPECT_EQ(window.Control().zoomFactor, zoom);
    scene.SwitchProjection();
    EXPECT_EQ(window.TakePicture().pixels, perspective.pixels);
}

TEST(FittedSceneFit, ResetZoomGoesBackToTheZoomOfTheFit)
{
    UseHeadless();
    ViewportWindow window(L"test", PictureSize{100, 100}, false);
    FittedScene scene(window.Control(), BoxModel(BoxOf({0, 0, 0}, {1, 2, 3})));
    scene.Show(StandardView::SE, Projection::Perspective, 1.0);
    const Picture fitted = window.TakePicture();
    SendMessageW(window.Control().GetSafeHwnd(), WM_MOUSEWHEEL, MAKEWPARAM(0, 240), 0);
    EXPECT_NE(window.TakePicture().pixels, fitted.pixels);
    scene.ResetZoom();
    EXPECT_EQ(window.TakePicture().pixels, fitted.pixels);
}

TEST(FittedSceneFit, IsFlatWhereEverythingVisibleHasOneZ)
{
    UseHeadless();
    ViewportWindow window(L"test", PictureSize{100, 100}, false);
    const auto is_flat = [&](const Model& model, const std::vector<int>& hidden) {
        return FittedScene(window.Control(), model, hidden).IsFlat();
    };
    EXPECT_TRUE(is_flat(BoxModel(BoxOf({0, 0, 7}, {3, 2, 7})), {}));
    EXPECT_TRUE(is_flat(BoxModel(BoxOf({0, 0, 7}, {3, 2, 7.000001})), {})) << "rounded";
    EXPECT_FALSE(is_flat(BoxModel(BoxOf({0, 0, 7}, {3, 2, 7.001})), {}));
    EXPECT_FALSE(is_flat(BoxModel(BoxOf({0, 7, 0}, {3, 7, 2})), {})) << "upright";
    Model two = BoxModel(BoxOf({0, 0, 0}, {3, 2, 0}));
    Model box = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
    box.pieces[0].category = 1;
    two.pieces.push_back(box.pieces[0]);
    EXPECT_FALSE(is_flat(two, {}));
    EXPECT_TRUE(is_flat(two, {1}));
}

} // namespace
} // namespace viewer
