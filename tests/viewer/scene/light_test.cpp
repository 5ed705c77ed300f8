// The lights of a control, by the pixels of a cube.
#include "viewer/scene/light.h"

#include "tests/viewer/test_support.h"
#include "viewer/scene/fitted_scene.h"
#include "viewer/window/viewport_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

constexpr int kLightWindow = 200;
constexpr std::uint32_t kBlackGround = 0;

/// A window on black with a cube without edges.
class LightOnACube : public testing::Test
{
  protected:
    static void SetUpTestSuite() { UseHeadless(); }

    void Feed(unsigned char color, const std::vector<Segment>& lines = {})
    {
        view_.Control().MakeCurrent();
        view_.Control().SetBgColor(0, 0, 0);
        Model model = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
        model.pieces[0].color = color;
        model.pieces[0].lines = lines;
        scene_ = std::make_unique<FittedScene>(view_.Control(), model);
        scene_->DrawEdges(false);
    }

    /// The colours of at least a percent of the pixels, from dark to light, without black.
    std::vector<int> TonesFrom(StandardView view)
    {
        scene_->Show(view, Projection::Parallel, 1.0);
        std::map<std::uint32_t, int> counts;
        for (const std::uint32_t pixel : view_.TakePicture().pixels)
            ++counts[pixel];
        std::vector<int> tones;
        for (const auto& [pixel, count] : counts)
            if (pixel != kBlackGround && count > kLightWindow * kLightWindow / 100)
                tones.push_back(static_cast<int>(pixel & 0xFFU));
        return tones;
    }

    ViewportWindow view_{L"test", PictureSize{kLightWindow, kLightWindow}, false};
    std::unique_ptr<FittedScene> scene_;
};

constexpr std::array kCornerViews = {StandardView::SE, StandardView::SW, StandardView::NE, StandardView::NW};
constexpr unsigned char kWhiteCube = 7;
constexpr unsigned char kGrayCube = 253; ///< 173, 173, 173

TEST_F(LightOnACube, OverTheShoulderGivesThreeShadesFromEveryCorner)
{
    Feed(kGrayCube);
    SetLight(Light::Shoulder);
    for (const StandardView view : kCornerViews) {
        const std::vector<int> tones = TonesFrom(view);
        ASSERT_EQ(tones.size(), 3U) << NameOf(view);
        EXPECT_GE(tones[1], tones[0] + 25) << NameOf(view);
        EXPECT_GE(tones[2], tones[1] + 25) << NameOf(view);
    }
}

// By OpenGL's formula, with the light's direction l, the side's normal n and h half-way between l and the
// eye: color * (0.36 + 0.01 + 0.59 n.l) + 0.08 * 0.5 * (n.h)^5. The sides differ in n alone.
TEST_F(LightOnACube, OverTheShoulderGivesTheTonesThatTheFormulaGives)
{
    Feed(kGrayCube);
    SetLight(Light::Shoulder);
    // Seen from a corner: top (0, 0.816, 0.577), sides (-0.707, -0.408, 0.577) and (0.707, -0.408, 0.577).
    // n.l is 0.884, 0.452, 0.121; n.h is 0.761, 0.536, 0.364.
    const std::vector<int> tones = TonesFrom(StandardView::SE);
    ASSERT_EQ(tones.size(), 3U);
    EXPECT_NEAR(tones[2], 173 * (0.37 + 0.59 * 0.884) + 255 * 0.04 * 0.255, 2.0);
    EXPECT_NEAR(tones[1], 173 * (0.37 + 0.59 * 0.452) + 255 * 0.04 * 0.044, 2.0);
    EXPECT_NEAR(tones[0], 173 * (0.37 + 0.59 * 0.121) + 255 * 0.04 * 0.006, 2.0);
}

TEST_F(LightOnACube, OverTheShoulderBurnsOutNoWhiteSideFromAnyView)
{
    Feed(kWhiteCube);
    SetLight(Light::Shoulder);
    for (const StandardView view : kStandardViews) {
        const std::vector<int> tones = TonesFrom(view);
        ASSERT_FALSE(tones.empty());
        EXPECT_LT(tones.back(), 255) << NameOf(view);
    }
}

