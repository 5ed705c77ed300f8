#include "viewer/import/dxf/face_conversion.h"

#include "tests/viewer/import/dxf/dxf_fixture.h"
#include "viewer/scene/feature_edges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

using DxfFaces = DxfTest;

/// Whether all normals point away from a point.
bool PointAwayFrom(const Point& center, const std::vector<ModelFace>& faces)
{
    return std::all_of(faces.begin(), faces.end(), [&](const ModelFace& face) {
        return Dot(face.normal, face.corners.front() - center) > 0;
    });
}

TEST_F(DxfFaces, FourCornersAreOneFaceWithFourEdges)
{
    const Model model =
        Import("0 3DFACE 8 roof 62 1 10 0 20 0 30 2 11 1 21 0 31 2 12 1 22 1 32 2 13 0 23 1 33 2");
    ASSERT_EQ(model.pieces.size(), 1U);
    const Piece& piece = model.pieces[0];
    EXPECT_EQ(piece.name, "roof");
    EXPECT_EQ(piece.color, 1);
    ASSERT_EQ(piece.faces.size(), 1U);
    EXPECT_EQ(piece.faces[0].normal, (Point{0, 0, 1}));
    EXPECT_THAT(piece.faces[0].corners,
                ElementsAre(Point{0, 1, 2}, Point{1, 1, 2}, Point{1, 0, 2}, Point{0, 0, 2}));
    EXPECT_EQ(piece.edges.value().size(), 4U);
    EXPECT_TRUE(piece.lines.empty());
}

TEST_F(DxfFaces, RepeatedLastCornerMakesATriangle)
{
    const Model model = Import("0 3DFACE 10 0 20 0 30 0 11 1 21 0 31 0 12 1 22 1 32 0 13 1 23 1 33 0");
    EXPECT_EQ(model.pieces.at(0).faces.at(0).corners.size(), 3U);
    EXPECT_EQ(model.pieces.at(0).edges.value().size(), 3U);
}

TEST_F(DxfFaces, MissingLastCornerMakesATriangle)
{
    EXPECT_EQ(FacesOf("0 3DFACE 10 5 20 0 30 0 11 6 21 0 31 0 12 6 22 1 32 0").at(0).corners.size(), 3U);
    EXPECT_EQ(FacesOf("0 SOLID 10 5 20 0 30 0 11 6 21 0 31 0 12 6 22 1 32 0").at(0).corners.size(), 3U);
}

TEST_F(DxfFaces, HiddenEdgesAreNotEdges)
{
    // Bits 1 and 4: from the first corner to the second, and from the third to the fourth.
    const Model model = Import("0 3DFACE 70 5 10 0 20 0 30 0 11 1 21 0 31 0 12 1 22 1 32 0 13 0 23 1 33 0");
    const std::vector<Segment>& edges = model.pieces.at(0).edges.value();
    ASSERT_EQ(edges.size(), 2U);
    for (const Segment& edge : edges)
        EXPECT_EQ(edge.from.x, edge.to.x);
}

TEST_F(DxfFaces, HidingEveryEdgeLeavesAnEmptyList)
{
    const Model model = Import("0 3DFACE 70 15 10 0 20 0 30 0 11 1 21 0 31 0 12 1 22 1 32 0 13 0 23 1 33 0");
    EXPECT_TRUE(model.pieces.at(0).edges.value().empty());
}

TEST_F(DxfFaces, EdgeOfTwoFacesCountsOnceAndWhereOneShowsIt)
{
    // Two triangles of a square, the diagonal hidden in the first only, then in both.
    const std::string first = "0 3DFACE 70 4 10 0 20 0 30 0 11 1 21 0 31 0 12 1 22 1 32 0 13 1 23 1 33 0";
    const std::string second = " 10 0 20 0 30 0 11 1 21 1 31 0 12 0 22 1 32 0 13 0 23 1 33 0";
    // The third edge of a triangle is that between its last, repeated corner and the first: bit 8.
    const std::string hidden = "0 3DFACE 70 12 10 0 20 0 30 0 11 1 21 0 31 0 12 1 22 1 32 0 13 1 23 1 33 0";
    EXPECT_EQ(Import(hidden + " 0 3DFACE 70 0" + second).pieces.at(0).edges.value().size(), 5U);
    EXPECT_EQ(Import(hidden + " 0 3DFACE 70 1" + second).pieces.at(0).edges.value().size(), 4U);
    EXPECT_EQ(Import(first + " 0 3DFACE 70 0" + second).pieces.at(0).edges.value().size(), 5U);
}

