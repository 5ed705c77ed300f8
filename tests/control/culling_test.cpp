// Which entities a frame draws: disabled categories, the test against the lower left corner of the viewport,
// and the render mode.
#include "tests/support/control_test.h"

#include "platform/host/db/entities.h"
#include "platform/winsys/opengl.h"

#include <cstdint>
#include <limits>

using namespace karv_test;
using testing::ElementsAre;
using testing::Pair;

namespace
{

/// A control whose window coordinates equal the model's x and y, so corners are given in pixels.
class ControlCulling : public ControlTest
{
  protected:
    ControlCulling() : control_(NewControl())
    {
        constexpr double kRight = kWidth;
        constexpr double kTop = kHeight;
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0.0, kRight, 0.0, kTop, -10.0, 10.0);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
    }

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    void AppendBox(double min_x, double min_y, double max_x, double max_y, int type = 0)
    {
        control_->AppendGeometry(TriangleInBox({min_x, min_y, 0.0}, {max_x, max_y, 0.0}), TypeOf(type), 1,
                                 1.0F);
    }

    /// The number of entities that a frame draws.
    int Drawn()
    {
        const GlRecording gl;
        control_->GLDrawFrame();
        return gl.Count("glColor4f");
    }

    bool IsDrawn(double min_x, double min_y, double max_x, double max_y)
    {
        AppendBox(min_x, min_y, max_x, max_y);
        return Drawn() == 1;
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

TEST_F(ControlCulling, AnEntityInTheViewportIsDrawn)
{
    EXPECT_TRUE(IsDrawn(10.0, 10.0, 20.0, 20.0));
}

TEST_F(ControlCulling, AnEntityWhollyLeftAndBelowIsSkipped)
{
    EXPECT_FALSE(IsDrawn(-20.0, -20.0, -10.0, -10.0));
}

TEST_F(ControlCulling, AnEntityLeftButNotBelowIsDrawn)
{
    EXPECT_TRUE(IsDrawn(-20.0, 10.0, -10.0, 20.0));
}

TEST_F(ControlCulling, AnEntityBelowButNotLeftIsDrawn)
{
    EXPECT_TRUE(IsDrawn(10.0, -20.0, 20.0, -10.0));
}

TEST_F(ControlCulling, AnEntityWithItsMinimumCornerOutsideAloneIsDrawn)
{
    EXPECT_TRUE(IsDrawn(-10.0, -10.0, 10.0, 10.0));
}

TEST_F(ControlCulling, AnEntityThatReachesInByOneCoordinateOfItsMaximumIsDrawn)
{
    EXPECT_TRUE(IsDrawn(-10.0, -10.0, -5.0, 5.0));
}

TEST_F(ControlCulling, AnEntityToTheRightIsDrawn)
{
    EXPECT_TRUE(IsDrawn(1000.0, 10.0, 1010.0, 20.0));
}

TEST_F(ControlCulling, AnEntityAboveIsDrawn)
{
    EXPECT_TRUE(IsDrawn(10.0, 1000.0, 20.0, 1010.0));
}

TEST_F(ControlCulling, AnEntityBehindTheViewerIsDrawn)
{
    control_->AppendGeometry(TriangleInBox({10.0, 10.0, 50.0}, {20.0, 20.0, 60.0}), TypeOf(0), 1, 1.0F);
    EXPECT_EQ(Drawn(), 1);
}

TEST_F(ControlCulling, ACornerOnTheViewportsOriginIsNotOutside)
{
    EXPECT_TRUE(IsDrawn(-10.0, -10.0, 0.0, 0.0));
}

TEST_F(ControlCulling, TheViewComesBeforeTheProjection)
{
    // The view moves by (20, 20) units, the projection halves them into pixels: the box at -25 to -22 lies at
    // -2.5 to -1. In the other order the view would move by 20 halves of the viewport, past its right and
    // top.
    glMatrixMode(GL_PROJECTION);
    glScaled(0.5, 0.5, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glTranslated(20.0, 20.0, 0.0);
    EXPECT_FALSE(IsDrawn(-25.0, -25.0, -22.0, -22.0));
}

TEST_F(ControlCulling, TheViewportShiftsWindowCoordinates)
{
    // With the viewport at (100, 100) the same box at -10 to -5 lies at 90 to 95 of the window.
    glViewport(100, 100, kWidth, kHeight);
    EXPECT_TRUE(IsDrawn(-10.0, -10.0, -5.0, -5.0));
    control_->ClearGeometry(true);
    EXPECT_FALSE(IsDrawn(-120.0, -120.0, -110.0, -110.0));
}

/// A control with one entity, which projects to window coordinates that the test gives.
class ControlCullingTolerance : public ControlCulling
{
  protected:
    bool IsDrawnAt(double min_x, double min_y, double max_x, double max_y)
    {
        AppendBox(1.0, 1.0, 2.0, 2.0);
        const GlRecording gl;
        const GlAnswer in_place_of_the_library("gluProject", GL_TRUE);
        const GlHook answer("gluProject", [&](int call) {
            const std::vector<double>& values = gl.Calls().back().values;
            *Output(values.at(6)) = call == 1 ? min_x : max_x;
            *Output(values.at(7)) = call == 1 ? min_y : max_y;
            *Output(values.at(8)) = 0.5;
        });
        control_->GLDrawFrame();
        return gl.Count("glColor4f") == 1;
    }

  private:
    static double* Output(double pointer)
    {
        return reinterpret_cast<double*>(static_cast<std::uintptr_t>(pointer));
    }
};

TEST_F(ControlCullingTolerance, AllAtTheToleranceIsDrawn)
{
    EXPECT_TRUE(IsDrawnAt(-1e-20, -1e-20, -1e-20, -1e-20));
}

TEST_F(ControlCullingTolerance, AllWithinTheToleranceIsDrawn)
{
    EXPECT_TRUE(IsDrawnAt(-1e-21, -1e-21, -1e-21, -1e-21));
}

TEST_F(ControlCullingTolerance, AllJustBeyondTheToleranceIsSkipped)
{
    EXPECT_FALSE(IsDrawnAt(-2e-20, -2e-20, -2e-20, -2e-20));
}

TEST_F(ControlCullingTolerance, EachOfTheFourCoordinatesAtTheToleranceAloneKeepsTheEntity)
{
    EXPECT_TRUE(IsDrawnAt(-1e-20, -1.0, -1.0, -1.0));
    control_->ClearGeometry(true);
    EXPECT_TRUE(IsDrawnAt(-1.0, -1e-20, -1.0, -1.0));
    control_->ClearGeometry(true);
    EXPECT_TRUE(IsDrawnAt(-1.0, -1.0, -1e-20, -1.0));
    control_->ClearGeometry(true);
    EXPECT_TRUE(IsDrawnAt(-1.0, -1.0, -1.0, -1e-20));
}

TEST_F(ControlCullingTolerance, NaNIsDrawn)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(IsDrawnAt(nan, -1.0, -1.0, -1.0));
}

TEST_F(ControlCullingTolerance, MinusInfinityIsSkipped)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(IsDrawnAt(-infinity, -infinity, -infinity, -infinity));
}

TEST_F(ControlCulling, EachEnabledEntityIsProjectedTwiceMinimumFirst)
{
    AppendBox(1.0, 2.0, 3.0, 4.0);
    AppendBox(5.0, 6.0, 7.0, 8.0);
    const GlRecording gl;
    control_->GLDrawFrame();
    ASSERT_EQ(gl.Count("gluProject"), 4);
    EXPECT_EQ(gl.Call("gluProject", 0).text, "gluProject(1, 2, 0, ptr, ptr, ptr, ptr, ptr, ptr)");
    EXPECT_EQ(gl.Call("gluProject", 1).text, "gluProject(3, 4, 0, ptr, ptr, ptr, ptr, ptr, ptr)");
    EXPECT_EQ(gl.Call("gluProject", 2).text, "gluProject(5, 6, 0, ptr, ptr, ptr, ptr, ptr, ptr)");
    EXPECT_EQ(gl.Call("gluProject", 3).text, "gluProject(7, 8, 0, ptr, ptr, ptr, ptr, ptr, ptr)");
}

TEST_F(ControlCulling, ASkippedEntityIsProjectedToo)
{
    AppendBox(-20.0, -20.0, -10.0, -10.0);
    const GlRecording gl;
    control_->GLDrawFrame();
    EXPECT_EQ(gl.Count("gluProject"), 2);
}

TEST_F(ControlCulling, ADisabledEntityIsNotProjected)
{
    AppendBox(1.0, 2.0, 3.0, 4.0, 5);
    control_->DisableObject(TypeOf(5));
    const GlRecording gl;
    control_->GLDrawFrame();
    EXPECT_EQ(gl.Count("gluProject"), 0);
    EXPECT_EQ(gl.Count("glColor4f"), 0);
}

TEST_F(ControlCulling, ADisabledCategoryStaysHiddenFrameAfterFrame)
{
    AppendBox(1.0, 2.0, 3.0, 4.0, 5);
    AppendBox(1.0, 2.0, 3.0, 4.0, 6);
    control_->DisableObject(TypeOf(5));
    EXPECT_EQ(Drawn(), 1);
    EXPECT_EQ(Drawn(), 1);
    control_->EnableObject(TypeOf(5));
    EXPECT_EQ(Drawn(), 2);
}

TEST_F(ControlCulling, AnUnknownCategoryIsDrawnAndAddedAsShown)
{
    AppendBox(1.0, 2.0, 3.0, 4.0, 77);
    AppendBox(1.0, 2.0, 3.0, 4.0, -5);
    ASSERT_EQ(control_->disabledTypes.size(), 11U);
    EXPECT_EQ(Drawn(), 2);
    EXPECT_EQ(control_->disabledTypes.size(), 13U);
    EXPECT_THAT(control_->disabledTypes, testing::Contains(Pair(TypeOf(77), false)));
    EXPECT_THAT(control_->disabledTypes, testing::Contains(Pair(TypeOf(-5), false)));
}

TEST_F(ControlCulling, AnUnknownCategoryIsAddedOnlyWhenAFrameMeetsIt)
{
    AppendBox(1.0, 2.0, 3.0, 4.0, 77);
    EXPECT_EQ(control_->disabledTypes.size(), 11U);
}

TEST_F(ControlCulling, ASkippedEntityOfAnUnknownCategoryIsAddedToo)
{
    AppendBox(-20.0, -20.0, -10.0, -10.0, 77);
    control_->GLDrawFrame();
    EXPECT_EQ(control_->disabledTypes.size(), 12U);
}

TEST_F(ControlCulling, AnEmptyEntityIsProjectedAtTheOriginAndSendsItsColor)
{
    control_->AppendGeometry(KARVGraphicalEntity());
    const GlRecording gl;
    control_->GLDrawFrame();
    EXPECT_EQ(gl.Call("gluProject", 0).text, "gluProject(0, 0, 0, ptr, ptr, ptr, ptr, ptr, ptr)");
    EXPECT_EQ(gl.Call("gluProject", 1).text, "gluProject(0, 0, 0, ptr, ptr, ptr, ptr, ptr, ptr)");
    EXPECT_EQ(gl.Count("glColor4f"), 1);
}

/// A control with a triangle and a line.
class ControlRenderMode : public ControlCulling
{
  protected:
    ControlRenderMode()
    {
        AppendBox(1.0, 1.0, 5.0, 5.0);
        AcDbLine line({1.0, 1.0, 0.0}, {5.0, 5.0, 0.0});
        control_->AppendGeometry(&line, TypeOf(0));
    }

