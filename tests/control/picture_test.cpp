// From geometry to pixels: real frames of real windows, checked by chosen pixels.
//
// Lighting: the light shines along the line of sight, so a side seen face on has its full colour plus the
// white highlight of 0.5. Red face on is (1, 0.5, 0.5).
#include "tests/control/shared_constants.h"
#include "tests/support/control_test.h"

#include "platform/host/db/entities.h"
#include "platform/winsys/opengl.h"

#include <algorithm>
#include <array>
#include <cstdlib>

using namespace karv_test;

namespace
{

/// The colour index of a lit surface by its brightest channels, 0 for the black background. A full channel is
/// at least half again as bright as the highlight alone.
int HueOf(const Pixel& pixel)
{
    const int brightest = std::max({pixel.red, pixel.green, pixel.blue});
    if (brightest < 40)
        return 0;
    const auto stands_out = [&](int channel) { return 4 * channel > 3 * brightest; };
    const int bits = (stands_out(pixel.red) ? 4 : 0) + (stands_out(pixel.green) ? 2 : 0) +
                     (stands_out(pixel.blue) ? 1 : 0);
    constexpr std::array<int, 8> kIndexOfBits = {0, kBlue, kGreen, kCyan, kRed, kMagenta, kYellow, 7};
    return kIndexOfBits[static_cast<std::size_t>(bits)];
}

/// The number of pixels of this hue.
int CountHue(const Picture& picture, int hue)
{
    int count = 0;
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            count += HueOf(picture.At(x, y)) == hue ? 1 : 0;
    return count;
}

/// A rectangle in the plane y = `depth`, clockwise seen from the front (-Y).
KARVGLFace FrontRectangle(double left, double bottom, double right, double top, double depth)
{
    return MakeFace({{left, depth, bottom}, {left, depth, top}, {right, depth, top}, {right, depth, bottom}},
                    {0.0, -1.0, 0.0});
}

/// A triangle in the plane y = `depth`, clockwise seen from the front.
KARVGLFace FrontTriangle(KARVGLVertex a, KARVGLVertex b, KARVGLVertex c)
{
    return MakeFace({a, b, c}, {0.0, -1.0, 0.0});
}

class ControlPicture : public ControlTest
{
  protected:
    ControlPicture() { Open(false); }

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    /// Makes a control with a black background and a scene from (0, 0, 0) to (0.2, 0.2, 0.2): centre 0.1,
    /// diagonal 0.34641, size 0.41569. The eye of a standard view is that far from the centre.
    void Open(bool transparent)
    {
        control_.reset(); // first, because a control that is destroyed leaves no context current
        control_ = NewControl(transparent, kSide, kSide);
        control_->SetBgColor(0, 0, 0);
        control_->ComputeExtents(false);
        control_->OverrideExtents({0.0, 0.0, 0.0}, {0.2, 0.2, 0.2});
    }

    void Append(const KARVGLFace& face, int color, float alpha = 1.0F, int type = 0)
    {
        control_->AppendGeometry({face}, TypeOf(type), static_cast<unsigned short>(color), alpha);
    }

    /// A frame from this standard view.
    Picture View(void (KARVOpenGLControl::*command)())
    {
        ((*control_).*command)();
        control_->OnDraw(nullptr);
        return Frame(*control_);
    }

    Picture Front() { return View(&KARVOpenGLControl::CameraViewFront); }