TEST_F(DxfFaces, SolidRunsInABand)
{
    const auto faces = FacesOf("0 SOLID 10 0 20 0 11 2 21 0 12 0 22 1 13 2 23 1");
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_EQ(AreaOf(faces[0]), 2.0);
    ExpectNear(faces[0].normal, {0, 0, 1});
}

TEST_F(DxfFaces, TraceIsASolid)
{
    EXPECT_EQ(AreaOf(FacesOf("0 TRACE 10 0 20 0 11 2 21 0 12 0 22 1 13 2 23 1").at(0)), 2.0);
}

TEST_F(DxfFaces, SolidFollowsItsExtrusion)
{
    const auto faces =
        FacesOf("0 SOLID 10 0 20 0 30 5 11 2 21 0 31 5 12 0 22 1 32 5 13 2 23 1 33 5 210 0 220 0 230 -1");
    ASSERT_EQ(faces.size(), 1U);
    ExpectNear(faces[0].normal, {0, 0, -1});
    EXPECT_EQ(faces[0].corners.front().z, -5.0);
    EXPECT_EQ(faces[0].corners.front().x + faces[0].corners[1].x, -2.0);
}

TEST_F(DxfFaces, BentFaceIsTwoTrianglesWithoutAnEdgeBetween)
{
    const Model model = Import("0 3DFACE 10 0 20 0 30 0 11 1 21 0 31 0 12 1 22 1 32 0.5 13 0 23 1 33 0");
    EXPECT_EQ(model.pieces.at(0).faces.size(), 2U);
    EXPECT_EQ(model.pieces.at(0).edges.value().size(), 4U);
}

TEST_F(DxfFaces, ConcaveFaceIsSplitAtItsInnerCorner)
{
    // An arrowhead; by its corners twice the area is 0 - 4 + 16 + 0, whichever corner comes first.
    for (const char* face : {"0 3DFACE 10 0 20 0 30 0 11 2 21 1 31 0 12 4 22 0 32 0 13 2 23 4 33 0",
                             "0 3DFACE 10 2 20 4 30 0 11 0 21 0 31 0 12 2 22 1 32 0 13 4 23 0 33 0"}) {
        const auto faces = FacesOf(face);
        ASSERT_EQ(faces.size(), 2U);
        EXPECT_DOUBLE_EQ(AreaOf(faces[0]) + AreaOf(faces[1]), 6.0);
    }
}

TEST_F(DxfFaces, FaceWithoutAreaShowsNothing)
{
    EXPECT_THAT(ErrorOf(Drawing("0 3DFACE 10 0 20 0 30 0 11 1 21 0 31 0 12 2 22 0 32 0 13 3 23 0 33 0")),
                HasSubstr("shows nothing"));
    EXPECT_THAT(ErrorOf(Drawing("0 3DFACE")), HasSubstr("shows nothing"));
}

/// A tetrahedron as a polyface mesh. Its faces are oriented inwards or differently; the first has a hidden
/// edge.
std::string Tetrahedron(const std::string& faces)
{
    return "0 POLYLINE 8 mesh 66 1 70 64 71 4 72 4 0 VERTEX 10 0 20 0 30 0 70 192 0 VERTEX 10 1 20 0 30 0 70 "
           "192 0 "
           "VERTEX 10 0 20 1 30 0 70 192 0 VERTEX 10 0 20 0 30 1 70 192 " +
           faces + " 0 SEQEND";
}

