// What tests of the sample host share: a folder of their own, small model files, and runs of the program.
#pragma once

#include "viewer/output/picture.h"
#include "viewer/scene/model.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// What a run of karv-view left behind.
struct ProgramRun {
    int status = -1; ///< exit status; -1 where the program did not exit by itself
    std::string out;
    std::string err;
};

/// A test with an empty folder that goes with it.
class ViewerTest : public testing::Test
{
  protected:
    ViewerTest();
    ~ViewerTest() override;

    [[nodiscard]] std::string PathOf(const std::string& name) const { return (folder_ / name).string(); }
    /// Writes a file and returns its path.
    std::string Write(const std::string& name, const std::string& content) const;
    [[nodiscard]] std::string Read(const std::string& name) const;
    /// The names of what is in the folder, sorted.
    [[nodiscard]] std::vector<std::string> Names() const;
    /// Runs the program in the folder, without a display.
    [[nodiscard]] ProgramRun View(const std::string& arguments) const;

  private:
    std::filesystem::path folder_;
};

/// The size of a PNG file, nothing where it is not a whole one.
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

/// A cube from the origin to (1,1,1), closed.
inline constexpr const char* kCubeObj =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 1 0 1\nv 1 1 1\nv 0 1 1\n"
    "f 1 4 3 2\nf 5 6 7 8\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n";

/// A tetrahedron with its right angle at the origin and legs of 10, 20 and 30 along x, y and z.
inline constexpr const char* kTetrahedronObj = "v 0 0 0\nv 10 0 0\nv 0 20 0\nv 0 0 30\n"
                                               "f 1 3 2\nf 1 2 4\nf 1 4 3\nf 2 3 4\n";

/// One facet, as its 50 bytes stand in a binary STL file: (0,0,0) (1,0,0) (0,1,0).
[[nodiscard]] std::string BinaryFacet();
/// A binary STL file that says to hold `count` facets and holds `facets`.
[[nodiscard]] std::string BinaryStl(unsigned int count, const std::string& facets);
/// A glTF file with the triangle (0,0,0) (1,0,0) (0,1,0) in an embedded buffer. `material` and `nodes` are
/// JSON: the members of the one material, and the list of nodes, of which the first is the scene's root.
[[nodiscard]] std::string Gltf(const std::string& material, const std::string& nodes);

namespace viewer
{

/// The box with these corners.
[[nodiscard]] Box BoxOf(const Point& min, const Point& max);
/// A closed box of six faces, of five or less where it is flat.
[[nodiscard]] Model BoxModel(const Box& box);
/// Where a point of the scene lies in the viewport of the current context: -1 to 1 from edge to edge, and in
/// depth.
[[nodiscard]] Point ProjectToViewport(const Point& point);
/// Takes the window layer without a display; no window may exist.
void UseHeadless();

} // namespace viewer
