#include "viewer/import/mesh/mesh_import.h"

#include "tests/viewer/import/mesh/mesh_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

class MeshImport : public MeshTest
{
  protected:
    static void ExpectTriangle(const Model& model)
    {
        ASSERT_EQ(model.FaceCount(), 1U);
        const ModelFace& face = model.pieces.at(0).faces.at(0);
        EXPECT_EQ(face.normal, (Point{0, 0, 1}));
        EXPECT_THAT(face.corners, ElementsAre(Point{0, 1, 0}, Point{1, 0, 0}, Point{0, 0, 0}));
    }
};

TEST_F(MeshImport, ConcaveObjPolygonStaysOneFaceTurnedClockwise)
{
    Write("concave.mtl", kConcaveMtl);
    const Model model = ImportMesh(Write("concave.obj", kConcaveObj));
    ASSERT_EQ(model.pieces.size(), 1U);
    ASSERT_EQ(model.pieces[0].faces.size(), 1U);
    EXPECT_THAT(model.pieces[0].faces[0].corners,
                ElementsAre(Point{0, 2, 0}, Point{1, 2, 0}, Point{1, 1, 0}, Point{2, 1, 0}, Point{2, 0, 0},
                            Point{0, 0, 0}));
    EXPECT_EQ(model.pieces[0].faces[0].normal, (Point{0, 0, 1}));
    EXPECT_EQ(model.title, "concave.obj");
}

TEST_F(MeshImport, MaterialGivesTheColourAndTheOpacity)
{
    Write("concave.mtl", kConcaveMtl);
    const Model model = ImportMesh(Write("concave.obj", kConcaveObj));
    EXPECT_EQ(ColorOf(model.pieces.at(0)), 0xFF0000U);
    EXPECT_EQ(model.pieces.at(0).alpha, 0.5F);
}

TEST_F(MeshImport, NormalsInTheFileAreNotUsed)
{
    const Model model = ImportMesh(Write(
        "smooth.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 1 0 0\nvn 0 1 0\nvn 0.6 0 0.8\nf 1//1 2//2 3//3\n"));
    ExpectTriangle(model);
}

TEST_F(MeshImport, MaterialsWithFacesAreNumberedInTheirOrder)
{
    Write("three.mtl", "newmtl unused\nKd 1 1 1\nnewmtl green\nKd 0 1 0\nnewmtl blue\nKd 0 0 1\n");
    const Model model = ImportMesh(Write("three.obj", "mtllib three.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\n"
                                                      "usemtl blue\nf 1 2 3\nusemtl green\nf 2 4 3\n"));
    ASSERT_EQ(model.pieces.size(), 2U);
    for (const Piece& piece : model.pieces) {
        const bool green = piece.category == 0;
        EXPECT_EQ(ColorOf(piece), green ? 0x00FF00U : 0x0000FFU);
    }
    EXPECT_NE(model.pieces[0].category, model.pieces[1].category);
    EXPECT_EQ(model.CategoryCount(), 2);
}

TEST_F(MeshImport, AsciiStl)
{
    ExpectTriangle(
        ImportMesh(Write("a.stl", "solid a\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
                                  "vertex 0 1 0\nendloop\nendfacet\nendsolid a\n")));
}

TEST_F(MeshImport, BinaryStl)
{
    ExpectTriangle(ImportMesh(Write("b.stl", BinaryStl(1, BinaryFacet()))));
}

TEST_F(MeshImport, BinaryStlWhoseHeaderBeginsLikeText)
{
    std::string content = BinaryStl(1, BinaryFacet());
    content.replace(0, 5, "solid");
    ExpectTriangle(ImportMesh(Write("solid.stl", content)));
}

TEST_F(MeshImport, PlyPolygonStaysOneFace)
{
    const Model model =
        ImportMesh(Write("quad.ply", AsciiPly(4, "element face 1\nproperty list uchar int vertex_indices\n",
                                              "0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2 3\n")));
    ASSERT_EQ(model.FaceCount(), 1U);
    EXPECT_THAT(model.pieces[0].faces[0].corners,
                ElementsAre(Point{0, 1, 0}, Point{1, 1, 0}, Point{1, 0, 0}, Point{0, 0, 0}));
}

TEST_F(MeshImport, OffPolygonStaysOneFace)
{
    const Model model =
        ImportMesh(Write("quad.off", "OFF\n# a square\n4 1 4\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2 3\n"));
    ASSERT_EQ(model.FaceCount(), 1U);
    EXPECT_EQ(model.pieces[0].faces[0].corners.size(), 4U);
    EXPECT_EQ(model.pieces[0].faces[0].normal, (Point{0, 0, 1}));
}