std::string FaceRecord(int a, int b, int c, int d = 0)
{
    return "0 VERTEX 10 0 20 0 30 0 70 128 71 " + std::to_string(a) + " 72 " + std::to_string(b) + " 73 " +
           std::to_string(c) + " 74 " + std::to_string(d);
}

TEST_F(DxfFaces, PolyfaceMeshIsAPieceWithItsFaces)
{
    const Model model = Import(Tetrahedron(FaceRecord(1, 3, 2) + ' ' + FaceRecord(1, 2, 4) + ' ' +
                                           FaceRecord(1, 4, 3) + ' ' + FaceRecord(2, 3, 4)));
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "mesh");
    EXPECT_EQ(model.pieces[0].faces.size(), 4U);
    EXPECT_EQ(model.pieces[0].edges.value().size(), 6U);
    EXPECT_TRUE(PointAwayFrom({0.1, 0.1, 0.1}, model.pieces[0].faces));
    EXPECT_TRUE(MakeSolid(model.pieces[0], [](const Point& point) { return point; }).has_value());
}

TEST_F(DxfFaces, NegativeVertexHidesTheEdgeAfterIt)
{
    // The edge from 1 to 3, hidden in both its faces.
    const Model model = Import(Tetrahedron(FaceRecord(-1, 3, 2) + ' ' + FaceRecord(1, 2, 4) + ' ' +
                                           FaceRecord(1, 4, -3) + ' ' + FaceRecord(2, 3, 4)));
    EXPECT_EQ(model.pieces.at(0).faces.size(), 4U);
    EXPECT_EQ(model.pieces.at(0).edges.value().size(), 5U);
}

TEST_F(DxfFaces, ClosedMeshIsTurnedOutwards)
{
    const auto inside_out = FacesOf(Tetrahedron(FaceRecord(1, 2, 3) + ' ' + FaceRecord(1, 4, 2) + ' ' +
                                                FaceRecord(1, 3, 4) + ' ' + FaceRecord(2, 4, 3)));
    EXPECT_TRUE(PointAwayFrom({0.1, 0.1, 0.1}, inside_out));
    const auto mixed = FacesOf(Tetrahedron(FaceRecord(1, 2, 3) + ' ' + FaceRecord(1, 2, 4) + ' ' +
                                           FaceRecord(1, 3, 4) + ' ' + FaceRecord(2, 3, 4)));
    EXPECT_TRUE(PointAwayFrom({0.1, 0.1, 0.1}, mixed));
}

TEST_F(DxfFaces, OpenMeshIsTurnedLikeItsFirstFace)
{
    const auto faces =
        FacesOf("0 3DFACE 10 0 20 0 30 0 11 0 21 1 31 0 12 1 22 1 32 0 13 1 23 0 33 0 0 3DFACE 10 1 20 0 "
                "30 0 11 2 21 0 31 0 12 2 22 1 32 0 13 1 23 1 33 0");
    ASSERT_EQ(faces.size(), 2U);
    EXPECT_EQ(faces[0].normal, (Point{0, 0, -1}));
    EXPECT_EQ(faces[1].normal, (Point{0, 0, -1}));
}

TEST_F(DxfFaces, BandWithOneSideOnlyIsDrawnAllTheSame)
{
    // A strip of five triangles, joined with a twist.
    std::string strip;
    for (int i = 0; i < 5; ++i) {
        const int a = i + 1;
        const int b = (i + 1) % 5 + 1;
        const int c = (i + 2) % 5 + 1;
        strip += (i == 0 ? "" : " ") + FaceRecord(a, b, c);
    }
    const auto faces =
        FacesOf("0 POLYLINE 66 1 70 64 0 VERTEX 10 0 20 0 30 0 70 192 0 VERTEX 10 3 20 0 30 1 70 192 0 "
                "VERTEX 10 4 20 3 30 0 70 192 0 VERTEX 10 1 20 5 30 2 70 192 0 VERTEX 10 -2 20 3 30 0 70 "
                "192 " +
                strip + " 0 SEQEND");
    EXPECT_EQ(faces.size(), 5U);
}

