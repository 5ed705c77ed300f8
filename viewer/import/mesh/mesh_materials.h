// The colours of a mesh file: base colours and textures of its materials, and colours of vertices.
#pragma once

#include "viewer/import/mesh/model_builder.h"
#include "viewer/import/mesh/texture_image.h"
#include "viewer/import/mesh/texture_store.h"

#include <assimp/scene.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace viewer
{

/// Colour and opacity of the faces, lines and points of one material.
struct MeshMaterial {
    FileColor color; ///< opaque
    float opacity = 1.0F;
    FileColor texture_factor{1.0F, 1.0F, 1.0F, 1.0F};
    const TextureImage* texture = nullptr; ///< null without a texture, and for a missing one
    unsigned int texture_channel = 0;      ///< the set of texture coordinates of the mesh
    aiUVTransform texture_transform;
    /// Whether the colours of vertices are factors of the material's colour. Otherwise they replace the
    /// colour of a material without a texture.
    bool vertices_are_factors = false;
};

/// The materials of a scene with their textures, from files beside the model file or embedded in it.
class MeshMaterials
{
  public:
    /// Both arguments must outlive the object.
    MeshMaterials(const std::string& path, const aiScene& scene);

    /// The material with this number; a grey one for a number out of range. Valid as long as the object.
    [[nodiscard]] const MeshMaterial& At(unsigned int index) const;
    /// The number of textures that are missing, damaged, or too large.
    [[nodiscard]] std::size_t MissingTextures() const { return textures_.Missing(); }

  private:
    [[nodiscard]] MeshMaterial Read(const aiMaterial& material);
    void ReadTexture(MeshMaterial& result, const aiMaterial& material);
    [[nodiscard]] std::optional<TextureImage> Load(const std::string& name) const;

    const std::string& path_;
    const aiScene& scene_;
    bool base_is_factor_; ///< of the texture; otherwise the texture replaces it
    TextureStore textures_;
    std::vector<MeshMaterial> materials_;
};

/// The colours of the parts of one mesh.
class MeshColors
{
  public:
    /// Both arguments must outlive the object.
    MeshColors(const MeshMaterial& material, const aiMesh& mesh);

    /// The colour of a part with these vertices, all of them in range.
    [[nodiscard]] FileColor Of(std::span<const unsigned int> vertices) const;

  private:
    [[nodiscard]] FileColor TextureOf(std::span<const unsigned int> vertices) const;

    const MeshMaterial& material_;
    const aiMesh& mesh_;
    const aiVector3D* texture_points_; ///< null for a mesh without them: it has the mean of the whole texture
    bool is_painted_;                  ///< colours of vertices apply
};

} // namespace viewer
