#include "tests/viewer/import/mesh/mesh_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kMissingVertex = "part that refers to a missing vertex";
constexpr const char* kNotFinite = "part with coordinates that are not finite";

class MeshParts : public MeshTest
{
  protected:
    /// The sample triangle with an additional member of its primitive.
    static std::string GltfWith(const std::string& member)
    {
        std::string gltf = Gltf("", R"([{"mesh":0}])");
        const std::string indices = R"("indices":1)";
        return gltf.replace(gltf.find(indices), indices.size(), indices + "," + member);
    }
};

TEST_F(MeshParts, ObjLinesAreLines)
{
    const Model model =
        ImportMesh(Write("l.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 5 5 5\nl 1 2 3\nl 3/1 1/1\n"));
    ASSERT_EQ(model.pieces.size(), 1U);
    ASSERT_EQ(model.pieces[0].lines.size(), 3U);
    EXPECT_EQ(model.pieces[0].lines[0].from, (Point{0, 0, 0}));
    EXPECT_EQ(model.pieces[0].lines[0].to, (Point{1, 0, 0}));
    EXPECT_EQ(model.pieces[0].lines[2].from, (Point{1, 1, 0}));
    EXPECT_EQ(model.pieces[0].lines[2].to, (Point{0, 0, 0}));
}

TEST_F(MeshParts, PointsAreCrossesOfAFractionOfTheDiagonal)
{
    // The diagonal is 500: strokes are 2.5 long.
    const Model model = ImportMesh(Write("p.obj", "v 0 0 0\nv 300 400 0\np 1 2\n"));
    ASSERT_EQ(model.pieces.size(), 1U);
    ASSERT_EQ(model.pieces[0].lines.size(), 6U);
    for (const Segment& stroke : model.pieces[0].lines)
        EXPECT_NEAR(Length(stroke.to - stroke.from), 2.5, 1e-9);
    EXPECT_EQ((model.pieces[0].lines[0].from + model.pieces[0].lines[0].to) * 0.5, (Point{0, 0, 0}));
}

TEST_F(MeshParts, SinglePointIsVisible)
{
    const Model model = ImportMesh(Write("p.obj", "v 1e6 0 0\np 1\n"));
    EXPECT_EQ(LineCountOf(model), 3U);
    EXPECT_GT(model.Extents().Diagonal(), 0.0);
}

TEST_F(MeshParts, VerticesOfAFileWithoutFacesArePoints)
{
    EXPECT_EQ(LineCountOf(ImportMesh(Write("p.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\n"))), 9U);
    EXPECT_EQ(LineCountOf(ImportMesh(Write("p.off", "OFF\n2 0 0\n0 0 0\n1 0 0\n"))), 6U);
    EXPECT_EQ(LineCountOf(ImportMesh(Write("p.ply", AsciiPly(2, "", "0 0 0\n1 0 0\n")))), 6U);
}

TEST_F(MeshParts, PlyEdgesAreLines)
{
    const Model model =
        ImportMesh(Write("e.ply", AsciiPly(2, "element edge 1\nproperty int vertex1\nproperty int vertex2\n",
                                           "0 0 0\n1 0 0\n1 0\n")));
    ASSERT_EQ(LineCountOf(model), 1U);
    EXPECT_EQ(model.pieces[0].lines[0].from, (Point{1, 0, 0}));
}

TEST_F(MeshParts, GltfLinesAndPointsAreShown)
{
    // A strip of three vertices has two lines, a loop three.
    EXPECT_EQ(LineCountOf(ImportMesh(Write("s.gltf", GltfWith(R"("mode":3)")))), 2U);
    EXPECT_EQ(LineCountOf(ImportMesh(Write("l.gltf", GltfWith(R"("mode":2)")))), 3U);
    EXPECT_EQ(LineCountOf(ImportMesh(Write("p.gltf", GltfWith(R"("mode":0)")))), 9U);
}

TEST_F(MeshParts, PlyStripsOfTrianglesKeepTheirOutsides)
{
    const Model model =
        ImportMesh(Write("s.ply", AsciiPly(4, "element tristrips 1\nproperty list int int vertex_indices\n",
                                           "0 0 0\n1 0 0\n0 1 0\n1 1 0\n8 0 1 2 3 -1 0 1 2\n")));
    ASSERT_EQ(model.FaceCount(), 3U);
    for (const ModelFace& face : model.pieces[0].faces)
        EXPECT_EQ(face.normal, (Point{0, 0, 1}));
}

