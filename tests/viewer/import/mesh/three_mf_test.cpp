#include "tests/viewer/import/mesh/mesh_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

void AppendNumber(std::string& bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += i < 4 ? static_cast<char>(value >> (8 * i) & 0xFFU) : '\0';
}

std::uint32_t Crc32(const std::string& bytes)
{
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const char c : bytes) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

/// A ZIP archive of files that are not packed.
std::string Zip(const std::vector<std::pair<std::string, std::string>>& files)
{
    std::string archive;
    std::string directory;
    for (const auto& [name, content] : files) {
        std::string header;
        AppendNumber(header, 20, 2); // version
        AppendNumber(header, 0, 2);
        AppendNumber(header, 0, 2); // not packed
        AppendNumber(header, 0, 4);
        AppendNumber(header, Crc32(content), 4);
        AppendNumber(header, static_cast<std::uint32_t>(content.size()), 4);
        AppendNumber(header, static_cast<std::uint32_t>(content.size()), 4);
        AppendNumber(header, static_cast<std::uint32_t>(name.size()), 2);
        AppendNumber(header, 0, 2);
        directory += "PK\1\2";
        AppendNumber(directory, 20, 2);
        directory += header;
        AppendNumber(directory, 0, 10);
        AppendNumber(directory, static_cast<std::uint32_t>(archive.size()), 4);
        directory += name;
        archive += "PK\3\4" + header + name + content;
    }
    const auto start = static_cast<std::uint32_t>(archive.size());
    archive += directory + "PK\5\6";
    AppendNumber(archive, 0, 4);
    AppendNumber(archive, static_cast<std::uint32_t>(files.size()), 2);
    AppendNumber(archive, static_cast<std::uint32_t>(files.size()), 2);
    AppendNumber(archive, static_cast<std::uint32_t>(directory.size()), 4);
    AppendNumber(archive, start, 4);
    AppendNumber(archive, 0, 2);
    return archive;
}

class ThreeMf : public MeshTest
{
  protected:
    /// Reads a package with these resources and items of its build.
    Model Import(const std::string& resources, const std::string& items,
                 const std::string& unit = "inch") const
    {
        return ImportMesh(Write(
            "a.3mf", Zip({{"3D/3dmodel.model", R"(<?xml version="1.0"?><model unit=")" + unit +
                                                   R"(" xmlns:m="m"><resources>)" + resources +
                                                   "</resources><build>" + items + "</build></model>"}})));
    }

    static std::string Mesh(const std::string& triangles)
    {
        return R"(<mesh><vertices><vertex x="0" y="0" z="0"/><vertex x="1" y="0" z="0"/><vertex x="0" y="1" z="0"/>)"
               R"(</vertices><triangles>)" +
               triangles + "</triangles></mesh>";
    }
};

TEST_F(ThreeMf, TrianglesHaveTheirBaseMaterials)
{
    const Model model = Import(
        R"(<basematerials id="2"><base name="red" displaycolor="#FF0000"/><base name="glass" displaycolor="#0000FF80"/>)"
        R"(</basematerials><object id="1" name="part" pid="2" pindex="1">)" +
            Mesh(R"(<triangle v1="0" v2="1" v3="2" pid="2" p1="0"/><triangle v1="0" v2="2" v3="1"/>)") +
            "</object>",
        R"(<item objectid="1" transform="1 0 0 0 1 0 0 0 1 5 0 0"/>)");
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_THAT(model.category_names, ElementsAre("red", "glass"));
    EXPECT_EQ(ColorOf(model.pieces[0]), 0xFF0000U);
    EXPECT_EQ(model.pieces[0].category, 0);
    EXPECT_EQ(model.pieces[0].name, "part");
    EXPECT_EQ(ColorOf(model.pieces[1]), 0x0000FFU);
    EXPECT_EQ(model.pieces[1].alpha, 0.5F);
    EXPECT_THAT(model.pieces[0].faces.at(0).corners,
                ElementsAre(Point{5, 1, 0}, Point{6, 0, 0}, Point{5, 0, 0}));
    EXPECT_EQ(model.meters_per_unit, 0.0254);
}