TEST_F(DxfFaces, EachMeshIsAPieceOfItsOwn)
{
    const std::string mesh = Tetrahedron(FaceRecord(1, 3, 2));
    EXPECT_EQ(Import(mesh + ' ' + mesh).pieces.size(), 2U);
}

TEST_F(DxfFaces, VertexThatIsNotThereIsRefused)
{
    EXPECT_EQ(ErrorOf(Drawing(Tetrahedron(FaceRecord(1, 3, 5)))), "line 5: a face refers to vertex 5 of 4");
    EXPECT_EQ(ErrorOf(Drawing(Tetrahedron(FaceRecord(1, 3, -2147483648)))),
              "line 5: a face refers to vertex 2147483648 of 4");
}

TEST_F(DxfFaces, FaceOfTwoVerticesShowsNothing)
{
    EXPECT_EQ(FacesOf(Tetrahedron(FaceRecord(1, 3, 0) + ' ' + FaceRecord(1, 3, 2))).size(), 1U);
}

/// A square tube as a polygon mesh: two rows of four corners.
std::string Tube(const std::string& flags, const std::string& rows, const std::string& columns)
{
    std::string mesh = "0 POLYLINE 66 1 70 " + flags + " 71 " + rows + " 72 " + columns;
    for (const char* z : {"0", "3"})
        for (const char* corner : {"10 0 20 0", "10 1 20 0", "10 1 20 1", "10 0 20 1"})
            mesh += std::string(" 0 VERTEX 70 64 ") + corner + " 30 " + z;
    return mesh + " 0 SEQEND";
}

TEST_F(DxfFaces, PolygonMeshIsAGridOfFaces)
{
    const Model model = Import(Tube("16", "2", "4"));
    EXPECT_EQ(model.pieces.at(0).faces.size(), 3U);
    EXPECT_EQ(model.pieces.at(0).edges.value().size(), 10U);
}

TEST_F(DxfFaces, PolygonMeshClosesEitherWay)
{
    const Model around = Import(Tube("48", "2", "4"));
    EXPECT_EQ(around.pieces.at(0).faces.size(), 4U);
    EXPECT_EQ(around.pieces.at(0).edges.value().size(), 12U);
    // Three rows of two corners, closed along the rows: a triangular tube.
    std::string tube = "0 POLYLINE 66 1 70 17 71 3 72 2";
    for (const char* corner : {"10 0 20 0", "10 1 20 0", "10 0 20 1"})
        for (const char* z : {"0", "3"})
            tube += std::string(" 0 VERTEX 70 64 ") + corner + " 30 " + z;
    const Model along = Import(tube + " 0 SEQEND");
    EXPECT_EQ(along.pieces.at(0).faces.size(), 3U);
    EXPECT_EQ(along.pieces.at(0).edges.value().size(), 9U);
}

TEST_F(DxfFaces, PolygonMeshOfTheWrongSizeIsRefused)
{
    EXPECT_EQ(ErrorOf(Drawing(Tube("16", "2", "5"))), "line 5: a polygon mesh of 2 by 5 with 8 vertices");
    EXPECT_THAT(ErrorOf(Drawing(Tube("16", "2147483647", "2147483647"))), HasSubstr("with 8 vertices"));
    EXPECT_THAT(ErrorOf(Drawing(Tube("16", "-2", "-4"))), HasSubstr("with 8 vertices"));
}

TEST_F(DxfFaces, SmoothedMeshIsItsFineGrid)
{
    // The frame of 2 by 2 is skipped, the surface of 2 by 2 drawn.
    EXPECT_EQ(
        FacesOf(
            "0 POLYLINE 66 1 70 20 71 9 72 9 73 2 74 2 0 VERTEX 70 80 10 9 0 VERTEX 70 80 10 8 0 VERTEX 70 "
            "72 "
            "10 0 20 0 0 VERTEX 70 72 10 1 20 0 0 VERTEX 70 72 10 0 20 1 0 VERTEX 70 72 10 1 20 1 0 SEQEND")
            .size(),
        1U);
}

} // namespace
} // namespace viewer
