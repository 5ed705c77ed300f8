#include "viewer/import/brep/brep_import.h"

#include "tests/viewer/import/brep/brep_fixture.h"
#include "viewer/import/brep/convex_facets.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeHalfSpace.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Builder.hxx>
#include <GC_MakeSegment.hxx>
#include <Geom_BezierCurve.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Circ.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>
#include <utility>

namespace viewer
{
namespace
{

using std::numbers::pi;

gp_Ax2 AxisAt(double x, double y, double z)
{
    return {gp_Pnt(x, y, z), gp::DZ()};
}

TopoDS_Shape BoxShape(double x, double y, double z)
{
    return BRepPrimAPI_MakeBox(x, y, z).Shape();
}

TopoDS_Shape CylinderShape(double x, double y, double z, double radius, double height)
{
    return BRepPrimAPI_MakeCylinder(AxisAt(x, y, z), radius, height).Shape();
}

/// A box of 40 by 30 by 10 with a hole of radius 5 through it.
TopoDS_Shape BoxWithHole()
{
    return BRepAlgoAPI_Cut(BoxShape(40, 30, 10), CylinderShape(20, 15, -1, 5, 12)).Shape();
}

/// A box of 40 by 30 by 20 with all its edges rounded by 4.
TopoDS_Shape FilletedBox()
{
    const TopoDS_Shape box = BoxShape(40, 30, 20);
    BRepFilletAPI_MakeFillet fillet(box);
    for (TopExp_Explorer it(box, TopAbs_EDGE); it.More(); it.Next())
        fillet.Add(4.0, TopoDS::Edge(it.Current()));
    return fillet.Shape();
}

/// An L of 20 by 20 with arms 5 wide, 8 high: its area is 20 * 5 + 15 * 5 = 175.
TopoDS_Shape LShape()
{
    BRepBuilderAPI_MakePolygon outline;
    for (const auto& [x, y] : {std::pair{0, 0}, {20, 0}, {20, 5}, {5, 5}, {5, 20}, {0, 20}})
        outline.Add(gp_Pnt(x, y, 0));
    outline.Close();
    return BRepPrimAPI_MakePrism(BRepBuilderAPI_MakeFace(outline.Wire()).Shape(), gp_Vec(0, 0, 8)).Shape();
}

TopoDS_Shape Compound(const std::vector<TopoDS_Shape>& shapes)
{
    TopoDS_Compound compound;
    BRep_Builder().MakeCompound(compound);
    for (const TopoDS_Shape& shape : shapes)
        BRep_Builder().Add(compound, shape);
    return compound;
}

TopoDS_Edge CircleEdge(double radius)
{
    return BRepBuilderAPI_MakeEdge(gp_Circ(gp::XOY(), radius)).Edge();
}

/// The distance of a triangle from the origin, by a grid of points on it.
double LeastLength(const ModelFace& triangle)
{
    constexpr int kSteps = 12;
    const auto& corners = triangle.corners;
    double least = Length(corners.at(0));
    for (int i = 0; i <= kSteps; ++i)
        for (int k = 0; k <= kSteps - i; ++k) {
            const Point point = corners.at(0) +
                                (corners.at(1) - corners.at(0)) * (static_cast<double>(i) / kSteps) +
                                (corners.at(2) - corners.at(0)) * (static_cast<double>(k) / kSteps);
            least = std::min(least, Length(point));
        }
    return least;
}

class BrepImport : public BrepTest
{
  protected:
    static ImportOptions With(double deflection)
    {
        ImportOptions options;
        options.deflection = deflection;
        return options;
    }

    Piece ReadOne(const TopoDS_Shape& shape, const ImportOptions& options = {}) const
    {
        const Model model = ImportBrep(WriteBrep(shape), options);
        EXPECT_EQ(model.pieces.size(), 1U);
        return model.pieces.at(0);
    }

