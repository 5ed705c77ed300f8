// Bodies from points and loops: how their parts are linked, and the reasons of refusals.
#include "tests/platform/modeler_checks.h"
#include "tests/support/non_finite.h"

#include <gmock/gmock.h>

#include <limits>
#include <optional>
#include <type_traits>

using namespace karv_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

// A tetrahedron, the corner of a unit cube. Its faces run clockwise as seen from outside.
const Points kTetrahedron{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const std::vector<Loop> kTetrahedronFaces{{0, 1, 2}, {0, 3, 1}, {0, 2, 3}, {1, 3, 2}};

/// The tetrahedron's builder with one face changed.
AModeler::BodyBuilder WithFace(std::size_t face, Loop corners)
{
    std::vector<Loop> faces = kTetrahedronFaces;
    faces[face] = std::move(corners);
    return BuilderOf(kTetrahedron, faces);
}

int NumberOf(const AModeler::Body& body, const AModeler::Vertex* vertex)
{
    return static_cast<int>(vertex - body.vertices_.data());
}

/// The edges as pairs of point numbers.
std::vector<std::pair<int, int>> EndsOf(const AModeler::Body& body, const std::vector<AModeler::Edge*>& edges)
{
    std::vector<std::pair<int, int>> ends;
    for (const AModeler::Edge* edge : edges)
        ends.emplace_back(NumberOf(body, edge->vertex()), NumberOf(body, edge->next()->vertex()));
    return ends;
}

using Ends = std::pair<int, int>;

template <typename Action>
std::string BuildErrorOf(const Action& action)
{
    try {
        action();
    } catch (const AModeler::BodyError& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST(ModelerBuilder, WiresAreEdgesWithoutFaces)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {});
    builder.AddWire(0, 1);
    builder.AddWire(3, 2);
    AModeler::Body body = builder.Build();
    EXPECT_EQ(body.faceCount(), 0);
    EXPECT_EQ(body.faceList(), nullptr);
    body.markSmoothEdges(180.0);
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    EXPECT_THAT(EndsOf(body, edges), ElementsAre(Ends(0, 1), Ends(3, 2)));
    EXPECT_EQ(vertices.size(), 4U);
    for (const AModeler::Edge* edge : edges) {
        EXPECT_EQ(edge->face(), nullptr);
        EXPECT_EQ(edge->next(), edge->partner());
        EXPECT_EQ(edge->next()->next(), edge);
    }
    edges.front()->setPhysical(false);
    EXPECT_FALSE(edges.front()->partner()->isPhysical());
}

TEST(ModelerBuilder, WiresComeAfterTheEdgesOfFaces)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, kTetrahedronFaces);
    builder.AddWire(1, 0);
    AModeler::Body body = builder.Build();
    EXPECT_EQ(body.faceCount(), 4);
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    ASSERT_EQ(edges.size(), 7U);
    EXPECT_EQ(EndsOf(body, edges).back(), Ends(1, 0));
    EXPECT_EQ(edges.back()->face(), nullptr);
    for (AModeler::Face* face = body.faceList(); face != nullptr; face = face->next()) {
        const AModeler::Edge* edge = face->edgeLoop();
        for (int i = 0; i < face->edgeCount(); ++i, edge = edge->next()) {
            EXPECT_EQ(edge->face(), face);
            EXPECT_NE(edge->partner()->face(), nullptr);
        }
    }
}

TEST(ModelerBuilder, WiresWithoutLengthOrPointsAreRefused)
{
    AModeler::BodyBuilder loop = BuilderOf(kTetrahedron, {});
    loop.AddWire(2, 2);
    EXPECT_EQ(RefusalOf(loop), "wire 0 from point 2 to itself has no length");
    AModeler::BodyBuilder unknown = BuilderOf(kTetrahedron, {});
    unknown.AddWire(0, 1);
    unknown.AddWire(0, 4);
    EXPECT_EQ(RefusalOf(unknown), "wire 1 names point 4, which is not there");
}

