#include "viewer/import/mesh/mesh_import.h"

#include "platform/host/cm/color.h"
#include "viewer/import/file_checks.h"
#include "viewer/import/library_message.h"
#include "viewer/scene/affine.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <assimp/GltfMaterial.h>
#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <assimp/config.h>
#include <assimp/material.h>
#include <assimp/scene.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

Point ToPoint(const aiVector3D& v)
{
    return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}

/// The transformation in double precision.
Affine ToAffine(const aiMatrix4x4& m)
{
    const auto column = [&](unsigned int i) {
        return Point{static_cast<double>(m[0][i]), static_cast<double>(m[1][i]),
                     static_cast<double>(m[2][i])};
    };
    return {column(0), column(1), column(2), column(3)};
}

/// A file's coordinate system: the map to the viewer's axes, with z up, and the length of its unit.
struct Convention {
    Affine root;
    std::optional<double> meters_per_unit;
};

/// The rotation that maps the axis with this number, or its opposite, to z.
Affine UprightFrom(int axis, bool is_opposite)
{
    Affine turn;
    if (axis == 0)
        turn = {{0.0, 0.0, 1.0}, {0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {}};
    if (axis == 1)
        turn = {{1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {0.0, -1.0, 0.0}, {}};
    const Affine half_turn_about_x = Scaling(1.0, -1.0, -1.0);
    return is_opposite ? half_turn_about_x * turn : turn;
}

/// FBX files state their up axis and the length of their unit in centimetres.
Convention FbxConvention(const aiScene& scene)
{
    int axis = 1;
    int sign = 1;
    float centimeters = 0.0F;
    if (scene.mMetaData != nullptr) {
        scene.mMetaData->Get("UpAxis", axis);
        scene.mMetaData->Get("UpAxisSign", sign);
        scene.mMetaData->Get("UnitScaleFactor", centimeters);
    }
    Convention convention{UprightFrom(axis, sign < 0), std::nullopt};
    if (std::isfinite(centimeters) && centimeters > 0.0F)
        convention.meters_per_unit = static_cast<double>(centimeters) / 100.0;
    return convention;
}

/// NOTE: The library rotates Collada, 3DS, ASE and IFC files so that y is up, and scales Collada and IFC
/// files to metres. glTF and X3D define both in this way. OBJ, STL, PLY and OFF files do not define their
/// axes.
Convention ConventionOf(const std::string& path, const aiScene& scene)
{
    constexpr std::array<std::string_view, 7> kMetersUpwardsY = {".gltf", ".glb", ".dae", ".zae",
                                                                 ".ifc",  ".x3d", ".x3db"};
    constexpr std::array<std::string_view, 7> kUpwardsY = {".3ds", ".ase", ".x",  ".ac",
                                                           ".acc", ".lwo", ".lws"};
    const std::string ending = LowerCaseExtension(path);
    if (ending == ".fbx")
        return FbxConvention(scene);
    if (std::ranges::find(kMetersUpwardsY, ending) != kMetersUpwardsY.end())
        return {UprightFrom(1, false), 1.0};
    if (std::ranges::find(kUpwardsY, ending) != kUpwardsY.end())
        return {UprightFrom(1, false), std::nullopt};
    return {};
}

/// The maximum number of a piece's parents; further ones are dropped.
constexpr std::size_t kMaxParents = 64;

void AddParent(std::vector<std::string>& parents, const aiString& name)
{
    // NOTE: The library names nodes that it adds itself "..._$AssimpFbx$_...".
    const std::string_view text(name.C_Str());
    if (!text.empty() && text.find("$Assimp") == std::string_view::npos && parents.size() < kMaxParents)
        parents.emplace_back(text);
}

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

unsigned char ToChannel(float value)
{
    return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255.0F));
}

unsigned char ColorOf(const aiMaterial& material)
{
    aiColor4D color(0.6F, 0.6F, 0.6F, 1.0F);
    if (material.Get(AI_MATKEY_COLOR_DIFFUSE, color) != AI_SUCCESS)
        material.Get(AI_MATKEY_BASE_COLOR, color);
    if (!std::isfinite(color.r) || !std::isfinite(color.g) || !std::isfinite(color.b))
        color = aiColor4D(0.6F, 0.6F, 0.6F, 1.0F);
    return NearestColorIndex(ToChannel(color.r), ToChannel(color.g), ToChannel(color.b));
}

float AlphaOf(const aiMaterial& material)
{
    // glTF states whether the opacity applies.
    aiString mode;
    if (material.Get(AI_MATKEY_GLTF_ALPHAMODE, mode) == AI_SUCCESS &&
        std::string_view(mode.C_Str()) != "BLEND")
        return 1.0F;
    float alpha = 1.0F;
    if (material.Get(AI_MATKEY_OPACITY, alpha) != AI_SUCCESS || !std::isfinite(alpha))
        return 1.0F;
    return std::clamp(alpha, 0.0F, 1.0F);
}

/// Converts the library's scene to a model.
class SceneConverter
{
  public:
    SceneConverter(const std::string& path, const aiScene& scene, const ProgressFunction& progress)
        : path_(path), scene_(scene), progress_(progress)
    {
        CountFaces();
    }

