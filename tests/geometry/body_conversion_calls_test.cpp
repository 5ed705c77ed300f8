// Solids as entities: staged answers of the modeler, and the GL calls that draw them.
#include "tests/geometry/solids.h"

#include "platform/winsys/opengl.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/modeler_hooks.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

using AModeler::Body;
using AModeler::Face;
using AModeler::MakeBox;
using karv_test::EdgesHook;
using karv_test::EntityOf;
using karv_test::ExpectNoBox;
using karv_test::FaceNumber;
using karv_test::GlRecording;
using karv_test::PlaneHook;
using karv_test::TraceRecording;
using karv_test::UnitCube;
using testing::ElementsAre;
using testing::IsEmpty;
using Entity = KARVGraphicalEntity;

namespace
{

constexpr const char* kConstructor = "KARVGraphicalEntity::KARVGraphicalEntity";
constexpr const char* kCreateCache = "KARVGraphicalEntity::CreateGLCache";
constexpr const char* kGrowBox = "KARVGraphicalEntity::DoesPointContainExtent";

/// A prism over an L of area 3 whose ends are one concave face each, as other modelers make them. The ends
/// come first.
Body ConcavePrism()
{
    // Built over a convex profile, whose ends are not split. Then the corner at (1.5, 1.5) moves to (1, 1).
    Body prism = AModeler::MakePrism({{{2, 0, 0}, {2, 1, 0}, {1.5, 1.5, 0}, {1, 2, 0}, {0, 2, 0}, {0, 0, 0}}},
                                     {0, 0, 1});
    for (AModeler::Vertex& vertex : prism.vertices_)
        if (vertex.point_.x == 1.5)
            vertex.point_ = {1, 1, vertex.point_.z};
    return prism;
}

} // namespace

TEST(BodyConversion, BoxIsThatOfTheEdgesNotOfTheFaces)
{
    Body cube = MakeBox({1, 1, 1}, {2, 2, 2});
    const EdgesHook hook([](bool, bool, EdgesHook::Edges& edges) { edges.resize(1); });
    const Entity entity = EntityOf(cube);
    ASSERT_EQ(entity.lineVertices.size(), 2U);
    const KARVGLVertex& a = entity.lineVertices[0];
    const KARVGLVertex& b = entity.lineVertices[1];
    EXPECT_EQ(entity.minExtent, KARVGLVertex(std::fmin(a.x, b.x), std::fmin(a.y, b.y), std::fmin(a.z, b.z)));
    EXPECT_EQ(entity.maxExtent, KARVGLVertex(std::fmax(a.x, b.x), std::fmax(a.y, b.y), std::fmax(a.z, b.z)));
}

TEST(BodyConversion, BoxIsSeededWithTheEndOfTheFirstEdge)
{
    // NaN compares as neither below nor above, so the seed stays.
    Body cube = UnitCube();
    const EdgesHook hook([](bool, bool, EdgesHook::Edges& edges) {
        edges.resize(1);
        edges[0]->next()->vertex()->point_.y = std::numeric_limits<double>::quiet_NaN();
    });
    const Entity entity = EntityOf(cube);
    EXPECT_TRUE(entity.extentsValid);
    EXPECT_TRUE(std::isnan(entity.minExtent.y));
    EXPECT_FALSE(std::isnan(entity.maxExtent.y));
}

TEST(BodyConversion, PlaneThatIsThereIsTakenAsItIs)
{
    Body cube = UnitCube();
    Face& face = FaceNumber(cube, 2);
    face.plane_.normal = {0.0, 3.0, -0.1};
    face.is_plane_evaluated_ = true;
    PlaneHook hook([](int) {});
    const Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.faces[2].normal, KARVGLVertex(0.0, 3.0, -0.1)); // neither normalized nor transformed
    EXPECT_EQ(hook.Calls(), 5);
}