TEST(ModelerBuilder, NoFacesMakeAnEmptyBody)
{
    AModeler::BodyBuilder builder;
    AModeler::Body body = builder.Build();
    EXPECT_EQ(body.faceCount(), 0);
    EXPECT_EQ(body.faceList(), nullptr);
    EXPECT_THAT(PhysicalEdgesOf(body), IsEmpty());
}

TEST(ModelerBuilder, PointsAloneMakeAnEmptyBody)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {});
    AModeler::Body body = builder.Build();
    EXPECT_EQ(body.faceCount(), 0);
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    EXPECT_THAT(vertices, IsEmpty());
}

TEST(ModelerBuilder, PointsAreNumberedFromZero)
{
    AModeler::BodyBuilder builder;
    EXPECT_EQ(builder.AddPoint({5, 5, 5}), 0);
    EXPECT_EQ(builder.AddPoint({5, 5, 5}), 1);
    EXPECT_EQ(builder.AddPoint({6, 5, 5}), 2);
}

TEST(ModelerBuilder, FacesAndCornersKeepTheirOrder)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    ASSERT_EQ(body.faceCount(), 4);
    ExpectSound(body);
    std::size_t number = 0;
    for (const AModeler::Face* face : FacesOf(body)) {
        Loop corners;
        for (const AModeler::Edge* edge : EdgesOf(*face))
            corners.push_back(NumberOf(body, edge->vertex()));
        EXPECT_EQ(corners, kTetrahedronFaces[number++]);
    }
}

TEST(ModelerBuilder, VerticesHaveThePointsOfTheirNumbers)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    const Points corners = CornersOf(*FacesOf(body)[3]); // 1, 3, 2
    EXPECT_EQ(corners[0].x, 1.0);
    EXPECT_EQ(corners[1].z, 1.0);
    EXPECT_EQ(corners[2].y, 1.0);
}

TEST(ModelerBuilder, FacesThatShareAnEdgeShareItsVertices)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    EXPECT_EQ(EulerCharacteristic(body), 2); // 4 - 6 + 4
}

TEST(ModelerBuilder, NormalsPointOutwards)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    EXPECT_NEAR(VolumeOf(body), 1.0 / 6.0, 1e-15);
    EXPECT_NEAR(NormalOf(*body.faceList()).z, -1.0, 1e-15); // the face at the bottom
}

TEST(ModelerBuilder, StepsMakeTheSameBodyAsWholeFaces)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {});
    for (const Loop& face : kTetrahedronFaces)
        AddFaceWithHoles(builder, {face});
    AModeler::Body body = builder.Build();
    ExpectSound(body);
    EXPECT_NEAR(VolumeOf(body), 1.0 / 6.0, 1e-15);
}

TEST(ModelerBuilder, BuildingTwiceMakesTwoBodies)
{
    const AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, kTetrahedronFaces);
    AModeler::Body one = builder.Build();
    AModeler::Body other = builder.Build();
    one.faceList()->edgeLoop()->setPhysical(false);
    ExpectSound(one);
    ExpectSound(other);
    EXPECT_EQ(PhysicalEdgesOf(one).size(), 5U);
    EXPECT_EQ(PhysicalEdgesOf(other).size(), 6U);
}

TEST(ModelerBuilder, BuilderGoesOnAfterARefusal)
{
    AModeler::BodyBuilder builder =
        BuilderOf(kTetrahedron, {kTetrahedronFaces.begin(), kTetrahedronFaces.end() - 1});
    EXPECT_NE(RefusalOf(builder), "");
    builder.AddFace(kTetrahedronFaces.back());
    EXPECT_EQ(builder.Build().faceCount(), 4);
}