    /// The cube from 0.05 to 0.15, each side in its own colour, clockwise seen from outside.
    void AppendColoredCube()
    {
        const double a = 0.05;
        const double b = 0.15;
        Append(MakeFace({{a, a, b}, {a, b, b}, {b, b, b}, {b, a, b}}, {0.0, 0.0, 1.0}), kRed);     // top
        Append(MakeFace({{a, a, a}, {b, a, a}, {b, b, a}, {a, b, a}}, {0.0, 0.0, -1.0}), kYellow); // bottom
        Append(MakeFace({{a, a, a}, {a, a, b}, {b, a, b}, {b, a, a}}, {0.0, -1.0, 0.0}), kGreen);  // front
        Append(MakeFace({{b, b, a}, {b, b, b}, {a, b, b}, {a, b, a}}, {0.0, 1.0, 0.0}), kCyan);    // back
        Append(MakeFace({{a, b, a}, {a, b, b}, {a, a, b}, {a, a, a}}, {-1.0, 0.0, 0.0}), kBlue);   // left
        Append(MakeFace({{b, a, a}, {b, a, b}, {b, b, b}, {b, b, a}}, {1.0, 0.0, 0.0}), kMagenta); // right
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

TEST_F(ControlPicture, AnEmptySceneIsItsBackground)
{
    control_->SetBgColor(20, 130, 240);
    const Picture picture = Front();
    EXPECT_EQ(picture.CountOtherThan({20, 130, 240}), 0);
}

TEST_F(ControlPicture, AFaceSeenFaceOnHasItsColorAndTheHighlight)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed);
    EXPECT_TRUE(IsNear(Front().At(kMiddle, kMiddle), kRedFaceOn)) << Front().At(kMiddle, kMiddle);
}

TEST_F(ControlPicture, AFaceLiesWhereThePerspectivePutsIt)
{
    // The face lies in the plane of the target, 0.41569 from the eye, where half the picture's height is
    // 0.41569 x tan 20 degrees = 0.1513. Its half side of 0.05 is 0.05 / 0.1513 x 48 = 15.9 pixels.
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed);
    const Picture picture = Front();
    EXPECT_EQ(HueOf(picture.At(kMiddle - 14, kMiddle + 14)), kRed);
    EXPECT_EQ(HueOf(picture.At(kMiddle + 14, kMiddle - 14)), kRed);
    EXPECT_EQ(HueOf(picture.At(kMiddle - 18, kMiddle)), 0);
    EXPECT_EQ(HueOf(picture.At(kMiddle, kMiddle + 18)), 0);
}

TEST_F(ControlPicture, AClockwiseFaceIsVisible)
{
    Append(FrontTriangle({0.05, 0.1, 0.05}, {0.1, 0.1, 0.15}, {0.15, 0.1, 0.05}), kRed);
    EXPECT_EQ(HueOf(Front().At(kMiddle, kMiddle)), kRed);
}

TEST_F(ControlPicture, TheBackOfAClockwiseFaceIsCulled)
{
    Append(FrontTriangle({0.05, 0.1, 0.05}, {0.1, 0.1, 0.15}, {0.15, 0.1, 0.05}), kRed);
    EXPECT_EQ(View(&KARVOpenGLControl::CameraViewBack).CountOtherThan(kBlack), 0);
}

TEST_F(ControlPicture, ACounterClockwiseFaceIsVisibleFromTheBackAlone)
{
    Append(FrontTriangle({0.15, 0.1, 0.05}, {0.1, 0.1, 0.15}, {0.05, 0.1, 0.05}), kRed);
    EXPECT_EQ(Front().CountOtherThan(kBlack), 0);
    EXPECT_GT(View(&KARVOpenGLControl::CameraViewBack).CountOtherThan(kBlack), 100);
}

TEST_F(ControlPicture, TheNotchOfAnLShapeStaysEmpty)
{
    // An L of three squares of 0.05, its notch at the upper right; corners clockwise from the upper left one.
    // A fan from there would fill the lower left half of the notch.
    const auto corner = [](double x, double z) {
        return KARVGLVertex(0.05 + 0.05 * x, 0.1, 0.05 + 0.05 * z);
    };
    Append(MakeFace({corner(0, 2), corner(1, 2), corner(1, 1), corner(2, 1), corner(2, 0), corner(0, 0)},
                    {0.0, -1.0, 0.0}),
           kRed);
    const Picture picture = Front();
    // A square is 15.9 pixels wide; the inner corner is the middle of the picture.
    EXPECT_EQ(HueOf(picture.At(kMiddle + 3, kMiddle + 3)), 0);
    EXPECT_EQ(HueOf(picture.At(kMiddle + 10, kMiddle + 10)), 0);
    EXPECT_EQ(HueOf(picture.At(kMiddle - 8, kMiddle + 8)), kRed);
    EXPECT_EQ(HueOf(picture.At(kMiddle - 8, kMiddle - 8)), kRed);
    EXPECT_EQ(HueOf(picture.At(kMiddle + 8, kMiddle - 8)), kRed);
}

TEST_F(ControlPicture, NearerFacesHideFartherOnesInAnyOrder)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.05), kGreen);
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.15), kRed);
    EXPECT_EQ(HueOf(Front().At(kMiddle, kMiddle)), kGreen);
}

struct SideView {
    const char* name;
    void (KARVOpenGLControl::*command)();
    int side; ///< colour index
};

void PrintTo(const SideView& view, std::ostream* out)
{
    *out << view.name;
}

class ControlPictureOfSide : public ControlPicture, public testing::WithParamInterface<SideView>
{
};