    /// The facets lie within the deflection of the surface, so that the volume between the two is at most the
    /// area times the deflection. A chord of height h in an arc of radius r is shorter than the arc by the
    /// fraction h / 3r; a surface that is curved in both directions loses twice as much. Boxes can only
    /// shrink, by the deflection on each side. The exact box is that of the closed form.
    static void ExpectFigures(const Piece& piece, const TopoDS_Shape& shape, double deflection,
                              double least_radius, const Box& box)
    {
        const double area = ExactAreaOf(shape);
        EXPECT_NEAR(VolumeOf(piece), ExactVolumeOf(shape), area * deflection);
        EXPECT_NEAR(AreaOf(piece), area, 2.0 * area * deflection / (3.0 * least_radius));
        const Box seen = BoxOfFaces(piece);
        for (const auto& [got, exact] : {std::pair{seen.min, box.min}, std::pair{seen.max, box.max}}) {
            EXPECT_NEAR(got.x, exact.x, deflection);
            EXPECT_NEAR(got.y, exact.y, deflection);
            EXPECT_NEAR(got.z, exact.z, deflection);
        }
        EXPECT_TRUE(ClosesToABody(piece));
        EXPECT_TRUE(FacesAreConvex(piece));
        EXPECT_TRUE(EdgesRunAlongFaces(piece));
        EXPECT_EQ(EdgesOf(piece, shape), OwnEdgesOf(shape));
        EXPECT_EQ(ShownEdgesOf(piece), piece.edges->size());
    }
};

TEST_F(BrepImport, BoxKeepsItsSixFacesAndTwelveEdges)
{
    const Piece piece = ReadOne(BoxShape(1, 2, 3));
    EXPECT_EQ(piece.faces.size(), 6U);
    EXPECT_EQ(piece.edges.value().size(), 12U);
    EXPECT_TRUE(piece.lines.empty());
    EXPECT_DOUBLE_EQ(VolumeOf(piece), 6.0);
    EXPECT_DOUBLE_EQ(AreaOf(piece), 22.0);
    EXPECT_EQ(BoxOfFaces(piece).min, (Point{0, 0, 0}));
    EXPECT_EQ(BoxOfFaces(piece).max, (Point{1, 2, 3}));
    EXPECT_TRUE(ClosesToABody(piece));
}

TEST_F(BrepImport, BoxWithAHoleClosesAroundIt)
{
    const TopoDS_Shape shape = BoxWithHole();
    const Piece piece = ReadOne(shape, With(0.01));
    ExpectFigures(piece, shape, 0.01, 5.0, BoxOf({0, 0, 0}, {40, 30, 10}));
    // Twelve edges of the box and two circles; the seam of the hole is not an edge.
    EXPECT_EQ(EdgesOf(piece, shape), 14U);
    // Nothing covers the hole.
    for (const ModelFace& face : piece.faces) {
        Point middle;
        for (const Point& corner : face.corners)
            middle = middle + corner * (1.0 / static_cast<double>(face.corners.size()));
        EXPECT_GT(std::hypot(middle.x - 20.0, middle.y - 15.0), 5.0 - 0.02);
    }
}

TEST_F(BrepImport, CylinderKeepsItsDiscsWhole)
{
    const TopoDS_Shape shape = CylinderShape(0, 0, 0, 10, 25);
    const Piece piece = ReadOne(shape, With(0.05));
    ExpectFigures(piece, shape, 0.05, 10.0, BoxOf({-10, -10, 0}, {10, 10, 25}));
    EXPECT_EQ(EdgesOf(piece, shape), 2U);
    // A chord of an angle a is r (1 - cos(a / 2)) from its arc: 0.05 of 10 are 31.4 chords to the turn.
    const auto chords = static_cast<std::size_t>(std::ceil(pi / std::acos(1.0 - 0.05 / 10.0)));
    std::size_t discs = 0;
    for (const ModelFace& face : piece.faces)
        discs += face.corners.size() >= chords ? 1U : 0U;
    EXPECT_EQ(discs, 2U);
}

TEST_F(BrepImport, SphereClosesWithoutEdges)
{
    const TopoDS_Shape shape = BRepPrimAPI_MakeSphere(10.0).Shape();
    const Piece piece = ReadOne(shape, With(0.05));
    ExpectFigures(piece, shape, 0.05, 10.0, BoxOf({-10, -10, -10}, {10, 10, 10}));
    EXPECT_TRUE(piece.edges.value().empty());
}

TEST_F(BrepImport, TorusClosesWithoutEdges)
{
    const TopoDS_Shape shape = BRepPrimAPI_MakeTorus(20.0, 5.0).Shape();
    const Piece piece = ReadOne(shape, With(0.05));
    ExpectFigures(piece, shape, 0.05, 5.0, BoxOf({-25, -25, -5}, {25, 25, 5}));
    EXPECT_TRUE(piece.edges.value().empty());
}

TEST_F(BrepImport, ConeClosesAtItsTip)
{
    const TopoDS_Shape shape = BRepPrimAPI_MakeCone(10.0, 0.0, 20.0).Shape();
    const Piece piece = ReadOne(shape, With(0.05));
    // Near the tip both radius and area approach 0; half the height is used.
    ExpectFigures(piece, shape, 0.05, 5.0, BoxOf({-10, -10, 0}, {10, 10, 20}));
    EXPECT_EQ(EdgesOf(piece, shape), 1U);
}

TEST_F(BrepImport, FilletedBoxCloses)
{
    const TopoDS_Shape shape = FilletedBox();
    const Piece piece = ReadOne(shape, With(0.02));
    ExpectFigures(piece, shape, 0.02, 4.0, BoxOf({0, 0, 0}, {40, 30, 20}));
    // Six flats of four edges each, and three edges at each of eight corners.
    EXPECT_EQ(EdgesOf(piece, shape), 48U);
}

TEST_F(BrepImport, UnionOfCrossingCylindersCloses)
{
    gp_Trsf lie;
    lie.SetRotation(gp_Ax1(gp_Pnt(0, 0, 0), gp::DX()), pi / 2);
    const TopoDS_Shape standing = CylinderShape(0, 0, -20, 8, 40);
    const TopoDS_Shape lying = BRepBuilderAPI_Transform(CylinderShape(0, 0, -20, 6, 40), lie).Shape();
    const TopoDS_Shape shape = BRepAlgoAPI_Fuse(standing, lying).Shape();
    ExpectFigures(ReadOne(shape, With(0.02)), shape, 0.02, 6.0, BoxOf({-8, -20, -20}, {8, 20, 20}));
}

TEST_F(BrepImport, MirroredCopyShowsItsOutside)
{
    gp_Trsf mirror;
    mirror.SetMirror(gp_Ax2(gp_Pnt(0, 0, 0), gp::DX()));
    const TopoDS_Shape shape = BRepBuilderAPI_Transform(LShape(), mirror).Shape();
    const Piece piece = ReadOne(shape);
    ExpectFigures(piece, shape, 1e-9, 1.0, BoxOf({-20, 0, 0}, {0, 20, 8}));
    EXPECT_NEAR(VolumeOf(piece), 175.0 * 8.0, 1e-9);
}

TEST_F(BrepImport, FaceInAMirroredPlaceFacesTheMirroredWay)
{
    // Seen from above, the direction of its normal; mirroring at the plane x = 0 does not change the normal.
    BRepBuilderAPI_MakePolygon outline(gp_Pnt(0, 0, 0), gp_Pnt(2, 0, 0), gp_Pnt(2, 1, 0), gp_Pnt(0, 1, 0),
                                       true);
    gp_Trsf mirror;
    mirror.SetMirror(gp_Ax2(gp_Pnt(0, 0, 0), gp::DX()));
    TopoDS_Shape face = BRepBuilderAPI_MakeFace(outline.Wire()).Shape();
    face.Location(TopLoc_Location(mirror), Standard_False);
    const Piece piece = ReadOne(face);
    ASSERT_EQ(piece.faces.size(), 1U);
    EXPECT_DOUBLE_EQ(piece.faces[0].normal.z, 1.0);
    EXPECT_EQ(BoxOfFaces(piece).min.x, -2.0);
}

TEST_F(BrepImport, SolidThatIsInsideOutShowsItsOutside)
{
    EXPECT_NEAR(VolumeOf(ReadOne(BoxShape(1, 2, 3).Reversed())), 6.0, 1e-12);
}

TEST_F(BrepImport, CavityIsHollow)
{
    const TopoDS_Shape shape =
        BRepAlgoAPI_Cut(BoxShape(30, 30, 30), BRepPrimAPI_MakeSphere(gp_Pnt(15, 15, 15), 10.0).Shape())
            .Shape();
    const Piece piece = ReadOne(shape, With(0.02));
    ExpectFigures(piece, shape, 0.02, 10.0, BoxOf({0, 0, 0}, {30, 30, 30}));
}

TEST_F(BrepImport, MovedCopiesOfOneShapeAreAPieceEach)
{
    const TopoDS_Shape box = BoxShape(1, 2, 3);
    const Model model = ImportBrep(WriteBrep(Compound({box, box.Located(MovedBy(10, 0, 0))})), {});
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(BoxOfFaces(model.pieces[1]).min, (Point{10, 0, 0}));
    EXPECT_EQ(BoxOfFaces(model.pieces[1]).max, (Point{11, 2, 3}));
    EXPECT_TRUE(ClosesToABody(model.pieces[0]));
    EXPECT_TRUE(ClosesToABody(model.pieces[1]));
}

TEST_F(BrepImport, ConcaveFacesAreSplitIntoConvexOnes)
{
    const TopoDS_Shape shape = LShape();
    const Piece piece = ReadOne(shape);
    ExpectFigures(piece, shape, 1e-9, 1.0, BoxOf({0, 0, 0}, {20, 20, 8}));
    // Six walls, and the L above and below in two parts each: one cut from its inner corner.
    EXPECT_EQ(piece.faces.size(), 10U);
    EXPECT_EQ(piece.edges.value().size(), 18U);
}

TEST_F(BrepImport, ThousandKilometresAwayASolidStillCloses)
{
    const TopoDS_Shape shape = BoxWithHole().Located(MovedBy(1e9, -1e9, 1e9));
    const Piece piece = ReadOne(shape, With(0.01));
    EXPECT_TRUE(ClosesToABody(piece));
    // Corners are rounded to about 1e-7 there, and all faces together have less than 5000 square units.
    EXPECT_NEAR(VolumeOf(piece), ExactVolumeOf(BoxWithHole()), 5000.0 * 0.011);
}

TEST_F(BrepImport, FinerDeflectionGivesMoreFacetsThatLieNearer)
{
    const TopoDS_Shape shape = BRepPrimAPI_MakeSphere(100.0).Shape();
    std::size_t before = 0;
    for (const double deflection : {0.5, 0.1, 0.02}) {
        const Piece piece = ReadOne(shape, With(deflection));
        EXPECT_GT(piece.faces.size(), before);
        before = piece.faces.size();
        double least = 100.0;
        for (const ModelFace& face : piece.faces)
            least = std::min(least, LeastLength(face));
        EXPECT_GE(least, 100.0 - deflection) << "at a deflection of " << deflection;
    }
}

TEST_F(BrepImport, RoundedArcHasNoNotches)
{
    // A slice of a disc of radius 100 within 30 degrees of the x axis, 20 high, its upper arc rounded by 2.
    const TopoDS_Edge arc = BRepBuilderAPI_MakeEdge(gp_Circ(gp::XOY(), 100.0), -pi / 6, pi / 6).Edge();
    const double x = 100.0 * std::cos(pi / 6);
    const TopoDS_Edge chord = BRepBuilderAPI_MakeEdge(gp_Pnt(x, 50, 0), gp_Pnt(x, -50, 0)).Edge();
    const TopoDS_Shape profile = BRepBuilderAPI_MakeFace(BRepBuilderAPI_MakeWire(arc, chord).Wire()).Shape();
    const TopoDS_Shape slice = BRepPrimAPI_MakePrism(profile, gp_Vec(0, 0, 20)).Shape();
    BRepFilletAPI_MakeFillet fillet(slice);
    for (TopExp_Explorer it(slice, TopAbs_EDGE); it.More(); it.Next()) {
        const BRepAdaptor_Curve curve(TopoDS::Edge(it.Current()));
        if (curve.GetType() == GeomAbs_Circle && curve.Value(0.0).Z() > 10.0)
            fillet.Add(2.0, TopoDS::Edge(it.Current()));
    }
    const Piece piece = ReadOne(fillet.Shape(), With(0.1));
    ASSERT_TRUE(ClosesToABody(piece));
    // The rounding is a quarter of a tube of radius 2 around a circle of radius 98 at a height of 18.
    const auto from_tube = [](const Point& point) {
        return std::hypot(std::hypot(point.x, point.y) - 98.0, point.z - 18.0);
    };
    std::size_t facets = 0;
    for (const ModelFace& face : piece.faces) {
        const auto is_on_tube = [&](const Point& point) {
            return std::abs(from_tube(point) - 2.0) < 1e-6 && point.z >= 18.0 - 1e-6;
        };
        if (!std::all_of(face.corners.begin(), face.corners.end(), is_on_tube) || face.corners.size() != 3)
            continue;
        ++facets;
        const Point middle = (face.corners[0] + face.corners[1] + face.corners[2]) * (1.0 / 3.0);
        EXPECT_GE(from_tube(middle), 2.0 - 0.1);
    }
    EXPECT_GT(facets, 20U);
}

TEST_F(BrepImport, ThinRingClosesWhereCoarseChordsWouldCross)
{
    // A pipe with a wall of 0.004: 12 chords are 10 (1 - cos(180 / 12)) = 0.34 from their arc, and those of
    // the inner circle start elsewhere.
    const gp_Ax2 turned(gp_Pnt(0, 0, -1), gp::DZ(), gp_Dir(std::cos(0.1), std::sin(0.1), 0.0));
    const TopoDS_Shape shape =
        BRepAlgoAPI_Cut(CylinderShape(0, 0, 0, 10, 5), BRepPrimAPI_MakeCylinder(turned, 9.996, 7).Shape())
            .Shape();
    const Piece piece = ReadOne(shape, With(1.0));
    EXPECT_TRUE(ClosesToABody(piece));
    EXPECT_EQ(EdgesOf(piece, shape), 4U);
}

TEST_F(BrepImport, OnlyFacesWhereChordsCrossAreMeshedFiner)
{
    // The same pipe with an arm, and a hole of radius 3 through the arm. The arm's faces have edges in common
    // with both, the hole none with the pipe.
    const gp_Ax2 turned(gp_Pnt(0, 0, -1), gp::DZ(), gp_Dir(std::cos(0.1), std::sin(0.1), 0.0));
    const TopoDS_Shape arm = BRepPrimAPI_MakeBox(gp_Pnt(8, -5, 1), 24, 10, 3).Shape();
    const TopoDS_Shape blank = BRepAlgoAPI_Fuse(CylinderShape(0, 0, 0, 10, 5), arm).Shape();
    const TopoDS_Shape pipe =
        BRepAlgoAPI_Cut(blank, BRepPrimAPI_MakeCylinder(turned, 9.996, 7).Shape()).Shape();
    const TopoDS_Shape shape = BRepAlgoAPI_Cut(pipe, CylinderShape(25, 0, -1, 3, 7)).Shape();
    const Piece piece = ReadOne(shape, With(1.0));
    EXPECT_TRUE(ClosesToABody(piece));
    std::set<std::pair<double, double>> around_hole;
    for (const ModelFace& face : piece.faces)
        for (const Point& corner : face.corners)
            if (std::abs(std::hypot(corner.x - 25.0, corner.y) - 3.0) < 1e-6 && corner.z > 3.0)
                around_hole.emplace(corner.x, corner.y);
    // Chords differ in direction by at most kFacetAngle, so the hole has at least 12 points. Its chords are
    // then 3 (1 - cos(180 / 12)) = 0.1 from their arcs, so that a deflection of 1 needs no more. If the hole
    // were meshed again, at a third of the angle, it would have at least 36.
    EXPECT_GE(around_hole.size(), 360.0 / kFacetAngle);
    EXPECT_LT(around_hole.size(), 3 * 360.0 / kFacetAngle);
}

TEST_F(BrepImport, DeflectionByDefaultGoesWithTheSizeOfTheModel)
{
    const Piece small = ReadOne(BRepPrimAPI_MakeSphere(1.0).Shape());
    const Piece large = ReadOne(BRepPrimAPI_MakeSphere(1000.0).Shape());
    EXPECT_EQ(small.faces.size(), large.faces.size());
    // The box has a side of two radii.
    const double deflection = ImportOptions{}.RelativeDeflection() * std::sqrt(3.0) * 2000.0;
    EXPECT_NEAR(VolumeOf(large), 4.0 / 3.0 * pi * 1e9, 4.0 * pi * 1e6 * deflection);
}

TEST_F(BrepImport, DeflectionByDefaultGoesWithTheSizeOfThePicture)
{
    const TopoDS_Shape shape = CylinderShape(0, 0, 0, 100, 1);
    const auto chords = [&](int pixels) {
        const Piece piece = ReadOne(shape, {.deflection = {}, .pixels = pixels});
        std::set<std::pair<double, double>> corners;
        for (const ModelFace& face : piece.faces)
            for (const Point& corner : face.corners)
                corners.emplace(corner.x, corner.y);
        return corners.size();
    };
    // The box has a diagonal of 200 sqrt(2), which covers about 0.9 of the picture. A chord of an angle a is
    // r (1 - cos(a / 2)) from its arc. The importer's box can be a little larger.
    for (const int pixels : {1000, 250}) {
        const double half_a_pixel = 0.5 / (0.9 * pixels) * 200.0 * std::sqrt(2.0);
        const double least = pi / std::acos(1.0 - half_a_pixel / 100.0);
        EXPECT_GE(chords(pixels), 0.95 * least) << pixels;
        EXPECT_LE(chords(pixels), 1.5 * least) << pixels;
    }
}

TEST_F(BrepImport, CoarserDeflectionThanByDefaultGivesFewerFacets)
{
    const TopoDS_Shape shape = BRepPrimAPI_MakeTorus(20.0, 5.0).Shape();
    const std::size_t by_default = ReadOne(shape).faces.size();
    EXPECT_LT(ReadOne(shape, With(1.0)).faces.size(), by_default / 2);
}

TEST_F(BrepImport, CoarsestDeflectionStillTurnsByThirtyDegreesAtMost)
{
    const Piece piece = ReadOne(CylinderShape(0, 0, 0, 1, 1), With(1e6));
    EXPECT_TRUE(ClosesToABody(piece));
    const auto most =
        std::max_element(piece.faces.begin(), piece.faces.end(),
                         [](const auto& a, const auto& b) { return a.corners.size() < b.corners.size(); });
    EXPECT_GE(most->corners.size(), 12U);
}

TEST_F(BrepImport, OpenShellIsFacesWithTheirEdges)
{
    // A box without its lid: five faces of four edges each, of which the lid's four are at the border.
    TopoDS_Shell shell;
    BRep_Builder().MakeShell(shell);
    int face = 0;
    for (TopExp_Explorer it(BoxShape(1, 2, 3), TopAbs_FACE); it.More(); it.Next())
        if (++face < 6)
            BRep_Builder().Add(shell, it.Current());
    const Piece piece = ReadOne(shell);
    EXPECT_EQ(piece.faces.size(), 5U);
    EXPECT_EQ(piece.edges.value().size(), 12U);
    EXPECT_FALSE(ClosesToABody(piece));
    EXPECT_TRUE(EdgesRunAlongFaces(piece));
}

TEST_F(BrepImport, SingleFaceWithAHoleIsConvexFacesAroundIt)
{
    BRepBuilderAPI_MakePolygon outline(gp_Pnt(0, 0, 0), gp_Pnt(10, 0, 0), gp_Pnt(10, 10, 0), gp_Pnt(0, 10, 0),
                                       true);
    BRepBuilderAPI_MakePolygon hole(gp_Pnt(4, 4, 0), gp_Pnt(4, 6, 0), gp_Pnt(6, 6, 0), gp_Pnt(6, 4, 0), true);
    BRepBuilderAPI_MakeFace face(outline.Wire());
    face.Add(hole.Wire());
    const Piece piece = ReadOne(face.Shape());
    EXPECT_DOUBLE_EQ(AreaOf(piece), 96.0);
    EXPECT_TRUE(FacesAreConvex(piece));
    EXPECT_EQ(piece.edges.value().size(), 8U);
    for (const ModelFace& part : piece.faces)
        EXPECT_DOUBLE_EQ(part.normal.z, 1.0);
}

TEST_F(BrepImport, LooseFacesAndEdgesArePiecesOfTheirOwn)
{
    TopoDS_Shape face;
    for (TopExp_Explorer it(BoxShape(1, 2, 3), TopAbs_FACE); it.More(); it.Next())
        face = it.Current();
    const TopoDS_Edge edge = BRepBuilderAPI_MakeEdge(gp_Pnt(5, 0, 0), gp_Pnt(6, 0, 0)).Edge();
    const Model model = ImportBrep(WriteBrep(Compound({BoxShape(1, 1, 1), face, edge})), {});
    ASSERT_EQ(model.pieces.size(), 3U);
    EXPECT_EQ(model.pieces[0].faces.size(), 6U);
    EXPECT_EQ(model.pieces[1].faces.size(), 1U);
    ASSERT_EQ(model.pieces[2].lines.size(), 1U);
    EXPECT_EQ(model.pieces[2].lines[0].from, (Point{5, 0, 0}));
    EXPECT_EQ(model.pieces[2].lines[0].to, (Point{6, 0, 0}));
    EXPECT_TRUE(model.pieces[2].faces.empty());
}

TEST_F(BrepImport, WireIsLinesWithinTheDeflection)
{
    const Piece piece = ReadOne(BRepBuilderAPI_MakeWire(CircleEdge(10.0)).Shape(), With(0.01));
    EXPECT_TRUE(piece.faces.empty());
    // pi / acos(1 - 0.01 / 10) = 70.2 chords at least.
    EXPECT_GE(piece.lines.size(), 71U);
    for (const Segment& line : piece.lines) {
        EXPECT_NEAR(Length(line.from), 10.0, 1e-9);
        EXPECT_GE(Length((line.from + line.to) * 0.5), 10.0 - 0.01);
    }
}

TEST_F(BrepImport, WireWithoutVerticesOfItsOwnClosesWhereItBegan)
{
    const Piece piece = ReadOne(CircleEdge(1.0));
    ASSERT_FALSE(piece.lines.empty());
    EXPECT_NEAR(Length(piece.lines.back().to - piece.lines.front().from), 0.0, 1e-12);
}

TEST_F(BrepImport, SharpSeamOfAClosedProfileIsAnEdge)
{
    // A drop: its curve ends where it began, at an angle.
    TColgp_Array1OfPnt poles(1, 4);
    poles.SetValue(1, gp_Pnt(0, 0, 0));
    poles.SetValue(2, gp_Pnt(20, 10, 0));
    poles.SetValue(3, gp_Pnt(20, -10, 0));
    poles.SetValue(4, gp_Pnt(0, 0, 0));
    const TopoDS_Edge drop = BRepBuilderAPI_MakeEdge(new Geom_BezierCurve(poles)).Edge();
    const TopoDS_Shape face = BRepBuilderAPI_MakeFace(BRepBuilderAPI_MakeWire(drop).Wire()).Shape();
    const TopoDS_Shape shape = BRepPrimAPI_MakePrism(face, gp_Vec(0, 0, 5)).Shape();
    const Piece piece = ReadOne(shape, With(0.01));
    EXPECT_TRUE(ClosesToABody(piece));
    // The two drops, and the straight edge between their tips.
    EXPECT_EQ(EdgesOf(piece, shape), 3U);
}

TEST_F(BrepImport, HalfSpaceIsRefusedAsWithoutEnd)
{
    const TopoDS_Face plane = BRepBuilderAPI_MakeFace(gp_Pln(gp_Pnt(0, 0, 0), gp::DZ())).Face();
    const TopoDS_Shape half = BRepPrimAPI_MakeHalfSpace(plane, gp_Pnt(0, 0, 1)).Shape();
    EXPECT_THAT(ErrorOf(WriteBrep(half)), testing::HasSubstr("1 unbounded body"));
}

TEST_F(BrepImport, StepSolidsHaveTheFiguresOfTheirShapes)
{
    const TopoDS_Shape shape = BoxWithHole();
    const Model model = ImportBrep(WriteStep(shape), With(0.01));
    ASSERT_EQ(model.pieces.size(), 1U);
    ExpectFigures(model.pieces[0], shape, 0.01, 5.0, BoxOf({0, 0, 0}, {40, 30, 10}));
    EXPECT_EQ(model.title, "shape.step");
    EXPECT_EQ(model.meters_per_unit, 0.001);
}

TEST_F(BrepImport, IgesSolidsHaveTheFiguresOfTheirShapes)
{
    const TopoDS_Shape shape = BoxWithHole();
    const Model model = ImportBrep(WriteIges(shape, true), With(0.01));
    ASSERT_EQ(model.pieces.size(), 1U);
    ExpectFigures(model.pieces[0], shape, 0.01, 5.0, BoxOf({0, 0, 0}, {40, 30, 10}));
}

TEST_F(BrepImport, IgesSurfacesAreFacesWithTheirEdges)
{
    const TopoDS_Shape shape = BoxShape(1, 2, 3);
    const Model model = ImportBrep(WriteIges(shape, false), {});
    double area = 0.0;
    std::size_t edges = 0;
    for (const Piece& piece : model.pieces) {
        area += AreaOf(piece);
        edges += piece.edges.value().size();
    }
    EXPECT_NEAR(area, 22.0, 1e-9);
    // Surfaces in a file share nothing, but where they meet they are sewn: a box has twelve edges.
    EXPECT_EQ(edges, 12U);
}

TEST_F(BrepImport, ProgressRunsFromNothingToAll)
{
    std::vector<double> seen;
    static_cast<void>(ImportBrep(WriteStep(FilletedBox()), {}, [&](double part) { seen.push_back(part); }));
    ASSERT_GT(seen.size(), 3U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_GE(seen.front(), 0.0);
    EXPECT_LT(seen.front(), 0.5);
    EXPECT_NEAR(seen.back(), 1.0, 1e-6);
}

TEST_F(BrepImport, HundredReadsInARowAreAllAlike)
{
    const std::string path = WriteBrep(BoxWithHole());
    const std::size_t faces = ImportBrep(path, {}).FaceCount();
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(ImportBrep(path, {}).FaceCount(), faces);
}

} // namespace
} // namespace viewer