TEST(ModelerBuilder, TwoSolidsCanMakeOneBody)
{
    Points points = kTetrahedron;
    std::vector<Loop> faces = kTetrahedronFaces;
    for (const AcGePoint3d& point : kTetrahedron)
        points.push_back(point + AcGeVector3d(5, 0, 0));
    for (const Loop& face : kTetrahedronFaces)
        faces.push_back({face[0] + 4, face[1] + 4, face[2] + 4});
    AModeler::Body body = BuilderOf(points, faces).Build();
    ExpectSound(body);
    EXPECT_EQ(EulerCharacteristic(body), 4); // two balls
}

TEST(ModelerBuilder, FacesWithoutAreaStayAsTheyAre)
{
    AModeler::Body triangle = LaminaOf({{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}}).Build();
    EXPECT_EQ(triangle.faceCount(), 2);
    AModeler::Body square = LaminaOf({{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 0, 0}}}).Build();
    EXPECT_EQ(square.faceCount(), 2);
    ExpectSound(square);
}

TEST(ModelerBuilderRefusal, PointThatIsNotFinite)
{
    for (const AcGePoint3d& bad :
         {AcGePoint3d{kNan, 0, 0}, AcGePoint3d{0, kInfinity, 0}, AcGePoint3d{0, 0, -kInfinity}}) {
        Points points = kTetrahedron;
        points[2] = bad;
        EXPECT_EQ(RefusalOf(BuilderOf(points, kTetrahedronFaces)), "point 2 is not finite");
    }
}

TEST(ModelerBuilderRefusal, PointThatIsNotFiniteEvenWhereNoFaceNamesIt)
{
    Points points = kTetrahedron;
    points.emplace_back(std::numeric_limits<double>::quiet_NaN(), 0.0, 0.0);
    EXPECT_EQ(RefusalOf(BuilderOf(points, kTetrahedronFaces)), "point 4 is not finite");
}

TEST(ModelerBuilderRefusal, FaceWithoutALoop)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, kTetrahedronFaces);
    builder.BeginFace();
    EXPECT_EQ(RefusalOf(builder), "face 4 has no loop");
}

TEST(ModelerBuilderRefusal, FaceWithoutALoopBeforeOneThatHasSome)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {});
    builder.BeginFace();
    for (const Loop& face : kTetrahedronFaces)
        builder.AddFace(face);
    EXPECT_EQ(RefusalOf(builder), "face 0 has no loop");
}

TEST(ModelerBuilderRefusal, LoopThatIsNotEnded)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {{0, 1, 2}});
    builder.BeginFace();
    builder.BeginLoop();
    for (const int corner : {0, 3, 1})
        builder.AddCorner(corner);
    EXPECT_EQ(RefusalOf(builder), "a loop of face 1 is open");
}

TEST(ModelerBuilderRefusal, LoopThatIsNotEndedBeforeTheNextBegins)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {});
    builder.BeginFace();
    builder.BeginLoop();
    for (const Loop& face : kTetrahedronFaces)
        builder.AddFace(face);
    EXPECT_EQ(RefusalOf(builder), "a loop of face 0 is open");
}

TEST(ModelerBuilderRefusal, LoopOfUnderThreeCorners)
{
    EXPECT_EQ(RefusalOf(WithFace(1, {})), "a loop of face 1 has under three corners");
    EXPECT_EQ(RefusalOf(WithFace(1, {3})), "a loop of face 1 has under three corners");
    EXPECT_EQ(RefusalOf(WithFace(1, {0, 3})), "a loop of face 1 has under three corners");
}

TEST(ModelerBuilderRefusal, HoleOfUnderThreeCorners)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {{0, 1, 2}});
    AddFaceWithHoles(builder, {{0, 3, 1}, {2, 3}});
    EXPECT_EQ(RefusalOf(builder), "a loop of face 1 has under three corners");
}

TEST(ModelerBuilderRefusal, PointNumberOutOfRange)
{
    EXPECT_EQ(RefusalOf(WithFace(2, {0, 2, 4})), "face 2 names point 4, which is not there");
    EXPECT_EQ(RefusalOf(WithFace(2, {0, -1, 3})), "face 2 names point -1, which is not there");
    constexpr int kLargest = std::numeric_limits<int>::max();
    EXPECT_EQ(RefusalOf(WithFace(2, {kLargest, 2, 3})), "face 2 names point 2147483647, which is not there");
}

