// B-rep files of other programs, from the library's package of sample data.
#include "tests/viewer/import/brep/brep_fixture.h"

#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <STEPControl_Reader.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <ostream>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

std::string PathOfSample(const std::string& name)
{
    return std::string(KARV_BREP_SAMPLES) + "/" + name;
}

TopoDS_Shape ShapeOf(const std::string& path)
{
    if (path.ends_with(".step")) {
        STEPControl_Reader reader;
        EXPECT_EQ(reader.ReadFile(path.c_str()), IFSelect_RetDone);
        reader.TransferRoots();
        return reader.OneShape();
    }
    TopoDS_Shape shape;
    EXPECT_TRUE(BRepTools::Read(shape, path.c_str(), BRep_Builder()));
    return shape;
}

struct Sample {
    const char* file;
    std::size_t solids;
};

// The framework prints the parameter of a failed test.
void PrintTo(const Sample& sample, std::ostream* out)
{
    *out << sample.file;
}

class BrepSolidSamples : public ViewerTest, public testing::WithParamInterface<Sample>
{
  protected:
    /// The sample's path, or a link to it with the extension of its kind: the package names some BREP files
    /// otherwise.
    [[nodiscard]] std::string Path() const
    {
        const std::filesystem::path path = PathOfSample(GetParam().file);
        if (path.extension() != ".rle")
            return path.string();
        const std::string link = PathOf(path.stem().string() + ".brep");
        std::filesystem::create_symlink(path, link);
        return link;
    }
};

TEST_P(BrepSolidSamples, SolidsCloseAndHaveTheLibrarysFigures)
{
    const std::string path = Path();
    const Model model = ImportBrep(path, {});
    const TopoDS_Shape shape = ShapeOf(path);
    std::vector<TopoDS_Shape> solids;
    for (TopExp_Explorer it(shape, TopAbs_SOLID); it.More(); it.Next())
        if (TopExp_Explorer(it.Current(), TopAbs_FACE).More())
            solids.push_back(it.Current());
    ASSERT_EQ(solids.size(), GetParam().solids);
    ASSERT_EQ(model.pieces.size(), solids.size());
    // The importer's box of the model can be a little larger than that of the facets.
    const double deflection = 1.1 * ImportOptions{}.RelativeDeflection() * model.Extents().Diagonal();
    // A chord over the angle 2h is shorter than its arc by the factor sin(h) / h. The facets of a cylinder
    // are smaller than its area by this factor, those of a ring (torus) by its square, which is the bound.
    // Discs and balls can lose twice as much, 1 - sin(2h) / 2h = 2/3 h^2, but only at small radii: larger
    // ones have shorter chords, because a chord over the angle a lies r a^2 / 8 from its arc, which is at
    // most the deflection d. They lose a^2 / 6 = 4/3 d / r, which is within the bound of h^2 / 3 from r = 4 d
    // / h^2 = 60 d on, 4 % of the model's diagonal. Smaller discs and balls are a small part of these solids.
    const double half_angle = 0.5 * kFacetAngle * std::numbers::pi / 180.0;
    const double area_lost = 1.0 - std::pow(std::sin(half_angle) / half_angle, 2.0);
    for (std::size_t i = 0; i < solids.size(); ++i) {
        const Piece& piece = model.pieces[i];
        EXPECT_TRUE(ClosesToABody(piece)) << i;
        EXPECT_TRUE(FacesAreConvex(piece)) << i;
        EXPECT_TRUE(EdgesRunAlongFaces(piece)) << i;
        EXPECT_EQ(ShownEdgesOf(piece), piece.edges->size()) << i;
        EXPECT_EQ(EdgesOf(piece, solids[i]), OwnEdgesOf(solids[i])) << i;
        // The volume changes by at most the area times the deflection.
        const double area = ExactAreaOf(solids[i]);
        EXPECT_NEAR(VolumeOf(piece), std::abs(ExactVolumeOf(solids[i])), area * deflection) << i;
        EXPECT_NEAR(AreaOf(piece), area, area_lost * area) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(All, BrepSolidSamples,
                         testing::Values(Sample{"step/screw.step", 1}, Sample{"step/linkrods.step", 1},
                                         Sample{"occ/CrankArm.brep", 2}, Sample{"occ/Motor-c.brep", 17},
                                         Sample{"occ/Axis_of_bearing.brep", 17}, Sample{"occ/bottle.brep", 1},
                                         Sample{"occ/Pump_TopCover.brep", 1},
                                         Sample{"occ/MODERN_Chair_1.brep", 4}, Sample{"occ/Propeller.rle", 1},
                                         Sample{"occ/CylinderHead.rle", 1}, Sample{"occ/EngineBlock.rle", 1}),
                         [](const testing::TestParamInfo<Sample>& instance) {
                             std::string name = instance.param.file;
                             std::replace_if(
                                 name.begin(), name.end(),
                                 [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
                             return name;
                         });

TEST(BrepSamples, OpenShellIsFaces)
{
    const Model model = ImportBrep(PathOfSample("occ/shell1.brep"), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_FALSE(ClosesToABody(model.pieces[0]));
    const TopoDS_Shape shape = ShapeOf(PathOfSample("occ/shell1.brep"));
    EXPECT_NEAR(AreaOf(model.pieces[0]), ExactAreaOf(shape), 0.01 * ExactAreaOf(shape));
    EXPECT_EQ(EdgesOf(model.pieces[0], shape), OwnEdgesOf(shape));
}

TEST(BrepSamples, ClosedShellIsABody)
{
    const Model model = ImportBrep(PathOfSample("occ/fuse.brep"), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_TRUE(ClosesToABody(model.pieces[0]));
}

TEST(BrepSamples, WiresAreLinesAndPointsAreCrosses)
{
    const Model model = ImportBrep(PathOfSample("occ/asahi.brep"), {});
    const TopoDS_Shape shape = ShapeOf(PathOfSample("occ/asahi.brep"));
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(shape, TopAbs_EDGE, edges);
    TopTools_IndexedMapOfShape points;
    for (TopExp_Explorer it(shape, TopAbs_VERTEX, TopAbs_EDGE); it.More(); it.Next())
        points.Add(it.Current());
    ASSERT_GT(points.Extent(), 1000);
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.FaceCount(), 0U);
    EXPECT_GE(model.pieces[0].lines.size(), static_cast<std::size_t>(edges.Extent()));
    EXPECT_EQ(model.pieces[1].lines.size(), 3 * static_cast<std::size_t>(points.Extent()));
}

TEST(BrepSamples, IgesSurfacesCoverTheSolidOfTheSameName)
{
    const Model model = ImportBrep(PathOfSample("iges/hammer.iges"), {});
    const TopoDS_Shape shape = ShapeOf(PathOfSample("occ/hammer.brep"));
    double area = 0.0;
    for (const Piece& piece : model.pieces)
        area += AreaOf(piece);
    EXPECT_NEAR(area, ExactAreaOf(shape), 0.01 * ExactAreaOf(shape));
}

} // namespace
} // namespace viewer
