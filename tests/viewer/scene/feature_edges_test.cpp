#include "viewer/scene/feature_edges.h"

#include "tests/viewer/test_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace viewer
{
namespace
{

using testing::IsEmpty;
using testing::SizeIs;

Point Unchanged(const Point& point)
{
    return point;
}

Piece BoxPiece()
{
    return BoxModel(BoxOf({0, 0, 0}, {1, 2, 3})).pieces.front();
}

int PhysicalEdges(AModeler::Body& body)
{
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    return static_cast<int>(edges.size());
}

/// The wall and caps of a prism over a regular polygon of radius 1, from z = 0 to 1.
Piece PrismPiece(int sides)
{
    std::vector<Point> low;
    std::vector<Point> high;
    for (int i = 0; i < sides; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / sides;
        low.push_back({std::cos(angle), std::sin(angle), 0.0});
        high.push_back({std::cos(angle), std::sin(angle), 1.0});
    }
    Piece piece;
    for (int i = 0; i < sides; ++i) {
        const auto here = static_cast<std::size_t>(i);
        const auto next = static_cast<std::size_t>((i + 1) % sides);
        piece.faces.push_back(MakeFace({low[here], low[next], high[next], high[here]}).value());
    }
    piece.faces.push_back(MakeFace(high).value());
    std::reverse(low.begin(), low.end());
    piece.faces.push_back(MakeFace(low).value());
    return piece;
}

TEST(MakeSolid, ClosedBoxIsABodyWithItsEdges)
{
    auto body = MakeSolid(BoxPiece(), Unchanged);
    ASSERT_TRUE(body);
    EXPECT_EQ(body->faceCount(), 6);
    EXPECT_EQ(PhysicalEdges(*body), 12);
}

TEST(MakeSolid, PlanesPointOutwards)
{
    auto body = MakeSolid(BoxPiece(), Unchanged);
    ASSERT_TRUE(body);
    const AcGePoint3d middle{0.5, 1.0, 1.5};
    for (AModeler::Face* face = body->faceList(); face != nullptr; face = face->next()) {
        face->evaluatePlane();
        EXPECT_GT(face->plane().normal.dotProduct(face->edgeLoop()->vertex()->point() - middle), 0.0);
    }
}

TEST(MakeSolid, PointsLieWhereTheyArePlaced)
{
    auto body = MakeSolid(BoxPiece(), [](const Point& point) { return point * 2.0; });
    ASSERT_TRUE(body);
    double highest = 0.0;
    for (AModeler::Face* face = body->faceList(); face != nullptr; face = face->next())
        highest = std::max(highest, face->edgeLoop()->vertex()->point().z);
    EXPECT_EQ(highest, 6.0);
}

TEST(MakeSolid, PieceWithAHoleIsNone)
{
    Piece piece = BoxPiece();
    piece.faces.pop_back();
    EXPECT_FALSE(MakeSolid(piece, Unchanged));
}

TEST(MakeSolid, FaceThatIsTurnedOverMakesNone)
{
    Piece piece = BoxPiece();
    std::reverse(piece.faces[2].corners.begin(), piece.faces[2].corners.end());
    EXPECT_FALSE(MakeSolid(piece, Unchanged));
}

// 18 sides meet at 20 degrees and 19 sides at less.
TEST(MakeSolid, WallIsSmoothWhereItsFacetsMeetAtUnderTwentyDegrees)
{
    auto sharp = MakeSolid(PrismPiece(12), Unchanged);
    ASSERT_TRUE(sharp);
    EXPECT_EQ(PhysicalEdges(*sharp), 3 * 12);
    auto smooth = MakeSolid(PrismPiece(19), Unchanged);
    ASSERT_TRUE(smooth);
    EXPECT_EQ(PhysicalEdges(*smooth), 2 * 19) << "the two caps' outlines are left";
}

TEST(MakeSolid, ListedEdgesAloneArePhysicalInEitherDirection)
{
    Piece piece = BoxPiece();
    piece.edges = {
        {{0, 0, 0}, {1, 0, 0}}, {{1, 2, 3}, {1, 2, 0}}, {{0, 0, 0}, {1, 2, 3}}, {{9, 9, 9}, {0, 0, 0}}};
    auto body = MakeSolid(piece, [](const Point& point) { return point * 2.0; });
    ASSERT_TRUE(body);
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body->getPhysicalEdgesAndVertices(true, true, edges, vertices);
    ASSERT_THAT(edges, SizeIs(2)) << "what is no edge of a face marks none";
    for (const AModeler::Edge* edge : edges) {
        const AcGeVector3d along = edge->vertex()->point() - edge->partner()->vertex()->point();
        EXPECT_EQ(std::abs(along.x) + std::abs(along.y) + std::abs(along.z),
                  std::abs(along.x) > 0 ? 2.0 : 6.0);
    }
}

TEST(MakeSolid, ListedEdgeBetweenSmoothFacesIsPhysical)
{
    Piece piece = PrismPiece(40);
    const ModelFace& side = piece.faces.front();
    piece.edges.emplace();
    for (std::size_t i = 0; i < 4; ++i)
        if (side.corners[i].z != side.corners[(i + 1) % 4].z)
            piece.edges->push_back({side.corners[i], side.corners[(i + 1) % 4]});
    ASSERT_THAT(*piece.edges, SizeIs(2));
    auto body = MakeSolid(piece, Unchanged);
    ASSERT_TRUE(body);
    EXPECT_EQ(PhysicalEdges(*body), 2);
}

TEST(MakeSolid, EmptyListLeavesNoEdge)
{
    Piece piece = BoxPiece();
    piece.edges.emplace();
    auto body = MakeSolid(piece, Unchanged);
    ASSERT_TRUE(body);
    EXPECT_EQ(PhysicalEdges(*body), 0);
}

TEST(MakeSolid, PointsThatArePlacedTogetherKeepTheirEdgesApart)
{
    Piece piece = BoxPiece();
    piece.edges = std::vector<Segment>{{{0, 0, 0}, {1, 0, 0}}};
    // The whole box goes to the plane z = 0, where each position is that of two corners.
    auto body = MakeSolid(piece, [](const Point& point) { return Point{point.x, point.y, 0}; });
    ASSERT_TRUE(body);
    EXPECT_EQ(PhysicalEdges(*body), 1);
}

TEST(MakeSolid, BothZerosAreOneCoordinate)
{
    Piece piece = BoxPiece();
    for (Point& corner : piece.faces.front().corners)
        corner.x = corner.x == 0.0 ? -0.0 : corner.x;
    EXPECT_TRUE(MakeSolid(piece, Unchanged));
}

TEST(FeatureEdges, ClosedBoxHasTwelve)
{
    EXPECT_THAT(FeatureEdges(BoxPiece()), SizeIs(12));
}

TEST(FeatureEdges, BorderOfAnOpenSurfaceIsSeen)
{
    Piece piece;
    piece.faces.push_back(MakeFace({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}).value());
    const auto edges = FeatureEdges(piece);
    ASSERT_THAT(edges, SizeIs(4));
    double length = 0.0;
    for (const auto& [start, end] : edges)
        length += Length(end - start);
    EXPECT_EQ(length, 4.0);
}

TEST(FeatureEdges, EdgeBetweenFlatNeighborsIsNotSeen)
{
    Piece piece;
    piece.faces.push_back(MakeFace({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}).value());
    piece.faces.push_back(MakeFace({{0, 0, 0}, {1, 1, 0}, {0, 1, 0}}).value());
    EXPECT_THAT(FeatureEdges(piece), SizeIs(4));
}

TEST(FeatureEdges, FoldIsSeenFromTwentyDegreesOn)
{
    for (const auto& [degrees, count] : {std::pair(19.9, 6), std::pair(20.1, 7)}) {
        const double angle = degrees * std::numbers::pi / 180.0;
        Piece piece;
        piece.faces.push_back(MakeFace({{-1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {-1, 1, 0}}).value());
        const Point out{std::cos(angle), 0, std::sin(angle)};
        piece.faces.push_back(MakeFace({{0, 0, 0}, out, out + Point{0, 1, 0}, {0, 1, 0}}).value());
        EXPECT_THAT(FeatureEdges(piece), SizeIs(count)) << degrees;
    }
}

TEST(FeatureEdges, ThreeFacesAtOneEdgeShowIt)
{
    Piece piece;
    for (const Point& tip : {Point{1, 0, 0}, Point{-1, 0.01, 0}, Point{-1, -0.01, 0}})
        piece.faces.push_back(MakeFace({{0, 0, 0}, tip, {0, 0, 1}}).value());
    EXPECT_THAT(FeatureEdges(piece), SizeIs(7)) << "the shared one once";
}

TEST(FeatureEdges, NeighborsThatAreTurnedOverShowTheirEdge)
{
    Piece piece;
    piece.faces.push_back(MakeFace({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}).value());
    piece.faces.push_back(MakeFace({{0, 1, 0}, {1, 1, 0}, {0, 0, 0}}).value());
    EXPECT_THAT(FeatureEdges(piece), SizeIs(5));
}

TEST(FeatureEdges, ListedOnesReplaceAllOthers)
{
    Piece piece = BoxPiece();
    piece.edges = std::vector<Segment>{{{0, 0, 0}, {1, 0, 0}}};
    ASSERT_THAT(FeatureEdges(piece), SizeIs(1));
    EXPECT_EQ(FeatureEdges(piece).front().to, (Point{1, 0, 0}));
    piece.edges->clear();
    EXPECT_THAT(FeatureEdges(piece), IsEmpty());
}

TEST(FeatureEdges, NoFacesHaveNone)
{
    EXPECT_THAT(FeatureEdges(Piece{}), IsEmpty());
}

} // namespace
} // namespace viewer
