// The colours of lines on light and dark grounds.
#include "viewer/scene/line_colors.h"

#include "tests/viewer/test_support.h"
#include "viewer/scene/fitted_scene.h"
#include "viewer/window/viewport_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>
#include <vector>

namespace viewer
{
namespace
{

Rgb GrayOf(int tone)
{
    return {tone / 255.0, tone / 255.0, tone / 255.0};
}

TEST(LineColors, ContrastIsThatOfWcag)
{
    EXPECT_NEAR(ContrastOf({0, 0, 0}, {1, 1, 1}), 21.0, 1e-9);
    EXPECT_NEAR(ContrastOf({1, 1, 1}, {0, 0, 0}), 21.0, 1e-9);
    EXPECT_NEAR(ContrastOf(GrayOf(90), GrayOf(90)), 1.0, 1e-9);
    // (0.2126 + 0.05) / 0.05
    EXPECT_NEAR(ContrastOf({1, 0, 0}, {0, 0, 0}), 5.252, 1e-9);
}

TEST(LineColors, UnreadableOnesTakeTheOppositeOfTheGround)
{
    EXPECT_EQ(ReadableColor(7, GrayOf(255)), 250);
    EXPECT_EQ(ReadableColor(2, GrayOf(255)), 250) << "yellow on white";
    EXPECT_EQ(ReadableColor(250, GrayOf(0)), 7);
    EXPECT_EQ(ReadableColor(250, {58 / 255.0, 62 / 255.0, 68 / 255.0}), 7);
    EXPECT_EQ(ReadableColor(8, GrayOf(128)), 7);
}

TEST(LineColors, ReadableOnesStay)
{
    EXPECT_EQ(ReadableColor(1, GrayOf(255)), 1);
    EXPECT_EQ(ReadableColor(1, GrayOf(0)), 1);
    EXPECT_EQ(ReadableColor(7, GrayOf(58)), 7);
}

TEST(LineColors, AllAreReadableOnEveryGrey)
{
    for (int color = 0; color < 256; ++color) {
        const auto index = static_cast<unsigned char>(color);
        const std::vector<unsigned char> listed = ReadableColors(index);
        EXPECT_EQ(listed.front(), index);
        std::set<unsigned char> met{index};
        for (int tone = 0; tone < 256; ++tone) {
            const unsigned char shown = ReadableColor(index, GrayOf(tone));
            EXPECT_GE(ContrastOf(PaletteColor(shown), GrayOf(tone)), kMinContrast) << color << " on " << tone;
            met.insert(shown);
        }
        EXPECT_EQ(met, std::set<unsigned char>(listed.begin(), listed.end())) << color;
    }
}

/// A drawing: a cross of lines in each of these colours.
Model DrawingOf(const std::vector<unsigned char>& colors)
{
    Model model;
    for (const unsigned char color : colors) {
        const auto x = static_cast<double>(model.pieces.size());
        Piece& piece = model.pieces.emplace_back();
        piece.color = color;
        piece.lines = {{{x, 0, 0}, {x + 0.8, 0, 0}}, {{x + 0.4, -0.4, 0}, {x + 0.4, 0.4, 0}}};
    }
    return model;
}

/// The pixel in these columns that differs most from the ground.
Rgb MostDistinct(const Picture& picture, int first_column, int end_column)
{
    const auto to_rgb = [](std::uint32_t pixel) {
        return Rgb{(pixel >> 16U & 0xFFU) / 255.0, (pixel >> 8U & 0xFFU) / 255.0, (pixel & 0xFFU) / 255.0};
    };
    const Rgb ground = to_rgb(PixelAt(picture, 0, 0));
    Rgb best = ground;
    for (int row = 0; row < picture.height; ++row)
        for (int column = first_column; column < end_column; ++column) {
            const Rgb pixel = to_rgb(PixelAt(picture, column, row));
            if (ContrastOf(pixel, ground) > ContrastOf(best, ground))
                best = pixel;
        }
    return best;
}

constexpr int kGroundWidth = 400;

const std::vector<unsigned char> kLineColors = {7, 250, 5, 252};
constexpr std::array<std::array<int, 3>, 5> kGrounds = {
    {{58, 62, 68}, {255, 255, 255}, {90, 90, 90}, {0, 0, 0}, {132, 132, 132}}};

Rgb ToRgb(const std::array<int, 3>& color)
{
    return {color[0] / 255.0, color[1] / 255.0, color[2] / 255.0};
}

TEST(LinesOnGrounds, AreReadableOnEveryGroundThatIsFixed)
{
    UseHeadless();
    for (const auto& ground : kGrounds) {
        ViewportWindow view(L"test", PictureSize{kGroundWidth, 100}, false);
        view.Control().SetBgColor(ground[0], ground[1], ground[2]);
        FittedScene scene(view.Control(), DrawingOf(kLineColors));
        for (const bool lines : {false, true}) {
            scene.DrawLines(lines);
            scene.Show(StandardView::Top, Projection::Parallel, 4.0);
            EXPECT_EQ(view.Control().entities.size(), kLineColors.size()) << "each fed once";
            for (const KARVGraphicalEntity& entity : view.Control().entities)
                EXPECT_GE(ContrastOf({entity.color.x, entity.color.y, entity.color.z}, ToRgb(ground)), 2.0);
            const Picture picture = view.TakePicture();
            EXPECT_TRUE(
                std::ranges::any_of(picture.pixels, [&](std::uint32_t p) { return p != picture.pixels[0]; }));
        }
    }
}

/// The pictures of a model in both modes: fed for the ground, and fed for another one that then changed.
void ExpectSamePictures(const Model& model)
{
    for (const auto& ground : kGrounds)
        for (const bool lines : {false, true}) {
            std::vector<Picture> pictures;
            for (const bool changes : {false, true}) {
                ViewportWindow view(L"test", PictureSize{kGroundWidth, 100}, false);
                const auto& [red, green, blue] = changes ? kGrounds[1] : ground;
                view.Control().SetBgColor(red, green, blue);
                FittedScene scene(view.Control(), model, {}, changes ? Ground::Changing : Ground::Fixed);
                scene.DrawLines(lines);
                if (changes)
                    for (const auto& next : {kGrounds[0], kGrounds[3], ground})
                        scene.SetGround(next[0], next[1], next[2]);
                scene.Show(StandardView::SE, Projection::Parallel, 4.0);
                pictures.push_back(view.TakePicture());
            }
            EXPECT_EQ(pictures[0].pixels, pictures[1].pixels) << ground[0] << (lines ? " lines" : " faces");
        }
}

TEST(LinesOnGrounds, OfADrawingFollowTheGround)
{
    UseHeadless();
    ExpectSamePictures(DrawingOf(kLineColors));
}

Model SolidAndSurface(unsigned char color)
{
    Model model = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
    model.pieces.push_back(
        MakePiece("square", {MakeFace({{3, 0, 1}, {4, 0, 1}, {4, 1, 1}, {3, 1, 1}}).value()}));
    for (Piece& piece : model.pieces)
        piece.color = color;
    return model;
}

TEST(LinesOnGrounds, OfSolidsAndSurfacesFollowTheGroundInLineMode)
{
    UseHeadless();
    for (const unsigned char color : kLineColors)
        ExpectSamePictures(SolidAndSurface(color));
}

TEST(LinesOnGrounds, OfSolidsAndSurfacesAreReadableInLineMode)
{
    UseHeadless();
    for (const auto& ground : kGrounds)
        for (const unsigned char color : kLineColors) {
            ViewportWindow view(L"test", PictureSize{kGroundWidth, 100}, false);
            view.Control().SetBgColor(ground[0], ground[1], ground[2]);
            FittedScene scene(view.Control(), SolidAndSurface(color));
            scene.DrawLines(true);
            scene.Show(StandardView::Top, Projection::Parallel, 4.0);
            const Picture picture = view.TakePicture();
            for (const int half : {0, 1}) {
                const Rgb seen =
                    MostDistinct(picture, half * kGroundWidth / 2, (half + 1) * kGroundWidth / 2);
                // The colour of the line contrasts by kMinContrast. Where the line lies between two rows of
                // pixels, smoothing mixes it with the ground by halves.
                EXPECT_GE(ContrastOf(seen, ToRgb(ground)), 1.3) << ground[0] << " colour " << int{color};
            }
        }
}

} // namespace
} // namespace viewer