TEST(ModelerBuilderRefusal, FaceWithoutAnyPoint)
{
    EXPECT_EQ(RefusalOf(BuilderOf({}, {{0, 1, 2}})), "face 0 names point 0, which is not there");
}

TEST(ModelerBuilderRefusal, EdgeFromAPointToItself)
{
    EXPECT_EQ(RefusalOf(WithFace(3, {1, 3, 3, 2})),
              "the edge from point 3 to point 3 of face 3 has no length");
    EXPECT_EQ(RefusalOf(WithFace(3, {1, 3, 2, 1})),
              "the edge from point 1 to point 1 of face 3 has no length");
}

TEST(ModelerBuilderRefusal, EdgeUsedTwiceInOneDirection)
{
    // The last face the other way round: 1-2 is an edge of face 0 already.
    EXPECT_EQ(RefusalOf(WithFace(3, {1, 2, 3})),
              "the edge from point 1 to point 2 is used twice in that direction, by face 0 and face 3");
}

TEST(ModelerBuilderRefusal, FaceGivenTwice)
{
    std::vector<Loop> faces = kTetrahedronFaces;
    faces.push_back(faces[0]);
    EXPECT_EQ(RefusalOf(BuilderOf(kTetrahedron, faces)),
              "the edge from point 0 to point 1 is used twice in that direction, by face 0 and face 4");
}

TEST(ModelerBuilderRefusal, EdgeUsedTwiceByOneFace)
{
    AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {{0, 1, 2, 0, 1, 3}});
    EXPECT_EQ(RefusalOf(builder),
              "the edge from point 0 to point 1 is used twice in that direction, by face 0 and face 0");
}

TEST(ModelerBuilderRefusal, FaceThatIsMissing)
{
    const std::vector<Loop> three(kTetrahedronFaces.begin() + 1, kTetrahedronFaces.end());
    // Without the first face, edge 1-0 of the next one, now face 0, has no twin.
    EXPECT_EQ(RefusalOf(BuilderOf(kTetrahedron, three)),
              "the edge from point 1 to point 0 of face 0 has no twin, so the body is open");
}

TEST(ModelerBuilderRefusal, OneFaceAlone)
{
    EXPECT_EQ(RefusalOf(BuilderOf(kTetrahedron, {{0, 1, 2}})),
              "the edge from point 0 to point 1 of face 0 has no twin, so the body is open");
}

TEST(ModelerBuilderRefusal, EqualPointsOfDifferentNumbersDoNotClose)
{
    Points points = kTetrahedron;
    points.push_back(points[3]);
    std::vector<Loop> faces = kTetrahedronFaces;
    faces[3] = {1, 4, 2};
    EXPECT_EQ(RefusalOf(BuilderOf(points, faces)),
              "the edge from point 3 to point 1 of face 1 has no twin, so the body is open");
}

TEST(ModelerBuilderRefusal, StepsOutOfOrder)
{
    AModeler::BodyBuilder builder;
    EXPECT_EQ(BuildErrorOf([&] { builder.BeginLoop(); }), "a loop begins outside any face");
    EXPECT_EQ(BuildErrorOf([&] { builder.AddCorner(0); }), "a corner is outside any loop");
    EXPECT_EQ(BuildErrorOf([&] { builder.EndLoop(); }), "a loop ends that has not begun");
    builder.BeginFace();
    EXPECT_EQ(BuildErrorOf([&] { builder.AddCorner(0); }), "a corner is outside any loop");
    builder.BeginLoop();
    builder.EndLoop();
    EXPECT_EQ(BuildErrorOf([&] { builder.AddCorner(0); }), "a corner is outside any loop");
    EXPECT_EQ(BuildErrorOf([&] { builder.EndLoop(); }), "a loop ends that has not begun");
}

