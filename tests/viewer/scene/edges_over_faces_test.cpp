// The edges of pieces over their faces: whole, hidden by what lies before them, and with their pieces.
#include "viewer/scene/fitted_scene.h"

#include "platform/winsys/opengl.h"
#include "tests/viewer/test_support.h"
#include "viewer/scene/line_colors.h"
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

constexpr int kEdgeWindow = 300;
constexpr unsigned char kGrayPiece = 253; ///< 173, 173, 173
constexpr std::uint32_t kWhiteGround = 0xFFFFFF;

/// A window on white, so that the outline of a model differs from the ground.
class EdgesOverFaces : public testing::Test
{
  protected:
    static void SetUpTestSuite() { UseHeadless(); }
    EdgesOverFaces()
    {
        view_.Control().MakeCurrent();
        view_.Control().SetBgColor(255, 255, 255);
    }

    FittedScene& Feed(const Model& model)
    {
        scene_ = std::make_unique<FittedScene>(view_.Control(), model);
        scene_->Show(StandardView::SE, Projection::Parallel, 1.0);
        return *scene_;
    }

    ViewportWindow view_{L"test", PictureSize{kEdgeWindow, kEdgeWindow}, false};
    std::unique_ptr<FittedScene> scene_;
};

Model GrayBox(const Box& box, unsigned char color = kGrayPiece)
{
    Model model = BoxModel(box);
    model.pieces[0].color = color;
    return model;
}

int RedOf(std::uint32_t pixel)
{
    return static_cast<int>(pixel >> 16U);
}

/// The darkest pixel within a pixel of the point, which `ProjectToViewport` gave.
int DarkestNear(const Picture& picture, const Point& seen)
{
    const int column = static_cast<int>(std::floor((seen.x + 1.0) / 2.0 * kEdgeWindow));
    const int row = static_cast<int>(std::floor((1.0 - seen.y) / 2.0 * kEdgeWindow));
    int darkest = 255;
    for (int y = row - 1; y <= row + 1; ++y)
        for (int x = column - 1; x <= column + 1; ++x)
            darkest = std::min(darkest, RedOf(PixelAt(picture, x, y)));
    return darkest;
}

/// The edges of the box [0, 1] cubed, each with the outward normals of its two sides.
struct BoxEdge {
    Point from;
    Point to;
    std::array<Point, 2> normals;
};

std::vector<BoxEdge> EdgesOfUnitBox()
{
    const std::array<Point, 3> axes{Point{1, 0, 0}, Point{0, 1, 0}, Point{0, 0, 1}};
    std::vector<BoxEdge> edges;
    for (std::size_t along = 0; along < 3; ++along)
        for (const int first : {0, 1})
            for (const int second : {0, 1}) {
                const Point& u = axes.at((along + 1) % 3);
                const Point& v = axes.at((along + 2) % 3);
                const Point from = u * first + v * second;
                edges.push_back({from, from + axes.at(along), {u * (2 * first - 1), v * (2 * second - 1)}});
            }
    return edges;
}

TEST_F(EdgesOverFaces, AllOfEveryVisibleEdgeIsSeenFromEveryView)
{
    const Box box = BoxOf({0, 0, 0}, {1, 1, 1});
    FittedScene& scene = Feed(GrayBox(box));
    const ScenePlacement placement(box);
    for (const bool multisample : {true, false})
        for (const Projection projection : {Projection::Parallel, Projection::Perspective})
            for (const StandardView standard_view : kStandardViews) {
                if (!multisample)
                    glDisable(GL_MULTISAMPLE);
                scene.Show(standard_view, projection, 1.0);
                AcGePoint3d eye;
                AcGePoint3d target;
                AcGeVector3d up;
                view_.Control().GetCameraData(eye, target, up);
                const Picture picture = view_.TakePicture();
                scene.DrawEdges(false);
                const Picture without = view_.TakePicture();
                scene.DrawEdges(true);
                const AcGeVector3d to_eye = (eye - target).normalize();
                int seen_edges = 0;
                int missing = 0;
                for (const BoxEdge& edge : EdgesOfUnitBox()) {
                    // A side that is seen edge-on counts as hidden.
                    const bool is_seen = std::ranges::any_of(edge.normals, [&](const Point& n) {
                        return n.x * to_eye.x + n.y * to_eye.y + n.z * to_eye.z > 0.1;
                    });
                    if (!is_seen)
                        continue;
                    ++seen_edges;
                    constexpr int kSteps = 40;
                    for (int step = 1; step < kSteps; ++step) {
                        const Point at =
                            edge.from + (edge.to - edge.from) * (static_cast<double>(step) / kSteps);
                        const Point seen = ProjectToViewport(placement.ToScene(at));
                        missing += DarkestNear(picture, seen) > DarkestNear(without, seen) - 20 ? 1 : 0;
                    }
                }
                const std::string where =
                    std::string(NameOf(standard_view)) +
                    (projection == Projection::Parallel ? " parallel" : " perspective") +
                    (multisample ? "" : " without multisampling");
                EXPECT_GE(seen_edges, 4) << where;
                EXPECT_EQ(missing, 0) << where;
            }
}

