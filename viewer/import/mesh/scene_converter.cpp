#include "viewer/import/mesh/scene_converter.h"

#include "viewer/import/mesh/mesh_materials.h"
#include "viewer/import/mesh/model_builder.h"
#include "viewer/scene/affine.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
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

Affine ToAffine(const aiMatrix4x4& m)
{
    const auto column = [&](unsigned int i) {
        return Point{static_cast<double>(m[0][i]), static_cast<double>(m[1][i]),
                     static_cast<double>(m[2][i])};
    };
    return {column(0), column(1), column(2), column(3)};
}

/// The coordinate system of a file: the map to the viewer's axes, with z up, and the length of the unit.
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

/// NOTE: The library rotates Collada, 3DS, ASE, IFC and the game formats so that y is up, and scales Collada
/// and IFC files to metres. glTF and X3D define both in this way. OBJ, STL, PLY and OFF files do not define
/// their axes.
Convention ConventionOf(const std::string& path, const aiScene& scene)
{
    constexpr std::array<std::string_view, 7> kMetersUpwardsY = {".gltf", ".glb", ".dae", ".zae",
                                                                 ".ifc",  ".x3d", ".x3db"};
    constexpr std::array<std::string_view, 15> kUpwardsY = {".3ds",     ".ase", ".x",   ".ac",  ".acc",
                                                            ".lwo",     ".lws", ".md2", ".md3", ".mdc",
                                                            ".md5mesh", ".mdl", ".hmp", ".iqm", ".ms3d"};
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

/// Converts the library's scene to a model.
class SceneConverter
{
  public:
    SceneConverter(const std::string& path, const aiScene& scene, ImportProgress& progress)
        : path_(path), scene_(scene), progress_(progress), materials_(path, scene)
    {
        CountFaces();
    }

    Model Convert()
    {
        const Convention convention = ConventionOf(path_, scene_);
        root_ = convention.root;
        std::vector<PendingNode> pending;
        if (scene_.mRootNode != nullptr)
            pending.push_back({scene_.mRootNode, convention.root, {}});
        while (!pending.empty()) {
            const PendingNode current = std::move(pending.back());
            pending.pop_back();
            const aiNode& node = *current.node;
            const Affine transform = current.transform * ToAffine(node.mTransformation);
            for (unsigned int i = 0; i < node.mNumMeshes; ++i)
                if (node.mMeshes[i] < scene_.mNumMeshes)
                    AddMesh(*scene_.mMeshes[node.mMeshes[i]], node, current.parents, transform);
                else
                    builder_.LeaveOutDamaged();
            std::vector<std::string> parents = current.parents;
            // The root has the name of the file, or one that the library generates.
            if (&node != scene_.mRootNode)
                AddParent(parents, node.mName);
            for (unsigned int i = node.mNumChildren; i-- > 0;)
                pending.push_back({node.mChildren[i], transform, parents});
        }
        builder_.LeaveOut("texture", materials_.MissingTextures());
        Model model = builder_.Finish(path_, MaterialNames());
        model.meters_per_unit = convention.meters_per_unit;
        return model;
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

    void AddMesh(const aiMesh& mesh, const aiNode& node, const std::vector<std::string>& parents,
                 const Affine& transform)
    {
        Piece pattern;
        pattern.name = mesh.mName.length > 0 ? mesh.mName.C_Str() : node.mName.C_Str();
        pattern.parents = parents;
        if (&node != scene_.mRootNode && pattern.name != node.mName.C_Str())
            AddParent(pattern.parents, node.mName);
        pattern.category = static_cast<int>(mesh.mMaterialIndex);
        const MeshMaterial& material = materials_.At(mesh.mMaterialIndex);
        pattern.alpha = material.opacity;
        builder_.BeginMesh(std::move(pattern), mesh.mNumFaces);
        const MeshColors colors(material, mesh);
        const PlacedVertices vertices = Placed(mesh, transform);
        for (unsigned int i = 0; i < mesh.mNumFaces; ++i) {
            // A mesh that several nodes use is counted once, but converted for each of them.
            progress_.Built(++faces_seen_, faces_total_);
            AddPart(vertices, colors, mesh.mFaces[i]);
        }
    }

    /// The vertices of a mesh in the model's axes.
    struct PlacedVertices {
        std::vector<Point> points;
        bool are_mirrored; ///< counter-clockwise faces have become clockwise
    };

    PlacedVertices Placed(const aiMesh& mesh, const Affine& transform)
    {
        PlacedVertices placed{{}, transform.Mirrors()};
        placed.points.reserve(mesh.mNumVertices);
        for (unsigned int i = 0; i < mesh.mNumVertices; ++i)
            placed.points.push_back(transform.Apply(ToPoint(mesh.mVertices[i])));
        if (mesh.HasBones())
            FollowBones(mesh, placed);
        return placed;
    }

    /// Moves the vertices of a skinned mesh to the rest pose of its bones. The transformation of the mesh's
    /// own node does not apply to them.
    void FollowBones(const aiMesh& mesh, PlacedVertices& placed)
    {
        std::vector<Point> sums(mesh.mNumVertices);
        std::vector<double> weights(mesh.mNumVertices);
        for (unsigned int i = 0; i < mesh.mNumBones; ++i) {
            const aiBone& bone = *mesh.mBones[i];
            const auto node = NodeTransforms().find(bone.mName.C_Str());
            if (node == NodeTransforms().end())
                continue;
            const Affine pose = node->second * ToAffine(bone.mOffsetMatrix);
            placed.are_mirrored = pose.Mirrors();
            for (unsigned int k = 0; k < bone.mNumWeights; ++k) {
                const aiVertexWeight& weight = bone.mWeights[k];
                if (weight.mVertexId >= mesh.mNumVertices || !(weight.mWeight > 0.0F))
                    continue;
                const auto share = static_cast<double>(weight.mWeight);
                Point& sum = sums[weight.mVertexId];
                sum = sum + pose.Apply(ToPoint(mesh.mVertices[weight.mVertexId])) * share;
                weights[weight.mVertexId] += share;
            }
        }
        for (std::size_t i = 0; i < weights.size(); ++i)
            if (weights[i] > 0.0)
                placed.points[i] = sums[i] * (1.0 / weights[i]);
    }

    /// The transformations of all nodes, by name. They are collected on the first call.
    const std::map<std::string, Affine, std::less<>>& NodeTransforms()
    {
        if (!node_transforms_.empty() || scene_.mRootNode == nullptr)
            return node_transforms_;
        std::vector<std::pair<const aiNode*, Affine>> pending{{scene_.mRootNode, root_}};
        while (!pending.empty()) {
            const auto [node, parent] = pending.back();
            pending.pop_back();
            const Affine transform = parent * ToAffine(node->mTransformation);
            node_transforms_.try_emplace(node->mName.C_Str(), transform);
            for (unsigned int i = 0; i < node->mNumChildren; ++i)
                pending.emplace_back(node->mChildren[i], transform);
        }
        return node_transforms_;
    }

    /// A face, a line or a point.
    void AddPart(const PlacedVertices& placed, const MeshColors& colors, const aiFace& source)
    {
        const std::span<const unsigned int> vertices(source.mIndices, source.mNumIndices);
        if (std::ranges::any_of(vertices, [&](unsigned int i) { return i >= placed.points.size(); })) {
            builder_.LeaveOutDamaged();
            return;
        }
        std::vector<Point> corners;
        corners.reserve(vertices.size());
        for (const unsigned int vertex : vertices)
            corners.push_back(placed.points[vertex]);
        if (placed.are_mirrored && corners.size() > 2)
            std::ranges::reverse(corners);
        builder_.AddPart(std::move(corners), colors.Of(vertices));
    }

    std::vector<std::string> MaterialNames() const
    {
        std::vector<std::string> names;
        for (unsigned int i = 0; i < scene_.mNumMaterials; ++i)
            names.emplace_back(scene_.mMaterials[i]->GetName().C_Str());
        return names;
    }

    const std::string& path_;
    const aiScene& scene_;
    ImportProgress& progress_;
    Affine root_; ///< the map to the model's axes
    std::map<std::string, Affine, std::less<>> node_transforms_;
    MeshMaterials materials_;
    ModelBuilder builder_;
    std::size_t faces_total_ = 0;
    std::size_t faces_seen_ = 0;
};

} // namespace

Model ConvertScene(const std::string& path, const aiScene& scene, ImportProgress& progress)
{
    return SceneConverter(path, scene, progress).Convert();
}

} // namespace viewer
