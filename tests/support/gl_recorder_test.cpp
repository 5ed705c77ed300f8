// Tests of the recorder: that it records the module's calls, and the effect of hooks and answers.
#include "tests/support/gl_recorder.h"

#include "camera/KARVGLCamera.h"
#include "platform/winsys/opengl.h"
#include "tests/support/gl_enums.h"
#include "tests/support/gl_test_window.h"

#include <gmock/gmock.h>

#include <array>
#include <limits>
#include <stdexcept>

using karv_test::GlAnswer;
using karv_test::GlRecording;
using karv_test::GlRefusal;
using karv_test::ThrowAt;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class GlRecorderInContext : public karv_test::GlTest
{
};

} // namespace

TEST(GlRecorder, RecordsTheModulesCalls)
{
    KARVGLCamera camera;
    const GlRecording recording;
    camera.UpdateCamera();
    EXPECT_EQ(recording.Count("gluLookAt"), 1);
}

TEST(GlRecorder, RecordsNothingAfterItsEnd)
{
    std::vector<std::string> listing;
    KARVGLCamera camera;
    const GlRecording outer;
    {
        const GlRecording inner;
        camera.UpdateCamera();
        listing = inner.Listing();
    }
    EXPECT_THAT(listing, testing::SizeIs(3));
    EXPECT_THAT(outer.Listing(), IsEmpty());
    camera.UpdateCamera();
    EXPECT_THAT(outer.Listing(), testing::SizeIs(3));
}

TEST(GlRecorder, NamesEnumsAndRoundsNumbers)
{
    const GlRecording recording;
    glOrtho(-5.0, 5.0, 1.0 / 3.0, -1e-17, -1000.0, 1e7);
    glBegin(GL_TRIANGLES);
    glEnd();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_MULTISAMPLE);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_THAT(recording.Listing(),
                ElementsAre("glOrtho(-5, 5, 0.333333, 0, -1000, 1e+07)", "glBegin(GL_TRIANGLES)", "glEnd()",
                            "glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT)", "glEnable(GL_MULTISAMPLE)",
                            "glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)"));
    EXPECT_EQ(recording.Call("glOrtho").values.at(2), 1.0 / 3.0);
    EXPECT_EQ(recording.Call("glOrtho").values.at(3), -1e-17);
}

TEST(GlRecorder, ListsEnumsBeyondOpenGl11)
{
    const GlRecording recording;
    glEnable(GL_LIGHTING);
    glEnable(GL_MULTISAMPLE);
    glEnable(0x8513); // cube maps, of a later version of OpenGL
    EXPECT_THAT(recording.EnumsBeyond11(), ElementsAre("0x8513", "GL_MULTISAMPLE"));
}

TEST(GlRecorder, CallOutOfRangeThrows)
{
    const GlRecording recording;
    EXPECT_THROW((void)recording.Call("glEnd"), std::out_of_range);
}

TEST(GlRecorder, HookThrowsFromTheCallItIsMadeFor)
{
    const GlRecording recording;
    {
        const auto hook = ThrowAt("glLoadIdentity", 2, 42);
        glLoadIdentity();
        EXPECT_THROW(glLoadIdentity(), int);
        EXPECT_NO_THROW(glLoadIdentity());
    }
    EXPECT_NO_THROW(glLoadIdentity());
    EXPECT_EQ(recording.Count("glLoadIdentity"), 4);
}

TEST(GlRecorder, HooksAndAnswersWorkWithoutARecording)
{
    const auto hook = ThrowAt("glLoadIdentity", 1, std::runtime_error("fault"));
    EXPECT_THROW(glLoadIdentity(), std::runtime_error);
    const GlAnswer answer("glGenLists", 4711);
    EXPECT_EQ(glGenLists(1), 4711U);
}

TEST_F(GlRecorderInContext, PassesCallsOn)
{
    const GlRecording recording;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-2.0, 2.0, -4.0, 4.0, -1.0, 1.0);
    std::array<double, 16> matrix{};
    glGetDoublev(GL_PROJECTION_MATRIX, matrix.data());
    EXPECT_EQ(matrix[0], 0.5);
    EXPECT_EQ(matrix[5], 0.25);
}

TEST_F(GlRecorderInContext, DoesNotRecordWhatGluCallsInsideItself)
{
    const GlRecording recording;
    gluPerspective(40.0, 1.0, 0.1, 10.0);
    gluLookAt(0.0, -1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 1.0);
    EXPECT_THAT(recording.Listing(),
                ElementsAre("gluPerspective(40, 1, 0.1, 10)", "gluLookAt(0, -1, 0, 0, 0, 0, 0, 0, 1)"));
}

TEST_F(GlRecorderInContext, AnswerIsForItsFirstArgumentAlone)
{
    const char* text = "NOTHING";
    const GlAnswer answer("glGetString", reinterpret_cast<std::uintptr_t>(text), GL_EXTENSIONS);
    EXPECT_STREQ(reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)), "NOTHING");
    EXPECT_STRNE(reinterpret_cast<const char*>(glGetString(GL_VERSION)), "NOTHING");
    const GlAnswer null("glGetString", 0, GL_VERSION);
    EXPECT_EQ(glGetString(GL_VERSION), nullptr);
}

TEST_F(GlRecorderInContext, RefusedCapabilityRaisesTheErrorAndChangesNothing)
{
    {
        const GlRefusal refusal(GL_BLEND);
        const GlRecording recording;
        glEnable(GL_BLEND);
        EXPECT_EQ(recording.Call("glEnable").text, "glEnable(GL_BLEND)");
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
    glEnable(GL_BLEND);
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(GlRecorderInContext, WindowHasARealContext)
{
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
    glClearColor(1.0F, 0.5F, 0.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_TRUE(karv_test::IsNear(window_.Read().At(10, 20), {255, 128, 0}));
    EXPECT_EQ(window_.Read().CountOtherThan({0, 0, 0}), 64 * 64);
}

TEST_F(GlRecorderInContext, TwoWindowsHaveTheirOwnContexts)
{
    glEnable(GL_BLEND);
    const HGLRC first = wglGetCurrentContext();
    {
        const karv_test::GlTestWindow second;
        EXPECT_NE(wglGetCurrentContext(), first);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
    }
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
}
