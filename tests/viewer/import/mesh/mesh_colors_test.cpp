#include "tests/viewer/import/mesh/mesh_fixture.h"
#include "viewer/import/mesh/texture_image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class MeshFileColors : public MeshTest
{
  protected:
    static std::uint32_t Nearest(unsigned char red, unsigned char green, unsigned char blue)
    {
        return AcCmEntityColor::lookUpRGB(NearestColorIndex(red, green, blue));
    }

    /// An image of two pixels, red on the left and blue on the right.
    static std::string RedAndBlue() { return {"P6\n2 1\n255\n\xFF\0\0\0\0\xFF", 17}; }
};

constexpr std::uint32_t kRed = 0xFF0000U;
constexpr std::uint32_t kGreen = 0x00FF00U;
constexpr std::uint32_t kBlue = 0x0000FFU;

TEST_F(MeshFileColors, VerticesOfAnObjFileColourTheirFaces)
{
    const Model model = ImportMesh(
        Write("c.obj", "v 0 0 0 1 0 0\nv 1 0 0 1 0 0\nv 0 1 0 1 0 0\nv 3 0 0 0 0 1\nv 4 0 0 0 0 1\n"
                       "v 3 1 0 0 0 1\nf 1 2 3\nf 4 5 6\nf 1 3 2\n"));
    EXPECT_THAT(ColorsOf(model), ElementsAre(kRed, kBlue));
    EXPECT_EQ(model.pieces.at(0).faces.size(), 2U);
    EXPECT_EQ(model.CategoryCount(), 1);
}

TEST_F(MeshFileColors, VerticesWithBytesAreScaled)
{
    const Model model =
        ImportMesh(Write("c.obj", "v 0 0 0 0 255 0\nv 1 0 0 0 255 0\nv 0 1 0 0 255 0\nf 1 2 3\n"));
    EXPECT_THAT(ColorsOf(model), ElementsAre(kGreen));
}

TEST_F(MeshFileColors, FaceHasTheMeanOfItsCorners)
{
    const Model model =
        ImportMesh(Write("c.obj", "v 0 0 0 1 0 0\nv 1 0 0 1 0 0\nv 1 1 0 0 0 1\nv 0 1 0 0 0 1\nf 1 2 3 4\n"));
    EXPECT_THAT(ColorsOf(model), ElementsAre(Nearest(128, 0, 128)));
}

TEST_F(MeshFileColors, VerticesOfAGltfFileMultiplyTheBaseColour)
{
    // The positions (0,0,0) (1,0,0) (0,1,0) are used as colours, too: their mean is a third of red and of green.
    std::string gltf = Gltf(R"("pbrMetallicRoughness":{"baseColorFactor":[1,0,1,1]})", R"([{"mesh":0}])");
    const std::string attributes = R"("POSITION":0)";
    gltf.replace(gltf.find(attributes), attributes.size(), R"("POSITION":0,"COLOR_0":0)");
    EXPECT_THAT(ColorsOf(ImportMesh(Write("c.gltf", gltf))), ElementsAre(Nearest(85, 0, 0)));
}

TEST_F(MeshFileColors, MaterialThatOnlyEmitsShowsItsLight)
{
    const Model gltf = ImportMesh(Write(
        "e.gltf", Gltf(R"("pbrMetallicRoughness":{"baseColorFactor":[0,0,0,1]},"emissiveFactor":[0,1,0])",
                       R"([{"mesh":0}])")));
    EXPECT_THAT(ColorsOf(gltf), ElementsAre(kGreen));
    Write("e.mtl", "newmtl lamp\nKd 0 0 0\nKe 0 0 1\n");
    const Model obj = ImportMesh(Write("e.obj", std::string("mtllib e.mtl\nusemtl lamp\n") + kTriangleObj));
    EXPECT_THAT(ColorsOf(obj), ElementsAre(kBlue));
}

TEST_F(MeshFileColors, FacesOfAnOffFileHaveTheirOwnColours)
{
    const std::string quad = "OFF\n4 2 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n";
    EXPECT_THAT(ColorsOf(ImportMesh(Write("b.off", quad + "3 0 1 2 255 0 0\n3 0 2 3 0 0 255\n"))),
                ElementsAre(kRed, kBlue));
    const Model fractions = ImportMesh(Write("f.off", quad + "3 0 1 2 1.0 0.0 0.0 0.5\n3 0 2 3 0 0 1\n"));
    EXPECT_THAT(ColorsOf(fractions), ElementsAre(kRed, kBlue));
    EXPECT_EQ(fractions.pieces.at(0).alpha, 0.5F);
    EXPECT_EQ(fractions.pieces.at(1).alpha, 1.0F);
}

TEST_F(MeshFileColors, VerticesOfAnOffFileColourTheirFaces)
{
    const Model model = ImportMesh(Write("c.off", "COFF\n3 1 0\n0 0 0 0 255 0 255\n1 0 0 0 255 0 255\n"
                                                  "0 1 0 0 255 0 255\n3 0 1 2\n"));
    EXPECT_THAT(ColorsOf(model), ElementsAre(kGreen));
}

TEST_F(MeshFileColors, PlyColoursOfFacesAndOfVertices)
{
    const std::string colors = "property uchar red\nproperty uchar green\nproperty uchar blue\n";
    const std::string header = colors + "element face 1\nproperty list uchar int vertex_indices\n";
    const std::string corners = "0 0 0 0 255 0\n1 0 0 0 255 0\n0 1 0 0 255 0\n3 0 1 2";
    EXPECT_THAT(ColorsOf(ImportMesh(Write("v.ply", AsciiPly(3, header, corners + "\n")))),
                ElementsAre(kGreen));
    EXPECT_THAT(ColorsOf(ImportMesh(Write("f.ply", AsciiPly(3, header + colors, corners + " 0 0 255\n")))),
                ElementsAre(kBlue));
}

