#include "viewer/import/mesh/mesh_import.h"

#include "viewer/import/file_checks.h"
#include "viewer/import/library_message.h"
#include "viewer/import/mesh/obj_reader.h"
#include "viewer/import/mesh/off_reader.h"
#include "viewer/import/mesh/ply_reader.h"
#include "viewer/import/mesh/scene_converter.h"
#include "viewer/import/mesh/text_scanner.h"
#include "viewer/import/mesh/three_mf_reader.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <assimp/DefaultIOSystem.h>
#include <assimp/Importer.hpp>
#include <assimp/MemoryIOWrapper.h>
#include <assimp/ProgressHandler.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <new>
#include <string_view>

namespace viewer
{

namespace
{

/// Forwards the library's progress as that of parsing.
class LibraryProgress final : public Assimp::ProgressHandler
{
  public:
    explicit LibraryProgress(ImportProgress& progress) : progress_(progress) {}

    bool Update(float fraction) override
    {
        progress_.Parsed(static_cast<double>(fraction));
        return true;
    }

  private:
    ImportProgress& progress_;
};

/// Opens files for the library. Files of UTF-16 are converted to UTF-8, because some of its parsers read no
/// other encoding.
class TextFileSystem final : public Assimp::DefaultIOSystem
{
  public:
    Assimp::IOStream* Open(const char* file, const char* mode) override
    {
        std::ifstream stream(file, std::ios::binary);
        std::array<char, 2> mark{};
        if (!stream.read(mark.data(), mark.size()) || !HasUtf16Mark({mark.data(), mark.size()}))
            return DefaultIOSystem::Open(file, mode);
        stream.close();
        std::string text = ReadWholeFile(file);
        // The declaration of XML would still name the other encoding.
        constexpr std::string_view kDeclared = "UTF-16";
        const std::size_t declared = text.substr(0, kMaxDeclaration).find(kDeclared);
        if (declared != std::string::npos)
            text.replace(declared, kDeclared.size(), "UTF-8");
        auto* const bytes = new std::uint8_t[text.size() + 1]; // the stream owns it
        std::ranges::copy(text, bytes);
        return new Assimp::MemoryIOStream(bytes, text.size(), true); // the library closes it
    }

  private:
    static constexpr std::size_t kMaxDeclaration = 200;
};

std::string ReasonOf(const Assimp::Importer& importer, const std::string& path)
{
    const std::string message = importer.GetErrorString();
    if (message.find("No suitable reader") == std::string::npos)
        return ReasonFromLibrary(message);
    // NOTE: The library reports a file that its parsers do not recognize like one of an unknown kind.
    const bool known = importer.IsExtensionSupported(std::filesystem::path(path).extension().string());
    return known ? "damaged or truncated" : "unknown kind of file";
}

Model Read(const std::string& path, const ProgressFunction& progress)
{
    // In these kinds the library loses colours, lines and digits, and refuses a file for one bad index.
    const std::string ending = LowerCaseExtension(path);
    if (ending == ".obj")
        return ReadObj(path, progress);
    if (ending == ".ply")
        return ReadPly(path, progress);
    if (ending == ".off")
        return ReadOff(path, progress);
    if (ending == ".3mf")
        return ReadThreeMf(path, progress);
    ImportProgress stages(progress, 0.7);
    Assimp::Importer importer;
    // The library would add meshes for skeletons to a file without meshes.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    importer.SetIOHandler(new TextFileSystem);                // the importer owns it
    importer.SetProgressHandler(new LibraryProgress(stages)); // the importer owns it
    // No post-processing: it would triangulate, merge or smooth.
    const aiScene* scene = importer.ReadFile(path, 0);
    if (scene == nullptr)
        throw FileError(path, ReasonOf(importer, path));
    return ConvertScene(path, *scene, stages);
}

} // namespace

Model ImportMesh(const std::string& path, const ProgressFunction& progress)
{
    CheckModelFile(path);
    Model model;
    try {
        model = Read(path, progress);
    } catch (const FileError&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw FileError(path, "needs more memory than there is");
    } catch (const std::exception& error) {
        throw FileError(path, ReasonFromLibrary(error.what()));
    }
    model.title = std::filesystem::path(path).filename().string();
    return model;
}

} // namespace viewer