    Model Convert()
    {
        const Convention convention = ConventionOf(path_, scene_);
        model_.meters_per_unit = convention.meters_per_unit;
        std::vector<PendingNode> pending;
        if (scene_.mRootNode != nullptr)
            pending.push_back({scene_.mRootNode, convention.root, {}});
        while (!pending.empty()) {
            const PendingNode current = std::move(pending.back());
            pending.pop_back();
            const aiNode& node = *current.node;
            const Affine transform = current.transform * ToAffine(node.mTransformation);
            for (unsigned int i = 0; i < node.mNumMeshes; ++i)
                AddMesh(MeshAt(node.mMeshes[i]), node, current.parents, transform);
            std::vector<std::string> parents = current.parents;
            // The root has the name of the file, or one that the library generates.
            if (&node != scene_.mRootNode)
                AddParent(parents, node.mName);
            for (unsigned int i = node.mNumChildren; i-- > 0;)
                pending.push_back({node.mChildren[i], transform, parents});
        }
        NumberCategories();
        return std::move(model_);
    }

  private:
    struct PendingNode {
        const aiNode* node;
        Affine transform; ///< of its parent
        std::vector<std::string> parents;
    };

    void CountFaces()
    {
        for (unsigned int i = 0; i < scene_.mNumMeshes; ++i)
            faces_total_ += scene_.mMeshes[i]->mNumFaces;
    }

    const aiMesh& MeshAt(unsigned int index) const
    {
        if (index >= scene_.mNumMeshes)
            throw FileError(path_, "damaged: a node refers to a mesh that is not there");
        return *scene_.mMeshes[index];
    }

    void AddMesh(const aiMesh& mesh, const aiNode& node, const std::vector<std::string>& parents,
                 const Affine& transform)
    {
        Piece piece;
        piece.name = mesh.mName.length > 0 ? mesh.mName.C_Str() : node.mName.C_Str();
        piece.parents = parents;
        if (&node != scene_.mRootNode && piece.name != node.mName.C_Str())
            AddParent(piece.parents, node.mName);
        // The material's number for now: categories are numbered when all materials with faces are known.
        piece.category = static_cast<int>(mesh.mMaterialIndex);
        if (mesh.mMaterialIndex < scene_.mNumMaterials) {
            piece.color = ColorOf(*scene_.mMaterials[mesh.mMaterialIndex]);
            piece.alpha = AlphaOf(*scene_.mMaterials[mesh.mMaterialIndex]);
        }
        const bool mirrors = transform.Mirrors();
        for (unsigned int i = 0; i < mesh.mNumFaces; ++i) {
            Report();
            AddFace(piece, mesh, mesh.mFaces[i], transform, mirrors);
        }
        if (!piece.faces.empty())
            model_.pieces.push_back(std::move(piece));
    }

    void AddFace(Piece& piece, const aiMesh& mesh, const aiFace& source, const Affine& transform,
                 bool mirrors)
    {
        if (source.mNumIndices < 3)
            return;
        std::vector<Point> corners;
        corners.reserve(source.mNumIndices);
        for (unsigned int i = 0; i < source.mNumIndices; ++i) {
            if (source.mIndices[i] >= mesh.mNumVertices)
                throw FileError(path_, "damaged: a face refers to a vertex that is not there");
            corners.push_back(transform.Apply(ToPoint(mesh.mVertices[source.mIndices[i]])));
            if (!IsFinite(corners.back()))
                throw FileError(path_, "holds coordinates that are not finite");
        }
        if (mirrors)
            std::reverse(corners.begin(), corners.end());
        if (auto face = MakeFace(std::move(corners)))
            piece.faces.push_back(std::move(*face));
    }

    void NumberCategories()
    {
        std::map<int, int> categories;
        for (const Piece& piece : model_.pieces)
            categories[piece.category] = 0;
        int next = 0;
        for (auto& [material, category] : categories) {
            category = next++;
            const auto number = static_cast<unsigned int>(material);
            model_.category_names.emplace_back(
                number < scene_.mNumMaterials ? scene_.mMaterials[number]->GetName().C_Str() : "");
        }
        for (Piece& piece : model_.pieces)
            piece.category = categories.at(piece.category);
    }

    void Report()
    {
        constexpr std::size_t kFacesPerReport = 4096;
        ++faces_seen_;
        if (!progress_ || faces_seen_ % kFacesPerReport != 0)
            return;
        // A mesh that several nodes use is counted once, but converted for each of them.
        const double done = static_cast<double>(faces_seen_) / static_cast<double>(faces_total_);
        progress_(ImporterProgress::kShare + (1.0 - ImporterProgress::kShare) * std::min(done, 1.0));
    }

    const std::string& path_;
    const aiScene& scene_;
    const ProgressFunction& progress_;
    std::size_t faces_total_ = 0;
    std::size_t faces_seen_ = 0;
    Model model_;
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
    return SceneConverter(path, *scene, progress).Convert();
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
    if (model.pieces.empty())
        throw FileError(path, "holds no faces");
    model.title = std::filesystem::path(path).filename().string();
    return model;
}

} // namespace viewer
