#include "tests/geometry/shapes.h"

#include "platform/winsys/opengl.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

using karv_test::EntityOf;
using karv_test::Face;
using karv_test::GlAnswer;
using karv_test::GlCall;
using karv_test::GlRecording;
using karv_test::GlTestWindow;
using karv_test::IsNear;
using karv_test::kBlack;
using karv_test::kRed;
using karv_test::kRedPixel;
using karv_test::LShape;
using karv_test::Square;
using karv_test::ThrowAt;
using karv_test::TraceRecording;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Entity = KARVGraphicalEntity;
using Point = std::array<double, 2>;

namespace
{

using Point = std::array<double, 2>;

/// The triangles of a recording's primitives, in the plane z = 0.
std::vector<std::array<Point, 3>> Triangles(const GlRecording& recording)
{
    std::vector<std::array<Point, 3>> triangles;
    std::vector<Point> corners;
    std::string primitive;
    for (const GlCall& call : recording.Calls()) {
        if (call.name == "glBegin") {
            primitive = call.text;
            corners.clear();
        } else if (call.name == "glVertex3dv") {
            corners.push_back({call.values.at(0), call.values.at(1)});
        } else if (call.name == "glEnd") {
            for (std::size_t i = 2; i < corners.size(); ++i) {
                const bool separate = primitive == "glBegin(GL_TRIANGLES)";
                if (primitive == "glBegin(GL_TRIANGLE_FAN)")
                    triangles.push_back({corners[0], corners[i - 1], corners[i]});
                else if (!separate || i % 3 == 2)
                    triangles.push_back({corners[i - 2], corners[i - 1], corners[i]});
            }
        }
    }
    return triangles;
}

double Area(const std::vector<std::array<Point, 3>>& triangles)
{
    double area = 0.0;
    for (const auto& [a, b, c] : triangles)
        area += std::fabs((b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0])) / 2.0;
    return area;
}

class Tessellation : public karv_test::GlTest
{
};

} // namespace

TEST_F(Tessellation, SquareGoesThroughTheTessellatorCallByCall)
{
    const KARVGLFace square = Square();
    const GlRecording recording;
    const Entity entity = EntityOf(square);
    const std::string list = std::to_string(entity.faces.at(0).displayList);

    const std::vector<std::string> calls = recording.Listing();
    const auto end_polygon = std::find(calls.begin(), calls.end(), "gluTessEndPolygon(ptr)");
    ASSERT_NE(end_polygon, calls.end());
    EXPECT_THAT(
        std::vector<std::string>(calls.begin(), end_polygon + 1),
        ElementsAre("glGenLists(1)", "gluNewTess()", "gluTessCallback(ptr, GLU_TESS_BEGIN, ptr)",
                    "gluTessCallback(ptr, GLU_TESS_END, ptr)", "gluTessCallback(ptr, GLU_TESS_ERROR, ptr)",
                    "gluTessCallback(ptr, GLU_TESS_VERTEX, ptr)", "glNewList(" + list + ", GL_COMPILE)",
                    "gluTessBeginPolygon(ptr, null)", "gluTessBeginContour(ptr)",
                    "gluTessVertex(ptr, [0, 0, 0], same)", "gluTessVertex(ptr, [1, 0, 0], same)",
                    "gluTessVertex(ptr, [1, 1, 0], same)", "gluTessVertex(ptr, [0, 1, 0], same)",
                    "gluTessEndContour(ptr)", "gluTessEndPolygon(ptr)"));
    EXPECT_THAT(std::vector<std::string>(calls.end() - 2, calls.end()),
                ElementsAre("glEndList()", "gluDeleteTess(ptr)"));
    // Only the tessellator's own primitives lie between.
    for (auto call = end_polygon + 1; call != calls.end() - 2; ++call)
        EXPECT_THAT(*call, testing::MatchesRegex(R"(glBegin\(GL_TRIANGLE.*|glVertex3dv\(.*|glEnd\(\))"));
}

TEST_F(Tessellation, SquareDrawsTwoTriangles)
{
    const KARVGLFace square = Square(3.0);
    const GlRecording recording;
    const Entity entity = EntityOf(square);
    const auto triangles = Triangles(recording);
    EXPECT_EQ(triangles.size(), 2U);
    EXPECT_DOUBLE_EQ(Area(triangles), 9.0);
}