TEST(BodyConversion, PlanesAreEvaluatedOnce)
{
    Body cube = UnitCube();
    PlaneHook hook([](int) {});
    const Entity first = EntityOf(cube);
    const Entity second = EntityOf(cube);
    EXPECT_EQ(hook.Calls(), 6);
    EXPECT_TRUE(cube.faceList()->isPlaneEvaluated());
}

TEST(BodyConversion, BothFlagsAreTrue)
{
    Body cube = UnitCube();
    int calls = 0;
    const EdgesHook hook([&](bool with_edges, bool with_vertices, EdgesHook::Edges&) {
        ++calls;
        EXPECT_TRUE(with_edges);
        EXPECT_TRUE(with_vertices);
    });
    static_cast<void>(EntityOf(cube));
    EXPECT_EQ(calls, 1);
}

TEST(BodyConversion, NullEdgesAreSkipped)
{
    Body cube = UnitCube();
    const EdgesHook hook([](bool, bool, EdgesHook::Edges& edges) {
        edges.insert(edges.begin(), nullptr);
        edges[5] = nullptr;
        edges.push_back(nullptr);
    });
    const Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.lineVertices.size(), 22U);
    EXPECT_TRUE(entity.extentsValid);
}

TEST(BodyConversion, OnlyNullEdgesLeaveNoBox)
{
    Body cube = UnitCube();
    const EdgesHook hook([](bool, bool, EdgesHook::Edges& edges) { edges.assign(3, nullptr); });
    const Entity entity = EntityOf(cube);
    EXPECT_THAT(entity.lineVertices, IsEmpty());
    ExpectNoBox(entity);
}

TEST(BodyConversion, FaultAtAPlaneKeepsTheFacesBefore)
{
    Body cube = UnitCube();
    const PlaneHook hook([](int call) {
        if (call == 3)
            throw std::runtime_error("the modeler fails");
    });
    const TraceRecording trace;
    Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.faces.size(), 2U);
    EXPECT_EQ(entity.faces[1].vertices.size(), 4U);
    EXPECT_THAT(entity.lineVertices, IsEmpty());
    ExpectNoBox(entity);
    EXPECT_EQ(entity.entityType, Entity::EntityType3);
    EXPECT_EQ(entity.color, KARVGLVertex(1.0, 0.0, 0.0));
    EXPECT_THAT(trace.Listing(),
                ElementsAre(std::string("> ") + kConstructor, std::string("> ") + kCreateCache,
                            std::string("< ") + kCreateCache, R"(! .\KARVGraphicalEntity.cpp)",
                            std::string("< ") + kConstructor));
}

TEST(BodyConversion, FaultOfAnyTypeIsCaught)
{
    Body cube = UnitCube();
    const PlaneHook hook([](int) { throw 42; });
    const TraceRecording trace;
    const Entity entity = EntityOf(cube);
    EXPECT_THAT(entity.faces, IsEmpty());
    EXPECT_EQ(trace.Faults().size(), 1U);
}

TEST(BodyConversion, FaultAtTheEdgesKeepsAllFaces)
{
    Body cube = UnitCube();
    const EdgesHook hook([](bool, bool, EdgesHook::Edges&) { throw std::bad_alloc(); });
    const TraceRecording trace;
    const Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.faces.size(), 6U);
    EXPECT_THAT(entity.lineVertices, IsEmpty());
    ExpectNoBox(entity);
    EXPECT_EQ(trace.Faults().size(), 1U);
}

TEST(BodyConversion, FaultLeavesAnEntityThatDraws)
{
    const karv_test::GlTestWindow window;
    Body cube = UnitCube();
    std::optional<Entity> entity;
    {
        const EdgesHook hook(
            [](bool, bool, EdgesHook::Edges&) { throw std::runtime_error("the modeler fails"); });
        entity.emplace(EntityOf(cube));
    }
    const GlRecording recording;
    entity->DrawObjectQuads();
    EXPECT_EQ(recording.Count("glBegin"), 6);
}