TEST_F(MeshParts, PlyOfEitherByteOrderAndWithDoubles)
{
    for (const bool is_big : {false, true}) {
        std::string content =
            std::string("ply\r\nformat ") + (is_big ? "binary_big_endian" : "binary_little_endian") +
            " 1.0\r\ncomment made by hand\r\nelement vertex 3\r\nproperty double x\r\n"
            "property double y\r\nproperty double z\r\nelement face 1\r\n"
            "property uchar flags\r\nproperty list uchar uint vertex_index\r\nend_header\r\n";
        const auto append = [&](std::uint64_t bits, unsigned int bytes) {
            for (unsigned int i = 0; i < bytes; ++i)
                content += static_cast<char>(bits >> (8U * (is_big ? bytes - 1 - i : i)) & 0xFFU);
        };
        for (const double value : {1e6, 0.0, 0.0, 1e6 + 1e-6, 0.0, 0.0, 1e6, 1.0, 0.0})
            append(std::bit_cast<std::uint64_t>(value), 8);
        append(7, 1);
        append(3, 1);
        for (const std::uint64_t index : {0U, 1U, 2U})
            append(index, 4);
        const Model model = ImportMesh(Write("b.ply", content));
        ASSERT_EQ(model.FaceCount(), 1U);
        // Single precision would lose the millionth.
        EXPECT_EQ(model.pieces[0].faces[0].corners.at(1), (Point{1e6 + 1e-6, 0, 0}));
    }
}

TEST_F(MeshParts, ObjCoordinatesKeepTheirDigits)
{
    const Model model =
        ImportMesh(Write("d.obj", "v 3500000.125 0 0\nv 3500001 0 0\nv 3500000 1 0\nf 1 2 3\n"));
    EXPECT_EQ(model.pieces.at(0).faces.at(0).corners.at(2), (Point{3500000.125, 0, 0}));
}

TEST_F(MeshParts, FaceWithABadIndexIsLeftOutAlone)
{
    const Model obj = ImportMesh(Write("b.obj", std::string(kTriangleObj) + "f 1 2 9\nf 1 2 x\nf 1 2 -9\n"));
    EXPECT_EQ(obj.FaceCount(), 1U);
    EXPECT_EQ(LeftOutOf(obj, kMissingVertex), 3U);
    const Model off = ImportMesh(Write("b.off", "OFF\n3 2 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n3 0 1 7\n"));
    EXPECT_EQ(off.FaceCount(), 1U);
    EXPECT_EQ(LeftOutOf(off, kMissingVertex), 1U);
    const Model ply =
        ImportMesh(Write("b.ply", AsciiPly(3, "element face 2\nproperty list uchar int vertex_indices\n",
                                           "0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n3 0 1 7\n")));
    EXPECT_EQ(ply.FaceCount(), 1U);
    EXPECT_EQ(LeftOutOf(ply, kMissingVertex), 1U);
}

TEST_F(MeshParts, FaceWithACoordinateThatIsNotFiniteIsLeftOutAlone)
{
    const Model obj = ImportMesh(Write("n.obj", std::string(kTriangleObj) + "v nan 0 0\nf 1 2 4\n"));
    EXPECT_EQ(obj.FaceCount(), 1U);
    EXPECT_EQ(LeftOutOf(obj, kNotFinite), 1U);
    std::string infinite = BinaryFacet();
    infinite[14] = '\x80';
    infinite[15] = '\x7F';
    const Model stl = ImportMesh(Write("n.stl", BinaryStl(2, BinaryFacet() + infinite)));
    EXPECT_EQ(stl.FaceCount(), 1U);
    EXPECT_EQ(LeftOutOf(stl, kNotFinite), 1U);
}

TEST_F(MeshParts, OutlineThatCrossesItselfIsCountedAndOneOnALineIsNot)
{
    const Model model = ImportMesh(Write(
        "x.obj",
        "v 0 0 0\nv 1 1 0\nv 1 0 0\nv 0 1 0\nv 2 0 0\nv 3 0 0\nf 1 3 4\nf 1 2 3 4\nf 1 3 5 6\nf 1 1 3\n"));
    EXPECT_EQ(model.FaceCount(), 1U);
    EXPECT_THAT(model.left_out, SizeIs(1));
    EXPECT_EQ(LeftOutOf(model, "face without area"), 1U);
}

TEST_F(MeshParts, TextWithMarksTabsAndOtherLineEndsIsRead)
{
    for (const std::string end : {"\n", "\r\n", "\r"}) {
        const Model model =
            ImportMesh(Write("T.OBJ", "\xEF\xBB\xBFv 0 0 0" + end + "v\t1  0 0" + end + "v 0 +1 0 # up" +
                                          end + "f 1 2 \\" + end + " 3" + end));
        EXPECT_EQ(model.FaceCount(), 1U);
        EXPECT_THAT(model.left_out, IsEmpty());
    }
}