// Edges before faces that are moved away much further are whole. Without any offset, a quarter of their
// pixels is left.
TEST_F(EdgesOverFaces, HaveNearlyAllOfTheirPixels)
{
    FittedScene& scene = Feed(GrayBox(BoxOf({0, 0, 0}, {1, 1, 1})));
    const auto dark_pixels = [&] {
        const Picture picture = view_.TakePicture();
        return static_cast<double>(
            std::ranges::count_if(picture.pixels, [](std::uint32_t pixel) { return RedOf(pixel) < 100; }));
    };
    for (const Projection projection : {Projection::Parallel, Projection::Perspective})
        for (const StandardView standard_view : {StandardView::SE, StandardView::SW}) {
            scene.Show(standard_view, projection, 1.0);
            const double drawn = dark_pixels();
            GLfloat factor = 0.0F;
            GLfloat units = 0.0F;
            glGetFloatv(GL_POLYGON_OFFSET_FACTOR, &factor);
            glGetFloatv(GL_POLYGON_OFFSET_UNITS, &units);
            glPolygonOffset(10.0F, 10.0F);
            const double whole = dark_pixels();
            glPolygonOffset(factor, units);
            EXPECT_GT(whole, 300.0) << NameOf(standard_view);
            EXPECT_GT(drawn, 0.95 * whole) << NameOf(standard_view);
        }
}

// A wall with a sheet on its back and a block further behind, which it hides from every one of these views. A
// pixel is 0.2 % of the wall's width: the offset of faces grows with the depth that a pixel spans.
TEST(EdgesOverFacesOfWalls, NoneIsSeenThroughThreeThousandthsOfTheWidth)
{
    constexpr double kThickness = 0.003;
    constexpr int kWindow = 1024;
    constexpr std::uint32_t kBlue = 0x0000FF;
    UseHeadless();
    ViewportWindow view(L"test", PictureSize{kWindow, kWindow}, false);
    view.Control().SetBgColor(0, 0, 255);
    Model model = GrayBox(BoxOf({0, 0, 0}, {1, kThickness, 1}));
    Model behind = GrayBox(BoxOf({0.3, 0.05, 0.3}, {0.7, 0.2, 0.7}));
    constexpr double kY = kThickness;
    behind.pieces.push_back(MakePiece(
        "sheet", {MakeFace({{0.2, kY, 0.2}, {0.8, kY, 0.2}, {0.8, kY, 0.8}, {0.2, kY, 0.8}}).value()}, 0,
        kGrayPiece));
    behind.pieces.back().two_sided = true;
    model.Append(std::move(behind));
    FittedScene scene(view.Control(), model);
    for (const bool multisample : {true, false})
        for (const Projection projection : {Projection::Parallel, Projection::Perspective})
            for (const StandardView standard_view :
                 {StandardView::Front, StandardView::SE, StandardView::SW}) {
                if (!multisample)
                    glDisable(GL_MULTISAMPLE);
                scene.Show(standard_view, projection, 1.0);
                const Picture picture = view.TakePicture();
                scene.ShowCategory(1, false);
                const Picture wall = view.TakePicture();
                scene.ShowCategory(1, true);
                const auto wall_pixels =
                    std::ranges::count_if(wall.pixels, [](std::uint32_t pixel) { return pixel != kBlue; });
                int shining = 0;
                for (std::size_t i = 0; i < wall.pixels.size(); ++i)
                    shining += picture.pixels[i] != wall.pixels[i] ? 1 : 0;
                EXPECT_GT(wall_pixels, kWindow * kWindow / 20) << NameOf(standard_view);
                EXPECT_EQ(shining, 0) << NameOf(standard_view);
            }
}