TEST(BodyConversion, TraceListsEveryGrowthOfTheBox)
{
    Body cube = UnitCube();
    const EdgesHook hook([](bool, bool, EdgesHook::Edges& edges) { edges.resize(1); });
    const TraceRecording trace;
    {
        const Entity entity = EntityOf(cube);
    }
    const std::string destructor = "KARVGraphicalEntity::~KARVGraphicalEntity";
    EXPECT_THAT(trace.Calls(), ElementsAre(kConstructor, kCreateCache, kGrowBox, kGrowBox, destructor));
    EXPECT_THAT(trace.OutermostCalls(), ElementsAre(kConstructor, destructor));
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST(BodyConversion, NothingIsDrawnNorCompiled)
{
    Body prism = ConcavePrism();
    const GlRecording recording;
    const Entity entity = EntityOf(prism);
    EXPECT_THAT(recording.Listing(), IsEmpty());
    for (const KARVGLFace& face : entity.faces)
        EXPECT_EQ(face.displayList, 0U);
}

TEST(BodyDrawing, ConcaveFaceIsAFanFromItsFirstCorner)
{
    const karv_test::GlTestWindow window;
    Body prism = ConcavePrism();
    Entity entity = EntityOf(prism);
    entity.faces.resize(1); // the upper end
    const GlRecording recording;
    entity.DrawObjectQuads();
    // Clockwise seen from above: the profile, which runs counter-clockwise, in reverse.
    EXPECT_THAT(recording.Listing(),
                ElementsAre("glColor4f(1, 0, 0, 1)", "glNormal3f(0, 0, 1)", "glBegin(GL_TRIANGLE_FAN)",
                            "glVertex3f(0, 0, 1)", "glVertex3f(0, 2, 1)", "glVertex3f(1, 2, 1)",
                            "glVertex3f(1, 1, 1)", "glVertex3f(2, 1, 1)", "glVertex3f(2, 0, 1)", "glEnd()"));
}

TEST(BodyDrawing, FacesOfThreeAndFourCornersArePrimitivesOfTheirOwn)
{
    const karv_test::GlTestWindow window;
    // A wedge: two triangular ends and three quadrilateral sides.
    Body wedge = AModeler::MakePrism({{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}}, {0, 0, 1});
    Entity entity = EntityOf(wedge);
    const GlRecording recording;
    entity.DrawObjectQuads();
    const std::vector<std::string> listing = recording.Listing();
    EXPECT_EQ(std::ranges::count(listing, "glBegin(GL_TRIANGLES)"), 2);
    EXPECT_EQ(std::ranges::count(listing, "glBegin(GL_QUADS)"), 3);
    EXPECT_EQ(recording.Count("glCallList"), 0);
    EXPECT_EQ(recording.Count("glVertex3f"), 18);
}

TEST(BodyDrawing, FacesAreDrawnWithoutTheEdges)
{
    const karv_test::GlTestWindow window;
    Body cube = UnitCube();
    Entity entity = EntityOf(cube);
    const GlRecording recording;
    entity.DrawObjectQuads();
    EXPECT_EQ(recording.Count("glBegin"), 6);
    EXPECT_EQ(recording.Count("glColor3f"), 0);
    EXPECT_EQ(recording.Count("glDisable"), 0);
}

TEST(BodyDrawing, LinesAreTheEdgesAlone)
{
    const karv_test::GlTestWindow window;
    Body cube = UnitCube();
    Entity entity = EntityOf(cube);
    const GlRecording recording;
    entity.DrawObjectLines();
    EXPECT_EQ(recording.Count("glBegin"), 12);
    EXPECT_EQ(recording.Count("glVertex3f"), 24);
    EXPECT_EQ(recording.Count("glNormal3f"), 0);
}

TEST(BodyDrawing, BodyWithoutFacesFallsBackToItsEdges)
{
    const karv_test::GlTestWindow window;
    Body cube = UnitCube();
    Entity entity = EntityOf(cube);
    entity.faces.clear();
    const GlRecording recording;
    entity.DrawObjectQuads();
    EXPECT_EQ(recording.Count("glBegin"), 12);
}
