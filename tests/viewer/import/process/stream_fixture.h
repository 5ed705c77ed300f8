// Shared by tests of the model stream: a model with all members set, and streams as bytes.
#pragma once

#include "viewer/import/process/model_stream.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace viewer
{

/// Two pieces: a face of two triangles with a list of edges, and lines; with names, parents, categories, a
/// unit, and parts that were left out.
inline Model SampleModel()
{
    Model model;
    model.title = "sample.step";
    model.meters_per_unit = 0.001;
    model.category_names = {"steel", "", "brass"};
    Piece plate =
        MakePiece("plate", {MakeFace({{0, 0, 0}, {1e9, 0, 0}, {0, 0.125, 0}}).value()}, 2, 255, 0.5F);
    plate.parents = {"machine", "frame"};
    plate.two_sided = true;
    plate.faces.push_back(MakeFace({{1e9, 0, 0}, {0, 0.125, 0}, {0, 0.25, 0}}).value());
    plate.faces.back().continues = true;
    plate.edges = std::vector<Segment>{{{0, 0, 0}, {1e9, 0, 0}}};
    model.pieces.push_back(std::move(plate));
    Piece wires;
    wires.closes_with_others = true;
    wires.lines = {{{-1, -2, -3}, {4, 5, 6}}, {{4, 5, 6}, {1e-300, 0, 0}}};
    model.pieces.push_back(std::move(wires));
    model.LeaveOut("TEXT", 3);
    model.LeaveOut("3DSOLID");
    return model;
}

/// A writer and the bytes that it has written.
class StreamBytes
{
  public:
    [[nodiscard]] ModelStreamWriter& Writer() { return writer_; }
    [[nodiscard]] const std::string& Bytes() const { return bytes_; }

  private:
    std::string bytes_;
    ModelStreamWriter::Sink sink_ = [this](std::span<const char> bytes) {
        bytes_.append(bytes.data(), bytes.size());
    };
    ModelStreamWriter writer_{sink_};
};

/// The stream of a model.
inline std::string StreamOf(const Model& model)
{
    StreamBytes stream;
    stream.Writer().WriteModel(model);
    return stream.Bytes();
}

/// The bytes of a number in a stream.
template <typename Number>
std::string BytesOf(Number number)
{
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

/// A process id as a progress: it is below 2^22 on every system.
inline constexpr double kMaxProcesses = 4'194'304.0;

inline double FractionOf(int process)
{
    return process / kMaxProcesses;
}

/// A source of these bytes, at most `block` at a time.
inline StreamSource SourceOf(std::string_view bytes, std::size_t block = 65536)
{
    return [bytes, block](std::span<char> buffer) mutable {
        const std::size_t count = std::min({buffer.size(), bytes.size(), block});
        std::memcpy(buffer.data(), bytes.data(), count);
        bytes.remove_prefix(count);
        return count;
    };
}

} // namespace viewer
