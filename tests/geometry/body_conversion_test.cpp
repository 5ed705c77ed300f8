// Solids of the modeler as entities: faces, edges, box, and the parts that are kept of a broken body or after
// a modeler's fault.
#include "tests/geometry/solids.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <optional>
#include <vector>

using AModeler::Body;
using AModeler::Face;
using AModeler::MakeBox;
using karv_test::EntityOf;
using karv_test::ExpectNoBox;
using karv_test::FaceNumber;
using karv_test::kGreen;
using karv_test::kRed;
using karv_test::UnitCube;
using testing::ElementsAre;
using testing::IsEmpty;
using Entity = KARVGraphicalEntity;

namespace
{

KARVGLVertex Narrowed(const AcGePoint3d& point)
{
    return {point.x, point.y, point.z};
}

} // namespace

TEST(BodyConversion, UnitCubeGivesSixFacesOfFourCorners)
{
    Body cube = UnitCube();
    const Entity entity = EntityOf(cube);
    ASSERT_EQ(entity.faces.size(), 6U);
    for (const KARVGLFace& face : entity.faces) {
        EXPECT_EQ(face.vertices.size(), 4U);
        EXPECT_EQ(face.displayList, 0U);
    }
}

TEST(BodyConversion, UnitCubeGivesTwelveSegments)
{
    Body cube = UnitCube();
    const Entity entity = EntityOf(cube);
    ASSERT_EQ(entity.lineVertices.size(), 24U);
    for (std::size_t i = 0; i < 24; i += 2) {
        const KARVGLVertex& start = entity.lineVertices[i];
        const KARVGLVertex& end = entity.lineVertices[i + 1];
        // An edge of the unit cube changes one coordinate by 1.
        EXPECT_EQ(std::fabs(start.x - end.x) + std::fabs(start.y - end.y) + std::fabs(start.z - end.z), 1.0F);
    }
}

TEST(BodyConversion, NormalsAreThoseOfThePlanes)
{
    Body cube = UnitCube();
    const Entity entity = EntityOf(cube);
    for (std::size_t i = 0; i < 6; ++i) {
        const KARVGLVertex& normal = entity.faces[i].normal;
        EXPECT_EQ(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z, 1.0F);
        // Outwards: the corner lies on the side that the normal points to, seen from the middle of the cube.
        const KARVGLVertex& corner = entity.faces[i].vertices[0];
        EXPECT_EQ(normal.x * (corner.x - 0.5F) + normal.y * (corner.y - 0.5F) + normal.z * (corner.z - 0.5F),
                  0.5F);
    }
}

TEST(BodyConversion, CornersFollowTheLoop)
{
    Body cube = MakeBox({1, 2, 3}, {2, 4, 6});
    const Entity entity = EntityOf(cube);
    const Face* face = cube.faceList();
    for (const KARVGLFace& converted : entity.faces) {
        const AModeler::Edge* edge = face->edgeLoop();
        for (const KARVGLVertex& corner : converted.vertices) {
            EXPECT_EQ(corner, Narrowed(edge->vertex()->point()));
            edge = edge->next();
        }
        face = face->next();
    }
}

TEST(BodyConversion, SegmentsFollowTheListOfEdges)
{
    Body cube = MakeBox({1, 2, 3}, {2, 4, 6});
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    cube.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    const Entity entity = EntityOf(cube);
    ASSERT_EQ(entity.lineVertices.size(), 2 * edges.size());
    for (std::size_t i = 0; i < edges.size(); ++i) {
        EXPECT_EQ(entity.lineVertices[2 * i], Narrowed(edges[i]->vertex()->point()));
        EXPECT_EQ(entity.lineVertices[2 * i + 1], Narrowed(edges[i]->next()->vertex()->point()));
    }
}

TEST(BodyConversion, BoxOfACubeBelowTheOriginReachesIt)
{
    Body cube = MakeBox({-2, -2, -2}, {-1, -1, -1});
    const Entity entity = EntityOf(cube);
    EXPECT_TRUE(entity.extentsValid);
    EXPECT_EQ(entity.minExtent, KARVGLVertex(-2.0, -2.0, -2.0));
    EXPECT_EQ(entity.maxExtent, KARVGLVertex(0.0, 0.0, 0.0));
}

TEST(BodyConversion, BoxOfACubeAboveTheOriginIsItsOwn)
{
    Body cube = MakeBox({1, 1, 1}, {2, 2, 2});
    const Entity entity = EntityOf(cube);
    EXPECT_TRUE(entity.extentsValid);
    EXPECT_EQ(entity.minExtent, KARVGLVertex(1.0, 1.0, 1.0));
    EXPECT_EQ(entity.maxExtent, KARVGLVertex(2.0, 2.0, 2.0));
}

