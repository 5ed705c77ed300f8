// Shared by the tests of the viewer: a folder for each test, small model files, models, and runs of
// karv-view.
#pragma once

#include "viewer/output/picture.h"
#include "viewer/scene/model.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// The result of a run of karv-view.
struct ProgramRun {
    int status = -1; ///< exit status; -1 where a signal ended the program
    std::string out;
    std::string err;
};

/// A test with an empty folder, which is removed after it.
class ViewerTest : public testing::Test
{
  protected:
    ViewerTest();
    ~ViewerTest() override;

    [[nodiscard]] std::string PathOf(const std::string& name) const { return (folder_ / name).string(); }
    /// Writes a file and returns its path.
    std::string Write(const std::string& name, const std::string& content) const;
    [[nodiscard]] std::string Read(const std::string& name) const;
    /// Writes a picture of 64 by 64 pixels (or of another size) of one colour, as the program writes one.
    void WritePlainPng(const std::string& name, std::uint32_t color, int side = 64) const;
    /// The names of the files and folders in the folder, sorted.
    [[nodiscard]] std::vector<std::string> Names() const;
    /// Runs karv-view in the folder, without a display.
    [[nodiscard]] ProgramRun View(const std::string& arguments) const;

  private:
    std::filesystem::path folder_;
};

/// The size of the picture in a PNG file; nothing where the file is missing or incomplete.
[[nodiscard]] std::optional<viewer::PictureSize> SizeOfPng(const std::string& path);

/// An L of six corners in the plane z = 0, counter-clockwise seen from +z, 2 by 2 with a notch; red, half
/// opaque.
inline constexpr const char* kConcaveObj = "mtllib concave.mtl\n"
                                           "v 0 0 0\nv 2 0 0\nv 2 1 0\nv 1 1 0\nv 1 2 0\nv 0 2 0\n"
                                           "usemtl glass\n"
                                           "f 1 2 3 4 5 6\n";
inline constexpr const char* kConcaveMtl = "newmtl glass\nKd 1 0 0\nd 0.5\n";

/// A triangle (0,0,0) (1,0,0) (0,1,0).
inline constexpr const char* kTriangleObj = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

/// A closed cube from the origin to (1,1,1).
inline constexpr const char* kCubeObj =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 1 0 1\nv 1 1 1\nv 0 1 1\n"
    "f 1 4 3 2\nf 5 6 7 8\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n";

/// A tetrahedron with its right angle at the origin and legs of 10, 20 and 30 along x, y and z.
inline constexpr const char* kTetrahedronObj = "v 0 0 0\nv 10 0 0\nv 0 20 0\nv 0 0 30\n"
                                               "f 1 3 2\nf 1 2 4\nf 1 4 3\nf 2 3 4\n";

/// The 50 bytes of one facet in a binary STL file: (0,0,0) (1,0,0) (0,1,0).
[[nodiscard]] std::string BinaryFacet();
/// A binary STL file whose header claims `count` facets, followed by `facets`.
[[nodiscard]] std::string BinaryStl(unsigned int count, const std::string& facets);
/// A glTF file with the triangle (0,0,0) (1,0,0) (0,1,0) in an embedded buffer. Both arguments are JSON: the
/// members of the one material, and the list of nodes, whose first one is the root of the scene.
[[nodiscard]] std::string Gltf(const std::string& material, const std::string& nodes);

namespace viewer
{

/// The box with these corners.
[[nodiscard]] Box BoxOf(const Point& min, const Point& max);
/// The corners of a box; x changes first, then y, then z.
[[nodiscard]] std::array<Point, 8> CornersOf(const Box& box);
/// A closed box of six faces; of fewer where the box is flat.
[[nodiscard]] Model BoxModel(const Box& box);
/// The pixel in this column and row of the picture, counted from the upper left corner; fails outside.
[[nodiscard]] std::uint32_t PixelAt(const Picture& picture, int column, int row);
/// The position of a point of the scene in the viewport of the current context: x and y from -1 to 1 between
/// the edges, z the depth from 0 to 1.
[[nodiscard]] Point ProjectToViewport(const Point& point);
/// Selects the window layer without a display, and a frame clock by which no frame takes time. No window may
/// exist.
void UseHeadless();

} // namespace viewer