TEST_F(MeshFileColors, FaceHasTheColourOfItsPlaceInTheTexture)
{
    Write("t.mtl", "newmtl picture\nmap_Kd -s 1 1 1 two.ppm\n");
    Write("two.ppm", RedAndBlue());
    const Model model = ImportMesh(
        Write("t.obj", "mtllib t.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0.1 0.5\nvt 0.2 0.5\nvt 0.1 0.6\n"
                       "vt 1.7 0.5\nvt 1.8 0.5\nvt 1.7 0.6\nusemtl picture\nf 1/1 2/2 3/3\nf 1/4 2/5 3/6\n"));
    EXPECT_THAT(ColorsOf(model), ElementsAre(kRed, kBlue));
    EXPECT_THAT(model.left_out, IsEmpty());
}

TEST_F(MeshFileColors, BaseColourIsAFactorOfTheTexture)
{
    Write("t.mtl", "newmtl picture\nKd 0.5 1 1\nmap_Kd two.ppm\n");
    Write("two.ppm", RedAndBlue());
    const Model model =
        ImportMesh(Write("t.obj", "mtllib t.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0.2 0.5\nusemtl picture\n"
                                  "f 1/1 2/1 3/1\n"));
    EXPECT_THAT(ColorsOf(model), ElementsAre(Nearest(128, 0, 0)));
}

TEST_F(MeshFileColors, TextureIsFoundInLettersOfOtherCase)
{
    Write("t.mtl", "newmtl picture\nKd 1 1 1\nmap_Kd C:\\pictures\\TWO.PPM\n");
    Write("two.ppm", RedAndBlue());
    const Model model =
        ImportMesh(Write("t.obj", "mtllib t.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0.8 0.5\nusemtl picture\n"
                                  "f 1/1 2/1 3/1\n"));
    EXPECT_THAT(ColorsOf(model), ElementsAre(kBlue));
}

TEST_F(MeshFileColors, MissingTextureIsCountedAndItsBaseColourShown)
{
    Write("t.mtl", "newmtl a\nKd 0 1 0\nmap_Kd none.png\nnewmtl b\nKd 0 1 0\nmap_Kd none.png\n");
    const Model model = ImportMesh(
        Write("t.obj", "mtllib t.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\nusemtl b\nf 1 2 3\n"));
    EXPECT_THAT(ColorsOf(model), ElementsAre(kGreen, kGreen));
    EXPECT_EQ(LeftOutOf(model, "texture"), 1U);
}

TEST_F(MeshFileColors, ImageThatClaimsToBeHugeIsNotDecoded)
{
    EXPECT_FALSE(TextureImage::FromFile(Write("huge.ppm", "P6\n100000 100000\n255\nabc")));
    EXPECT_FALSE(TextureImage::FromFile(Write("bad.png", "\x89PNG\r\n\x1A\n")));
    EXPECT_FALSE(TextureImage::FromFile(PathOf("none.png")));
    EXPECT_FALSE(TextureImage::FromFile(PathOf("")));
}

TEST_F(MeshFileColors, MeanOfATextureIsThatOfTheWholeImageForLargeFaces)
{
    const auto image = TextureImage::FromFile(Write("two.ppm", RedAndBlue()));
    ASSERT_TRUE(image);
    const std::array<TexturePoint, 3> large = {{{0, 0}, {8, 0}, {0, 8}}};
    EXPECT_EQ(image->MeanNear(large), (FileColor{0.5F, 0.0F, 0.5F, 1.0F}));
    const std::array<TexturePoint, 3> infinite = {
        {{0, 0}, {std::numeric_limits<double>::infinity(), 0}, {0, 1}}};
    EXPECT_EQ(image->MeanNear(infinite), (FileColor{0.5F, 0.0F, 0.5F, 1.0F}));
    EXPECT_EQ(image->MeanNear({}), (FileColor{0.5F, 0.0F, 0.5F, 1.0F}));
}

TEST_F(MeshFileColors, UpperEdgeOfATextureIsTheFirstRowOfItsImage)
{
    // Red above, blue below.
    const auto image =
        TextureImage::FromFile(Write("v.ppm", std::string("P6\n1 2\n255\n\xFF\0\0\0\0\xFF", 17)));
    ASSERT_TRUE(image);
    const std::array<TexturePoint, 1> above = {{{0.5, 0.9}}};
    EXPECT_EQ(image->MeanNear(above), (FileColor{1.0F, 0.0F, 0.0F, 1.0F}));
}

TEST_F(MeshFileColors, EmbeddedTextureOfAGltfFileColoursItsFaces)
{
    const Model model =
        ImportMesh(std::string(KARV_ASSIMP_MODELS) + "/glTF2/BoxTextured-glTF-Embedded/BoxTextured.gltf");
    EXPECT_GT(model.pieces.size(), 1U);
    EXPECT_THAT(model.left_out, IsEmpty());
}

TEST_F(MeshFileColors, SampleOfAColouredCubeHasMoreThanOneColour)
{
    EXPECT_GT(ImportMesh(std::string(KARV_ASSIMP_MODELS) + "/X/kwxport_test_cubewithvcolors.x").pieces.size(),
              2U);
}

} // namespace
} // namespace viewer