TEST_P(ControlPictureOfSide, ShowsTheSideItNamesAndNoOther)
{
    AppendColoredCube();
    const Picture picture = View(GetParam().command);
    EXPECT_EQ(HueOf(picture.At(kMiddle, kMiddle)), GetParam().side);
    // The side is 0.36569 from the eye, where half the height is 0.1331: a square of 36 pixels.
    EXPECT_NEAR(CountHue(picture, GetParam().side), 36 * 36, 2 * 36);
    for (const int hue : {kRed, kYellow, kGreen, kCyan, kBlue, kMagenta}) {
        if (hue == GetParam().side)
            continue;
        EXPECT_EQ(CountHue(picture, hue), 0) << hue;
    }
}

INSTANTIATE_TEST_SUITE_P(Six, ControlPictureOfSide,
                         testing::Values(SideView{"Top", &KARVOpenGLControl::CameraViewTop, kRed},
                                         SideView{"Bottom", &KARVOpenGLControl::CameraViewBottom, kYellow},
                                         SideView{"Front", &KARVOpenGLControl::CameraViewFront, kGreen},
                                         SideView{"Back", &KARVOpenGLControl::CameraViewBack, kCyan},
                                         SideView{"Left", &KARVOpenGLControl::CameraViewLeft, kBlue},
                                         SideView{"Right", &KARVOpenGLControl::CameraViewRight, kMagenta}),
                         [](const auto& tested) { return std::string(tested.param.name); });

struct CornerView {
    const char* name;
    void (KARVOpenGLControl::*command)();
    int left_side; ///< colour index of the side at the lower left
    int right_side;
};

void PrintTo(const CornerView& view, std::ostream* out)
{
    *out << view.name;
}

class ControlPictureOfCorner : public ControlPicture, public testing::WithParamInterface<CornerView>
{
};

TEST_P(ControlPictureOfCorner, ShowsTheTopAndTheTwoSidesItNames)
{
    AppendColoredCube();
    const Picture picture = View(GetParam().command);
    // The nearest corner is in the middle. The middle of the top is 0.05 above that of the cube: at 35.264
    // degrees that is 0.05 x cos = 0.041 up the screen and 0.05 x sin = 0.029 nearer to the eye, so at 0.387,
    // where half the height is 0.1408: 14 pixels above the middle. The middles of the two sides are 0.05 x
    // cos 45 = 0.035 aside and 0.05 x sin 45 x sin 35.264 = 0.020 down: 12 pixels aside and 7 below.
    EXPECT_EQ(HueOf(picture.At(kMiddle, kMiddle + 14)), kRed);
    EXPECT_EQ(HueOf(picture.At(kMiddle - 12, kMiddle - 7)), GetParam().left_side);
    EXPECT_EQ(HueOf(picture.At(kMiddle + 12, kMiddle - 7)), GetParam().right_side);
}

/// From the south-east the right of the screen is north-east: the front is at the left, the right side at the
/// right. The other corners follow in turn.
INSTANTIATE_TEST_SUITE_P(Four, ControlPictureOfCorner,
                         testing::Values(CornerView{"SE", &KARVOpenGLControl::CameraViewSE, kGreen, kMagenta},
                                         CornerView{"SW", &KARVOpenGLControl::CameraViewSW, kBlue, kGreen},
                                         CornerView{"NE", &KARVOpenGLControl::CameraViewNE, kMagenta, kCyan},
                                         CornerView{"NW", &KARVOpenGLControl::CameraViewNW, kCyan, kBlue}),
                         [](const auto& tested) { return std::string(tested.param.name); });

class ControlPictureOfTwoSquares : public ControlPicture
{
  protected:
    /// Two squares of one size side by side: a green one in front, a red one at the back.
    ControlPictureOfTwoSquares()
    {
        Append(FrontRectangle(0.02, 0.07, 0.08, 0.13, 0.0), kGreen);
        Append(FrontRectangle(0.12, 0.07, 0.18, 0.13, 0.2), kRed);
    }

    /// The square of this hue has a side of `side` pixels; partly covered edge pixels may count or not.
    static void ExpectSide(const Picture& picture, int hue, double side)
    {
        EXPECT_NEAR(CountHue(picture, hue), side * side, 4.0 * side);
    }
};