TEST_F(EdgesOverFaces, AreOneEntityForAPieceAfterAllFaces)
{
    Model model = GrayBox(BoxOf({0, 0, 0}, {1, 1, 1}));
    model.Append(GrayBox(BoxOf({2, 0, 0}, {3, 1, 1})));
    Feed(model);
    const auto& entities = view_.Control().entities;
    ASSERT_EQ(entities.size(), 4U);
    for (const std::size_t i : {0U, 1U})
        EXPECT_EQ(entities[i].faces.size(), 6U);
    for (const std::size_t i : {2U, 3U}) {
        EXPECT_TRUE(entities[i].faces.empty());
        EXPECT_EQ(entities[i].lineVertices.size(), 24U);
    }
}

/// A box of category 0 and an open surface of category 1, which share no pixel.
Model BoxAndSquare()
{
    Model model = GrayBox(BoxOf({0, 0, 0}, {1, 1, 1}));
    Model square;
    square.pieces.push_back(
        MakePiece("square", {MakeFace({{3, 0, 1}, {4, 0, 1}, {4, 1, 1}, {3, 1, 1}}).value()}, 0, kGrayPiece));
    square.pieces[0].two_sided = true;
    model.Append(std::move(square));
    return model;
}

TEST_F(EdgesOverFaces, AreHiddenWithTheirPiece)
{
    FittedScene& scene = Feed(BoxAndSquare());
    const auto drawn = [&] {
        const Picture picture = view_.TakePicture();
        return std::ranges::count_if(picture.pixels,
                                     [](std::uint32_t pixel) { return pixel != kWhiteGround; });
    };
    for (const bool lines : {false, true}) {
        scene.DrawLines(lines);
        const auto both = drawn();
        scene.ShowCategory(0, false);
        const auto square = drawn();
        scene.ShowCategory(1, false);
        EXPECT_EQ(drawn(), 0);
        scene.DrawLines(!lines);
        scene.DrawEdges(true);
        EXPECT_EQ(drawn(), 0) << "switches show no hidden category";
        scene.DrawLines(lines);
        scene.ShowCategory(0, true);
        EXPECT_EQ(drawn() + square, both);
        scene.ShowCategory(1, true);
        EXPECT_EQ(drawn(), both);
    }
}

TEST_F(EdgesOverFaces, AreNotDrawnInLineMode)
{
    FittedScene& scene = Feed(BoxAndSquare());
    const Picture with_edges = view_.TakePicture();
    scene.DrawEdges(false);
    const Picture without = view_.TakePicture();
    EXPECT_NE(with_edges.pixels, without.pixels);
    scene.DrawLines(true);
    const Picture lines = view_.TakePicture();
    EXPECT_TRUE(std::ranges::none_of(lines.pixels, [](std::uint32_t p) { return RedOf(p) < 173; }))
        << "edges have the colour of the piece";
    scene.DrawEdges(true);
    EXPECT_EQ(view_.TakePicture().pixels, lines.pixels);
    scene.DrawLines(false);
    EXPECT_EQ(view_.TakePicture().pixels, with_edges.pixels);
}

TEST(EdgesOverFacesTransparent, InvisiblePieceHasNone)
{
    UseHeadless();
    ViewportWindow view(L"test", PictureSize{kEdgeWindow, kEdgeWindow}, true);
    view.Control().SetBgColor(255, 255, 255);
    for (const float alpha : {0.0F, 0.25F}) {
        Model model = BoxAndSquare();
        for (Piece& piece : model.pieces)
            piece.alpha = alpha;
        FittedScene scene(view.Control(), model);
        scene.Show(StandardView::SE, Projection::Parallel, 1.0);
        const Picture picture = view.TakePicture();
        EXPECT_EQ(
            std::ranges::any_of(picture.pixels, [](std::uint32_t pixel) { return pixel != kWhiteGround; }),
            alpha > 0.0F);
    }
}

TEST(EdgeColors, AreDarkerByTwoThirdsAndLighterOnNearlyBlack)
{
    // 0.35 x 255 is 89, whose nearest grey is 91; 0.35 x 173 is 61, nearest to 51.
    EXPECT_EQ(EdgeColor(7), 251);
    EXPECT_EQ(EdgeColor(253), 250);
    // 0.35 x 255 is 89, nearest to 76 among the reds.
    EXPECT_EQ(EdgeColor(1), 16);
    // The darkest grey, 51, would have edges of its own colour. 51 + 0.35 x 204 is 122, nearest to 128.
    EXPECT_EQ(EdgeColor(250), 8);
}

} // namespace
} // namespace viewer
