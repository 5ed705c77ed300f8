// Shared by tests of mesh files: PLY files and properties of the models read from mesh files.
#pragma once

#include "platform/host/cm/color.h"
#include "tests/viewer/test_support.h"
#include "viewer/import/mesh/mesh_import.h"
#include "viewer/text/file_error.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace viewer
{

/// A PLY file of text whose vertices have the coordinates x, y and z. `header` declares further properties of
/// the vertices and further elements; `body` has the values.
inline std::string AsciiPly(int vertex_count, const std::string& header, const std::string& body)
{
    return "ply\nformat ascii 1.0\nelement vertex " + std::to_string(vertex_count) +
           "\nproperty float x\nproperty float y\nproperty float z\n" + header + "end_header\n" + body;
}

class MeshTest : public ViewerTest
{
  protected:
    /// The error's text when the file is read.
    static std::string ErrorOf(const std::string& path)
    {
        try {
            static_cast<void>(ImportMesh(path));
        } catch (const FileError& error) {
            return error.what();
        }
        return "read without an error";
    }

    static std::uint32_t ColorOf(const Piece& piece) { return AcCmEntityColor::lookUpRGB(piece.color); }

    /// The colours of the pieces, in their order.
    static std::vector<std::uint32_t> ColorsOf(const Model& model)
    {
        std::vector<std::uint32_t> colors;
        for (const Piece& piece : model.pieces)
            colors.push_back(ColorOf(piece));
        return colors;
    }

    static std::size_t LineCountOf(const Model& model)
    {
        std::size_t count = 0;
        for (const Piece& piece : model.pieces)
            count += piece.lines.size();
        return count;
    }

    /// The number of left-out parts of a kind.
    static std::size_t LeftOutOf(const Model& model, const std::string& kind)
    {
        std::size_t count = 0;
        for (const LeftOut& part : model.left_out)
            count += part.kind == kind ? part.count : 0;
        return count;
    }
};

} // namespace viewer
