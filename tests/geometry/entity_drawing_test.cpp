#include "tests/geometry/shapes.h"

#include "platform/host/db/entities.h"
#include "platform/winsys/opengl.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

using karv_test::EntityOf;
using karv_test::GlRecording;
using karv_test::IsNear;
using karv_test::Lines;
using karv_test::Square;
using karv_test::ThrowAt;
using karv_test::TraceRecording;
using karv_test::Triangle;
using testing::ElementsAre;
using testing::IsEmpty;
using Entity = KARVGraphicalEntity;

namespace
{

/// An entity of faces without display lists, of the same colour and opacity.
Entity Faces(std::vector<KARVGLFace> faces)
{
    Entity entity = Lines({});
    entity.faces = std::move(faces);
    return entity;
}

/// A face in the plane z = 0 with the corners (1, 0), (2, 0), ... and the normal (0.5, 0, 2).
KARVGLFace Corners(int count)
{
    KARVGLFace face;
    for (int i = 1; i <= count; ++i)
        face.vertices.emplace_back(static_cast<double>(i), 0.0, 0.0);
    face.normal = {0.5, 0.0, 2.0};
    return face;
}

std::vector<std::string> QuadsListing(Entity& entity)
{
    const GlRecording recording;
    entity.DrawObjectQuads();
    return recording.Listing();
}

std::vector<std::string> LinesListing(Entity& entity)
{
    const GlRecording recording;
    entity.DrawObjectLines();
    return recording.Listing();
}

class EntityPixels : public karv_test::GlTest
{
  protected:
    static std::array<float, 4> CurrentColor()
    {
        std::array<float, 4> color{};
        glGetFloatv(GL_CURRENT_COLOR, color.data());
        return color;
    }
};

} // namespace

