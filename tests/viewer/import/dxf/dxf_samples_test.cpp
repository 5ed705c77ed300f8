// Drawings that other programs wrote, from packages of the system.

#include "viewer/import/dxf/dxf_import.h"
#include "viewer/text/file_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

namespace fs = std::filesystem;

const fs::path kMeshes = fs::path(KARV_ASSIMP_MODELS) / "DXF";
const fs::path kSymbols = KARV_LIBRECAD_LIBRARY;

/// The kinds in the section of entities, counted without the importer.
struct Contents {
    std::size_t lines = 0;
    std::size_t others = 0;
};

Contents ContentsOf(const fs::path& path)
{
    std::ifstream stream(path);
    Contents contents;
    bool in_entities = false;
    std::string code;
    std::string value;
    while (std::getline(stream, code) && std::getline(stream, value)) {
        while (!value.empty() && value.back() == '\r')
            value.pop_back();
        if (std::stoi(code) == 2 && value == "ENTITIES")
            in_entities = true;
        else if (std::stoi(code) == 0 && value == "ENDSEC")
            in_entities = false;
        else if (std::stoi(code) == 0 && in_entities)
            ++(value == "LINE" ? contents.lines : contents.others);
    }
    return contents;
}

TEST(DxfSamples, PolyfaceMeshInABlockHasTheFacesThatItSays)
{
    const Model model = ImportDxf((kMeshes / "wuson.dxf").string(), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "Meshes");
    EXPECT_THAT(model.pieces[0].parents, ElementsAre("Mesh"));
    EXPECT_EQ(model.pieces[0].faces.size(), 3732U); // group 72 of the mesh
}

TEST(DxfSamples, PolyfaceMeshesAreAPieceEach)
{
    EXPECT_EQ(ImportDxf((kMeshes / "issue_2229.dxf").string(), {}).pieces.size(), 4U);
}

TEST(DxfSamples, FacesInSpaceAreOnePiece)
{
    const Model model = ImportDxf((kMeshes / "PinkEggFromLW.dxf").string(), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].faces.size(), ContentsOf(kMeshes / "PinkEggFromLW.dxf").others);
}

TEST(DxfSamples, OldFileOfALineAndFacesIsRead)
{
    const Model model = ImportDxf((kMeshes / "lineTest.dxf").string(), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].lines.size(), 1U);
    EXPECT_EQ(model.pieces[0].faces.size(), 2U);
}

TEST(DxfSamples, LibraryOfSymbolsIsReadToTheLastFile)
{
    std::size_t read = 0;
    std::size_t of_lines = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(kSymbols)) {
        if (entry.path().extension() != ".dxf")
            continue;
        SCOPED_TRACE(entry.path());
        const Contents contents = ContentsOf(entry.path());
        try {
            const Model model = ImportDxf(entry.path().string(), {});
            ++read;
            if (contents.others > 0)
                continue;
            ++of_lines;
            std::size_t lines = 0;
            for (const Piece& piece : model.pieces)
                lines += piece.lines.size();
            EXPECT_EQ(lines, contents.lines);
        } catch (const FileError& error) {
            EXPECT_EQ(contents.lines + contents.others, 0U) << error.what();
            EXPECT_THAT(error.what(), HasSubstr("holds no entities"));
        }
    }
    EXPECT_GT(read, 1000U);
    EXPECT_GT(of_lines, 100U);
}

} // namespace
} // namespace viewer