TEST_F(MeshImport, GltfWithAnEmbeddedBuffer)
{
    const Model model = ImportMesh(
        Write("t.gltf", Gltf(R"("pbrMetallicRoughness":{"baseColorFactor":[0,1,0,0.25]},"alphaMode":"BLEND")",
                             R"([{"mesh":0}])")));
    // The file's y axis is up: (0,1,0) is above the origin.
    ASSERT_EQ(model.FaceCount(), 1U);
    const ModelFace& face = model.pieces[0].faces[0];
    EXPECT_THAT(face.corners, ElementsAre(Point{0, 0, 1}, Point{1, 0, 0}, Point{0, 0, 0}));
    EXPECT_EQ(face.normal, (Point{0, -1, 0}));
    EXPECT_EQ(model.meters_per_unit, 1.0);
    EXPECT_EQ(ColorOf(model.pieces[0]), 0x00FF00U);
    EXPECT_EQ(model.pieces[0].alpha, 0.25F);
}

TEST_F(MeshImport, OpaqueGltfMaterialIgnoresItsAlphaAsTheFormatSays)
{
    const Model model = ImportMesh(Write(
        "t.gltf", Gltf(R"("pbrMetallicRoughness":{"baseColorFactor":[0,1,0,0.25]})", R"([{"mesh":0}])")));
    EXPECT_EQ(model.pieces.at(0).alpha, 1.0F);
}

TEST_F(MeshImport, NodesMoveAndTurnTheirMeshes)
{
    // A quarter turn about x (y to z) around the mesh, then 10 along x.
    const Model model = ImportMesh(
        Write("t.gltf", Gltf("", R"([{"translation":[10,0,0],"children":[1]},)"
                                 R"({"rotation":[0.70710678118654752,0,0,0.70710678118654752],"mesh":0}])")));
    ASSERT_EQ(model.FaceCount(), 1U);
    const ModelFace& face = model.pieces[0].faces[0];
    // In the file the corner (0,1,0) ends at (10,0,1) and the normal at -y; upright that is (10,-1,0) and -z.
    EXPECT_NEAR(face.normal.z, -1.0, 1e-6);
    EXPECT_NEAR(face.corners.at(0).x, 10.0, 1e-6);
    EXPECT_NEAR(face.corners.at(0).y, -1.0, 1e-6);
    EXPECT_NEAR(face.corners.at(1).x, 11.0, 1e-6);
}

TEST_F(MeshImport, MirroredNodeKeepsItsOutside)
{
    const Model model = ImportMesh(Write(
        "t.gltf", Gltf("", R"([{"translation":[10,0,0],"children":[1]},{"scale":[-1,1,1],"mesh":0}])")));
    ASSERT_EQ(model.FaceCount(), 1U);
    const ModelFace& face = model.pieces[0].faces[0];
    // In the file the triangle (10,0) (9,0) (10,1) still faces +z, from where (9,0) (10,1) (10,0) is
    // clockwise; upright, +z is -y.
    EXPECT_EQ(face.normal, (Point{0, -1, 0}));
    EXPECT_THAT(face.corners, ElementsAre(Point{10, 0, 0}, Point{9, 0, 0}, Point{10, 0, 1}));
}

TEST_F(MeshImport, NamesOfMaterialsMeshesAndNodesAreKept)
{
    const Model model = ImportMesh(Write(
        "t.gltf", Gltf(R"("name":"steel")", R"([{"name":"scene","children":[1]},)"
                                            R"({"name":"wheel","children":[2]},{"name":"rim","mesh":0}])")));
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_THAT(model.category_names, ElementsAre("steel"));
    // The mesh has no name, so that the library generates one; the node's name is the parent.
    EXPECT_THAT(model.pieces[0].parents, ElementsAre("wheel", "rim"));
}

/// A Collada file with the triangle (0,0,0) (1,0,0) (0,1,0).
std::string Collada(const std::string& unit, const std::string& up_axis)
{
    return R"(<?xml version="1.0"?><COLLADA xmlns="http://www.collada.org/2005/11/COLLADASchema" version="1.4.1">)"
           "<asset>" +
           unit + "<up_axis>" + up_axis +
           "</up_axis></asset><library_geometries><geometry id=\"g\"><mesh>"
           R"(<source id="p"><float_array id="a" count="9">0 0 0 1 0 0 0 1 0</float_array><technique_common>)"
           R"(<accessor source="#a" count="3" stride="3"><param name="X" type="float"/><param name="Y" type="float"/>)"
           R"(<param name="Z" type="float"/></accessor></technique_common></source>)"
           R"(<vertices id="v"><input semantic="POSITION" source="#p"/></vertices>)"
           R"(<triangles count="1"><input semantic="VERTEX" source="#v" offset="0"/><p>0 1 2</p></triangles>)"
           "</mesh></geometry></library_geometries>"
           R"(<library_visual_scenes><visual_scene id="s"><node id="n"><instance_geometry url="#g"/></node>)"
           R"(</visual_scene></library_visual_scenes><scene><instance_visual_scene url="#s"/></scene></COLLADA>)";
}

