#include "tests/viewer/test_support.h"

#include "platform/winsys/backend.h"
#include "platform/winsys/backends.h"
#include "platform/winsys/frame_clock.h"
#include "platform/winsys/opengl.h"
#include "viewer/output/png_image.h"

#include <cairo.h>

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string_view>

namespace fs = std::filesystem;

namespace
{

std::string ReadFile(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void AppendBytes(std::string& bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>((value >> (8 * i)) & 0xFFU);
}

void AppendFloat(std::string& bytes, float value)
{
    AppendBytes(bytes, std::bit_cast<std::uint32_t>(value), 4);
}

void AppendTriangle(std::string& bytes)
{
    for (const float value : {0.0F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F, 0.0F, 1.0F, 0.0F})
        AppendFloat(bytes, value);
}

/// For lengths that are multiples of three.
std::string Base64(const std::string& bytes)
{
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i + 2 < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8U | static_cast<unsigned char>(bytes[i + k]);
        for (int shift = 18; shift >= 0; shift -= 6)
            text += kDigits[(group >> shift) & 63U];
    }
    return text;
}

} // namespace

ViewerTest::ViewerTest()
{
    std::ostringstream name;
    name << "karv-view-test-" << std::hex << std::random_device{}() << std::random_device{}();
    folder_ = fs::path(testing::TempDir()) / name.str();
    fs::create_directories(folder_);
}

ViewerTest::~ViewerTest()
{
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

std::string ViewerTest::Write(const std::string& name, const std::string& content) const
{
    std::ofstream(folder_ / name, std::ios::binary) << content;
    return PathOf(name);
}

std::string ViewerTest::Read(const std::string& name) const
{
    return ReadFile(folder_ / name);
}

void ViewerTest::WritePlainPng(const std::string& name, std::uint32_t color, int side) const
{
    viewer::Picture picture(side, side);
    std::ranges::fill(picture.pixels, color);
    viewer::WritePng(picture, PathOf(name));
}

std::vector<std::string> ViewerTest::Names() const
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

ProgramRun ViewerTest::View(const std::string& arguments) const
{
    // The streams go to files beside the folder, so that the folder holds only what the program itself wrote.
    const std::string out = folder_.string() + ".out";
    const std::string err = folder_.string() + ".err";
    // The arguments come last, so that a test can redirect a stream. DISPLAY is removed because the tests
    // themselves may run on a display.
    const std::string command = "cd '" + folder_.string() + "' && env -u DISPLAY '" KARV_VIEW "' >'" + out +
                                "' 2>'" + err + "' </dev/null " + arguments;
    const int result = std::system(command.c_str());
    ProgramRun run;
    if (WIFEXITED(result))
        run.status = WEXITSTATUS(result);
    run.out = ReadFile(out);
    run.err = ReadFile(err);
    fs::remove(out);
    fs::remove(err);
    return run;
}

std::optional<viewer::PictureSize> SizeOfPng(const std::string& path)
{
    cairo_surface_t* surface = cairo_image_surface_create_from_png(path.c_str());
    std::optional<viewer::PictureSize> size;
    if (cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS)
        size = {cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface)};
    cairo_surface_destroy(surface);
    return size;
}

std::string BinaryFacet()
{
    std::string bytes;
    for (const float value : {0.0F, 0.0F, 1.0F})
        AppendFloat(bytes, value);
    AppendTriangle(bytes);
    AppendBytes(bytes, 0, 2);
    return bytes;
}

std::string BinaryStl(unsigned int count, const std::string& facets)
{
    std::string bytes(80, ' ');
    AppendBytes(bytes, count, 4);
    return bytes + facets;
}

std::string Gltf(const std::string& material, const std::string& nodes)
{
    // Nine floats, three 16-bit indices: 42 bytes.
    std::string buffer;
    AppendTriangle(buffer);
    for (const std::uint32_t index : {0U, 1U, 2U})
        AppendBytes(buffer, index, 2);
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":)" + nodes +
           R"(,"materials":[{)" + material +
           R"(}],"meshes":[{"primitives":[{"attributes":{"POSITION":0},"indices":1,"material":0}]}],)"
           R"("accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]},)"
           R"({"bufferView":1,"componentType":5123,"count":3,"type":"SCALAR"}],)"
           R"("bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":6}],)"
           R"("buffers":[{"byteLength":42,"uri":"data:application/octet-stream;base64,)" +
           Base64(buffer) + R"("}]})";
}

namespace viewer
{

Box BoxOf(const Point& min, const Point& max)
{
    Box box;
    box.Add(min);
    box.Add(max);
    return box;
}

std::array<Point, 8> CornersOf(const Box& box)
{
    const auto& [min, max] = box;
    return {Point{min.x, min.y, min.z}, Point{max.x, min.y, min.z}, Point{min.x, max.y, min.z},
            Point{max.x, max.y, min.z}, Point{min.x, min.y, max.z}, Point{max.x, min.y, max.z},
            Point{min.x, max.y, max.z}, Point{max.x, max.y, max.z}};
}

Model BoxModel(const Box& box)
{
    const auto c = CornersOf(box);
    Model model;
    Piece piece;
    for (const auto& face : {std::array{0, 2, 3, 1}, std::array{4, 5, 7, 6}, std::array{0, 1, 5, 4},
                             std::array{2, 6, 7, 3}, std::array{0, 4, 6, 2}, std::array{1, 3, 7, 5}}) {
        std::vector<Point> corners;
        for (const int index : face)
            corners.push_back(c.at(static_cast<std::size_t>(index)));
        if (auto made = MakeFace(std::move(corners))) // nothing for the sides of a flat box
            piece.faces.push_back(std::move(*made));
    }
    model.pieces.push_back(std::move(piece));
    return model;
}

std::uint32_t PixelAt(const Picture& picture, int column, int row)
{
    return picture.pixels.at(static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.width) +
                             static_cast<std::size_t>(column));
}

Point ProjectToViewport(const Point& point)
{
    std::array<double, 16> view{};
    std::array<double, 16> projection{};
    const std::array<GLint, 4> viewport{-1, -1, 2, 2};
    glGetDoublev(GL_MODELVIEW_MATRIX, view.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    Point result;
    gluProject(point.x, point.y, point.z, view.data(), projection.data(), viewport.data(), &result.x,
               &result.y, &result.z);
    return result;
}

void UseHeadless()
{
    winsys::UseBackend(winsys::MakeHeadlessBackend());
    // The control gives up multisampling while frames are slow, which would make pictures depend on the load.
    winsys::SetFrameClock([] { return std::clock_t{0}; });
}

} // namespace viewer