TEST(BodyConversion, BoxReachesTheOriginOnTheAxesThatLieBelowIt)
{
    Body cube = MakeBox({-2, 1, -3}, {-1, 2, 4});
    const Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.minExtent, KARVGLVertex(-2.0, 1.0, -3.0));
    EXPECT_EQ(entity.maxExtent, KARVGLVertex(0.0, 2.0, 4.0));
}

TEST(BodyConversion, CoordinatesAreNarrowedToNearest)
{
    Body box = MakeBox({0.1, -0.2, 0.3}, {16777217.0, 1e-50, 1e38});
    const Entity entity = EntityOf(box);
    EXPECT_EQ(entity.minExtent.x, 0.1F);
    EXPECT_EQ(entity.minExtent.y, -0.2F);
    EXPECT_EQ(entity.minExtent.z, 0.3F);
    EXPECT_EQ(entity.maxExtent.x, 16777216.0F); // a tie, rounded to even
    EXPECT_EQ(entity.maxExtent.y, 0.0F);
    EXPECT_EQ(entity.maxExtent.z, 1e38F);
}

TEST(BodyConversion, TypeAndOpacity)
{
    Body cube = UnitCube();
    const Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.entityType, Entity::EntityType3);
    EXPECT_EQ(entity.alpha, 1.0F);
    const Entity strange(&cube, static_cast<Entity::EntityType>(-7), kRed);
    EXPECT_EQ(strange.entityType, static_cast<Entity::EntityType>(-7));
}

TEST(BodyConversion, ColorIndexIsCutToEightBits)
{
    Body cube = UnitCube();
    EXPECT_EQ(EntityOf(cube, 1).color, KARVGLVertex(1.0, 0.0, 0.0));
    EXPECT_EQ(EntityOf(cube, 257).color, KARVGLVertex(1.0, 0.0, 0.0));
    EXPECT_EQ(EntityOf(cube, 0xFF03).color, KARVGLVertex(0.0, 1.0, 0.0));
    EXPECT_EQ(EntityOf(cube, 256).color, KARVGLVertex(1.0, 1.0, 1.0)); // index 0 is the foreground colour
}

TEST(BodyConversion, ColorChannelsAreDividedBy255)
{
    Body cube = UnitCube();
    EXPECT_EQ(EntityOf(cube, 8).color, KARVGLVertex(128.0 / 255.0, 128.0 / 255.0, 128.0 / 255.0)); // grey 128
}

TEST(BodyConversion, EmptyBodyGivesNothing)
{
    Body body;
    Entity entity = EntityOf(body);
    EXPECT_EQ(entity.GetFaceNumber(), 0);
    EXPECT_THAT(entity.lineVertices, IsEmpty());
    ExpectNoBox(entity);
    EXPECT_EQ(entity.entityType, Entity::EntityType3);
    EXPECT_EQ(entity.color, KARVGLVertex(1.0, 0.0, 0.0));
}

TEST(BodyConversion, BodyWithoutPhysicalEdgesHasFacesAndNoBox)
{
    Body cube = UnitCube();
    for (AModeler::Edge& edge : cube.edges_)
        edge.setPhysical(false);
    Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.GetFaceNumber(), 6);
    EXPECT_THAT(entity.lineVertices, IsEmpty());
    ExpectNoBox(entity);
}

TEST(BodyConversion, OnlyPhysicalEdgesBecomeSegments)
{
    Body prism =
        AModeler::MakePrism({{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}}}, {0, 0, 1});
    Entity entity = EntityOf(prism);
    EXPECT_EQ(entity.lineVertices.size(), 36U); // 6 at each end, 6 between them
    EXPECT_GE(entity.GetFaceNumber(), 10);      // the L-shaped ends are split
}

TEST(BodyConversion, LoopThatEndsEarlyKeepsTheCornersSoFar)
{
    Body cube = UnitCube();
    Face& face = FaceNumber(cube, 1);
    face.edgeLoop()->next()->next_ = nullptr;
    const Entity entity = EntityOf(cube);
    ASSERT_EQ(entity.faces.size(), 6U);
    EXPECT_THAT(entity.faces[1].vertices, ElementsAre(Narrowed(face.edgeLoop()->vertex()->point()),
                                                      Narrowed(face.edgeLoop()->next()->vertex()->point())));
    EXPECT_EQ(entity.faces[2].vertices.size(), 4U);
}