TEST_F(ControlPictureOfTwoSquares, InPerspectiveTheNearOneIsLarger)
{
    // The eye is 0.31569 from the near one and 0.51569 from the far one. With tan 20 degrees at 48 pixels
    // their sides of 0.06 are 25.1 and 15.3 pixels.
    const Picture picture = Front();
    ExpectSide(picture, kGreen, 25.1);
    ExpectSide(picture, kRed, 15.3);
}

TEST_F(ControlPictureOfTwoSquares, InParallelBothHaveOneSize)
{
    // Half the picture is half the scene size, 0.20785: a side of 0.06 is 13.9 pixels.
    control_->SetToPerspective(false);
    const Picture picture = Front();
    ExpectSide(picture, kGreen, 13.9);
    ExpectSide(picture, kRed, 13.9);
}

TEST_F(ControlPictureOfTwoSquares, BackInPerspectiveThePictureIsAsBefore)
{
    const Picture before = Front();
    control_->SetToPerspective(false);
    control_->SetToPerspective(true);
    const Picture after = Front();
    EXPECT_EQ(CountHue(after, kGreen), CountHue(before, kGreen));
    EXPECT_EQ(CountHue(after, kRed), CountHue(before, kRed));
}

TEST_F(ControlPictureOfTwoSquares, AParallelPictureIsNotUpsideDown)
{
    control_->SetToPerspective(false);
    Append(FrontRectangle(0.02, 0.15, 0.08, 0.18, 0.0), kBlue); // above the near square
    const Picture picture = Front();
    // 0.065 above the middle, at 48 / 0.20785 pixels a unit: 15 pixels; 0.05 left of it: 11.5 pixels.
    EXPECT_EQ(HueOf(picture.At(kMiddle - 12, kMiddle + 15)), kBlue);
    EXPECT_EQ(HueOf(picture.At(kMiddle - 12, kMiddle - 15)), 0);
}

TEST_F(ControlPictureOfTwoSquares, AParallelZoomOfAHalfDoublesTheSizes)
{
    control_->SetToPerspective(false);
    control_->zoomFactor = 0.5F;
    ExpectSide(Front(), kGreen, 2 * 13.9);
}

TEST_F(ControlPictureOfTwoSquares, ANarrowFieldOfViewEnlarges)
{
    const int before = CountHue(Front(), kGreen);
    control_->fieldOfView = 30.0F; // (tan 20 / tan 15) squared = 1.85
    EXPECT_NEAR(CountHue(Front(), kGreen), 1.85 * before, 0.15 * before);
}

TEST_F(ControlPicture, AHiddenCategoryIsGoneAndComesBack)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed, 1.0F, 4);
    EXPECT_EQ(HueOf(Front().At(kMiddle, kMiddle)), kRed);
    control_->DisableObject(TypeOf(4));
    EXPECT_EQ(Front().CountOtherThan(kBlack), 0);
    control_->EnableObject(TypeOf(4));
    EXPECT_EQ(HueOf(Front().At(kMiddle, kMiddle)), kRed);
}

TEST_F(ControlPicture, ClearedGeometryIsGone)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed);
    control_->ClearGeometry(true);
    EXPECT_EQ(Front().CountOtherThan(kBlack), 0);
}

TEST_F(ControlPicture, LineModeShowsLinesInTheirColorAndNoFaces)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed);
    AcDbLine line({0.0, 0.1, 0.1}, {0.2, 0.1, 0.1});
    line.setColorIndex(kGreen);
    control_->AppendGeometry(&line, TypeOf(0));
    control_->SetRenderMode(KARVGLRenderModeLines);
    const Picture picture = Front();
    EXPECT_EQ(CountHue(picture, kRed), 0);
    // In the plane of the target half of its length, 0.1, is 0.1 / 0.1513 x 48 = 31.7 pixels, on one or two
    // rows.
    EXPECT_TRUE(HueOf(picture.At(20, kMiddle)) == kGreen || HueOf(picture.At(20, kMiddle - 1)) == kGreen);
    EXPECT_EQ(HueOf(picture.At(20, kMiddle + 5)), 0);
    EXPECT_EQ(HueOf(picture.At(12, kMiddle)), 0);
    EXPECT_GT(CountHue(picture, kGreen), 60);
}

TEST_F(ControlPicture, FaceModeShowsBoth)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed);
    AcDbLine line({0.0, 0.05, 0.1}, {0.2, 0.05, 0.1});
    line.setColorIndex(kGreen);
    control_->AppendGeometry(&line, TypeOf(0));
    const Picture picture = Front();
    EXPECT_GT(CountHue(picture, kRed), 500);
    EXPECT_GT(CountHue(picture, kGreen), 60);
}