TEST_F(Tessellation, ListIsStoredInTheEntitysFace)
{
    const Entity entity = EntityOf(Square());
    const GLuint list = entity.faces.at(0).displayList;
    EXPECT_NE(list, 0U);
    EXPECT_TRUE(glIsList(list));
    EXPECT_EQ(entity.faces.at(0).vertices.size(), 4U);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(Tessellation, ListNameGivenByTheClientIsReplaced)
{
    KARVGLFace square = Square();
    square.displayList = 4711;
    const GLuint list = EntityOf(square).faces.at(0).displayList;
    EXPECT_NE(list, 4711U);
    EXPECT_TRUE(glIsList(list));
}

TEST_F(Tessellation, HundredFacesHaveHundredLists)
{
    const GlRecording recording;
    const Entity entity(std::vector<KARVGLFace>(100, Square()), Entity::EntityType0, kRed);
    EXPECT_EQ(recording.Count("glGenLists"), 100);
    EXPECT_EQ(recording.Count("gluDeleteTess"), 100);
    for (const KARVGLFace& face : entity.faces)
        EXPECT_TRUE(glIsList(face.displayList));
}

TEST_F(Tessellation, CornersAreWidenedExactly)
{
    KARVGLFace face = Square();
    face.vertices[0].x = 0.1F;
    const GlRecording recording;
    const Entity entity = EntityOf(face);
    EXPECT_EQ(recording.Call("gluTessVertex", 0).values.at(1), static_cast<double>(0.1F));
}

TEST_F(Tessellation, EveryCornerHasAnArrayOfItsOwn)
{
    const GlRecording recording;
    const Entity entity = EntityOf(LShape());
    std::vector<double> arrays;
    arrays.reserve(6);
    for (int i = 0; i < 6; ++i)
        arrays.push_back(recording.Call("gluTessVertex", i).values.at(4));
    std::sort(arrays.begin(), arrays.end());
    EXPECT_EQ(std::unique(arrays.begin(), arrays.end()), arrays.end());
}

TEST_F(Tessellation, ConcaveOutlineKeepsItsArea)
{
    const GlRecording recording;
    const Entity entity = EntityOf(LShape());
    // Three unit squares.
    EXPECT_DOUBLE_EQ(Area(Triangles(recording)), 3.0);
}

TEST_F(Tessellation, ListHoldsNeitherColorNorNormal)
{
    const GlRecording recording;
    const Entity entity = EntityOf(Square());
    EXPECT_EQ(recording.Count("glColor3f") + recording.Count("glColor4f") + recording.Count("glNormal3f"), 0);
}

TEST_F(Tessellation, CopyAndAssignmentMakeNoList)
{
    const Entity source = EntityOf(Square());
    const GlRecording recording;
    Entity copy = source;
    copy = source;
    EXPECT_THAT(recording.Listing(), IsEmpty());
}

TEST_F(Tessellation, DestructionDeletesNoList)
{
    GLuint list = 0;
    const GlRecording recording;
    {
        const Entity entity = EntityOf(Square());
        list = entity.faces.at(0).displayList;
    }
    EXPECT_EQ(recording.Count("glDeleteLists"), 0);
    EXPECT_TRUE(glIsList(list));
}

TEST_F(Tessellation, WithoutAListNameTheFaceIsDrawnDirectly)
{
    const GlAnswer none("glGenLists", 0);
    const TraceRecording trace;
    KARVGLFace square = Square();
    square.displayList = 4711;
    const GlRecording recording;
    const Entity entity = EntityOf(square);
    EXPECT_EQ(entity.faces.at(0).displayList, 0U);
    EXPECT_THAT(recording.Listing(), ElementsAre("glGenLists(1)"));
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(Tessellation, WithoutATessellatorTheListNameIsAbandoned)
{
    const GlAnswer none("gluNewTess", 0);
    const TraceRecording trace;
    KARVGLFace square = Square();
    square.displayList = 4711;
    const GlRecording recording;
    const Entity entity = EntityOf(square);
    EXPECT_EQ(entity.faces.at(0).displayList, 0U);
    EXPECT_THAT(recording.Listing(), ElementsAre("glGenLists(1)", "gluNewTess()"));
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(Tessellation, FailureOfOneFaceLeavesTheOthers)
{
    int calls = 0;
    std::unique_ptr<GlAnswer> none;
    const karv_test::GlHook hook("glGenLists", [&](int call) {
        calls = call;
        none = call == 2 ? std::make_unique<GlAnswer>("glGenLists", 0) : nullptr;
    });
    const Entity entity({Square(), Square(), Square()}, Entity::EntityType0, kRed);
    EXPECT_EQ(calls, 3);
    EXPECT_NE(entity.faces.at(0).displayList, 0U);
    EXPECT_EQ(entity.faces.at(1).displayList, 0U);
    EXPECT_NE(entity.faces.at(2).displayList, 0U);
}

TEST_F(Tessellation, OutlineThatCrossesItselfIsSilent)
{
    const TraceRecording trace;
    const GlRecording recording;
    // A bow tie: its diagonals cross where it has no corner.
    Entity entity = EntityOf(Face({{0.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}));
    EXPECT_THAT(recording.Listing(), Contains("gluErrorString(GLU_TESS_NEED_COMBINE_CALLBACK)"));
    EXPECT_EQ(recording.Calls().at(recording.Calls().size() - 2).text, "glEndList()");
    EXPECT_TRUE(glIsList(entity.faces.at(0).displayList));
    entity.DrawObjectQuads();
    EXPECT_THAT(trace.Faults(), IsEmpty());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(Tessellation, CoincidentCornersGiveAListThatDrawsNothing)
{
    const TraceRecording trace;
    Entity entity = EntityOf(Face({{1.0, 1.0, 0.0}, {1.0, 1.0, 0.0}, {1.0, 1.0, 0.0}, {1.0, 1.0, 0.0}}));
    EXPECT_TRUE(glIsList(entity.faces.at(0).displayList));
    window_.BeginPicture(2.0, 2.0);
    entity.DrawObjectQuads();
    EXPECT_EQ(window_.Read().CountOtherThan(kBlack), 0);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(Tessellation, CollinearCornersGiveAListThatDrawsNothing)
{
    Entity entity = EntityOf(Face({{0.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {2.0, 2.0, 0.0}, {1.5, 1.5, 0.0}}));
    EXPECT_TRUE(glIsList(entity.faces.at(0).displayList));
    window_.BeginPicture(2.0, 2.0);
    entity.DrawObjectQuads();
    EXPECT_EQ(window_.Read().CountOtherThan(kBlack), 0);
}

TEST_F(Tessellation, CornerTwiceInARowDoesNotMatter)
{
    const GlRecording recording;
    const Entity entity =
        EntityOf(Face({{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {0.0, 1.0, 0.0}}));
    EXPECT_DOUBLE_EQ(Area(Triangles(recording)), 1.0);
}

TEST_F(Tessellation, HugeCoordinatesAreSilent)
{
    // The tessellator's limit is 1e150, which no finite float exceeds.
    const TraceRecording trace;
    const float huge = std::numeric_limits<float>::infinity();
    KARVGLFace face = Square();
    face.vertices[2].x = huge;
    const GlRecording recording;
    const Entity entity = EntityOf(face);
    EXPECT_THAT(recording.Listing(), Contains("gluErrorString(GLU_TESS_COORD_TOO_LARGE)"));
    EXPECT_TRUE(glIsList(entity.faces.at(0).displayList));
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(Tessellation, ThousandCornersAreOneList)
{
    constexpr int kCorners = 1000;
    KARVGLFace disc;
    for (int i = 0; i < kCorners; ++i) {
        const double angle = 2.0 * 3.141592653589793 * i / kCorners;
        disc.vertices.emplace_back(1.0 + std::cos(angle), 1.0 + std::sin(angle), 0.0);
    }
    const GlRecording recording;
    const Entity entity = EntityOf(disc);
    EXPECT_EQ(recording.Count("glGenLists"), 1);
    // A polygon of n corners makes n - 2 triangles; its area is n / 2 times the sine of its step.
    EXPECT_EQ(Triangles(recording).size(), static_cast<std::size_t>(kCorners - 2));
    EXPECT_NEAR(Area(Triangles(recording)), kCorners / 2.0 * std::sin(2.0 * 3.141592653589793 / kCorners),
                1e-5);
}

TEST_F(Tessellation, FaultInItIsReportedByTheConstructor)
{
    const TraceRecording trace;
    const auto hook = ThrowAt("glGenLists", 1, 42);
    EXPECT_NO_THROW({
        Entity entity = EntityOf(Square());
        EXPECT_EQ(entity.GetFaceNumber(), 0);
    });
    ASSERT_EQ(trace.Faults().size(), 1U);
    EXPECT_THAT(trace.Faults().at(0), testing::StartsWith(R"(.\KARVGraphicalEntity.cpp:)"));
}

TEST_F(Tessellation, FaultInALaterFaceLeavesWhatTheEntityHadByThen)
{
    const auto hook = ThrowAt("glGenLists", 2, 42);
    Entity entity({Square(), Square()}, Entity::EntityType5, kRed);
    // The faces, the category, the colour and the box are set after all faces are tessellated.
    EXPECT_EQ(entity.GetFaceNumber(), 0);
    EXPECT_EQ(entity.entityType, Entity::EntityType0);
    EXPECT_EQ(entity.color, KARVGLVertex());
    EXPECT_FALSE(entity.extentsValid);
    EXPECT_EQ(entity.alpha, 1.0F);
}

TEST_F(Tessellation, ListIsStoredOnlyWhenItIsClosed)
{
    KARVGLFace square = Square();
    square.displayList = 4711;
    Entity entity;
    const auto hook = ThrowAt("glEndList", 1, 42);
    const auto call = [&] { entity.TesselateFace(square); };
    EXPECT_ANY_THROW(call());
    EXPECT_EQ(square.displayList, 4711U);
}

TEST_F(Tessellation, FaultBeforeItsEndLeavesNoTessellatorBehind)
{
    const GlRecording recording;
    const auto hook = ThrowAt("gluTessEndPolygon", 1, 42);
    const Entity entity = EntityOf(Square());
    EXPECT_EQ(recording.Count("gluDeleteTess"), 1);
}

TEST_F(Tessellation, FaultAtTheEndOfTheTessellatorIsReportedByTheConstructor)
{
    const TraceRecording trace;
    const GlRecording recording;
    const karv_test::GlHook hook("gluDeleteTess", [&](int call) {
        if (call != 1)
            return;
        const auto address = static_cast<std::uintptr_t>(recording.Call("gluDeleteTess").values.at(0));
        gluDeleteTess(reinterpret_cast<GLUtesselator*>(address));
        throw 42;
    });
    Entity entity = EntityOf(Square());
    EXPECT_EQ(entity.GetFaceNumber(), 0);
    EXPECT_THAT(trace.Faults(), testing::SizeIs(1));
}

/// A regular polygon of this many corners.
KARVGLFace Polygon(int corners)
{
    std::vector<KARVGLVertex> vertices;
    for (int i = 0; i < corners; ++i) {
        const double angle = -2.0 * std::numbers::pi * i / corners;
        vertices.emplace_back(std::cos(angle), std::sin(angle), 0.0);
    }
    KARVGLFace face;
    face.vertices = std::move(vertices);
    return face;
}

TEST_F(Tessellation, FaceOfMoreThanAHundredCornersWithANanGetsAnEmptyList)
{
    for (const std::size_t corner : {0U, 57U, 100U})
        for (const int axis : {0, 1, 2}) {
            KARVGLFace face = Polygon(101);
            KARVGLVertex& vertex = face.vertices.at(corner);
            (axis == 0   ? vertex.x
             : axis == 1 ? vertex.y
                         : vertex.z) = std::numeric_limits<float>::quiet_NaN();
            Entity entity;
            const GlRecording recording;
            entity.TesselateFace(face);
            EXPECT_TRUE(glIsList(face.displayList));
            EXPECT_EQ(recording.Count("gluNewTess"), 1);
            EXPECT_EQ(recording.Count("gluTessCallback"), 4);
            EXPECT_EQ(recording.Count("glNewList"), 1);
            EXPECT_EQ(recording.Count("gluTessBeginPolygon"), 0);
            EXPECT_EQ(recording.Count("gluTessVertex"), 0);
            EXPECT_EQ(recording.Count("glBegin"), 0);
            EXPECT_EQ(recording.Count("glEndList"), 1);
            EXPECT_EQ(recording.Count("gluDeleteTess"), 1);
        }
}

TEST_F(Tessellation, FaceOfAHundredCornersWithANanKeepsItsCalls)
{
    KARVGLFace face = Polygon(100);
    face.vertices.at(57).y = std::numeric_limits<float>::quiet_NaN();
    Entity entity;
    const GlRecording recording;
    entity.TesselateFace(face);
    EXPECT_EQ(recording.Count("gluTessVertex"), 100);
    EXPECT_EQ(recording.Count("gluTessEndPolygon"), 1);
}

TEST_F(Tessellation, FaceOfMoreThanAHundredCornersWithInfinitiesKeepsItsCalls)
{
    KARVGLFace face = Polygon(101);
    face.vertices.at(57).y = std::numeric_limits<float>::infinity();
    Entity entity;
    const GlRecording recording;
    entity.TesselateFace(face);
    EXPECT_EQ(recording.Count("gluTessVertex"), 101);
    EXPECT_EQ(recording.Count("gluTessEndPolygon"), 1);
}

TEST_F(Tessellation, DirectCallOnFewCornersStillMakesAList)
{
    // The limit of four corners is kept by the caller; here the list is just empty.
    KARVGLFace face = Face({});
    Entity entity;
    entity.TesselateFace(face);
    EXPECT_TRUE(glIsList(face.displayList));
}

TEST(TessellationWithoutContext, FacesHaveNoListAndAreDrawnDirectlyLater)
{
    const TraceRecording trace;
    ASSERT_EQ(wglGetCurrentContext(), nullptr);
    Entity entity = EntityOf(Square(2.0));
    EXPECT_EQ(entity.faces.at(0).displayList, 0U);
    EXPECT_THAT(trace.Faults(), IsEmpty());

    const GlTestWindow window;
    window.BeginPicture(2.0, 2.0);
    const GlRecording recording;
    entity.DrawObjectQuads();
    EXPECT_EQ(recording.Count("glCallList"), 0);
    EXPECT_THAT(recording.Listing(), Contains("glBegin(GL_QUADS)"));
    EXPECT_TRUE(IsNear(window.Read().At(32, 32), kRedPixel));
}