TEST(ModelerBuilderRefusal, IsAStandardError)
{
    const AModeler::BodyBuilder builder = BuilderOf(kTetrahedron, {{0, 1}});
    EXPECT_THROW(static_cast<void>(builder.Build()), std::runtime_error);
}

TEST(ModelerBody, PhysicalEdgesComeOnceEachInTheOrderOfTheLoops)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    const std::vector<Ends> expected{{0, 1}, {1, 2}, {2, 0}, {0, 3}, {3, 1}, {2, 3}};
    EXPECT_EQ(EndsOf(body, PhysicalEdgesOf(body)), expected);
    EXPECT_EQ(EndsOf(body, PhysicalEdgesOf(body)), expected); // and again
}

TEST(ModelerBody, VerticesComeOnceEachInTheOrderOfTheEdges)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    Loop numbers;
    for (const AModeler::Vertex* vertex : vertices)
        numbers.push_back(NumberOf(body, vertex));
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2, 3));
}

TEST(ModelerBody, OnlyWhatIsAskedForIsListed)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(false, false, edges, vertices);
    EXPECT_THAT(edges, IsEmpty());
    EXPECT_THAT(vertices, IsEmpty());
    body.getPhysicalEdgesAndVertices(true, false, edges, vertices);
    EXPECT_EQ(edges.size(), 6U);
    EXPECT_THAT(vertices, IsEmpty());
    body.getPhysicalEdgesAndVertices(false, true, edges, vertices);
    EXPECT_EQ(edges.size(), 6U);
    EXPECT_EQ(vertices.size(), 4U);
}

TEST(ModelerBody, ListsAreAppendedTo)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    std::vector<AModeler::Edge*> edges{nullptr};
    std::vector<AModeler::Vertex*> vertices{nullptr};
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    EXPECT_EQ(edges.size(), 7U);
    EXPECT_EQ(edges.front(), nullptr);
    EXPECT_EQ(vertices.size(), 5U);
}

TEST(ModelerBody, EdgeMarkedNonPhysicalIsNotListedFromEitherSide)
{
    for (const bool other_side : {false, true}) {
        AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
        AModeler::Edge* edge = EdgesOf(*body.faceList())[1]; // 1-2
        (other_side ? edge->partner() : edge)->setPhysical(false);
        EXPECT_EQ(EndsOf(body, PhysicalEdgesOf(body)),
                  (std::vector<Ends>{{0, 1}, {2, 0}, {0, 3}, {3, 1}, {2, 3}}));
        edge->setPhysical(true);
        EXPECT_EQ(PhysicalEdgesOf(body).size(), 6U);
        ExpectSound(body);
    }
}

TEST(ModelerBody, VertexWithoutPhysicalEdgesIsNotListed)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    for (const AModeler::Face* face : FacesOf(body))
        for (AModeler::Edge* edge : EdgesOf(*face))
            if (NumberOf(body, edge->vertex()) == 3)
                edge->setPhysical(false);
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    EXPECT_EQ(edges.size(), 3U);
    EXPECT_EQ(vertices.size(), 3U);
}

TEST(ModelerBody, EdgeWithoutASuccessorIsListed)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    body.faceList()->edgeLoop()->next_ = nullptr;
    EXPECT_EQ(PhysicalEdgesOf(body).size(), 6U);
}

TEST(ModelerBody, SmoothEdgesAreThoseUnderTheAngle)
{
    // Normals of the tetrahedron: its three faces on the axes stand at 90 degrees to each other, and at
    // acos(-1/sqrt 3) = 125.26 degrees to the fourth.
    const auto physical_after = [](double angle) {
        AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
        body.markSmoothEdges(angle);
        ExpectSound(body);
        return PhysicalEdgesOf(body).size();
    };
    EXPECT_EQ(physical_after(0.0), 6U);
    EXPECT_EQ(physical_after(89.9), 6U);
    EXPECT_EQ(physical_after(90.1), 3U);
    EXPECT_EQ(physical_after(125.2), 3U);
    EXPECT_EQ(physical_after(125.3), 0U);
    EXPECT_EQ(physical_after(-10.0), 6U);
    EXPECT_EQ(physical_after(std::numeric_limits<double>::quiet_NaN()), 6U);
}

