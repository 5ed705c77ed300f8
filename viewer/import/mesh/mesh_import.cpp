#include "viewer/import/mesh/mesh_import.h"

#include "viewer/import/file_checks.h"
#include "viewer/import/library_message.h"
#include "viewer/import/mesh/scene_converter.h"
#include "viewer/text/file_error.h"

#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include <exception>
#include <filesystem>
#include <new>

namespace viewer
{

namespace
{

/// Forwards the library's progress as the first `kShare` of the import's.
class ImporterProgress final : public Assimp::ProgressHandler
{
  public:
    explicit ImporterProgress(const ProgressFunction& report) : report_(report) {}

    bool Update(float fraction) override
    {
        if (report_ && fraction >= 0.0F)
            report_(kShare * static_cast<double>(fraction));
        return true;
    }

    static constexpr double kShare = 0.7;

  private:
    const ProgressFunction& report_;
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
    Assimp::Importer importer;
    // The library would add meshes for skeletons to a file without meshes.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    importer.SetProgressHandler(new ImporterProgress(progress)); // the importer owns it
    // No post-processing: it would triangulate, merge or smooth.
    const aiScene* scene = importer.ReadFile(path, 0);
    if (scene == nullptr)
        throw FileError(path, ReasonOf(importer, path));
    return ConvertScene(path, *scene, progress, ImporterProgress::kShare);
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