    /// The primitives of a frame in this render mode.
    std::vector<std::string> Primitives(int mode)
    {
        control_->SetRenderMode(static_cast<KARVGLRenderMode>(mode));
        const GlRecording gl;
        control_->GLDrawFrame();
        std::vector<std::string> primitives;
        for (const GlCall& call : gl.Calls())
            if (call.name == "glBegin")
                primitives.push_back(call.text);
        return primitives;
    }
};

TEST_F(ControlRenderMode, LineModeDrawsLinesAlone)
{
    EXPECT_THAT(Primitives(0), ElementsAre("glBegin(GL_LINES)"));
}

TEST_F(ControlRenderMode, FaceModeDrawsFacesAndTheLinesOfEntitiesWithout)
{
    EXPECT_THAT(Primitives(1), ElementsAre("glBegin(GL_TRIANGLES)", "glBegin(GL_LINES)"));
}

TEST_F(ControlRenderMode, ModeTwoDrawsFaces)
{
    EXPECT_THAT(Primitives(2), ElementsAre("glBegin(GL_TRIANGLES)", "glBegin(GL_LINES)"));
}

TEST_F(ControlRenderMode, ModeMinusOneDrawsFaces)
{
    EXPECT_THAT(Primitives(-1), ElementsAre("glBegin(GL_TRIANGLES)", "glBegin(GL_LINES)"));
}

TEST_F(ControlRenderMode, SettingTheModeDrawsNothing)
{
    const GlRecording gl;
    control_->SetRenderMode(KARVGLRenderModeLines);
    EXPECT_TRUE(gl.Calls().empty());
    EXPECT_EQ(control_->renderMode, KARVGLRenderModeLines);
}

TEST_F(ControlRenderMode, LineModeProjectsFacesToo)
{
    control_->SetRenderMode(KARVGLRenderModeLines);
    const GlRecording gl;
    control_->GLDrawFrame();
    EXPECT_EQ(gl.Count("gluProject"), 4);
    EXPECT_EQ(gl.Count("glColor4f"), 0);
}

} // namespace
