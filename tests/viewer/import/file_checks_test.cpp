#include "viewer/import/file_checks.h"

#include "tests/viewer/test_support.h"
#include "viewer/import/mesh/mesh_import.h"
#include "viewer/text/file_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace viewer
{
namespace
{

using testing::HasSubstr;
using testing::StartsWith;

class FileChecks : public ViewerTest
{
  protected:
    /// The reason for a file with this name and content, without the path; empty if the file passes.
    std::string ReasonFor(const std::string& name, const std::string& content) const
    {
        const std::string path = Write(name, content);
        try {
            CheckModelFile(path);
        } catch (const FileError& error) {
            return std::string(error.what()).substr(path.size() + 2);
        }
        return {};
    }

    /// Expects that each part of the file that ends before its last face is complete is refused.
    void ExpectEveryBeginningRefused(const std::string& name, const std::string& content,
                                     std::size_t complete) const
    {
        ASSERT_NO_THROW(static_cast<void>(ImportMesh(Write(name, content))));
        for (std::size_t size = 0; size < complete; ++size)
            EXPECT_THROW(static_cast<void>(ImportMesh(Write(name, content.substr(0, size)))), FileError)
                << "first " << size << " of " << content.size() << " bytes";
    }
};

TEST_F(FileChecks, BinaryStlOfOneFacetLessThanItSays)
{
    EXPECT_EQ(ReasonFor("a.stl", BinaryStl(2, BinaryFacet())), "truncated: holds 1 of 2 facets");
}

TEST_F(FileChecks, BinaryStlThatSaysToHoldBillions)
{
    EXPECT_EQ(ReasonFor("a.stl", BinaryStl(0xFFFFFFFFU, BinaryFacet())),
              "truncated: holds 1 of 4294967295 facets");
}

TEST_F(FileChecks, BinaryStlWithinItsHeader)
{
    EXPECT_THAT(ReasonFor("a.stl", std::string(40, '\0')), StartsWith("truncated: "));
}

TEST_F(FileChecks, EveryBeginningOfABinaryStl)
{
    const std::string content = BinaryStl(2, BinaryFacet() + BinaryFacet());
    ExpectEveryBeginningRefused("a.stl", content, content.size());
}

TEST_F(FileChecks, AsciiStlWithoutItsEnd)
{
    EXPECT_EQ(ReasonFor("a.stl", "solid a\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\n"),
              "truncated: no 'endsolid' at the end");
}

TEST_F(FileChecks, AsciiStlInCapitalsWithBlankLinesBehind)
{
    EXPECT_EQ(ReasonFor("a.STL", "SOLID a\nENDSOLID a\n\n\n"), "");
}

TEST_F(FileChecks, AsciiPlyWithFewerLinesThanElements)
{
    EXPECT_EQ(ReasonFor("a.ply", "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nelement face 2\n"
                                 "property list uchar int vertex_indices\nend_header\n0\n1\n2\n3 0 1 2\n"),
              "truncated: holds 4 of 5 elements");
}

TEST_F(FileChecks, PlyWhoseHeaderDoesNotEnd)
{
    EXPECT_EQ(ReasonFor("a.ply", "ply\nformat ascii 1.0\nelement vertex 3\n"),
              "truncated: the header does not end");
}

TEST_F(FileChecks, BinaryPlyShorterThanItsScalars)
{
    // Three vertices of twelve bytes need 36, and each of two lists at least its count of one byte.
    const std::string header = "ply\nformat binary_little_endian 1.0\nelement vertex 3\nproperty float x\n"
                               "property float y\nproperty float z\nelement face 2\n"
                               "property list uchar int vertex_indices\nend_header\n";
    EXPECT_EQ(ReasonFor("a.ply", header + std::string(37, '\0')), "truncated: holds 37 bytes of at least 38");
    EXPECT_EQ(ReasonFor("a.ply", header + std::string(38, '\0')), "");
}

TEST_F(FileChecks, PlyThatSaysToHoldMoreThanAnyMemory)
{
    EXPECT_THAT(ReasonFor("a.ply",
                          "ply\nformat binary_little_endian 1.0\nelement vertex 18446744073709551615\n"
                          "property double x\nend_header\n"),
                HasSubstr("truncated"));
}

TEST_F(FileChecks, OffWithFewerLinesThanItSays)
{
    EXPECT_EQ(ReasonFor("a.off", "OFF\n3 1 3\n0 0 0\n1 0 0\n"), "truncated: holds 2 of 4 vertices and faces");
}

TEST_F(FileChecks, OffThatSaysToHoldBillionsIsRefusedBeforeMemoryIsTaken)
{
    EXPECT_THAT(ReasonFor("a.off", "OFF\n1347917086 6 0\n0 0 0\n"), StartsWith("truncated: holds 1 of "));
}

TEST_F(FileChecks, EveryBeginningOfAnOff)
{
    const std::string content = "OFF\n3 1 3\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n";
    // Without the line's end the last face is complete.
    ExpectEveryBeginningRefused("a.off", content, content.size() - 1);
}

TEST_F(FileChecks, OffWithItsCountsInTheFirstLineIsTaken)
{
    EXPECT_EQ(ReasonFor("a.off", "OFF 3 1 3\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n"), "");
}

TEST_F(FileChecks, BinaryGltfShorterThanItsHeaderSays)
{
    using namespace std::string_literals;
    EXPECT_EQ(ReasonFor("a.glb", "glTF\2\0\0\0\x40\0\0\0"s), "truncated: holds 12 of 64 bytes");
}

TEST_F(FileChecks, EveryBeginningOfAGltf)
{
    const std::string content = Gltf("", R"([{"mesh":0}])");
    ExpectEveryBeginningRefused("a.gltf", content, content.size());
}

} // namespace
} // namespace viewer