TEST(BodyConversion, FaceWithoutALoopHasNoCorners)
{
    Body cube = UnitCube();
    cube.faceList()->first_edge_ = nullptr;
    const Entity entity = EntityOf(cube);
    ASSERT_EQ(entity.faces.size(), 6U);
    EXPECT_THAT(entity.faces[0].vertices, IsEmpty());
    EXPECT_EQ(entity.faces[0].normal, KARVGLVertex());
}

TEST(BodyConversion, EdgeCountLimitsTheCorners)
{
    Body cube = UnitCube();
    FaceNumber(cube, 0).edge_count_ = 3;
    FaceNumber(cube, 1).edge_count_ = 0;
    FaceNumber(cube, 2).edge_count_ = -1;
    FaceNumber(cube, 3).edge_count_ = 9; // around the loop twice, and one corner more
    const Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.faces[0].vertices.size(), 3U);
    EXPECT_EQ(entity.faces[1].vertices.size(), 0U);
    EXPECT_EQ(entity.faces[2].vertices.size(), 0U);
    ASSERT_EQ(entity.faces[3].vertices.size(), 9U);
    EXPECT_EQ(entity.faces[3].vertices[8], entity.faces[3].vertices[0]);
}

TEST(BodyConversion, EdgeCountBeyondTheLoopReservesNoMemory)
{
    Body cube = UnitCube();
    Face& face = FaceNumber(cube, 0);
    face.edge_count_ = std::numeric_limits<int>::max();
    face.edgeLoop()->next()->next_ = nullptr;
    const Entity entity = EntityOf(cube);
    ASSERT_EQ(entity.faces.size(), 6U);
    EXPECT_EQ(entity.faces[0].vertices.size(), 2U);
    EXPECT_LT(entity.faces[0].vertices.capacity(), 1000U);
}

TEST(BodyConversion, FaceListMayBeShorterThanTheCount)
{
    Body cube = UnitCube();
    FaceNumber(cube, 1).next_ = nullptr;
    Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.GetFaceNumber(), 2);
    EXPECT_EQ(entity.faces.capacity(), 6U); // reserved for the counted faces
    EXPECT_EQ(entity.lineVertices.size(), 24U);
}

TEST(BodyConversion, EdgesWithoutASuccessorAreSkipped)
{
    Body cube = UnitCube();
    AModeler::Edge* const first = cube.faceList()->edgeLoop();
    first->next_ = nullptr;
    const Entity entity = EntityOf(cube);
    EXPECT_EQ(entity.lineVertices.size(), 22U);
}

TEST(BodyConversion, CoordinatesThatAreNotFiniteArePassedOn)
{
    Body cube = UnitCube();
    cube.vertices_[0].point_.x = std::numeric_limits<double>::infinity();
    const Entity entity = EntityOf(cube);
    int infinite = 0;
    for (const KARVGLVertex& vertex : entity.lineVertices)
        infinite += std::isinf(vertex.x) ? 1 : 0;
    EXPECT_EQ(infinite, 3); // three edges meet at a corner
    EXPECT_EQ(entity.maxExtent.x, std::numeric_limits<float>::infinity());
}

TEST(BodyConversion, EntityOutlivesItsBody)
{
    std::optional<Body> body(UnitCube());
    Entity entity = EntityOf(*body);
    body.reset();
    EXPECT_EQ(entity.GetFaceNumber(), 6);
    EXPECT_EQ(entity.faces[5].vertices.size(), 4U);
    const Entity copy = entity;
    EXPECT_EQ(copy.lineVertices.size(), 24U);
}

TEST(BodyConversion, BodyIsOnlyRead)
{
    Body cube = UnitCube();
    const Entity first = EntityOf(cube);
    const Entity second = EntityOf(cube);
    EXPECT_EQ(first.lineVertices, second.lineVertices);
    EXPECT_EQ(cube.faceCount(), 6);
}

TEST(BodyConversion, TwoBodiesAreTwoEntities)
{
    Body one = MakeBox({0, 0, 0}, {1, 1, 1});
    Body other = MakeBox({5, 5, 5}, {6, 6, 6});
    const Entity first = EntityOf(one, kRed);
    const Entity second = EntityOf(other, kGreen);
    EXPECT_EQ(first.maxExtent, KARVGLVertex(1.0, 1.0, 1.0));
    EXPECT_EQ(second.minExtent, KARVGLVertex(5.0, 5.0, 5.0));
    EXPECT_NE(first.color, second.color);
}

TEST(BodyConversion, HundredBodiesInARow)
{
    for (int i = 0; i < 100; ++i) {
        Body box = MakeBox({0, 0, 0}, {1.0 + i, 1, 1});
        Entity entity = EntityOf(box);
        ASSERT_EQ(entity.GetFaceNumber(), 6);
        ASSERT_EQ(entity.maxExtent.x, static_cast<float>(1 + i));
    }
}
