// Writes the seeds of the fuzzers: streams of small models, and the bytes that build a box, an L and a square
// with a hole.
//
//   make_seeds FOLDER      into FOLDER/model_stream and FOLDER/body_builder
#include "tests/viewer/import/process/stream_fixture.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>

namespace
{

namespace fs = std::filesystem;

void Write(const fs::path& path, const std::string& bytes)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string FailureStream()
{
    viewer::StreamBytes stream;
    stream.Writer().WriteProgress(0.5);
    stream.Writer().WriteFailure("line 7: no such layer");
    return stream.Bytes();
}

/// The bytes that build a body, as body_builder_fuzz.cpp reads them.
class Calls
{
  public:
    Calls& Points(std::initializer_list<std::array<int, 3>> points)
    {
        for (const auto& point : points) {
            bytes_ += '\0';
            for (const int coordinate : point)
                bytes_ += static_cast<char>(coordinate * 8);
        }
        return *this;
    }
    Calls& Face(std::initializer_list<int> outline)
    {
        bytes_ += static_cast<char>(4 + 32 * (static_cast<int>(outline.size()) - 3));
        for (const int corner : outline)
            bytes_ += static_cast<char>(corner);
        return *this;
    }
    /// Adds a face with a hole.
    Calls& Face(std::initializer_list<int> outline, std::initializer_list<int> hole)
    {
        bytes_ += '\1';
        Corners(outline);
        bytes_ += "\3\2";
        Corners(hole);
        bytes_ += '\3';
        return *this;
    }
    [[nodiscard]] const std::string& Bytes() const { return bytes_; }

  private:
    void Corners(std::initializer_list<int> corners)
    {
        for (const int corner : corners) {
            bytes_ += '\6';
            bytes_ += static_cast<char>(corner);
        }
    }

    std::string bytes_;
};

/// Outlines run clockwise as seen from outside.
Calls Box()
{
    Calls calls;
    calls.Points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}});
    calls.Face({0, 1, 2, 3}).Face({4, 7, 6, 5}).Face({0, 4, 5, 1}).Face({1, 5, 6, 2});
    return calls.Face({2, 6, 7, 3}).Face({3, 7, 4, 0});
}

Calls Angle()
{
    Calls calls;
    calls.Points({{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}});
    calls.Points({{0, 0, 1}, {2, 0, 1}, {2, 1, 1}, {1, 1, 1}, {1, 2, 1}, {0, 2, 1}});
    calls.Face({0, 1, 2, 3, 4, 5}).Face({11, 10, 9, 8, 7, 6});
    for (int i = 0; i < 6; ++i)
        calls.Face({i, i + 6, (i + 1) % 6 + 6, (i + 1) % 6});
    return calls;
}

Calls Frame()
{
    Calls calls;
    calls.Points({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {0, 0, 1}, {4, 0, 1}, {4, 4, 1}, {0, 4, 1}});
    calls.Points({{1, 1, 0}, {3, 1, 0}, {3, 3, 0}, {1, 3, 0}, {1, 1, 1}, {3, 1, 1}, {3, 3, 1}, {1, 3, 1}});
    calls.Face({0, 1, 2, 3}, {11, 10, 9, 8}).Face({7, 6, 5, 4}, {12, 13, 14, 15});
    for (int i = 0; i < 4; ++i) {
        const int next = (i + 1) % 4;
        calls.Face({i, i + 4, next + 4, next}).Face({i + 8, next + 8, next + 12, i + 12});
    }
    return calls;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return EXIT_FAILURE;
    const fs::path folder = argv[1];
    Write(folder / "model_stream/sample", viewer::StreamOf(viewer::SampleModel()));
    Write(folder / "model_stream/empty", viewer::StreamOf(viewer::Model{}));
    Write(folder / "model_stream/failure", FailureStream());
    for (const auto& [name, calls] :
         {std::pair("box", Box()), std::pair("angle", Angle()), std::pair("frame", Frame())})
        Write(folder / "body_builder" / name, calls.Bytes());
    return 0;
}
