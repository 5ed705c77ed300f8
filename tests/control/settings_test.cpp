// The render settings: background, lights, metrics factor and the debug cube.
#include "tests/support/control_test.h"

#include "platform/host/db/entities.h"
#include "platform/winsys/opengl.h"

#include <limits>

using namespace karv_test;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace
{

class ControlSettings : public ControlTest
{
  protected:
    ControlSettings() : control_(NewControl()) {}

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

TEST_F(ControlSettings, TheBackgroundIsAppliedAtOnce)
{
    const GlRecording gl;
    control_->SetBgColor(255, 51, 0);
    EXPECT_THAT(gl.Listing(), ElementsAre("glClearColor(1, 0.2, 0, 1)", "glClearDepth(1)"));
}

TEST_F(ControlSettings, TheBackgroundIsCutToEightBits)
{
    control_->SetBgColor(256, -1, 128);
    // 256 is cut to 0, -1 to 255, and 128 / 255 = 0.50196.
    EXPECT_EQ(control_->backgroundColor[0], 0.0F);
    EXPECT_EQ(control_->backgroundColor[1], 1.0F);
    EXPECT_EQ(control_->backgroundColor[2], static_cast<float>(128.0 * 0.00392156862745098));
}

TEST_F(ControlSettings, EveryByteOfTheBackgroundIsScaledInDoubleAndRoundedOnce)
{
    constexpr double kPerByte = 0.00392156862745098;
    ASSERT_NE(static_cast<float>(3.0 * kPerByte), 3.0F * static_cast<float>(kPerByte));
    for (int byte = 0; byte < 256; ++byte) {
        const GlRecording gl;
        control_->SetBgColor(byte, byte, byte);
        const auto channel = static_cast<double>(static_cast<float>(byte * kPerByte));
        EXPECT_THAT(gl.Call("glClearColor").values, ElementsAre(channel, channel, channel, 1.0));
    }
}

TEST_F(ControlSettings, TheExtremesOfAnIntegerAreCutToo)
{
    control_->SetBgColor(std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 511);
    EXPECT_THAT(control_->backgroundColor, ElementsAre(1.0F, 0.0F, 1.0F)); // 0x7FFFFFFF, 0x80000000, 0x1FF
}

TEST_F(ControlSettings, TheBackgroundShowsInTheNextFrame)
{
    control_->SetBgColor(10, 200, 30);
    EXPECT_TRUE(IsNear(Frame(*control_).At(0, 0), {10, 200, 30}));
}

TEST_F(ControlSettings, LightsGoOff)
{
    const GlRecording gl;
    control_->SetLightsOff(true);
    EXPECT_THAT(gl.Listing(), ElementsAre("glDisable(GL_LIGHT0)", "glDisable(GL_LIGHTING)"));
}

TEST_F(ControlSettings, LightsGoOn)
{
    const GlRecording gl;
    control_->SetLightsOff(false);
    EXPECT_THAT(gl.Listing(), ElementsAre("glEnable(GL_LIGHT0)", "glEnable(GL_LIGHTING)"));
}

TEST_F(ControlSettings, LightsThatAreOffStayOffThroughFramesOfFaces)
{
    control_->AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), 1, 1.0F);
    control_->SetLightsOff(true);
    control_->OnTimer(1);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
}

TEST_F(ControlSettings, ALineTurnsLightingOnAgainWithTheLightStillOff)
{
    AcDbLine line({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    control_->AppendGeometry(&line, TypeOf(0));
    control_->SetLightsOff(true);
    control_->OnTimer(1);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
}

TEST_F(ControlSettings, AHiddenLineLeavesTheLightsOff)
{
    AcDbLine line({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    control_->AppendGeometry(&line, TypeOf(3));
    control_->DisableObject(TypeOf(3));
    control_->SetLightsOff(true);
    control_->OnTimer(1);
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
}

TEST_F(ControlSettings, TheMetricsFactorIsKeptAndCallsNothing)
{
    const GlRecording gl;
    control_->SetMetricsFactor(25.4);
    EXPECT_EQ(control_->metricsFactor, 25.4);
    EXPECT_TRUE(gl.Calls().empty());
}

TEST_F(ControlSettings, TheDebugCubeIsSixSidesFromAFixedTable)
{
    const GlRecording gl;
    control_->DrawDebugCubeAt({1.0, 2.0, 3.0}, 4.0F); // half the size is 2
    EXPECT_THAT(gl.Listing(), ElementsAreArray({"glPushMatrix()",        "glTranslatef(1, 2, 3)",
                                                "glRotatef(0, 1, 0, 0)", "glRotatef(0, 0, 1, 0)",
                                                "glRotatef(0, 0, 0, 1)", "glColor3f(0, 0, 1)",
                                                "glBegin(GL_QUADS)",     "glNormal3f(0, 0, 2)",
                                                "glVertex3f(-2, -2, 2)", "glVertex3f(2, -2, 2)",
                                                "glVertex3f(2, 2, 2)",   "glVertex3f(-2, 2, 2)",
                                                "glNormal3f(0, 0, -2)",  "glVertex3f(-2, -2, -2)",
                                                "glVertex3f(-2, 2, -2)", "glVertex3f(2, 2, -2)",
                                                "glVertex3f(2, -2, -2)", "glNormal3f(0, 2, 0)",
                                                "glVertex3f(-2, 2, -2)", "glVertex3f(-2, 2, 2)",
                                                "glVertex3f(2, 2, 2)",   "glVertex3f(2, 2, -2)",
                                                "glNormal3f(0, -2, 0)",  "glVertex3f(-2, -2, -2)",
                                                "glVertex3f(2, -2, -2)", "glVertex3f(2, -2, 2)",
                                                "glVertex3f(-2, -2, 2)", "glNormal3f(2, 0, 0)",
                                                "glVertex3f(2, -2, -2)", "glVertex3f(2, 2, -2)",
                                                "glVertex3f(2, 2, 2)",   "glVertex3f(2, -2, 2)",
                                                "glNormal3f(-2, 0, 0)",  "glVertex3f(-2, -2, -2)",
                                                "glVertex3f(-2, -2, 2)", "glVertex3f(-2, 2, 2)",
                                                "glVertex3f(-2, 2, -2)", "glEnd()",
                                                "glPopMatrix()"}));
    EXPECT_EQ(control_->debugCubeAngle, 1);
}

TEST_F(ControlSettings, TheDebugCubeTurnsByADegreeEachTime)
{
    control_->DrawDebugCubeAt({0.0, 0.0, 0.0}, 1.0F);
    control_->DrawDebugCubeAt({0.0, 0.0, 0.0}, 1.0F);
    const GlRecording gl;
    control_->DrawDebugCubeAt({0.0, 0.0, 0.0}, 1.0F);
    EXPECT_EQ(gl.Call("glRotatef", 0).text, "glRotatef(2, 1, 0, 0)");
    EXPECT_EQ(gl.Call("glRotatef", 2).text, "glRotatef(2, 0, 0, 1)");
    EXPECT_EQ(control_->debugCubeAngle, 3);
}

TEST_F(ControlSettings, TheDebugCubeOfNoSizeIsAPoint)
{
    const GlRecording gl;
    control_->DrawDebugCubeAt({0.0, 0.0, 0.0}, 0.0F);
    for (int i = 0; i < 24; ++i)
        EXPECT_EQ(gl.Call("glVertex3f", i).text, "glVertex3f(0, 0, 0)");
}

} // namespace