TEST(DrawLines, SegmentIsAPairOfItsOwn)
{
    Entity entity = Lines({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
    EXPECT_THAT(LinesListing(entity), ElementsAre("glDisable(GL_LIGHTING)", "glColor3f(0.25, 0.5, 0.75)",
                                                  "glBegin(GL_LINES)", "glVertex3f(1, 2, 3)",
                                                  "glVertex3f(4, 5, 6)", "glEnd()", "glEnable(GL_LIGHTING)"));
}

TEST(DrawLines, EverySegmentHasItsOwnPair)
{
    Entity entity = Lines({{1.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {3.0, 0.0, 0.0}, {4.0, 0.0, 0.0}});
    EXPECT_THAT(LinesListing(entity),
                ElementsAre("glDisable(GL_LIGHTING)", "glColor3f(0.25, 0.5, 0.75)", "glBegin(GL_LINES)",
                            "glVertex3f(1, 0, 0)", "glVertex3f(2, 0, 0)", "glEnd()", "glBegin(GL_LINES)",
                            "glVertex3f(3, 0, 0)", "glVertex3f(4, 0, 0)", "glEnd()",
                            "glEnable(GL_LIGHTING)"));
}

TEST(DrawLines, NoVerticesDrawNothingAndLeaveLighting)
{
    Entity entity = Lines({});
    EXPECT_THAT(LinesListing(entity), IsEmpty());
}

TEST(DrawLines, OneVertexDrawsNothingAndLeavesLighting)
{
    Entity entity = Lines({{1.0, 2.0, 3.0}});
    EXPECT_THAT(LinesListing(entity), IsEmpty());
}

TEST(DrawLines, FacesAreNotDrawn)
{
    Entity entity = Faces({Corners(3)});
    EXPECT_THAT(LinesListing(entity), IsEmpty());
}

TEST(DrawLines, OddVertexIsAFaultThatLeavesLightingOff)
{
    Entity entity = Lines({{1.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {3.0, 0.0, 0.0}});
    const TraceRecording trace;
    EXPECT_THAT(LinesListing(entity),
                ElementsAre("glDisable(GL_LIGHTING)", "glColor3f(0.25, 0.5, 0.75)", "glBegin(GL_LINES)",
                            "glVertex3f(1, 0, 0)", "glVertex3f(2, 0, 0)", "glEnd()"));
    EXPECT_THAT(trace.Listing(),
                ElementsAre("> KARVGraphicalEntity::DrawObjectLines",
                            "< KARVGraphicalEntity::DrawObjectLines", R"(! .\KARVGraphicalEntity.cpp)"));
}

TEST(DrawLines, HundredSegmentsInARow)
{
    Entity entity = Lines(std::vector<KARVGLVertex>(200, KARVGLVertex(1.0, 1.0, 1.0)));
    const GlRecording recording;
    entity.DrawObjectLines();
    EXPECT_EQ(recording.Count("glBegin"), 100);
    EXPECT_EQ(recording.Count("glEnd"), 100);
    EXPECT_EQ(recording.Count("glVertex3f"), 200);
    EXPECT_EQ(recording.Count("glColor3f"), 1);
}

TEST(DrawLines, CoordinatesArePassedAsTheyAre)
{
    Entity entity = Lines({{0.1, 1e38, -1e-38}, {std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0}});
    const GlRecording recording;
    entity.DrawObjectLines();
    EXPECT_THAT(
        recording.Call("glVertex3f", 0).values,
        ElementsAre(static_cast<double>(0.1F), static_cast<double>(1e38F), static_cast<double>(-1e-38F)));
    EXPECT_EQ(recording.Call("glVertex3f", 1).text, "glVertex3f(nan, 0, 0)");
}

TEST(DrawFaces, EmptyEntitySetsTheColorAlone)
{
    Entity entity = Lines({});
    EXPECT_THAT(QuadsListing(entity), ElementsAre("glColor4f(0.25, 0.5, 0.75, 0.5)"));
}

TEST(DrawFaces, WithoutFacesTheLinesAreDrawnFirst)
{
    Entity entity = Lines({{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
    EXPECT_THAT(QuadsListing(entity),
                ElementsAre("glDisable(GL_LIGHTING)", "glColor3f(0.25, 0.5, 0.75)", "glBegin(GL_LINES)",
                            "glVertex3f(1, 2, 3)", "glVertex3f(4, 5, 6)", "glEnd()", "glEnable(GL_LIGHTING)",
                            "glColor4f(0.25, 0.5, 0.75, 0.5)"));
}

TEST(DrawFaces, WithFacesTheLinesAreNotDrawn)
{
    Entity entity = Faces({Corners(3)});
    entity.lineVertices = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}};
    const TraceRecording trace;
    const GlRecording recording;
    entity.DrawObjectQuads();
    EXPECT_EQ(recording.Count("glDisable"), 0);
    EXPECT_THAT(trace.Calls(), ElementsAre("KARVGraphicalEntity::DrawObjectQuads"));
}

TEST(DrawFaces, ThreeCornersAreATriangle)
{
    Entity entity = Faces({Corners(3)});
    EXPECT_THAT(QuadsListing(entity), ElementsAre("glColor4f(0.25, 0.5, 0.75, 0.5)", "glNormal3f(0.5, 0, 2)",
                                                  "glBegin(GL_TRIANGLES)", "glVertex3f(1, 0, 0)",
                                                  "glVertex3f(2, 0, 0)", "glVertex3f(3, 0, 0)", "glEnd()"));
}

TEST(DrawFaces, FourCornersWithoutAListAreAQuadrilateral)
{
    Entity entity = Faces({Corners(4)});
    EXPECT_THAT(QuadsListing(entity),
                ElementsAre("glColor4f(0.25, 0.5, 0.75, 0.5)", "glNormal3f(0.5, 0, 2)", "glBegin(GL_QUADS)",
                            "glVertex3f(1, 0, 0)", "glVertex3f(2, 0, 0)", "glVertex3f(3, 0, 0)",
                            "glVertex3f(4, 0, 0)", "glEnd()"));
}

TEST(DrawFaces, AnyOtherNumberOfCornersWithoutAListIsAFan)
{
    for (const int count : {0, 1, 2, 5, 6, 100}) {
        Entity entity = Faces({Corners(count)});
        std::vector<std::string> expected = {"glColor4f(0.25, 0.5, 0.75, 0.5)", "glNormal3f(0.5, 0, 2)",
                                             "glBegin(GL_TRIANGLE_FAN)"};
        for (int i = 1; i <= count; ++i)
            expected.push_back("glVertex3f(" + std::to_string(i) + ", 0, 0)");
        expected.emplace_back("glEnd()");
        EXPECT_EQ(QuadsListing(entity), expected) << count;
    }
}

TEST(DrawFaces, FaceWithAListSendsNoCorner)
{
    for (const int count : {0, 3, 4, 6}) {
        KARVGLFace face = Corners(count);
        face.displayList = 4711;
        Entity entity = Faces({face});
        EXPECT_THAT(QuadsListing(entity),
                    ElementsAre("glColor4f(0.25, 0.5, 0.75, 0.5)", "glNormal3f(0.5, 0, 2)",
                                "glCallList(4711)", "glGetError()"))
            << count;
    }
}

TEST(DrawFaces, FacesAreDrawnInOrderEachAfterItsNormal)
{
    KARVGLFace first = Corners(1);
    first.normal = {1.0, 0.0, 0.0};
    KARVGLFace second = Corners(4);
    second.normal = {0.0, 1.0, 0.0};
    second.displayList = 5;
    KARVGLFace third = Corners(0);
    third.normal = {0.0, 0.0, 1.0};
    Entity entity = Faces({first, second, third});
    EXPECT_THAT(QuadsListing(entity),
                ElementsAre("glColor4f(0.25, 0.5, 0.75, 0.5)", "glNormal3f(1, 0, 0)",
                            "glBegin(GL_TRIANGLE_FAN)", "glVertex3f(1, 0, 0)", "glEnd()",
                            "glNormal3f(0, 1, 0)", "glCallList(5)", "glGetError()", "glNormal3f(0, 0, 1)",
                            "glBegin(GL_TRIANGLE_FAN)", "glEnd()"));
}

TEST(DrawFaces, NormalIsSentAsItIs)
{
    KARVGLFace face = Corners(3);
    face.normal = {100.0, 0.0, std::numeric_limits<double>::quiet_NaN()};
    Entity entity = Faces({face});
    const GlRecording recording;
    entity.DrawObjectQuads();
    EXPECT_EQ(recording.Call("glNormal3f").text, "glNormal3f(100, 0, nan)");
}

TEST(DrawFaces, OpacityIsSentAsItIs)
{
    Entity entity = Lines({});
    entity.SetAlpha(-2.5F);
    EXPECT_THAT(QuadsListing(entity), ElementsAre("glColor4f(0.25, 0.5, 0.75, -2.5)"));
    entity.SetAlpha(0.1F);
    const GlRecording recording;
    entity.DrawObjectQuads();
    EXPECT_EQ(recording.Call("glColor4f").values.at(3), static_cast<double>(0.1F));
}

TEST(DrawFaces, DrawingTwiceIssuesTheSameCalls)
{
    Entity entity = Faces({Corners(3), Corners(5)});
    EXPECT_EQ(QuadsListing(entity), QuadsListing(entity));
}

TEST(DrawFaces, FaultOfTheFallbackLeavesTheRest)
{
    Entity entity = Lines({{1.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {3.0, 0.0, 0.0}});
    const TraceRecording trace;
    EXPECT_EQ(QuadsListing(entity).back(), "glColor4f(0.25, 0.5, 0.75, 0.5)");
    EXPECT_THAT(trace.Listing(),
                ElementsAre("> KARVGraphicalEntity::DrawObjectQuads",
                            "> KARVGraphicalEntity::DrawObjectLines",
                            "< KARVGraphicalEntity::DrawObjectLines", R"(! .\KARVGraphicalEntity.cpp)",
                            "< KARVGraphicalEntity::DrawObjectQuads"));
}

TEST(DrawFaces, FaultEndsTheOperationAndIsReportedOnce)
{
    Entity entity = Faces({Corners(3), Corners(3)});
    const TraceRecording trace;
    const GlRecording recording;
    {
        const auto hook = ThrowAt("glVertex3f", 2, std::runtime_error("fault"));
        EXPECT_NO_THROW(entity.DrawObjectQuads());
    }
    EXPECT_EQ(recording.Calls().back().text, "glVertex3f(2, 0, 0)");
    EXPECT_EQ(recording.Count("glEnd"), 0);
    EXPECT_THAT(trace.Listing(),
                ElementsAre("> KARVGraphicalEntity::DrawObjectQuads",
                            "< KARVGraphicalEntity::DrawObjectQuads", R"(! .\KARVGraphicalEntity.cpp)"));
}

TEST(DrawFaces, FaultOfNoExceptionTypeIsSwallowedToo)
{
    Entity entity = Faces({Corners(3)});
    const TraceRecording trace;
    const auto hook = ThrowAt("glNormal3f", 1, 42);
    EXPECT_NO_THROW(entity.DrawObjectQuads());
    EXPECT_THAT(trace.Faults(), testing::SizeIs(1));
}

TEST(DrawFaces, OperationsReportLinesOfTheirOwn)
{
    Entity entity = Lines({{1.0, 0.0, 0.0}, {2.0, 0.0, 0.0}});
    const TraceRecording trace;
    {
        const auto hook = ThrowAt("glGenLists", 1, 42);
        const Entity faulted = EntityOf(Square());
    }
    {
        const auto hook = ThrowAt("glColor3f", 1, 42);
        entity.DrawObjectLines();
    }
    {
        const auto hook = ThrowAt("glColor4f", 1, 42);
        entity.DrawObjectQuads();
    }
    const std::vector<std::string> faults = trace.Faults();
    ASSERT_EQ(faults.size(), 3U);
    for (const std::string& fault : faults)
        EXPECT_EQ(std::count(faults.begin(), faults.end(), fault), 1) << fault;
}

TEST_F(EntityPixels, AfterTheFallbackTheColorHasTheEntitysOpacity)
{
    Entity entity = Lines({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}});
    entity.DrawObjectQuads();
    EXPECT_THAT(CurrentColor(), ElementsAre(0.25F, 0.5F, 0.75F, 0.5F));
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
}

TEST_F(EntityPixels, OneVertexLeavesLightingAsItWas)
{
    Entity entity = Lines({{0.0, 0.0, 0.0}});
    entity.DrawObjectLines();
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    glEnable(GL_LIGHTING);
    entity.DrawObjectLines();
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
}

TEST_F(EntityPixels, OddVertexLeavesLightingDisabled)
{
    glEnable(GL_LIGHTING);
    Entity entity = Lines({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {1.0, 1.0, 0.0}});
    entity.DrawObjectLines();
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(EntityPixels, ListClearsAPendingError)
{
    Entity entity = EntityOf(Square());
    glEnable(0xFFFF0001);
    entity.DrawObjectQuads();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(EntityPixels, FaceWithoutAListLeavesAPendingError)
{
    Entity entity = EntityOf(Triangle());
    glEnable(0xFFFF0001);
    entity.DrawObjectQuads();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
}

TEST_F(EntityPixels, FacesOfFewerThanThreeCornersDrawNothing)
{
    Entity entity = Faces({Corners(0), Corners(1), Corners(2)});
    window_.BeginPicture(3.0, 3.0);
    entity.DrawObjectQuads();
    EXPECT_EQ(window_.Read().CountOtherThan({0, 0, 0}), 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(EntityPixels, OpacityBlendsWhereTheContextBlends)
{
    Entity entity = EntityOf(Square(2.0));
    entity.SetAlpha(0.5F);
    window_.BeginPicture(2.0, 2.0);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    entity.DrawObjectQuads();
    // Red at half opacity over black.
    EXPECT_TRUE(IsNear(window_.Read().At(32, 32), {128, 0, 0}));
}

TEST_F(EntityPixels, NaNCornersAreDrawnWithoutAFault)
{
    KARVGLFace face = Triangle();
    face.vertices[1].x = std::numeric_limits<float>::quiet_NaN();
    const TraceRecording trace;
    Entity entity = EntityOf(face);
    window_.BeginPicture(2.0, 2.0);
    entity.DrawObjectQuads();
    EXPECT_THAT(trace.Faults(), IsEmpty());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