TEST_F(LightOnACube, OverTheShoulderBurnsOutNoWhiteFaceOfAnyDirection)
{
    // A sphere of triangles.
    constexpr int kSteps = 48;
    Model model;
    std::vector<ModelFace> faces;
    const auto at = [](int up, int around) {
        const double height = std::numbers::pi * up / kSteps;
        const double turn = 2.0 * std::numbers::pi * around / kSteps;
        return Point{std::sin(height) * std::cos(turn), std::sin(height) * std::sin(turn), std::cos(height)};
    };
    for (int up = 0; up < kSteps; ++up)
        for (int around = 0; around < kSteps; ++around)
            if (auto face = MakeFace(
                    {at(up, around), at(up + 1, around), at(up + 1, around + 1), at(up, around + 1)}))
                faces.push_back(std::move(*face));
    model.pieces.push_back(MakePiece("sphere", std::move(faces), 0, kWhiteCube));
    view_.Control().MakeCurrent();
    view_.Control().SetBgColor(0, 0, 0);
    FittedScene scene(view_.Control(), model);
    scene.DrawEdges(false);
    for (const Light light : {Light::Shoulder, Light::Eye}) {
        SetLight(light);
        scene.Show(StandardView::Front, Projection::Parallel, 1.0);
        const Picture picture = view_.TakePicture();
        const std::uint32_t lightest = *std::ranges::max_element(picture.pixels);
        if (light == Light::Shoulder)
            EXPECT_LT(lightest & 0xFFU, 255U);
        else
            EXPECT_EQ(lightest & 0xFFU, 255U) << "the control's own light does";
    }
}

TEST_F(LightOnACube, OfTheEyeIsTheOneThatTheControlHasFromTheStart)
{
    Feed(kGrayCube);
    std::vector<std::vector<int>> own;
    for (const StandardView view : kStandardViews)
        own.push_back(TonesFrom(view));
    for (const Light before : {Light::Shoulder, Light::None}) {
        SetLight(before);
        SetLight(Light::Eye);
        for (std::size_t i = 0; i < own.size(); ++i)
            EXPECT_EQ(TonesFrom(kStandardViews.at(i)), own[i]);
    }
}

TEST_F(LightOnACube, NoneShowsTheOwnColorInEveryFrame)
{
    // The control turns lighting on again after it has drawn lines.
    Feed(kGrayCube, {{{0, 0, 1.1}, {1, 1, 1.1}}});
    for (const Light before : {Light::Shoulder, Light::Eye}) {
        SetLight(before);
        scene_->Show(StandardView::SE, Projection::Parallel, 1.0);
        const Picture lit = view_.TakePicture();
        SetLight(Light::None);
        const Picture first = view_.TakePicture();
        EXPECT_NE(first.pixels, lit.pixels);
        EXPECT_EQ(view_.TakePicture().pixels, first.pixels);
        EXPECT_EQ(view_.TakePicture().pixels, first.pixels);
        EXPECT_EQ(TonesFrom(StandardView::SE), std::vector<int>{173});
        SetLight(before);
        EXPECT_EQ(view_.TakePicture().pixels, lit.pixels);
    }
}

TEST_F(LightOnACube, StaysWithTheViewer)
{
    Feed(kGrayCube);
    scene_->Show(StandardView::NW, Projection::Perspective, 1.0);
    SetLight(Light::Shoulder);
    const std::vector<int> first = TonesFrom(StandardView::SE);
    scene_->Show(StandardView::Bottom, Projection::Parallel, 1.0);
    SetLight(Light::Shoulder);
    EXPECT_EQ(TonesFrom(StandardView::SE), first) << "wherever the camera was when it was set";
    EXPECT_EQ(TonesFrom(StandardView::NW), first);
}

} // namespace
} // namespace viewer