TEST_F(ControlPicture, WithTheLightsOffAFaceHasItsPlainColor)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed);
    control_->SetLightsOff(true);
    EXPECT_TRUE(IsNear(Front().At(kMiddle, kMiddle), {255, 0, 0})); // without the highlight
    control_->SetLightsOff(false);
    EXPECT_TRUE(IsNear(Front().At(kMiddle, kMiddle), kRedFaceOn));
}

TEST_F(ControlPicture, WithTheLightsOffAndALineOnlyAmbientLightIsLeft)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed);
    AcDbLine line({0.0, 0.1, 0.19}, {0.2, 0.1, 0.19});
    control_->AppendGeometry(&line, TypeOf(0));
    control_->SetLightsOff(true);
    EXPECT_TRUE(IsNear(Front().At(kMiddle, kMiddle), {255, 0, 0})); // the line is drawn after the face
    EXPECT_TRUE(IsNear(Front().At(kMiddle, kMiddle), {51, 0, 0}));  // the global ambient light is 0.2
}

TEST_F(ControlPicture, ASlantedFaceIsDarker)
{
    AppendColoredCube();
    const Pixel face_on = View(&KARVOpenGLControl::CameraViewTop).At(kMiddle, kMiddle);
    const Pixel slanted = View(&KARVOpenGLControl::CameraViewSE).At(kMiddle, kMiddle + 14);
    EXPECT_EQ(face_on.red, 255);
    // The light falls at a cosine of 0.577: 0.577 + 0.2 + 0.01 + 0.5 x 0.577^5 = 0.819.
    EXPECT_NEAR(slanted.red, 0.819 * 255.0, 4.0);
}

TEST_F(ControlPicture, NormalsNeedNotHaveUnitLength)
{
    KARVGLFace face = FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1);
    face.normal = {0.0, -0.001, 0.0};
    Append(face, kRed);
    EXPECT_TRUE(IsNear(Front().At(kMiddle, kMiddle), kRedFaceOn));
}

TEST_F(ControlPicture, ATransparentControlBlendsByTheOpacity)
{
    Open(true);
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.15), kRed);
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.05), kBlue, 0.5F);
    // (0.5, 0.5, 1) at half opacity over (1, 0.5, 0.5) at half opacity.
    EXPECT_TRUE(IsNear(Front().At(kMiddle, kMiddle), {191, 128, 191}, 3)) << Front().At(kMiddle, kMiddle);
}

TEST_F(ControlPicture, ATransparentControlDrawsInTheOrderOfAppending)
{
    Open(true);
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.05), kBlue);
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.15), kRed); // behind, and drawn over it
    EXPECT_EQ(HueOf(Front().At(kMiddle, kMiddle)), kRed);
}

TEST_F(ControlPicture, ATransparentControlShowsBacksToo)
{
    Open(true);
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.1), kRed);
    EXPECT_GT(View(&KARVOpenGLControl::CameraViewBack).CountOtherThan(kBlack), 500);
}

TEST_F(ControlPicture, AnOpaqueControlIgnoresTheOpacity)
{
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.15), kRed);
    Append(FrontRectangle(0.05, 0.05, 0.15, 0.15, 0.05), kBlue, 0.5F);
    EXPECT_TRUE(IsNear(Front().At(kMiddle, kMiddle), {128, 128, 255})) << Front().At(kMiddle, kMiddle);
}

class ControlPictureOfEdge : public ControlPicture
{
  protected:
    /// The pixels that are neither background nor face, of a face with slanted edges.
    int BlendedPixels()
    {
        Append(FrontTriangle({0.05, 0.1, 0.05}, {0.08, 0.1, 0.15}, {0.15, 0.1, 0.06}), kRed);
        const Picture picture = Front();
        int blended = 0;
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                const Pixel pixel = picture.At(x, y);
                blended += IsNear(pixel, kBlack, 4) || IsNear(pixel, kRedFaceOn, 4) ? 0 : 1;
            }
        }
        return blended;
    }
};

TEST_F(ControlPictureOfEdge, MultisamplingBlendsEdges)
{
    // The edges cross some 80 rows and columns, most with a partly covered pixel.
    EXPECT_GT(BlendedPixels(), 40);
}

TEST_F(ControlPictureOfEdge, ASlowSceneHasHardEdges)
{
    control_->framesPerSecond = 1;
    EXPECT_EQ(BlendedPixels(), 0);
}

} // namespace
