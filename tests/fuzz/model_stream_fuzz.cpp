// Reads any bytes as the stream between the two processes: the result is a model that can be shown, or a
// reason.
#include "viewer/import/process/model_stream.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace
{

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

/// Checks what every user of a model relies on.
void CheckModel(const viewer::Model& model)
{
    for (const viewer::Piece& piece : model.pieces) {
        Require(piece.category >= 0 && piece.category < model.CategoryCount());
        Require(piece.alpha >= 0.0F && piece.alpha <= 1.0F);
        for (const viewer::ModelFace& face : piece.faces) {
            Require(face.corners.size() >= 3);
            Require(std::all_of(face.corners.begin(), face.corners.end(), viewer::IsFinite));
            Require(viewer::IsFinite(face.normal));
        }
        for (const viewer::Segment& line : piece.lines)
            Require(viewer::IsFinite(line.from) && viewer::IsFinite(line.to));
    }
}

std::string StreamOf(const viewer::Model& model)
{
    std::string bytes;
    const viewer::ModelStreamWriter::Sink sink = [&](std::span<const char> part) {
        bytes.append(part.data(), part.size());
    };
    viewer::ModelStreamWriter(sink).WriteModel(model);
    return bytes;
}

viewer::Model Read(std::span<const char> bytes)
{
    return viewer::ReadModelStream([bytes](std::span<char> buffer) mutable {
        const std::size_t count = std::min(buffer.size(), bytes.size());
        if (count > 0)
            std::memcpy(buffer.data(), bytes.data(), count);
        bytes = bytes.subspan(count);
        return count;
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const viewer::Model model = Read(std::span(reinterpret_cast<const char*>(data), size));
        CheckModel(model);
        // A model that was read is written as a stream that reads back as the same model.
        const std::string written = StreamOf(model);
        Require(StreamOf(Read(written)) == written);
    } catch (const viewer::StreamError&) {
    } catch (const viewer::ReportedFailure&) {
    }
    return 0;
}