TEST_F(MeshParts, Utf16IsRead)
{
    for (const bool is_big : {false, true}) {
        std::string wide = is_big ? "\xFE\xFF" : "\xFF\xFE";
        for (const char c : std::string("g \xDC\n") + kTriangleObj) {
            const std::string unit = {c, '\0'};
            wide += is_big ? std::string{unit[1], unit[0]} : unit;
        }
        const Model model = ImportMesh(Write("w.obj", wide));
        EXPECT_EQ(model.FaceCount(), 1U);
        EXPECT_EQ(model.pieces.at(0).name, "\xC3\x9C");
    }
    // The library does not know it in these files.
    EXPECT_EQ(ImportMesh(std::string(KARV_ASSIMP_MODELS) + "/Collada/cube_UTF16LE.dae").FaceCount(), 6U);
}

TEST_F(MeshParts, MissingMaterialLibraryIsCountedAndTheFacesAreShown)
{
    const Model model =
        ImportMesh(Write("m.obj", std::string("mtllib none.mtl\nusemtl steel\n") + kTriangleObj));
    EXPECT_EQ(model.FaceCount(), 1U);
    EXPECT_EQ(LeftOutOf(model, "material library"), 1U);
    EXPECT_THAT(model.category_names, ElementsAre("steel"));
}

TEST_F(MeshParts, ObjectsAndGroupsNameThePieces)
{
    const Model model =
        ImportMesh(Write("g.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\no car\nf 1 2 3\ng wheel\nf 1 2 3\n"
                                  "o house\nf 1 2 3\ng wheel\nf 1 2 3\no car\nf 1 2 3\n"));
    ASSERT_EQ(model.pieces.size(), 4U);
    EXPECT_EQ(model.pieces[0].name, "car");
    EXPECT_EQ(model.pieces[0].faces.size(), 2U);
    EXPECT_EQ(model.pieces[1].name, "wheel");
    EXPECT_THAT(model.pieces[1].parents, ElementsAre("car"));
    EXPECT_EQ(model.pieces[2].name, "house");
    EXPECT_THAT(model.pieces[3].parents, ElementsAre("house"));
}

TEST_F(MeshParts, StlWithSeveralSolidsIsReadWhole)
{
    const std::string facet = "facet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n"
                              "endloop\nendfacet\n";
    EXPECT_EQ(
        ImportMesh(Write("s.stl", "solid a\n" + facet + "endsolid a\nsolid b\n" + facet + "endsolid b\n"))
            .FaceCount(),
        2U);
}

TEST_F(MeshParts, SkinnedMeshIsWhereItsBonesHoldIt)
{
    const std::string matrix = "1.0,0.0,0.0,0.0, 0.0,1.0,0.0,0.0, 0.0,0.0,1.0,0.0, ";
    const Model model = ImportMesh(Write(
        "s.x", "xof 0303txt 0032\nFrame Root {\nFrameTransformMatrix { " + matrix + "0.0,0.0,0.0,1.0;; }\n" +
                   "Frame Bone {\nFrameTransformMatrix { " + matrix + "10.0,0.0,0.0,1.0;; }\n}\n" +
                   "Frame Body {\nFrameTransformMatrix { " + matrix + "0.0,50.0,0.0,1.0;; }\n" +
                   "Mesh m {\n3;\n0.0;0.0;0.0;,\n1.0;0.0;0.0;,\n0.0;1.0;0.0;;\n1;\n3;0,1,2;;\n" +
                   "XSkinMeshHeader { 1; 1; 1; }\nSkinWeights {\n\"Bone\";\n3;\n0,1,2;\n1.0,1.0,1.0;\n" +
                   matrix + "0.0,0.0,0.0,1.0;;\n}\n}\n}\n}\n"));
    ASSERT_EQ(model.FaceCount(), 1U);
    const Box box = model.Extents();
    EXPECT_NEAR(box.min.x, 10.0, 1e-6);
    EXPECT_NEAR(box.max.x, 11.0, 1e-6);
    // The file's y axis is up.
    EXPECT_NEAR(box.min.z, 0.0, 1e-6);
    EXPECT_NEAR(box.max.z, 1.0, 1e-6);
}

TEST_F(MeshParts, FiguresOfGamesStandUpright)
{
    for (const std::string file : {"/MD2/sydney.md2", "/X/BCN_Epileptic.X"}) {
        const Box box = ImportMesh(KARV_ASSIMP_MODELS + file).Extents();
        EXPECT_GT(box.max.z - box.min.z, 1.5 * (box.max.y - box.min.y)) << file;
    }
}

TEST_F(MeshParts, PlyThatClaimsElementsWithoutBytesIsRefusedAtOnce)
{
    EXPECT_THAT(ErrorOf(Write("h.ply", "ply\nformat binary_little_endian 1.0\n"
                                       "element vertex 1000000000000000000\nend_header\n")),
                HasSubstr("truncated"));
}

TEST_F(MeshParts, OffThatIsNotThreeDimensionalIsRefused)
{
    EXPECT_THAT(ErrorOf(Write("n.off", "nOFF\n5\n1 0 0\n0 0 0 0 0\n")), HasSubstr("dimensions"));
}

} // namespace
} // namespace viewer