TEST_F(ThreeMf, ColourGroupsColourTriangles)
{
    const Model model = Import(
        R"(<m:colorgroup id="2"><m:color color="#FF0000FF"/><m:color color="#00FF00FF"/></m:colorgroup><object id="1">)" +
            Mesh(
                R"(<triangle v1="0" v2="1" v3="2" pid="2" p1="1"/><triangle v1="0" v2="2" v3="1" pid="2" p1="0" p2="0" p3="0"/>)") +
            "</object>",
        R"(<item objectid="1"/>)");
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(ColorOf(model.pieces[0]), 0x00FF00U);
    EXPECT_EQ(ColorOf(model.pieces[1]), 0xFF0000U);
    EXPECT_EQ(model.CategoryCount(), 1);
}

TEST_F(ThreeMf, ComponentsAreMovedAndMirroredOnesKeepTheirOutsides)
{
    const Model model =
        Import(R"(<object id="1" name="wing">)" + Mesh(R"(<triangle v1="0" v2="1" v3="2"/>)") +
                   R"(</object><object id="2" name="plane"><components><component objectid="1"/>)"
                   R"(<component objectid="1" transform="-1 0 0 0 1 0 0 0 1 0 0 0"/></components></object>)",
               R"(<item objectid="2"/>)");
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_THAT(model.pieces[0].parents, ElementsAre("plane"));
    EXPECT_EQ(model.pieces[1].faces.at(0).normal, (Point{0, 0, 1}));
    EXPECT_EQ(model.pieces[1].faces.at(0).corners.size(), 3U);
}

TEST_F(ThreeMf, ObjectsThatContainEachOtherEnd)
{
    const Model model = Import(R"(<object id="1">)" + Mesh(R"(<triangle v1="0" v2="1" v3="2"/>)") +
                                   R"(</object><object id="2"><components><component objectid="2"/>)"
                                   R"(<component objectid="1"/></components></object>)",
                               R"(<item objectid="2"/>)", "millimeter");
    EXPECT_GT(model.FaceCount(), 0U);
    EXPECT_THAT(model.left_out, testing::SizeIs(1));
}

TEST_F(ThreeMf, BeamsAreLines)
{
    const Model model = Import(
        R"(<object id="1"><mesh><vertices><vertex x="0" y="0" z="0"/><vertex x="1" y="0" z="0"/></vertices>)"
        R"(<beamlattice><beams><beam v1="0" v2="1"/></beams></beamlattice></mesh></object>)",
        R"(<item objectid="1"/>)");
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].lines.size(), 1U);
}

TEST_F(ThreeMf, DamagedPackageIsRefused)
{
    const auto error_of = [&](const std::string& content) { return ErrorOf(Write("bad.3mf", content)); };
    EXPECT_THAT(error_of("PK no archive"), HasSubstr("not a ZIP archive"));
    EXPECT_THAT(error_of(Zip({{"a.txt", "Buy milk."}})), HasSubstr("no model"));
    EXPECT_THAT(error_of(Zip({{"3D/3dmodel.model", "<model><resources>"}})), HasSubstr("not well-formed"));
    EXPECT_THAT(error_of(Zip({{"3D/3dmodel.model", "<model/>"}})), HasSubstr("holds no faces"));
}

TEST_F(ThreeMf, SampleOfAPackedPackageIsRead)
{
    const Model model = ImportMesh(std::string(KARV_ASSIMP_MODELS) + "/3MF/box.3mf");
    EXPECT_EQ(model.FaceCount(), 12U);
    EXPECT_EQ(model.meters_per_unit, 0.001);
    EXPECT_THAT(model.left_out, IsEmpty());
}

} // namespace
} // namespace viewer