TEST_F(MeshImport, ColladaFileStandsUprightWhicheverAxisItNamesAndIsInMetres)
{
    const auto third_corner = [&](const std::string& axis) {
        const Model model =
            ImportMesh(Write("t.dae", Collada(R"(<unit meter="0.01" name="centimeter"/>)", axis)));
        EXPECT_EQ(model.meters_per_unit, 1.0);
        return model.pieces.at(0).faces.at(0).corners.at(0);
    };
    // One centimetre along the file's y.
    const Point upwards = third_corner("Y_UP");
    EXPECT_NEAR(upwards.z, 0.01, 1e-9);
    EXPECT_NEAR(upwards.y, 0.0, 1e-9);
    const Point forwards = third_corner("Z_UP");
    EXPECT_NEAR(forwards.y, 0.01, 1e-9);
    EXPECT_NEAR(forwards.z, 0.0, 1e-9);
}

TEST_F(MeshImport, KindsWithoutAnAxisOrAUnitAreTakenAsTheyStand)
{
    const Model model = ImportMesh(Write("t.obj", kTriangleObj));
    ExpectTriangle(model);
    EXPECT_FALSE(model.meters_per_unit);
}

TEST_F(MeshImport, ProgressRunsFromNothingTowardsOneAndNeverBack)
{
    std::string grid;
    constexpr int kTriangles = 20'000;
    for (int i = 0; i < kTriangles; ++i)
        grid += "v " + std::to_string(i) + " 0 0\nv " + std::to_string(i) + " 1 0\nv " + std::to_string(i) +
                " 0 1\nf -3 -2 -1\n";
    std::vector<double> seen;
    static_cast<void>(
        ImportMesh(Write("many.obj", grid), [&](double fraction) { seen.push_back(fraction); }));
    ASSERT_FALSE(seen.empty());
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_GE(seen.front(), 0.0);
    EXPECT_LE(seen.back(), 1.0);
    EXPECT_GT(seen.back(), 0.9);
}

TEST_F(MeshImport, MissingFileIsRefused)
{
    EXPECT_EQ(ErrorOf(PathOf("none.obj")), PathOf("none.obj") + ": no such file");
}

TEST_F(MeshImport, FolderIsRefused)
{
    EXPECT_EQ(ErrorOf(PathOf("")), PathOf("") + ": is a directory");
}

TEST_F(MeshImport, EmptyFileIsRefused)
{
    EXPECT_EQ(ErrorOf(Write("empty.obj", "")), PathOf("empty.obj") + ": is empty");
}

TEST_F(MeshImport, UnknownKindIsRefused)
{
    EXPECT_EQ(ErrorOf(Write("notes.txt", "Buy milk.\n")), PathOf("notes.txt") + ": unknown kind of file");
}

TEST_F(MeshImport, FileOfNothingIsRefused)
{
    EXPECT_EQ(ErrorOf(Write("none.obj", "# nothing\n")),
              PathOf("none.obj") + ": holds no faces, lines or points");
}

TEST_F(MeshImport, FileWhoseFacesAllReferToMissingVerticesIsRefused)
{
    EXPECT_EQ(ErrorOf(Write("bad.obj", "v 0 0 0\nv 1 0 0\nf 1 2 9\n")),
              PathOf("bad.obj") + ": damaged: its faces refer to vertices that are not there");
}

TEST_F(MeshImport, CoordinatesThatAreNotFiniteAreRefused)
{
    std::string facet = BinaryFacet();
    // The first coordinate of the first corner becomes the float 0x7F800000, infinity, then 0x7FC00000, NaN.
    for (const char third_byte : {'\x80', '\xC0'}) {
        facet[14] = third_byte;
        facet[15] = '\x7F';
        EXPECT_EQ(ErrorOf(Write("infinite.stl", BinaryStl(1, facet))),
                  PathOf("infinite.stl") + ": holds coordinates that are not finite");
    }
}

TEST_F(MeshImport, DamagedFileOfAKnownKindIsNotCalledUnknown)
{
    EXPECT_EQ(ErrorOf(Write("bad.gltf", "{\"asset\":\n{\"version\":\n\"2.0\"},\n")),
              PathOf("bad.gltf") + ": damaged or truncated");
}

TEST_F(MeshImport, ReasonIsOneLine)
{
    const std::string error = ErrorOf(Write("bad.dae", "<COLLADA>\n<library>\n"));
    EXPECT_THAT(error, HasSubstr("bad.dae: "));
    EXPECT_EQ(error.find('\n'), std::string::npos);
}

} // namespace
} // namespace viewer
