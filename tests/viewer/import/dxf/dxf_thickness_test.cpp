// Widths and thicknesses, and the colours of the faces of a mesh.

#include "tests/viewer/import/dxf/dxf_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace viewer
{
namespace
{

using testing::IsEmpty;
using testing::SizeIs;

class DxfThickness : public DxfTest
{
  protected:
    static Box BoxOf(const std::vector<ModelFace>& faces)
    {
        Box box;
        for (const ModelFace& face : faces)
            for (const Point& corner : face.corners)
                box.Add(corner);
        return box;
    }
};

TEST_F(DxfThickness, LineWithThicknessIsAWall)
{
    const Model model = Import("0 LINE 39 3 11 4");
    ASSERT_EQ(model.pieces.size(), 1U);
    ASSERT_THAT(model.pieces[0].faces, SizeIs(1));
    EXPECT_DOUBLE_EQ(AreaOf(model.pieces[0].faces), 12.0);
    EXPECT_THAT(model.pieces[0].lines, SizeIs(1));
    EXPECT_THAT(*model.pieces[0].edges, SizeIs(3)) << "its top and its ends";
}

TEST_F(DxfThickness, ThicknessFollowsTheExtrusion)
{
    const Box box = BoxOf(FacesOf("0 LINE 39 -2 11 4 210 0 220 1 230 0"));
    EXPECT_EQ(box.min.y, -2.0);
    EXPECT_EQ(box.max.y, 0.0);
}

TEST_F(DxfThickness, CircleWithThicknessIsATube)
{
    const Model model = Import("0 CIRCLE 40 2 39 5");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_NEAR(AreaOf(model.pieces[0].faces), 2.0 * std::numbers::pi * 2.0 * 5.0, 0.5);
    EXPECT_EQ(model.pieces[0].edges->size(), model.pieces[0].faces.size()) << "no edge along the tube";
    const Model arc = Import("0 ARC 40 2 50 0 51 90 39 5");
    EXPECT_EQ(arc.pieces.at(0).edges->size(), arc.pieces[0].faces.size() + 2) << "its ends";
}

TEST_F(DxfThickness, PolylineWithThicknessIsAWallForEachPart)
{
    EXPECT_DOUBLE_EQ(AreaOf(FacesOf("0 LWPOLYLINE 70 1 39 2 10 0 20 0 10 3 20 0 10 3 20 4")), 24.0);
    EXPECT_DOUBLE_EQ(AreaOf(FacesOf("0 POLYLINE 66 1 39 2 0 VERTEX 10 0 0 VERTEX 10 3 0 SEQEND")), 6.0);
}

TEST_F(DxfThickness, SolidWithThicknessIsClosed)
{
    const std::vector<ModelFace> faces = FacesOf("0 SOLID 39 2 10 0 20 0 11 1 21 0 12 0 22 1 13 1 23 1");
    ASSERT_THAT(faces, SizeIs(6));
    for (const ModelFace& face : faces)
        EXPECT_GT(Dot(face.corners[0] - Point{0.5, 0.5, 1.0}, face.normal), 0.0) << "outwards";
    EXPECT_THAT(FacesOf("0 TRACE 39 2 10 0 20 0 11 1 21 0 12 0 22 1 13 1 23 1"), SizeIs(6));
}

TEST_F(DxfThickness, ConstantWidthIsABandWithMiters)
{
    // An L of 10 and 10 with a width of 2: the miter adds to the outer side what it takes from the inner one.
    const Model model = Import("0 LWPOLYLINE 43 2 10 0 20 0 10 10 20 0 10 10 20 10");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_NEAR(AreaOf(model.pieces[0].faces), 40.0, 1e-9);
    EXPECT_THAT(*model.pieces[0].edges, IsEmpty());
    const Box box = BoxOf(model.pieces[0].faces);
    ExpectNear(box.min, {0, -1, 0});
    ExpectNear(box.max, {11, 10, 0});
}

TEST_F(DxfThickness, WidthTapersAlongEachPart)
{
    // From 2 to 0 over 10.
    EXPECT_NEAR(AreaOf(FacesOf("0 LWPOLYLINE 10 0 20 0 40 2 41 0 10 10 20 0")), 10.0, 1e-9);
    EXPECT_NEAR(AreaOf(FacesOf("0 POLYLINE 66 1 40 2 41 4 0 VERTEX 10 0 0 VERTEX 10 10 40 6 41 6 0 VERTEX "
                               "10 20 0 SEQEND")),
                30.0 + 60.0, 1e-9);
}

TEST_F(DxfThickness, PartsWithoutWidthAreLines)
{
    const Model model = Import("0 LWPOLYLINE 10 0 20 0 40 2 41 2 10 10 20 0 40 0 41 0 10 20 20 0");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_NEAR(AreaOf(model.pieces[0].faces), 20.0, 1e-9);
    ASSERT_THAT(model.pieces[0].lines, SizeIs(1));
    ExpectLine(model.pieces[0].lines[0], {10, 0, 0}, {20, 0, 0});
}

TEST_F(DxfThickness, BandThinnerThanAPixelKeepsItsCenterLine)
{
    EXPECT_THAT(Import("0 LWPOLYLINE 43 0.001 10 0 20 0 10 10 20 0").pieces.at(0).lines, SizeIs(1));
    EXPECT_THAT(Import("0 LWPOLYLINE 43 1 10 0 20 0 10 10 20 0").pieces.at(0).lines, IsEmpty());
}

TEST_F(DxfThickness, BulgeWithAWidthIsARing)
{
    // Two half circles of radius 5 with a width of 2: pi (6^2 - 4^2).
    EXPECT_NEAR(AreaOf(FacesOf("0 LWPOLYLINE 70 1 43 2 10 0 20 0 42 1 10 10 20 0 42 1")),
                std::numbers::pi * 20.0, 0.5);
    EXPECT_NEAR(AreaOf(FacesOf("0 LWPOLYLINE 70 1 43 2 10 0 20 0 42 -1 10 10 20 0 42 -1")),
                std::numbers::pi * 20.0, 0.5);
}

TEST_F(DxfThickness, BandWithThicknessIsABody)
{
    // 10 by 2 by 3.
    const std::vector<ModelFace> faces = FacesOf("0 LWPOLYLINE 43 2 39 3 10 0 20 0 10 10 20 0");
    EXPECT_THAT(faces, SizeIs(6));
    EXPECT_NEAR(AreaOf(faces), 2.0 * (20.0 + 30.0 + 6.0), 1e-9);
}

TEST_F(DxfThickness, FacesOfAMeshAreAPieceForEachColour)
{
    const Model model =
        Import("0 POLYLINE 66 1 70 64 62 5 0 VERTEX 70 192 10 0 0 VERTEX 70 192 10 1 0 VERTEX 70 192 "
               "10 1 20 1 0 VERTEX 70 192 20 1 0 VERTEX 70 128 62 1 71 1 72 2 73 3 0 VERTEX 70 128 "
               "71 1 72 3 73 4 0 VERTEX 70 128 62 1 71 2 72 3 73 4 0 SEQEND");
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.pieces[0].color, 1);
    EXPECT_THAT(model.pieces[0].faces, SizeIs(2));
    EXPECT_EQ(model.pieces[1].color, 5);
    EXPECT_THAT(model.pieces[1].faces, SizeIs(1));
}

} // namespace
} // namespace viewer
