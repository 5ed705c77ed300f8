// Solids of the modeler in the viewport: the cache, the totals, the scene's box, and pictures in both modes.
//
// Lighting: a side seen face on has its full colour plus the white highlight of 0.5. Red face on is (1, 0.5,
// 0.5).
#include "tests/control/shared_constants.h"
#include "tests/support/control_test.h"

#include "platform/modeler/primitives.h"
#include "platform/winsys/opengl.h"
#include "tests/support/modeler_hooks.h"

#include <cmath>
#include <stdexcept>

using namespace karv_test;
using AModeler::Body;
using AModeler::MakeBox;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace
{

class ControlBodyFeed : public ControlTest
{
  protected:
    ControlBodyFeed() : control_(NewControl(false, kSide, kSide)) { control_->SetBgColor(0, 0, 0); }

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    void Append(Body body, int color = kRed, float alpha = 1.0F, int type = 0)
    {
        control_->AppendGeometry(&body, TypeOf(type), static_cast<unsigned short>(color), alpha);
    }

    /// A picture from this side of a scene from (0, 0, 0) to (0.2, 0.2, 0.2): the eye is 0.41569 from the
    /// centre.
    Picture View(void (KARVOpenGLControl::*command)())
    {
        control_->OverrideExtents({0.0, 0.0, 0.0}, {0.2, 0.2, 0.2});
        ((*control_).*command)();
        control_->OnDraw(nullptr);
        return Frame(*control_);
    }
    Picture Front() { return View(&KARVOpenGLControl::CameraViewFront); }

    std::unique_ptr<KARVOpenGLControl> control_;
};

/// The cube from 0.05 to 0.15 on each axis.
Body MiddleCube()
{
    return MakeBox({0.05, 0.05, 0.05}, {0.15, 0.15, 0.15});
}

TEST_F(ControlBodyFeed, ABodyBecomesOneEntityWithTypeColorAndOpacity)
{
    Append(MakeBox({0, 0, 0}, {1, 1, 1}), kGreen, 0.25F, 4);
    ASSERT_EQ(control_->entities.size(), 1U);
    const KARVGraphicalEntity& entity = control_->entities.front();
    EXPECT_EQ(entity.entityType, TypeOf(4));
    EXPECT_EQ(entity.color, KARVGLVertex(0.0, 1.0, 0.0));
    EXPECT_EQ(entity.alpha, 0.25F);
    EXPECT_EQ(entity.faces.size(), 6U);
    EXPECT_EQ(entity.lineVertices.size(), 24U);
}

TEST_F(ControlBodyFeed, AColorIndexIsCutToEightBits)
{
    Append(MakeBox({0, 0, 0}, {1, 1, 1}), 257);
    EXPECT_EQ(control_->entities.at(0).color, KARVGLVertex(1.0, 0.0, 0.0));
}

TEST_F(ControlBodyFeed, AnOpacityIsNotLimited)
{
    Append(MakeBox({0, 0, 0}, {1, 1, 1}), kRed, -3.0F);
    EXPECT_EQ(control_->entities.at(0).alpha, -3.0F);
}

TEST_F(ControlBodyFeed, FacesCountAndEdgesDoNot)
{
    Append(MakeBox({0, 0, 0}, {1, 1, 1}));
    EXPECT_EQ(control_->GetFaceNumber(), 6);
    Append(AModeler::MakePrism({{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}}, {0, 0, 1}));
    EXPECT_EQ(control_->GetFaceNumber(), 11);
}

TEST_F(ControlBodyFeed, AnEmptyBodyIsAnEntityWithoutFaces)
{
    Append(Body());
    EXPECT_EQ(control_->entities.size(), 1U);
    EXPECT_EQ(control_->GetFaceNumber(), 0);
    EXPECT_TRUE(control_->extentsSeeded);
    EXPECT_EQ(control_->extentsMax, KARVGLVertex());
}

TEST_F(ControlBodyFeed, TheBodyGrowsTheScene)
{
    Append(MakeBox({1, 2, 3}, {4, 5, 6}));
    EXPECT_EQ(control_->extentsMin, KARVGLVertex(1.0, 2.0, 3.0));
    EXPECT_EQ(control_->extentsMax, KARVGLVertex(4.0, 5.0, 6.0));
    EXPECT_EQ(control_->centroid, KARVGLVertex(2.5, 3.5, 4.5));
    EXPECT_EQ(control_->sceneSize, 6.235382556915283F); // 1.2 x sqrt 27, the root narrowed first
    EXPECT_EQ(control_->camera.target.x, 2.5);
}

TEST_F(ControlBodyFeed, TheBoxOfABodyBelowTheOriginReachesIt)
{
    Append(MakeBox({-2, -2, -2}, {-1, -1, -1}));
    EXPECT_EQ(control_->extentsMin, KARVGLVertex(-2.0, -2.0, -2.0));
    EXPECT_EQ(control_->extentsMax, KARVGLVertex(0.0, 0.0, 0.0));
    EXPECT_EQ(control_->centroid, KARVGLVertex(-1.0, -1.0, -1.0));
}

TEST_F(ControlBodyFeed, TwoBodiesShareTheScene)
{
    Append(MakeBox({1, 1, 1}, {2, 2, 2}), kRed);
    Append(MakeBox({5, 0, 1}, {6, 1, 2}), kGreen);
    EXPECT_EQ(control_->entities.size(), 2U);
    EXPECT_EQ(control_->extentsMin, KARVGLVertex(1.0, 0.0, 1.0));
    EXPECT_EQ(control_->extentsMax, KARVGLVertex(6.0, 2.0, 2.0));
    EXPECT_EQ(control_->entities[0].color, KARVGLVertex(1.0, 0.0, 0.0));
    EXPECT_EQ(control_->entities[1].color, KARVGLVertex(0.0, 1.0, 0.0));
}

TEST_F(ControlBodyFeed, TheSceneStaysWhereExtentsAreNotComputed)
{
    control_->ComputeExtents(false);
    Append(MakeBox({1, 2, 3}, {4, 5, 6}));
    EXPECT_FALSE(control_->extentsSeeded);
    EXPECT_EQ(control_->sceneSize, 0.0F);
    EXPECT_EQ(control_->entities.size(), 1U);
}

TEST_F(ControlBodyFeed, ABodyInsideTheOldSceneLeavesItAfterAClear)
{
    Append(MakeBox({1, 1, 1}, {9, 9, 9}));
    control_->ClearGeometry(true);
    Append(MakeBox({2, 2, 2}, {3, 3, 3}));
    EXPECT_EQ(control_->entities.size(), 1U);
    EXPECT_EQ(control_->GetFaceNumber(), 12);
    EXPECT_EQ(control_->extentsMin, KARVGLVertex(1.0, 1.0, 1.0));
    EXPECT_EQ(control_->extentsMax, KARVGLVertex(9.0, 9.0, 9.0));
    EXPECT_EQ(control_->centroid, KARVGLVertex(5.0, 5.0, 5.0));
}

TEST_F(ControlBodyFeed, HundredBodiesInARow)
{
    for (int i = 0; i < 100; ++i)
        Append(MakeBox({1.0 + i, 1, 1}, {2.0 + i, 2, 2}));
    EXPECT_EQ(control_->entities.size(), 100U);
    EXPECT_EQ(control_->GetFaceNumber(), 600);
    EXPECT_EQ(control_->extentsMax, KARVGLVertex(101.0, 2.0, 2.0));
}

TEST_F(ControlBodyFeed, AppendingDrawsNothing)
{
    const GlRecording gl;
    Append(MakeBox({0, 0, 0}, {1, 1, 1}));
    EXPECT_THAT(gl.Listing(), IsEmpty());
}

TEST_F(ControlBodyFeed, TheAppendOpensOneEntryAndTheFunnelWithinIt)
{
    const TraceRecording trace;
    Append(Body(), kRed);
    EXPECT_THAT(trace.OutermostCalls(), testing::ElementsAre("KARVOpenGLControl::AppendGeometry"));
    const std::vector<std::string> calls = trace.Calls();
    ASSERT_GE(calls.size(), 5U);
    EXPECT_EQ(calls[1], "KARVGraphicalEntity::KARVGraphicalEntity");
    EXPECT_EQ(calls[2], "KARVGraphicalEntity::CreateGLCache");
    EXPECT_EQ(calls[3], "KARVGraphicalEntity::SetAlpha");
    EXPECT_EQ(calls[4], "KARVOpenGLControl::AddEntityToCache");
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlBodyFeed, AFaultOfTheModelerAppendsWhatWasConverted)
{
    const PlaneHook hook([](int call) {
        if (call == 4)
            throw std::runtime_error("the modeler fails");
    });
    const TraceRecording trace;
    Append(MakeBox({1, 1, 1}, {2, 2, 2}), kRed, 0.5F);
    ASSERT_EQ(control_->entities.size(), 1U);
    EXPECT_EQ(control_->entities[0].faces.size(), 3U);
    EXPECT_THAT(control_->entities[0].lineVertices, IsEmpty());
    EXPECT_EQ(control_->entities[0].alpha, 0.5F);
    EXPECT_EQ(control_->GetFaceNumber(), 3);
    EXPECT_EQ(trace.Faults().size(), 1U);
    EXPECT_THAT(trace.Faults().front(), testing::StartsWith(R"(.\KARVGraphicalEntity.cpp)"));
}

TEST_F(ControlBodyFeed, ADisabledCategoryIsNotDrawn)
{
    control_->ComputeExtents(false);
    Append(MiddleCube(), kRed, 1.0F, 4);
    control_->DisableObject(TypeOf(4));
    EXPECT_EQ(Front().CountOtherThan(kBlack), 0);
    control_->EnableObject(TypeOf(4));
    EXPECT_GT(Front().CountOtherThan(kBlack), 0);
}

TEST_F(ControlBodyFeed, FaceModeDrawsTheFacesAndNotTheEdges)
{
    Append(MiddleCube());
    const GlRecording gl;
    control_->OnTimer(1);
    const std::vector<std::string> listing = gl.Listing();
    EXPECT_THAT(listing, Contains("glBegin(GL_QUADS)").Times(6));
    EXPECT_THAT(listing, Not(Contains("glBegin(GL_LINES)")));
}

TEST_F(ControlBodyFeed, LineModeDrawsTheEdgesAndNotTheFaces)
{
    Append(MiddleCube());
    control_->SetRenderMode(KARVGLRenderModeLines);
    const GlRecording gl;
    control_->OnTimer(1);
    const std::vector<std::string> listing = gl.Listing();
    EXPECT_THAT(listing, Contains("glBegin(GL_LINES)").Times(12));
    EXPECT_THAT(listing, Not(Contains("glBegin(GL_QUADS)")));
}

TEST_F(ControlBodyFeed, EverySideShowsItsOutsideLit)
{
    control_->ComputeExtents(false);
    Append(MiddleCube());
    for (const auto command : {&KARVOpenGLControl::CameraViewFront, &KARVOpenGLControl::CameraViewBack,
                               &KARVOpenGLControl::CameraViewLeft, &KARVOpenGLControl::CameraViewRight,
                               &KARVOpenGLControl::CameraViewTop, &KARVOpenGLControl::CameraViewBottom}) {
        const Picture picture = View(command);
        EXPECT_TRUE(IsNear(picture.At(kMiddle, kMiddle), kRedFaceOn)) << picture.At(kMiddle, kMiddle);
        EXPECT_EQ(picture.At(4, 4), kBlack);
    }
}

TEST_F(ControlBodyFeed, TheSideLiesWhereThePerspectivePutsIt)
{
    control_->ComputeExtents(false);
    Append(MiddleCube());
    const Picture picture = Front();
    // The near side is 0.41569 - 0.05 = 0.36569 from the eye, where half the picture is 0.36569 x tan 20
    // degrees = 0.1331. Its half side of 0.05 is 0.05 / 0.1331 x 48 = 18.0 pixels.
    EXPECT_TRUE(IsNear(picture.At(kMiddle + 15, kMiddle), picture.At(kMiddle - 16, kMiddle), 8));
    EXPECT_NE(picture.At(kMiddle + 15, kMiddle), kBlack);
    EXPECT_EQ(picture.At(kMiddle + 21, kMiddle), kBlack);
    EXPECT_EQ(picture.At(kMiddle, kMiddle + 21), kBlack);
}

TEST_F(ControlBodyFeed, LineModeShowsTheEdges)
{
    control_->ComputeExtents(false);
    Append(MiddleCube());
    control_->SetRenderMode(KARVGLRenderModeLines);
    const Picture picture = Front();
    EXPECT_EQ(picture.At(kMiddle, kMiddle), kBlack); // the middle of the side is open
    int red_on_the_way = 0;
    for (int x = kMiddle; x < kSide; ++x)
        red_on_the_way += picture.At(x, kMiddle).red > 100 ? 1 : 0;
    EXPECT_GE(red_on_the_way, 1); // the edge of the near side, and that of the far side inside it
    EXPECT_LE(red_on_the_way, 6);
    const int drawn = picture.CountOtherThan(kBlack);
    EXPECT_GT(drawn, 4 * 30);
    EXPECT_LT(drawn, 1000);
}

TEST_F(ControlBodyFeed, AHoleShowsWhatIsBehindIt)
{
    // A plate with a hole, seen from above, over a green floor.
    control_->ComputeExtents(false);
    Append(AModeler::MakePrism({{{0.05, 0.05, 0.1}, {0.15, 0.05, 0.1}, {0.15, 0.15, 0.1}, {0.05, 0.15, 0.1}},
                                {{0.08, 0.08, 0.1}, {0.12, 0.08, 0.1}, {0.12, 0.12, 0.1}, {0.08, 0.12, 0.1}}},
                               {0, 0, 0.02}),
           kRed);
    Append(MakeBox({0.06, 0.06, 0.02}, {0.14, 0.14, 0.03}), kGreen);
    const Picture picture = View(&KARVOpenGLControl::CameraViewTop);
    const Pixel middle = picture.At(kMiddle, kMiddle);
    EXPECT_GT(middle.green, 200);
    EXPECT_GT(middle.green, middle.red + 60);
    // 0.035 from the middle, on the upper side of the plate, 0.3957 from the eye: 0.035 / (0.3957 x tan 20) x
    // 48 = 11.7 pixels.
    const Pixel rim = picture.At(kMiddle + 12, kMiddle);
    EXPECT_GT(rim.red, rim.green + 60);
}

TEST_F(ControlBodyFeed, AConcaveBodyShowsNothingInItsNotch)
{
    control_->ComputeExtents(false);
    // An L seen from above; its notch is the upper right quarter.
    Append(AModeler::MakePrism({{{0.05, 0.05, 0.1},
                                 {0.15, 0.05, 0.1},
                                 {0.15, 0.1, 0.1},
                                 {0.1, 0.1, 0.1},
                                 {0.1, 0.15, 0.1},
                                 {0.05, 0.15, 0.1}}},
                               {0, 0, 0.001}));
    const Picture picture = View(&KARVOpenGLControl::CameraViewTop);
    EXPECT_EQ(picture.At(kMiddle + 6, kMiddle + 6), kBlack);
    EXPECT_TRUE(IsNear(picture.At(kMiddle - 6, kMiddle + 6), kRedFaceOn, 20));
    EXPECT_TRUE(IsNear(picture.At(kMiddle - 6, kMiddle - 6), kRedFaceOn, 20));
    EXPECT_TRUE(IsNear(picture.At(kMiddle + 6, kMiddle - 6), kRedFaceOn, 20));
}

} // namespace