TEST(ModelerBody, MarkingSmoothEdgesMakesNonePhysicalAgain)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    body.markSmoothEdges(180.0);
    body.markSmoothEdges(0.0);
    EXPECT_THAT(PhysicalEdgesOf(body), IsEmpty());
}

TEST(ModelerBody, MarkingSmoothEdgesKeepsPlanesThatAreThere)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    for (AModeler::Face* face : FacesOf(body)) {
        face->plane_.normal = {0, 0, 1}; // all alike
        face->is_plane_evaluated_ = true;
    }
    body.markSmoothEdges(1.0);
    EXPECT_THAT(PhysicalEdgesOf(body), IsEmpty());
}

TEST(ModelerBody, FaceWithoutAreaKeepsItsEdges)
{
    AModeler::Body body = LaminaOf({{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}}).Build();
    body.markSmoothEdges(180.0);
    EXPECT_EQ(PhysicalEdgesOf(body).size(), 3U);
}

TEST(ModelerBody, EdgesWithoutPartnersStayAsTheyAre)
{
    AModeler::Body body = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    AModeler::Edge* edge = body.faceList()->edgeLoop();
    edge->partner_->partner_ = nullptr;
    edge->partner_ = nullptr;
    body.markSmoothEdges(180.0);
    EXPECT_EQ(PhysicalEdgesOf(body).size(), 2U); // its halves, which have no partner
    edge->setPhysical(false);
    EXPECT_EQ(PhysicalEdgesOf(body).size(), 1U);
}

TEST(ModelerBody, NewOneIsEmpty)
{
    AModeler::Body body;
    EXPECT_EQ(body.faceCount(), 0);
    EXPECT_EQ(body.faceList(), nullptr);
    body.markSmoothEdges(45.0);
    EXPECT_THAT(PhysicalEdgesOf(body), IsEmpty());
}

TEST(ModelerBody, MovingKeepsThePartsInPlace)
{
    AModeler::Body source = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
    const AModeler::Face* const first = source.faceList();
    const AModeler::Edge* const edge = first->edgeLoop();
    AModeler::Body body(std::move(source));
    EXPECT_EQ(body.faceList(), first);
    EXPECT_EQ(body.faceList()->edgeLoop(), edge);
    ExpectSound(body);
    EXPECT_NEAR(VolumeOf(body), 1.0 / 6.0, 1e-15);
    EXPECT_EQ(source.faceCount(), 0); // NOLINT(bugprone-use-after-move): documented to be empty
    EXPECT_EQ(source.faceList(), nullptr);
}

TEST(ModelerBody, MoveAssignmentReplacesTheParts)
{
    AModeler::Body body = LaminaOf({{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}}}).Build();
    {
        AModeler::Body source = BuilderOf(kTetrahedron, kTetrahedronFaces).Build();
        body = std::move(source);
    }
    ExpectSound(body);
    EXPECT_EQ(body.faceCount(), 4);
    EXPECT_EQ(PhysicalEdgesOf(body).size(), 6U);
}

TEST(ModelerBody, HundredMovesInARow)
{
    std::vector<AModeler::Body> bodies;
    for (int i = 0; i < 100; ++i) // the vector moves them as it grows
        bodies.push_back(BuilderOf(kTetrahedron, kTetrahedronFaces).Build());
    for (AModeler::Body& body : bodies) {
        ExpectSound(body);
        EXPECT_EQ(PhysicalEdgesOf(body).size(), 6U);
    }
}

TEST(ModelerBody, CannotBeCopied)
{
    EXPECT_FALSE(std::is_copy_constructible_v<AModeler::Body>);
    EXPECT_FALSE(std::is_copy_assignable_v<AModeler::Body>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<AModeler::Body>);
}
